#include "foundations/rib/ViaMetric.h"

namespace Routing::Rib {

std::ostream& operator<<(std::ostream& os, ViaMetric const& m) {
  os << "ViaMetric(" << m.viaKey() << ": metric " << m.metric() << " pref " << m.preference();
  if (m.looping()) os << " looping";
  return os << ')';
}

}  // namespace Routing::Rib
