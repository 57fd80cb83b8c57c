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
#include "foundations/runtime/MachineInputs.h"
#include "foundations/runtime/StateMachine.h"
#include "protocol/ProtocolContainerKey.h"
#include "protocol/ProtocolIntf.h"
#include "protocol/ProtocolIntfSm.h"
#include "protocol/ProtocolRouteStatus.h"
#include "protocol/ProtocolRouteStatusSm.h"

namespace Routing::Protocol {

// The arguments of the protocol container, which keeps them (see MachineInputs.h); its caller gives
// them all. ipViaConfig must not be null. routeStatusDir: the status stores of the family, which the
// via metric machine watches (the protocol root's); without one the container keeps its store in a
// directory of its own.
#define PROTOCOL_CONTAINER_SM_INPUTS(X)                                                  \
  X(ARG, CALLER, ContainerKey, containerKey)                                             \
  X(ARG, CALLER, Vrf::VrfIdMap::VrfId, vrfId)                                            \
  X(ARG, CALLER, Quill::Ptr<Rib::Ip::ViaConfig>, ipViaConfig)                            \
  X(ARG, CALLER, Quill::Ptr<Rib::Ip::ViaConfig>, auxIpViaConfig)                         \
  X(ARG, CALLER, Quill::Ptr<Rib::Evpn::ViaConfig>, evpnViaConfig)                        \
  X(ARG, CALLER, Quill::Ptr<Rib::ViaSetConfig>, viaSetConfig)                            \
  X(ARG, CALLER, Quill::Ptr<Rib::RouteConfig>, ribConfig)                                \
  X(ARG, CALLER, Quill::Ptr<Rib::LoopingRouteStatus const>, loopingRouteStatus)         \
  X(ARG, CALLER, Quill::Ptr<IntfStatus>, intfStatus)                                     \
  X(ARG, CALLER, Quill::Ptr<Rib::Ip::GlobalNextHopDependencyGraph const>, nhdGraph)      \
  X(ARG, CALLER, Quill::Ptr<Rib::Ip::ViaConfig>, ipv4DefaultVrfViaConfig)                \
  X(ARG, CALLER, Quill::Ptr<Rib::Ip::ViaConfig>, ipv6DefaultVrfViaConfig)                \
  X(ARG, CALLER, Rib::RoutingProtocol, routingProtocol, Rib::RoutingProtocol::staticConfig()) \
  X(ARG, CALLER, Quill::Ptr<VrfReadyStatus>, vrfReadyStatus)                             \
  X(ARG, CALLER, Quill::Ptr<BfdTrackedStaticRoutesList>, bfdTrackedRoutesList)           \
  X(ARG, CALLER, Quill::Ptr<Rib::ViaStatusByVrf const>, viaStatusByVrf)                  \
  X(ARG, CALLER, Quill::Ptr<Rib::ViaMetricStatusByVrf const>, viaMetricStatusByVrf)      \
  X(ARG, CALLER, Quill::String, ribString, "rib")                                        \
  X(ARG, CALLER, Quill::Ptr<General::Config const>, routingGeneralConfig)                \
  X(ARG, CALLER, Quill::Ptr<Bgp::IgpResultTable>, igpResultTable)                        \
  X(ARG, CALLER, Halyard::TaskScheduler*, scheduler, nullptr)                            \
  X(ARG, CALLER, Quill::Ptr<RouteStatusDir>, routeStatusDir)

class ProtocolContainerSm : public Zel::StateMachine<ProtocolContainerSm> {
 public:
  struct Inputs {
    PROTOCOL_CONTAINER_SM_INPUTS(ZEL_INPUTS_FIELD)
  };
  [[nodiscard]] static Quill::Ptr<ProtocolContainerSm> ProtocolContainerSmIs(Inputs const& inputs) {
    return Zel::make<ProtocolContainerSm>(inputs);
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
  explicit ProtocolContainerSm(Inputs const& inputs);

 private:
  Inputs inputs_;
  Quill::Ptr<RouteStatusDir> statusDir_;
};

}  // namespace Routing::Protocol
