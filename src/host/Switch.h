// Host::Switch: a switch around the library, built from a scenario. It owns the stores and the
// records of the agents that outlive the routing agent (VRF maps, interface tables, configuration
// records per VRF, the RIB's reports and tables), the stand-ins for those agents (VRF, interface,
// RIB, BFD), and the routing agent itself, which a restart tears down and builds again on the same
// records. The runner owns one per run; steps change its records, `show` reads the RIB back.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "foundations/records/ConfigTag.h"
#include "foundations/records/RouteInput.h"
#include "host/HeldRoutes.h"
#include "host/RoutingAgent.h"
#include "host/Scenario.h"
#include "platform/BfdAgent.h"
#include "platform/InterfaceAgent.h"
#include "platform/RibAgent.h"
#include "platform/RibReadout.h"
#include "platform/VrfAgent.h"

namespace Host {

// What one `show` prints: per VRF and family the installed routes, then the VRF's readiness.
struct VrfView {
  std::string name;
  std::uint32_t id = 0;
  std::vector<Platform::RibReadout::InstalledRoute> routes[2];  // IPv4, IPv6
  bool ready[2] = {false, false};                               // unicast ready sets
  bool routesReady[2] = {false, false};                         // v4RoutesReady, v6RoutesReady
  std::uint32_t seqTrigger = 0;
  std::uint32_t seqStatus = 0;
};
struct ShowView {
  std::string label;
  std::vector<VrfView> vrfs;  // "default" first, then by name
};

class Switch {
 public:
  Switch(Scenario const& scenario, Halyard::TaskScheduler* scheduler);
  ~Switch();
  Switch(Switch const&) = delete;
  Switch& operator=(Switch const&) = delete;

  // Records of the scenario's start, the routing agent and the stand-ins; then one handshake round.
  void start();
  // Runs the scheduler until idle. With a progress stream, a settle that lasts more than two seconds
  // reports the routes installed there once a second, on one line.
  void settle();
  void progressIs(std::ostream* progress) noexcept { progress_ = progress; }
  // One step (a show is the runner's: it calls view()).
  void apply(Step const& step);
  [[nodiscard]] ShowView view(std::string const& label, std::string const& vrfFilter) const;
  // The agent restart: every state machine of the routing agent goes and is built again on the
  // same records; the RIB asks each VRF for a new handshake round. The same as agentStop() then
  // agentStart(gracefulRestart); between the two a test can change the configuration the agent
  // will find when it comes back.
  void restart(bool gracefulRestart);
  // The routing agent stops as a process does: its state machines go, what it wrote to the RIB's
  // tables stays (the RIB agent's view of it goes with the agent's tables' readers).
  void agentStop(bool gracefulRestart = false);
  void agentStart(bool gracefulRestart);

  [[nodiscard]] RoutingAgent const& agent() const { return *agent_; }
  [[nodiscard]] std::size_t routeCount() const;

 private:
  void settleShowingProgress();
  // The configuration records of one VRF, by family (0 IPv4, 1 IPv6).
  struct VrfRecords {
    Quill::Ptr<Routing::RouteList> config[2];
    Quill::Ptr<Routing::RouteList> dynamic[2];
    Quill::Ptr<Zel::Dir> dir[2];
    std::map<std::string, Quill::Ptr<Routing::RouteInput>> users[2];
    // Each user's command-tag index of its routes, an entry of tagDir by the user's name.
    Quill::Ptr<Zel::Dir> tagDir[2];
    std::map<std::string, Quill::Ptr<Routing::RouteListTaggedConfig>> userTags[2];
    // The interface tables the VRF's containers were built on.
    Quill::Ptr<Zel::Entity const> intfTables[2];
  };

