// The via side of RouteConfigSm: what one via of a route puts into the via table and the status
// store, or takes out; the indexes of inter-VRF routes and the VRF events that move them; and the
// walk that re-handles every via when the ECMP grouping or the resolution profile changes.
#include "foundations/rib/ResolutionRibProfile.h"
#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Flit.h"
#include "foundations/runtime/Toggle.h"
#include "foundations/runtime/Trace.h"
#include "foundations/types/DynamicTunnelIntfId.h"
#include "static/RouteConfigSm.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

#define RC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

namespace {

using General::StaticRouteEcmpState;

// The ECMP grouping of static routes; with no general config, by via type.
StaticRouteEcmpState ecmpState(Quill::Ptr<General::Config const> const& config) {
  return config ? config->staticRouteEcmpState() : StaticRouteEcmpState::groupByViaType;
}

}  // namespace

Protocol::ViaType RouteConfigSm::getViaType(Rib::ViaContent const& content) {
  if (content.nextHop().isUnspecified()) return Protocol::viaIntfOnly;
  return content.intfId().empty() ? Protocol::viaNextHopOnly : Protocol::viaIntfNextHop;
}

void RouteConfigSm::handleVia(Route const& route, Via const& via, Vrf::VrfIdMap::VrfId srcVrfId,
                              bool ecmpStateChanged, std::uint32_t weight, OptWeight prevWeight) {
  if (routingProtocol_ == Rib::RoutingProtocol::routeInput() && route.routeType() == RouteType::l2NexthopGroup) {
    handleVias(route, srcVrfId, ecmpStateChanged);
    return;
  }
  RouteKey const& key = route.key();
  auto statusRoute = status_->route(key.prefix());
  bool const prefExists = statusRoute && statusRoute->routePrefHas(key.preference());
  if (backlogHas(key) && !prefExists && isStaticMode()) {
    RC_TRACE(8, "handleVia " << key
                             << " rib route not present for route on review backlog, deferring to route review task");
    return;
  }
  // The prefix is served from another VRF (a leaked route) until the pending review withdraws it.
  if (backlogHas(key) && statusRoute && statusRoute->srcVrfId() != srcVrfId && isStaticMode()) {
    RC_TRACE(8, "handleVia " << key << " prefix served from VRF " << statusRoute->srcVrfId()
                             << ", deferring to route review task");
    return;
  }
  if (handleRouteCacheEligibility(route)) return;
  if (viasFixedByType(route)) return;
  if (via.isIpVia()) {
    QUILL_ASSERT(!via.vni() && !via.routerMac(), "!via.vni() && !via.routerMac()");
    handleIpVia(route, via, srcVrfId, ecmpStateChanged, weight, prevWeight);
    return;
  }
  if (!via.vni() || !via.routerMac()) {
    RC_TRACE(6, "handleVia " << key << " " << via << ", ignoring, either of MAC or VNI is zero");
    return;
  }
  QUILL_ASSERT(srcVrfId == vrfId_, "srcVrfId == vrfId()");
  handleEvpnVia(route, via);
}

