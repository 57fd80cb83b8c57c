#include "protocol/ProtocolRouteStatusSm.h"

#include <algorithm>
#include <vector>

#include "foundations/runtime/Clock.h"
#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Flit.h"
#include "foundations/runtime/NotifyValues.h"
#include "foundations/runtime/Toggle.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("IpRib::RouteStatusSm");

#define RS_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Protocol {

namespace {

constexpr std::uint32_t kMaxViaSetSize = Rib::Skein::ViaSet::kMaxVias;

}  // namespace

RouteStatusSm::RouteStatusSm(Inputs const& in)
    : StateMachine() ROUTE_STATUS_SM_INPUTS(ZEL_INPUTS_INIT),
      bfdTrackedRoutesListWritable_(in.bfdTrackedRoutesList),
      rib_(false),
      statusWritable_(in.status),
      viaWeightChange_(toggleViaWeightChangeEnabled()),
      scheduler_(in.scheduler ? in.scheduler : Halyard::TaskSchedulerRoot::findOrCreateScheduler()) {
  statusIs(in.status);
  ROUTE_STATUS_SM_INPUTS(ZEL_INPUTS_SET)
  bfdTrackedRoutesListIs(in.bfdTrackedRoutesList);
  handleInitialized();
}

void RouteStatusSm::zelDoZombieReactors(bool marked) {
  // Routes of a machine that goes as a whole stay in the RIB: the nested removals do not withdraw.
  if (marked) tearingDown_ = true;
  StateMachine::zelDoZombieReactors(marked);
}

void RouteStatusSm::handleInitialized() {
  RS_TRACE(8, "handleInitialized");
  routeBacklogTaskIs(scheduler_, 3, "routeBacklogTask");
  reviewAllRoutesTaskIs(scheduler_, 3, "reviewAllRoutesTask");
  bfdTrackedKeyTaskIs(scheduler_, 3, "bfdTrackedKeyTask");
  rib_ = ribString_ == "mrib";
  initializedIs(true);
  if (viaSetConfig_) viaSetConfig_->restartingVrfIs(vrfName_);
  handleRoute();
}

// ---------------------------------------------------------------------------------------------
// Full review.

void RouteStatusSm::handleRoute() {
  RS_TRACE(8, "RouteStatusSm, schedule review");
  updateRouteReviewState(false);
  reviewBookmarkIs(Prefix());
  if (auto* task = reviewAllRoutesTask()) task->scheduleTask();
}

void RouteStatusSm::updateRouteReviewState(bool done) {
  if (!vrfReadyStatus_) return;
  if (af_ == Ondex::AddressFamily::ipv4)
    vrfReadyStatus_->v4RouteReviewCompleteIs(done);
  else
    vrfReadyStatus_->v6RouteReviewCompleteIs(done);
}

void RouteStatusSm::doReview() {
  if (!initialized() || !status() || !status()->initialized()) {
    RS_TRACE(8, "exit doReview if status is not initialized ");
    return;
  }
  auto const& routes = status()->routeColl();
  bool const fromStart = reviewBookmark() == Prefix();
  auto it = fromStart ? routes.iterator() : routes.iteratorAt(reviewBookmark());
  if (it) RS_TRACE(8, (fromStart ? "Starting review at " : "Resuming review at ") << it.key());
  Zel::Seconds const deadline = Zel::System::currentTime() + reviewQuantum();
  bool outOfTime = false;
  while (it) {
    Prefix const prefix = it.key();
    handleRoute(prefix);
    if (Zel::System::currentTime() >= deadline) {
      outOfTime = true;
      break;
    }
    it.advance();
  }
  if (outOfTime) {
    it.advance();
    if (it) {
      reviewBookmarkIs(it.key());
      RS_TRACE(8, "Suspending review at: " << it.key());
      reviewAllRoutesTask()->scheduleTask();
      return;
    }
  }
  updateRouteReviewState(true);
  RS_TRACE(8, "Finished review");
  reviewBookmarkIs(Prefix());
  if (!reviewedOnce()) {
    reviewedOnceIs(true);
    doCleanupRibConfig();
  }
}

