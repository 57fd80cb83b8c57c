#include "foundations/rib/IpViaConfig.h"

namespace Routing::Rib::Ip {

Quill::Ptr<ViaConfig> ViaConfig::ViaConfigIs(RoutingProtocol rp, Transport transport,
                                              Quill::Ptr<IdAllocator> allocator) {
  return Zel::make<ViaConfig>(rp, transport, std::move(allocator));
}

}  // namespace Routing::Rib::Ip
