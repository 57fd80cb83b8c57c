#include "foundations/rib/EvpnViaConfig.h"

namespace Routing::Rib::Evpn {

Quill::Ptr<ViaConfig> ViaConfig::ViaConfigIs(RoutingProtocol rp, Transport transport,
                                              Quill::Ptr<IdAllocator> allocator) {
  return Zel::make<ViaConfig>(rp, transport, std::move(allocator));
}

}  // namespace Routing::Rib::Evpn
