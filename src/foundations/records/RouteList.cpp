#include "foundations/records/RouteList.h"

namespace Routing {

Quill::Ptr<RouteList> RouteList::RouteListIs() { return Zel::make<RouteList>(); }

RouteList::RouteList() : parentLink_(Zel::make<Route::ParentLink>(this)) {}

Quill::Ptr<Route> RouteList::routeIs(RouteKey const& key, RouteType routeType) {
  if (Quill::Ptr<Route> existing = route(key); existing && existing->routeType() == routeType) return existing;
  return route_.put(*this, routeId, key, Zel::make<Route>(key, routeType, parentLink_));
}

RouteList::~RouteList() { parentLink_->list = nullptr; }

}  // namespace Routing