void RouteStatusSm::routeBacklogAdd(Prefix const& prefix) {
  if (!viaWeightChange_) {
    handleRoute(prefix);
    return;
  }
  routeBacklogIs(prefix);
  if (auto* task = routeBacklogTask()) task->scheduleTask();
}

void RouteStatusSm::doRouteBacklogTaskRun() {
  auto progress = routeBacklogRun(*routeBacklogTask(), [this](Prefix const& p) { handleRouteForTask(p); });
  RS_TRACE(9, "RouteStatusSm::doRouteBacklogTaskRun " << progress);
}

// ---------------------------------------------------------------------------------------------
// The selection for one prefix.

void RouteStatusSm::handleRoute(Prefix const& prefix) {
  if (!initialized() || !status() || !status()->initialized()) return;
  auto route = statusWritable_->route(prefix);
  if (!route) {
    RS_TRACE(9, "handleRoute " << prefix << " !route");
    doDelRoute(prefix);
    return;
  }
  for (auto prefIt = route->routePrefIterator(); prefIt; prefIt.advance()) {
    Quill::Ptr<RoutePref> routePref = prefIt.value();
    RoutePreference const preference = prefIt.key();
    Rib::Skein::ViaSet viaSet;
    viaSet.fecTypeIs(routePref->fecType());
    std::uint32_t viaCount = 0;
    bool labelled = false;
    bool mostPreferredViaType = true;
    ViaType lastViaType;
    bool full = false;
    for (auto typeIt = routePref->dedupViaKeyByViaTypeIteratorConst(); typeIt && !full; typeIt.advance()) {
      lastViaType = typeIt.key();
      bool addedInThisType = false;
      for (auto viaIt = typeIt.value()->dedupViaKeyIteratorConst(); viaIt; viaIt.advance()) {
        Rib::ViaKey const viaKey = viaIt.key();
        ViaUse const use = viaUse(prefix, preference, *routePref, viaKey);
        if (use == ViaUse::pending) return;
        if (use == ViaUse::skip) continue;
        Rib::Via const via = getViaFromKey(viaKey);
        if (!labelled && via.hasLabel()) {
          RS_TRACE(8, "handleRoute " << prefix << " First occurrence of labeled Via " << viaKey);
          viaSet.viaKeyDelAll();
          viaCount = 0;
          labelled = true;
        } else if (labelled && !via.hasLabel()) {
          RS_TRACE(8, "handleRoute " << prefix << " via " << viaKey << " not a labelled Via ");
          continue;
        }
        if (!mostPreferredViaType && !getBfdTrackedRouteBLAFromViaKey(viaKey)) {
          RS_TRACE(9, "handleRoute " << prefix << " via " << viaKey << " neither mostPreferred nor bfdTracked via");
          continue;
        }
        if (viaCount >= kMaxViaSetSize) {
          RS_TRACE(8, "handleRoute " << prefix
                                     << " Stopping processing vias as  adding more will exceed maximum viaSet size");
          full = true;
          break;
        }
        viaSet.viaKeyIs(Rib::Skein::ViaIndex(viaCount), viaKey);
        ++viaCount;
        addedInThisType = true;
        RS_TRACE(9, "handleRoute " << prefix << " adding Via " << viaKey << " weight " << via.weight());
      }
      if (addedInThisType || full) break;
      mostPreferredViaType = false;
    }
    if (viaCount) {
      doAddRouteWithLowestMetric(prefix, *routePref, viaSet, route->srcVrfId(), lastViaType);
      return;
    }
    if (routePref->fecType() == 2) {
      viaSet.flagsIs(prefix.isV4() ? Rib::Skein::ViaSet::kFlagV4NoNextHop : Rib::Skein::ViaSet::kFlagV6NoNextHop);
      doAddRouteWithLowestMetric(prefix, *routePref, viaSet, route->srcVrfId(), lastViaType);
      return;
    }
  }
  RS_TRACE(8, "handleRoute " << prefix << " !bestRouteFound");
  doDelRoute(prefix);
}

