#include "foundations/records/VrfRouteListTaggedConfig.h"

namespace Routing {

Quill::Ptr<VrfRouteListTaggedConfig> VrfRouteListTaggedConfig::VrfRouteListTaggedConfigIs() {
  return Zel::make<VrfRouteListTaggedConfig>();
}

}  // namespace Routing
