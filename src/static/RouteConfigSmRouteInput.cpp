// The route-input users of RouteConfigSm: the winner of a key among the users' routes, the user
// whose route is entered per key, and the watchers of each user's list and of its routes.
#include "static/RouteConfigSm.h"

#include "foundations/runtime/Trace.h"
#include "sipvalidation/SipValidationHelper.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

// Statements of a machine that knows its VRF begin with "Vrf: ", the name and ", ".
#define RC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

// ---------------------------------------------------------------------------------------------
// The winner of a key.

RouteConfigSm::RouteConstPtr RouteConfigSm::riRouteFromConfig(RouteKey const& key, Quill::String* user) const {
  auto const& users = riConfigByUser();
  if (!users) return nullptr;
  // Every user is looked at: the winner is the first in Input::userBefore's order, not in the
  // collection's.
  RouteConstPtr best;
  Quill::String bestUser;
  for (auto it = users->configIteratorConst(); it; it.advance()) {
    if (best && !Input::userBefore(it.key(), bestUser)) continue;
    auto zelConfig = riConfig(it.key());
    if (!zelConfig) continue;
    auto input = zelConfig->notifier();
    if (!input) continue;
    RouteConstPtr route = input->route(key);
    if (!route || !checkCommandTagInEnabledStatus(route->commandTagId())) continue;
    best = route;
    bestUser = it.key();
  }
  if (best) RC_TRACE(9, "riRouteFromConfig userConfig: " << bestUser);
  if (user) *user = bestUser;
  return best;
}

void RouteConfigSm::riProgrammedUserIs(RouteKey const& key, Quill::String const& user) {
  if (Quill::String const* former = riProgrammedUser_.find(key)) {
    if (*former == user) return;
    RC_TRACE(6, "riProgrammedUserIs " << key << " passes from user " << *former << " to user " << user);
    handleRouteKeyDelete(key);  // the former winner's vias and attributes go with its entry
  }
  riProgrammedUser_.tryEmplace(key, user);
}

bool RouteConfigSm::riProgrammedUserHas(RouteKey const& key, Quill::String const& user) const {
  Quill::String const* programmed = riProgrammedUser_.find(key);
  return programmed && *programmed == user;
}

// ---------------------------------------------------------------------------------------------
// Route-input users.

void RouteConfigSm::handleConfigByUser(Quill::String const& name) {
  auto const& users = riConfigByUser();
  auto input = users ? users->config(name) : nullptr;
  auto const former = riConfig(name);
  if (former && former->notifier() == input) return;
  // A list that replaces another one of the name goes out as a removed list first.
  if (former) riConfig_.del(name);
  if (!input) return;
  riConfig_.is(name, input);
  // A list that comes with routes: each key is reviewed, as if its routes had come one by one.
  for (auto it = input->routeIteratorConst(); it; it.advance()) handleRoute(it.key());
}

void RouteConfigSm::handleConfigTaggedByUser(Quill::String const& name) {
  auto const& users = riConfigTaggedByUser();
  auto config = users ? users->config(name) : nullptr;
  if (config)
    riTaggedConfig_.is(name, config);
  else
    riTaggedConfig_.del(name);
}

// ---------------------------------------------------------------------------------------------
// The watchers of a user's list.

RouteConfigSm::RiZelConfig::RiZelConfig(RouteConfigSm* owner, Quill::String const& name,
                                        Quill::Ptr<RouteInput const> const& input)
    : NestedSm(owner, name, input) {
  handleInitialized();
  for (auto it = input->routeIteratorConst(); it; it.advance()) route_.is(it.key(), it.value());
}

void RouteConfigSm::RiZelConfig::handleInitialized() {
  TRACE(8, "Vrf: " << owner()->vrfName() << ", RiZelConfig::handleInitialized " << key());
  sipValidationHelper_ = SipValidationHelper::SipValidationHelperIs(
      owner()->scheduler(), owner()->vtepSipValidationStatus(), Quill::Ptr<RouteList const>(notifier()));
}

