// The command tags of RouteConfigSm: whether a route's tag is enabled, the tagged-route machines
// of the static and dynamic lists and of each route-input user, and the reviews they ask for.
#include "static/RouteConfigSm.h"

#include "foundations/runtime/NotifyValues.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

// Statements of a machine that knows its VRF begin with "Vrf: ", the name and ", ".
#define RC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

// ---------------------------------------------------------------------------------------------
// Whether a command tag is enabled.

bool RouteConfigSm::checkCommandTagInEnabledStatus(ConfigTag::ConfigTagId tagId) const {
  if (!configTagIdState_ || !configTagStatus_) return true;
  Quill::String const name = configTagIdState_->tagIdToTagStr(tagId);
  auto entry = configTagStatus_->configTagEntry(name);
  if (!entry) return true;
  bool const enabled = entry->enabled();
  RC_TRACE(9, "checkCommandTagInEnabledStatus " << tagId << " " << enabled);
  return enabled;
}

// ---------------------------------------------------------------------------------------------
// Tagged configuration: the owner's side.

void RouteConfigSm::handleVrfTaggedConfig() {
  auto const& tagged = srTaggedConfig();
  if (!tagged || !tagged->vrfConfigHas(vrfName_)) return;
  vrfTaggedConfigHelper(vrfName_, nullptr, tagged->vrfConfig(vrfName_).get(), false);
}

void RouteConfigSm::handleVrfTaggedDynamicConfig() {
  auto const& tagged = srTaggedDynamicConfig();
  if (!tagged || !tagged->vrfConfigHas(vrfName_)) return;
  vrfTaggedConfigHelper(vrfName_, nullptr, tagged->vrfConfig(vrfName_).get(), true);
}

namespace {

// The former and the new entry of a VRF's tag index, from the change in progress.
std::pair<RouteListTaggedConfig const*, RouteListTaggedConfig const*> taggedChange(
    VrfRouteListTaggedConfig const* tagged) {
  auto const change = Zel::notifyValues<VrfRouteListTaggedConfig::RouteListTaggedConfigPtr>(
      static_cast<Zel::Entity const*>(tagged), VrfRouteListTaggedConfig::vrfConfigId);
  return {change.before ? change.before->get() : nullptr, change.after ? change.after->get() : nullptr};
}

}  // namespace

void RouteConfigSm::handleVrfTaggedConfig(L3::VrfName const& vrfName) {
  auto [prev, cur] = taggedChange(srTaggedConfig().get());
  vrfTaggedConfigHelper(vrfName, prev, cur, false);
}

void RouteConfigSm::handleVrfTaggedDynamicConfig(L3::VrfName const& vrfName) {
  auto [prev, cur] = taggedChange(srTaggedDynamicConfig().get());
  vrfTaggedConfigHelper(vrfName, prev, cur, true);
}

void RouteConfigSm::vrfTaggedConfigHelper(L3::VrfName const& vrfName, RouteListTaggedConfig const* prevTagColl,
                                          RouteListTaggedConfig const* curTagColl, bool dynamic) {
  if (vrfName != vrfName_) return;
  RC_TRACE(8, "vrfTaggedConfigHelper prevTagColl " << prevTagColl << " curTagColl " << curTagColl);
  char const* kind = dynamic ? " dynamic " : "";
  if (!prevTagColl && curTagColl) {
    RC_TRACE(2, "Creating taggedRouteConfigSm for vrf " << kind << vrfName);
    auto sm = TaggedRouteConfigSm::TaggedRouteConfigSmIs(vrfName, Quill::Ptr<RouteListTaggedConfig const>(curTagColl),
                                                         configTagStatus_, configTagIdState_, scheduler_);
    if (dynamic)
      taggedRouteDynamicConfigSmIs(sm);
    else
      taggedRouteConfigSmIs(sm);
    taggedWatchersIs();
  } else if (prevTagColl && !curTagColl) {
    reviewAllTaggedRoutesInVrf(*prevTagColl);
    RC_TRACE(2, "Deleting taggedRouteConfigSm for vrf " << kind << vrfName);
    if (dynamic)
      taggedRouteDynamicConfigSmDel();
    else
      taggedRouteConfigSmDel();
    taggedWatchersIs();
  }
}

void RouteConfigSm::taggedWatchersIs() {
  auto watch = [this](Quill::Ptr<ZelTaggedRouteConfigSm>& watcher, Quill::Ptr<TaggedRouteConfigSm> const& sm) {
    if (!sm) {
      watcher = nullptr;
      return;
    }
    if (!watcher) watcher = Zel::make<ZelTaggedRouteConfigSm>(this);
    watcher->notifierIs(sm);
  };
  watch(taggedRouteConfigSmWatcher_, taggedRouteConfigSm());
  watch(taggedRouteDynamicConfigSmWatcher_, taggedRouteDynamicConfigSm());
}

void RouteConfigSm::reviewAllTaggedRoutesInVrf(RouteListTaggedConfig const& taggedConfig) {
  for (auto tag = taggedConfig.tagToRouteKeySetIteratorConst(); tag; tag.advance()) {
    auto const& keys = tag.value();
    if (!keys) continue;
    for (auto it = keys->routeKeySetIteratorConst(); it; it.advance()) {
      RC_TRACE(6, "reviewAllTaggedRoutesInVrf Adding route " << it.key() << " to backlog");
      backlogIs(it.key());
    }
  }
  if (auto* task = routeReviewTask()) task->scheduleTask();
}

void RouteConfigSm::handleReviewBacklogTrigger() {
  if (auto* task = routeReviewTask()) task->scheduleTask();
}

void RouteConfigSm::handleReevaluatedKeyTrigger(TaggedRouteConfigSm const& sm) { backlogIs(sm.reevaluatedKey()); }

void RouteConfigSm::ZelTaggedRouteConfigSm::onAttribute(Zel::AttrId id, void const*) {
  if (parent_->zelMarkedForDeletion()) return;
  if (id == TaggedRouteConfigSm::reviewBacklogTriggerId) {
    parent_->handleReviewBacklogTrigger();
  } else if (id == TaggedRouteConfigSm::reevaluatedKeyTriggerId) {
    if (auto sm = notifier())
      parent_->handleReevaluatedKeyTrigger(*sm);
    else
      parent_->backlogIs(RouteKey());
  }
}

RouteConfigSm::RiZelTaggedConfig::RiZelTaggedConfig(RouteConfigSm* owner, Quill::String const& name,
                                                    Quill::Ptr<RouteListTaggedConfig const> const& config)
    : NestedSm(owner, name, config) {
  handleInitialized();
}

void RouteConfigSm::RiZelTaggedConfig::handleInitialized() {
  RouteConfigSm* parent = owner();
  taggedRouteConfigSm_ = TaggedRouteConfigSm::TaggedRouteConfigSmIs(
      parent->vrfName(), notifier(), parent->configTagStatus(), parent->configTagIdState(), parent->scheduler());
  watcher_ = Zel::make<ZelTaggedRouteConfigSm>(parent);
  watcher_->notifierIs(taggedRouteConfigSm_);
}

void RouteConfigSm::RiZelTaggedConfig::zelDoZombieReactors(bool marked) {
  if (watcher_) watcher_->zelDoZombieReactors(marked);
  if (taggedRouteConfigSm_) taggedRouteConfigSm_->zelDoZombieReactors(marked);
  NestedSm::zelDoZombieReactors(marked);
}

}  // namespace Routing::Static
