// RouteConfigSm: construction and teardown, the reactors of the route lists and settings, and
// what one configured route writes into the status store (its entry, attributes, tag and the
// global preference's moves) or takes out of it.
#include "static/RouteConfigSm.h"

#include <algorithm>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Flit.h"
#include "foundations/runtime/Trace.h"
#include "routecache/RouteCacheRouteHelperSm.h"
#include "sipvalidation/SipValidationHelper.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

// Statements of a machine that knows its VRF begin with "Vrf: ", the name and ", ".
#define RC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

// ---------------------------------------------------------------------------------------------
// Construction and teardown.

RouteConfigSm::RouteConfigSm(Inputs const& in)
    : StateMachine() ROUTE_CONFIG_SM_INPUTS(ZEL_INPUTS_INIT),
      vrfName_(in.containerKey.vrfName()),
      interVrfRoutes_(in.allEgressVrfIntfStatusHelperSm, this, in.containerKey.af(), vrfName_, in.routingProtocol) {
  globalPrefIs(in.routingGeneralConfig ? in.routingGeneralConfig->staticRoutePreference() : RoutePreference());
  // The inputs; a list's nested watchers are built as the list is set (they do nothing until
  // something changes). The users' collections come after initialization.
  ROUTE_CONFIG_SM_INPUTS(ZEL_INPUTS_SET)
  handleInitialized();
  handleVrfTaggedConfig();
  handleVrfTaggedDynamicConfig();
  riConfigTaggedByUserIs(in.riConfigTaggedByUser);
  if (auto const& users = riConfigTaggedByUser()) {
    for (auto it = users->configIteratorConst(); it; it.advance()) handleConfigTaggedByUser(it.key());
  }
  riConfigByUserIs(in.riConfigByUser);
  if (auto const& users = riConfigByUser()) {
    // Their routes are in the review of all routes that handleInitialized scheduled.
    for (auto it = users->configIteratorConst(); it; it.advance()) riConfig_.is(it.key(), it.value());
  }
}

RouteConfigSm::~RouteConfigSm() = default;

void RouteConfigSm::zelDoZombieReactors(bool marked) {
  bool const deleting = marked && !zelMarkedForDeletion();
  StateMachine::zelDoZombieReactors(marked);
  // After the nested delete handlers, before the members go: the destructor itself does nothing.
  if (deleting) handleBaseDel();
}

void RouteConfigSm::handleBaseDel() {
  RC_TRACE(8, "handleBaseDel");
  interVrfRoutes_.unregisterAll();
  if (routeCacheRouteHelperSm_) routeCacheRouteHelperSm_->routeConfigSmCollDel(containerKey_);
}

void RouteConfigSm::handleInitialized() {
  RC_TRACE(8, "handleInitialized");
  if (isStaticMode() && vrfReadyStatus_) {
    QUILL_ASSERT(containerKey_.vrfName() == vrfReadyStatus_->vrfName(),
                 "containerKey().vrfName() == vrfReadyStatus()->vrfName()");
  }
  nhgNameRouteKeyMapIs(NexthopGroup::NhgNameRouteKeyMap::NhgNameRouteKeyMapIs());
  routeReviewTaskIs(scheduler_, 3, "routeReview");
  reviewAllRoutesTaskIs(scheduler_, 3, "reviewAllRoutes");
  if (routeCacheRouteHelperSm_) routeCacheRouteHelperSm_->routeConfigSmCollIs(containerKey_, this);
  if (isStaticMode()) {
    auto walk = ViaReevaluateWalkSm::ViaReevaluateWalkSmIs(scheduler_, "viaReevaluateWalkSm", srConfig(),
                                                           srConfigDynamic(), vrfName_, vrfId_);
    viaReevaluateWalkSmIs(walk);
    viaReevaluateWalkSmInputIs(walk);
    sipValidationHelper_ = SipValidationHelper::SipValidationHelperIs(scheduler_, vtepSipValidationStatus_,
                                                                     srConfigDynamic(), srConfig());
  }
  initializedIs(true);
  RC_TRACE(1, " Initialized --> True");
  handleVrfNameStatus();
  if (ipViaConfig_) ipViaConfig_->restartingVrfIs(vrfId_);
  if (evpnViaConfig_) evpnViaConfig_->restartingVrfIs(vrfId_);
  maybeSetRoutesReady();
  handleRoutes();
}

