// Routing::Protocol::RootSm: the root of one routing protocol's tables in the process. It mounts what
// the protocol reads (VRF maps, interface tables, the RIB's via metric and looping reports) and
// writes (the all-VRF via, route and via-set tables, unicast and multicast), owns the machines on
// those tables, and keeps per VRF and family whether the VRF may be served (the ready sets), the
// VRF's readiness records and the RIB's sequence handshake. Owned by the hosting agent, one per
// protocol; the per-VRF containers are built from its tables.
//
// In this process the mounts are in-process stores: the host registers the RIB table types in the
// shared-memory store (Routing::Rib::ribTypeFactoriesIs) and puts the records the other agents own
// (VRF maps, interface tables, looping and via metric reports) at their paths.
//
// Iteration: the ready sets and the nested machine maps are Zel::HashMap2018 with that map's
// contract (entries may come and go during a walk; no order is promised).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundations/records/AllVrfReadyStatus.h"
#include "foundations/records/AllVrfRibSeqTrigger.h"
#include "foundations/records/GrState.h"
#include "foundations/records/IpIntfStatus.h"
#include "foundations/records/VrfIdMap.h"
#include "foundations/rib/LoopingRouteStatus.h"
#include "foundations/rib/NextHopDependencyGraph.h"
#include "foundations/rib/RouteConfig.h"
#include "foundations/rib/TableSm.h"
#include "foundations/rib/ViaMetricStatus.h"
#include "foundations/runtime/RootMounts.h"
#include "foundations/runtime/StateMachine.h"
#include "protocol/ProtocolRouteStatus.h"
#include "protocol/ProtocolViaMetricStatusSm.h"

namespace Routing::Protocol {

class RootSm : public Zel::StateMachine<RootSm>, public Zel::RootMounts {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;
  using ViaMetricStatusEntry = Rib::ViaMetricStatusByProtocol;

  [[nodiscard]] static Quill::Ptr<RootSm> RootSmIs(Cairn::EntityManager* em, Cairn::MountGroup* mg,
                                                   ZelSharedMem::EntityManager* shmemEm,
                                                   ZelSharedMem::MountGroup* shmemMg, std::uint32_t maxRoutes,
                                                   std::uint32_t maxViaSets, std::uint32_t maxVrfs,
                                                   Rib::RoutingProtocol routingProtocol,
                                                   Quill::Ptr<AllVrfReadyStatus> allVrfReadyStatus,
                                                   Quill::Ptr<AllVrfRibSeqTrigger> allVrfRibSeqTrigger) {
    return Zel::make<RootSm>(em, mg, shmemEm, shmemMg, maxRoutes, maxViaSets, maxVrfs, routingProtocol,
                             std::move(allVrfReadyStatus), std::move(allVrfRibSeqTrigger));
  }

  // ---- The hosting agent's calls.
  // Fetches the mounted tables and builds the machines on them; call once the mount groups are done.
  void doMountsComplete();
  // Finds or creates the graceful-restart state of this start.
  Quill::Ptr<GrState> grStateIs(bool gracefulRestart);
  // Per-VRF clean-up of the route tables when a VRF's containers go.
  void doCleanupContainer4(L3::VrfName const& vrf, VrfId vrfId);
  void doCleanupContainer6(L3::VrfName const& vrf, VrfId vrfId);
  void doCleanupMcContainer4(L3::VrfName const& vrf, VrfId vrfId);
  void doCleanupMcContainer6(L3::VrfName const& vrf, VrfId vrfId);
  void doDeleteViasForVrf(VrfId vrfId, Rib::Ip::ViaConfig& viaConfig);

