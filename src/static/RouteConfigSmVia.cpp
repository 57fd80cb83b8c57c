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
#include "sipvalidation/SipValidationHelper.h"

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
  bool const prefExists = statusRoute && statusRoute->routePrefHas(isStaticMode() ? srEntryPref(key) : key.preference());
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

// Where and how one IP via of a route is entered: what handleIpVia works out before it adds the
// via to, or takes it out of, the route's entry.
struct RouteConfigSm::IpViaTarget {
  Rib::ViaContent content;
  Rib::Ip::ViaConfig* viaConfig = nullptr;
  Vrf::VrfIdMap::VrfId viaVrfId;
  Ondex::IpGenAddr localAddr;
  Quill::Ptr<Protocol::RoutePref> routePref;
  // Whether the ECMP grouping enters vias at all, and whether it groups them by via type.
  bool entered = true;
  bool byViaType = false;
  [[nodiscard]] Protocol::ViaType viaType() const {
    return byViaType ? RouteConfigSm::getViaType(content) : Protocol::viaDefault;
  }
};

void RouteConfigSm::handleIpVia(Route const& route, Via const& via, Vrf::VrfIdMap::VrfId srcVrfId,
                                bool ecmpStateChanged, std::uint32_t weight, OptWeight prevWeight) {
  RouteKey const& key = route.key();
  IpViaTarget target;
  target.content = ipViaContent(route, via, weight);
  target.viaConfig = ipViaTable(via);
  bool const invalidIntf = ipViaIntfMissing(route, via, target.content);
  target.routePref = routePrefIs(route, srcVrfId);
  StaticRouteEcmpState const ecmp = ecmpState(routingGeneralConfig());
  if (ecmpStateChanged) dropFormerEcmpGrouping(*target.routePref, ecmp);
  auto const viaVrfId = ipViaEgressVrfId(route, via, srcVrfId);
  if (!viaVrfId) return;
  target.viaVrfId = *viaVrfId;
  target.localAddr = ipViaLocalAddr(via);

  // A via is entered when its interface exists, the route configures it, and an MPLS label on it
  // is allowed by the MPLS settings; otherwise whatever the via entered before goes.
  bool const hasVia = route.viaHas(via);
  bool const configured = hasVia || route.viaResRibProfileConfigHas(via);
  bool const mplsRouting = mplsConfig() && mplsConfig()->mplsRouting();
  bool const labelOk = !via.mplsLabel().isValid() || !mplsConfig() || mplsRouting;
  RC_TRACE(8, "handleIpVia " << key << " invalidIntf: " << invalidIntf << " !configRoute->viaHas( via ): " << !hasVia
                             << " !configRoute->viaResRibProfileConfigHas( via ): "
                             << !route.viaResRibProfileConfigHas(via)
                             << " via.mplsLabel().isValid(): " << via.mplsLabel().isValid()
                             << " mplsConfig()->mplsRouting(): " << mplsRouting);
  if (isStaticMode()) {
    target.entered = ecmp == StaticRouteEcmpState::singleGroup || ecmp == StaticRouteEcmpState::groupByViaType;
    target.byViaType = ecmp == StaticRouteEcmpState::groupByViaType;
  }
  if (!invalidIntf && configured && labelOk) {
    RouteMetric const metric = hasVia ? route.via(via).metric() : 0;
    ipViaAdd(route, via, target, weight, metric, prevWeight);
  } else {
    ipViaDel(route, via, target, weight);
  }
}