RouteStatusSm::ViaUse RouteStatusSm::viaUse(Prefix const& prefix, RoutePreference preference,
                                            RoutePref const& routePref, Rib::ViaKey const& viaKey) const {
  ViaResolutionStatus resolution;
  if (viaKey.transport() == Rib::Transport::transportEvpn()) {
    auto vtep = routePref.dedupEvpnVtepIpViaKey(viaKey);
    resolution = validEvpnVia(viaKey, vtep ? vtep->viaKey() : Rib::ViaKey());
  } else {
    resolution = validIpVia(prefix, preference, viaKey);
  }
  if (resolution == undetermined && !viaWeightChange_) resolution = unresolved;
  if (resolution == unresolved) {
    RS_TRACE(9, "handleRoute " << prefix << " via " << viaKey << "is unresolved");
    return ViaUse::skip;
  }
  if (resolution == undetermined) {
    RS_TRACE(8, "handleRoute " << prefix << " via " << viaKey << " resolution status pending. Returning");
    return ViaUse::pending;
  }
  if (nhdGraph() &&
      nhdGraph()->loopingRoute(prefix, MetricPref(0, preference.value()), vrfId_, viaKey, 0, 0, rib_)) {
    RS_TRACE(8, "handleRoute " << prefix << " via " << viaKey << "is looping");
    return ViaUse::skip;
  }
  return ViaUse::usable;
}

void RouteStatusSm::doAddRouteWithLowestMetric(Prefix const& prefix, RoutePref& routePref,
                                               Rib::Skein::ViaSet const& viaSet, VrfId srcVrfId, ViaType viaType) {
  Rib::Skein::ViaSet lowestSet;
  lowestSet.fecTypeIs(viaSet.fecType());
  lowestSet.flagsIs(viaSet.flags());
  auto byType = routePref.dedupViaKeyByViaType(viaType);
  RouteMetric lowest = 0xffffffff;
  if (!viaSet.viaCount()) {
    RS_TRACE(8, "doAddRouteWithLowestMetric " << prefix << " has zero vias in viaSet ");
  } else {
    // One look-up per via: the metrics, then the lowest, then the vias that have it.
    std::vector<RouteMetric> metrics;
    metrics.reserve(viaSet.viaCount());
    for (Rib::ViaKey const& k : viaSet) {
      auto entry = byType ? byType->dedupViaKey(k) : nullptr;
      metrics.push_back(entry ? entry->metric() : 0xffffffff);
      lowest = std::min(lowest, metrics.back());
    }
    std::uint32_t index = 0;
    std::uint32_t position = 0;
    for (Rib::ViaKey const& k : viaSet) {
      if (metrics[position++] == lowest) lowestSet.viaKeyIs(Rib::Skein::ViaIndex(index++), k);
    }
    RS_TRACE(8, "doAddRouteWithLowestMetric " << prefix << ", with " << index << " vias of metric: " << lowest);
  }
  doAddRoute(prefix, routePref, lowestSet, srcVrfId, lowest);
}