void RouteConfigSm::handleVrfNameStatus() {
  if (!initialized()) return;
  auto const& wrapper = vrfNameStatus();
  vrfNameToIdMapIs(wrapper ? Quill::Ptr<Vrf::VrfIdMap::NameToIdMap const>(wrapper->nameToIdMap()) : nullptr);
}

// ---------------------------------------------------------------------------------------------
// Reactors of the route lists.

void RouteConfigSm::handleSrConfigRoute(RouteKey const& key) {
  handleRoute(key);
  if (auto const& helper = sipValidationHelper()) helper->handleSipValidationRoute(key, false);
}

void RouteConfigSm::handleSrConfigDynamicRoute(RouteKey const& key) {
  handleRouteDynamic(key);
  if (auto const& helper = sipValidationHelper()) helper->handleSipValidationRoute(key, true);
}

void RouteConfigSm::handleRoute(RouteKey const& key) {
  RC_TRACE(9, "handleRoute " << key);
  backlogIs(key);
  if (auto* task = routeReviewTask()) task->scheduleTask();
}

void RouteConfigSm::handleRouteDynamic(RouteKey const& key) {
  if (srConfig() && srConfig()->routeHas(key)) {
    RC_TRACE(6, "handleRouteDynamic Skipping dynamic route " << key);
    FLIT(6, "RouteConfigSm, handleRoute( key ) skipping route {}", key);
    return;
  }
  RC_TRACE(6, "handleRouteDynamic Adding route " << key << " to backlog");
  FLIT(6, "RouteConfigSm, handleRoute( key ) adding route {} to backlog ", key);
  backlogIs(key);
  if (auto* task = routeReviewTask()) task->scheduleTask();
}

void RouteConfigSm::handleGrState() {
  if (auto* task = reviewAllRoutesTask()) task->scheduleTask();
}

void RouteConfigSm::handleStaticRoutePreference() {
  auto const& config = routingGeneralConfig();
  globalPrefIs(config ? config->staticRoutePreference() : RoutePreference());
}

// ---------------------------------------------------------------------------------------------
// Programming a route.

Fib::RouteType RouteConfigSm::fibRouteType(RouteType routeType) {
  switch (routeType) {
    case RouteType::forward:
      return 7;
    case RouteType::drop:
      return 29;
    case RouteType::nexthopGroup:
      return 28;
    case RouteType::l2NexthopGroup:
      return 0;
    case RouteType::dropWithIndication:
      return 40;
  }
  return 0;
}

Fib::RouteType RouteConfigSm::fibRouteTypeFromRoutingProtocol(std::uint8_t routingProto) {
  switch (routingProto) {
    case 2:
      return 9;
    case 4:
      return 44;
    case 16:
      return 35;
    case 48:
      return 8;
    case 49:
      return 5;
    case 52:
      return 37;
    case 53:
      return 6;
    case 57:
      return 39;
    case 60:
      return 36;
    case 71:
      return 5;
    default:
      return 0;
  }
}

bool RouteConfigSm::sendToCpu(Route const& route) {
  static Ondex::IpGenPrefix const v4 = *Ondex::IpGenPrefix::fromString("127.0.0.0/8");
  static Ondex::IpGenPrefix const v6 = *Ondex::IpGenPrefix::fromString("::ffff:127.0.0.0/104");
  Ondex::IpGenPrefix const& prefix = route.key().prefix();
  return prefix == v4 || prefix == v6;
}

