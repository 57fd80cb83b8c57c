// Routing::RouteList: the configured routes of one VRF and address family, owned by the agent that
// writes them and watched by the route machines. It owns its Routes, each created with its type
// and a back pointer to this list; the `route` collection (id 258) publishes the changed key.
//
// Iterator contract of routeIterator() / routeIteratorConst(): that of Zel::HashMap2018 (hash
// order, stable while the list is unchanged): any route, the current one included, may be deleted
// during a walk; routes deleted before the walk reaches them are not visited; resuming from a
// saved key visits exactly the routes after it.
#pragma once

#include "foundations/records/Route.h"
#include "foundations/records/RouteKey.h"
#include "foundations/records/RouteType.h"
#include "foundations/runtime/Attribute.h"

namespace Routing {

class RouteInput;

class RouteList : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<RouteList> RouteListIs();

  ZEL_OWNED_MAP(RouteKey, Route, route, 258)

  // Find or create the route of `key` with `routeType`. A route of that key with the same type is
  // returned as it is, with no publish; one of another type is replaced by a new route (the old one
  // marked for deletion), since the type is part of what the route was built from.
  Quill::Ptr<Route> routeIs(RouteKey const& key, RouteType routeType);

  // This list as a RouteInput, or null for a plain list.
  [[nodiscard]] virtual RouteInput const* routeInput() const noexcept { return nullptr; }

 protected:
  friend struct Zel::Factory;
  RouteList();
  // Routes that outlive the list (held by a reader) lose their parent.
  ~RouteList() override;

 private:
  Quill::Ptr<Route::ParentLink> parentLink_;
};

}  // namespace Routing
