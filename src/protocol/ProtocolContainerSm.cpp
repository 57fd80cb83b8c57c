#include "protocol/ProtocolContainerSm.h"

#include "foundations/rib/ViaConfigLib.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("IpRib::ProtocolRootSm");

namespace Routing::Protocol {

ContainerSm::ContainerSm(Inputs const& inputs) : inputs_(inputs), statusDir_(inputs.routeStatusDir) {
  handleInitialized();
}

void ContainerSm::zelDoZombieReactors(bool marked) {
  // The store leaves the family's directory with its container.
  if (marked && !zelMarkedForDeletion()) {
    auto const s = status();
    if (statusDir_ && s && statusDir_->status(s->key()) == s) statusDir_->statusDel(s->key());
  }
  StateMachine::zelDoZombieReactors(marked);
}

void ContainerSm::handleInitialized() {
  TRACE(8, "Vrf: " << inputs_.containerKey.vrfName() << ", ContainerSm::handleInitialized");
  initializedIs(true);
  statusIs(RouteStatusKey{inputs_.vrfId, inputs_.containerKey.af()});
  doInitSm();
}

Quill::Ptr<Status> ContainerSm::statusIs(RouteStatusKey const& key) {
  if (status() && status()->key() == key) return status();
  if (!statusDir_) statusDir_ = RouteStatusDir::RouteStatusDirIs();
  auto s = statusDir_->statusIs(key);
  statusIs(s);
  return s;
}

void ContainerSm::doInitSm() {
  auto const& ipViaConfig = inputs_.ipViaConfig;
  std::string const ribText(ViaConfigLib::getRibStringFromIpViaConfig(*ipViaConfig).view());
  std::string const transportText = ipViaConfig->transport().toStrep();
  std::string const protocolText = inputs_.routingProtocol.toStrep();
  if (!ViaConfigLib::isAllVrfViaConfig(protocolText, transportText, ribText)) ipViaConfigSmIs(ipViaConfig);
  RouteStatusSm::Inputs in;
  in.vrfName = inputs_.containerKey.vrfName();
  in.af = inputs_.containerKey.af();
  in.vrfId = inputs_.vrfId;
  in.status = status();
  in.loopingRouteStatus = inputs_.loopingRouteStatus;
  in.nhdGraph = inputs_.nhdGraph;
  in.ribConfig = inputs_.ribConfig;
  in.viaSetConfig = inputs_.viaSetConfig;
  in.routingProtocol = inputs_.routingProtocol;
  in.vrfReadyStatus = inputs_.vrfReadyStatus;
  in.bfdTrackedRoutesList = inputs_.bfdTrackedRoutesList;
  in.ipViaConfig = ipViaConfig;
  in.auxIpViaConfig = inputs_.auxIpViaConfig;
  in.viaMetricStatusByVrf = inputs_.viaMetricStatusByVrf;
  in.ribString = inputs_.ribString;
  in.viaStatusByVrf = inputs_.viaStatusByVrf;
  in.routingGeneralConfig = inputs_.routingGeneralConfig;
  in.igpResultTable = inputs_.igpResultTable;
  in.scheduler = inputs_.scheduler;
  routeStatusSmIs(in);
  intfSmIs(inputs_.intfStatus);
}

Quill::Ptr<RouteStatusSm> ContainerSm::routeStatusSmIs(RouteStatusSm::Inputs const& inputs) {
  if (!routeStatusSm()) routeStatusSmIs(RouteStatusSm::RouteStatusSmIs(inputs));
  return routeStatusSm();
}

Quill::Ptr<Rib::Ip::ViaConfigSm> ContainerSm::ipViaConfigSmIs(Quill::Ptr<Rib::Ip::ViaConfig> const& viaConfig) {
  if (!ipViaConfigSm()) ipViaConfigSmIs(Rib::Ip::ViaConfigSm::TableSmIs(viaConfig));
  return ipViaConfigSm();
}

Quill::Ptr<IntfSm> ContainerSm::intfSmIs(Quill::Ptr<IntfStatus> const& intfStatus) {
  if (!intfSm() && intfStatus) intfSmIs(IntfSm::IntfSmIs(intfStatus));
  return intfSm();
}

}  // namespace Routing::Protocol
