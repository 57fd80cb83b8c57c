// The vias of RouteConfigSm: what one via of a route puts into the via table and the status store,
// or takes out, and the walk that re-handles every via when the ECMP grouping or the resolution
// profile changes. The inter-VRF routes are in RouteConfigSmInterVrf.cpp.
#include "static/RouteConfigSm.h"

#include "foundations/rib/ResolutionRibProfile.h"
#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Flit.h"
#include "foundations/runtime/NotifyValues.h"
#include "foundations/runtime/Toggle.h"
#include "foundations/runtime/Trace.h"
#include "foundations/types/DynamicTunnelIntfId.h"

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
  // A route to the host's loopback has its one to-CPU via whatever vias it is configured with: a via
  // that comes or goes changes nothing of it, and the route's vias are set as a whole.
  if (sendToCpu(route)) {
    handleVias(route, srcVrfId, ecmpStateChanged);
    return;
  }
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
// A changed via of a configured route.

void RouteConfigSm::handleRouteVia(Route const& route, Via const& via, RouteList const* routeList,
                                   SipValidationHelper* sipValidationHelper) {
  RC_TRACE(8, "handleRouteVia " << route.key() << " Via: " << via << " has " << route.vias() << " vias");
  if (sipValidationHelper) {
    sipValidationHelper->maybeUpdateVtepSipValidation(route, via, route.viaHas(via));
    if (sipValidationHelper->checkOnlyEvpnViaVtepSipValidationChange(route, via)) return;
  }
  if (!checkCommandTagInEnabledStatus(route.commandTagId())) return;
  // A drop or to-CPU route has its one via whatever vias are configured (see handleVias).
  bool const dropping = route.routeType() == RouteType::drop ||
                        (route.routeType() == RouteType::dropWithIndication && isStaticMode());
  if (dropping || sendToCpu(route)) return;
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

void RouteConfigSm::handleEvpnVia(Route const& route, Via const& via) {
  RC_TRACE(6, "handleEvpnVia " << route.key() << " " << via << " not entered: EVPN vias are not handled yet");
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
