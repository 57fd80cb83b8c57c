// Shared by every RouteConfigSm of the agent: for each egress VRF and family that some route
// machine has inter-VRF routes through, it keeps the machines registered (as clients) and one
// helper watching that VRF's interface status, and tells the clients when it changes, in the order
// of the clients' own VRF names (never of their addresses). It watches the IPv4 and IPv6 interface
// tables of all VRFs and writes its registrations and helpers. Owned by the hosting agent.
#pragma once

#include "foundations/records/IpIntfStatus.h"
#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/RbTreeMap.h"
#include "foundations/runtime/StateMachine.h"
#include "protocol/ProtocolContainerKey.h"
#include "protocol/ProtocolIntf.h"
#include "static/EgressVrfIntfStatusHelperSm.h"

namespace Routing::Static {

// What the helper asks of a machine registered for an egress VRF's interface status.
class EgressVrfIntfStatusClient {
 public:
  // Who a client is, and the order in which the clients of an egress VRF are told: the VRF whose
  // routes it serves and their routing protocol. One client each.
  struct Key {
    L3::VrfName vrf;
    Rib::RoutingProtocol protocol;
    friend bool operator==(Key const& a, Key const& b) noexcept = default;
    friend auto operator<=>(Key const& a, Key const& b) noexcept = default;
  };

  // The interface status of an egress VRF it registered for changed.
  virtual void handleInterVrfRoutes(L3::VrfName const& egressVrf) = 0;

 protected:
  ~EgressVrfIntfStatusClient() = default;
};

// The clients registered for one egress VRF and family, not owned, by their keys. Changed without
// notification; the walk is the RbTreeMap's, in ascending key, and survives a client leaving
// during it.
class RegisteredClients : public Zel::Entity {
 public:
  using Clients = Zel::RbTreeMap<EgressVrfIntfStatusClient::Key, EgressVrfIntfStatusClient*>;
  ZEL_CONST(Protocol::ContainerKey, key)
  [[nodiscard]] Clients const& clients() const noexcept { return clients_; }
  // Registers the client of the key; another client of a registered key is a programming error.
  void clientIs(EgressVrfIntfStatusClient::Key const& clientKey, EgressVrfIntfStatusClient* client);
  bool clientDel(EgressVrfIntfStatusClient::Key const& clientKey) { return clients_.erase(clientKey); }

 protected:
  friend struct Zel::Factory;
  explicit RegisteredClients(Protocol::ContainerKey const& key) : key_(key) {}

 private:
  Clients clients_;
};

class AllEgressVrfIntfStatusHelperSm : public Zel::StateMachine<AllEgressVrfIntfStatusHelperSm> {
 public:
  [[nodiscard]] static Quill::Ptr<AllEgressVrfIntfStatusHelperSm> AllEgressVrfIntfStatusHelperSmIs(
      Quill::Ptr<Ip::Status const> ipStatus, Quill::Ptr<Ip6::Status const> ip6Status) {
    return Zel::make<AllEgressVrfIntfStatusHelperSm>(std::move(ipStatus), std::move(ip6Status));
  }

  void handleVrfIpIntfStatus(L3::VrfName const& vrf);
  void handleVrfIp6IntfStatus(L3::VrfName const& vrf);
  // The client of clientKey registers for (or leaves) the egress VRF vrf.
  void registerForVrfIntfStatus(L3::VrfName const& vrf, Ondex::AddressFamily af,
                                EgressVrfIntfStatusClient::Key const& clientKey, EgressVrfIntfStatusClient* client);
  void unregisterForVrfIntfStatus(L3::VrfName const& vrf, Ondex::AddressFamily af,
                                  EgressVrfIntfStatusClient::Key const& clientKey);
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
