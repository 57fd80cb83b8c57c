#include "static/AllEgressVrfIntfStatusHelperSm.h"

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

namespace Routing::Static {

namespace {
constexpr char const* kBadAf = "0 && \"The address family must be either IPv4 or IPv6\"";
}

Quill::Ptr<Protocol::IntfStatus> AllEgressVrfIntfStatusHelperSm::intfStatusOf(L3::VrfName const& vrf,
                                                                              Ondex::AddressFamily af,
                                                                              bool orEmpty) const {
  if (af == Ondex::AddressFamily::ipv4) {
    Quill::Ptr<Ip::VrfIpIntfStatus const> table;
    if (ipStatus()) table = ipStatus()->vrfIpIntfStatus(vrf);
    if (!table && !orEmpty) return nullptr;
    return Protocol::Ipv4IntfStatus::Ipv4IntfStatusIs(std::move(table));
  }
  if (af == Ondex::AddressFamily::ipv6) {
    Quill::Ptr<Ip6::VrfIp6IntfStatus const> table;
    if (ip6Status()) table = ip6Status()->vrfIp6IntfStatus(vrf);
    if (!table && !orEmpty) return nullptr;
    return Protocol::Ipv6IntfStatus::Ipv6IntfStatusIs(std::move(table));
  }
  QUILL_ASSERT(false, kBadAf);
  return nullptr;
}

void RegisteredClients::clientIs(EgressVrfIntfStatusClient::Key const& clientKey, EgressVrfIntfStatusClient* client) {
  auto const held = clients_.tryEmplace(clientKey, client).first;
  QUILL_ASSERT(*held == client, "one client per VRF and protocol registers for an egress VRF");
}

void AllEgressVrfIntfStatusHelperSm::registerForVrfIntfStatus(L3::VrfName const& vrf, Ondex::AddressFamily af,
                                                              EgressVrfIntfStatusClient::Key const& clientKey,
                                                              EgressVrfIntfStatusClient* client) {
  Protocol::ContainerKey const key(vrf, af);
  // Registered before the helper exists: creating the helper notifies the registered clients.
  registeredClientsIs(key)->clientIs(clientKey, client);
  if (egressVrfIntfStatusHelperSmHas(key)) return;
  auto intfStatus = intfStatusOf(vrf, key.af(), false);
  if (!intfStatus) return;
  TRACE(8, " Adding egressVrfIntfStatusHelperSm for " << key);
  egressVrfIntfStatusHelperSmIs(key, std::move(intfStatus));
}

void AllEgressVrfIntfStatusHelperSm::unregisterForVrfIntfStatus(L3::VrfName const& vrf, Ondex::AddressFamily af,
                                                                EgressVrfIntfStatusClient::Key const& clientKey) {
  Protocol::ContainerKey const key(vrf, af);
  auto registered = registeredClients(key);
  if (!registered) return;
  registered->clientDel(clientKey);
  if (registered->clients().size()) return;
  TRACE(8, " Deleting egressVrfIntfStatusHelperSm for " << key);
  registeredClientsDel(key);
  egressVrfIntfStatusHelperSmDel(key);
}

Quill::Ptr<Protocol::IntfStatus const> AllEgressVrfIntfStatusHelperSm::getVrfIntfStatus(
    L3::VrfName const& vrf, Ondex::AddressFamily af) const {
  if (auto helper = egressVrfIntfStatusHelperSm(Protocol::ContainerKey(vrf, af))) return helper->intfStatus();
  return intfStatusOf(vrf, af, true);
}

void AllEgressVrfIntfStatusHelperSm::notifyIntfStatusChange(Protocol::ContainerKey const& key) {
  TRACE(8, " Notifying routeConfigSms registered for vrf " << key.vrfName() << " to handle their inter-vrf routes");
  auto registered = registeredClients(key);
  if (!registered) return;
  for (auto it = registered->clients().iterator(); it; it.advance()) {
    it.value()->handleInterVrfRoutes(key.vrfName());
  }
}

void AllEgressVrfIntfStatusHelperSm::handleVrfIpIntfStatus(L3::VrfName const& vrf) {
  handleVrfIntfStatus(vrf, Ondex::AddressFamily::ipv4);
}

void AllEgressVrfIntfStatusHelperSm::handleVrfIp6IntfStatus(L3::VrfName const& vrf) {
  handleVrfIntfStatus(vrf, Ondex::AddressFamily::ipv6);
}

void AllEgressVrfIntfStatusHelperSm::handleVrfIntfStatus(L3::VrfName const& vrf, Ondex::AddressFamily af) {
  Protocol::ContainerKey const key(vrf, af);
  if (!registeredClientsHas(key)) return;
  auto intfStatus = intfStatusOf(vrf, af, false);
  if (intfStatus) {
    if (egressVrfIntfStatusHelperSmHas(key)) return;
    TRACE(8, " Adding egressVrfIntfStatusHelperSm for " << key);
    egressVrfIntfStatusHelperSmIs(key, std::move(intfStatus));
    return;
  }
  TRACE(8, " Deleting egressVrfIntfStatusHelperSm for " << key);
  egressVrfIntfStatusHelperSmDel(key);
}

}  // namespace Routing::Static
