// Host::Scenario: what the host program runs, as plain values: the switch (VRFs, interfaces, command
// tags, global settings, BFD sessions), the routes configured at the start (static, dynamic,
// injected, and those of route files), and the ordered steps. ScenarioParser fills it from a YAML
// file; the runner reads it and owns it for the run. Addresses, prefixes and interfaces are already
// parsed into the library's value types; names of VRFs, users and tags stay text. Every item keeps
// the line of the scenario file it came from, so that a runner can point at it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "foundations/records/RouteKey.h"
#include "foundations/records/RouteType.h"
#include "foundations/records/RouteViaAttr.h"
#include "foundations/records/Via.h"
#include "foundations/types/EthAddr.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/IpGenAddr.h"
#include "foundations/types/IpGenPrefix.h"
#include "foundations/types/MplsLabel.h"
#include "foundations/types/VniExt.h"
#include "host/RouteFile.h"

namespace Host {

// The VRF every scenario has, whether it declares it or not.
inline constexpr char const* kDefaultVrf = "default";
inline constexpr std::uint32_t kDefaultVrfId = 0;

struct Vrf {
  std::string name;
  std::uint32_t id = 0;  // below 0xffffff, which means no VRF
  int line = 0;
};

// An interface address: the address itself and its prefix length (10.0.0.1/24 keeps the .1).
struct IntfAddress {
  Ondex::IpGenAddr addr;
  std::uint8_t len = 0;

  // The connected subnet (10.0.0.0/24 for 10.0.0.1/24).
  [[nodiscard]] Ondex::IpGenPrefix subnet() const { return Ondex::IpGenPrefix(addr, len); }
  [[nodiscard]] std::string toString() const;
  friend bool operator==(IntfAddress const&, IntfAddress const&) = default;
};

struct Interface {
  Ondex::IntfId id;
  std::string vrf = kDefaultVrf;
  std::vector<IntfAddress> addresses;
  bool routing = true;
  bool up = true;
  int line = 0;
};

// One next hop of a route. An EVPN via has a VTEP (and then a VNI and a router MAC); an IP via has
// a next hop, an interface, or both.
struct Via {
  Ondex::IpGenAddr nexthop;
  Ondex::IntfId intf;
  std::uint32_t metric = 0;
  std::uint32_t weight = 0;
  // The via's MPLS label, when it has one (a list of one, as written).
  std::vector<Ondex::MplsLabel> labels;
  std::string egressVrf;  // empty: the route's own VRF
  bool bfd = false;       // liveness tracked by a BFD session
  std::optional<Ondex::IpGenAddr> localAddr;
  Ondex::IpGenAddr vtep;
  Vxlan::VniExtOrNone vni;
  Ondex::EthAddr routerMac;
  bool vtepSipValidation = false;
  int line = 0;

  [[nodiscard]] bool isEvpn() const { return vtep.af().isSet(); }
  // The identity of this via in a configured route, and what the route keeps beside it.
  [[nodiscard]] Routing::Via routingVia() const;
  // The via as the RIB tells vias apart: the BFD session's local address rides beside it, as metric
  // and weight do (two vias of a route that differ only in those are one via).
  [[nodiscard]] Routing::Via identity() const;
  [[nodiscard]] Routing::RouteViaAttr viaAttr() const { return Routing::RouteViaAttr(metric, weight); }
};

// A configured route: static (of the VRF's route list), dynamic (of its dynamic list) or injected
// (of a user's route input); the family is the prefix's.
struct StaticRoute {
  std::string vrf = kDefaultVrf;
  Ondex::IpGenPrefix prefix;
  std::uint8_t preference = 1;  // 1: not configured, the global preference applies
  std::uint32_t tag = 0;
  Routing::RouteType type = Routing::RouteType::forward;
  // The route's attributes: absent is not the same as present with no community.
  std::optional<std::vector<std::uint32_t>> communities;
  std::string leakVrf;
  std::string commandTag;          // empty: none
  std::uint16_t commandTagId = 0;  // the id the scenario gave the tag; 0: none
  bool ribBypass = false;
  bool dynamic = false;
  std::vector<Via> vias;
  int line = 0;

