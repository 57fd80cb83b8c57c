// Routing::Rib::LoopingRouteStatus and LoopingRouteStatusByVrf: the routes the RIB found looping.
// LoopingRouteStatusByVrf owns one LoopingRouteStatus per VRF name (published per name on
// `vrfStatus`); a LoopingRouteStatus owns the set of looping prefixes of its VRF (published per
// prefix on `loopingRoute`). Written by the RIB (or its stand-in); read by the route machines,
// which re-review a prefix when its entry changes, and by the readiness of a VRF.
//
// Iteration: both collections are Zel::HashMap2018 with that map's contract.
#pragma once

#include "foundations/runtime/Attribute.h"
#include "foundations/types/IpGenPrefix.h"
#include "foundations/types/VrfName.h"

namespace Routing::Rib {

class LoopingRouteStatus : public Zel::Entity {
 public:
  ZEL_CONST(L3::VrfName, vrfName)
  ZEL_SET(Ondex::IpGenPrefix, loopingRoute, 130)

 protected:
  friend struct Zel::Factory;
  explicit LoopingRouteStatus(L3::VrfName const& vrfName) : vrfName_(vrfName) {}
};

class LoopingRouteStatusByVrf : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<LoopingRouteStatusByVrf> LoopingRouteStatusByVrfIs();

  ZEL_OWNED_MAP(L3::VrfName, LoopingRouteStatus, vrfStatus, 130)

 protected:
  friend struct Zel::Factory;
  LoopingRouteStatusByVrf() = default;
};

}  // namespace Routing::Rib