void RouteStatusSm::doAddRoute(Prefix const& prefix, RoutePref& routePref, Rib::Skein::ViaSet const& viaSet,
                               VrfId srcVrfId, RouteMetric metric) {
  auto handle = viaSetConfig_->dedupConfigViaSetIs(viaSet);
  routePref.dedupViaSetKeyIs(handle);
  RS_TRACE(6, "doAddRoute " << prefix << ", Adding route, Preference: " << routePref.preference()
                            << ", ViaSet: " << handle->viaSetKey() << " " << viaSet.viaCount() << " vias");
  FLIT(6, "RouteStatusSm: add route {} to RIB, preference: {}", prefix, routePref.preference().value());
  Rib::Route route;
  route.routeKeyIs(Rib::RouteKey(vrfId_, prefix));
  route.routingProtocolIs(routingProtocol_);
  route.metricPrefIs(MetricPref(metric, routePref.preference().value()));
  auto const& general = routingGeneralConfig();
  if (general && general->staticMetricTypeAigp() && routingProtocol_ == Rib::RoutingProtocol::staticConfig()) {
    RS_TRACE(9, "Setting metricTypeAigp on static route with config enabled");
    route.metricTypeIs(Rib::metricTypeAigp);
  } else if (general && general->routeInputMetricTypeAigp() &&
             routingProtocol_ == Rib::RoutingProtocol::routeInput()) {
    RS_TRACE(9, "Setting metricTypeAigp on route input route with configenabled");
    route.metricTypeIs(Rib::metricTypeAigp);
  } else {
    RS_TRACE(9, "Setting metricTypeUnknown");
    route.metricTypeIs(Rib::metricTypeUnknown);
  }
  route.fibRouteTypeIs(routePref.fibRouteType());
  route.viaSetKeyIs(handle->viaSetKey());
  route.srcVrfIdIs(srcVrfId);
  if (!routePref.installInFib()) route.flagsIs(route.flags() | 2);
  auto const& attributes = routePref.routeAttributes();
  if (routingProtocol_ != Rib::RoutingProtocol::staticConfig()) {
    route.tagOrResultIdIs(routePref.tag());
  } else if (routePref.tag() == 0 && !attributes) {
    route.tagOrResultIdIs(0);
  } else {
    QUILL_ASSERT(igpResultTable_, "igpResultTable()");
    Bgp::IgpResult result;
    result.tagIs(routePref.tag());
    if (attributes) {
      std::uint32_t index = 0;
      for (auto community : attributes->community()) {
        RS_TRACE(9, "doAddRoute " << prefix << " adding community to igpResult: " << community);
        result.communityIs(IgpRedistribute::CommunityIndex(index++), community);
      }
    }
    auto resultHandle = igpResultTable_->dedup(result);
    redistIgpResultIs(prefix, resultHandle);
    route.tagOrResultIdIs(resultHandle->id());
  }
  if (ribConfig_) ribConfig_->routeAdd(route);
}

void RouteStatusSm::doDelRoute(Prefix const& prefix) {
  RS_TRACE(6, "doDelRoute " << prefix << ", Deleting route");
  FLIT(6, "RouteStatusSm: deleting route {}", prefix);
  Rib::RouteKey const key(vrfId_, prefix);
  if (routingProtocol_ == Rib::RoutingProtocol::staticConfig()) redistIgpResultDel(prefix);
  if (ribConfig_) ribConfig_->routeDelete(key);
}

void RouteStatusSm::doCleanupRibConfig() {
  RS_TRACE(8, "doCleanupRibConfig");
  if (ribConfig_) {
    for (auto it = ribConfig_->routeIteratorAt(Rib::RouteKey::vrfStart(vrfId_)); it; it.advance()) {
      Rib::RouteKey const key = it.key();
      if (key.vrfId() != vrfId_) break;
      if (!statusWritable_->routeHas(key.prefix())) doDelRoute(key.prefix());
    }
  }
  if (viaSetConfig_) viaSetConfig_->restartingVrfDel(vrfName_);
}

// ---------------------------------------------------------------------------------------------
// Via validation.

Quill::Ptr<Rib::ViaMetricStatus> RouteStatusSm::viaMetricStatus(VrfId vrfId, Rib::Transport transport,
                                                                Rib::RoutingProtocol protocol) const {
  if (!viaMetricStatusByVrf_) return nullptr;
  auto byTransport = viaMetricStatusByVrf_->vrfStatus(vrfId);
  if (!byTransport) return nullptr;
  auto byProtocol = byTransport->transportStatus(transport);
  if (!byProtocol) {
    RS_TRACE(9, "viaMetricStatus no vmt");
    return nullptr;
  }
  auto vms = byProtocol->protocolStatus(protocol);
  if (!vms) RS_TRACE(9, "viaMetricStatus no vmp");
  return vms;
}

Rib::Via RouteStatusSm::getViaFromKey(Rib::ViaKey const& viaKey) const {
  Ondex::AddressFamily const family = Rib::Transport::getAfFromTransport(viaKey.transport());
  auto const& table = (family == af_ || !family.isSet()) ? ipViaConfig_ : auxIpViaConfig_;
  return table ? table->via(viaKey) : Rib::Via(viaKey);
}

