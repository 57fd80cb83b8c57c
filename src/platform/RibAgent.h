// Platform::RibAgent: the RIB agent's stand-in. It watches the via tables the route machines write
// (IP vias per protocol and transport, EVPN vias), the route tables with their via-set storage, the
// interface agent and the VRF agent, resolves every via, and writes what the RIB reports: one
// ViaMetric per via in Rib::ViaMetricStatusByVrf (VRF id -> transport -> protocol), and a
// LoopingRouteStatus per VRF name for IPv4 and IPv6. Owned by the host (or a test), built after the
// tables it watches exist.
//
// Resolution of an IP via of VRF v, in this order:
//   1. a drop, to-CPU or Null0 via resolves (metric 0, preference 0);
//   2. a via without next hop resolves when its interface is in v, routing-enabled and up;
//   3. a scenario override on (VRF name, next hop, interface) - or (VRF name, next hop) for any
//      interface - gives the result as it stands;
//   4. a via that names an interface resolves through that interface only (metric 0, preference
//      0): the interface must be in v and usable, and the next hop on one of its subnets - or the
//      via's next hop was taken from a host prefix (ViaContent::kFlagNextHopFromHostPrefix), which
//      attaches it to the interface as it is. Otherwise the via is unresolved: the interface was
//      pinned, so it never recurses through other routes, and the subnets of other interfaces do
//      not count;
//   5. a via without interface whose next hop is inside a subnet of a usable interface of v
//      resolves as connected (metric 0, preference 0);
//   6. otherwise the longest prefix of v's installed routes (all route tables of the family) that
//      covers the next hop and has a usable route gives the route's metric and preference; at one
//      prefix the best route by preference, then metric, then table order is tried first. A prefix
//      P is skipped whole when Inputs::configuredWith says a route of P is configured with this
//      next hop: a route's next hop never resolves through the route's own prefix. Vias are
//      shared between routes of different prefixes and the RIB reports per via, so the rule holds
//      per (next hop, prefix): every via with that next hop skips P, whichever route it serves.
//      A route is not usable when its preference is 255, when its via set holds the via being
//      resolved (a via never resolves through a route it serves), when all its vias are
//      drop/to-CPU, or when none of its vias resolves. A recursion that comes back to a via still
//      being resolved counts that via as unresolved for that path.
//   A via that finds nothing is reported unresolved (metric 0, preference 255), with `looping` set
//   when a covering route was refused for serving the via or for a recursion loop. What a via gives
//   is what a walk started from it gives, against the routes as they stand when its VRF is
//   resolved: the order in which vias are resolved (their ids come in the order the library
//   allocated them) never changes a report.
// An EVPN via resolves as the next hop of its VTEP address in the default VRF would, and is reported
// in (VRF 0, transport 3, its protocol). Vias of an id the VRF agent does not know are not reported.
// The looping route tables exist per VRF and stay empty: loops show in the via reports.
//
// Settling: the reports feed the routes they resolve through, so some configurations would make a
// via's report go back and forth for ever. Within one epoch (the host starts one before each step
// of a scenario) each change of a via's report between resolved and unresolved counts as a flip;
// past kFlipLimit flips the via's report is frozen as it stands until the next epoch, and an
// Oscillation naming the VRF, the via and the prefixes it resolved through is recorded.
//
// Readiness: for every VRF of the VRF agent the tables (id, transport 1/2/3, protocol) exist for
// every protocol served, even before the VRF has vias, and the looping tables by name; a VRF that
// goes (or is renumbered away from an id) loses them.
//
// Work: reactors only note the VRF ids touched (route keys, via keys, interface VRFs, overrides,
// VRF changes, configuration changes, frozen vias released by a new epoch) and schedule
// `resolveTask`; the task re-resolves every via of each noted VRF (the default VRF also re-resolves
// the EVPN vias), one VRF per step, yielding between VRFs, and writes only reports that changed,
// after all vias of the VRF are resolved. A VRF whose routes use vias of another VRF is re-resolved with it.
//
// Iteration: the nested machine maps are Zel::HashMap2018 with that map's contract; they only
// note VRF ids. Vias are resolved and stale reports dropped in key order, so the order of writes
// never depends on hash order.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "foundations/records/AllVrfReadyStatus.h"
#include "foundations/records/AllVrfRibSeqTrigger.h"
#include "foundations/rib/EvpnViaConfig.h"
#include "foundations/rib/IpViaConfig.h"
#include "foundations/rib/LoopingRouteStatus.h"
#include "foundations/rib/RouteConfig.h"
#include "foundations/rib/ViaMetricStatus.h"
#include "foundations/rib/ViaSetConfig.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/TaskMember.h"
#include "platform/InterfaceAgent.h"
#include "platform/VrfAgent.h"

