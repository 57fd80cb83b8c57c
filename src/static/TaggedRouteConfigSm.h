// The command-tag machine of one VRF's route list: it watches the list's index from tag names to
// route keys and the tags' states, and tells its owner which route keys to review: each key on
// reevaluatedKey with reevaluatedKeyTrigger (149), then one reviewBacklogTrigger (148). Tags wait
// in a backlog ("taggedRouteTask_" and the VRF name). Owned by the RouteConfigSm of the VRF.
#pragma once

#include <cstdint>

#include "foundations/records/ConfigTag.h"
#include "foundations/records/RouteKey.h"
#include "foundations/records/RouteKeySet.h"
#include "foundations/records/RouteListTaggedConfig.h"
#include "foundations/runtime/Backlog.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/TaskMember.h"
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

  // One tag's route keys: a new key is reviewed alone.
  class NestedSm_TagToRouteKeySet : public Zel::NestedSm<TaggedRouteConfigSm, Zel::String, RouteKeySet> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };
  // One tag's state.
  class NestedSm_ConfigTag : public Zel::NestedSm<TaggedRouteConfigSm, Zel::String, ConfigTag::ConfigTagEntry> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };

  void handleInitialized();
  void handleTagToRouteKeySet(Zel::String const& tag);
  void handleConfigTagEntry(Zel::String const& tag);
  void handleConfigTagId(ConfigTag::ConfigTagId const& id);
  void handleOperState(Zel::String const& tag) { handleConfigTagEntry(tag); }
  void handleRouteKey(RouteKey const& key);
  void handleTaskRun();
  void reviewRoutesForTag(Zel::String const& tag);
  void tagToRouteKeySetHelper(Zel::String const& tag, RouteKeySet const* prev, RouteKeySet const* cur);

  ZEL_CONST(L3::VrfName, vrfName)
  ZEL_NESTED(Zel::String, NestedSm_TagToRouteKeySet, tagToRouteKeySet)
  ZEL_NESTED(Zel::String, NestedSm_ConfigTag, configTag)
  using TaggedReactors = Zel::Reactors<
      Zel::On<RouteListTaggedConfig::tagToRouteKeySetId, &TaggedRouteConfigSm::handleTagToRouteKeySet>,
      Zel::Reconcile<RouteListTaggedConfig::tagToRouteKeySetId, &TaggedRouteConfigSm::tagToRouteKeySet_>>;
  ZEL_INPUT(RouteListTaggedConfig, taggedConfigForVrf, TaggedReactors)
  using TagStatusReactors = Zel::Reactors<
      Zel::On<ConfigTag::ConfigTagStatus::configTagEntryId, &TaggedRouteConfigSm::handleConfigTagEntry>,
      Zel::Reconcile<ConfigTag::ConfigTagStatus::configTagEntryId, &TaggedRouteConfigSm::configTag_>>;
  ZEL_INPUT(ConfigTag::ConfigTagStatus, configTagStatus, TagStatusReactors)
  using TagIdReactors =
      Zel::Reactors<Zel::On<ConfigTag::ConfigTagIdState::tagIdToTagStrId, &TaggedRouteConfigSm::handleConfigTagId>>;
  ZEL_INPUT(ConfigTag::ConfigTagIdState, configTagIdState, TagIdReactors)
  ZEL_BACKLOG(Zel::String, backlog)
  ZEL_TASK(task, handleTaskRun)
  ZEL_ATTR(std::uint32_t, reviewBacklogTrigger, 148)
  ZEL_ATTR(std::uint32_t, reevaluatedKeyTrigger, 149)
  ZEL_ATTR(RouteKey, reevaluatedKey, 150)
  ZEL_ATTR(bool, initialized, 151)
  [[nodiscard]] Halyard::TaskScheduler* scheduler() const noexcept { return scheduler_; }

 protected:
  friend struct Zel::Factory;
  TaggedRouteConfigSm(L3::VrfName const& vrfName, Quill::Ptr<RouteListTaggedConfig const> taggedConfigForVrf,
                      Quill::Ptr<ConfigTag::ConfigTagStatus const> configTagStatus,
                      Quill::Ptr<ConfigTag::ConfigTagIdState const> configTagIdState, Halyard::TaskScheduler* scheduler);

 private:
  // Hands one key to the owner (149).
  void reevaluatedKeyIsAndTrigger(RouteKey const& key);

  Halyard::TaskScheduler* scheduler_;
};

}  // namespace Routing::Static