void RouteConfigSm::handleIpVia(Route const& route, Via const& via, Vrf::VrfIdMap::VrfId srcVrfId,
                                bool ecmpStateChanged, std::uint32_t weight, OptWeight prevWeight) {
  RouteKey const& key = route.key();
  bool const staticMode = isStaticMode();
  Rib::ViaContent content(via.hop(), via.intfId());
  Ondex::AddressFamily const viaAf = via.hop().af();
  Ondex::AddressFamily const af = containerKey_.af();

  // 1. The resolution profile.
  auto const containerProfile = [this] {
    auto const& container = resRibProfileContainer();
    return container ? Rib::ResolutionRibProfileConfig(container->resRibProfile()) : Rib::ResolutionRibProfileConfig();
  };
  if (route.viaResRibProfileConfigHas(via)) {
    content.resolutionRibProfileIs(
        Rib::ResolutionRibProfile::fromConfig(route.viaResRibProfileConfig(via), tunnelRibNameIdMap_));
    RC_TRACE(8, "handleIpVia Setting resRibProfileConfig as " << content.resolutionRibProfile() << " for via " << via);
  } else if (staticMode && viaAf == Ondex::AddressFamily::ipv4 && af == Ondex::AddressFamily::ipv6) {
    QUILL_ASSERT(via.mplsLabel().isValid(), "via.mplsLabel().isValid()");
    content.mplsLabelIs(via.mplsLabel().value());
    Rib::ResolutionRibProfileConfig profile = containerProfile();
    if (profile.empty()) {
      Rib::ResolutionRibProfileConfig tunnels;
      tunnels.methodAppend(Rib::ResolutionMethod::tunnelRib("system-colored-tunnel-rib"));
      tunnels.methodAppend(Rib::ResolutionMethod::tunnelRib("system-tunnel-rib"));
      profile = Rib::ResolutionRibProfile::fromConfig(tunnels, tunnelRibNameIdMap_);
    }
    content.resolutionRibProfileIs(profile);
    RC_TRACE(8, "handleIpVia Setting resRibProfileConfig as " << content.resolutionRibProfile() << " for via " << via);
  } else if (staticMode) {
    content.resolutionRibProfileIs(containerProfile());
    RC_TRACE(8, "handleIpVia Setting resRibProfileConfig as " << content.resolutionRibProfile() << " for via " << via);
  }

  // 2. Weight and label.
  content.weightIs(static_cast<float>(weight));
  if (via.mplsLabel().isValid()) content.mplsLabelIs(via.mplsLabel().value());

  // 3. The via table: the other family's table for a next hop of the other family.
  bool const otherFamily = viaAf.isSet() && viaAf != af;
  if (otherFamily && !staticMode) QUILL_ASSERT(staticMode, "isStaticRoute( routingProtocol() )");
  Rib::Ip::ViaConfig* viaConfig = (otherFamily && staticMode && auxIpViaConfig_) ? auxIpViaConfig_.get()
                                                                                  : ipViaConfig_.get();

  // 4. The interface.
  bool invalidIntf = false;
  if (via.hasIntf()) {
    if (via.hasNoNextHop() && key.prefix().isHostPrefix()) {
      content.nextHopIs(key.prefix().addr());
      content.flagsIs(content.flags() | Rib::ViaContent::kFlagNextHopFromHostPrefix);
      RC_TRACE(8, "handleIpVia Setting the next-hop to the prefix itself because" << " the prefix is a host  prefix");
    }
    if (routingProtocol_ == Rib::RoutingProtocol::routeInput()) {
      if (!Ondex::DynamicTunnelIntfId::isDynamicTunnelIntfId(via.intfId())) {
        invalidIntf = !intfStatus() || !intfStatus()->intf(via.intfId());
      }
    } else if (staticMode) {
      if (!via.hasEgressVrf()) {
        invalidIntf = !intfStatus() || !intfStatus()->intf(via.intfId());
      } else {
        auto egressIntfStatus = getVrfIntfStatus(via.egressVrf(), af);
        invalidIntf = !egressIntfStatus || !egressIntfStatus->intf(via.intfId());
      }
    }
  }

  // 5. The route preference.
  auto routePref = routePrefIs(route, srcVrfId);
  StaticRouteEcmpState const ecmp = ecmpState(routingGeneralConfig());

  // 6. What the former ECMP grouping left.
  if (ecmpStateChanged) {
    if (ecmp == StaticRouteEcmpState::singleGroup) {
      for (auto it = routePref->dedupViaKeyByViaTypeIterator(); it; it.advance()) {
        Protocol::ViaType const type = it.key();
        if (type != Protocol::viaDefault) routePref->dedupViaKeyDelAll(type);
      }
    } else if (ecmp == StaticRouteEcmpState::groupByViaType) {
      routePref->dedupViaKeyDelAll(Protocol::viaDefault);
    }
  }

  // 7. The egress VRF.
  Vrf::VrfIdMap::VrfId viaVrfId = srcVrfId;
  bool const hasVia = route.viaHas(via);
  if (via.hasEgressVrf()) {
    L3::VrfName const& egressVrf = via.egressVrf();
    if (!vrfNameToIdMap() || !vrfNameToIdMap()->vrfNameToIdHas(egressVrf)) {
      RC_TRACE(8, "handleIpVia egress VRF: " << egressVrf << " does not exist");
      if (hasVia)
        addUnresolvedInterVrfRoute(route, egressVrf);
      else if (!anyViaInEgressVrf(route, egressVrf))
        delUnresolvedInterVrfRoute(route, egressVrf);
      return;
    }
    RC_TRACE(8, "handleIpVia egress VRF: " << egressVrf << " exists");
    viaVrfId = egressVrfId(egressVrf);
    if (hasVia)
      addResolvedInterVrfRoute(route, egressVrf);
    else if (!anyViaInEgressVrf(route, egressVrf))
      delResolvedInterVrfRoute(route, egressVrf);
  }

  // 8. The local address of a BFD-tracked via.
  Ondex::IpGenAddr localAddr;
  if (via.localAddr()) {
    localAddr = *via.localAddr();
    QUILL_ASSERT(!localAddr.isUnspecified(), "localAddr");
    if (routingProtocol_ == Rib::RoutingProtocol::routeInput()) {
      QUILL_ASSERT(toggleRouteInputVxlanBfdEnabled(), "toggleRouteInputVxlanBfdEnabled()");
    }
  }

  // 9, 10. The decision.
  bool const configured = hasVia || route.viaResRibProfileConfigHas(via);
  bool const mplsRouting = mplsConfig() && mplsConfig()->mplsRouting();
  bool const labelOk = !via.mplsLabel().isValid() || !mplsConfig() || mplsRouting;
  RC_TRACE(8, "handleIpVia " << key << " invalidIntf: " << invalidIntf << " !configRoute->viaHas( via ): " << !hasVia
                             << " !configRoute->viaResRibProfileConfigHas( via ): "
                             << !route.viaResRibProfileConfigHas(via)
                             << " via.mplsLabel().isValid(): " << via.mplsLabel().isValid()
                             << " mplsConfig()->mplsRouting(): " << mplsRouting);
  bool const entered = staticMode ? ecmp == StaticRouteEcmpState::singleGroup ||
                                        ecmp == StaticRouteEcmpState::groupByViaType
                                  : true;
  auto const typeFor = [&](Rib::ViaContent const& c) {
    return (staticMode && ecmp == StaticRouteEcmpState::groupByViaType) ? getViaType(c) : Protocol::viaDefault;
  };

  if (!invalidIntf && configured && labelOk) {
    // 11 to 14. Adding.
    auto viaKey = viaConfig->dedupViaIs(content, viaVrfId);
    RC_TRACE(6, "handleIpVia " << key << ", Adding Via " << viaKey->viaKey() << ", NextHop: " << content.nextHop()
                               << ", Intf: " << content.intfId() << ", localAddr: " << localAddr
                               << ", weight: " << weight);
    FLIT(6, "RouteConfigSm IP via, prefix: {} via {}", key.prefix(), viaKey->viaKey());
    if (route.bfdTrackedHas(via)) {
      routePref->bfdTrackedViaCollIs(viaKey->viaKey(), localAddr);
    } else if (localAddr.isUnspecified()) {
      RC_TRACE(6, "handleIpVia bfdTrackedViaCollDel " << viaKey->viaKey());
      FLIT(6, "RouteConfigSm bfdTrackedViaCollDel {}", viaKey->viaKey());
      routePref->bfdTrackedViaCollDel(viaKey->viaKey());
    }
    RouteMetric const metric = hasVia ? route.via(via).metric() : 0;
    if (entered) routePref->dedupViaKeyIs(typeFor(content), viaKey, metric);
    if (prevWeight) {
      // The via with its former weight goes only now, so the route is never without it.
      content.weightIs(static_cast<float>(*prevWeight));
      if (auto former = viaConfig->dedupViaIs(content, viaVrfId)) {
        if (entered) routePref->dedupViaKeyDel(typeFor(content), former->viaKey());
      }
    }
    return;
  }

  // 15 to 19. Deleting.
  auto viaKey = viaConfig->dedupViaKey(content, viaVrfId);
  if (!viaKey) {
    RC_TRACE(8, "handleIpVia " << key << ", Ignoring Via " << via);
    return;
  }
  RC_TRACE(6, "handleIpVia " << key << ", Deleting Via " << viaKey->viaKey() << ", Weight: " << weight);
  Ondex::IpGenAddr const tracked = routePref->bfdTrackedViaColl(viaKey->viaKey());
  if (tracked != localAddr) {
    RC_TRACE(6, "handleIpVia skip deleting via " << viaKey->viaKey() << " due to localAddr mismatch: " << tracked
                                                << " " << localAddr);
    FLIT(6, "RouteConfigSm skip deleting via {}", viaKey->viaKey());
    return;
  }
  routePref->bfdTrackedViaCollDel(viaKey->viaKey());
  if (entered) routePref->dedupViaKeyDel(typeFor(content), viaKey->viaKey());
}

