// Host::RoutingAgent: the routing agent of a switch, as a hosting agent builds the library. It
// creates the VRFs' readiness records and the RIB's sequence triggers, one protocol root per routing
// protocol (static routes, route input), completes their mounts, and builds one route input
// container per VRF, address family and protocol on the roots' tables. It reads the switch's
// records (VRF maps, interface tables, the RIB's reports at their mount paths, the configuration
// records per VRF) and owns only what the agent owns: roots, containers, readiness records. Owned
// by the host; destroying it is an agent stop (containers first, then roots), and the tables in the
// stores outlive it.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "foundations/records/BfdTrackedStaticRoutes.h"
#include "foundations/records/GeneralConfig.h"
#include "foundations/records/MplsConfig.h"
#include "foundations/records/RouteList.h"
#include "foundations/records/VrfRouteListTaggedConfig.h"
#include "foundations/rib/IgpResultTable.h"
#include "foundations/runtime/Dir.h"
#include "foundations/runtime/Mount.h"
#include "foundations/runtime/TaskScheduler.h"
#include "input/RouteInputContainerSm.h"
#include "protocol/ProtocolRootSm.h"
#include "static/AllEgressVrfIntfStatusHelperSm.h"
#include "static/ResRibProfileContainer.h"

namespace Host {

// The configuration records of one VRF and address family, as the configuration agent keeps them.
// Static routes come as route lists; injected routes as a directory of the agents' RouteInputs.
struct VrfConfig {
  Quill::Ptr<Routing::RouteList const> config;
  Quill::Ptr<Routing::RouteList const> configDynamic;
  Quill::Ptr<Routing::VrfRouteListTaggedConfig const> taggedConfig;
  Quill::Ptr<Routing::VrfRouteListTaggedConfig const> taggedDynamicConfig;
  Quill::Ptr<Zel::Dir const> configDir;
  Quill::Ptr<Zel::Dir const> configTagDir;
};

class RoutingAgent {
 public:
  using VrfId = ::Vrf::VrfIdMap::VrfId;
  using Protocol = Routing::Rib::RoutingProtocol;

  // What the agent is given: the process's stores (records of the other agents at their paths,
  // the RIB table types registered in the shared one), the scheduler and the switch-wide settings.
  struct Environment {
    Cairn::EntityManager* em = nullptr;
    ZelSharedMem::EntityManager* shmem = nullptr;
    Halyard::TaskScheduler* scheduler = nullptr;
    Quill::Ptr<Routing::General::Config const> general;
    Quill::Ptr<Mpls::Config const> mpls;
    Quill::Ptr<Routing::Bgp::IgpResultTable> igpResultTable;
    Quill::Ptr<Routing::Rib::ViaStatusByVrf const> viaStatusByVrf;
    Quill::Ptr<ConfigTag::ConfigTagStatus const> configTagStatus;
    Quill::Ptr<ConfigTag::ConfigTagIdState const> configTagIdState;
    bool gracefulRestart = false;
    std::uint32_t maxRoutes = 1u << 22;
    std::uint32_t maxViaSets = 1u << 16;
    std::uint32_t maxVrfs = 1u << 10;
  };

  explicit RoutingAgent(Environment env);
  ~RoutingAgent();
  RoutingAgent(RoutingAgent const&) = delete;
  RoutingAgent& operator=(RoutingAgent const&) = delete;

  // Builds the containers of a VRF (both families, both protocols) on its current id and interface
  // tables and the given configuration records; builds them again when they exist.
  void vrfIs(L3::VrfName const& vrf, VrfConfig const& v4, VrfConfig const& v6);
  // Tears a VRF's containers down and removes its routes from the route tables.
  void vrfDel(L3::VrfName const& vrf);
  [[nodiscard]] bool vrfHas(L3::VrfName const& vrf) const { return vrfs_.contains(vrf); }

  [[nodiscard]] Quill::Ptr<Routing::Protocol::RootSm> const& root(Protocol protocol) const {
    return protocol == Protocol::staticConfig() ? staticRoot_ : routeInputRoot_;
  }
  [[nodiscard]] Quill::Ptr<Routing::Protocol::AllVrfReadyStatus> const& allVrfReadyStatus() const noexcept {
    return allVrfReadyStatus_;
  }
  [[nodiscard]] Quill::Ptr<Routing::Protocol::AllVrfRibSeqTrigger> const& allVrfRibSeqTrigger() const noexcept {
    return allVrfRibSeqTrigger_;
  }
  [[nodiscard]] Quill::Ptr<Routing::Input::RouteInputContainerSm> container(L3::VrfName const& vrf,
                                                                            Ondex::AddressFamily af,
                                                                            Protocol protocol) const;
  // The hosting agent's word that ready verification may start, given to every root's state.
  void startReadyVerificationIs(bool start);

 private:
  struct VrfContainers {
    // The BFD-tracked routes of the VRF, one list per protocol: a list is keyed by route key, and
    // a static and an injected route of one key are two routes.
    std::map<std::uint16_t, Quill::Ptr<Routing::BfdTrackedStaticRoutesList>> bfdTrackedRoutesLists;
    // By (family, protocol), built in this order and released in reverse.
    std::map<std::pair<int, std::uint16_t>, Quill::Ptr<Routing::Input::RouteInputContainerSm>> containers;
  };
  Quill::Ptr<Routing::Input::RouteInputContainerSm> containerIs(L3::VrfName const& vrf, Ondex::AddressFamily af,
                                                      Routing::Protocol::RootSm const& root, VrfConfig const& config,
                                                      VrfContainers const& holder);
  void doReleaseContainers(VrfContainers& holder);

  Environment env_;
  Cairn::MountGroup mg_;
  ZelSharedMem::MountGroup shmemMg_;
  Quill::Ptr<Routing::Protocol::AllVrfReadyStatus> allVrfReadyStatus_;
  Quill::Ptr<Routing::Protocol::AllVrfRibSeqTrigger> allVrfRibSeqTrigger_;
  Quill::Ptr<Routing::Protocol::RootSm> staticRoot_;
  Quill::Ptr<Routing::Protocol::RootSm> routeInputRoot_;
  Quill::Ptr<Routing::Static::AllEgressVrfIntfStatusHelperSm> egress_;
  Quill::Ptr<Routing::Static::ResRibProfileContainer> resRibProfileContainer_;
  std::map<L3::VrfName, VrfContainers> vrfs_;
};

}  // namespace Host