BfdStatusKey RouteStatusSm::bfdStatusKeyOf(Rib::Via const& via) const {
  Ondex::IntfId intf;
  if (via.nextHop().isV6() && via.nextHop().isLinkLocal()) intf = via.intfId();
  return BfdStatusKey(via.nextHop(), intf);
}

Quill::Ptr<BfdTrackedStaticRoutesByLocalAddr> RouteStatusSm::getBfdTrackedRouteBLAFromViaKey(
    Rib::ViaKey const& viaKey) const {
  if (!bfdTrackedRoutesListWritable_) return nullptr;
  return bfdTrackedRoutesListWritable_->route(bfdStatusKeyOf(getViaFromKey(viaKey)));
}

ViaResolutionStatus RouteStatusSm::validIpVia(Prefix const& prefix, RoutePreference preference,
                                              Rib::ViaKey const& viaKey) const {
  QUILL_ASSERT(viaKey.transport() != Rib::Transport::transportEvpn(),
               "viaKey.transport() != Routing::Rib::Transport::transportEvpn()");
  if (auto bla = getBfdTrackedRouteBLAFromViaKey(viaKey)) {
    RouteKey const routeKey(prefix, preference);
    for (auto it = bla->bfdRouteIteratorConst(); it; it.advance()) {
      auto const& tracked = it.value();
      if (!tracked->dependantRouteHas(routeKey)) continue;
      if (!tracked->status() || tracked->resolvedIntf().empty()) {
        RS_TRACE(9, "validIpVia " << viaKey << " not valid as no bfdTrackedRoutes or " << "bfdTrackedRoutes->status");
        return unresolved;
      }
    }
  }
  auto vms = viaMetricStatus(viaKey.vrfId(), viaKey.transport(), viaKey.routingProtocol());
  if (!vms) {
    RS_TRACE(9, "validIpVia " << viaKey << " no vms");
    return unresolved;
  }
  if (!vms->viaMetricHas(viaKey)) return undetermined;
  Rib::ViaMetric const metric = vms->viaMetric(viaKey);
  if (metric.preference() == Rib::ViaMetric::kUnresolvedPreference) return unresolved;
  if (metric.looping()) {
    RS_TRACE(9, "validIpVia " << prefix << ", Looping Via: " << viaKey);
    return unresolved;
  }
  return resolved;
}

ViaResolutionStatus RouteStatusSm::validEvpnVia(Rib::ViaKey const& viaKey, Rib::ViaKey const& evpnVtepIpViaKey) const {
  auto vms = viaMetricStatus(VrfId::defaultVrf(), Rib::Transport::transportEvpn(), routingProtocol_);
  if (!vms) return unresolved;
  Rib::ViaMetric const evpnMetric = vms->viaMetric(viaKey);
  Rib::ViaMetric vtepMetric;
  if (evpnVtepIpViaKey != Rib::ViaKey()) {
    if (auto vms2 = viaMetricStatus(VrfId::defaultVrf(), evpnVtepIpViaKey.transport(), routingProtocol_)) {
      vtepMetric = vms2->viaMetric(evpnVtepIpViaKey);
      if (vtepMetric.preference() == Rib::ViaMetric::kUnresolvedPreference && !(vtepMetric.metricPref() == MetricPref(1, 1)))
        vtepMetric = Rib::ViaMetric();
    }
  }
  bool const ok = !(evpnMetric == Rib::ViaMetric()) &&
                  evpnMetric.preference() != Rib::ViaMetric::kUnresolvedPreference && !(vtepMetric == Rib::ViaMetric());
  return ok ? resolved : unresolved;
}

// ---------------------------------------------------------------------------------------------
// BFD-tracked vias: this machine writes which next hops are tracked for which routes.