void RouteConfigSm::RiZelConfig::onAttribute(Zel::AttrId id, void const* key) {
  RouteConfigSm* parent = owner();
  auto input = notifier();
  if (!input || parent->zelMarkedForDeletion()) return;
  if (id == RouteInput::routeId) {
    RouteKey const routeKey = *static_cast<RouteKey const*>(key);
    // A route replaced by another of the same key (or removed) takes its vias out now: the review
    // of the key only enters what the current route has.
    auto const former = route_.get(routeKey);
    if (former && former->notifier() && former->notifier() != input->route(routeKey) &&
        parent->riProgrammedUserHas(routeKey, this->key())) {
      parent->handleRouteKeyDelete(routeKey);
    }
    parent->handleRoute(routeKey);
    if (sipValidationHelper_) sipValidationHelper_->handleSipValidationRoute(routeKey, true);
    if (auto route = input->route(routeKey))
      route_.is(routeKey, route);
    else
      route_.del(routeKey);
  } else if (id == RouteInput::installInFibId) {
    handleInstall();
  }
}

void RouteConfigSm::RiZelConfig::handleInstall() {
  auto input = notifier();
  TRACE(8, "Vrf: " << owner()->vrfName() << ", RiZelConfig::handleInstall installInFib: "
                   << (input && input->installInFib()));
  for (auto it = route_.map().iterator(); it; it.advance()) owner()->handleRoute(it.key());
}

void RouteConfigSm::RiZelConfig::handleRouteCommandTagId(Route const& route) {
  TRACE(8, "Vrf: " << owner()->vrfName() << ", RiZelConfig::handleRouteCommandTagId " << route.key());
  owner()->handleRoute(route.key());
}

void RouteConfigSm::RiZelConfig::handleUserDelete() {
  for (auto it = route_.map().iterator(); it; it.advance()) {
    auto nested = it.value();
    if (owner()->riProgrammedUserHas(it.key(), key())) owner()->handleRouteKeyDelete(it.key());
    // Another user may configure the same key: the review of the key puts its route back.
    owner()->handleRoute(it.key());
    if (sipValidationHelper_ && nested->notifier())
      sipValidationHelper_->doRouteVtepSipValidationDelete(*nested->notifier());
  }
}

void RouteConfigSm::RiZelConfig::zelDoZombieReactors(bool marked) {
  if (marked && !zelMarkedForDeletion()) handleUserDelete();
  NestedSm::zelDoZombieReactors(marked);
}

void RouteConfigSm::RiZelConfig::NestedSm_Route::onAttribute(Zel::AttrId id, void const* key) {
  RiZelConfig* config = owner();
  RouteConfigSm* parent = config->owner();
  auto route = notifier();
  if (!route || config->zelMarkedForDeletion() || parent->zelMarkedForDeletion()) return;
  if (!parent->riProgrammedUserHas(route->key(), config->key())) {
    // Another user's route holds the key, or its review is pending: the review decides. The VTEP
    // count follows every user's vias.
    auto const& helper = config->sipValidationHelper();
    if (helper && (id == Route::viaId || id == Route::bfdTrackedId)) {
      Via const& via = *static_cast<Via const*>(key);
      helper->maybeUpdateVtepSipValidation(*route, via, route->viaHas(via));
    }
    parent->handleRoute(route->key());
    return;
  }
  if (id == Route::commandTagIdId) {
    config->handleRouteCommandTagId(*route);
  } else if (parent->handleRouteAttributeChange(*route, id, true)) {
    return;
  } else if (id == Route::viaId || id == Route::bfdTrackedId) {
    parent->handleRouteVia(*route, *static_cast<Via const*>(key), config->notifier().get(),
                           config->sipValidationHelper().get());
  }
}

}  // namespace Routing::Static
