#include "foundations/rib/EvpnVia.h"

namespace Routing::Rib::Evpn {

std::ostream& operator<<(std::ostream& os, Via const& v) {
  return os << "EvpnVia(" << v.viaKey() << ": vtep " << v.vtepAddr() << " vni " << v.vni() << " rmac "
            << v.routerMac() << ')';
}

}  // namespace Routing::Rib::Evpn
