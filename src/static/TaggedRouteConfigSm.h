// The command-tag machine of one VRF's route list: it will watch the tag index of the list and the
// tags' states, and tell its owner which route keys to review (reevaluatedKeyTrigger with
// reevaluatedKey, then reviewBacklogTrigger). For now it holds its inputs and its triggers and
// raises nothing, so a tag change reaches the routes only with a review of all routes. Owned by
// the RouteConfigSm of the VRF.
#pragma once

#include <cstdint>

#include "foundations/records/ConfigTag.h"
#include "foundations/records/RouteKey.h"
#include "foundations/records/RouteListTaggedConfig.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/TaskScheduler.h"
#include "foundations/types/VrfName.h"

namespace Routing::Static {

class TaggedRouteConfigSm : public Zel::StateMachine<TaggedRouteConfigSm> {
 public:
  [[nodiscard]] static Quill::Ptr<TaggedRouteConfigSm> TaggedRouteConfigSmIs(
      L3::VrfName const& vrfName, Quill::Ptr<RouteListTaggedConfig const> taggedConfigForVrf,
      Quill::Ptr<ConfigTag::ConfigTagStatus const> configTagStatus,
      Quill::Ptr<ConfigTag::ConfigTagIdState const> configTagIdState, Halyard::TaskScheduler* scheduler) {
    return Zel::make<TaggedRouteConfigSm>(vrfName, std::move(taggedConfigForVrf), std::move(configTagStatus),
                                          std::move(configTagIdState), scheduler);
  }
  ZEL_CONST(L3::VrfName, vrfName)
  ZEL_CONST(Quill::Ptr<RouteListTaggedConfig const>, taggedConfigForVrf)
  ZEL_CONST(Quill::Ptr<ConfigTag::ConfigTagStatus const>, configTagStatus)
  ZEL_CONST(Quill::Ptr<ConfigTag::ConfigTagIdState const>, configTagIdState)
  ZEL_ATTR(std::uint32_t, reviewBacklogTrigger, 148)
  ZEL_ATTR(std::uint32_t, reevaluatedKeyTrigger, 149)
  ZEL_ATTR(RouteKey, reevaluatedKey, 150)
  ZEL_ATTR(bool, initialized, 151)
  [[nodiscard]] Halyard::TaskScheduler* scheduler() const noexcept { return scheduler_; }

 protected:
  friend struct Zel::Factory;
  TaggedRouteConfigSm(L3::VrfName const& vrfName, Quill::Ptr<RouteListTaggedConfig const> taggedConfigForVrf,
                      Quill::Ptr<ConfigTag::ConfigTagStatus const> configTagStatus,
                      Quill::Ptr<ConfigTag::ConfigTagIdState const> configTagIdState, Halyard::TaskScheduler* scheduler)
      : vrfName_(vrfName),
        taggedConfigForVrf_(std::move(taggedConfigForVrf)),
        configTagStatus_(std::move(configTagStatus)),
        configTagIdState_(std::move(configTagIdState)),
        scheduler_(scheduler) {
    initializedIs(true);
  }

 private:
  Halyard::TaskScheduler* scheduler_;
};

}  // namespace Routing::Static
