#include "foundations/rib/RouteConfig.h"

namespace Routing::Rib {

Quill::Ptr<RouteConfig> RouteConfig::RouteConfigIs() { return Zel::make<RouteConfig>(); }

bool RouteConfig::routeAdd(Route const& route) {
  RouteKey const& k = route.routeKey();
  auto [body, inserted] = routes_.tryEmplace(k, route.body());
  if (inserted) {
    if (publisher().hasSubscribers()) Zel::Impl::publishWithOld<Route>(*this, routeId, &k, &route, nullptr);
    return true;
  }
  if (*body == route.body()) return false;
  Route const old(k, *body);
  *body = route.body();
  if (publisher().hasSubscribers()) Zel::Impl::publishWithOld<Route>(*this, routeId, &k, &route, &old);
  return true;
}

bool RouteConfig::routeDel(RouteKey const& k) {
  auto old = routes_.extract(k);
  if (!old) return false;
  if (publisher().hasSubscribers()) {
    Route const gone(k, *old);
    Zel::Impl::publishWithOld<Route>(*this, routeId, &k, nullptr, &gone);
  }
  return true;
}

std::size_t RouteConfig::doDeleteRoutesForVrf(VrfId vrfId) {
  std::size_t removed = 0;
  for (auto it = routes_.iteratorAt(RouteKey::vrfStart(vrfId)); it && it.key().vrfId() == vrfId; it.advance()) {
    RouteKey const k = it.key();
    removed += routeDel(k) ? 1 : 0;
  }
  return removed;
}

}  // namespace Routing::Rib
