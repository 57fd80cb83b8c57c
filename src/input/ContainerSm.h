// The assembly of one VRF and address family of a routing protocol: it creates the input records
// (leaked routes in static mode; in route-input mode the users' lists, collected from the agents'
// directories, with the martian list as one more user), then the protocol core (status store,
// review into the RIB) and the RouteConfigSm that fills it, in that order. Owned by the hosting
// agent, one per VRF, family and protocol.
#pragma once

#include "foundations/records/BfdTrackedStaticRoutes.h"
#include "foundations/records/RouteInput.h"
#include "foundations/runtime/Dir.h"
#include "foundations/runtime/StateMachine.h"
#include "input/MartianRouteSm.h"
#include "input/RouteInput.h"
#include "leak/ProtocolRouteLeak.h"
#include "protocol/ProtocolContainerSm.h"
#include "static/RouteConfigSm.h"

namespace Routing::Input {

class ContainerSm : public Zel::StateMachine<ContainerSm> {
 public:
  // The constructor's arguments, in their order (routeStatusDir last: the family's directory of
  // status stores, which the via metric machine watches; null gives the container its own).
  struct Inputs {
    Protocol::ContainerKey containerKey;
    Rib::RoutingProtocol routingProtocol = Rib::RoutingProtocol::staticConfig();
    Quill::Ptr<Rib::Ip::ViaConfig> ipViaConfig;
    Quill::Ptr<Rib::Ip::ViaConfig> auxIpViaConfig;
    Quill::Ptr<Rib::Evpn::ViaConfig> evpnViaConfig;
    Quill::Ptr<Rib::ViaSetConfig> viaSetConfig;
    Quill::Ptr<Rib::RouteConfig> ribConfig;
    Quill::Ptr<Rib::Ip::GlobalNextHopDependencyGraph const> nhdGraph;
    Quill::Ptr<Rib::LoopingRouteStatus const> loopingRouteStatus;
    Quill::Ptr<Protocol::IntfStatus> intfStatus;
    Quill::Ptr<::NexthopGroup::EntryStatus const> nexthopGroupEntryStatus;
    Quill::Ptr<Rib::Ip::ViaConfig> ipv4DefaultVrfViaConfig;
    Quill::Ptr<Rib::Ip::ViaConfig> ipv6DefaultVrfViaConfig;
    Quill::Ptr<Protocol::GrState const> grState;
    Quill::Ptr<Protocol::VrfReadyStatus> vrfReadyStatus;
    Quill::Ptr<Mpls::Config const> mplsConfig;
    Quill::Ptr<BfdTrackedStaticRoutesList> bfdTrackedRoutesList;
    Quill::Ptr<Rib::ViaStatusByVrf const> viaStatusByVrf;
    Quill::Ptr<Rib::ViaMetricStatusByVrf const> viaMetricStatusByVrf;
    Quill::Ptr<Static::ResRibProfileContainer const> resRibProfileContainer;
    Quill::Ptr<General::Config const> routingGeneralConfig;
    Quill::Ptr<Vrf::VrfIdMap::NameToIdMapWrapper const> vrfNameStatus;
    Quill::Ptr<Static::RouteCacheRouteHelperSm> routeCacheRouteHelperSm;
    Halyard::TaskScheduler* scheduler = nullptr;
    Quill::Ptr<Static::AllEgressVrfIntfStatusHelperSm> allEgressVrfIntfStatusHelperSm;
    Quill::Ptr<Vxlan::VtepSipValidationStatus> vtepSipValidationStatus;
    Quill::Ptr<ConfigTag::ConfigTagStatus const> configTagStatus;
    Quill::Ptr<ConfigTag::ConfigTagIdState const> configTagIdState;
    Quill::Ptr<Tunnel::TunnelTable::TunnelRibNameIdMap const> tunnelRibNameIdMap;
    Quill::Ptr<RouteList const> config;
    Quill::Ptr<RouteList const> configDynamic;
    Quill::Ptr<VrfRouteListTaggedConfig const> taggedConfig;
    Quill::Ptr<VrfRouteListTaggedConfig const> taggedDynamicConfig;
    Quill::Ptr<Bgp::IgpResultTable> igpResultTable;
    Quill::Ptr<Zel::Dir const> configDir;
    Quill::Ptr<Zel::Dir const> configTagDir;
    Quill::Ptr<Protocol::RouteStatusDir> routeStatusDir;
  };
  [[nodiscard]] static Quill::Ptr<ContainerSm> ContainerSmIs(Inputs const& inputs) {
    return Zel::make<ContainerSm>(inputs);
  }

  void handleInitialized();
  void handleConfigDir();
  void handleConfigDir(Quill::String const& name);
  void handleConfigTagDir();
  void handleConfigTagDir(Quill::String const& name);

  [[nodiscard]] Inputs const& inputs() const noexcept { return inputs_; }
  [[nodiscard]] Protocol::ContainerKey const& containerKey() const noexcept { return inputs_.containerKey; }
  ZEL_CONST(L3::VrfName, vrfName)
  [[nodiscard]] Quill::Ptr<Vrf::VrfIdMap::NameToIdMap const> vrfNameToIdMap() const;

  using ConfigDirReactors =
      Zel::Reactors<Zel::On<Zel::Dir::entryStateId,
                            static_cast<void (ContainerSm::*)(Quill::String const&)>(&ContainerSm::handleConfigDir)>>;
  ZEL_INPUT(Zel::Dir, configDir, ConfigDirReactors)
  using ConfigTagDirReactors = Zel::Reactors<Zel::On<
      Zel::Dir::entryStateId, static_cast<void (ContainerSm::*)(Quill::String const&)>(&ContainerSm::handleConfigTagDir)>>;
  ZEL_INPUT(Zel::Dir, configTagDir, ConfigTagDirReactors)

  // Own records and children, in the order they are made.
  ZEL_ATTR(Quill::Ptr<Protocol::LeakRouteConfig>, leakRouteConfig, 130)
  ZEL_ATTR(Quill::Ptr<RouteInput>, martianRouteConfig, 131)
  ZEL_ATTR(Quill::Ptr<Martian::RouteSm>, martianRouteSm, 132)
  ZEL_ATTR(Quill::Ptr<ConfigByUser>, configByUser, 133)
  ZEL_ATTR(Quill::Ptr<ConfigTaggedByUser>, configTaggedByUser, 134)
  ZEL_ATTR(Quill::Ptr<Protocol::ContainerSm>, protocolContainerSm, 135)
  ZEL_ATTR(Quill::Ptr<Static::RouteConfigSm>, routeConfigSm, 136)
  ZEL_ATTR(bool, initialized, 137)

 protected:
  friend struct Zel::Factory;
  explicit ContainerSm(Inputs const& inputs);

 private:
  Inputs inputs_;
};

}  // namespace Routing::Input
