#include "foundations/records/RouteListTaggedConfig.h"

namespace Routing {

Quill::Ptr<RouteListTaggedConfig> RouteListTaggedConfig::RouteListTaggedConfigIs(L3::VrfName const& vrfName) {
  return Zel::make<RouteListTaggedConfig>(vrfName);
}

}  // namespace Routing