Rib::ViaContent RouteConfigSm::ipViaContent(Route const& route, Via const& via, std::uint32_t weight) const {
  Rib::ViaContent content(via.hop(), via.intfId());
  Ondex::AddressFamily const viaAf = via.hop().af();
  auto const containerProfile = [this] {
    auto const& container = resRibProfileContainer();
    return container ? Rib::ResolutionRibProfileConfig(container->resRibProfile()) : Rib::ResolutionRibProfileConfig();
  };
  // The resolution profile: the via's own, else (static routes) the container's; an IPv4 next hop
  // of an IPv6 route carries its label and resolves through the tunnel RIBs by default.
  if (route.viaResRibProfileConfigHas(via)) {
    content.resolutionRibProfileIs(
        Rib::ResolutionRibProfile::fromConfig(route.viaResRibProfileConfig(via), tunnelRibNameIdMap_));
    RC_TRACE(8, "handleIpVia Setting resRibProfileConfig as " << content.resolutionRibProfile() << " for via " << via);
  } else if (isStaticMode() && viaAf == Ondex::AddressFamily::ipv4 && containerKey_.af() == Ondex::AddressFamily::ipv6) {
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
  } else if (isStaticMode()) {
    content.resolutionRibProfileIs(containerProfile());
    RC_TRACE(8, "handleIpVia Setting resRibProfileConfig as " << content.resolutionRibProfile() << " for via " << via);
  }
  content.weightIs(static_cast<float>(weight));
  if (via.mplsLabel().isValid()) content.mplsLabelIs(via.mplsLabel().value());
  return content;
}

Rib::Ip::ViaConfig* RouteConfigSm::ipViaTable(Via const& via) const {
  // The other family's table for a next hop of the other family (static routes only).
  Ondex::AddressFamily const viaAf = via.hop().af();
  bool const otherFamily = viaAf.isSet() && viaAf != containerKey_.af();
  if (otherFamily && !isStaticMode()) QUILL_ASSERT(isStaticMode(), "isStaticRoute( routingProtocol() )");
  return (otherFamily && isStaticMode() && auxIpViaConfig_) ? auxIpViaConfig_.get() : ipViaConfig_.get();
}

bool RouteConfigSm::ipViaIntfMissing(Route const& route, Via const& via, Rib::ViaContent& content) const {
  if (!via.hasIntf()) return false;
  RouteKey const& key = route.key();
  if (via.hasNoNextHop() && key.prefix().isHostPrefix()) {
    content.nextHopIs(key.prefix().addr());
    content.flagsIs(content.flags() | Rib::ViaContent::kFlagNextHopFromHostPrefix);
    RC_TRACE(8, "handleIpVia Setting the next-hop to the prefix itself because" << " the prefix is a host  prefix");
  }
  if (routingProtocol_ == Rib::RoutingProtocol::routeInput()) {
    if (Ondex::DynamicTunnelIntfId::isDynamicTunnelIntfId(via.intfId())) return false;
    return !intfStatus() || !intfStatus()->intf(via.intfId());
  }
  if (!isStaticMode()) return false;
  if (!via.hasEgressVrf()) return !intfStatus() || !intfStatus()->intf(via.intfId());
  auto egressIntfStatus = getVrfIntfStatus(via.egressVrf(), containerKey_.af());
  return !egressIntfStatus || !egressIntfStatus->intf(via.intfId());
}

void RouteConfigSm::dropFormerEcmpGrouping(Protocol::RoutePref& routePref, StaticRouteEcmpState ecmp) {
  if (ecmp == StaticRouteEcmpState::singleGroup) {
    for (auto it = routePref.dedupViaKeyByViaTypeIterator(); it; it.advance()) {
      Protocol::ViaType const type = it.key();
      if (type != Protocol::viaDefault) routePref.dedupViaKeyDelAll(type);
    }
  } else if (ecmp == StaticRouteEcmpState::groupByViaType) {
    routePref.dedupViaKeyDelAll(Protocol::viaDefault);
  }
}

std::optional<Vrf::VrfIdMap::VrfId> RouteConfigSm::ipViaEgressVrfId(Route const& route, Via const& via,
                                                                   Vrf::VrfIdMap::VrfId srcVrfId) {
  if (!via.hasEgressVrf()) return srcVrfId;
  // The route is indexed under its egress VRF, as resolved or unresolved, while it has a via there.
  L3::VrfName const& egressVrf = via.egressVrf();
  bool const hasVia = route.viaHas(via);
  if (!vrfNameToIdMap() || !vrfNameToIdMap()->vrfNameToIdHas(egressVrf)) {
    RC_TRACE(8, "handleIpVia egress VRF: " << egressVrf << " does not exist");
    if (hasVia)
      interVrfRoutes_.unresolvedAdd(route, egressVrf);
    else if (!anyViaInEgressVrf(route, egressVrf))
      interVrfRoutes_.unresolvedDel(route.key(), egressVrf);
    return std::nullopt;
  }
  RC_TRACE(8, "handleIpVia egress VRF: " << egressVrf << " exists");
  Vrf::VrfIdMap::VrfId const id = egressVrfId(egressVrf);
  if (hasVia)
    interVrfRoutes_.resolvedAdd(route, egressVrf, id);
  else if (!anyViaInEgressVrf(route, egressVrf))
    interVrfRoutes_.resolvedDel(route.key(), egressVrf);
  return id;
}