namespace Platform {

class RibAgent : public Zel::StateMachine<RibAgent> {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;
  using ViaKey = Routing::Rib::ViaKey;

  // The route table of one family and protocol, with the via-set table its routes name.
  struct RouteTable {
    Ondex::AddressFamily af;
    Routing::Rib::RoutingProtocol protocol;
    Quill::Ptr<Routing::Rib::RouteConfig const> routeConfig;
    Quill::Ptr<Routing::Rib::ViaSetConfig const> viaSetConfig;
  };
  struct Inputs {
    std::vector<Quill::Ptr<Routing::Rib::Ip::ViaConfig const>> ipViaConfigs;
    std::vector<Quill::Ptr<Routing::Rib::Evpn::ViaConfig const>> evpnViaConfigs;
    std::vector<RouteTable> routeTables;
    Quill::Ptr<InterfaceAgent const> interfaceAgent;
    Quill::Ptr<VrfAgent const> vrfAgent;
    // The protocols whose tables every VRF gets; empty: those of the via tables.
    std::vector<Routing::Rib::RoutingProtocol> protocols;
    // Whether a route of `prefix` in VRF `vrfId` is configured with next hop `nextHop` (any
    // preference, any protocol): such a next hop never resolves through a route of that prefix.
    // Asked only for a prefix that has a route covering the next hop. Null: no such rule.
    std::function<bool(VrfId, Ondex::IpGenAddr const& nextHop, Ondex::IpGenPrefix const& prefix)> configuredWith;
    // The outputs; each is created when null.
    Quill::Ptr<Routing::Rib::ViaMetricStatusByVrf> viaMetricStatusByVrf;
    Quill::Ptr<Routing::Rib::LoopingRouteStatusByVrf> loopingRouteStatusByVrf4;
    Quill::Ptr<Routing::Rib::LoopingRouteStatusByVrf> loopingRouteStatusByVrf6;
    Halyard::TaskScheduler* scheduler = nullptr;
  };

  // What resolving one via gave.
  struct Result {
    bool resolved = false;
    bool looping = false;
    Routing::RouteMetric metric = 0;
    std::uint32_t preference = Routing::Rib::ViaMetric::kUnresolvedPreference;
    // The prefix of the route it resolved through; unset when connected, attached or overridden.
    Ondex::IpGenPrefix through;
    [[nodiscard]] Routing::Rib::ViaMetric viaMetric(ViaKey const& key) const;
    friend bool operator==(Result const&, Result const&) = default;
  };

  // A via whose report went on flipping between resolved and unresolved within one epoch.
  struct Oscillation {
    L3::VrfName vrf;
    ViaKey via;
    Ondex::IpGenAddr nextHop;  // the VTEP address of an EVPN via
    Ondex::IntfId intf;
    // The prefixes it resolved through while flipping, in order.
    std::vector<Ondex::IpGenPrefix> through;
    // "route 0.0.0.0/0 in vrf default does not settle: via 10.9.9.9 flips between resolved and
    // unresolved"; "via ... in vrf ... does not settle: ..." when it never resolved through a route.
    [[nodiscard]] std::string text() const;
  };
  // Flips of a via's report in one epoch past which the report is frozen.
  static constexpr std::uint32_t kFlipLimit = 32;

  [[nodiscard]] static Quill::Ptr<RibAgent> RibAgentIs(Inputs const& in) { return Zel::make<RibAgent>(in); }

  // ---- Scenario overrides, in force until removed. `intf` empty: any interface of the next hop.
  void overrideResolvedIs(L3::VrfName const& vrf, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf,
                          Routing::RouteMetric metric, std::uint32_t preference = 1);
  void overrideUnresolvedIs(L3::VrfName const& vrf, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf);
  bool overrideDel(L3::VrfName const& vrf, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf);

  // ---- The configuration behind Inputs::configuredWith changed in `vrf`: its vias are resolved
  // again. Unknown VRFs are ignored.
  void configurationChangedIs(L3::VrfName const& vrf);

  // ---- A new epoch, before each step of a scenario: flip counts start from zero, the frozen vias
  // are released (and their VRFs resolved again) and the oscillations recorded are dropped.
  void epochIs();
  // The first oscillation of the epoch, if any; all of them, in the order they were found.
  [[nodiscard]] std::optional<Oscillation> oscillation() const;
  [[nodiscard]] std::vector<Oscillation> const& oscillations() const noexcept { return oscillations_; }