void RouteConfigSm::handleRouteInit(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId) {
  RC_TRACE(8, "handleRouteInit " << route.key() << " srcVrfId " << srcVrfId);
  if (!checkCommandTagInEnabledStatus(route.commandTagId())) {
    handleRouteDelete(route, false);
    return;
  }
  if (handleRouteInitForRouteCache(route)) return;
  auto routePref = routePrefIs(route, srcVrfId);
  Fib::RouteType type;
  if (isStaticMode()) {
    type = fibRouteType(route.routeType());
  } else {
    RouteInput const* input = route.parent() ? route.parent()->routeInput() : nullptr;
    if (input) routePref->installInFibIs(input->installInFib());
    if (route.routeType() == RouteType::nexthopGroup)
      type = 28;
    else
      type = fibRouteTypeFromRoutingProtocol(input ? input->routingProto() : 0);
  }
  routePref->fibRouteTypeIs(type);
  if (type == 36 && routingProtocol_ == Rib::RoutingProtocol::routeInput()) {
    bool const toCpu = sendToCpu(route);
    if (toCpu || route.routeType() == RouteType::forward) routePref->fecTypeIs(toCpu ? 6 : 2);
  }
  handleRouteAttributes(route, srcVrfId);
  handleTag(route, srcVrfId);
  handleVias(route, srcVrfId, false);
  if (isStaticMode()) routePrefAdjustToGlobalPref(route);
  handleRouteNexthopGroupAttributes(route, srcVrfId);
  // Last, so that the review sees the route whole.
  if (auto statusRoute = status_->route(route.key().prefix())) statusRoute->routeChangedVersionInc(1);
}

Quill::Ptr<Protocol::RoutePref> RouteConfigSm::routePrefIs(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId) {
  Ondex::IpGenPrefix const& prefix = route.key().prefix();
  auto statusRoute = status_->route(prefix);
  if (statusRoute) {
    QUILL_ASSERT(statusRoute->srcVrfId() == srcVrfId, "statusRoute->srcVrfId() == srcVrfId");
  } else {
    statusRoute = status_->routeIs(prefix);
    statusRoute->srcVrfIdIs(srcVrfId);
  }
  RoutePreference pref = route.key().preference();
  if (routingProtocol_ != Rib::RoutingProtocol::routeInput() && srEntryPref(route.key()) != pref) {
    pref = globalPref();
    RC_TRACE(9, "routePrefIs Add globalPref  " << pref);
  } else {
    RC_TRACE(9, "routePrefIs Add rtPref " << pref);
  }
  return statusRoute->routePrefIs(pref);
}

void RouteConfigSm::handleRouteAttributes(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId) {
  auto routePref = routePrefIs(route, srcVrfId);
  if (route.routeAttributes()) routePref->routeAttributesIs(route.routeAttributes());
}

void RouteConfigSm::handleTag(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId) {
  routePrefIs(route, srcVrfId)->tagIs(route.tag());
}

void RouteConfigSm::handleVias(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId, bool ecmpStateChanged) {
  auto routePref = routePrefIs(route, srcVrfId);
  Rib::ViaContent content;
  if (route.routeType() == RouteType::drop) {
    content.intfIdIs(Ondex::IntfId::null0());
  } else if (route.routeType() == RouteType::dropWithIndication && isStaticMode()) {
    content.intfIdIs(Ondex::IntfId::null0());
    routePref->fecTypeIs(9);
    content.flagsIs(content.flags() | Rib::ViaContent::kFlagDrop);
  } else if (sendToCpu(route)) {
    content.flagsIs(content.flags() | Rib::ViaContent::kFlagToCpu);
  } else {
    for (auto it = route.viaIteratorConst(); it; it.advance()) {
      Via const via = it.key();
      handleVia(route, via, srcVrfId, ecmpStateChanged, it.value().weight(), std::nullopt);
    }
    return;
  }
  auto viaKey = ipViaConfig_->dedupViaIs(content, vrfId_);
  RC_TRACE(6, "handleVias, Adding Via " << viaKey->viaKey() << ", NextHop: " << content.nextHop()
                                        << ", Intf: " << content.intfId());
  routePref->dedupViaKeyIs(Protocol::viaDefault, viaKey, 0);
}

