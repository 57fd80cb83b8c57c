// The inter-VRF routes of RouteConfigSm: the routes with a via that leaves through another VRF,
// indexed by that VRF, and what a VRF's coming, going or change of id does to their vias.
#include "static/RouteConfigSm.h"

#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

#define RC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

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

void RouteConfigSm::handleInterVrfRoutes(L3::VrfName const& egressVrf) {
  RC_TRACE(8, "handleInterVrfRoutes Handling inter-vrf routes with egress vrf " << egressVrf);
  if (!initialized()) return;
  interVrfRoutes_.forEachKey(egressVrf, [this](RouteKey const& key) { backlogIs(key); });
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
  auto entry = interVrfRoutes_.resolved()->interVrfRouteConfig(vrf);
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
    interVrfRoutes_.resolvedDel(route->key(), vrf);
    interVrfRoutes_.unresolvedAdd(*route, vrf);
  }
}

void RouteConfigSm::handleVrfAddition(L3::VrfName const& vrf) {
  if (auto entry = interVrfRoutes_.resolved()->interVrfRouteConfig(vrf); entry && entry->vrfId() != egressVrfId(vrf)) {
    RC_TRACE(2, "handleVrfAddition VRF id changes for VRF: " << vrf);
    handleVrfDeletion(vrf);
  }
  auto entry = interVrfRoutes_.unresolved()->interVrfRouteConfig(vrf);
  if (!entry || !entry->routeConfig()) return;
  auto routes = entry->routeConfig();
  for (auto it = routes->routeIterator(); it; it.advance()) {
    RouteConstPtr route = it.value();
    addAllDedupViaKey(*route, vrf);
    interVrfRoutes_.unresolvedDel(route->key(), vrf);
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

}  // namespace Routing::Static