  VrfRecords& recordsOf(std::string const& vrf);
  void routeIs(RouteStep const& step);
  // `tagged`: the command-tag index kept with the list (by tag, the keys of its routes).
  void routeInto(Routing::RouteList& list, StaticRoute const& route, RouteOp op,
                 Routing::RouteListTaggedConfig& tagged);
  // The index of the static or dynamic lists of `vrf` in `tagged`, made when there is none.
  static Routing::RouteListTaggedConfig& tagIndexOf(Routing::VrfRouteListTaggedConfig& tagged, std::string const& vrf);
  static void taggedKeyIs(Routing::RouteListTaggedConfig& index, std::string const& tag, Routing::RouteKey const& key);
  static void taggedKeyDel(Routing::RouteListTaggedConfig& index, Routing::RouteKey const& key);
  Routing::RouteInput& userOf(std::string const& vrf, std::string const& user, int family);
  // Takes out of an existing route the vias that `route` gives again with another BFD local address.
  static void dropViasGivenAgain(Routing::Route& r, StaticRoute const& route);
  Routing::RouteListTaggedConfig& userTagsOf(std::string const& vrf, std::string const& user, int family);
  // A static or dynamic route into its list; an injected route (non-empty `user`) into the user's.
  void configRouteInto(std::string const& user, StaticRoute const& route, RouteOp op);
  void interfaceIs(Interface const& intf);
  void globalIs(GlobalStep const& step);
  void commandTagIs(std::string const& name, bool enabled);
  void vrfIs(Vrf const& vrf);
  void vrfDel(std::string const& name);
  // Containers of a VRF, built again when its interface tables came or went since they were built.
  void doSyncContainers();
  void doBuildContainers(std::string const& vrf);
  void doStartAgents(bool gracefulRestart);
  void doHandshakeRound();
  void doOverride(RibStep const& step);
  // Whether a route of `prefix` in the VRF is configured (static, dynamic or injected, any
  // preference) with next hop `nextHop`: the RIB never resolves that next hop through that prefix.
  [[nodiscard]] bool configuredWith(Platform::RibAgent::VrfId vrfId, Ondex::IpGenAddr const& nextHop,
                                    Ondex::IpGenPrefix const& prefix) const;
  // Lets go of the held routes of each VRF and family the restarted agent has declared ready.
  void doReleaseHeldRoutes();

  Scenario const& scenario_;
  Halyard::TaskScheduler* scheduler_;
  Cairn::EntityManager em_;
  ZelSharedMem::EntityManager shmem_;
  Quill::Ptr<Platform::VrfAgent> vrfAgent_;
  Quill::Ptr<Platform::InterfaceAgent> intfAgent_;
  Quill::Ptr<Platform::BfdAgent> bfdAgent_;
  Quill::Ptr<Routing::Rib::ViaMetricStatusByVrf> metrics_;
  Quill::Ptr<Routing::Rib::LoopingRouteStatusByVrf> looping4_;
  Quill::Ptr<Routing::Rib::LoopingRouteStatusByVrf> looping6_;
  Quill::Ptr<Routing::General::Config> general_;
  Quill::Ptr<Mpls::Config> mpls_;
  Quill::Ptr<ConfigTag::ConfigTagStatus> tagStatus_;
  Quill::Ptr<ConfigTag::ConfigTagIdState> tagIds_;
  // The command-tag indexes of the static and the dynamic lists, of every VRF.
  Quill::Ptr<Routing::VrfRouteListTaggedConfig> tagged_;
  Quill::Ptr<Routing::VrfRouteListTaggedConfig> taggedDynamic_;
  // The RIB's table of redistribution results (tags and communities of route-input routes).
  Quill::Ptr<Routing::Bgp::IgpResultTable> igpResults_;
  // The scenario's overrides of the RIB's reports, by (VRF, next hop, interface): the RIB agent's
  // state, which outlives a restart of the routing agent.
  std::map<std::tuple<std::string, Ondex::IpGenAddr, Ondex::IntfId>, RibStep> overrides_;
  // What the RIB keeps of an agent that restarts gracefully, until the agent has reconciled it.
  HeldRoutes held_;
  std::ostream* progress_ = nullptr;
  std::map<std::string, VrfRecords> vrfs_;
  bool gracefulRestart_ = false;
  // Whether the agent may verify readiness at its (next) graceful start.
  bool startReadyVerification_ = false;
  std::uint32_t seq_ = 0;
  std::unique_ptr<RoutingAgent> agent_;
  Quill::Ptr<Platform::RibAgent> rib_;
};

}  // namespace Host