void RouteConfigSm::routePrefAdjustToGlobalPref(Route const& route) {
  RouteKey const& key = route.key();
  auto statusRoute = status_->route(key.prefix());
  if (!statusRoute) return;
  RoutePreference const pref = key.preference();
  for (RoutePreference const former : formerGlobalPrefs_) {
    if (former == RoutePreference() || former == pref || former == globalPref()) continue;
    // A route of explicit preference leaves another configured route's entry to that route.
    if (pref != RoutePreference() && srEntryOwner(key.prefix(), former)) continue;
    RC_TRACE(6, "routePrefAdjustToGlobalPref Del former globalPref " << former);
    if (statusRoute->routePrefDel(former)) srReviewEntryOwner(key.prefix(), former, key);
  }
  if (globalPref() == RoutePreference()) return;
  if (pref == RoutePreference()) {
    RC_TRACE(6, "routePrefAdjustToGlobalPref Del defaultPref ");
    statusRoute->routePrefDel(RoutePreference());
  } else if (pref == globalPref() || !srEntryOwner(key.prefix(), globalPref())) {
    // Also when the route's own preference equals the global one: the cases are not told apart.
    // A route of the prefix configured without a preference keeps its entry at the global one.
    RC_TRACE(6, "routePrefAdjustToGlobalPref Del globalPref " << globalPref());
    if (statusRoute->routePrefDel(globalPref())) srReviewEntryOwner(key.prefix(), globalPref(), key);
  }
}

RoutePreference RouteConfigSm::srEntryPref(RouteKey const& key) const {
  return key.preference() == RoutePreference() && globalPref() != RoutePreference() ? globalPref() : key.preference();
}

bool RouteConfigSm::viasFixedByType(Route const& route) const {
  return route.routeType() == RouteType::drop ||
         (route.routeType() == RouteType::dropWithIndication && isStaticMode()) || sendToCpu(route);
}

bool RouteConfigSm::srAtGlobalPrefExplicitly(RouteKey const& key) const {
  return globalPref() != RoutePreference() && key.preference() == globalPref();
}

std::optional<RouteKey> RouteConfigSm::srEntryOwner(Ondex::IpGenPrefix const& prefix, RoutePreference entry) const {
  RouteKey owner(prefix, entry);
  if (globalPref() != RoutePreference()) {
    if (entry == RoutePreference()) return std::nullopt;  // nobody lives at 1 then
    if (entry == globalPref()) owner = RouteKey(prefix, RoutePreference());
  }
  bool const configured =
      (srConfig() && srConfig()->routeHas(owner)) || (srConfigDynamic() && srConfigDynamic()->routeHas(owner));
  return configured ? std::optional<RouteKey>(owner) : std::nullopt;
}

void RouteConfigSm::srReviewEntryOwner(Ondex::IpGenPrefix const& prefix, RoutePreference entry, RouteKey const& self) {
  auto const owner = srEntryOwner(prefix, entry);
  if (!owner || *owner == self) return;
  RC_TRACE(6, "srReviewEntryOwner " << *owner << " enters its entry again after " << self);
  handleRoute(*owner);
}

void RouteConfigSm::globalPrefIs(RoutePreference pref) {
  if (pref == globalPref()) return;
  RoutePreference const former = globalPref();
  globalPref_.set(*this, globalPrefId, pref);
  handleGlobalPreference(former);
}

void RouteConfigSm::handleGlobalPreference(RoutePreference former) {
  if (!initialized()) return;
  // Two changes before one review: routes may still be at either former value.
  if (std::find(formerGlobalPrefs_.begin(), formerGlobalPrefs_.end(), former) == formerGlobalPrefs_.end())
    formerGlobalPrefs_.push_back(former);
  RC_TRACE(8, "handleGlobalPreference former globalPref " << former << " globalPref " << globalPref());
  handleRoutes();
}

// ---------------------------------------------------------------------------------------------
// Taking a route out.