Ondex::IpGenAddr RouteConfigSm::ipViaLocalAddr(Via const& via) const {
  // The local address of a BFD-tracked via.
  if (!via.localAddr()) return Ondex::IpGenAddr();
  Ondex::IpGenAddr const localAddr = *via.localAddr();
  QUILL_ASSERT(!localAddr.isUnspecified(), "localAddr");
  if (routingProtocol_ == Rib::RoutingProtocol::routeInput()) {
    QUILL_ASSERT(toggleRouteInputVxlanBfdEnabled(), "toggleRouteInputVxlanBfdEnabled()");
  }
  return localAddr;
}

void RouteConfigSm::ipViaAdd(Route const& route, Via const& via, IpViaTarget& target, std::uint32_t weight,
                             RouteMetric metric, OptWeight prevWeight) {
  RouteKey const& key = route.key();
  Protocol::RoutePref& routePref = *target.routePref;
  auto viaKey = target.viaConfig->dedupViaIs(target.content, target.viaVrfId);
  RC_TRACE(6, "handleIpVia " << key << ", Adding Via " << viaKey->viaKey() << ", NextHop: " << target.content.nextHop()
                             << ", Intf: " << target.content.intfId() << ", localAddr: " << target.localAddr
                             << ", weight: " << weight);
  FLIT(6, "RouteConfigSm IP via, prefix: {} via {}", key.prefix(), viaKey->viaKey());
  if (route.bfdTrackedHas(via)) {
    routePref.bfdTrackedViaCollIs(viaKey->viaKey(), target.localAddr);
  } else if (target.localAddr.isUnspecified()) {
    RC_TRACE(6, "handleIpVia bfdTrackedViaCollDel " << viaKey->viaKey());
    FLIT(6, "RouteConfigSm bfdTrackedViaCollDel {}", viaKey->viaKey());
    routePref.bfdTrackedViaCollDel(viaKey->viaKey());
  }
  if (target.entered) routePref.dedupViaKeyIs(target.viaType(), viaKey, metric);
  if (!prevWeight) return;
  // The via with its former weight goes only now, so the route is never without it.
  target.content.weightIs(static_cast<float>(*prevWeight));
  if (auto former = target.viaConfig->dedupViaIs(target.content, target.viaVrfId)) {
    if (target.entered) routePref.dedupViaKeyDel(target.viaType(), former->viaKey());
  }
}

void RouteConfigSm::ipViaDel(Route const& route, Via const& via, IpViaTarget const& target, std::uint32_t weight) {
  RouteKey const& key = route.key();
  auto viaKey = target.viaConfig->dedupViaKey(target.content, target.viaVrfId);
  if (!viaKey) {
    RC_TRACE(8, "handleIpVia " << key << ", Ignoring Via " << via);
    return;
  }
  RC_TRACE(6, "handleIpVia " << key << ", Deleting Via " << viaKey->viaKey() << ", Weight: " << weight);
  Protocol::RoutePref& routePref = *target.routePref;
  Ondex::IpGenAddr const tracked = routePref.bfdTrackedViaColl(viaKey->viaKey());
  if (tracked != target.localAddr) {
    RC_TRACE(6, "handleIpVia skip deleting via " << viaKey->viaKey() << " due to localAddr mismatch: " << tracked
                                                << " " << target.localAddr);
    FLIT(6, "RouteConfigSm skip deleting via {}", viaKey->viaKey());
    return;
  }
  routePref.bfdTrackedViaCollDel(viaKey->viaKey());
  if (target.entered) routePref.dedupViaKeyDel(target.viaType(), viaKey->viaKey());
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