void RouteConfigSm::handleRouteViaResRibProfileConfig(Route const& route, Via const& via) {
  if (!checkCommandTagInEnabledStatus(route.commandTagId())) return;
  std::uint32_t const weight = route.viaHas(via) ? route.via(via).weight() : 0;
  handleIpVia(route, via, vrfId_, false, weight, std::nullopt);
}

// ---------------------------------------------------------------------------------------------
// Inter-VRF routes.

Vrf::VrfIdMap::VrfId RouteConfigSm::egressVrfId(L3::VrfName const& vrf) const {
  return vrfNameToIdMap() ? vrfNameToIdMap()->vrfIdOf(vrf) : Vrf::VrfIdMap::VrfId::none();
}

Quill::Ptr<Protocol::IntfStatus const> RouteConfigSm::getVrfIntfStatus(L3::VrfName const& vrf,
                                                                       Ondex::AddressFamily af) const {
  if (!allEgressVrfIntfStatusHelperSm_) return nullptr;
  return allEgressVrfIntfStatusHelperSm_->getVrfIntfStatus(vrf, af);
}

bool RouteConfigSm::anyViaInEgressVrf(Route const& route, L3::VrfName const& egressVrf) {
  for (auto it = route.viaIteratorConst(); it; it.advance()) {
    if (it.key().egressVrf() == egressVrf) return true;
  }
  return false;
}

