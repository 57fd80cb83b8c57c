// The review side of RouteConfigSm: construction, the backlog and the review of all routes, the
// choice among static, dynamic and leaked configuration, programming a route into the status
// store and taking it out, the nested watchers, and readiness. Vias, inter-VRF routes and the
// re-evaluation walk are in RouteConfigSmVia.cpp.
#include "static/RouteConfigSm.h"

#include <algorithm>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Flit.h"
#include "foundations/runtime/NotifyValues.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

// Statements of a machine that knows its VRF begin with "Vrf: ", the name and ", ".
#define RC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

namespace {

Vrf::VrfIdMap::VrfId constexpr kNoVrf = Vrf::VrfIdMap::VrfId::none();

}  // namespace

// ---------------------------------------------------------------------------------------------
// Construction and teardown.

RouteConfigSm::RouteConfigSm(Inputs const& in)
    : containerKey_(in.containerKey),
      vrfId_(in.vrfId),
      status_(in.status),
      ipViaConfig_(in.ipViaConfig),
      evpnViaConfig_(in.evpnViaConfig),
      ipv4DefaultVrfViaConfig_(in.ipv4DefaultVrfViaConfig),
      ipv6DefaultVrfViaConfig_(in.ipv6DefaultVrfViaConfig),
      vrfReadyStatus_(in.vrfReadyStatus),
      routeCacheRouteHelperSm_(in.routeCacheRouteHelperSm),
      allEgressVrfIntfStatusHelperSm_(in.allEgressVrfIntfStatusHelperSm),
      routingProtocol_(in.routingProtocol),
      configTagStatus_(in.configTagStatus),
      configTagIdState_(in.configTagIdState),
      tunnelRibNameIdMap_(in.tunnelRibNameIdMap),
      auxIpViaConfig_(in.auxIpViaConfig),
      vtepSipValidationStatus_(in.vtepSipValidationStatus),
      vrfName_(in.containerKey.vrfName()),
      scheduler_(in.scheduler) {
  globalPrefIs(in.routingGeneralConfig ? in.routingGeneralConfig->staticRoutePreference() : RoutePreference());
  // The inputs; a list's nested watchers are built as the list is set (they do nothing until
  // something changes).
  vrfNameStatusIs(in.vrfNameStatus);
  intfStatusIs(in.intfStatus);
  grStateIs(in.grState);
  nexthopGroupEntryStatusIs(in.nexthopGroupEntryStatus);
  leakConfigIs(in.leakConfig);
  mplsConfigIs(in.mplsConfig);
  routingGeneralConfigIs(in.routingGeneralConfig);
  resRibProfileContainerIs(in.resRibProfileContainer);
  srTaggedConfigIs(in.srTaggedConfig);
  srTaggedDynamicConfigIs(in.srTaggedDynamicConfig);
  srConfigIs(in.srConfig);
  srConfigDynamicIs(in.srConfigDynamic);
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

void RouteConfigSm::zelDoZombieReactors(bool marked) {
  bool const deleting = marked && !zelMarkedForDeletion();
  StateMachine::zelDoZombieReactors(marked);
  // After the nested delete handlers, before the members go: the destructor itself does nothing.
  if (deleting) handleBaseDel();
}

void RouteConfigSm::handleBaseDel() {
  RC_TRACE(8, "handleBaseDel");
  if (allEgressVrfIntfStatusHelperSm_) {
    for (auto const& table : {resolvedInterVrfRtCfg(), unresolvedInterVrfRtCfg()}) {
      if (!table) continue;
      for (auto it = table->interVrfRouteConfigIteratorConst(); it; it.advance()) {
        allEgressVrfIntfStatusHelperSm_->unregisterForVrfIntfStatus(it.key(), this);
      }
    }
  }
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
    sipValidationHelperIs(SipValidationHelper::SipValidationHelperIs(scheduler_, vtepSipValidationStatus_,
                                                                     srConfigDynamic(), srConfig()));
  }
  initializedIs(true);
  RC_TRACE(1, " Initialized --> True");
  resolvedInterVrfRtCfgIs(InterVrfRouteByEgressVrf::InterVrfRouteByEgressVrfIs());
  unresolvedInterVrfRtCfgIs(InterVrfRouteByEgressVrf::InterVrfRouteByEgressVrfIs());
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
// The backlog and the review of all routes.

RouteConfigSm::ReviewState RouteConfigSm::beforeReview() const {
  if (!initialized()) return SUSPENDED;
  if (auto const& gr = grState(); gr && gr->gracefulRestart()) {
    return gr->startReadyVerification() ? CONTINUE : SUSPENDED;
  }
  return CONTINUE;
}

void RouteConfigSm::doBacklogReview() {
  if (beforeReview() != CONTINUE) {
    RC_TRACE(8, "doBacklogReview suspended, " << backlogSize() << " keys wait");
    return;
  }
  auto progress = backlogRun(*routeReviewTask(), [this](RouteKey const& key) { reviewRoute(key); });
  RC_TRACE(9, "doBacklogReview " << progress);
  if (!progress.pending) finishReview();
}

void RouteConfigSm::handleRoutes() {
  if (isStaticMode())
    srHandleRoutes();
  else
    riHandleRoutes();
}

void RouteConfigSm::srHandleRoutes() {
  if (!initialized()) return;
  RC_TRACE(8, "srHandleRoutes reviewing all routes");
  reviewKeyBookmark_.reset();
  reviewKeyBookmarkDynamic_.reset();
  // reviewKeyBookmarkLeak stays: a suspended leak walk ends before the others start over.
  if (reviewKeyBookmarkLeak_) reviewAllAgain_ = true;
  reviewAllRoutesTask()->scheduleTask();
}

void RouteConfigSm::riHandleRoutes() {
  if (!initialized()) return;
  RC_TRACE(8, "riHandleRoutes");
  reviewKeyBookmark_.reset();
  reviewConfigBookmarkIs(Quill::String());
  reviewAllRoutesTask()->scheduleTask();
}

void RouteConfigSm::reviewAllRoutes() {
  if (beforeReview() != CONTINUE) return;
  if (reviewAllRoutesImpl()) {
    // Every route has been reviewed since the last change of the global preference.
    formerGlobalPrefs_.clear();
    finishReview();
  } else {
    RC_TRACE(8, "reviewAllRoutes Review suspended");
  }
}

bool RouteConfigSm::reviewAllRoutesImpl() {
  return isStaticMode() ? srReviewAllRoutesImpl() : riReviewAllRoutesImpl();
}

bool RouteConfigSm::srReviewAllRoutesImpl() {
  if (reviewKeyBookmarkLeak_) {
    if (!reviewAllRoutesByConfig(leakConfig().get(), reviewKeyBookmarkLeak_)) return false;
    if (!reviewAllAgain_) return true;
    // Asked for again while that walk was suspended: the static and dynamic routes were not
    // reviewed since. The next run starts over.
    reviewAllAgain_ = false;
    reviewAllRoutesTask()->scheduleTask();
    return false;
  }
  if (!reviewKeyBookmarkDynamic_) {
    if (!reviewAllRoutesByConfig(srConfig().get(), reviewKeyBookmark_)) return false;
  }
  if (srConfigDynamic()) {
    if (!reviewAllRoutesByConfig(srConfigDynamic().get(), reviewKeyBookmarkDynamic_)) return false;
  }
  if (!leakConfig()) return true;
  return reviewAllRoutesByConfig(leakConfig().get(), reviewKeyBookmarkLeak_);
}

namespace {

// The walk of a review of all routes over one collection; the two kinds of collection differ only
// in what they iterate.
template <class Map, class Review>
bool reviewWalk(Halyard::Task* task, Map const& map, std::optional<RouteKey>& bookmark, Review&& review,
                L3::VrfName const& vrfName) {
  if (!task || !task->taskCurrentlyRunning()) return true;
  auto it = bookmark ? map.iteratorAt(*bookmark) : map.iterator();
  bookmark.reset();
  std::uint64_t count = 0;
  while (it) {
    RouteKey const key = it.key();
    review(key);
    it.advance();
    ++count;
    if (it && task->taskShouldYield()) {
      bookmark = it.key();
      task->scheduleTask();
      task->taskWorkCountInc(count);
      TRACE(8, "Vrf: " << vrfName << ", reviewAllRoutesByConfig route yielded with key: " << *bookmark);
      return false;
    }
  }
  task->taskWorkCountInc(count);
  return true;
}

}  // namespace

bool RouteConfigSm::reviewAllRoutesByConfig(RouteList const* config, std::optional<RouteKey>& bookmark) {
  if (!config) {
    bookmark.reset();
    return true;
  }
  return reviewWalk(reviewAllRoutesTask(), config->routeColl(), bookmark,
                    [this](RouteKey const& key) { isStaticMode() ? srReviewRoute(key) : riReviewRoute(key); },
                    vrfName_);
}

bool RouteConfigSm::reviewAllRoutesByConfig(Protocol::LeakRouteConfig const* config,
                                            std::optional<RouteKey>& bookmark) {
  if (!config) {
    bookmark.reset();
    return true;
  }
  return reviewWalk(reviewAllRoutesTask(), config->leakRouteColl(), bookmark,
                    [this](RouteKey const& key) { isStaticMode() ? srReviewRoute(key) : riReviewRoute(key); },
                    vrfName_);
}

bool RouteConfigSm::riReviewAllRoutesImpl() {
  auto const& users = riConfigByUser();
  if (!users) {
    reviewConfigBookmarkIs(Quill::String());
    return true;
  }
  auto const& coll = users->configColl();
  auto it = coll.iterator();
  if (!reviewConfigBookmark().empty()) {
    it = coll.iteratorAt(reviewConfigBookmark());
    if (!it || it.key() != reviewConfigBookmark()) reviewKeyBookmark_.reset();
  }
  for (; it; it.advance()) {
    Quill::String const user = it.key();
    RouteList const* list = it.value().get();
    if (!reviewAllRoutesByConfig(list, reviewKeyBookmark_)) {
      reviewConfigBookmarkIs(user);
      return false;
    }
  }
  reviewConfigBookmarkIs(Quill::String());
  return true;
}

// ---------------------------------------------------------------------------------------------
// Choosing the source of a key.

void RouteConfigSm::reviewRoute(RouteKey const& key) {
  if (isStaticMode())
    srReviewRoute(key);
  else
    riReviewRoute(key);
}

void RouteConfigSm::srReviewRoute(RouteKey const& key) {
  QUILL_ASSERT(leakConfig(), "leakConfig()");
  RouteConstPtr configRoute = srConfig() ? RouteConstPtr(srConfig()->route(key)) : nullptr;
  RouteConstPtr dynamicRoute = srConfigDynamic() ? RouteConstPtr(srConfigDynamic()->route(key)) : nullptr;
  if (!configRoute) RC_TRACE(9, "srReviewRoute Choosing dynamic route to process");
  RouteConstPtr chosen = configRoute ? configRoute : dynamicRoute;
  if (chosen) {
    if (leakRouteInUseHas(key)) handleLeakedRouteDel(key);
    auto statusRoute = status_->route(key.prefix());
    if (statusRoute && statusRoute->routePrefHas(srEntryPref(key)) && configRoute && dynamicRoute) {
      RC_TRACE(6, "RouteKey " << key.prefix() << " is present in config and dynamic");
      srHandleRouteDelete(*dynamicRoute, false);
    }
    handleRouteInit(*chosen, vrfId_);
    return;
  }
  if (routeHas(key)) return;  // its deletion reactor finishes the job
  LeakRouteConstPtr lr = leakConfig()->leakRoute(key);
  if (lr) {
    if (leakRouteInUse(key) != lr) leakRouteInUseIs(lr);
    QUILL_ASSERT(lr->vrfAf().af() == containerKey_.af(), "lr->vrfAf().af() == containerKey().af()");
    QUILL_ASSERT(lr->route(), "configRoute");
    handleRouteInit(*lr->route(), lr->vrfAf().vrfId());
    return;
  }
  if (leakRouteInUseHas(key)) handleLeakedRouteDel(key);
}

void RouteConfigSm::riReviewRoute(RouteKey const& key) {
  Quill::String user;
  RouteConstPtr route = isStaticMode() ? srRouteFromConfig(key) : riRouteFromConfig(key, &user);
  if (route) {
    if (!isStaticMode()) riProgrammedUserIs(key, user);
    handleRouteInit(*route, vrfId_);
    return;
  }
  if (routeCacheRouteHelperSm_ && routeCacheRouteHelperSm_->routeKeyPresentInRouteCache(vrfId_, key)) {
    routeCacheRouteHelperSm_->deleteRouteFromRouteCache(vrfId_, key);
    return;
  }
  handleRouteKeyDelete(key);
}

RouteConfigSm::RouteConstPtr RouteConfigSm::routeFromConfig(RouteKey const& key) const {
  return isStaticMode() ? srRouteFromConfig(key) : riRouteFromConfig(key);
}

RouteConfigSm::RouteConstPtr RouteConfigSm::srRouteFromConfig(RouteKey const& key) const {
  return srConfig() ? RouteConstPtr(srConfig()->route(key)) : nullptr;
}

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
// The end of a review, and readiness.

void RouteConfigSm::finishReview() {
  status_->initializedIs(true);
  if (ipViaConfig_) ipViaConfig_->restartingVrfDel(vrfId_);
  if (evpnViaConfig_) evpnViaConfig_->restartingVrfDel(vrfId_);
  maybeSetRoutesReady();
  if (routeCacheRouteHelperSm_) routeCacheRouteHelperSm_->maybeRescheduleStaleRouteRemovalTask();
  RC_TRACE(8, "finishReview Finished review");
  FLIT(8, "RouteConfigSm: Finished review");
}

void RouteConfigSm::maybeSetRoutesReady() {
  auto const& gr = grState();
  if (!gr || !vrfReadyStatus_) return;
  if (gr->gracefulRestart() && !gr->startReadyVerification()) return;
  if (containerKey_.af() == Ondex::AddressFamily::ipv4) {
    if (!vrfReadyStatus_->v4RoutesReady()) {
      vrfReadyStatus_->v4RoutesReadyIs(true);
      RC_TRACE(0, "Marking v4RoutesReady for vrf: " << vrfName_);
    }
  } else if (!vrfReadyStatus_->v6RoutesReady()) {
    vrfReadyStatus_->v6RoutesReadyIs(true);
    RC_TRACE(0, "Marking v6RoutesReady for vrf: " << vrfName_);
  }
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
  handleInterVrfRoutesDel(route);
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
      if (auto route = zelConfig->notifier()->route(key)) handleInterVrfRoutesDel(*route);
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
// A changed via of a configured route.

void RouteConfigSm::handleRouteVia(Route const& route, Via const& via, RouteList const* routeList,
                                   SipValidationHelper* sipValidationHelper) {
  RC_TRACE(8, "handleRouteVia " << route.key() << " Via: " << via << " has " << route.vias() << " vias");
  if (sipValidationHelper) {
    sipValidationHelper->maybeUpdateVtepSipValidation(route, via, route.viaHas(via));
    if (sipValidationHelper->checkOnlyEvpnViaVtepSipValidationChange(route, via)) return;
  }
  if (!checkCommandTagInEnabledStatus(route.commandTagId())) return;
  if (viasFixedByType(route)) return;
  if (isStaticMode() && srAtGlobalPrefExplicitly(route.key())) {
    // It has no entry of its own (it would be another route's): its review decides.
    handleRoute(route.key());
    return;
  }
  std::uint32_t weight = 0;
  OptWeight prevWeight;
  if (routeList && routeList->routeHas(route.key())) {
    auto const change =
        Zel::notifyValues<RouteViaAttr>(static_cast<Zel::Entity const*>(&route), Route::viaId);
    if (change.inChange) {
      if (change.after) {
        weight = change.after->weight();
        if (change.before && change.before->weight() != change.after->weight()) prevWeight = change.before->weight();
      } else if (change.before) {
        weight = change.before->weight();
      }
    } else if (route.viaHas(via)) {
      // Not a change of the via collection (a BFD-tracking change, say): the via as it stands.
      weight = route.via(via).weight();
    }
  }
  handleVia(route, via, vrfId_, false, weight, prevWeight);
}

// ---------------------------------------------------------------------------------------------
// Members whose features are completed elsewhere: the route cache claims no route, next-hop
// groups add nothing, and the command tag test is complete.

bool RouteConfigSm::handleRouteInitForRouteCache(Route const&) { return false; }

bool RouteConfigSm::handleRouteDeleteFromRouteCache(Route const&) { return false; }

bool RouteConfigSm::handleRouteCacheEligibility(Route const&) { return false; }

void RouteConfigSm::handleRouteNexthopGroupAttributes(Route const& route, Vrf::VrfIdMap::VrfId) {
  RC_TRACE(9, "handleRouteNexthopGroupAttributes " << route.key());
}

void RouteConfigSm::handleNexthopGroup(::NexthopGroup::NexthopGroupEntryKey const& key) {
  RC_TRACE(9, "handleNexthopGroup " << key);
}

void RouteConfigSm::handleEvpnVia(Route const& route, Via const& via) {
  RC_TRACE(6, "handleEvpnVia " << route.key() << " " << via << " not entered: EVPN vias are not handled yet");
}

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
// Leaked routes.

void RouteConfigSm::leakRouteInUseIs(LeakRouteConstPtr const& leakRoute) {
  if (!leakRoute) Zel::throwMutatorArgNullPointerException("leakRouteInUse");
  RouteKey const key = leakRoute->route() ? leakRoute->route()->key() : RouteKey();
  leakRouteInUseIs(key, leakRoute);
}

void RouteConfigSm::handleLeakedRouteDel(RouteKey const& key) {
  RC_TRACE(6, "handleLeakedRouteDel " << key);
  FLIT(6, "RouteConfigSm::handleLeakedRouteDel for {}", key);
  if (LeakRouteConstPtr lr = leakRouteInUse(key)) {
    QUILL_ASSERT(lr->route(), "leakedConfigRoute");
    if (isStaticMode())
      srHandleRouteDelete(*lr->route(), true);
    else
      riHandleRouteDelete(*lr->route());
  }
  leakRouteInUseDel(key);
}

void RouteConfigSm::handleLeakedRouteVia(RouteKey const& key, Via const& via) {
  LeakRouteConstPtr lr = leakRouteInUse(key);
  if (!lr) {
    RC_TRACE(8, "handleLeakedRouteVia " << key << " leaked route not in use, ignoring");
    return;
  }
  Route const& route = *lr->route();
  std::uint32_t const weight = route.viaHas(via) ? route.via(via).weight() : 0;
  handleVia(route, via, lr->vrfAf().vrfId(), false, weight, std::nullopt);
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
// Nested machines.

bool RouteConfigSm::handleRouteAttributeChange(Route const& route, Zel::AttrId id, bool nexthopGroupWeight) {
  switch (id) {
    case Route::tagId:
    case Route::commandTagIdId:
    case Route::routeAttributesId:
      handleRoute(route.key());
      return true;
    case Route::nexthopGroupWeightId:
      if (nexthopGroupWeight) handleRouteNexthopGroupAttributes(route, vrfId_);
      return true;
    case Route::nexthopGroupNameId:
    case Route::nexthopGroupMetricId:
      handleRouteNexthopGroupAttributes(route, vrfId_);
      return true;
    case Route::ribBypassId:
      handleRouteInit(route, vrfId_);
      return true;
    default:
      return false;
  }
}

void RouteConfigSm::NestedSm_Route::onAttribute(Zel::AttrId id, void const* key) {
  RouteConfigSm* parent = owner();
  auto route = notifier();
  if (!route || parent->zelMarkedForDeletion() || parent->handleRouteAttributeChange(*route, id, true)) return;
  if (id == Route::viaId || id == Route::bfdTrackedId) {
    parent->handleRouteVia(*route, *static_cast<Via const*>(key), parent->srConfig().get(),
                           parent->sipValidationHelper().get());
  } else if (id == Route::viaResRibProfileConfigId) {
    parent->handleRouteViaResRibProfileConfig(*route, *static_cast<Via const*>(key));
  }
}

void RouteConfigSm::NestedSm_Route::zelDoZombieReactors(bool marked) {
  if (marked && !zelMarkedForDeletion()) handleRouteDelete();
  NestedSm::zelDoZombieReactors(marked);
}

void RouteConfigSm::NestedSm_Route::handleRouteDelete() {
  RouteConfigSm* parent = owner();
  auto route = notifier();
  if (!route) return;
  if (parent->isStaticMode())
    parent->srHandleRouteDelete(*route, false);
  else
    parent->riHandleRouteDelete(*route);
  if (parent->srConfigDynamic() && parent->srConfigDynamic()->routeHas(key())) {
    TRACE(6, "Vrf: " << parent->vrfName() << ", Dynamic config exists...process dynamic config");
    parent->handleRoute(key());
  }
}

void RouteConfigSm::NestedSm_RouteDynamic::onAttribute(Zel::AttrId id, void const* key) {
  RouteConfigSm* parent = owner();
  auto route = notifier();
  // A dynamic route's next-hop group weight and resolution profiles have no reactor.
  if (!route || parent->zelMarkedForDeletion() || parent->handleRouteAttributeChange(*route, id, false)) return;
  if (id == Route::viaId) {
    handleRouteDynamicVia(*static_cast<Via const*>(key));
  } else if (id == Route::bfdTrackedId) {
    parent->handleRouteVia(*route, *static_cast<Via const*>(key), parent->srConfigDynamic().get(),
                           parent->sipValidationHelper().get());
  }
}

void RouteConfigSm::NestedSm_RouteDynamic::handleRouteDynamicVia(Via const& via) {
  RouteConfigSm* parent = owner();
  auto route = notifier();
  TRACE(8, "Vrf: " << parent->vrfName() << ", handleRouteDynamicVia " << key() << " " << via);
  if (parent->srConfig() && parent->srConfig()->routeHas(key())) {
    TRACE(6, "Vrf: " << parent->vrfName() << ", handleRouteDynamicVia Skipping dynamic route: " << key().prefix()
                     << " because there is a config route configured");
    FLIT(6, "handleRouteDynamicVia Skipping dynamic route: {}", key().prefix());
    if (auto const& helper = parent->sipValidationHelper())
      helper->maybeUpdateVtepSipValidation(*route, via, route->viaHas(via));
    return;
  }
  parent->handleRouteVia(*route, via, parent->srConfigDynamic().get(), parent->sipValidationHelper().get());
}

void RouteConfigSm::NestedSm_RouteDynamic::zelDoZombieReactors(bool marked) {
  if (marked && !zelMarkedForDeletion()) handleRouteDynamicDelete();
  NestedSm::zelDoZombieReactors(marked);
}

void RouteConfigSm::NestedSm_RouteDynamic::handleRouteDynamicDelete() {
  RouteConfigSm* parent = owner();
  auto route = notifier();
  if (!route) return;
  bool const hasStatic = parent->srConfig() && parent->srConfig()->routeHas(key());
  if (hasStatic && !parent->backlogHas(key())) {
    TRACE(6, "Vrf: " << parent->vrfName() << ", handleRouteDynamicDelete Nothing needs to be done.  Deleting a dynamic"
                     << " route when there is a static route configured");
    FLIT(6, "RouteConfigSm::handleRouteDelete: Nothing needs to be done. {}",
         "Deleting a dynamic route when there is a static route");
    return;
  }
  parent->handleRouteDelete(*route, false);
}

RouteConfigSm::ZelLeakedRoute::ZelLeakedRoute(RouteConfigSm* parent, RouteKey const& key, RouteConstPtr route)
    : parent_(parent), key_(key) {
  notifierIs(std::move(route));
}

void RouteConfigSm::ZelLeakedRoute::onAttribute(Zel::AttrId id, void const* key) {
  if (parent_->zelMarkedForDeletion()) return;
  if (id == Route::tagId)
    handleLeakedRoute();
  else if (id == Route::viaId)
    handleLeakedRouteVia(*static_cast<Via const*>(key));
}

void RouteConfigSm::ZelLeakedRoute::handleLeakedRoute() { parent_->handleRoute(key_); }

void RouteConfigSm::ZelLeakedRoute::handleLeakedRouteVia(Via const& via) {
  TRACE(8, "Vrf: " << parent_->vrfName() << ", handleLeakedRouteVia " << key_ << " and " << via);
  parent_->handleLeakedRouteVia(key_, via);
}

RouteConfigSm::NestedSm_LeakRoute::NestedSm_LeakRoute(RouteConfigSm* owner, RouteKey const& key,
                                                      LeakRouteConstPtr const& leakRoute)
    : NestedSm(owner, key, leakRoute) {
  leakedRouteIs(leakRoute ? leakRoute->route() : nullptr);
}

void RouteConfigSm::NestedSm_LeakRoute::notifierIs(LeakRouteConstPtr leakRoute) {
  RouteConstPtr route = leakRoute ? leakRoute->route() : nullptr;
  NestedSm::notifierIs(std::move(leakRoute));
  leakedRouteIs(route);
}

void RouteConfigSm::NestedSm_LeakRoute::leakedRouteIs(RouteConstPtr const& route) {
  if (!route) {
    if (leakedRoute_) leakedRoute_->zelDoZombieReactors(true);
    leakedRoute_ = nullptr;
    return;
  }
  if (leakedRoute_) {
    if (leakedRoute_->notifier() != route) leakedRoute_->notifierIs(route);
    return;
  }
  leakedRoute_ = Zel::make<ZelLeakedRoute>(owner(), key(), route);
}

void RouteConfigSm::NestedSm_LeakRoute::zelDoZombieReactors(bool marked) {
  if (leakedRoute_) leakedRoute_->zelDoZombieReactors(marked);
  NestedSm::zelDoZombieReactors(marked);
}

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
