#include "foundations/rib/LoopingRouteStatus.h"

namespace Routing::Rib {

Quill::Ptr<LoopingRouteStatusByVrf> LoopingRouteStatusByVrf::LoopingRouteStatusByVrfIs() {
  return Zel::make<LoopingRouteStatusByVrf>();
}

}  // namespace Routing::Rib
