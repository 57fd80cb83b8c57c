// The index of a RouteConfigSm's inter-VRF routes: per egress VRF, the keys of the routes that have
// a via leaving through that VRF, with the routes they stand for and the VRF id last seen. One
// index holds the routes whose egress VRF exists, another those whose VRF does not. Owned and
// written by the RouteConfigSm; an entry with no route does not exist.
#pragma once

#include "foundations/records/Route.h"
#include "foundations/records/RouteKey.h"
#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/types/VrfName.h"

namespace Routing {

// The routes of one egress VRF, by key.
class RouteConfig : public Zel::Entity {
 public:
  using RouteConstPtr = Quill::Ptr<Route const>;
  ZEL_MAP(RouteKey, RouteConstPtr, route, 130)

 protected:
  friend struct Zel::Factory;
  RouteConfig() = default;
};

class InterVrfRouteConfig : public Zel::Entity {
 public:
  ZEL_CONST(L3::VrfName, key)
  ZEL_ATTR_DEFAULT(Vrf::VrfIdMap::VrfId, vrfId, 130, Vrf::VrfIdMap::VrfId::none())
  ZEL_OWNED(RouteConfig, routeConfig, 131)

 protected:
  friend struct Zel::Factory;
  explicit InterVrfRouteConfig(L3::VrfName const& key) : key_(key) {}
};

class InterVrfRouteByEgressVrf : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<InterVrfRouteByEgressVrf> InterVrfRouteByEgressVrfIs() {
    return Zel::make<InterVrfRouteByEgressVrf>();
  }
  ZEL_OWNED_MAP(L3::VrfName, InterVrfRouteConfig, interVrfRouteConfig, 130)

 protected:
  friend struct Zel::Factory;
  InterVrfRouteByEgressVrf() = default;
};

}  // namespace Routing
