#include "foundations/rib/ResolutionRibProfileConfig.h"

namespace Routing::Rib {

std::ostream& operator<<(std::ostream& os, ResolutionMethod const& m) {
  switch (m.type()) {
    case ResolutionRibType::none:
      return os << "none";
    case ResolutionRibType::systemUnicastRib:
      return os << "system-unicast-rib";
    case ResolutionRibType::systemConnected:
      return os << "system-connected";
    case ResolutionRibType::tunnelRib:
      os << "tunnel-rib " << m.tunnelRibName();
      if (m.tunnelRibId()) os << '#' << m.tunnelRibId();
      return os;
  }
  return os << "type " << unsigned(m.type());
}

std::ostream& operator<<(std::ostream& os, ResolutionRibProfileConfig const& p) {
  os << '[';
  char const* sep = "";
  for (ResolutionMethod const& m : p) {
    os << sep << m;
    sep = ", ";
  }
  return os << ']';
}

}  // namespace Routing::Rib
