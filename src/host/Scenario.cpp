#include "host/Scenario.h"

#include <algorithm>

#include <fmt/format.h>

namespace Host {

std::string IntfAddress::toString() const { return fmt::format("{}/{}", addr, unsigned(len)); }

Routing::Via Via::identity() const {
  Routing::Via v(nexthop, intf);
  if (!labels.empty()) v.mplsLabelIs(labels.front());
  if (!egressVrf.empty()) v.egressVrfIs(L3::VrfName(egressVrf));
  if (isEvpn()) v.vtepAddrIs(vtep).vniIs(vni).routerMacIs(routerMac).vtepSipValidationIs(vtepSipValidation);
  return v;
}

Routing::Via Via::routingVia() const {
  Routing::Via v = identity();
  if (localAddr) v.localAddrIs(*localAddr);
  return v;
}

namespace {

// The name of an enumeration's value from its table, "?" past it.
template <std::size_t N, class E>
[[nodiscard]] char const* nameIn(char const* const (&names)[N], E value) {
  return std::size_t(value) < N ? names[std::size_t(value)] : "?";
}

}  // namespace

char const* ecmpStateName(EcmpState s) { return nameIn({"by-via-type", "single-group", "none"}, s); }
char const* bfdStateName(BfdState s) { return nameIn({"admin-down", "down", "init", "up"}, s); }
char const* routeOpName(RouteOp op) { return nameIn({"add", "remove", "replace"}, op); }

Vrf const* Scenario::vrf(std::string_view name) const {
  auto it = std::find_if(vrfs.begin(), vrfs.end(), [&](Vrf const& v) { return v.name == name; });
  return it == vrfs.end() ? nullptr : &*it;
}

Interface const* Scenario::interface(Ondex::IntfId id) const {
  auto it = std::find_if(interfaces.begin(), interfaces.end(), [&](Interface const& i) { return i.id == id; });
  return it == interfaces.end() ? nullptr : &*it;
}

CommandTag const* Scenario::commandTag(std::string_view name) const {
  auto it = std::find_if(commandTags.begin(), commandTags.end(), [&](CommandTag const& t) { return t.name == name; });
  return it == commandTags.end() ? nullptr : &*it;
}

}  // namespace Host
