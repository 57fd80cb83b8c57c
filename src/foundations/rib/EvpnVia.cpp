#include "foundations/rib/EvpnVia.h"

#include "foundations/runtime/Hash.h"

namespace Routing::Rib::Evpn {

std::uint32_t Via::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed)
      .add(viaKey_.hash(seed))
      .add(vtepAddr_.hash(seed))
      .add(routerMac_.hash(seed))
      .add(vni_.value())
      .value();
}

std::ostream& operator<<(std::ostream& os, Via const& v) {
  return os << "EvpnVia(" << v.viaKey() << ": vtep " << v.vtepAddr() << " vni " << v.vni() << " rmac "
            << v.routerMac() << ')';
}

}  // namespace Routing::Rib::Evpn
