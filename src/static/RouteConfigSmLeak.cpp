// The leaked routes of RouteConfigSm: the leaked route in use per key, and the watchers of the
// leak configuration's entries and of the source routes they point at.
#include "static/RouteConfigSm.h"

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Flit.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

// Statements of a machine that knows its VRF begin with "Vrf: ", the name and ", ".
#define RC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

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
// The watchers.

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

}  // namespace Routing::Static