void RouteStatusSm::handleBfdTrackedVia(RouteKey const& routeKey, Rib::ViaKey const& viaKey,
                                        Ondex::IpGenAddr const& prevLocalAddr, Ondex::IpGenAddr const& currLocalAddr,
                                        bool add) {
  RS_TRACE(3, "handleBfdTrackedVia " << routeKey << " " << viaKey << ", prevLocalAddr " << prevLocalAddr
                                     << ", currLocalAddr " << currLocalAddr << ", add " << add);
  handleBfdTrackedViaMultihop(routeKey, viaKey, prevLocalAddr, currLocalAddr, add);
}

void RouteStatusSm::handleBfdTrackedViaMultihop(RouteKey const& routeKey, Rib::ViaKey const& viaKey,
                                                Ondex::IpGenAddr const& prevLocalAddr,
                                                Ondex::IpGenAddr const& currLocalAddr, bool add) {
  auto const& list = bfdTrackedRoutesListWritable_;
  if (!list) return;
  Rib::Via const via = getViaFromKey(viaKey);
  BfdStatusKey const key = bfdStatusKeyOf(via);
  RS_TRACE(3, "handleBfdTrackedViaMultihop Using bfdStatusKey: addr " << key.ip() << " intf " << key.intf());
  Routing::Via const trackedVia(via.nextHop(), via.intfId());
  if (auto bla = list->route(key)) {
    if (auto tracked = bla->bfdRoute(prevLocalAddr)) {
      RS_TRACE(3, "handleBfdTrackedViaMultihop Deleting via " << viaKey << " from status object");
      if (auto vias = tracked->dependantRoute(routeKey)) {
        vias->trackedViaDel(trackedVia);
        if (!vias->trackedViaSize()) {
          RS_TRACE(3, " No more BFD tracked vias for route " << routeKey.prefix() << " pref "
                                                              << routeKey.preference());
          tracked->dependantRouteDel(routeKey);
        }
      }
      if (!tracked->dependantRouteSize()) {
        RS_TRACE(3, " No more dependant routes for key: addr " << key.ip() << " intf " << key.intf());
        bla->bfdRouteDel(prevLocalAddr);
      }
      if (!bla->bfdRouteSize() && !add) list->routeDel(key);
    }
  }
  if (!add && currLocalAddr == Ondex::IpGenAddr()) return;
  auto bla = list->route(key);
  if (!bla) {
    bla = list->routeIs(key);
    RS_TRACE(3, " New bfdRouteBLA created for route " << routeKey);
  }
  auto tracked = bla->bfdRoute(currLocalAddr);
  if (!tracked) {
    RS_TRACE(3, " New status object being created for bfdStatusKey addr " << key.ip() << " intf " << key.intf());
    tracked = bla->bfdRouteIs(currLocalAddr, key);
    tracked->statusIs(false);
  }
  if (!via.intfId().empty()) {
    RS_TRACE(3, " Resolved interface is " << via.intfId());
    tracked->resolvedIntfIs(via.intfId());
  }
  if (!tracked->dependantRouteHas(routeKey)) {
    RS_TRACE(3, " New routeKey route " << routeKey.prefix() << " pref " << routeKey.preference()
                                       << " is being added to status object");
  }
  auto vias = tracked->dependantRouteIs(routeKey);
  RS_TRACE(3, " New via " << viaKey << " is being added to the status object");
  vias->trackedViaIs(trackedVia);
}

void RouteStatusSm::deleteBfdTrackedVias(Prefix const& prefix, RoutePref const& routePref) {
  RouteKey const routeKey(prefix, routePref.preference());
  std::vector<std::pair<Rib::ViaKey, Ondex::IpGenAddr>> copy;
  for (auto it = routePref.bfdTrackedViaCollIteratorConst(); it; it.advance()) copy.emplace_back(it.key(), it.value());
  for (auto const& [viaKey, localAddr] : copy) handleBfdTrackedVia(routeKey, viaKey, localAddr, {}, false);
}

void RouteStatusSm::handleBfdRouteBLA(BfdStatusKey const& key) {
  RS_TRACE(9, "handleBfdRouteBLA " << key);
  if (std::find(bfdTrackedKeysChanged_.begin(), bfdTrackedKeysChanged_.end(), key) == bfdTrackedKeysChanged_.end())
    bfdTrackedKeysChanged_.push_back(key);
  if (auto* task = bfdTrackedKeyTask()) task->scheduleTask();
}

