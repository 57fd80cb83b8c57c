// The protocol core of one VRF and address family: it owns the route status store, the
// RouteStatusSm that installs it into the RIB, the machine of a per-VRF via table and the IntfSm
// of the VRF's interfaces. It builds them once at construction and has no reactors. Owned by the
// route input container of the VRF and family.
#pragma once

#include "foundations/records/BfdTrackedStaticRoutes.h"
#include "foundations/records/GeneralConfig.h"
#include "foundations/records/VrfReadyStatus.h"
#include "foundations/rib/EvpnViaConfig.h"
#include "foundations/rib/IgpResultTable.h"
#include "foundations/rib/IpViaConfig.h"
#include "foundations/rib/TableSm.h"
#include "foundations/rib/LoopingRouteStatus.h"
#include "foundations/rib/NextHopDependencyGraph.h"
#include "foundations/rib/RouteConfig.h"
#include "foundations/rib/ViaMetricStatus.h"
#include "foundations/rib/ViaSetConfig.h"
#include "foundations/rib/ViaStatus.h"
#include "foundations/runtime/StateMachine.h"
#include "protocol/ProtocolContainerKey.h"
#include "protocol/ProtocolIntf.h"
#include "protocol/ProtocolIntfSm.h"
#include "protocol/ProtocolRouteStatus.h"
#include "protocol/ProtocolRouteStatusSm.h"

namespace Routing::Protocol {

class ContainerSm : public Zel::StateMachine<ContainerSm> {
 public:
  // The constructor's arguments, in their order. ipViaConfig must not be null.
  struct Inputs {
    ContainerKey containerKey;
    Vrf::VrfIdMap::VrfId vrfId;
    Quill::Ptr<Rib::Ip::ViaConfig> ipViaConfig;
    Quill::Ptr<Rib::Ip::ViaConfig> auxIpViaConfig;
    Quill::Ptr<Rib::Evpn::ViaConfig> evpnViaConfig;
    Quill::Ptr<Rib::ViaSetConfig> viaSetConfig;
    Quill::Ptr<Rib::RouteConfig> ribConfig;
    Quill::Ptr<Rib::LoopingRouteStatus const> loopingRouteStatus;
    Quill::Ptr<IntfStatus> intfStatus;
    Quill::Ptr<Rib::Ip::GlobalNextHopDependencyGraph const> nhdGraph;
    Quill::Ptr<Rib::Ip::ViaConfig> ipv4DefaultVrfViaConfig;
    Quill::Ptr<Rib::Ip::ViaConfig> ipv6DefaultVrfViaConfig;
    Rib::RoutingProtocol routingProtocol = Rib::RoutingProtocol::staticConfig();
    Quill::Ptr<VrfReadyStatus> vrfReadyStatus;
    Quill::Ptr<BfdTrackedStaticRoutesList> bfdTrackedRoutesList;
    Quill::Ptr<Rib::ViaStatusByVrf const> viaStatusByVrf;
    Quill::Ptr<Rib::ViaMetricStatusByVrf const> viaMetricStatusByVrf;
    Quill::String ribString = "rib";
    Quill::Ptr<General::Config const> routingGeneralConfig;
    Quill::Ptr<Bgp::IgpResultTable> igpResultTable;
    Halyard::TaskScheduler* scheduler = nullptr;
    // The status stores of the family, which the via metric machine watches (the protocol root's);
    // without one the container keeps its store in a directory of its own.
    Quill::Ptr<RouteStatusDir> routeStatusDir;
  };
  [[nodiscard]] static Quill::Ptr<ContainerSm> ContainerSmIs(Inputs const& inputs) {
    return Zel::make<ContainerSm>(inputs);
  }

  void handleInitialized();
  void doInitSm();
  Quill::Ptr<Status> statusIs(RouteStatusKey const& key);
  Quill::Ptr<RouteStatusSm> routeStatusSmIs(RouteStatusSm::Inputs const& inputs);
  Quill::Ptr<Rib::Ip::ViaConfigSm> ipViaConfigSmIs(Quill::Ptr<Rib::Ip::ViaConfig> const& viaConfig);
  Quill::Ptr<IntfSm> intfSmIs(Quill::Ptr<IntfStatus> const& intfStatus);

  [[nodiscard]] Inputs const& inputs() const noexcept { return inputs_; }
  [[nodiscard]] ContainerKey const& containerKey() const noexcept { return inputs_.containerKey; }
  [[nodiscard]] Vrf::VrfIdMap::VrfId vrfId() const noexcept { return inputs_.vrfId; }
  // The children, in the order they go at teardown (the last declared first).
  ZEL_ATTR(Quill::Ptr<Status>, status, 130)
  ZEL_ATTR(Quill::Ptr<RouteStatusSm>, routeStatusSm, 131)
  ZEL_ATTR(Quill::Ptr<Rib::Ip::ViaConfigSm>, ipViaConfigSm, 132)
  ZEL_ATTR(Quill::Ptr<IntfSm>, intfSm, 133)
  ZEL_ATTR(bool, initialized, 134)
  void zelDoZombieReactors(bool marked) override;

 protected:
  friend struct Zel::Factory;
  explicit ContainerSm(Inputs const& inputs);

 private:
  Inputs inputs_;
  Quill::Ptr<RouteStatusDir> statusDir_;
};

}  // namespace Routing::Protocol
