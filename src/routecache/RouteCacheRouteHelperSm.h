// The route cache helper: one per agent, it will program qualifying static routes straight into
// the route cache and keep each route in exactly one of the cache and the RIB. For now it only
// keeps the register of the route machines it serves and claims no route, so every route takes
// the RIB path. Owned by the hosting agent; every RouteConfigSm of a protocol holds it.
#pragma once

#include "foundations/records/RouteKey.h"
#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/Attribute.h"
#include "protocol/ProtocolContainerKey.h"

namespace Routing::Static {

class RouteConfigSm;

class RouteCacheRouteHelperSm : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<RouteCacheRouteHelperSm> RouteCacheRouteHelperSmIs() {
    return Zel::make<RouteCacheRouteHelperSm>();
  }
  // The route machines served, by container key; not owning.
  ZEL_MAP(Protocol::ContainerKey, RouteConfigSm*, routeConfigSmColl, 130)
  // The cache holds no route yet.
  [[nodiscard]] bool routeKeyPresentInRouteCache(Vrf::VrfIdMap::VrfId, RouteKey const&) const { return false; }
  void deleteRouteFromRouteCache(Vrf::VrfIdMap::VrfId, RouteKey const&) {}
  void maybeRescheduleStaleRouteRemovalTask() {}

 protected:
  friend struct Zel::Factory;
  RouteCacheRouteHelperSm() = default;
};

}  // namespace Routing::Static
