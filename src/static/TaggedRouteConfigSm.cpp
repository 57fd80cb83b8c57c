#include "static/TaggedRouteConfigSm.h"

#include "foundations/runtime/NotifyValues.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

#define TR_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

TaggedRouteConfigSm::TaggedRouteConfigSm(L3::VrfName const& vrfName,
                                         Quill::Ptr<RouteListTaggedConfig const> taggedConfigForVrf,
                                         Quill::Ptr<ConfigTag::ConfigTagStatus const> configTagStatus,
                                         Quill::Ptr<ConfigTag::ConfigTagIdState const> configTagIdState,
                                         Halyard::TaskScheduler* scheduler)
    : vrfName_(vrfName), scheduler_(scheduler) {
  // The watchers of the index and of the tags are built as the inputs are set; they only watch.
  taggedConfigForVrfIs(std::move(taggedConfigForVrf));
  configTagStatusIs(std::move(configTagStatus));
  configTagIdStateIs(std::move(configTagIdState));
  handleInitialized();
}

void TaggedRouteConfigSm::handleInitialized() {
  TR_TRACE(8, "TaggedRouteConfigSm::handleInitialized");
  taskIs(scheduler_, 3, Quill::String(std::string("taggedRouteTask_") + std::string(vrfName_.view())));
  initializedIs(true);
}

void TaggedRouteConfigSm::handleConfigTagEntry(Zel::String const& tag) {
  TR_TRACE(8, "handleConfigTagEntry " << tag);
  if (!configTagStatus() || !configTagStatus()->configTagEntryHas(tag)) return;
  TR_TRACE(8, "Adding tag to backlog: " << tag);
  backlogIs(tag);
  if (auto* t = task()) t->scheduleTask();
}

void TaggedRouteConfigSm::handleConfigTagId(ConfigTag::ConfigTagId const& id) {
  TR_TRACE(8, "cmdTagId: " << id);
  // A tag whose id became known after its status.
  if (!configTagIdState() || !configTagIdState()->tagIdToTagStrHas(id)) return;
  Zel::String const name = configTagIdState()->tagIdToTagStr(id);
  if (!name.empty()) handleConfigTagEntry(name);
}

void TaggedRouteConfigSm::handleTaskRun() {
  if (!initialized()) return;
  auto progress = backlogRun(*task(), [this](Zel::String const& tag) { reviewRoutesForTag(tag); });
  TR_TRACE(9, "TaggedRouteConfigSm::handleTaskRun " << progress);
}

void TaggedRouteConfigSm::reviewRoutesForTag(Zel::String const& tag) {
  TR_TRACE(8, "reviewRoutesForTag " << tag);
  Quill::Ptr<RouteKeySet> keys;
  if (taggedConfigForVrf()) keys = taggedConfigForVrf()->tagToRouteKeySet(tag);
  tagToRouteKeySetHelper(tag, keys.get(), nullptr);
}

void TaggedRouteConfigSm::handleTagToRouteKeySet(Zel::String const& tag) {
  TR_TRACE(8, "handleTagToRouteKeySet " << tag);
  auto const change = Zel::notifyValues<RouteListTaggedConfig::RouteKeySetPtr>(
      static_cast<Zel::Entity const*>(taggedConfigForVrf().get()), RouteListTaggedConfig::tagToRouteKeySetId);
  RouteKeySet const* prev = change.before ? change.before->get() : nullptr;
  RouteKeySet const* cur = change.after ? change.after->get() : nullptr;
  tagToRouteKeySetHelper(tag, prev, cur);
}

void TaggedRouteConfigSm::tagToRouteKeySetHelper(Zel::String const& tag, RouteKeySet const* prev,
                                                 RouteKeySet const* cur) {
  // Of the two sets the one that exists is walked; with both or neither, nothing.
  RouteKeySet const* keys = (prev && !cur) ? prev : (cur && !prev) ? cur : nullptr;
  if (!keys) return;
  TR_TRACE(8, "tagToRouteKeySetHelper " << tag);
  for (auto it = keys->routeKeySetIteratorConst(); it; it.advance()) reevaluatedKeyIsAndTrigger(it.key());
  reviewBacklogTriggerInc(1);
}

void TaggedRouteConfigSm::handleRouteKey(RouteKey const& key) {
  reevaluatedKeyIsAndTrigger(key);
  reviewBacklogTriggerInc(1);
}

void TaggedRouteConfigSm::reevaluatedKeyIsAndTrigger(RouteKey const& key) {
  TR_TRACE(8, "Adding routeKey for review: " << key);
  reevaluatedKeyIs(key);
  reevaluatedKeyTriggerInc(1);
}

void TaggedRouteConfigSm::NestedSm_TagToRouteKeySet::onAttribute(Zel::AttrId id, void const* key) {
  if (id != RouteKeySet::routeKeySetId || owner()->zelMarkedForDeletion()) return;
  owner()->handleRouteKey(*static_cast<RouteKey const*>(key));
}

void TaggedRouteConfigSm::NestedSm_ConfigTag::onAttribute(Zel::AttrId id, void const*) {
  if (id != ConfigTag::ConfigTagEntry::operStateId || owner()->zelMarkedForDeletion()) return;
  owner()->handleOperState(key());
}

}  // namespace Routing::Static
