#include "protocol/ProtocolViaMetricStatusSm.h"

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("IpRib::ViaMetricStatusSm");

namespace Routing::Protocol {

ViaMetricStatusSm::ViaMetricStatusSm(Quill::Ptr<Rib::ViaMetricStatusByVrf const> viaMetricStatusByVrf,
                                     Quill::Ptr<RouteStatusDir> routeStatusDir)
    : routeStatusDir_(std::move(routeStatusDir)) {
  viaMetricStatusByVrfIs(std::move(viaMetricStatusByVrf));
  routeStatusDirInput_.set(routeStatusDir_);
  if (routeStatusDir_) {
    for (auto it = routeStatusDir_->statusIteratorConst(); it; it.advance()) routeStatusIs(it.key());
  }
  handleInitialized();
}

void ViaMetricStatusSm::handleInitialized() {
  TRACE(8, "handleInitialized");
  initializedIs(true);
  TRACE(1, " Initialized --> True");
  if (!routeStatusDir_) return;
  for (auto it = routeStatusDir_->statusIteratorConst(); it; it.advance()) {
    RouteStatusKey const key = it.key();
    TRACE(8, "handleInitialized key is " << key);
    handleRouteStatus(key, false);
  }
}

// ---------------------------------------------------------------------------------------------
// The forward path: a report on a via reaches the routes that use it.

void ViaMetricStatusSm::handleViaMetric(VrfId vrfId, Rib::Transport transport, Rib::RoutingProtocol protocol,
                                        Rib::ViaKey const& viaKey) {
  TRACE(8, "handleViaMetric vrf " << vrfId << " transport " << transport << " protocol " << protocol << " via "
                                  << viaKey);
  // Held: a reactor of the bump may remove the entry from the index meanwhile.
  Quill::Ptr<RouteByViaKey> const users = routeByViaKey(viaKey);
  if (!users) return;
  for (auto it = users->route().iterator(); it; it.advance()) {
    PrefixPrefVrfId const entry = it.currNodeMaybeStale();
    TRACE(9, "handleViaMetric looking at " << entry);
    auto const status = routeStatusDir_->status(RouteStatusKey{entry.vrfId, entry.prefix.af()});
    if (!status) {
      TRACE(9, "handleViaMetric " << entry << " no status for this route");
      continue;
    }
    auto const route = status->route(entry.prefix);
    if (!route) {
      TRACE(9, "handleViaMetric no route from " << entry);
      continue;
    }
    TRACE(6, "handleViaMetric setting route changed on " << entry);
    route->routeChangedVersionInc(1);
  }
}

// ---------------------------------------------------------------------------------------------
// The index.

Quill::Ptr<RouteByViaKey> ViaMetricStatusSm::routeByViaKeyIs(Rib::ViaKey const& viaKey) {
  if (auto existing = routeByViaKey(viaKey)) return existing;
  auto entry = RouteByViaKey::RouteByViaKeyIs(viaKey);
  routeByViaKeyIs(viaKey, entry);
  return entry;
}

namespace {
// Whether any type of the preference holds the via; a via may lie under several types.
bool prefHoldsVia(RoutePref const& routePref, Rib::ViaKey const& viaKey) {
  for (auto it = routePref.dedupViaKeyByViaTypeIteratorConst(); it; it.advance()) {
    if (it.value()->dedupViaKeyHas(viaKey)) return true;
  }
  return false;
}
}  // namespace

void ViaMetricStatusSm::handleRouteViaKey(Status const* status, Route const* route, RoutePref const* routePref,
                                          Rib::ViaKey const& viaKey, bool del, bool viaKnown) {
  if (!status || !route || !routePref) return;
  PrefixPrefVrfId const key{route->routeKey(), routePref->preference(), status->key().vrfId};
  if (!del && (viaKnown || prefHoldsVia(*routePref, viaKey))) {
    auto users = routeByViaKeyIs(viaKey);
    QUILL_ASSERT(users, "rbvk");
    if (!users->routeIs(key)) return;
    TRACE(6, "handleRouteViaKey " << viaKey << " used by " << key);
    // The first review of a new via, even if the RIB has already reported on it. The record is
    // bumped through the store's writable handle; the machines watch it read-only.
    auto const owner = routeStatusDir_->status(status->key());
    if (auto const writable = owner ? owner->route(route->routeKey()) : nullptr) writable->routeChangedVersionInc(1);
    return;
  }
  auto const users = routeByViaKey(viaKey);
  if (!users || !users->routeDel(key)) return;
  TRACE(6, "handleRouteViaKey " << viaKey << " no longer used by " << key);
  if (users->route().size() == 0) routeByViaKeyDel(viaKey);
}

void ViaMetricStatusSm::handleRoutePrefVias(Status const& status, Route const& route, RoutePref const& routePref,
                                            bool del) {
  for (auto type = routePref.dedupViaKeyByViaTypeIteratorConst(); type; type.advance()) {
    auto const byType = type.value();
    for (auto via = byType->dedupViaKeyIteratorConst(); via; via.advance()) {
      handleRouteViaKey(&status, &route, &routePref, via.currNodeMaybeStale(), del, true);
    }
  }
}

void ViaMetricStatusSm::handleRouteVias(Status const& status, Route const& route, bool del) {
  for (auto it = route.routePrefIteratorConst(); it; it.advance()) {
    auto const routePref = it.value();
    handleRoutePrefVias(status, route, *routePref, del);
  }
}

void ViaMetricStatusSm::handleRouteStatus(RouteStatusKey const& key, bool forceDel) {
  TRACE(8, "handleRouteStatus " << key << " forceDel is " << forceDel);
  auto const nested = routeStatus(key);
  if (!nested || !nested->notifier()) {
    TRACE(8, "handleRouteStatus " << key << " no routeStatus");
    return;
  }
  auto const status = nested->notifier();
  for (auto it = status->routeIteratorConst(); it; it.advance()) {
    auto const route = it.value();
    handleRouteVias(*status, *route, forceDel);
  }
}

// ---------------------------------------------------------------------------------------------
// The store's directory.

void ViaMetricStatusSm::handleStatus(RouteStatusKey const& key) {
  if (routeStatusDir_->statusHas(key))
    routeStatusIs(key);
  else
    routeStatusDel(key);
}

void ViaMetricStatusSm::routeStatusIs(RouteStatusKey const& key) {
  auto const status = routeStatusDir_->status(key);
  if (auto const existing = routeStatus(key)) {
    if (existing->notifier() == status) return;
    routeStatusDel(key);
  }
  TRACE(2, "routeStatusIs " << key);
  routeStatus_.is(key, status);
}

void ViaMetricStatusSm::routeStatusDel(RouteStatusKey const& key) {
  auto const nested = routeStatus(key);
  if (!nested) return;
  TRACE(2, "routeStatusDel " << key);
  nested->handleDel();
  routeStatus_.del(key);
}

// ---------------------------------------------------------------------------------------------
// The via metric tree.

ViaMetricStatusSm::NestedSm_VmsByTransport::NestedSm_VmsByTransport(
    ViaMetricStatusSm* owner, VrfId const& vrfId, Quill::Ptr<Rib::ViaMetricStatusByTransport const> const& byTransport)
    : NestedSm(owner, vrfId, byTransport) {
  if (byTransport) Reconciler::reconcileAll(this, *byTransport);
}

void ViaMetricStatusSm::NestedSm_VmsByTransport::onAttribute(Zel::AttrId id, void const* key) {
  if (auto const byTransport = notifier()) Reconciler::run(this, *byTransport, id, key);
}

void ViaMetricStatusSm::NestedSm_VmsByTransport::notifierIs(
    Quill::Ptr<Rib::ViaMetricStatusByTransport const> byTransport) {
  NestedSm::notifierIs(byTransport);
  if (byTransport) Reconciler::reconcileAll(this, *byTransport);
}

ViaMetricStatusSm::NestedSm_VmsByProto::NestedSm_VmsByProto(
    NestedSm_VmsByTransport* owner, Rib::Transport const& transport,
    Quill::Ptr<Rib::ViaMetricStatusByProtocol const> const& byProtocol)
    : NestedSm(owner, transport, byProtocol) {
  if (byProtocol) Reconciler::reconcileAll(this, *byProtocol);
}

void ViaMetricStatusSm::NestedSm_VmsByProto::onAttribute(Zel::AttrId id, void const* key) {
  if (auto const byProtocol = notifier()) Reconciler::run(this, *byProtocol, id, key);
}

void ViaMetricStatusSm::NestedSm_VmsByProto::notifierIs(Quill::Ptr<Rib::ViaMetricStatusByProtocol const> byProtocol) {
  NestedSm::notifierIs(byProtocol);
  if (byProtocol) Reconciler::reconcileAll(this, *byProtocol);
}

ViaMetricStatusSm::NestedSm_Vms::NestedSm_Vms(NestedSm_VmsByProto* owner, Rib::RoutingProtocol const& protocol,
                                              Quill::Ptr<Rib::ViaMetricStatus const> const& table)
    : NestedSm(owner, protocol, table) {
  handleViaMetric();
}

void ViaMetricStatusSm::NestedSm_Vms::onAttribute(Zel::AttrId id, void const* key) {
  if (id == Rib::ViaMetricStatus::viaMetricId) handleViaMetric(*static_cast<Rib::ViaKey const*>(key));
}

void ViaMetricStatusSm::NestedSm_Vms::notifierIs(Quill::Ptr<Rib::ViaMetricStatus const> table) {
  if (table == notifier()) return;
  NestedSm::notifierIs(std::move(table));
  handleViaMetric();
}

void ViaMetricStatusSm::NestedSm_Vms::handleViaMetric() {
  auto const table = notifier();
  if (!table) return;
  for (auto it = table->viaMetricIteratorConst(); it; it.advance()) handleViaMetric(it.currNodeMaybeStale());
}

void ViaMetricStatusSm::NestedSm_Vms::handleViaMetric(Rib::ViaKey const& viaKey) {
  NestedSm_VmsByTransport* byTransport = owner()->owner();
  byTransport->owner()->handleViaMetric(byTransport->key(), owner()->key(), key(), viaKey);
}

// ---------------------------------------------------------------------------------------------
// The route status store.

ViaMetricStatusSm::NestedSm_RouteStatus::NestedSm_RouteStatus(ViaMetricStatusSm* owner, RouteStatusKey const& key,
                                                              Quill::Ptr<Status const> const& status)
    : NestedSm(owner, key, status) {
  for (auto it = status->routeIteratorConst(); it; it.advance()) routeIs(it.key());
}

void ViaMetricStatusSm::NestedSm_RouteStatus::onAttribute(Zel::AttrId id, void const* key) {
  if (id != Status::routeId) return;
  auto const& prefix = *static_cast<Ondex::IpGenPrefix const*>(key);
  if (notifier()->routeHas(prefix))
    routeIs(prefix);
  else
    routeDel(prefix);
}

void ViaMetricStatusSm::NestedSm_RouteStatus::routeIs(Ondex::IpGenPrefix const& prefix) {
  auto const record = notifier()->route(prefix);
  if (auto const existing = route(prefix)) {
    if (existing->notifier() == record) return;
    routeDel(prefix);
  }
  route_.is(prefix, record);
}

void ViaMetricStatusSm::NestedSm_RouteStatus::routeDel(Ondex::IpGenPrefix const& prefix) {
  auto const nested = route(prefix);
  if (!nested) return;
  nested->handleDel();
  route_.del(prefix);
}

void ViaMetricStatusSm::NestedSm_RouteStatus::handleDel() { owner()->handleRouteStatus(key(), true); }

ViaMetricStatusSm::NestedSm_Route::NestedSm_Route(NestedSm_RouteStatus* owner, Ondex::IpGenPrefix const& prefix,
                                                  Quill::Ptr<Route const> const& route)
    : NestedSm(owner, prefix, route) {
  for (auto it = route->routePrefIteratorConst(); it; it.advance()) routePrefIs(it.key());
}

void ViaMetricStatusSm::NestedSm_Route::onAttribute(Zel::AttrId id, void const* key) {
  if (id != Route::routePrefId) return;
  auto const pref = *static_cast<RoutePreference const*>(key);
  if (notifier()->routePrefHas(pref))
    routePrefIs(pref);
  else
    routePrefDel(pref);
}

void ViaMetricStatusSm::NestedSm_Route::routePrefIs(RoutePreference pref) {
  auto const record = notifier()->routePref(pref);
  if (auto const existing = routePref(pref)) {
    if (existing->notifier() == record) return;
    routePrefDel(pref);
  }
  routePref_.is(pref, record);
}

void ViaMetricStatusSm::NestedSm_Route::routePrefDel(RoutePreference pref) {
  auto const nested = routePref(pref);
  if (!nested) return;
  nested->handleDel();
  routePref_.del(pref);
}

void ViaMetricStatusSm::NestedSm_Route::handleDel() {
  auto const status = owner()->notifier();
  auto const route = notifier();
  TRACE(6, "NestedSm_Route::handleDel " << key());
  owner()->owner()->handleRouteVias(*status, *route, true);
}

ViaMetricStatusSm::NestedSm_RoutePref::NestedSm_RoutePref(NestedSm_Route* owner, RoutePreference const& pref,
                                                          Quill::Ptr<RoutePref const> const& routePref)
    : NestedSm(owner, pref, routePref) {
  for (auto it = routePref->dedupViaKeyByViaTypeIteratorConst(); it; it.advance()) {
    dedupViaKeyByViaType_.is(it.key(), it.value());
  }
}

void ViaMetricStatusSm::NestedSm_RoutePref::onAttribute(Zel::AttrId id, void const* key) {
  if (id != RoutePref::dedupViaKeyByViaTypeId) return;
  auto const viaType = *static_cast<ViaType const*>(key);
  if (notifier()->dedupViaKeyByViaTypeHas(viaType))
    dedupViaKeyByViaTypeIs(viaType);
  else
    dedupViaKeyByViaTypeDel(viaType);
}

void ViaMetricStatusSm::NestedSm_RoutePref::dedupViaKeyByViaTypeIs(ViaType viaType) {
  dedupViaKeyByViaType_.is(viaType, notifier()->dedupViaKeyByViaType(viaType));
}

void ViaMetricStatusSm::NestedSm_RoutePref::dedupViaKeyByViaTypeDel(ViaType viaType) {
  auto const nested = dedupViaKeyByViaType(viaType);
  if (!nested) return;
  dedupViaKeyByViaType_.del(viaType);
  // Usually empty: the store removes a type with its last via. The type is already out of the
  // preference, so each via is kept only where another type still holds it.
  auto const byType = nested->notifier();
  for (auto it = byType->dedupViaKeyIteratorConst(); it; it.advance()) handleViaKey(it.currNodeMaybeStale());
}

void ViaMetricStatusSm::NestedSm_RoutePref::handleViaKey(Rib::ViaKey const& viaKey) {
  NestedSm_Route* route = owner();
  NestedSm_RouteStatus* status = route->owner();
  status->owner()->handleRouteViaKey(status->notifier().get(), route->notifier().get(), notifier().get(), viaKey,
                                     false, false);
}

void ViaMetricStatusSm::NestedSm_RoutePref::handleDel() {
  NestedSm_Route* route = owner();
  NestedSm_RouteStatus* status = route->owner();
  status->owner()->handleRoutePrefVias(*status->notifier(), *route->notifier(), *notifier(), true);
}

void ViaMetricStatusSm::NestedSm_DedupViaKeyByViaType::onAttribute(Zel::AttrId id, void const* key) {
  if (id == DedupViaKeyByViaType::dedupViaKeyId) owner()->handleViaKey(*static_cast<Rib::ViaKey const*>(key));
}

}  // namespace Routing::Protocol