void RouteConfigSm::addResolvedInterVrfRoute(Route const& route, L3::VrfName const& egressVrf) {
  QUILL_ASSERT(vrfNameToIdMap() && vrfNameToIdMap()->vrfNameToIdHas(egressVrf),
               "vrfNameToIdMap()->vrfNameToIdHas( egressVrf )");
  auto entry = resolvedInterVrfRtCfg()->interVrfRouteConfigIs(egressVrf);
  entry->vrfIdIs(egressVrfId(egressVrf));
  entry->routeConfigIs()->routeIs(route.key(), RouteConstPtr(&route));
  if (allEgressVrfIntfStatusHelperSm_) allEgressVrfIntfStatusHelperSm_->registerForVrfIntfStatus(egressVrf, this);
}

void RouteConfigSm::addUnresolvedInterVrfRoute(Route const& route, L3::VrfName const& egressVrf) {
  auto entry = unresolvedInterVrfRtCfg()->interVrfRouteConfigIs(egressVrf);
  entry->routeConfigIs()->routeIs(route.key(), RouteConstPtr(&route));
  if (allEgressVrfIntfStatusHelperSm_) allEgressVrfIntfStatusHelperSm_->registerForVrfIntfStatus(egressVrf, this);
}

namespace {

// Removes the route from one table; the entry goes with its last route, and the registration
// with the last entry of either table.
template <class Unregister>
void delInterVrfRoute(InterVrfRouteByEgressVrf& table, InterVrfRouteByEgressVrf const& other, RouteKey const& key,
                      L3::VrfName const& egressVrf, L3::VrfName const& vrfName, Unregister&& unregister) {
  auto entry = table.interVrfRouteConfig(egressVrf);
  if (!entry) {
    TRACE(8, "Vrf: " << vrfName << ", delInterVrfRoute VRF " << egressVrf << " does not exist");
    return;
  }
  auto const& routes = entry->routeConfig();
  if (!routes || !routes->routeHas(key)) {
    TRACE(8, "Vrf: " << vrfName << ", delInterVrfRoute prefix " << key << " does not exist");
    return;
  }
  routes->routeDel(key);
  if (routes->routeSize()) return;
  table.interVrfRouteConfigDel(egressVrf);
  if (!other.interVrfRouteConfigHas(egressVrf)) unregister();
}

}  // namespace

