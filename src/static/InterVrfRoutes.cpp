#include "static/InterVrfRoutes.h"

#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

namespace Routing::Static {

InterVrfRoutes::InterVrfRoutes(Quill::Ptr<AllEgressVrfIntfStatusHelperSm> helper, EgressVrfIntfStatusClient* client,
                               Ondex::AddressFamily af, L3::VrfName const& vrfName, Rib::RoutingProtocol protocol)
    : helper_(std::move(helper)),
      client_(client),
      af_(af),
      vrfName_(vrfName),
      clientKey_{vrfName, protocol},
      resolved_(InterVrfRouteByEgressVrf::InterVrfRouteByEgressVrfIs()),
      unresolved_(InterVrfRouteByEgressVrf::InterVrfRouteByEgressVrfIs()) {}

void InterVrfRoutes::registerFor(L3::VrfName const& egressVrf) {
  if (helper_) helper_->registerForVrfIntfStatus(egressVrf, af_, clientKey_, client_);
}

void InterVrfRoutes::resolvedAdd(Route const& route, L3::VrfName const& egressVrf, VrfId egressVrfId) {
  auto entry = resolved_->interVrfRouteConfigIs(egressVrf);
  entry->vrfIdIs(egressVrfId);
  entry->routeConfigIs()->routeIs(route.key(), Quill::Ptr<Route const>(&route));
  registerFor(egressVrf);
}

void InterVrfRoutes::unresolvedAdd(Route const& route, L3::VrfName const& egressVrf) {
  auto entry = unresolved_->interVrfRouteConfigIs(egressVrf);
  entry->routeConfigIs()->routeIs(route.key(), Quill::Ptr<Route const>(&route));
  registerFor(egressVrf);
}

void InterVrfRoutes::del(InterVrfRouteByEgressVrf& index, InterVrfRouteByEgressVrf const& other, RouteKey const& key,
                         L3::VrfName const& egressVrf) {
  auto entry = index.interVrfRouteConfig(egressVrf);
  if (!entry) {
    TRACE(8, "Vrf: " << vrfName_ << ", delInterVrfRoute VRF " << egressVrf << " does not exist");
    return;
  }
  auto const& routes = entry->routeConfig();
  if (!routes || !routes->routeHas(key)) {
    TRACE(8, "Vrf: " << vrfName_ << ", delInterVrfRoute prefix " << key << " does not exist");
    return;
  }
  routes->routeDel(key);
  if (routes->routeSize()) return;
  index.interVrfRouteConfigDel(egressVrf);
  if (!other.interVrfRouteConfigHas(egressVrf) && helper_) helper_->unregisterForVrfIntfStatus(egressVrf, af_, clientKey_);
}

void InterVrfRoutes::resolvedDel(RouteKey const& key, L3::VrfName const& egressVrf) {
  del(*resolved_, *unresolved_, key, egressVrf);
}

void InterVrfRoutes::unresolvedDel(RouteKey const& key, L3::VrfName const& egressVrf) {
  del(*unresolved_, *resolved_, key, egressVrf);
}

void InterVrfRoutes::routeDel(Route const& route) {
  for (auto it = route.viaIteratorConst(); it; it.advance()) {
    L3::VrfName const& egressVrf = it.key().egressVrf();
    if (egressVrf.empty()) continue;
    unresolvedDel(route.key(), egressVrf);
    resolvedDel(route.key(), egressVrf);
  }
}

void InterVrfRoutes::unregisterAll() {
  if (!helper_) return;
  for (Index const* index : {&resolved_, &unresolved_}) {
    for (auto it = (*index)->interVrfRouteConfigIteratorConst(); it; it.advance()) {
      helper_->unregisterForVrfIntfStatus(it.key(), af_, clientKey_);
    }
  }
}

}  // namespace Routing::Static
