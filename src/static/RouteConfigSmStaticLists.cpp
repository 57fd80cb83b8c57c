// The watchers of the static and dynamic route lists of RouteConfigSm: a change of one attribute
// of a route becomes the smallest work that covers it, and its removal takes the route out.
#include "static/RouteConfigSm.h"

#include "foundations/runtime/Flit.h"
#include "foundations/runtime/Trace.h"
#include "sipvalidation/SipValidationHelper.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

// Statements of a machine that knows its VRF begin with "Vrf: ", the name and ", ".
#define RC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Static {

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
    // Under a static route of the key the dynamic route's vias are not in the status store, and
    // neither is its BFD tracking.
    if (underStaticRoute()) return;
    parent->handleRouteVia(*route, *static_cast<Via const*>(key), parent->srConfigDynamic().get(),
                           parent->sipValidationHelper().get());
  }
}

void RouteConfigSm::NestedSm_RouteDynamic::handleRouteDynamicVia(Via const& via) {
  RouteConfigSm* parent = owner();
  auto route = notifier();
  TRACE(8, "Vrf: " << parent->vrfName() << ", handleRouteDynamicVia " << key() << " " << via);
  if (underStaticRoute()) {
    TRACE(6, "Vrf: " << parent->vrfName() << ", handleRouteDynamicVia Skipping dynamic route: " << key().prefix()
                     << " because there is a config route configured");
    FLIT(6, "handleRouteDynamicVia Skipping dynamic route: {}", key().prefix());
    if (auto const& helper = parent->sipValidationHelper())
      helper->maybeUpdateVtepSipValidation(*route, via, route->viaHas(via));
    return;
  }
  parent->handleRouteVia(*route, via, parent->srConfigDynamic().get(), parent->sipValidationHelper().get());
}

bool RouteConfigSm::NestedSm_RouteDynamic::underStaticRoute() const {
  auto const& config = owner()->srConfig();
  return config && config->routeHas(key());
}

void RouteConfigSm::NestedSm_RouteDynamic::zelDoZombieReactors(bool marked) {
  if (marked && !zelMarkedForDeletion()) handleRouteDynamicDelete();
  NestedSm::zelDoZombieReactors(marked);
}

void RouteConfigSm::NestedSm_RouteDynamic::handleRouteDynamicDelete() {
  RouteConfigSm* parent = owner();
  auto route = notifier();
  if (!route) return;
  if (underStaticRoute() && !parent->backlogHas(key())) {
    TRACE(6, "Vrf: " << parent->vrfName() << ", handleRouteDynamicDelete Nothing needs to be done.  Deleting a dynamic"
                     << " route when there is a static route configured");
    FLIT(6, "RouteConfigSm::handleRouteDelete: Nothing needs to be done. {}",
         "Deleting a dynamic route when there is a static route");
    return;
  }
  parent->handleRouteDelete(*route, false);
}

}  // namespace Routing::Static
