// Routing::Rib::RouteConfig: the route table of one RIB instance and family, for all VRFs. It owns
// the routes, ordered by RouteKey (VRF, then prefix), and publishes each added, changed or removed
// key on `route`, with the route before the change as the old value (Zel::notifyOldValue<Route>).
// The route machines write it; the RIB and the route cache's stale-route walk read it. Owned or
// mounted by the protocol root. A route costs one tree node holding its key and its Route::Body.
//
// Iteration: routeIteratorConst(), routeIteratorAt(key) and routeIteratorAfter(key) are
// Zel::RbTreeMap iterators in ascending key order, with that map's contract: routes may be added
// and removed during a walk, and resuming from a saved key visits exactly the keys above it. The
// routes of one VRF are the run that starts at routeIteratorAt(RouteKey::vrfStart(vrf)). An
// iterator's value() is the route's body; Route(it.key(), it.value()) is the route.
#pragma once

#include <cstddef>

#include "foundations/rib/RibRoute.h"
#include "foundations/runtime/Attribute.h"

namespace Routing::Rib {

class RouteConfig : public Zel::Entity {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;
  using Map = Zel::RbTreeMap<RouteKey, Route::Body>;

  [[nodiscard]] static Quill::Ptr<RouteConfig> RouteConfigIs();

  ZEL_ATTR_ID(route, 130);
  // The route of a key; the default route of that key when absent.
  [[nodiscard]] Route route(RouteKey const& k) const {
    Route::Body const* b = routes_.find(k);
    return b ? Route(k, *b) : Route(k);
  }
  [[nodiscard]] Route::Body const* routeFind(RouteKey const& k) const { return routes_.find(k); }
  [[nodiscard]] bool routeHas(RouteKey const& k) const { return routes_.contains(k); }
  [[nodiscard]] std::size_t routeSize() const noexcept { return routes_.size(); }
  [[nodiscard]] Map::ConstIterator routeIteratorConst() const { return routes_.iterator(); }
  [[nodiscard]] Map::ConstIterator routeIteratorAt(RouteKey const& k) const { return routes_.iteratorAt(k); }
  [[nodiscard]] Map::ConstIterator routeIteratorAfter(RouteKey const& k) const { return routes_.iteratorAfter(k); }
  [[nodiscard]] Map const& routeColl() const noexcept { return routes_; }
  [[nodiscard]] Map const& zelColl(Zel::AttrTag<routeId>) const noexcept { return routes_; }

  // Inserts the route, or replaces the route of its key. Publishes when anything changed.
  bool routeAdd(Route const& route);
  // Removes the route of the key; publishes when there was one.
  bool routeDel(RouteKey const& k);
  // The same removal, under the name the route machines use when they withdraw a route.
  bool routeDelete(RouteKey const& k) { return routeDel(k); }
  // Removes every route of the VRF, one publish per route; returns how many went.
  std::size_t doDeleteRoutesForVrf(VrfId vrfId);

 protected:
  friend struct Zel::Factory;
  RouteConfig() = default;

 private:
  Map routes_;
};

}  // namespace Routing::Rib