  // ---- The sequence handshake. The RIB asks with a new number; the protocol has reviewed the VRF
  // when its VrfReadyStatus echoes that number.
  static void ribReadySeqTriggerIs(Routing::Protocol::AllVrfRibSeqTrigger& triggers, L3::VrfName const& vrf,
                                   std::uint32_t n);
  [[nodiscard]] static bool ribReadySeqEchoed(Routing::Protocol::AllVrfReadyStatus const& ready,
                                              Routing::Protocol::AllVrfRibSeqTrigger const& triggers,
                                              L3::VrfName const& vrf);

  // ---- Readers.
  [[nodiscard]] Quill::Ptr<Routing::Rib::ViaMetricStatusByVrf> const& viaMetricStatusByVrf() const noexcept {
    return viaMetricStatusByVrf_;
  }
  [[nodiscard]] Quill::Ptr<Routing::Rib::LoopingRouteStatusByVrf> const& loopingRouteStatusByVrf4() const noexcept {
    return looping4_;
  }
  [[nodiscard]] Quill::Ptr<Routing::Rib::LoopingRouteStatusByVrf> const& loopingRouteStatusByVrf6() const noexcept {
    return looping6_;
  }
  [[nodiscard]] Inputs const& inputs() const noexcept { return in_; }
  // The report on a via; the empty via metric when there is none.
  [[nodiscard]] Routing::Rib::ViaMetric viaMetric(ViaKey const& key) const;
  // The IP via of a key from the via tables; null when none has it.
  [[nodiscard]] Routing::Rib::Via const* ipVia(ViaKey const& key) const;
  [[nodiscard]] Routing::Rib::Evpn::Via const* evpnVia(ViaKey const& key) const;
  // How many VRF re-resolutions the task has made, for tests and benchmarks.
  [[nodiscard]] std::uint64_t vrfResolutions() const noexcept { return vrfResolutions_; }

