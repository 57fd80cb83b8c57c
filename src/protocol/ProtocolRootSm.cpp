#include "protocol/ProtocolRootSm.h"

#include <string>

#include "foundations/rib/ViaConfigLib.h"
#include "foundations/runtime/Dualog.h"
#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Toggle.h"

ZEL_TRACE_FACILITY("IpRib::ProtocolRootSm");

namespace Routing::RouteConfigLib {
Quill::String allVrfRibMount(std::string_view protocol, std::string_view afString, std::string_view ribString) {
  return Quill::String("routing/" + std::string(afString) + "/routeConfig/" + std::string(ribString) + "/allVrf/" +
                       std::string(protocol));
}
}  // namespace Routing::RouteConfigLib

namespace Ira::IraIpStatusMounter {
void doMountEntities(Cairn::MountGroup& mg, bool ipv4, bool ipv6) {
  if (ipv4) mg.doMount(Cairn::Mount(Cell::path("ip/status"), "Ip::Status").handleFlags("r"));
  if (ipv6) mg.doMount(Cairn::Mount(Cell::path("ip6/status"), "Ip6::Status").handleFlags("r"));
}
}  // namespace Ira::IraIpStatusMounter

namespace Routing::Protocol {

namespace {

constexpr std::string_view kLoopingPaths[] = {"routing/rib/loopingRouteStatus", "routing6/rib/loopingRouteStatus",
                                              "routing/mrib/loopingRouteStatus", "routing6/mrib/loopingRouteStatus"};
constexpr std::string_view kLoopingType = "Routing::Rib::LoopingRouteStatusByVrf";
constexpr std::string_view kViaMetricType = "Routing::Rib::ViaMetricStatusByVrf";
constexpr std::string_view kViaMetricPath = "routing/rib/viaMetricStatus";
constexpr std::string_view kMcViaMetricPath = "routing/mrib/viaMetricStatus";
constexpr std::string_view kVrfNameStatusPath = "vrf/vrfNameStatus";
constexpr std::string_view kVrfIdMapStatusPath = "vrf/vrfIdMapStatus";

// Which protocol's path this root reads back when both protocols' tables are mounted.
std::string_view readBackProtocol(Rib::RoutingProtocol protocol) {
  return protocol == Rib::RoutingProtocol::staticConfig() ? "staticConfig" : "routeInput";
}

template <class T>
Quill::Ptr<T> entityOf(Zel::EntityStore const* store, std::string_view path) {
  return store ? store->get<T>(path) : nullptr;
}

}  // namespace

RootSm::RootSm(Cairn::EntityManager* em, Cairn::MountGroup* mg, ZelSharedMem::EntityManager* shmemEm,
               ZelSharedMem::MountGroup* shmemMg, std::uint32_t maxRoutes, std::uint32_t maxViaSets,
               std::uint32_t maxVrfs, Rib::RoutingProtocol routingProtocol,
               Quill::Ptr<AllVrfReadyStatus> allVrfReadyStatus, Quill::Ptr<AllVrfRibSeqTrigger> allVrfRibSeqTrigger)
    : RootMounts(em, mg, shmemEm, shmemMg),
      maxRoutes_(maxRoutes),
      maxViaSets_(maxViaSets),
      maxVrfs_(maxVrfs),
      routingProtocol_(routingProtocol),
      allVrfReadyStatus_(std::move(allVrfReadyStatus)),
      allVrfRibSeqTrigger_(std::move(allVrfRibSeqTrigger)) {
  // Subscribing walks the existing records (the nested machines of each VRF); the metric tables
  // come with doMountsComplete.
  allVrfReadyStatusWatchIs(allVrfReadyStatus_);
  allVrfRibSeqTriggerWatchIs(allVrfRibSeqTrigger_);
  handleInitialized();
  if (vrfNameStatus()) nameToIdMapIs(vrfNameStatus()->nameToIdMap());
}

void RootSm::zelDoZombieReactors(bool marked) {
  if (marked == zelMarkedForDeletion()) return;
  StateMachine::zelDoZombieReactors(marked);
  if (marked) doUnregisterAllVrfViaConfigs();
}

std::string_view RootSm::protocolName() const {
  if (routingProtocol() == Rib::RoutingProtocol::staticConfig()) return "staticConfig";
  if (routingProtocol() == Rib::RoutingProtocol::routeInput()) return "routeInput";
  return "";
}

Quill::String RootSm::ribMount(VrfId vrfId, std::string_view afString, std::string_view ribString) const {
  return Quill::String("routing/" + std::string(afString) + "/routeConfig/" + std::string(ribString) + "/" +
                       std::to_string(vrfId.value()) + "/" + std::string(protocolName()));
}

Quill::String RootSm::viaConfigMount(VrfId vrfId, std::string_view afString, Rib::Transport transport) const {
  return Quill::String("routing/" + std::string(afString) + "/viaConfig/" + transport.toStrep() + "/" +
                       std::to_string(vrfId.value()) + "/" + std::string(protocolName()));
}

Quill::String RootSm::allVrfViaConfigMount(std::string_view ribString, Rib::Transport transport,
                                           std::string_view protocol) const {
  return Quill::String("routing/" + std::string(ribString) + "/viaConfig/" + transport.toStrep() + "/" +
                       std::string(protocol));
}

// ---- Mounts.

void RootSm::handleInitialized() {
  DUALOG(8, "handleInitialized");
  routeStatusDirIs(RouteStatusDir::RouteStatusDirIs());
  mcRouteStatusDirIs(RouteStatusDir::RouteStatusDirIs());
  if (!mg()) return;
  mg()->doMount(Cairn::Mount(Cell::path(kVrfNameStatusPath, 0), "Vrf::VrfIdMap::NameToIdMapWrapper").handleFlags("r"));
  Ira::IraIpStatusMounter::doMountEntities(*mg(), true, true);
  for (auto path : kLoopingPaths) mg()->doMount(Cairn::Mount(Cell::path(path), Quill::String(kLoopingType)).handleFlags("r"));
  // With joint agents the hosting agent mounts the via metric tables itself.
  if (!toggleRouteInputStaticRouteJointAgentsEnabled()) brineDoMount();
}

void RootSm::brineDoMount() {
  if (!shmemMg()) return;
  ZelBrine::MountInfo const info;
  shmemMg()->doMount(kViaMetricPath, kViaMetricType, info);
  shmemMg()->doMount(kMcViaMetricPath, kViaMetricType, info);
}

template <class PathOf>
Quill::Ptr<Zel::Entity> RootSm::doMountWriterTable(PathOf const& pathOf, std::string_view typeName,
                                                   std::string_view collection, std::uint32_t capacity) {
  if (!shmemEm()) return nullptr;
  ZelSkein::MountInfo info(ZelSkein::writerTable);
  info.collectionInfoIs(ZelSkein::CollectionInfo{Quill::String(collection), capacity, 0});
  if (toggleRouteInputStaticRouteJointAgentsEnabled()) {
    // Static routes and route input run in one agent: both protocols' tables are mounted here.
    (void)shmemEm()->doMount(pathOf("staticConfig").view(), typeName, info);
    (void)shmemEm()->doMount(pathOf("routeInput").view(), typeName, info);
    return shmemEm()->getEntity(pathOf(readBackProtocol(routingProtocol())).view());
  }
  return shmemEm()->doMount(pathOf(protocolName()).view(), typeName, info);
}

Quill::Ptr<Rib::Ip::ViaConfig> RootSm::initAllVrfViaConfig(std::string_view ribString, Rib::Transport transport) {
  std::uint32_t const capacity = maxViaSets() * maxVrfs();  // 32 bits, as the table's header has it
  auto table = Quill::dynamic_ptr_cast<Rib::Ip::ViaConfig>(doMountWriterTable(
      [&](std::string_view protocol) { return allVrfViaConfigMount(ribString, transport, protocol); },
      "Routing::Rib::Ip::ViaConfig", "via", capacity));
  if (!table) {
    DUALOG(0, "no via table at {}", allVrfViaConfigMount(ribString, transport, protocolName()));
    return nullptr;
  }
  table->rpIs(routingProtocol());
  table->transportIs(transport);
  table->ribIs(Quill::String(ribString));
  ViaConfigLib::allVrfViaConfigIs(protocolName(), transport.toStrep(), ribString);
  registeredViaConfigs_.emplace_back(transport.toStrep(), ribString);
  return table;
}

void RootSm::initViaConfigFamily(std::string_view ribString, Rib::Transport transport, ViaConfigSetter allVrf,
                                 ViaConfigSetter defaultVrf, ViaConfigSmSetter sm, char const* smFunction) {
  auto table = initAllVrfViaConfig(ribString, transport);
  (this->*allVrf)(table);
  (this->*defaultVrf)(table);
  DUALOG(8, "{}", smFunction);
  if (table) (this->*sm)(Rib::Ip::ViaConfigSm::TableSmIs(table));
}

void RootSm::initIpv4AllVrfViaConfig() {
  initViaConfigFamily("rib", Rib::Transport::transportIpv4(), &RootSm::ipv4AllVrfViaConfigIs,
                      &RootSm::ipv4DefaultVrfViaConfigIs, &RootSm::ipv4AllVrfViaConfigSmIs, "doInitIpv4AllVrfViaConfigSm");
}

void RootSm::initIpv6AllVrfViaConfig() {
  initViaConfigFamily("rib", Rib::Transport::transportIpv6(), &RootSm::ipv6AllVrfViaConfigIs,
                      &RootSm::ipv6DefaultVrfViaConfigIs, &RootSm::ipv6AllVrfViaConfigSmIs, "doInitIpv6AllVrfViaConfigSm");
}

void RootSm::initMcIpv4AllVrfViaConfig() {
  initViaConfigFamily("mrib", Rib::Transport::transportIpv4(), &RootSm::mcIpv4AllVrfViaConfigIs,
                      &RootSm::mcIpv4DefaultVrfViaConfigIs, &RootSm::mcIpv4AllVrfViaConfigSmIs,
                      "doInitMcIpv4AllVrfViaConfigSm");
}

void RootSm::initMcIpv6AllVrfViaConfig() {
  initViaConfigFamily("mrib", Rib::Transport::transportIpv6(), &RootSm::mcIpv6AllVrfViaConfigIs,
                      &RootSm::mcIpv6DefaultVrfViaConfigIs, &RootSm::mcIpv6AllVrfViaConfigSmIs,
                      "doInitMcIpv6AllVrfViaConfigSm");
}

Quill::Ptr<Rib::RouteConfig> RootSm::initAllVrfRibConfig(std::string_view afString, std::string_view ribString) {
  std::uint32_t const capacity = maxRoutes() * maxVrfs();
  return Quill::dynamic_ptr_cast<Rib::RouteConfig>(doMountWriterTable(
      [&](std::string_view protocol) { return RouteConfigLib::allVrfRibMount(protocol, afString, ribString); },
      "Routing::Rib::RouteConfig", "route", capacity));
}

void RootSm::initIpv4AllVrfRibConfig() { ipv4AllVrfRibConfigIs(initAllVrfRibConfig("ipv4", "rib")); }
void RootSm::initIpv6AllVrfRibConfig() { ipv6AllVrfRibConfigIs(initAllVrfRibConfig("ipv6", "rib")); }
void RootSm::initMcIpv4AllVrfRibConfig() { mcIpv4AllVrfRibConfigIs(initAllVrfRibConfig("ipv4", "mrib")); }
void RootSm::initMcIpv6AllVrfRibConfig() { mcIpv6AllVrfRibConfigIs(initAllVrfRibConfig("ipv6", "mrib")); }

void RootSm::initEvpnConfig() {
  std::uint32_t const capacity = maxViaSets() * maxVrfs();
  auto const evpn = Rib::Transport::transportEvpn();
  auto table = Quill::dynamic_ptr_cast<Rib::Evpn::ViaConfig>(doMountWriterTable(
      [&](std::string_view protocol) { return allVrfViaConfigMount("rib", evpn, protocol); },
      "Routing::Rib::Evpn::ViaConfig", "via", capacity));
  evpnConfigIs(table);
  if (!table) return;
  table->transportIs(evpn);
  table->rpIs(routingProtocol());
}

Quill::Ptr<Rib::ViaSetConfig> RootSm::initViaSetConfig(std::string_view ribString) {
  auto config = Rib::ViaSetConfig::ViaSetConfigIs(Rib::ViaSetConfigKey(routingProtocol()));
  auto coll = Quill::dynamic_ptr_cast<Rib::Skein::ViaSetCollection>(doMountWriterTable(
      [&](std::string_view protocol) {
        return Quill::String("routing/" + std::string(ribString) + "/viaSetConfig/" + std::string(protocol));
      },
      "Routing::Rib::Skein::ViaSetCollection", "viaSet", maxViaSets()));
  if (coll) config->configViaSetCollIs(coll);
  return config;
}

void RootSm::doMountsComplete() {
  DUALOG(8, "doMountsComplete");
  if (shmemEm()) {
    ZelSkein::MountInfo const vrfIdInfo(ZelSkein::readOnlyNoCollection);
    (void)shmemEm()->doMount(kVrfIdMapStatusPath, "Vrf::VrfIdMap::Status", vrfIdInfo);
  }
  vrfIdStatusIs(entityOf<Vrf::VrfIdMap::Status>(shmemEm(), kVrfIdMapStatusPath));
  vrfNameStatusIs(entityOf<Vrf::VrfIdMap::NameToIdMapWrapper>(em(), Cell::path(kVrfNameStatusPath, 0).view()));
  if (vrfNameStatus()) nameToIdMapIs(vrfNameStatus()->nameToIdMap());
  ipv4IntfStatusIs(entityOf<Ip::Status>(em(), Cell::path("ip/status").view()));
  ipv6IntfStatusIs(entityOf<Ip6::Status>(em(), Cell::path("ip6/status").view()));

  initIpv4AllVrfViaConfig();
  initIpv6AllVrfViaConfig();
  initMcIpv4AllVrfViaConfig();
  initMcIpv6AllVrfViaConfig();
  initIpv4AllVrfRibConfig();
  initIpv6AllVrfRibConfig();
  initMcIpv4AllVrfRibConfig();
  initMcIpv6AllVrfRibConfig();
  initEvpnConfig();
  if (evpnConfig()) evpnViaConfigSmIs(Rib::Evpn::ViaConfigSm::TableSmIs(evpnConfig()));

  viaSetConfigIs(initViaSetConfig("rib"));
  viaSetConfigSmIs(Rib::ViaSetConfigSm::TableSmIs(viaSetConfig()));
  if (shmemEm()) {
    ZelSkein::MountInfo const graphInfo(ZelSkein::readerWithWriter);
    auto const graphType = "Routing::Rib::Ip::GlobalNextHopDependencyGraph";
    nhdGraphIs(Quill::dynamic_ptr_cast<Rib::Ip::GlobalNextHopDependencyGraph>(shmemEm()->doMount(
        Rib::Ip::GlobalNextHopDependencyGraph::mountPath("rib").view(), graphType, graphInfo)));
    mcNhdGraphIs(Quill::dynamic_ptr_cast<Rib::Ip::GlobalNextHopDependencyGraph>(shmemEm()->doMount(
        Rib::Ip::GlobalNextHopDependencyGraph::mountPath("mrib").view(), graphType, graphInfo)));
  }
  auto metrics = entityOf<Rib::ViaMetricStatusByVrf>(shmemEm(), kViaMetricPath);
  if (metrics) shmemEm()->assertSafeToAccess(metrics.get(), kViaMetricPath);
  viaMetricStatusByVrfIs(metrics);
  loopingRouteStatusByVrf4Is(entityOf<Rib::LoopingRouteStatusByVrf>(em(), Cell::path(kLoopingPaths[0]).view()));
  loopingRouteStatusByVrf6Is(entityOf<Rib::LoopingRouteStatusByVrf>(em(), Cell::path(kLoopingPaths[1]).view()));

  mcViaSetConfigIs(initViaSetConfig("mrib"));
  mcViaSetConfigSmIs(Rib::ViaSetConfigSm::TableSmIs(mcViaSetConfig()));
  auto mcMetrics = entityOf<Rib::ViaMetricStatusByVrf>(shmemEm(), kMcViaMetricPath);
  if (mcMetrics) shmemEm()->assertSafeToAccess(mcMetrics.get(), kMcViaMetricPath);
  mcViaMetricStatusByVrfIs(mcMetrics);
  mcLoopingRouteStatusByVrf4Is(entityOf<Rib::LoopingRouteStatusByVrf>(em(), Cell::path(kLoopingPaths[2]).view()));
  mcLoopingRouteStatusByVrf6Is(entityOf<Rib::LoopingRouteStatusByVrf>(em(), Cell::path(kLoopingPaths[3]).view()));

  if (!initialized()) {
    initializedIs(true);
    DUALOG(1, " Initialized --> True");
    handleVrfNameToIdMap();
  }
  if (!viaMetricStatusSm())
    viaMetricStatusSmIs(ViaMetricStatusSm::ViaMetricStatusSmIs(viaMetricStatusByVrf(), routeStatusDir()));
  if (!mcViaMetricStatusSm())
    mcViaMetricStatusSmIs(ViaMetricStatusSm::ViaMetricStatusSmIs(mcViaMetricStatusByVrf(), mcRouteStatusDir()));
}

void RootSm::doUnregisterAllVrfViaConfigs() {
  for (auto const& [transport, rib] : registeredViaConfigs_) ViaConfigLib::allVrfViaConfigDel(protocolName(), transport, rib);
  registeredViaConfigs_.clear();
}

Quill::Ptr<GrState> RootSm::grStateIs(bool gracefulRestart) {
  if (grState() && grState()->gracefulRestart() == gracefulRestart) return grState();
  auto state = GrState::GrStateIs(gracefulRestart);
  grStateWatchIs(state);  // moves the subscription off the former state
  grStateIs(state);
  handleStartReadyVerification();
  return state;
}

// ---- Per-VRF clean-up.

void RootSm::doCleanupRoutes(Rib::RouteConfig* table, L3::VrfName const& vrf, VrfId vrfId) {
  DUALOG(0, "vrf={}, vrfId={}", vrf, vrfId.value());
  if (table) table->doDeleteRoutesForVrf(vrfId);
}

void RootSm::doCleanupContainer4(L3::VrfName const& vrf, VrfId vrfId) {
  doCleanupRoutes(ipv4AllVrfRibConfig().get(), vrf, vrfId);
}
void RootSm::doCleanupContainer6(L3::VrfName const& vrf, VrfId vrfId) {
  doCleanupRoutes(ipv6AllVrfRibConfig().get(), vrf, vrfId);
}
void RootSm::doCleanupMcContainer4(L3::VrfName const& vrf, VrfId vrfId) {
  doCleanupRoutes(mcIpv4AllVrfRibConfig().get(), vrf, vrfId);
}
void RootSm::doCleanupMcContainer6(L3::VrfName const& vrf, VrfId vrfId) {
  doCleanupRoutes(mcIpv6AllVrfRibConfig().get(), vrf, vrfId);
}

void RootSm::doDeleteViasForVrf(VrfId vrfId, Rib::Ip::ViaConfig& viaConfig) {
  DUALOG(8, "vrfName={}", vrfId.value());
  for (auto it = viaConfig.viaIteratorConst(); it; it.advance()) {
    Rib::ViaKey const key = it.key();
    if (key.vrfId() == vrfId) viaConfig.viaDel(key);
  }
}

}  // namespace Routing::Protocol