  // The RIB's via metric entry of (transport, VRF) in "rib" or "mrib"; null when absent.
  [[nodiscard]] Quill::Ptr<ViaMetricStatusEntry const> viaMetricStatus(Rib::Transport transport, VrfId vrfId,
                                                                       std::string_view ribString) const;
  [[nodiscard]] std::string_view protocolName() const;
  // "routing/" af "/routeConfig/" rib "/" vrfId "/" protocol.
  [[nodiscard]] Quill::String ribMount(VrfId vrfId, std::string_view afString, std::string_view ribString) const;
  // "routing/" af "/viaConfig/" transport "/" vrfId "/" protocol.
  [[nodiscard]] Quill::String viaConfigMount(VrfId vrfId, std::string_view afString, Rib::Transport transport) const;
  // "routing/" rib "/viaConfig/" transport "/" protocol: the all-VRF via table.
  [[nodiscard]] Quill::String allVrfViaConfigMount(std::string_view ribString, Rib::Transport transport,
                                                   std::string_view protocol) const;

  // ---- Readiness.
  void setReadyVrf(L3::VrfName const& vrf);
  void setReadyVrfIpv4(L3::VrfName const& vrf);
  void setReadyVrfIpv6(L3::VrfName const& vrf);
  void setMcReadyVrf(L3::VrfName const& vrf);
  void setMcReadyVrfIpv4(L3::VrfName const& vrf);
  void setMcReadyVrfIpv6(L3::VrfName const& vrf);
  void handleDefaultVrfDeps(L3::VrfName const& vrf);
  void maybeSetRoutesReady(L3::VrfName const& vrf);
  void handleStartReadyVerification();
  void doCreateOrDeleteVrfAsuState(L3::VrfName const& vrf);
  void maybeUpdateRibReadySeqStatus(L3::VrfName const& vrf);
  void handleRibSeqTrigger(L3::VrfName const& vrf);
  void handleVrfNameToIdMap();
  void handleVrfNameToId(L3::VrfName const& vrf);
  void handleViaMetricStatus(VrfId const& vrfId);
  void handleMcViaMetricStatus(VrfId const& vrfId);

  // ---- Constructor arguments (the stores and mount groups are RootMounts').
  ZEL_CONST(std::uint32_t, maxRoutes)
  ZEL_CONST(std::uint32_t, maxViaSets)
  ZEL_CONST(std::uint32_t, maxVrfs)
  ZEL_CONST(Rib::RoutingProtocol, routingProtocol)
  // Written here (a VRF's records come and go with its id) and watched (the nested machines below).
  ZEL_CONST(Quill::Ptr<AllVrfReadyStatus>, allVrfReadyStatus)
  ZEL_CONST(Quill::Ptr<AllVrfRibSeqTrigger>, allVrfRibSeqTrigger)