  [[nodiscard]] Routing::RouteKey key() const {
    return Routing::RouteKey(prefix, Routing::RoutePreference(preference));
  }
};

// The routes one agent injects through the route-input protocol.
struct InjectedUser {
  std::string user;
  std::string vrf = kDefaultVrf;
  bool installInFib = true;
  std::vector<StaticRoute> routes;
  int line = 0;
};

// A named command tag; the ids go 1, 2, ... in the order the scenario declares the tags.
struct CommandTag {
  std::string name;
  std::uint16_t id = 0;
  bool enabled = true;
  int line = 0;
};

enum class EcmpState : std::uint8_t { byViaType = 0, singleGroup = 1, none = 2 };
[[nodiscard]] char const* ecmpStateName(EcmpState s);

struct Global {
  std::uint8_t preference = 1;  // the preference of static routes configured without one
  EcmpState ecmp = EcmpState::byViaType;
  bool mpls = false;
  bool gracefulRestart = false;
  bool startReadyVerification = false;
};

// The BFD session states, by their standard numbers.
enum class BfdState : std::uint8_t { adminDown = 0, down = 1, init = 2, up = 3 };
[[nodiscard]] char const* bfdStateName(BfdState s);

struct BfdSession {
  Ondex::IpGenAddr peer;
  std::string vrf = kDefaultVrf;
  Ondex::IntfId intf;  // empty: any
  BfdState state = BfdState::up;
  int line = 0;
};

// A route file and the VRF its routes load into; the parser loads it (the path is resolved
// against the scenario file's folder).
struct RouteFileSource {
  std::string path;
  std::string vrf = kDefaultVrf;
  RouteFile routes;
  int line = 0;
};

// --- Steps ---

enum class RouteOp : std::uint8_t {
  add,      // create the route, or add the given vias and fields to the one of the same key
  remove,   // delete the route of this key
  replace,  // the route becomes exactly what is given: vias not listed go
};
[[nodiscard]] char const* routeOpName(RouteOp op);

// A change of a static or dynamic route (route.dynamic), or of a user's injected route (user set).
struct RouteStep {
  RouteOp op = RouteOp::add;
  std::string user;  // empty: a static or dynamic route
  StaticRoute route;
};

// Only the settings given change.
struct GlobalStep {
  std::optional<std::uint8_t> preference;
  std::optional<EcmpState> ecmp;
  std::optional<bool> mpls;
  std::optional<bool> startReadyVerification;
};

enum class VrfOp : std::uint8_t { add, remove };
struct VrfStep {
  VrfOp op = VrfOp::add;
  Vrf vrf;  // a removal names the VRF only
};

// Only the changes given happen: up or down, routing on or off, addresses added and removed.
struct InterfaceStep {
  Ondex::IntfId id;
  std::optional<bool> up;
  std::optional<bool> routing;
  std::vector<IntfAddress> addAddresses;
  std::vector<IntfAddress> removeAddresses;
};

struct BfdStep {
  BfdSession session;
};

// What the RIB reports about a via, overriding what it would report by itself.
enum class RibOverrideKind : std::uint8_t {
  resolved,    // resolved with `metric`
  unresolved,  // not resolved
  clear,       // no override: the RIB reports as it would
};
struct RibStep {
  RibOverrideKind kind = RibOverrideKind::resolved;
  std::string vrf = kDefaultVrf;
  Ondex::IpGenAddr nexthop;
  Ondex::IntfId intf;
  std::uint32_t metric = 0;
};

struct CommandTagStep {
  std::string name;
  bool enabled = true;
};

// The agent restarts: its state machines go and come back on the same records.
struct RestartStep {
  std::optional<bool> gracefulRestart;  // absent: as the global setting says
};

// Print the RIB (after settling), of one VRF or of all.
struct ShowStep {
  std::string label;
  std::string vrf;  // empty: every VRF
};

// Run the scheduler until nothing is left to do.
struct SettleStep {};

struct Step {
  using Kind = std::variant<RouteStep, GlobalStep, VrfStep, InterfaceStep, BfdStep, RibStep, CommandTagStep,
                            RestartStep, ShowStep, SettleStep>;
  Kind kind;
  int line = 0;
};

struct Scenario {
  std::string path;       // the scenario file as it was named
  std::vector<Vrf> vrfs;  // "default" (id 0) first
  std::vector<Interface> interfaces;
  std::vector<CommandTag> commandTags;
  Global global;
  std::vector<StaticRoute> routes;  // static and dynamic
  std::vector<InjectedUser> injected;
  std::vector<BfdSession> bfd;
  std::vector<RouteFileSource> routeFiles;
  std::vector<Step> steps;

  // Lookups by name; null when there is none.
  [[nodiscard]] Vrf const* vrf(std::string_view name) const;
  [[nodiscard]] Interface const* interface(Ondex::IntfId id) const;
  [[nodiscard]] CommandTag const* commandTag(std::string_view name) const;
};

}  // namespace Host
