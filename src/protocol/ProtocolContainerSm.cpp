#include "protocol/ProtocolContainerSm.h"

#include "foundations/rib/ViaConfigLib.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("IpRib::ProtocolRootSm");

namespace Routing::Protocol {

ProtocolContainerSm::ProtocolContainerSm(Inputs const& inputs) : inputs_(inputs), statusDir_(inputs.routeStatusDir) {
  handleInitialized();
}

void ProtocolContainerSm::zelDoZombieReactors(bool marked) {
  // The store leaves the family's directory with its container.
  if (marked && !zelMarkedForDeletion()) {
    auto const s = status();
    if (statusDir_ && s && statusDir_->status(s->key()) == s) statusDir_->statusDel(s->key());
  }
  StateMachine::zelDoZombieReactors(marked);
}

void ProtocolContainerSm::handleInitialized() {
  TRACE(8, "Vrf: " << inputs_.containerKey.vrfName() << ", ContainerSm::handleInitialized");
  initializedIs(true);
  statusIs(RouteStatusKey{inputs_.vrfId, inputs_.containerKey.af()});
  doInitSm();
}

Quill::Ptr<Status> ProtocolContainerSm::statusIs(RouteStatusKey const& key) {
  if (status() && status()->key() == key) return status();
  if (!statusDir_) statusDir_ = RouteStatusDir::RouteStatusDirIs();
  auto s = statusDir_->statusIs(key);
  statusIs(s);
  return s;
}

void ProtocolContainerSm::doInitSm() {
  auto const& ipViaConfig = inputs_.ipViaConfig;
  std::string const ribText(ViaConfigLib::getRibStringFromIpViaConfig(*ipViaConfig).view());
  std::string const transportText = ipViaConfig->transport().toStrep();
  std::string const protocolText = inputs_.routingProtocol.toStrep();
  if (!ViaConfigLib::isAllVrfViaConfig(protocolText, transportText, ribText)) ipViaConfigSmIs(ipViaConfig);
  RouteStatusSm::Inputs in;
  {
    auto& to = in;
    auto const& from = inputs_;
    ROUTE_STATUS_SM_INPUTS(ZEL_INPUTS_COPY)
  }
  in.vrfName = inputs_.containerKey.vrfName();
  in.af = inputs_.containerKey.af();
  in.status = status();
  routeStatusSmIs(in);
  intfSmIs(inputs_.intfStatus);
}

Quill::Ptr<RouteStatusSm> ProtocolContainerSm::routeStatusSmIs(RouteStatusSm::Inputs const& inputs) {
  if (!routeStatusSm()) routeStatusSmIs(RouteStatusSm::RouteStatusSmIs(inputs));
  return routeStatusSm();
}

Quill::Ptr<Rib::Ip::ViaConfigSm> ProtocolContainerSm::ipViaConfigSmIs(Quill::Ptr<Rib::Ip::ViaConfig> const& viaConfig) {
  if (!ipViaConfigSm()) ipViaConfigSmIs(Rib::Ip::ViaConfigSm::TableSmIs(viaConfig));
  return ipViaConfigSm();
}

Quill::Ptr<IntfSm> ProtocolContainerSm::intfSmIs(Quill::Ptr<IntfStatus> const& intfStatus) {
  if (!intfSm() && intfStatus) intfSmIs(IntfSm::IntfSmIs(intfStatus));
  return intfSm();
}

}  // namespace Routing::Protocol