void RouteConfigSm::delResolvedInterVrfRoute(Route const& route, L3::VrfName const& egressVrf) {
  delInterVrfRoute(*resolvedInterVrfRtCfg(), *unresolvedInterVrfRtCfg(), route.key(), egressVrf, vrfName_, [&] {
    if (allEgressVrfIntfStatusHelperSm_) allEgressVrfIntfStatusHelperSm_->unregisterForVrfIntfStatus(egressVrf, this);
  });
}

void RouteConfigSm::delUnresolvedInterVrfRoute(Route const& route, L3::VrfName const& egressVrf) {
  delInterVrfRoute(*unresolvedInterVrfRtCfg(), *resolvedInterVrfRtCfg(), route.key(), egressVrf, vrfName_, [&] {
    if (allEgressVrfIntfStatusHelperSm_) allEgressVrfIntfStatusHelperSm_->unregisterForVrfIntfStatus(egressVrf, this);
  });
}

void RouteConfigSm::handleInterVrfRoutesDel(Route const& route) {
  if (!resolvedInterVrfRtCfg()) return;
  for (auto it = route.viaIteratorConst(); it; it.advance()) {
    L3::VrfName const& egressVrf = it.key().egressVrf();
    if (egressVrf.empty()) continue;
    delUnresolvedInterVrfRoute(route, egressVrf);
    delResolvedInterVrfRoute(route, egressVrf);
  }
}

void RouteConfigSm::handleInterVrfRoutes(L3::VrfName const& egressVrf) {
  RC_TRACE(8, "handleInterVrfRoutes Handling inter-vrf routes with egress vrf " << egressVrf);
  if (!initialized()) return;
  for (auto const& table : {resolvedInterVrfRtCfg(), unresolvedInterVrfRtCfg()}) {
    auto entry = table->interVrfRouteConfig(egressVrf);
    if (!entry || !entry->routeConfig()) continue;
    for (auto it = entry->routeConfig()->routeIteratorConst(); it; it.advance()) backlogIs(it.key());
  }
  routeReviewTask()->scheduleTask();
}

void RouteConfigSm::handleVrfNameToId(L3::VrfName const& vrf) {
  if (!initialized()) return;
  if (vrfNameToIdMap() && vrfNameToIdMap()->vrfIdExists(vrf))
    handleVrfAddition(vrf);
  else
    handleVrfDeletion(vrf);
}

void RouteConfigSm::handleVrfDeletion(L3::VrfName const& vrf) {
  auto entry = resolvedInterVrfRtCfg()->interVrfRouteConfig(vrf);
  if (!entry) {
    RC_TRACE(8, "handleVrfDeletion there is no resolved" << " inter-vrf static routes in VRF: " << vrf);
    return;
  }
  Vrf::VrfIdMap::VrfId const oldId = entry->vrfId();
  auto routes = entry->routeConfig();  // kept alive while the entry may go
  if (!routes) return;
  for (auto it = routes->routeIterator(); it; it.advance()) {
    RouteConstPtr route = it.value();
    delAllDedupViaKey(*route, oldId);
    delAllBfdTrackedVias(*route, oldId);
    delResolvedInterVrfRoute(*route, vrf);
    addUnresolvedInterVrfRoute(*route, vrf);
  }
}