  // ---- Nested machines on the watched tables (keyed by their index in Inputs).
  class NestedSm_IpVias : public Zel::NestedSm<RibAgent, std::uint32_t, Routing::Rib::Ip::ViaConfig> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };
  class NestedSm_EvpnVias : public Zel::NestedSm<RibAgent, std::uint32_t, Routing::Rib::Evpn::ViaConfig> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };
  class NestedSm_Routes : public Zel::NestedSm<RibAgent, std::uint32_t, Routing::Rib::RouteConfig> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };
  // The via-set table: a new storage is watched in place of the old one.
  class NestedSm_ViaSets : public Zel::NestedSm<RibAgent, std::uint32_t, Routing::Rib::ViaSetConfig> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };
  class NestedSm_ViaSetColl : public Zel::NestedSm<RibAgent, std::uint32_t, Routing::Rib::Skein::ViaSetCollection> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };

  // ---- Reactors: note and schedule.
  void handleVia(ViaKey const& key);
  // An IP via came or went in table tableIndex of ipViaConfigs: its VRF's index entry follows.
  void handleIpVia(std::uint32_t tableIndex, ViaKey const& key);
  void handleRoute(Routing::Rib::RouteKey const& key);
  // A via set came or went: every VRF of the table's family may resolve differently.
  void handleViaSets(std::uint32_t tableIndex);
  void handleViaSetColl(std::uint32_t tableIndex);
  void handleIntfVrf(L3::VrfName const& vrf);
  void handleVrfs();

 protected:
  friend struct Zel::Factory;
  explicit RibAgent(Inputs const& in);

 private:
  using OverrideKey = std::tuple<L3::VrfName, Ondex::IpGenAddr, Ondex::IntfId>;

  void markDirty(VrfId vrfId);
  void doResolveTask();
  // Brings the readiness tables in line with the VRF agent's VRFs.
  void doSyncVrfs();
  void doResolveVrf(VrfId vrfId);
  // Resolves the vias of `table` in VRF vrfId (all of the table when `anyVrf`), in key order,
  // adding them to `results`.
  template <class Table>
  void doResolveVias(VrfId vrfId, bool anyVrf, Table const& table, std::vector<std::pair<ViaKey, Result>>& results);
  // Drops the reports of VRF vrfId that `table` no longer has a via for.
  template <class Table>
  void doDropStale(VrfId vrfId, Table const& table);
  void doWrite(ViaKey const& key, Result const& r);
  // Counts a flip of the via's report; false when that flip freezes it (an oscillation).
  bool flipIs(ViaKey const& key, Result const& r);
  [[nodiscard]] Oscillation oscillationOf(ViaKey const& key) const;

  Result resolveViaKey(ViaKey const& key);
  Result resolveIpVia(ViaKey const& key, Routing::Rib::Via const& via);
  // Steps 3 to 6 for an address in a VRF, for the via `self`.
  Result resolveNextHop(VrfId vrfId, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf, bool fromHostPrefix,
                        ViaKey const& self);
  // Step 4: through the interface the via names, or not at all.
  [[nodiscard]] Result resolveOnIntf(L3::VrfName const& vrf, Ondex::IpGenAddr const& nextHop, Ondex::IntfId intf,
                                     bool fromHostPrefix) const;
  // Step 6.
  Result resolveRecursive(VrfId vrfId, Ondex::IpGenAddr const& nextHop, ViaKey const& self);
  // The subnets of the VRF's usable interfaces, memoised for one task run.
  [[nodiscard]] std::vector<InterfaceAgent::Connected> const& connected(VrfId vrfId, Ondex::AddressFamily af);
  // Whether the route (of table `table`) can carry the via `self`; sets `looping` when refused for a loop.
  bool routeUsable(VrfId vrfId, RouteTable const& table, Routing::Rib::Route::Body const& body, ViaKey const& self,
                   bool& looping);
  [[nodiscard]] bool isSpecial(Routing::Rib::ViaContent const& via) const;
  [[nodiscard]] Routing::Rib::Ip::ViaConfig const* ipTable(Routing::Rib::RoutingProtocol rp,
                                                           Routing::Rib::Transport t) const;
  [[nodiscard]] std::vector<Routing::Rib::RoutingProtocol> protocols() const;

  Inputs in_;
  Quill::Ptr<Routing::Rib::ViaMetricStatusByVrf> viaMetricStatusByVrf_;
  Quill::Ptr<Routing::Rib::LoopingRouteStatusByVrf> looping4_;
  Quill::Ptr<Routing::Rib::LoopingRouteStatusByVrf> looping6_;

  // Per table of ipViaConfigs, its vias by VRF in key order: a VRF's resolution reads only its own.
  std::vector<std::map<VrfId, std::set<ViaKey>>> ipViaKeysByVrf_;
  std::set<VrfId> dirty_;
  bool vrfsChanged_ = true;
  // VRF -> the VRFs whose routes use its vias (found while resolving; never shrinks).
  std::map<VrfId, std::set<VrfId>> dependents_;
  std::map<OverrideKey, Result> overrides_;
  // The VRFs whose tables exist, by id.
  std::map<VrfId, L3::VrfName> knownVrfs_;
  // One task run's memory. A via's result is that of a walk started from the via; a walk that
  // reaches a via already on it (inProgress_, the loop guard) counts that path as unresolved. A
  // result found inside another walk is kept with the vias its walk visited and those of them it
  // found on the walk (`leaned`): it is reused only where exactly those are on the walk, so that
  // what a via gives never depends on which via was resolved first.
  struct Walked {
    Result result;
    std::set<ViaKey> visited;
    std::set<ViaKey> leaned;
  };
  [[nodiscard]] bool reusable(Walked const& w) const;
  std::map<ViaKey, Walked> memo_;
  std::set<ViaKey> inProgress_;
  // The vias visited by the walk under way; null outside walks.
  std::set<ViaKey>* visited_ = nullptr;
  std::map<std::pair<VrfId, std::uint8_t>, std::vector<InterfaceAgent::Connected>> connectedMemo_;
  std::uint64_t vrfResolutions_ = 0;
  // This epoch's flips per via with the prefixes it resolved through, the vias frozen, the
  // oscillations found.
  struct Flips {
    std::uint32_t count = 0;
    std::set<Ondex::IpGenPrefix> through;
  };
  std::map<ViaKey, Flips> flips_;
  std::set<ViaKey> frozen_;
  std::vector<Oscillation> oscillations_;

 public:
  ZEL_NESTED(std::uint32_t, NestedSm_IpVias, ipVias)
  ZEL_NESTED(std::uint32_t, NestedSm_EvpnVias, evpnVias)
  ZEL_NESTED(std::uint32_t, NestedSm_Routes, routes)
  ZEL_NESTED(std::uint32_t, NestedSm_ViaSets, viaSets)
  ZEL_NESTED(std::uint32_t, NestedSm_ViaSetColl, viaSetColl)
  using IntfReactors = Zel::Reactors<Zel::On<InterfaceAgent::vrfVersionId, &RibAgent::handleIntfVrf>>;
  ZEL_INPUT(InterfaceAgent, interfaceAgent, IntfReactors)
  using VrfReactors = Zel::Reactors<Zel::On<VrfAgent::versionId, &RibAgent::handleVrfs>>;
  ZEL_INPUT(VrfAgent, vrfAgent, VrfReactors)
  ZEL_TASK(resolveTask, doResolveTask)
};

}  // namespace Platform
