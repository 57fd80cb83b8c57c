#include "foundations/rib/RibTypes.h"

namespace Routing {

std::ostream& operator<<(std::ostream& os, MetricPref m) {
  return os << '(' << m.metric() << ", " << unsigned(m.preference()) << ')';
}

}  // namespace Routing
