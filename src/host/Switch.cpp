#include "host/Switch.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <variant>

#include <fmt/format.h>

#include "foundations/rib/RibTypeFactories.h"

namespace Host {

namespace {

using Routing::Rib::RoutingProtocol;
constexpr Ondex::AddressFamily kFamilies[] = {Ondex::AddressFamily::ipv4, Ondex::AddressFamily::ipv6};

int familyOf(Ondex::IpGenPrefix const& prefix) { return prefix.af().isV4() ? 0 : 1; }

Platform::InterfaceAgent::Interface platformIntf(Interface const& intf) {
  Platform::InterfaceAgent::Interface out;
  out.intfId = intf.id;
  out.vrf = L3::VrfName(intf.vrf);
  for (auto const& a : intf.addresses) out.addrs.push_back({a.addr, a.len});
  out.routingEnabled = intf.routing;
  out.operUp = intf.up;
  return out;
}

Routing::General::StaticRouteEcmpState ecmpOf(EcmpState s) {
  // "none" has no grouping of its own in the library: vias group by type as by default.
  return s == EcmpState::singleGroup ? Routing::General::StaticRouteEcmpState::singleGroup
                                     : Routing::General::StaticRouteEcmpState::groupByViaType;
}

Bfd::SessionState bfdStateOf(BfdState s) { return static_cast<Bfd::SessionState>(static_cast<std::uint8_t>(s)); }

}  // namespace

Switch::Switch(Scenario const& scenario, Halyard::TaskScheduler* scheduler)
    : scenario_(scenario),
      scheduler_(scheduler),
      vrfAgent_(Platform::VrfAgent::VrfAgentIs()),
      intfAgent_(Platform::InterfaceAgent::InterfaceAgentIs()),
      bfdAgent_(Platform::BfdAgent::BfdAgentIs(scheduler)),
      metrics_(Routing::Rib::ViaMetricStatusByVrf::ViaMetricStatusByVrfIs()),
      looping4_(Routing::Rib::LoopingRouteStatusByVrf::LoopingRouteStatusByVrfIs()),
      looping6_(Routing::Rib::LoopingRouteStatusByVrf::LoopingRouteStatusByVrfIs()),
      general_(Routing::General::Config::ConfigIs()),
      mpls_(Mpls::Config::ConfigIs()),
      tagStatus_(ConfigTag::ConfigTagStatus::ConfigTagStatusIs()),
      tagIds_(ConfigTag::ConfigTagIdState::ConfigTagIdStateIs()),
      tagged_(Routing::VrfRouteListTaggedConfig::VrfRouteListTaggedConfigIs()),
      taggedDynamic_(Routing::VrfRouteListTaggedConfig::VrfRouteListTaggedConfigIs()),
      igpResults_(Routing::Bgp::IgpResultTable::IgpResultTableIs()) {
  // The records of the other agents, where the routing agent mounts them.
  Routing::Rib::ribTypeFactoriesIs(shmem_);
  em_.entityIs(Cell::path("vrf/vrfNameStatus").view(), vrfAgent_->nameStatus());
  em_.entityIs(Cell::path("ip/status").view(), intfAgent_->ipStatus());
  em_.entityIs(Cell::path("ip6/status").view(), intfAgent_->ip6Status());
  em_.entityIs(Cell::path("routing/rib/loopingRouteStatus").view(), looping4_);
  em_.entityIs(Cell::path("routing6/rib/loopingRouteStatus").view(), looping6_);
  // Multicast is not served here: its tables exist and stay empty.
  em_.entityIs(Cell::path("routing/mrib/loopingRouteStatus").view(),
               Routing::Rib::LoopingRouteStatusByVrf::LoopingRouteStatusByVrfIs());
  em_.entityIs(Cell::path("routing6/mrib/loopingRouteStatus").view(),
               Routing::Rib::LoopingRouteStatusByVrf::LoopingRouteStatusByVrfIs());
  shmem_.entityIs("vrf/vrfIdMapStatus", vrfAgent_->idStatus());
  shmem_.entityIs("routing/rib/viaMetricStatus", metrics_);
  shmem_.entityIs("routing/mrib/viaMetricStatus", Routing::Rib::ViaMetricStatusByVrf::ViaMetricStatusByVrfIs());
}

Switch::~Switch() {
  rib_ = nullptr;
  agent_.reset();
  settle();
}

void Switch::settle() {
  if (progress_) {
    settleShowingProgress();
  } else {
    scheduler_->runUntilIdle();
  }
  if (!held_.empty()) doReleaseHeldRoutes();
  // The RIB froze a via whose report would flip for ever: the scenario does not settle.
  if (rib_) {
    if (auto const oscillation = rib_->oscillation()) throw std::runtime_error(oscillation->text());
  }
}

void Switch::settleShowingProgress() {
  using Clock = std::chrono::steady_clock;
  auto const start = Clock::now();
  auto next = start + std::chrono::seconds(2);
  bool shown = false;
  scheduler_->runUntilIdle(
      [&] {
        auto const now = Clock::now();
        if (now < next || !agent_) return;
        next = now + std::chrono::seconds(1);
        *progress_ << fmt::format("\rbowline: {} routes installed, {:.0f} s", routeCount(),
                                  std::chrono::duration<double>(now - start).count())
                   << std::flush;
        shown = true;
      },
      16);
  if (shown) *progress_ << fmt::format("\rbowline: {} routes installed\x1b[K\n", routeCount()) << std::flush;
}

bool Switch::configuredWith(Platform::RibAgent::VrfId vrfId, Ondex::IpGenAddr const& nextHop,
                            Ondex::IpGenPrefix const& prefix) const {
  auto const it = vrfs_.find(std::string(vrfAgent_->vrfName(vrfId).view()));
  if (it == vrfs_.end()) return false;
  int const f = familyOf(prefix);
  auto hasHop = [&](Routing::RouteList const& list) {
    for (unsigned pref = 1; pref <= 255; ++pref) {
      auto const route = list.route(Routing::RouteKey(prefix, Routing::RoutePreference(std::uint8_t(pref))));
      if (!route) continue;
      for (auto via = route->viaIteratorConst(); via; via.advance()) {
        if (via.key().hop() == nextHop) return true;
      }
    }
    return false;
  };
  VrfRecords const& r = it->second;
  if (hasHop(*r.config[f]) || hasHop(*r.dynamic[f])) return true;
  for (auto const& [user, input] : r.users[f]) {
    if (hasHop(*input)) return true;
  }
  return false;
}

void Switch::doReleaseHeldRoutes() {
  if (!agent_) return;
  for (auto const& [name, id] : vrfAgent_->vrfs()) {
    auto const status = agent_->allVrfReadyStatus()->vrfReadyStatus(name);
    if (!status) continue;
    std::string const vrf(name.view());
    if (status->v4RoutesReady()) held_.release(vrf, 0);
    if (status->v6RoutesReady()) held_.release(vrf, 1);
  }
}

std::size_t Switch::routeCount() const {
  std::size_t n = 0;
  for (auto p : {RoutingProtocol::staticConfig(), RoutingProtocol::routeInput()}) {
    auto const& root = agent_->root(p);
    n += root->ipv4AllVrfRibConfig()->routeSize() + root->ipv6AllVrfRibConfig()->routeSize();
  }
  return n;
}

Switch::VrfRecords& Switch::recordsOf(std::string const& vrf) {
  auto [it, added] = vrfs_.try_emplace(vrf);
  if (added) {
    for (int f = 0; f < 2; ++f) {
      it->second.config[f] = Routing::RouteList::RouteListIs();
      it->second.dynamic[f] = Routing::RouteList::RouteListIs();
      it->second.dir[f] = Zel::Dir::DirIs("routeInput");
      it->second.tagDir[f] = Zel::Dir::DirIs("routeInputTag");
    }
  }
  return it->second;
}

void Switch::start() {
  for (auto const& vrf : scenario_.vrfs) {
    vrfAgent_->vrfIs(L3::VrfName(vrf.name), vrf.id);
    recordsOf(vrf.name);
  }
  for (auto const& intf : scenario_.interfaces) intfAgent_->intfIs(platformIntf(intf));
  general_->staticRoutePreferenceIs(Routing::RoutePreference(scenario_.global.preference));
  general_->staticRouteEcmpStateIs(ecmpOf(scenario_.global.ecmp));
  mpls_->mplsRoutingIs(scenario_.global.mpls);
  for (auto const& tag : scenario_.commandTags) {
    tagIds_->tagIdToTagStrIs(tag.id, Zel::String(tag.name));
    commandTagIs(tag.name, tag.enabled);
  }
  for (auto const& route : scenario_.routes) configRouteInto({}, route, RouteOp::add);
  for (auto const& user : scenario_.injected) {
    for (auto const& route : user.routes) {
      userOf(user.vrf, user.user, familyOf(route.prefix)).installInFibIs(user.installInFib);
      configRouteInto(user.user, route, RouteOp::add);
    }
  }
  for (auto const& file : scenario_.routeFiles) {
    VrfRecords& r = recordsOf(file.vrf);
    for (auto const& e : file.routes.entries()) {
      auto& list = *r.config[familyOf(e.prefix)];
      Routing::RouteKey const key(e.prefix, Routing::RoutePreference(e.preference));
      auto route = list.routeIs(key, e.type);  // the route of the key, made when there is none
      if (e.type == Routing::RouteType::forward) route->viaIs(Routing::Via(e.nexthop, e.intf), Routing::RouteViaAttr());
    }
  }
  for (auto const& s : scenario_.bfd) bfdAgent_->sessionStateIs(L3::VrfName(s.vrf), s.peer, bfdStateOf(s.state));
  doStartAgents(scenario_.global.gracefulRestart);
  startReadyVerification_ = scenario_.global.startReadyVerification;
  if (startReadyVerification_) agent_->startReadyVerificationIs(true);
  settle();
  doHandshakeRound();
}

void Switch::doStartAgents(bool gracefulRestart) {
  gracefulRestart_ = gracefulRestart;
  RoutingAgent::Environment env;
  env.em = &em_;
  env.shmem = &shmem_;
  env.scheduler = scheduler_;
  env.general = general_;
  env.mpls = mpls_;
  env.configTagStatus = tagStatus_;
  env.configTagIdState = tagIds_;
  env.igpResultTable = igpResults_;
  env.gracefulRestart = gracefulRestart;
  agent_ = std::make_unique<RoutingAgent>(env);

  Platform::RibAgent::Inputs in;
  for (auto p : {RoutingProtocol::staticConfig(), RoutingProtocol::routeInput()}) {
    auto const& root = agent_->root(p);
    in.ipViaConfigs.push_back(root->ipv4AllVrfViaConfig());
    in.ipViaConfigs.push_back(root->ipv6AllVrfViaConfig());
    in.evpnViaConfigs.push_back(root->evpnConfig());
    in.routeTables.push_back({Ondex::AddressFamily::ipv4, p, root->ipv4AllVrfRibConfig(), root->viaSetConfig()});
    in.routeTables.push_back({Ondex::AddressFamily::ipv6, p, root->ipv6AllVrfRibConfig(), root->viaSetConfig()});
  }
  in.protocols = {RoutingProtocol::staticConfig(), RoutingProtocol::routeInput()};
  in.interfaceAgent = intfAgent_;
  in.vrfAgent = vrfAgent_;
  in.viaMetricStatusByVrf = metrics_;
  in.loopingRouteStatusByVrf4 = looping4_;
  in.loopingRouteStatusByVrf6 = looping6_;
  in.scheduler = scheduler_;
  in.configuredWith = [this](Platform::RibAgent::VrfId vrfId, Ondex::IpGenAddr const& nextHop,
                             Ondex::IpGenPrefix const& prefix) { return configuredWith(vrfId, nextHop, prefix); };
  rib_ = Platform::RibAgent::RibAgentIs(in);
  for (auto const& [key, step] : overrides_) doOverride(step);
  // The RIB's per-VRF tables exist before the containers that read them are built.
  settle();
  for (auto const& [name, records] : vrfs_) doBuildContainers(name);
}

void Switch::doBuildContainers(std::string const& vrf) {
  L3::VrfName const name(vrf);
  if (!vrfAgent_->vrfHas(name)) return;
  VrfRecords& r = recordsOf(vrf);
  r.intfTables[0] = intfAgent_->ipStatus()->vrfIpIntfStatus(name);
  r.intfTables[1] = intfAgent_->ip6Status()->vrfIp6IntfStatus(name);
  VrfConfig configs[2];
  for (int f = 0; f < 2; ++f) {
    configs[f].config = r.config[f];
    configs[f].configDynamic = r.dynamic[f];
    configs[f].configDir = r.dir[f];
    configs[f].configTagDir = r.tagDir[f];
    configs[f].taggedConfig = tagged_;
    configs[f].taggedDynamicConfig = taggedDynamic_;
  }
  agent_->vrfIs(name, configs[0], configs[1]);
}

void Switch::doSyncContainers() {
  for (auto const& [vrf, r] : vrfs_) {
    L3::VrfName const name(vrf);
    Quill::Ptr<Zel::Entity const> const now4 = intfAgent_->ipStatus()->vrfIpIntfStatus(name);
    Quill::Ptr<Zel::Entity const> const now6 = intfAgent_->ip6Status()->vrfIp6IntfStatus(name);
    if (now4 != r.intfTables[0] || now6 != r.intfTables[1]) doBuildContainers(vrf);
  }
}

void Switch::doHandshakeRound() {
  ++seq_;
  auto const& triggers = agent_->allVrfRibSeqTrigger();
  for (auto it = triggers->vrfRibSeqTriggerIteratorConst(); it; it.advance()) {
    L3::VrfName const vrf = it.key();
    Platform::RibAgent::ribReadySeqTriggerIs(*triggers, vrf, seq_);
  }
}

void Switch::restart(bool gracefulRestart) {
  agentStop(gracefulRestart);
  agentStart(gracefulRestart);
}

void Switch::agentStop(bool gracefulRestart) {
  if (gracefulRestart) {
    // The RIB holds what it forwards on now, until the agent is back and has reconciled it.
    ShowView const now = view("", "");
    for (auto const& vrf : now.vrfs) {
      for (int f = 0; f < 2; ++f) held_.holdIs(vrf.name, f, vrf.routes[f]);
    }
  }
  rib_ = nullptr;
  agent_.reset();
  settle();
}

void Switch::agentStart(bool gracefulRestart) {
  doStartAgents(gracefulRestart);
  if (gracefulRestart && startReadyVerification_) agent_->startReadyVerificationIs(true);
  settle();
  doHandshakeRound();
}

void Switch::doOverride(RibStep const& s) {
  L3::VrfName const vrf(s.vrf);
  if (s.kind == RibOverrideKind::resolved)
    rib_->overrideResolvedIs(vrf, s.nexthop, s.intf, s.metric);
  else if (s.kind == RibOverrideKind::unresolved)
    rib_->overrideUnresolvedIs(vrf, s.nexthop, s.intf);
  else
    (void)rib_->overrideDel(vrf, s.nexthop, s.intf);
}

// ---- Configuration records.

Routing::RouteListTaggedConfig& Switch::tagIndexOf(Routing::VrfRouteListTaggedConfig& tagged, std::string const& vrf) {
  L3::VrfName const name(vrf);
  auto index = tagged.vrfConfig(name);
  if (!index) {
    index = Routing::RouteListTaggedConfig::RouteListTaggedConfigIs(name);
    tagged.vrfConfigIs(name, index);
  }
  return *index;
}

void Switch::taggedKeyIs(Routing::RouteListTaggedConfig& index, std::string const& tag, Routing::RouteKey const& key) {
  Zel::String const tagName(tag);
  auto set = index.tagToRouteKeySet(tagName);
  if (!set) {
    set = Routing::RouteKeySet::RouteKeySetIs(tagName);
    set->routeKeySetIs(key);
    index.tagToRouteKeySetIs(tagName, set);
    return;
  }
  set->routeKeySetIs(key);
}

void Switch::taggedKeyDel(Routing::RouteListTaggedConfig& index, Routing::RouteKey const& key) {
  for (auto it = index.tagToRouteKeySetIterator(); it; it.advance()) {
    if (auto const& set = it.value()) set->routeKeySetDel(key);
  }
}

void Switch::routeInto(Routing::RouteList& list, StaticRoute const& route, RouteOp op,
                       Routing::RouteListTaggedConfig& tagged) {
  Routing::RouteKey const key = route.key();
  auto existing = list.route(key);
  // The configuration agent indexes tagged routes by tag, beside the list.
  if (op != RouteOp::add || !route.commandTag.empty()) taggedKeyDel(tagged, key);
  if (op != RouteOp::remove && !route.commandTag.empty()) taggedKeyIs(tagged, route.commandTag, key);
  if (op == RouteOp::remove) {
    if (existing) list.routeDel(key);
    return;
  }
  // A route's type is part of its identity: a route of another type is replaced whole.
  if (existing && (op == RouteOp::replace || existing->routeType() != route.type)) {
    list.routeDel(key);
    existing = nullptr;
  }
  auto r = existing ? existing : list.routeIs(key, route.type);
  if (route.tag) r->tagIs(route.tag);
  if (route.commandTagId) r->commandTagIdIs(route.commandTagId);
  if (route.communities) r->routeAttributesIs(Routing::RouteAttributes(*route.communities));
  if (!route.leakVrf.empty()) r->leakVrfIs(Zel::String(route.leakVrf));
  if (route.ribBypass) r->ribBypassIs(true);
  if (existing) dropViasGivenAgain(*r, route);
  for (auto const& via : route.vias) {
    Routing::Via const v = via.routingVia();
    r->viaIs(v, via.viaAttr());
    if (via.bfd) r->bfdTrackedIs(v);
  }
}

void Switch::dropViasGivenAgain(Routing::Route& r, StaticRoute const& route) {
  // A via given again with another BFD local address is that via, changed: the former one goes.
  std::map<Routing::Via, Routing::Via> given;  // identity -> the via as given
  for (auto const& via : route.vias) given.emplace(via.identity(), via.routingVia());
  std::vector<Routing::Via> former;
  for (auto it = r.viaIteratorConst(); it; it.advance()) {
    Routing::Via identity = it.key();
    auto const match = given.find(identity.localAddrDel());
    if (match != given.end() && match->second != it.key()) former.push_back(it.key());
  }
  for (auto const& f : former) {
    r.bfdTrackedDel(f);
    r.viaDel(f);
  }
}

Routing::RouteListTaggedConfig& Switch::userTagsOf(std::string const& vrf, std::string const& user, int family) {
  VrfRecords& r = recordsOf(vrf);
  auto& slot = r.userTags[family][user];
  if (!slot) {
    slot = Routing::RouteListTaggedConfig::RouteListTaggedConfigIs(L3::VrfName(vrf));
    r.tagDir[family]->entityIs(Quill::String(user), slot);
  }
  return *slot;
}

void Switch::configRouteInto(std::string const& user, StaticRoute const& route, RouteOp op) {
  int const f = familyOf(route.prefix);
  if (!user.empty()) {
    routeInto(userOf(route.vrf, user, f), route, op, userTagsOf(route.vrf, user, f));
    return;
  }
  VrfRecords& r = recordsOf(route.vrf);
  routeInto(route.dynamic ? *r.dynamic[f] : *r.config[f], route, op,
            tagIndexOf(route.dynamic ? *taggedDynamic_ : *tagged_, route.vrf));
}

Routing::RouteInput& Switch::userOf(std::string const& vrf, std::string const& user, int family) {
  VrfRecords& r = recordsOf(vrf);
  auto& slot = r.users[family][user];
  if (!slot) {
    slot = Routing::RouteInput::RouteInputIs(Zel::String(user));
    slot->routingProtoIs(RoutingProtocol::routeInput().value());
    r.dir[family]->entityIs(Quill::String(user), slot);
  }
  return *slot;
}

void Switch::routeIs(RouteStep const& step) {
  if (rib_) rib_->configurationChangedIs(L3::VrfName(step.route.vrf));
  configRouteInto(step.user, step.route, step.op);
}

void Switch::globalIs(GlobalStep const& step) {
  if (step.preference) general_->staticRoutePreferenceIs(Routing::RoutePreference(*step.preference));
  if (step.ecmp) general_->staticRouteEcmpStateIs(ecmpOf(*step.ecmp));
  if (step.mpls) mpls_->mplsRoutingIs(*step.mpls);
  if (step.startReadyVerification) {
    // An agent verifies readiness once per start: turned off, the setting waits for the next start.
    startReadyVerification_ = *step.startReadyVerification;
    if (startReadyVerification_ && agent_) agent_->startReadyVerificationIs(true);
  }
}

void Switch::commandTagIs(std::string const& name, bool enabled) {
  // The configuration agent's states: 1 enabled, 2 disabled.
  tagStatus_->configTagEntryIs(Zel::String(name))->operStateIs(enabled ? 1 : 2);
}

void Switch::interfaceIs(Interface const& intf) { intfAgent_->intfIs(platformIntf(intf)); }

void Switch::vrfIs(Vrf const& vrf) {
  vrfAgent_->vrfIs(L3::VrfName(vrf.name), vrf.id);
  recordsOf(vrf.name);
  settle();
  doBuildContainers(vrf.name);
  settle();
  auto const& triggers = agent_->allVrfRibSeqTrigger();
  if (triggers->vrfRibSeqTriggerHas(L3::VrfName(vrf.name)))
    Platform::RibAgent::ribReadySeqTriggerIs(*triggers, L3::VrfName(vrf.name), seq_);
}

void Switch::vrfDel(std::string const& name) {
  held_.releaseVrf(name);
  agent_->vrfDel(L3::VrfName(name));
  vrfAgent_->vrfDel(L3::VrfName(name));
  vrfs_.erase(name);
}

void Switch::apply(Step const& step) {
  // Each step starts the RIB's count of flips afresh.
  if (rib_) rib_->epochIs();
  std::visit(
      [&](auto const& s) {
        using S = std::decay_t<decltype(s)>;
        if constexpr (std::is_same_v<S, RouteStep>) {
          routeIs(s);
        } else if constexpr (std::is_same_v<S, GlobalStep>) {
          globalIs(s);
        } else if constexpr (std::is_same_v<S, VrfStep>) {
          if (s.op == VrfOp::add)
            vrfIs(s.vrf);
          else
            vrfDel(s.vrf.name);
        } else if constexpr (std::is_same_v<S, InterfaceStep>) {
          Platform::InterfaceAgent::Interface const* current = intfAgent_->intf(s.id);
          Platform::InterfaceAgent::Interface next = current ? *current : Platform::InterfaceAgent::Interface{};
          next.intfId = s.id;
          if (s.up) next.operUp = *s.up;
          if (s.routing) next.routingEnabled = *s.routing;
          for (auto const& a : s.removeAddresses) {
            std::erase(next.addrs, Platform::InterfaceAgent::IntfAddr{a.addr, a.len});
          }
          for (auto const& a : s.addAddresses) next.addrs.push_back({a.addr, a.len});
          intfAgent_->intfIs(next);
          doSyncContainers();
        } else if constexpr (std::is_same_v<S, BfdStep>) {
          bfdAgent_->sessionStateIs(L3::VrfName(s.session.vrf), s.session.peer, bfdStateOf(s.session.state));
        } else if constexpr (std::is_same_v<S, RibStep>) {
          auto const key = std::make_tuple(s.vrf, s.nexthop, s.intf);
          if (s.kind == RibOverrideKind::clear)
            overrides_.erase(key);
          else
            overrides_[key] = s;
          doOverride(s);
        } else if constexpr (std::is_same_v<S, CommandTagStep>) {
          commandTagIs(s.name, s.enabled);
        } else if constexpr (std::is_same_v<S, RestartStep>) {
          restart(s.gracefulRestart.value_or(scenario_.global.gracefulRestart));
        } else if constexpr (std::is_same_v<S, SettleStep>) {
          settle();
        }
      },
      step.kind);
}

ShowView Switch::view(std::string const& label, std::string const& vrfFilter) const {
  ShowView out;
  out.label = label;
  Platform::RibReadout const readout(rib_, igpResults_);
  auto const& staticRoot = agent_->root(RoutingProtocol::staticConfig());
  auto vrfs = vrfAgent_->vrfs();
  std::stable_partition(vrfs.begin(), vrfs.end(), [](auto const& v) { return v.first == L3::VrfName("default"); });
  for (auto const& [name, id] : vrfs) {
    if (!vrfFilter.empty() && name != L3::VrfName(vrfFilter)) continue;
    VrfView v;
    v.name = std::string(name.view());
    v.id = id.value();
    for (int f = 0; f < 2; ++f) v.routes[f] = held_.merged(v.name, f, readout.routes(name, kFamilies[f]));
    v.ready[0] = staticRoot->readyVrfIpv4Has(name);
    v.ready[1] = staticRoot->readyVrfIpv6Has(name);
    if (auto const status = agent_->allVrfReadyStatus()->vrfReadyStatus(name)) {
      v.routesReady[0] = status->v4RoutesReady();
      v.routesReady[1] = status->v6RoutesReady();
      v.seqStatus = status->ribReadySeqStatus();
    }
    if (auto const trigger = agent_->allVrfRibSeqTrigger()->vrfRibSeqTrigger(name))
      v.seqTrigger = trigger->ribReadySeqTrigger();
    out.vrfs.push_back(std::move(v));
  }
  return out;
}

}  // namespace Host
