#include "platform/RibAgent.h"

#include <algorithm>
#include <utility>

#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("Platform::RibAgent");

namespace Platform {

using Routing::Rib::RoutingProtocol;
using Routing::Rib::Transport;
using Routing::Rib::ViaMetric;

namespace {
constexpr Halyard::TaskPriority kTaskPriority = 3;
constexpr std::uint32_t kConnectedPreference = 0;

RibAgent::Result resolvedWith(Routing::RouteMetric metric, std::uint32_t preference) {
  RibAgent::Result r;
  r.resolved = true;
  r.metric = metric;
  r.preference = preference;
  return r;
}
RibAgent::Result unresolved(bool looping = false) {
  RibAgent::Result r;
  r.looping = looping;
  return r;
}
}  // namespace

ViaMetric RibAgent::Result::viaMetric(ViaKey const& key) const {
  ViaMetric m(key, metric, resolved ? preference : ViaMetric::kUnresolvedPreference);
  m.loopingIs(looping);
  return m;
}

RibAgent::RibAgent(Inputs const& in)
    : in_(in),
      viaMetricStatusByVrf_(in.viaMetricStatusByVrf ? in.viaMetricStatusByVrf
                                                    : Routing::Rib::ViaMetricStatusByVrf::ViaMetricStatusByVrfIs()),
      looping4_(in.loopingRouteStatusByVrf4 ? in.loopingRouteStatusByVrf4
                                            : Routing::Rib::LoopingRouteStatusByVrf::LoopingRouteStatusByVrfIs()),
      looping6_(in.loopingRouteStatusByVrf6 ? in.loopingRouteStatusByVrf6
                                            : Routing::Rib::LoopingRouteStatusByVrf::LoopingRouteStatusByVrfIs()) {
  in_.viaMetricStatusByVrf = viaMetricStatusByVrf_;
  in_.loopingRouteStatusByVrf4 = looping4_;
  in_.loopingRouteStatusByVrf6 = looping6_;
  resolveTaskIs(in.scheduler ? in.scheduler : Halyard::TaskSchedulerRoot::findOrCreateScheduler(), kTaskPriority,
                "ribAgentResolve");
  ipViaKeysByVrf_.resize(in_.ipViaConfigs.size());
  for (std::uint32_t i = 0; i < in_.ipViaConfigs.size(); ++i) {
    if (!in_.ipViaConfigs[i]) continue;
    ipVias_.is(i, in_.ipViaConfigs[i]);
    for (auto it = in_.ipViaConfigs[i]->viaIteratorConst(); it; it.advance())
      ipViaKeysByVrf_[i][it.key().vrfId()].insert(it.key());
  }
  for (std::uint32_t i = 0; i < in_.evpnViaConfigs.size(); ++i) {
    if (in_.evpnViaConfigs[i]) evpnVias_.is(i, in_.evpnViaConfigs[i]);
  }
  for (std::uint32_t i = 0; i < in_.routeTables.size(); ++i) {
    RouteTable const& t = in_.routeTables[i];
    if (t.routeConfig) routes_.is(i, t.routeConfig);
    if (t.viaSetConfig) {
      viaSets_.is(i, t.viaSetConfig);
      if (t.viaSetConfig->configViaSetColl()) viaSetColl_.is(i, Quill::Ptr<Routing::Rib::Skein::ViaSetCollection const>(t.viaSetConfig->configViaSetColl()));
    }
  }
  interfaceAgentIs(in_.interfaceAgent);
  vrfAgentIs(in_.vrfAgent);
  TRACE(1, " Initialized --> True");
  handleVrfs();
}

// ---------------------------------------------------------------------------------------------
// Nested machines: each change becomes a note.

void RibAgent::NestedSm_IpVias::onAttribute(Zel::AttrId id, void const* key) {
  if (id == Routing::Rib::Ip::ViaConfig::viaId) owner()->handleIpVia(this->key(), *static_cast<ViaKey const*>(key));
}
void RibAgent::NestedSm_EvpnVias::onAttribute(Zel::AttrId id, void const* key) {
  if (id == Routing::Rib::Evpn::ViaConfig::viaId) owner()->handleVia(*static_cast<ViaKey const*>(key));
}
void RibAgent::NestedSm_Routes::onAttribute(Zel::AttrId id, void const* key) {
  if (id == Routing::Rib::RouteConfig::routeId) owner()->handleRoute(*static_cast<Routing::Rib::RouteKey const*>(key));
}
void RibAgent::NestedSm_ViaSets::onAttribute(Zel::AttrId id, void const*) {
  if (id == Routing::Rib::ViaSetConfig::configViaSetCollId) owner()->handleViaSets(this->key());
}
void RibAgent::NestedSm_ViaSetColl::onAttribute(Zel::AttrId id, void const*) {
  if (id == Routing::Rib::Skein::ViaSetCollection::viaSetId) owner()->handleViaSetColl(this->key());
}

void RibAgent::handleVia(ViaKey const& key) {
  TRACE(9, "handleVia " << key);
  // EVPN vias live in VRF 0 and resolve there.
  markDirty(key.vrfId());
}

void RibAgent::handleIpVia(std::uint32_t tableIndex, ViaKey const& key) {
  auto& byVrf = ipViaKeysByVrf_[tableIndex];
  if (in_.ipViaConfigs[tableIndex]->viaHas(key)) {
    byVrf[key.vrfId()].insert(key);
  } else if (auto it = byVrf.find(key.vrfId()); it != byVrf.end()) {
    it->second.erase(key);
    if (it->second.empty()) byVrf.erase(it);
  }
  handleVia(key);
}

void RibAgent::handleRoute(Routing::Rib::RouteKey const& key) {
  TRACE(9, "handleRoute " << key);
  markDirty(key.vrfId());
}

void RibAgent::handleViaSets(std::uint32_t tableIndex) {
  TRACE(8, "handleViaSets table " << tableIndex);
  auto const& config = in_.routeTables[tableIndex].viaSetConfig;
  if (config->configViaSetColl())
    viaSetColl_.is(tableIndex, Quill::Ptr<Routing::Rib::Skein::ViaSetCollection const>(config->configViaSetColl()));
  else
    viaSetColl_.del(tableIndex);
  handleViaSetColl(tableIndex);
}

void RibAgent::handleViaSetColl(std::uint32_t tableIndex) {
  TRACE(9, "handleViaSetColl table " << tableIndex);
  for (auto const& [id, name] : knownVrfs_) markDirty(id);
}

void RibAgent::handleIntfVrf(L3::VrfName const& vrf) {
  TRACE(8, "Vrf: " << vrf << ", handleIntfVrf");
  if (!vrfAgent()) return;
  VrfId const id = vrfAgent()->vrfId(vrf);
  if (!id.isNone()) markDirty(id);
}

void RibAgent::handleVrfs() {
  TRACE(8, "handleVrfs");
  vrfsChanged_ = true;
  resolveTask()->scheduleTask();
}

void RibAgent::markDirty(VrfId vrfId) {
  if (!dirty_.insert(vrfId).second) return;
  resolveTask()->scheduleTask();
  auto it = dependents_.find(vrfId);
  if (it == dependents_.end()) return;
  for (VrfId const user : std::set<VrfId>(it->second)) markDirty(user);
}

// ---------------------------------------------------------------------------------------------
// Overrides.

void RibAgent::overrideResolvedIs(L3::VrfName const& vrf, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf,
                                  Routing::RouteMetric metric, std::uint32_t preference) {
  if (preference == ViaMetric::kUnresolvedPreference) {
    TRACE(0, "Vrf: " << vrf << ", overrideResolvedIs " << nextHop << " preference 255 means unresolved");
    overrideUnresolvedIs(vrf, nextHop, intf);
    return;
  }
  overrides_[OverrideKey(vrf, nextHop, intf)] = resolvedWith(metric, preference);
  TRACE(2, "Vrf: " << vrf << ", overrideResolvedIs " << nextHop << " " << intf << " metric " << metric);
  if (vrfAgent() && vrfAgent()->vrfHas(vrf)) markDirty(vrfAgent()->vrfId(vrf));
}

void RibAgent::overrideUnresolvedIs(L3::VrfName const& vrf, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf) {
  overrides_[OverrideKey(vrf, nextHop, intf)] = unresolved();
  TRACE(2, "Vrf: " << vrf << ", overrideUnresolvedIs " << nextHop << " " << intf);
  if (vrfAgent() && vrfAgent()->vrfHas(vrf)) markDirty(vrfAgent()->vrfId(vrf));
}

void RibAgent::configurationChangedIs(L3::VrfName const& vrf) {
  TRACE(8, "Vrf: " << vrf << ", configurationChangedIs");
  if (vrfAgent() && vrfAgent()->vrfHas(vrf)) markDirty(vrfAgent()->vrfId(vrf));
}

bool RibAgent::overrideDel(L3::VrfName const& vrf, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf) {
  if (!overrides_.erase(OverrideKey(vrf, nextHop, intf))) return false;
  TRACE(2, "Vrf: " << vrf << ", overrideDel " << nextHop << " " << intf);
  if (vrfAgent() && vrfAgent()->vrfHas(vrf)) markDirty(vrfAgent()->vrfId(vrf));
  return true;
}

// ---------------------------------------------------------------------------------------------
// The handshake.

void RibAgent::ribReadySeqTriggerIs(Routing::Protocol::AllVrfRibSeqTrigger& triggers, L3::VrfName const& vrf,
                                    std::uint32_t n) {
  triggers.vrfRibSeqTriggerIs(vrf)->ribReadySeqTriggerIs(n);
}

bool RibAgent::ribReadySeqEchoed(Routing::Protocol::AllVrfReadyStatus const& ready,
                                 Routing::Protocol::AllVrfRibSeqTrigger const& triggers, L3::VrfName const& vrf) {
  auto const trigger = triggers.vrfRibSeqTrigger(vrf);
  auto const status = ready.vrfReadyStatus(vrf);
  if (!trigger || !status || trigger->ribReadySeqTrigger() == 0) return false;
  return status->ribReadySeqStatus() == trigger->ribReadySeqTrigger();
}

// ---------------------------------------------------------------------------------------------
// Readers.

ViaMetric RibAgent::viaMetric(ViaKey const& key) const {
  auto const leaf = viaMetricStatusByVrf_->leaf(key.vrfId(), key.transport(), key.routingProtocol());
  return leaf ? leaf->viaMetric(key) : ViaMetric();
}

Routing::Rib::Ip::ViaConfig const* RibAgent::ipTable(RoutingProtocol rp, Transport t) const {
  for (auto const& table : in_.ipViaConfigs) {
    if (table && table->rp() == rp && table->transport() == t) return table.get();
  }
  return nullptr;
}

Routing::Rib::Via const* RibAgent::ipVia(ViaKey const& key) const {
  auto const* table = ipTable(key.routingProtocol(), key.transport());
  return table ? table->viaFind(key) : nullptr;
}

Routing::Rib::Evpn::Via const* RibAgent::evpnVia(ViaKey const& key) const {
  for (auto const& table : in_.evpnViaConfigs) {
    if (!table || table->rp() != key.routingProtocol()) continue;
    if (auto const* v = table->viaFind(key)) return v;
  }
  return nullptr;
}

std::vector<RoutingProtocol> RibAgent::protocols() const {
  std::set<RoutingProtocol> out(in_.protocols.begin(), in_.protocols.end());
  if (out.empty()) {
    for (auto const& t : in_.ipViaConfigs) out.insert(t->rp());
    for (auto const& t : in_.evpnViaConfigs) out.insert(t->rp());
  }
  return {out.begin(), out.end()};
}

// ---------------------------------------------------------------------------------------------
// The task.

void RibAgent::doResolveTask() {
  if (resolveTask()->taskScheduler()->currentTask() != resolveTask()) return;
  TRACE(8, "doResolveTask " << dirty_.size() << " VRFs");
  if (vrfsChanged_) {
    vrfsChanged_ = false;
    doSyncVrfs();
  }
  memo_.clear();
  inProgress_.clear();
  visited_ = nullptr;
  connectedMemo_.clear();
  std::uint64_t work = 0;
  while (!dirty_.empty()) {
    if (resolveTask()->taskShouldYield()) break;
    VrfId const vrfId = *dirty_.begin();
    dirty_.erase(dirty_.begin());
    doResolveVrf(vrfId);
    ++work;
  }
  memo_.clear();
  connectedMemo_.clear();
  resolveTask()->taskWorkCountInc(work);
  resolveTask()->taskWorkPendingIs(dirty_.size());
  if (!dirty_.empty()) resolveTask()->scheduleTask();
}

void RibAgent::doSyncVrfs() {
  std::map<VrfId, L3::VrfName> now;
  if (vrfAgent()) {
    for (auto const& [name, id] : vrfAgent()->vrfs()) now.emplace(id, name);
  }
  // Gone, or renumbered: the id's tables and the name's looping tables go.
  for (auto const& [id, name] : knownVrfs_) {
    auto it = now.find(id);
    if (it != now.end() && it->second == name) continue;
    TRACE(0, "Vrf: " << name << ", tables of id " << id << " removed");
    viaMetricStatusByVrf_->vrfStatusDel(id);
    bool nameStays = false;
    for (auto const& [nid, nname] : now) nameStays = nameStays || nname == name;
    if (!nameStays) {
      looping4_->vrfStatusDel(name);
      looping6_->vrfStatusDel(name);
    }
  }
  auto const served = protocols();
  for (auto const& [id, name] : now) {
    auto it = knownVrfs_.find(id);
    bool const fresh = it == knownVrfs_.end() || it->second != name;
    if (fresh) TRACE(0, "Vrf: " << name << ", tables of id " << id << " created");
    for (Transport const t : {Transport::transportIpv4(), Transport::transportIpv6(), Transport::transportEvpn()}) {
      for (RoutingProtocol const rp : served) viaMetricStatusByVrf_->leafIs(id, t, rp);
    }
    looping4_->vrfStatusIs(name);
    looping6_->vrfStatusIs(name);
    if (fresh) markDirty(id);
  }
  knownVrfs_ = std::move(now);
}

void RibAgent::doResolveVrf(VrfId vrfId) {
  if (!knownVrfs_.count(vrfId)) {
    TRACE(9, "doResolveVrf " << vrfId << " not a VRF of the VRF agent");
    return;
  }
  ++vrfResolutions_;
  TRACE(8, "Vrf: " << knownVrfs_[vrfId] << ", doResolveVrf " << vrfId);
  // Every via is resolved before any report is written: all of them see the same routes.
  std::vector<std::pair<ViaKey, Result>> results;
  for (auto const& byVrf : ipViaKeysByVrf_) {
    if (auto it = byVrf.find(vrfId); it != byVrf.end()) {
      for (ViaKey const& key : it->second) results.emplace_back(key, resolveViaKey(key));
    }
  }
  if (vrfId.isDefault()) {
    for (auto const& table : in_.evpnViaConfigs) doResolveVias(vrfId, true, *table, results);
  }
  for (auto const& [key, r] : results) doWrite(key, r);
  for (auto const& table : in_.ipViaConfigs) doDropStale(vrfId, *table);
  if (vrfId.isDefault()) {
    for (auto const& table : in_.evpnViaConfigs) doDropStale(vrfId, *table);
  }
}

template <class Table>
void RibAgent::doResolveVias(VrfId vrfId, bool anyVrf, Table const& table,
                             std::vector<std::pair<ViaKey, Result>>& results) {
  std::vector<ViaKey> keys;
  for (auto it = table.viaIteratorConst(); it; it.advance()) {
    if (anyVrf || it.key().vrfId() == vrfId) keys.push_back(it.key());
  }
  std::sort(keys.begin(), keys.end());
  for (ViaKey const& key : keys) results.emplace_back(key, resolveViaKey(key));
}

template <class Table>
void RibAgent::doDropStale(VrfId vrfId, Table const& table) {
  auto leaf = viaMetricStatusByVrf_->leaf(vrfId, table.transport(), table.rp());
  if (!leaf) return;
  std::vector<ViaKey> stale;
  for (auto it = leaf->viaMetricIteratorConst(); it; it.advance()) {
    if (!table.viaHas(it.key())) stale.push_back(it.key());
  }
  // In key order: the removals reach the library in an order hash order does not decide.
  std::sort(stale.begin(), stale.end());
  for (ViaKey const& key : stale) leaf->viaMetricDel(key);
}

// ---------------------------------------------------------------------------------------------
// Resolution.

bool RibAgent::reusable(Walked const& w) const {
  for (ViaKey const& v : w.visited) {
    if (inProgress_.count(v) != w.leaned.count(v)) return false;
  }
  return true;
}

RibAgent::Result RibAgent::resolveViaKey(ViaKey const& key) {
  if (inProgress_.count(key)) {
    TRACE(9, "resolveViaKey " << key << " loops");
    if (visited_) visited_->insert(key);
    return unresolved(true);
  }
  if (auto it = memo_.find(key); it != memo_.end() && reusable(it->second)) {
    if (visited_) visited_->insert(it->second.visited.begin(), it->second.visited.end());
    return it->second.result;
  }
  Walked w;
  w.visited.insert(key);
  std::set<ViaKey>* const outer = std::exchange(visited_, &w.visited);
  inProgress_.insert(key);
  if (key.transport() == Transport::transportEvpn()) {
    auto const* via = evpnVia(key);
    w.result = via ? resolveNextHop(VrfId::defaultVrf(), via->vtepAddr(), Ondex::IntfId(), false, key) : unresolved();
  } else {
    auto const* via = ipVia(key);
    w.result = via ? resolveIpVia(key, *via) : unresolved();
  }
  inProgress_.erase(key);
  visited_ = outer;
  for (ViaKey const& v : w.visited) {
    if (inProgress_.count(v)) w.leaned.insert(v);
  }
  if (visited_) visited_->insert(w.visited.begin(), w.visited.end());
  Result const r = w.result;
  memo_.insert_or_assign(key, std::move(w));
  return r;
}

bool RibAgent::isSpecial(Routing::Rib::ViaContent const& via) const {
  return (via.flags() & (Routing::Rib::ViaContent::kFlagDrop | Routing::Rib::ViaContent::kFlagToCpu)) ||
         via.intfId().isNull0();
}

RibAgent::Result RibAgent::resolveIpVia(ViaKey const& key, Routing::Rib::Via const& via) {
  if (isSpecial(via)) return resolvedWith(0, kConnectedPreference);
  if (via.nextHop().isUnspecified()) {
    L3::VrfName const name = knownVrfs_.count(key.vrfId()) ? knownVrfs_[key.vrfId()] : L3::VrfName();
    auto const* intf = interfaceAgent() ? interfaceAgent()->intf(via.intfId()) : nullptr;
    if (intf && intf->vrf == name && intf->usable()) return resolvedWith(0, kConnectedPreference);
    return unresolved();
  }
  bool const fromHostPrefix = via.flags() & Routing::Rib::ViaContent::kFlagNextHopFromHostPrefix;
  return resolveNextHop(key.vrfId(), via.nextHop(), via.intfId(), fromHostPrefix, key);
}

std::vector<InterfaceAgent::Connected> const& RibAgent::connected(VrfId vrfId, Ondex::AddressFamily af) {
  auto [it, inserted] = connectedMemo_.try_emplace({vrfId, af.value()});
  if (inserted && interfaceAgent()) {
    auto name = knownVrfs_.find(vrfId);
    if (name != knownVrfs_.end()) it->second = interfaceAgent()->connectedSubnets(name->second, af);
  }
  return it->second;
}

RibAgent::Result RibAgent::resolveNextHop(VrfId vrfId, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf,
                                          bool fromHostPrefix, ViaKey const& self) {
  auto const name = knownVrfs_.find(vrfId);
  if (name == knownVrfs_.end()) return unresolved();
  for (Ondex::IntfId const i : {intf, Ondex::IntfId()}) {
    auto it = overrides_.find(OverrideKey(name->second, nextHop, i));
    if (it != overrides_.end()) return it->second;
  }
  if (!intf.empty()) return resolveOnIntf(name->second, nextHop, intf, fromHostPrefix);
  for (auto const& c : connected(vrfId, nextHop.af())) {
    if (c.subnet.contains(nextHop)) return resolvedWith(0, kConnectedPreference);
  }
  return resolveRecursive(vrfId, nextHop, self);
}

RibAgent::Result RibAgent::resolveOnIntf(L3::VrfName const& vrf, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf,
                                         bool fromHostPrefix) const {
  auto const* i = interfaceAgent() ? interfaceAgent()->intf(intf) : nullptr;
  if (!i || i->vrf != vrf || !i->usable()) return unresolved();
  if (fromHostPrefix) return resolvedWith(0, kConnectedPreference);
  for (auto const& a : i->addrs) {
    if (a.addr.af() == nextHop.af() && a.subnet().contains(nextHop)) return resolvedWith(0, kConnectedPreference);
  }
  TRACE(9, "Vrf: " << vrf << ", resolveOnIntf " << nextHop << " is on no subnet of " << intf);
  return unresolved();
}

RibAgent::Result RibAgent::resolveRecursive(VrfId vrfId, Ondex::IpGenAddr const& nextHop, ViaKey const& self) {
  bool looping = false;
  struct Candidate {
    Routing::Rib::Route::Body const* body;
    std::size_t table;
  };
  std::vector<Candidate> candidates;
  for (int len = nextHop.af().bits(); len >= 0; --len) {
    Routing::Rib::RouteKey const key(vrfId, Ondex::IpGenPrefix(nextHop, std::uint8_t(len)));
    candidates.clear();
    for (std::size_t i = 0; i < in_.routeTables.size(); ++i) {
      RouteTable const& t = in_.routeTables[i];
      if (t.af != nextHop.af() || !t.routeConfig) continue;
      if (auto const* body = t.routeConfig->routeFind(key)) candidates.push_back({body, i});
    }
    if (candidates.empty()) continue;
    if (in_.configuredWith && in_.configuredWith(vrfId, nextHop, key.prefix())) {
      TRACE(9, "resolveRecursive " << self << " skips " << key << ", a prefix configured with it");
      continue;
    }
    std::stable_sort(candidates.begin(), candidates.end(), [](Candidate const& a, Candidate const& b) {
      auto const pa = a.body->metricPref, pb = b.body->metricPref;
      return pa.preference() != pb.preference() ? pa.preference() < pb.preference() : pa.metric() < pb.metric();
    });
    for (Candidate const& c : candidates) {
      if (!routeUsable(vrfId, in_.routeTables[c.table], *c.body, self, looping)) continue;
      TRACE(9, "resolveRecursive " << self << " through " << key);
      Result r = resolvedWith(c.body->metricPref.metric(), c.body->metricPref.preference());
      r.through = key.prefix();
      return r;
    }
  }
  return unresolved(looping);
}

bool RibAgent::routeUsable(VrfId vrfId, RouteTable const& table, Routing::Rib::Route::Body const& body,
                           ViaKey const& self, bool& looping) {
  if (body.metricPref.preference() == ViaMetric::kUnresolvedPreference || !table.viaSetConfig) return false;
  auto const& coll = table.viaSetConfig->configViaSetColl();
  auto const* set = coll ? coll->viaSetColl().find(body.viaSetKey) : nullptr;
  if (!set) return false;
  if (std::find(set->begin(), set->end(), self) != set->end()) {
    looping = true;
    return false;
  }
  for (ViaKey const& key : *set) {
    if (key.transport() == Transport::transportEvpn()) {
      if (!vrfId.isDefault()) dependents_[VrfId::defaultVrf()].insert(vrfId);
    } else {
      auto const* via = ipVia(key);
      if (!via || isSpecial(*via)) continue;
      if (key.vrfId() != vrfId) dependents_[key.vrfId()].insert(vrfId);
    }
    Result const r = resolveViaKey(key);
    if (r.resolved) return true;
    looping = looping || r.looping;
  }
  return false;
}

}  // namespace Platform
