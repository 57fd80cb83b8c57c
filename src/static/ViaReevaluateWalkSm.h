// The walk over every route of a VRF's static and dynamic route lists (a dynamic route only when
// no static route has its key) that re-handles the vias of each, when a setting that changes how all vias are entered (the ECMP grouping, the resolution profile) has
// changed. It publishes each route in turn on reevaluatedRoute (391) and the end on
// walkFinishedTrigger (392); the RouteConfigSm that owns it does the work in its reactors.
#pragma once

#include <cstdint>

#include "foundations/records/RouteList.h"
#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/WalkSmBase.h"
#include "foundations/types/VrfName.h"

namespace Routing::Static {

class ViaReevaluateWalkSm : public Halyard::WalkSmBase {
 public:
  [[nodiscard]] static Quill::Ptr<ViaReevaluateWalkSm> ViaReevaluateWalkSmIs(
      Halyard::TaskScheduler* scheduler, Quill::String const& name, Quill::Ptr<RouteList const> routeList,
      Quill::Ptr<RouteList const> dynamicRouteList, L3::VrfName const& vrfName, Vrf::VrfIdMap::VrfId vrfId) {
    return Zel::make<ViaReevaluateWalkSm>(scheduler, name, std::move(routeList), std::move(dynamicRouteList),
                                          vrfName, vrfId);
  }

  ZEL_CONST(Quill::Ptr<RouteList const>, routeList)
  ZEL_CONST(Quill::Ptr<RouteList const>, dynamicRouteList)
  ZEL_CONST(L3::VrfName, vrfName)
  ZEL_CONST(Vrf::VrfIdMap::VrfId, vrfId)
  ZEL_ATTR(RouteKey, bookmark, 130)
  ZEL_ATTR_DEFAULT(bool, start, 131, true)
  // Whether the bookmark is in the dynamic list.
  ZEL_ATTR(bool, inDynamic, 132)
  ZEL_ATTR(std::uint32_t, reevaluatedRouteTrigger, 391)
  ZEL_ATTR(std::uint32_t, walkFinishedTrigger, 392)
  // The route being handled; valid during notification 391.
  [[nodiscard]] Quill::Ptr<Route const> const& reevaluatedRoute() const noexcept { return reevaluatedRoute_; }

  std::uint64_t walk() override;
  [[nodiscard]] bool allowWalkRestarts() const override { return true; }
  bool walkStartedNotification() override {
    startIs(true);
    return true;
  }
  void walkFinishedNotification() override { walkFinishedTriggerInc(1); }
  void traceEvent(char const*) override {}

 protected:
  friend struct Zel::Factory;
  ViaReevaluateWalkSm(Halyard::TaskScheduler* scheduler, Quill::String const& name,
                      Quill::Ptr<RouteList const> routeList, Quill::Ptr<RouteList const> dynamicRouteList,
                      L3::VrfName const& vrfName, Vrf::VrfIdMap::VrfId vrfId)
      : WalkSmBase(scheduler, 3, name),
        routeList_(std::move(routeList)),
        dynamicRouteList_(std::move(dynamicRouteList)),
        vrfName_(vrfName),
        vrfId_(vrfId) {}

 private:
  // Walks one list from the start or the bookmark; false when it yielded, with the bookmark set.
  [[nodiscard]] bool walkList(RouteList const& list, bool dynamic, std::uint64_t& count);

  Quill::Ptr<Route const> reevaluatedRoute_;
};

}  // namespace Routing::Static
