// Shared by every RouteConfigSm of the agent: for each egress VRF and family that some route
// machine has inter-VRF routes through, it keeps the machines registered (as clients) and one
// helper watching that VRF's interface status, and tells the clients when it changes. It watches
// the IPv4 and IPv6 interface tables of all VRFs and writes its registrations and helpers. Owned
// by the hosting agent.
#pragma once

#include "foundations/records/IpIntfStatus.h"
#include "foundations/runtime/StateMachine.h"
#include "protocol/ProtocolContainerKey.h"
#include "protocol/ProtocolIntf.h"
#include "static/EgressVrfIntfStatusHelperSm.h"

namespace Routing::Static {

// What the helper asks of a machine registered for an egress VRF's interface status.
class EgressVrfIntfStatusClient {
 public:
  // The interface status of an egress VRF it registered for changed.
  virtual void handleInterVrfRoutes(L3::VrfName const& egressVrf) = 0;

 protected:
  ~EgressVrfIntfStatusClient() = default;
};

// The clients registered for one egress VRF and family; compared by identity, not owned.
class RegisteredClients : public Zel::Entity {
 public:
  ZEL_CONST(Protocol::ContainerKey, key)
  ZEL_SET(EgressVrfIntfStatusClient*, client, 130)

 protected:
  friend struct Zel::Factory;
  explicit RegisteredClients(Protocol::ContainerKey const& key) : key_(key) {}
};

class AllEgressVrfIntfStatusHelperSm : public Zel::StateMachine<AllEgressVrfIntfStatusHelperSm> {
 public:
  [[nodiscard]] static Quill::Ptr<AllEgressVrfIntfStatusHelperSm> AllEgressVrfIntfStatusHelperSmIs(
      Quill::Ptr<Ip::Status const> ipStatus, Quill::Ptr<Ip6::Status const> ip6Status) {
    return Zel::make<AllEgressVrfIntfStatusHelperSm>(std::move(ipStatus), std::move(ip6Status));
  }

  void handleVrfIpIntfStatus(L3::VrfName const& vrf);
  void handleVrfIp6IntfStatus(L3::VrfName const& vrf);
  void registerForVrfIntfStatus(L3::VrfName const& vrf, Ondex::AddressFamily af, EgressVrfIntfStatusClient* client);
  void unregisterForVrfIntfStatus(L3::VrfName const& vrf, Ondex::AddressFamily af, EgressVrfIntfStatusClient* client);
  // The interface status of the VRF: the watched one where a helper exists, else a fresh wrapper
  // around the VRF's current table (which answers no interface when the VRF has none). Never null.
  [[nodiscard]] Quill::Ptr<Protocol::IntfStatus const> getVrfIntfStatus(L3::VrfName const& vrf,
                                                                        Ondex::AddressFamily af) const;
  void notifyIntfStatusChange(Protocol::ContainerKey const& key);

  using IpReactors = Zel::Reactors<
      Zel::On<Ip::Status::vrfIpIntfStatusId, &AllEgressVrfIntfStatusHelperSm::handleVrfIpIntfStatus>>;
  using Ip6Reactors = Zel::Reactors<
      Zel::On<Ip6::Status::vrfIp6IntfStatusId, &AllEgressVrfIntfStatusHelperSm::handleVrfIp6IntfStatus>>;
  ZEL_INPUT(Ip::Status, ipStatus, IpReactors)
  ZEL_INPUT(Ip6::Status, ip6Status, Ip6Reactors)
  ZEL_OWNED_MAP(Protocol::ContainerKey, RegisteredClients, registeredClients, 130)
  ZEL_OWNED_MAP(Protocol::ContainerKey, EgressVrfIntfStatusHelperSm, egressVrfIntfStatusHelperSm, 131)

 protected:
  friend struct Zel::Factory;
  AllEgressVrfIntfStatusHelperSm(Quill::Ptr<Ip::Status const> ipStatus, Quill::Ptr<Ip6::Status const> ip6Status) {
    ipStatusIs(std::move(ipStatus));
    ip6StatusIs(std::move(ip6Status));
  }

 private:
  // The wrapper around the VRF's table of the family, or null when the VRF has no table.
  [[nodiscard]] Quill::Ptr<Protocol::IntfStatus> intfStatusOf(L3::VrfName const& vrf, Ondex::AddressFamily af,
                                                              bool orEmpty) const;
  void handleVrfIntfStatus(L3::VrfName const& vrf, Ondex::AddressFamily af);
};

}  // namespace Routing::Static
