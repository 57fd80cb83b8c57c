#include "foundations/records/RouteKeySet.h"

namespace Routing {

Quill::Ptr<RouteKeySet> RouteKeySet::RouteKeySetIs(Zel::String const& tagName) {
  return Zel::make<RouteKeySet>(tagName);
}

}  // namespace Routing