void RouteStatusSm::doBfdTrackedKeyTaskRun() {
  std::vector<BfdStatusKey> keys;
  keys.swap(bfdTrackedKeysChanged_);
  if (keys.empty() || !status()) return;
  RS_TRACE(8, "doBfdTrackedKeyTaskRun " << keys.size() << " next hops");
  for (auto it = status()->routeIteratorConst(); it; it.advance()) {
    if (usesBelowMostPreferred(*it.value(), keys)) routeBacklogAdd(it.key());
  }
}

bool RouteStatusSm::usesBelowMostPreferred(Route const& route, std::vector<BfdStatusKey> const& keys) const {
  for (auto prefIt = route.routePrefIteratorConst(); prefIt; prefIt.advance()) {
    auto typeIt = prefIt.value()->dedupViaKeyByViaTypeIteratorConst();
    if (!typeIt) continue;
    for (typeIt.advance(); typeIt; typeIt.advance()) {
      for (auto viaIt = typeIt.value()->dedupViaKeyIteratorConst(); viaIt; viaIt.advance()) {
        if (viaIt.key().transport() == Rib::Transport::transportEvpn()) continue;
        BfdStatusKey const key = bfdStatusKeyOf(getViaFromKey(viaIt.key()));
        if (std::find(keys.begin(), keys.end(), key) != keys.end()) return true;
      }
    }
  }
  return false;
}

// ---------------------------------------------------------------------------------------------
// Nested machines.

RouteStatusSm::NestedSm_Route::NestedSm_Route(RouteStatusSm* owner, Prefix const& prefix,
                                              Quill::Ptr<Route const> const& route)
    : NestedSm(owner, prefix, route) {
  for (auto it = route->routePrefIteratorConst(); it; it.advance()) routePref_.is(it.key(), it.value());
}

void RouteStatusSm::NestedSm_Route::onAttribute(Zel::AttrId id, void const* key) {
  RouteStatusSm* sm = owner();
  auto route = notifier();
  if (!route || sm->zelMarkedForDeletion()) return;
  if (id == Route::routeChangedVersionId) {
    sm->routeBacklogAdd(this->key());
  } else if (id == Route::routePrefId) {
    RoutePreference const& pref = *static_cast<RoutePreference const*>(key);
    if (auto routePref = route->routePref(pref))
      routePref_.is(pref, routePref);
    else
      routePref_.del(pref);
    if (!zelMarkedForDeletion()) sm->handleRoute(this->key());
  }
}

void RouteStatusSm::NestedSm_Route::zelDoZombieReactors(bool marked) {
  bool const removal = marked && !zelMarkedForDeletion();
  NestedSm::zelDoZombieReactors(marked);
  if (removal && !owner()->tearingDown()) owner()->handleRoute(key());
}

RouteStatusSm::NestedSm_RoutePref::NestedSm_RoutePref(NestedSm_Route* owner, RoutePreference const& pref,
                                                      Quill::Ptr<RoutePref const> const& e)
    : NestedSm(owner, pref, e) {
  for (auto it = e->dedupViaKeyByViaTypeIteratorConst(); it; it.advance())
    dedupViaKeyByViaType_.is(it.key(), it.value());
}

RouteStatusSm* RouteStatusSm::NestedSm_RoutePref::root() const noexcept { return owner()->owner(); }

void RouteStatusSm::NestedSm_RoutePref::onAttribute(Zel::AttrId id, void const* key) {
  RouteStatusSm* sm = root();
  auto routePref = notifier();
  if (!routePref || sm->zelMarkedForDeletion() || owner()->zelMarkedForDeletion()) return;
  Prefix const& prefix = owner()->key();
  switch (id) {
    case RoutePref::installInFibId:
    case RoutePref::routeAttributesId:
    case RoutePref::tagId:
    case RoutePref::dedupEvpnVtepIpViaKeyId:
      sm->handleRoute(prefix);
      break;
    case RoutePref::dedupViaKeyByViaTypeId: {
      ViaType const& type = *static_cast<ViaType const*>(key);
      if (auto byType = routePref->dedupViaKeyByViaType(type))
        dedupViaKeyByViaType_.is(type, byType);
      else
        dedupViaKeyByViaType_.del(type);
      break;
    }
    case RoutePref::bfdTrackedViaCollId:
      handleBfdTrackedVia(*static_cast<Rib::ViaKey const*>(key));
      sm->handleRoute(prefix);
      break;
    default:
      break;
  }
}