void RouteConfigSm::handleRouteDelete(Route const& route, bool leaked) {
  if (isStaticMode())
    srHandleRouteDelete(route, leaked);
  else
    riHandleRouteDelete(route);
}

void RouteConfigSm::srHandleRouteDelete(Route const& route, bool leaked) {
  if (!initialized()) return;
  RouteKey const key = route.key();
  RC_TRACE(8, "srHandleRouteDelete " << key << (leaked ? " leaked" : ""));
  if (handleRouteDeleteFromRouteCache(route)) {
    if (!leaked && srConfigDynamic() && srConfigDynamic()->routeHas(key)) {
      RC_TRACE(6, "deleting a route from srConfig() that is also in configDynamic");
      handleRoute(key);
    }
    return;
  }
  if (leaked && !leakRouteInUseHas(key)) return;
  interVrfRoutes_.routeDel(route);
  if (auto statusRoute = status_->route(key.prefix())) {
    RoutePreference const pref = srEntryPref(key);
    if (statusRoute->routePrefDel(pref)) srReviewEntryOwner(key.prefix(), pref, key);
    if (key.preference() == RoutePreference()) {
      // Gone before the review that follows a change of the global preference moved it: its entry
      // at 1 or at the former global preference stays otherwise.
      auto const leftBehind = [&](RoutePreference former) {
        if (former != pref && statusRoute->routePrefDel(former)) srReviewEntryOwner(key.prefix(), former, key);
      };
      leftBehind(RoutePreference());
      for (RoutePreference const former : formerGlobalPrefs_) leftBehind(former);
    }
    if (!statusRoute->routePrefSize()) {
      RC_TRACE(6, "srHandleRouteDelete Deleting route " << key.prefix());
      status_->routeDel(key.prefix());
    }
  }
  if ((srConfig() && srConfig()->routeHas(key)) || (srConfigDynamic() && srConfigDynamic()->routeHas(key))) return;
  // A key under review has left the live backlog already.
  if (backlogHas(key)) backlogDel(key);
  if (!leaked) {
    nhgNameRouteKeyMap()->deleteNhgNameRouteKeyMap(key, route.nexthopGroupName());
    handleRoute(key);  // a leaked route of the key may take over
  }
}

void RouteConfigSm::riHandleRouteDelete(Route const& route) {
  if (!handleRouteDeleteFromRouteCache(route)) handleRouteKeyDelete(route.key());
}

void RouteConfigSm::handleRouteKeyDelete(RouteKey const& key) {
  riProgrammedUser_.erase(key);
  if (auto const& users = riConfigByUser()) {
    for (auto it = users->configIteratorConst(); it; it.advance()) {
      auto zelConfig = riConfig(it.key());
      if (!zelConfig || !zelConfig->notifier()) continue;
      if (auto route = zelConfig->notifier()->route(key)) interVrfRoutes_.routeDel(*route);
    }
  }
  auto statusRoute = status_->route(key.prefix());
  if (!statusRoute) return;
  statusRoute->routePrefDel(key.preference());
  if (!statusRoute->routePrefSize()) {
    RC_TRACE(6, "handleRouteKeyDelete(" << key << "), Deleting Route");
    status_->routeDel(key.prefix());
  }
}

// ---------------------------------------------------------------------------------------------
// Members whose features are completed elsewhere: the route cache claims no route and next-hop
// groups add nothing.

bool RouteConfigSm::handleRouteInitForRouteCache(Route const&) { return false; }

bool RouteConfigSm::handleRouteDeleteFromRouteCache(Route const&) { return false; }

bool RouteConfigSm::handleRouteCacheEligibility(Route const&) { return false; }

void RouteConfigSm::handleRouteNexthopGroupAttributes(Route const& route, Vrf::VrfIdMap::VrfId) {
  RC_TRACE(9, "handleRouteNexthopGroupAttributes " << route.key());
}

void RouteConfigSm::handleNexthopGroup(::NexthopGroup::NexthopGroupEntryKey const& key) {
  RC_TRACE(9, "handleNexthopGroup " << key);
}

}  // namespace Routing::Static
