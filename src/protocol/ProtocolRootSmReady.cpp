// RootSm's readiness: the ready sets per VRF and family, the VRFs' readiness records and the RIB's
// sequence handshake, and the nested machines and reactors that drive them.
#include <optional>

#include "foundations/runtime/Dualog.h"
#include "foundations/runtime/Exception.h"
#include "protocol/ProtocolRootSm.h"

ZEL_TRACE_FACILITY("IpRib::ProtocolRootSm");

namespace Routing::Protocol {

namespace {

bool isDefaultVrf(L3::VrfName const& vrf) { return vrf == L3::VrfName("default"); }

}  // namespace

Quill::Ptr<Vrf::VrfIdMap::NameToIdMap const> RootSm::currentNameToIdMap() const {
  auto const& wrapper = vrfNameStatus();
  return wrapper ? Quill::Ptr<Vrf::VrfIdMap::NameToIdMap const>(wrapper->nameToIdMap()) : nullptr;
}

Quill::Ptr<VrfReadyStatus> RootSm::vrfReadyStatusOf(L3::VrfName const& vrf) const {
  return allVrfReadyStatus() ? allVrfReadyStatus()->vrfReadyStatus(vrf) : nullptr;
}

Quill::Ptr<VrfRibSeqTrigger> RootSm::vrfRibSeqTriggerOf(L3::VrfName const& vrf) const {
  return allVrfRibSeqTrigger() ? allVrfRibSeqTrigger()->vrfRibSeqTrigger(vrf) : nullptr;
}

Quill::Ptr<RootSm::ViaMetricStatusEntry const> RootSm::viaMetricStatus(Rib::Transport transport, VrfId vrfId,
                                                                       std::string_view ribString) const {
  Quill::Ptr<Rib::ViaMetricStatusByVrf const> table;
  if (ribString == "rib")
    table = viaMetricStatusByVrf();
  else if (ribString == "mrib")
    table = mcViaMetricStatusByVrf();
  else
    return nullptr;
  if (!table) return nullptr;
  auto const byTransport = table->vrfStatus(vrfId);
  if (!byTransport) {
    DUALOG(9, "({}), no Vrf Status", vrfId.value());
    return nullptr;
  }
  auto entry = byTransport->transportStatus(transport);
  if (!entry) {
    DUALOG(9, "({}), no transport {} Status", vrfId.value(), transport.toStrep());
    return nullptr;
  }
  return entry;
}

// ---- Unicast ready sets.

void RootSm::setReadyVrf(L3::VrfName const& vrf) {
  DUALOG(8, "vrf={}", vrf);
  setReadyVrfIpv4(vrf);
  setReadyVrfIpv6(vrf);
}

// What differs between the families' ready rules: the tables read, the sets written, the texts.
struct RootSm::ReadyV4 {
  static constexpr Rib::Transport transport() { return Rib::Transport::transportIpv4(); }
  static auto const& looping(RootSm const& r) { return r.loopingRouteStatusByVrf4(); }
  static auto const& mcLooping(RootSm const& r) { return r.mcLoopingRouteStatusByVrf4(); }
  static bool intfTableHas(RootSm const& r, L3::VrfName const& vrf) {
    return r.ipv4IntfStatus() && r.ipv4IntfStatus()->vrfIpIntfStatus(vrf);
  }
  static bool readyHas(RootSm const& r, L3::VrfName const& vrf) { return r.readyVrfIpv4Has(vrf); }
  static void readyIs(RootSm& r, L3::VrfName const& vrf) { r.readyVrfIpv4Is(vrf); }
  static void readyDel(RootSm& r, L3::VrfName const& vrf) { r.readyVrfIpv4Del(vrf); }
  static bool nullHas(RootSm const& r, L3::VrfName const& vrf) { return r.readyVrfIpv4SetWithNullIntfStatusHas(vrf); }
  static void nullIs(RootSm& r, L3::VrfName const& vrf) { r.readyVrfIpv4SetWithNullIntfStatusIs(vrf); }
  static void nullDel(RootSm& r, L3::VrfName const& vrf) { r.readyVrfIpv4SetWithNullIntfStatusDel(vrf); }
  static void mcIs(RootSm& r, L3::VrfName const& vrf) { r.mcReadyVrfIpv4Is(vrf); }
  static void mcDel(RootSm& r, L3::VrfName const& vrf) { r.mcReadyVrfIpv4Del(vrf); }
  static constexpr char kNoMetric[] = "No V4 ViaMetricStatus for vrf={}";
  static constexpr char kNoEvpn[] = "No V4 Evpn ViaMetricStatus for vrf={}";
  static constexpr char kGainedIntf[] = "readyVrfIPv4 (without intfId): del vrf={}";
  static constexpr char kNoIntf[] = "No V4 IpIntfStatus for vrf={}";
  static constexpr char kLostIntf[] = "readyVrfIPv4Del (with intfId): del vrf={}";
  static constexpr char kNoLooping[] = "No V4 LoopingRouteStatus for vrf={}";
  static constexpr char kNullAdd[] = "readyVrfIpV4SetWithNullIntfStatus: add vrf={}";
  static constexpr char kAdd[] = "readyVrfIpv4: add vrf={}";
  static constexpr char kDel[] = "readyVrfIpv4: del vrf={}";
  static constexpr char kNoMcMetric[] = "No V4 McViaMetricStatus for vrf={}";
  static constexpr char kNoMcIntf[] = "No V4 McIpIntfStatus for vrf={}";
  static constexpr char kNoMcLooping[] = "No V4 McLoopingRouteStatus for vrf={}";
  static constexpr char kMcAdd[] = "mcReadyVrfIpv4: add vrf={}";
  static constexpr char kMcDel[] = "mcReadyVrfIpv4: del vrf={}";
};

struct RootSm::ReadyV6 {
  static constexpr Rib::Transport transport() { return Rib::Transport::transportIpv6(); }
  static auto const& looping(RootSm const& r) { return r.loopingRouteStatusByVrf6(); }
  static auto const& mcLooping(RootSm const& r) { return r.mcLoopingRouteStatusByVrf6(); }
  static bool intfTableHas(RootSm const& r, L3::VrfName const& vrf) {
    return r.ipv6IntfStatus() && r.ipv6IntfStatus()->vrfIp6IntfStatus(vrf);
  }
  static bool readyHas(RootSm const& r, L3::VrfName const& vrf) { return r.readyVrfIpv6Has(vrf); }
  static void readyIs(RootSm& r, L3::VrfName const& vrf) { r.readyVrfIpv6Is(vrf); }
  static void readyDel(RootSm& r, L3::VrfName const& vrf) { r.readyVrfIpv6Del(vrf); }
  static bool nullHas(RootSm const& r, L3::VrfName const& vrf) { return r.readyVrfIpv6SetWithNullIntfStatusHas(vrf); }
  static void nullIs(RootSm& r, L3::VrfName const& vrf) { r.readyVrfIpv6SetWithNullIntfStatusIs(vrf); }
  static void nullDel(RootSm& r, L3::VrfName const& vrf) { r.readyVrfIpv6SetWithNullIntfStatusDel(vrf); }
  static void mcIs(RootSm& r, L3::VrfName const& vrf) { r.mcReadyVrfIpv6Is(vrf); }
  static void mcDel(RootSm& r, L3::VrfName const& vrf) { r.mcReadyVrfIpv6Del(vrf); }
  static constexpr char kNoMetric[] = "No V6 ViaMetricStatus, vrf={}";
  static constexpr char kNoEvpn[] = "No V6 Evpn ViaMetricStatus, vrf={}";
  static constexpr char kGainedIntf[] = "readyVrfIPv6 (without intfId): del vrf={}";
  static constexpr char kNoIntf[] = "No v6IntfStatus, vrf={}";
  static constexpr char kLostIntf[] = "readyVrfIPv6Del (with intfId): del vrf={}";
  static constexpr char kNoLooping[] = "No V6 LoopingRouteStatus for vrf={}";
  static constexpr char kNullAdd[] = "readyVrfIpV6SetWithNullIntfStatus: add vrf={}";
  static constexpr char kAdd[] = "readyVrfIpv6: add vrf={}";
  static constexpr char kDel[] = "readyVrfIpv6: del vrf={}";
  static constexpr char kNoMcMetric[] = "No V6 McViaMetricStatus for vrf={}";
  static constexpr char kNoMcIntf[] = "No V6 McIpIntfStatus for vrf={}";
  static constexpr char kNoMcLooping[] = "No V6 McLoopingRouteStatus for vrf={}";
  static constexpr char kMcAdd[] = "mcReadyVrfIpv6: add vrf={}";
  static constexpr char kMcDel[] = "mcReadyVrfIpv6: del vrf={}";
};

void RootSm::setReadyVrfIpv4(L3::VrfName const& vrf) { doSetReadyVrf<ReadyV4>(vrf); }
void RootSm::setReadyVrfIpv6(L3::VrfName const& vrf) { doSetReadyVrf<ReadyV6>(vrf); }

// ---- What both rules do first: find the VRF's id, or take the VRF out of the rule's sets when
// there is no VRF map or the VRF has no id. The two rules trace these cases in texts of their own.

template <class F>
struct RootSm::UnicastLookup {
  static constexpr char kNoMap[] = "no nameToIdMap vrf={}";
  static constexpr char kNoId[] = "no vrfId vrf={}";
  static void noMap(RootSm& r, L3::VrfName const& vrf) {
    F::readyDel(r, vrf);
    F::nullDel(r, vrf);
  }
  // The null-interface set is left alone: the VRF's interface state has not changed.
  static void noId(RootSm& r, L3::VrfName const& vrf) { F::readyDel(r, vrf); }
};

template <class F>
struct RootSm::MulticastLookup {
  static constexpr char kNoMap[] = "No NameToIdMap vrf={}";
  static constexpr char kNoId[] = "No vrfId vrf={}";
  static void noMap(RootSm& r, L3::VrfName const& vrf) { F::mcDel(r, vrf); }
  static void noId(RootSm& r, L3::VrfName const& vrf) { F::mcDel(r, vrf); }
};

template <class Lookup>
std::optional<RootSm::VrfId> RootSm::readyRuleVrfId(L3::VrfName const& vrf) {
  DUALOG(0, "vrf={}", vrf);
  if (!initialized()) return std::nullopt;
  auto const names = currentNameToIdMap();
  if (!names) {
    DUALOG(0, Lookup::kNoMap, vrf);
    Lookup::noMap(*this, vrf);
    return std::nullopt;
  }
  VrfId const vrfId = names->vrfIdOf(vrf);
  if (vrfId.isNone()) {
    DUALOG(0, Lookup::kNoId, vrf);
    Lookup::noId(*this, vrf);
    return std::nullopt;
  }
  DUALOG(0, "vrf={} vrfId={}", vrf, vrfId.value());
  return vrfId;
}

// ---- The unicast rule.

template <class F>
void RootSm::doSetReadyVrf(L3::VrfName const& vrf) {
  auto const found = readyRuleVrfId<UnicastLookup<F>>(vrf);
  if (!found) return;
  VrfId const vrfId = *found;
  // Every input is read before any set changes: a change re-enters these functions.
  auto const a = viaMetricStatus(F::transport(), vrfId, "rib");
  auto const& loopingTable = F::looping(*this);
  auto const l = loopingTable ? loopingTable->vrfStatus(vrf) : nullptr;
  bool const i = F::intfTableHas(*this, vrf);
  auto const e = viaMetricStatus(Rib::Transport::transportEvpn(), VrfId::defaultVrf(), "rib");
  auto const d4 = viaMetricStatus(Rib::Transport::transportIpv4(), VrfId::defaultVrf(), "rib");
  auto const d6 = viaMetricStatus(Rib::Transport::transportIpv6(), VrfId::defaultVrf(), "rib");
  if (!a) DUALOG(0, F::kNoMetric, vrf);
  if (!e) DUALOG(0, F::kNoEvpn, vrf);
  if (i) {
    if (F::nullHas(*this, vrf)) {
      // Ready without interfaces and now with them: out of the set, so that the VRF is seen to
      // become ready anew below.
      DUALOG(0, F::kGainedIntf, vrf);
      F::readyDel(*this, vrf);
      F::nullDel(*this, vrf);
    }
  } else {
    DUALOG(0, F::kNoIntf, vrf);
    if (F::readyHas(*this, vrf) && !F::nullHas(*this, vrf)) {
      DUALOG(0, F::kLostIntf, vrf);
      F::readyDel(*this, vrf);
    }
  }
  if (!l) DUALOG(0, F::kNoLooping, vrf);
  if (!d4) DUALOG(0, "No V4 DefaultVrf viaMetricStatic for vrf={}", vrf);
  if (!d6) DUALOG(0, "No V6 DefaultVrf viaMetricStatic for vrf={}", vrf);
  if (a && e && l && d4 && d6) {
    if (!F::readyHas(*this, vrf) && !i) {
      DUALOG(0, F::kNullAdd, vrf);
      F::nullIs(*this, vrf);
    }
    DUALOG(0, F::kAdd, vrf);
    F::readyIs(*this, vrf);
  } else {
    DUALOG(0, F::kDel, vrf);
    F::readyDel(*this, vrf);
    F::nullDel(*this, vrf);
  }
  maybeSetRoutesReady(vrf);
}

// ---- Multicast ready sets: the interface table is a condition, the default VRF is not, and no
// route readiness follows.

void RootSm::setMcReadyVrf(L3::VrfName const& vrf) {
  DUALOG(0, "vrf={}", vrf);
  setMcReadyVrfIpv4(vrf);
  setMcReadyVrfIpv6(vrf);
}

void RootSm::setMcReadyVrfIpv4(L3::VrfName const& vrf) { doSetMcReadyVrf<ReadyV4>(vrf); }
void RootSm::setMcReadyVrfIpv6(L3::VrfName const& vrf) { doSetMcReadyVrf<ReadyV6>(vrf); }

template <class F>
void RootSm::doSetMcReadyVrf(L3::VrfName const& vrf) {
  auto const found = readyRuleVrfId<MulticastLookup<F>>(vrf);
  if (!found) return;
  VrfId const vrfId = *found;
  auto const m = viaMetricStatus(F::transport(), vrfId, "mrib");
  auto const& loopingTable = F::mcLooping(*this);
  auto const l = loopingTable ? loopingTable->vrfStatus(vrf) : nullptr;
  bool const i = F::intfTableHas(*this, vrf);
  if (!m) DUALOG(0, F::kNoMcMetric, vrf);
  if (!i) DUALOG(0, F::kNoMcIntf, vrf);
  if (!l) DUALOG(0, F::kNoMcLooping, vrf);
  if (m && i && l) {
    DUALOG(0, F::kMcAdd, vrf);
    F::mcIs(*this, vrf);
  } else {
    DUALOG(0, F::kMcDel, vrf);
    F::mcDel(*this, vrf);
  }
}

// ---- The default VRF's dependants.

void RootSm::handleDefaultVrfDeps(L3::VrfName const& vrf) {
  if (!isDefaultVrf(vrf)) return;
  DUALOG(0, "defaultVrf v4ready={}", readyVrfIpv4Has(vrf));
  DUALOG(0, "defaultVrf v6ready={}", readyVrfIpv6Has(vrf));
  auto const names = currentNameToIdMap();
  if (!names) return;
  // The walk resumes safely when a VRF's records come and go under it.
  for (auto it = names->vrfNameToIdIteratorConst(); it; it.advance()) {
    L3::VrfName const name = it.key();
    if (isDefaultVrf(name)) continue;
    doCreateOrDeleteVrfAsuState(name);
    if (!readyVrfIpv4Has(name)) setReadyVrfIpv4(name);
    if (!readyVrfIpv6Has(name)) setReadyVrfIpv6(name);
  }
}

void RootSm::doCreateOrDeleteVrfAsuState(L3::VrfName const& vrf) {
  DUALOG(8, "vrf={}", vrf);
  QUILL_ASSERT(allVrfReadyStatus(), "allVrfReadyStatus()");
  QUILL_ASSERT(allVrfRibSeqTrigger(), "allVrfRibSeqTrigger()");
  auto const names = currentNameToIdMap();
  if (names && names->vrfIdExists(vrf)) {
    DUALOG(0, "Creating vrfReadyStatus and vrfRiSeqTrigger for vrf={}", vrf);
    allVrfReadyStatus()->vrfReadyStatusIs(vrf);
    allVrfRibSeqTrigger()->vrfRibSeqTriggerIs(vrf);
  } else {
    DUALOG(0, "Deleting vrfReadyStatus and vrfRiSeqTrigger for vrf={}", vrf);
    allVrfReadyStatus()->vrfReadyStatusDel(vrf);
    allVrfRibSeqTrigger()->vrfRibSeqTriggerDel(vrf);
  }
}

// ---- Route readiness and graceful restart.

void RootSm::maybeSetRoutesReady(L3::VrfName const& vrf) {
  if (!initialized()) return;
  DUALOG(8, "Attempting to set routes ready: vrf={}", vrf);
  QUILL_ASSERT(grState(), "grState()");
  auto const ready = vrfReadyStatusOf(vrf);
  if (!ready) {
    DUALOG(8, "No vrfReadyStatus: vrf={}", vrf);
    return;
  }
  auto const i6 = ipv6IntfStatus() ? ipv6IntfStatus()->vrfIp6IntfStatus(vrf) : nullptr;
  auto const i4 = ipv4IntfStatus() ? ipv4IntfStatus()->vrfIpIntfStatus(vrf) : nullptr;
  if (!grState()->gracefulRestart()) {
    // A plain start waits for nothing.
    DUALOG(0, "Marking both v4 and v6 routes ready");
    ready->v4RoutesReadyIs(true);
    ready->v6RoutesReadyIs(true);
  } else if (grState()->startReadyVerification()) {
    // A family with an interface table is marked by its route config machine after its review.
    if (!i6) {
      DUALOG(0, "Marking v6 routes ready");
      ready->v6RoutesReadyIs(true);
    }
    if (!i4) {
      DUALOG(0, "Marking v4 routes ready");
      ready->v4RoutesReadyIs(true);
    }
  }
}

void RootSm::handleStartReadyVerification() {
  DUALOG(0, "handleStartReadyVerification");
  auto const names = currentNameToIdMap();
  if (!initialized() || !names) return;
  for (auto it = names->vrfNameToIdIteratorConst(); it; it.advance()) {
    L3::VrfName const name = it.key();
    maybeSetRoutesReady(name);
  }
}

// ---- The RIB's sequence handshake.

void RootSm::handleRibSeqTrigger(L3::VrfName const& vrf) {
  DUALOG(8, "handleRibSeqTrigger");
  if (!initialized()) return;
  auto const ready = vrfReadyStatusOf(vrf);
  auto const trigger = vrfRibSeqTriggerOf(vrf);
  if (!ready || !trigger) return;
  std::uint32_t const t = trigger->ribReadySeqTrigger();
  if (t == 0) return;
  DUALOG(8, "Vrf : {}, ribReadySeqTrigger received : {}", vrf, t);
  // A family that is not ready has no review to wait for.
  if (!readyVrfIpv4Has(vrf)) {
    DUALOG(8, "Mark v4 route review complete");
    ready->v4RouteReviewCompleteIs(true);
  }
  if (!readyVrfIpv6Has(vrf)) {
    DUALOG(8, "Mark v6 route review complete");
    ready->v6RouteReviewCompleteIs(true);
  }
  maybeUpdateRibReadySeqStatus(vrf);
}

void RootSm::maybeUpdateRibReadySeqStatus(L3::VrfName const& vrf) {
  DUALOG(8, "maybeUpdateRibReadySeqStatus");
  if (!initialized()) return;
  auto const ready = vrfReadyStatusOf(vrf);
  auto const trigger = vrfRibSeqTriggerOf(vrf);
  if (!ready || !trigger) return;
  std::uint32_t const t = trigger->ribReadySeqTrigger();
  if (ready->ribReadySeqStatus() == t) return;
  DUALOG(8, "RootSm Attempting to update ribReadySeqStatus for vrf : {} to value {}", vrf, t);
  DUALOG(8, "RootSm v4RouteReviewComplete: {}", ready->v4RouteReviewComplete());
  DUALOG(8, "RootSm v6RouteReviewComplete: {}", ready->v6RouteReviewComplete());
  if (ready->v4RouteReviewComplete() && ready->v6RouteReviewComplete()) {
    DUALOG(0, "Vrf : {}, ribReadySeqStatus : {}", vrf, t);
    ready->ribReadySeqStatusIs(t);
  }
}

// ---- VRF maps and via metric reports.

void RootSm::handleVrfNameToIdMap() {
  DUALOG(8, "handleVrfNameToIdMap");
  if (!initialized()) return;
  auto const names = currentNameToIdMap();
  if (!names) {
    DUALOG(0, "No nameToIdMap");
    return;
  }
  for (auto it = names->vrfNameToIdIteratorConst(); it; it.advance()) {
    L3::VrfName const name = it.key();
    doCreateOrDeleteVrfAsuState(name);
    setReadyVrf(name);
    // Multicast IPv6 is left to its own reactors here.
    setMcReadyVrfIpv4(name);
  }
}

void RootSm::handleVrfNameToId(L3::VrfName const& vrf) {
  L3::VrfName const name = vrf;  // the reactors below may remove the entry the key lives in
  doCreateOrDeleteVrfAsuState(name);
  if (zelMarkedForDeletion()) return;
  setReadyVrf(name);
  if (zelMarkedForDeletion()) return;
  setMcReadyVrf(name);
}

void RootSm::handleNameToIdMap() {
  handleVrfNameToIdMap();
  nameToIdMapIs(vrfNameStatus() ? Quill::Ptr<Vrf::VrfIdMap::NameToIdMap const>(vrfNameStatus()->nameToIdMap())
                                : nullptr);
}

void RootSm::vrfReadyFromMetricStatus(VrfId vrfId, bool mc) {
  DUALOG(8, "vrfId={}", vrfId.value());
  if (!vrfIdStatus()) {
    DUALOG(0, "vrfId={}, No vrfIdStatus is null", vrfId.value());
    return;
  }
  if (!vrfIdStatus()->vrfIdToNameHas(vrfId)) {
    DUALOG(0, "vrfId={}, No vrfEntry", vrfId.value());
    return;
  }
  L3::VrfName const name = vrfIdStatus()->vrfIdToName(vrfId);
  if (mc)
    setMcReadyVrf(name);
  else
    setReadyVrf(name);
}

void RootSm::handleViaMetricStatus(VrfId const& vrfId) { vrfReadyFromMetricStatus(vrfId, false); }
void RootSm::handleMcViaMetricStatus(VrfId const& vrfId) { vrfReadyFromMetricStatus(vrfId, true); }

void RootSm::handleVrfIdStatus(VrfId const& vrfId) {
  VrfId const id = vrfId;
  handleViaMetricStatus(id);
  if (zelMarkedForDeletion()) return;
  handleMcViaMetricStatus(id);
}

void RootSm::handleIpv4IntfStatus(L3::VrfName const& vrf) {
  L3::VrfName const name = vrf;
  setReadyVrfIpv4(name);
  if (zelMarkedForDeletion()) return;
  setMcReadyVrfIpv4(name);
}

void RootSm::handleIpv6IntfStatus(L3::VrfName const& vrf) {
  L3::VrfName const name = vrf;
  setReadyVrfIpv6(name);
  if (zelMarkedForDeletion()) return;
  setMcReadyVrfIpv6(name);
}

// ---- Nested machines.

RootSm::NestedSm_VrfRibSeqTrigger::NestedSm_VrfRibSeqTrigger(RootSm* owner, L3::VrfName const& vrf,
                                                             Quill::Ptr<VrfRibSeqTrigger const> const& t)
    : NestedSm(owner, vrf, t) {
  owner->handleRibSeqTrigger(vrf);
}

void RootSm::NestedSm_VrfRibSeqTrigger::onAttribute(Zel::AttrId id, void const*) {
  if (id != VrfRibSeqTrigger::ribReadySeqTriggerId || zelMarkedForDeletion()) return;
  owner()->handleRibSeqTrigger(key());
}

void RootSm::NestedSm_VrfRibSeqTrigger::notifierIs(Quill::Ptr<VrfRibSeqTrigger const> trigger) {
  NestedSm::notifierIs(std::move(trigger));
  owner()->handleRibSeqTrigger(key());
}

RootSm::NestedSm_VrfReadyStatus::NestedSm_VrfReadyStatus(RootSm* owner, L3::VrfName const& vrf,
                                                         Quill::Ptr<VrfReadyStatus const> const& s)
    : NestedSm(owner, vrf, s) {
  owner->maybeUpdateRibReadySeqStatus(vrf);
}

void RootSm::NestedSm_VrfReadyStatus::onAttribute(Zel::AttrId id, void const*) {
  if (zelMarkedForDeletion()) return;
  if (id != VrfReadyStatus::v4RouteReviewCompleteId && id != VrfReadyStatus::v6RouteReviewCompleteId) return;
  owner()->maybeUpdateRibReadySeqStatus(key());
}

void RootSm::NestedSm_VrfReadyStatus::notifierIs(Quill::Ptr<VrfReadyStatus const> status) {
  NestedSm::notifierIs(std::move(status));
  owner()->maybeUpdateRibReadySeqStatus(key());
}

RootSm::NestedSm_TransportStatus::NestedSm_TransportStatus(
    NestedSm_VrfMetricStatus* owner, Rib::Transport const& transport,
    Quill::Ptr<Rib::ViaMetricStatusByProtocol const> const& byProtocol)
    : NestedSm(owner, transport, byProtocol) {}

void RootSm::NestedSm_TransportStatus::onAttribute(Zel::AttrId id, void const*) {
  if (id != Rib::ViaMetricStatusByProtocol::protocolStatusId || zelMarkedForDeletion()) return;
  owner()->handleViaMetricStatus();
}

RootSm::NestedSm_VrfMetricStatus::NestedSm_VrfMetricStatus(
    RootSm* owner, VrfId const& vrfId, Quill::Ptr<Rib::ViaMetricStatusByTransport const> const& byTransport, bool mc)
    : NestedSm(owner, vrfId, byTransport), mc_(mc) {
  if (byTransport) Reconciler::reconcileAll(this, *byTransport);
}

void RootSm::NestedSm_VrfMetricStatus::handleViaMetricStatus() {
  if (mc_)
    owner()->handleMcViaMetricStatus(key());
  else
    owner()->handleViaMetricStatus(key());
}

void RootSm::NestedSm_VrfMetricStatus::onAttribute(Zel::AttrId id, void const* key) {
  if (id != Rib::ViaMetricStatusByTransport::transportStatusId || zelMarkedForDeletion()) return;
  handleViaMetricStatus();
  if (zelMarkedForDeletion()) return;
  if (auto const byTransport = notifier()) Reconciler::run(this, *byTransport, id, key);
}

void RootSm::NestedSm_VrfMetricStatus::notifierIs(Quill::Ptr<Rib::ViaMetricStatusByTransport const> byTransport) {
  NestedSm::notifierIs(byTransport);
  if (byTransport) Reconciler::reconcileAll(this, *byTransport);
}

}  // namespace Routing::Protocol