void RouteStatusSm::NestedSm_RoutePref::handleBfdTrackedVia(Rib::ViaKey const& viaKey) {
  auto routePref = notifier();
  bool const add = routePref->bfdTrackedViaCollHas(viaKey);
  auto const* entity = static_cast<Zel::Entity const*>(routePref.get());
  Ondex::IpGenAddr prevLocalAddr;
  if (auto const* old = Zel::notifyOldValue<Ondex::IpGenAddr>(entity, RoutePref::bfdTrackedViaCollId))
    prevLocalAddr = *old;
  Ondex::IpGenAddr const currLocalAddr = add ? routePref->bfdTrackedViaColl(viaKey) : Ondex::IpGenAddr();
  root()->handleBfdTrackedVia(RouteKey(owner()->key(), key()), viaKey, prevLocalAddr, currLocalAddr, add);
}

void RouteStatusSm::NestedSm_RoutePref::zelDoZombieReactors(bool marked) {
  if (marked && !zelMarkedForDeletion()) {
    if (auto routePref = notifier()) root()->deleteBfdTrackedVias(owner()->key(), *routePref);
  }
  NestedSm::zelDoZombieReactors(marked);
}

void RouteStatusSm::NestedSm_DedupViaKeyByViaType::onAttribute(Zel::AttrId id, void const*) {
  NestedSm_RoutePref* pref = owner();
  RouteStatusSm* sm = pref->root();
  if (id != DedupViaKeyByViaType::dedupViaKeyId || sm->zelMarkedForDeletion()) return;
  sm->routeBacklogAdd(pref->owner()->key());
}

RouteStatusSm::NestedSm_BfdRouteBLA::NestedSm_BfdRouteBLA(RouteStatusSm* owner, BfdStatusKey const& key,
                                                          Quill::Ptr<BfdTrackedStaticRoutesByLocalAddr const> const& bla)
    : NestedSm(owner, key, bla) {
  for (auto it = bla->bfdRouteIteratorConst(); it; it.advance()) bfdRoute_.is(it.key(), it.value());
}

void RouteStatusSm::NestedSm_BfdRouteBLA::onAttribute(Zel::AttrId id, void const* key) {
  auto bla = notifier();
  if (!bla || owner()->zelMarkedForDeletion() || id != BfdTrackedStaticRoutesByLocalAddr::bfdRouteId) return;
  Ondex::IpGenAddr const& addr = *static_cast<Ondex::IpGenAddr const*>(key);
  if (auto tracked = bla->bfdRoute(addr))
    bfdRoute_.is(addr, tracked);
  else
    bfdRoute_.del(addr);
}

void RouteStatusSm::NestedSm_BfdRoute::onAttribute(Zel::AttrId id, void const*) {
  if (owner()->owner()->zelMarkedForDeletion()) return;
  if (id == BfdTrackedStaticRoutes::statusId || id == BfdTrackedStaticRoutes::resolvedIntfId) handleBfdStatusChange();
}

void RouteStatusSm::NestedSm_BfdRoute::handleBfdStatusChange() {
  auto tracked = notifier();
  if (!tracked) return;
  RouteStatusSm* sm = owner()->owner();
  TRACE(3, "Vrf: " << sm->vrfName() << ", handleBfdStatusChange for bfd route: " << tracked->bfdStatusKey());
  std::vector<Prefix> prefixes;
  for (auto it = tracked->dependantRouteIteratorConst(); it; it.advance()) prefixes.push_back(it.key().prefix());
  for (auto const& prefix : prefixes) sm->handleRoute(prefix);
}

}  // namespace Routing::Protocol
