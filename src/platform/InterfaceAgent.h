// Platform::InterfaceAgent: the interface agent's stand-in. It owns the interfaces of the scenario
// (name, VRF, IPv4/IPv6 addresses with prefix length, routing enabled, oper up) and writes the
// interface tables the library reads: Ip::Status / Ip6::Status hold a VrfIpIntfStatus /
// VrfIp6IntfStatus for each VRF that has interfaces with an address of that family, with one
// record per such interface whose dpRoutingEnabled is the interface's routing-enabled setting (the
// oper state does not enter it). A table is filled before it is published, and removed when its
// last interface goes. Each change bumps `vrfVersion` of every VRF it touched; the RIB stand-in
// watches that and asks connectedSubnets(). Owned by the host (or a test).
//
// Iteration: intfs() and connectedSubnets() return copies sorted by interface name (then prefix).
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "foundations/records/IpIntfStatus.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/types/IpGenPrefix.h"

namespace Platform {

class InterfaceAgent : public Zel::Entity {
 public:
  // An address of an interface with its prefix length; 10.0.0.1/24 is on the subnet 10.0.0.0/24.
  struct IntfAddr {
    Ondex::IpGenAddr addr;
    std::uint8_t len = 0;
    [[nodiscard]] Ondex::IpGenPrefix subnet() const { return Ondex::IpGenPrefix(addr, len); }
    friend bool operator==(IntfAddr const&, IntfAddr const&) = default;
  };
  struct Interface {
    Ondex::IntfId intfId;
    L3::VrfName vrf = L3::VrfName::defaultVrf();
    std::vector<IntfAddr> addrs;
    bool routingEnabled = true;
    bool operUp = true;
    // Routing enabled and up: its subnets are connected, an interface-only via through it resolves.
    [[nodiscard]] bool usable() const noexcept { return routingEnabled && operUp; }
    [[nodiscard]] bool hasFamily(Ondex::AddressFamily af) const;
  };
  // A subnet of a usable interface.
  struct Connected {
    Ondex::IpGenPrefix subnet;
    Ondex::IntfId intfId;
    friend bool operator==(Connected const&, Connected const&) = default;
  };

  [[nodiscard]] static Quill::Ptr<InterfaceAgent> InterfaceAgentIs() { return Zel::make<InterfaceAgent>(); }

  // Bumped for each VRF a change touched (the old and the new VRF of a moved interface).
  ZEL_MAP(L3::VrfName, std::uint32_t, vrfVersion, 130)

  [[nodiscard]] Quill::Ptr<Ip::Status> const& ipStatus() const noexcept { return ipStatus_; }
  [[nodiscard]] Quill::Ptr<Ip6::Status> const& ip6Status() const noexcept { return ip6Status_; }

  // Adds the interface or replaces it whole (moving it when its VRF changed). Addresses without a
  // family or with a length past the family's width are traced and dropped.
  void intfIs(Interface intf);
  // Removes the interface; false when there was none.
  bool intfDel(Ondex::IntfId intfId);
  // The scenario's flips; false when the interface does not exist or nothing changed.
  bool routingEnabledIs(Ondex::IntfId intfId, bool enabled);
  bool operUpIs(Ondex::IntfId intfId, bool up);

  [[nodiscard]] Interface const* intf(Ondex::IntfId intfId) const;
  [[nodiscard]] std::vector<Interface> intfs() const;
  // The subnets of family `af` of the usable interfaces of `vrf`, with the interface of each.
  [[nodiscard]] std::vector<Connected> connectedSubnets(L3::VrfName const& vrf, Ondex::AddressFamily af) const;

 protected:
  friend struct Zel::Factory;
  InterfaceAgent();

 private:
  // Sets one flag of the interface (`what` names the change in trace) and brings its VRF in line;
  // false when the interface does not exist or nothing changed.
  bool flagIs(Ondex::IntfId intfId, bool Interface::*flag, bool value, char const* what);
  // Brings both families' tables of the VRF in line with the interfaces, then bumps its version.
  void syncVrf(L3::VrfName const& vrf);

  std::map<Ondex::IntfId, Interface> intfs_;
  Quill::Ptr<Ip::Status> ipStatus_;
  Quill::Ptr<Ip6::Status> ip6Status_;
};

}  // namespace Platform
