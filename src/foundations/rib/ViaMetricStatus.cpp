#include "foundations/rib/ViaMetricStatus.h"

namespace Routing::Rib {

Quill::Ptr<ViaMetricStatus> ViaMetricStatus::ViaMetricStatusIs(VrfId vrfId, Transport transport,
                                                               RoutingProtocol protocol) {
  return Zel::make<ViaMetricStatus>(vrfId, transport, protocol);
}

Quill::Ptr<ViaMetricStatusByVrf> ViaMetricStatusByVrf::ViaMetricStatusByVrfIs() {
  return Zel::make<ViaMetricStatusByVrf>();
}

}  // namespace Routing::Rib