  // ---- The all-VRF tables and the machines on them.
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfig>, ipv4AllVrfViaConfig, 130)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfigSm>, ipv4AllVrfViaConfigSm, 131)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfig>, ipv6AllVrfViaConfig, 132)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfigSm>, ipv6AllVrfViaConfigSm, 133)
  ZEL_ATTR(Quill::Ptr<Rib::RouteConfig>, ipv4AllVrfRibConfig, 134)
  ZEL_ATTR(Quill::Ptr<Rib::RouteConfig>, ipv6AllVrfRibConfig, 135)
  ZEL_ATTR(Quill::Ptr<Rib::RouteConfig>, mcIpv4AllVrfRibConfig, 136)
  ZEL_ATTR(Quill::Ptr<Rib::RouteConfig>, mcIpv6AllVrfRibConfig, 137)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfig>, mcIpv4AllVrfViaConfig, 138)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfig>, mcIpv6AllVrfViaConfig, 139)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfigSm>, mcIpv4AllVrfViaConfigSm, 140)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfigSm>, mcIpv6AllVrfViaConfigSm, 141)

  // ---- Interface tables and VRF maps (watched below).
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfig>, ipv4DefaultVrfViaConfig, 142)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfig>, ipv6DefaultVrfViaConfig, 143)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfig>, mcIpv4DefaultVrfViaConfig, 144)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfig>, mcIpv6DefaultVrfViaConfig, 145)
  ZEL_ATTR(Quill::Ptr<Rib::Evpn::ViaConfig>, evpnConfig, 146)
  ZEL_ATTR(Quill::Ptr<Rib::Evpn::ViaConfigSm>, evpnViaConfigSm, 147)
  ZEL_ATTR(Quill::Ptr<Rib::ViaSetConfig>, viaSetConfig, 148)
  ZEL_ATTR(Quill::Ptr<Rib::ViaSetConfig>, mcViaSetConfig, 149)
  ZEL_ATTR(Quill::Ptr<Rib::ViaSetConfigSm>, viaSetConfigSm, 150)
  ZEL_ATTR(Quill::Ptr<Rib::ViaSetConfigSm>, mcViaSetConfigSm, 151)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::GlobalNextHopDependencyGraph const>, nhdGraph, 152)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::GlobalNextHopDependencyGraph const>, mcNhdGraph, 153)
  ZEL_ATTR(Quill::Ptr<ViaMetricStatusSm>, viaMetricStatusSm, 154)
  ZEL_ATTR(Quill::Ptr<ViaMetricStatusSm>, mcViaMetricStatusSm, 155)
  ZEL_ATTR(Quill::Ptr<RouteStatusDir>, routeStatusDir, 156)
  ZEL_ATTR(Quill::Ptr<RouteStatusDir>, mcRouteStatusDir, 157)
  // Owned; the hosting agent writes its startReadyVerification, the root watches it.
  ZEL_ATTR(Quill::Ptr<GrState>, grState, 158)

  // ---- Readiness sets. The two unicast ready sets re-evaluate the other VRFs when the default
  // VRF's entry changes (before the change is published).
  ZEL_SET_WITH_HANDLER(L3::VrfName, readyVrfIpv4, 159, handleDefaultVrfDeps)
  ZEL_SET_WITH_HANDLER(L3::VrfName, readyVrfIpv6, 160, handleDefaultVrfDeps)
  ZEL_SET(L3::VrfName, readyVrfIpv4SetWithNullIntfStatus, 161)
  ZEL_SET(L3::VrfName, readyVrfIpv6SetWithNullIntfStatus, 162)
  ZEL_SET(L3::VrfName, mcReadyVrfIpv4, 163)
  ZEL_SET(L3::VrfName, mcReadyVrfIpv6, 164)
  ZEL_ATTR(bool, initialized, 165)

  // ---- Nested machines.
  // One VRF's sequence trigger: a new trigger value (and the attachment) runs handleRibSeqTrigger.
  class NestedSm_VrfRibSeqTrigger : public Zel::NestedSm<RootSm, L3::VrfName, VrfRibSeqTrigger> {
   public:
    NestedSm_VrfRibSeqTrigger(RootSm* owner, L3::VrfName const& vrf, Quill::Ptr<VrfRibSeqTrigger const> const& t);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void notifierIs(Quill::Ptr<VrfRibSeqTrigger const> trigger) override;
  };
  // One VRF's readiness record: a review flag going true may complete the handshake.
  class NestedSm_VrfReadyStatus : public Zel::NestedSm<RootSm, L3::VrfName, VrfReadyStatus> {
   public:
    NestedSm_VrfReadyStatus(RootSm* owner, L3::VrfName const& vrf, Quill::Ptr<VrfReadyStatus const> const& s);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void notifierIs(Quill::Ptr<VrfReadyStatus const> status) override;
  };
  // One transport of a VRF's via metric reports (unicast or multicast, by the owner's flag).
  class NestedSm_VrfMetricStatus;
  class NestedSm_TransportStatus
      : public Zel::NestedSm<NestedSm_VrfMetricStatus, Rib::Transport, Rib::ViaMetricStatusByProtocol> {
   public:
    NestedSm_TransportStatus(NestedSm_VrfMetricStatus* owner, Rib::Transport const& transport,
                             Quill::Ptr<Rib::ViaMetricStatusByProtocol const> const& byProtocol);
    void onAttribute(Zel::AttrId id, void const* key) override;
  };
  // One VRF's via metric reports: its transports come and go.
  class NestedSm_VrfMetricStatus : public Zel::NestedSm<RootSm, VrfId, Rib::ViaMetricStatusByTransport> {
   public:
    using ZelSelf = NestedSm_VrfMetricStatus;
    NestedSm_VrfMetricStatus(RootSm* owner, VrfId const& vrfId,
                             Quill::Ptr<Rib::ViaMetricStatusByTransport const> const& byTransport, bool mc = false);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void notifierIs(Quill::Ptr<Rib::ViaMetricStatusByTransport const> byTransport) override;
    // handleViaMetricStatus or handleMcViaMetricStatus of this VRF.
    void handleViaMetricStatus();
    [[nodiscard]] bool mc() const noexcept { return mc_; }
    ZEL_NESTED(Rib::Transport, NestedSm_TransportStatus, transportStatus)
    using Reconciler =
        Zel::Reconcile<Rib::ViaMetricStatusByTransport::transportStatusId, &NestedSm_VrfMetricStatus::transportStatus_>;

   private:
    bool mc_;
  };
  class NestedSm_McVrfMetricStatus : public NestedSm_VrfMetricStatus {
   public:
    NestedSm_McVrfMetricStatus(RootSm* owner, VrfId const& vrfId,
                               Quill::Ptr<Rib::ViaMetricStatusByTransport const> const& byTransport)
        : NestedSm_VrfMetricStatus(owner, vrfId, byTransport, true) {}
  };
  ZEL_NESTED(L3::VrfName, NestedSm_VrfRibSeqTrigger, vrfRibSeqTrigger)
  ZEL_NESTED(L3::VrfName, NestedSm_VrfReadyStatus, vrfReadyStatus)
  ZEL_NESTED(VrfId, NestedSm_VrfMetricStatus, vrfMetricStatus)
  ZEL_NESTED(VrfId, NestedSm_McVrfMetricStatus, mcVrfMetricStatus)

  // ---- Watched inputs, with the reactors that drive readiness.
  using AllVrfReadyStatusReactors =
      Zel::Reactors<Zel::Reconcile<AllVrfReadyStatus::vrfReadyStatusId, &RootSm::vrfReadyStatus_>>;
  ZEL_INPUT(AllVrfReadyStatus, allVrfReadyStatusWatch, AllVrfReadyStatusReactors)
  using AllVrfRibSeqTriggerReactors =
      Zel::Reactors<Zel::Reconcile<AllVrfRibSeqTrigger::vrfRibSeqTriggerId, &RootSm::vrfRibSeqTrigger_>>;
  ZEL_INPUT(AllVrfRibSeqTrigger, allVrfRibSeqTriggerWatch, AllVrfRibSeqTriggerReactors)

  void handleIpv4IntfStatus(L3::VrfName const& vrf);
  void handleIpv6IntfStatus(L3::VrfName const& vrf);
  using Ipv4IntfReactors = Zel::Reactors<Zel::On<Ip::Status::vrfIpIntfStatusId, &RootSm::handleIpv4IntfStatus>>;
  ZEL_INPUT(Ip::Status, ipv4IntfStatus, Ipv4IntfReactors)
  using Ipv6IntfReactors = Zel::Reactors<Zel::On<Ip6::Status::vrfIp6IntfStatusId, &RootSm::handleIpv6IntfStatus>>;
  ZEL_INPUT(Ip6::Status, ipv6IntfStatus, Ipv6IntfReactors)

  void handleVrfIdStatus(VrfId const& vrfId);
  using VrfIdReactors = Zel::Reactors<Zel::On<Vrf::VrfIdMap::Status::vrfIdToNameId, &RootSm::handleVrfIdStatus>>;
  ZEL_INPUT(Vrf::VrfIdMap::Status, vrfIdStatus, VrfIdReactors)

  void handleNameToIdMap();
  using VrfNameReactors =
      Zel::Reactors<Zel::On<Vrf::VrfIdMap::NameToIdMapWrapper::nameToIdMapId, &RootSm::handleNameToIdMap>>;
  ZEL_INPUT(Vrf::VrfIdMap::NameToIdMapWrapper, vrfNameStatus, VrfNameReactors)
  // The inner map of vrfNameStatus, reattached whenever the wrapper's map is replaced.
  using NameToIdReactors =
      Zel::Reactors<Zel::On<Vrf::VrfIdMap::NameToIdMap::vrfNameToIdId, &RootSm::handleVrfNameToId>>;
  ZEL_INPUT(Vrf::VrfIdMap::NameToIdMap, nameToIdMap, NameToIdReactors)

  using ViaMetricReactors =
      Zel::Reactors<Zel::On<Rib::ViaMetricStatusByVrf::vrfStatusId, &RootSm::handleViaMetricStatus>,
                    Zel::Reconcile<Rib::ViaMetricStatusByVrf::vrfStatusId, &RootSm::vrfMetricStatus_>>;
  ZEL_INPUT(Rib::ViaMetricStatusByVrf, viaMetricStatusByVrf, ViaMetricReactors)
  using McViaMetricReactors =
      Zel::Reactors<Zel::On<Rib::ViaMetricStatusByVrf::vrfStatusId, &RootSm::handleMcViaMetricStatus>,
                    Zel::Reconcile<Rib::ViaMetricStatusByVrf::vrfStatusId, &RootSm::mcVrfMetricStatus_>>;
  ZEL_INPUT(Rib::ViaMetricStatusByVrf, mcViaMetricStatusByVrf, McViaMetricReactors)

  using Looping4Reactors = Zel::Reactors<Zel::On<Rib::LoopingRouteStatusByVrf::vrfStatusId, &RootSm::setReadyVrfIpv4>>;
  ZEL_INPUT(Rib::LoopingRouteStatusByVrf, loopingRouteStatusByVrf4, Looping4Reactors)
  using Looping6Reactors = Zel::Reactors<Zel::On<Rib::LoopingRouteStatusByVrf::vrfStatusId, &RootSm::setReadyVrfIpv6>>;
  ZEL_INPUT(Rib::LoopingRouteStatusByVrf, loopingRouteStatusByVrf6, Looping6Reactors)
  using McLooping4Reactors =
      Zel::Reactors<Zel::On<Rib::LoopingRouteStatusByVrf::vrfStatusId, &RootSm::setMcReadyVrfIpv4>>;
  ZEL_INPUT(Rib::LoopingRouteStatusByVrf, mcLoopingRouteStatusByVrf4, McLooping4Reactors)
  using McLooping6Reactors =
      Zel::Reactors<Zel::On<Rib::LoopingRouteStatusByVrf::vrfStatusId, &RootSm::setMcReadyVrfIpv6>>;
  ZEL_INPUT(Rib::LoopingRouteStatusByVrf, mcLoopingRouteStatusByVrf6, McLooping6Reactors)

  using GrStateReactors =
      Zel::Reactors<Zel::On<GrState::startReadyVerificationId, &RootSm::handleStartReadyVerification>>;
  ZEL_INPUT(GrState, grStateWatch, GrStateReactors)

  void zelDoZombieReactors(bool marked) override;

 protected:
  friend struct Zel::Factory;
  RootSm(Cairn::EntityManager* em, Cairn::MountGroup* mg, ZelSharedMem::EntityManager* shmemEm,
         ZelSharedMem::MountGroup* shmemMg, std::uint32_t maxRoutes, std::uint32_t maxViaSets, std::uint32_t maxVrfs,
         Rib::RoutingProtocol routingProtocol, Quill::Ptr<AllVrfReadyStatus> allVrfReadyStatus,
         Quill::Ptr<AllVrfRibSeqTrigger> allVrfRibSeqTrigger);

 private:
  void handleInitialized();
  void brineDoMount();
  // The all-VRF via table of (rib, transport): mounted, registered, its machine built.
  Quill::Ptr<Rib::Ip::ViaConfig> initAllVrfViaConfig(std::string_view ribString, Rib::Transport transport);
  Quill::Ptr<Rib::RouteConfig> initAllVrfRibConfig(std::string_view afString, std::string_view ribString);
  using ViaConfigSetter = void (RootSm::*)(Quill::Ptr<Rib::Ip::ViaConfig> const&);
  using ViaConfigSmSetter = void (RootSm::*)(Quill::Ptr<Rib::Ip::ViaConfigSm> const&);
  // One via table of the family: mounted, stored as the all-VRF and the default VRF table, its machine built.
  void initViaConfigFamily(std::string_view ribString, Rib::Transport transport, ViaConfigSetter allVrf,
                           ViaConfigSetter defaultVrf, ViaConfigSmSetter sm, char const* smFunction);
  void initIpv4AllVrfViaConfig();
  void initIpv6AllVrfViaConfig();
  void initMcIpv4AllVrfViaConfig();
  void initMcIpv6AllVrfViaConfig();
  void initIpv4AllVrfRibConfig();
  void initIpv6AllVrfRibConfig();
  void initMcIpv4AllVrfRibConfig();
  void initMcIpv6AllVrfRibConfig();
  void initEvpnConfig();
  // Mounts (mode 0) one table of this protocol, both protocols' paths under joint agents, and
  // returns this protocol's. `pathOf(protocolName)` gives a protocol's path.
  template <class PathOf>
  Quill::Ptr<Zel::Entity> doMountWriterTable(PathOf const& pathOf, std::string_view typeName,
                                             std::string_view collection, std::uint32_t capacity);
  Quill::Ptr<Rib::ViaSetConfig> initViaSetConfig(std::string_view ribString);
  // The VRF's readiness record and trigger (null when absent).
  [[nodiscard]] Quill::Ptr<VrfReadyStatus> vrfReadyStatusOf(L3::VrfName const& vrf) const;
  [[nodiscard]] Quill::Ptr<VrfRibSeqTrigger> vrfRibSeqTriggerOf(L3::VrfName const& vrf) const;
  [[nodiscard]] Quill::Ptr<Vrf::VrfIdMap::NameToIdMap const> currentNameToIdMap() const;
  // The ready rules of a family (ReadyV4, ReadyV6: its tables, sets and texts).
  struct ReadyV4;
  struct ReadyV6;
  // How the unicast and the multicast rule of a family take a VRF out that cannot be served.
  template <class Family>
  struct UnicastLookup;
  template <class Family>
  struct MulticastLookup;
  // The VRF's id for a ready rule; none once the rule's Lookup has taken the VRF out.
  template <class Lookup>
  std::optional<VrfId> readyRuleVrfId(L3::VrfName const& vrf);
  template <class Family>
  void doSetReadyVrf(L3::VrfName const& vrf);
  template <class Family>
  void doSetMcReadyVrf(L3::VrfName const& vrf);
  void vrfReadyFromMetricStatus(VrfId vrfId, bool mc);
  void doUnregisterAllVrfViaConfigs();
  // The per-VRF clean-up of one route table.
  void doCleanupRoutes(Rib::RouteConfig* table, L3::VrfName const& vrf, VrfId vrfId);

  // The all-VRF via tables this root registered, (transport, rib), to take back at teardown.
  std::vector<std::pair<std::string, std::string>> registeredViaConfigs_;
};

}  // namespace Routing::Protocol

namespace Routing::RouteConfigLib {
// "routing/" af "/routeConfig/" rib "/allVrf/" protocol: the all-VRF route table of a protocol,
// shared with the RIB side.
[[nodiscard]] Quill::String allVrfRibMount(std::string_view protocol, std::string_view afString,
                                           std::string_view ribString);
}  // namespace Routing::RouteConfigLib

namespace Ira::IraIpStatusMounter {
// Queues the mounts of the interface tables ("ip/status", "ip6/status") in the group.
void doMountEntities(Cairn::MountGroup& mg, bool ipv4, bool ipv6);
}  // namespace Ira::IraIpStatusMounter
