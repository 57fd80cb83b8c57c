#include "foundations/rib/ViaSet.h"

namespace Routing::Rib::Skein {

std::ostream& operator<<(std::ostream& os, ViaSet const& s) {
  os << "ViaSet(" << s.viaSetKey() << ": fec " << unsigned(s.fecType()) << " flags " << unsigned(s.flags()) << " [";
  char const* sep = "";
  for (ViaKey const& k : s) {
    os << sep << k;
    sep = ", ";
  }
  return os << "])";
}

}  // namespace Routing::Rib::Skein