void RouteConfigSm::handleVrfAddition(L3::VrfName const& vrf) {
  if (auto entry = resolvedInterVrfRtCfg()->interVrfRouteConfig(vrf); entry && entry->vrfId() != egressVrfId(vrf)) {
    RC_TRACE(2, "handleVrfAddition VRF id changes for VRF: " << vrf);
    handleVrfDeletion(vrf);
  }
  auto entry = unresolvedInterVrfRtCfg()->interVrfRouteConfig(vrf);
  if (!entry || !entry->routeConfig()) return;
  auto routes = entry->routeConfig();
  for (auto it = routes->routeIterator(); it; it.advance()) {
    RouteConstPtr route = it.value();
    addAllDedupViaKey(*route, vrf);
    delUnresolvedInterVrfRoute(*route, vrf);
  }
}

void RouteConfigSm::delAllDedupViaKey(Route const& route, Vrf::VrfIdMap::VrfId oldVrfId) {
  auto routePref = routePrefIs(route, vrfId_);
  for (auto type = routePref->dedupViaKeyByViaTypeIterator(); type; type.advance()) {
    auto byType = type.value();
    Protocol::ViaType const viaType = type.key();
    for (auto it = byType->dedupViaKeyIteratorConst(); it; it.advance()) {
      if (it.key().vrfId() == oldVrfId) routePref->dedupViaKeyDel(viaType, it.key());
    }
  }
}

void RouteConfigSm::delAllBfdTrackedVias(Route const& route, Vrf::VrfIdMap::VrfId oldVrfId) {
  auto routePref = routePrefIs(route, vrfId_);
  for (auto it = routePref->bfdTrackedViaCollIterator(); it; it.advance()) {
    if (it.key().vrfId() == oldVrfId) routePref->bfdTrackedViaCollDel(it.key());
  }
}

void RouteConfigSm::addAllDedupViaKey(Route const& route, L3::VrfName const& vrf) {
  for (auto it = route.viaIteratorConst(); it; it.advance()) {
    if (it.key().egressVrf() != vrf) continue;
    Via const via = it.key();
    handleIpVia(route, via, vrfId_, false, it.value().weight(), std::nullopt);
  }
}

// ---------------------------------------------------------------------------------------------
// The re-evaluation walk.

void RouteConfigSm::reevaluateAllVias() {
  if (!initialized() || !viaReevaluateWalkSm()) return;
  RC_TRACE(8, "reevaluateAllVias");
  viaReevaluateWalkSm()->scheduleWalk();
}

void RouteConfigSm::handleEcmpStateChanged() {
  if (!initialized()) return;
  RC_TRACE(8, "RouteConfigSm::handleEcmpStateChanged, new value: " << ecmpState(routingGeneralConfig()));
  ecmpStateChangedIs(true);
  reevaluateAllVias();
}

void RouteConfigSm::handleResRibProfileUpdate() {
  if (!initialized()) return;
  auto const& container = resRibProfileContainer();
  RC_TRACE(8, "handleResRibProfileUpdate new value: "
                  << (container ? container->resRibProfile() : Rib::ResolutionRibProfile()));
  FLIT(8, "RouteConfigSm::handleResRibProfileUpdate, new value: {}",
       container ? Rib::ResolutionRibProfileConfig(container->resRibProfile()) : Rib::ResolutionRibProfileConfig());
  reevaluateAllVias();
}

void RouteConfigSm::handleReevaluatedRoute() {
  if (!initialized()) return;
  auto const& walk = viaReevaluateWalkSmInput();
  if (!walk || !walk->reevaluatedRoute()) return;
  Route const& route = *walk->reevaluatedRoute();
  // As a change of one of its vias: a route whose command tag is disabled has no entry, and one
  // of explicit preference equal to the global one has none of its own (its review decides).
  if (!checkCommandTagInEnabledStatus(route.commandTagId())) return;
  if (srAtGlobalPrefExplicitly(route.key())) {
    handleRoute(route.key());
    return;
  }
  handleVias(route, vrfId_, ecmpStateChanged());
}

void RouteConfigSm::handleWalkFinished() {
  if (!initialized()) return;
  RC_TRACE(8, "handleWalkFinished Setting ecmpStateChanged to false");
  FLIT(8, "RouteConfigSm::handleWalkFinished, {}", "setting ecmpStateChanged to false");
  ecmpStateChangedIs(false);
}

}  // namespace Routing::Static
