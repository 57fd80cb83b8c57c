#include "host/Scenario.h"

#include <algorithm>

#include <fmt/format.h>

namespace Host {

std::string IntfAddress::toString() const { return fmt::format("{}/{}", addr, unsigned(len)); }

Routing::Via Via::routingVia() const {
  Routing::Via v(nexthop, intf);
  if (!labels.empty()) v.mplsLabelIs(labels.front());
  if (!egressVrf.empty()) v.egressVrfIs(L3::VrfName(egressVrf));
  if (localAddr) v.localAddrIs(*localAddr);
  if (isEvpn()) v.vtepAddrIs(vtep).vniIs(vni).routerMacIs(routerMac).vtepSipValidationIs(vtepSipValidation);
  return v;
}

char const* ecmpStateName(EcmpState s) {
  switch (s) {
    case EcmpState::byViaType:
      return "by-via-type";
    case EcmpState::singleGroup:
      return "single-group";
    case EcmpState::none:
      return "none";
  }
  return "?";
}

char const* bfdStateName(BfdState s) {
  switch (s) {
    case BfdState::adminDown:
      return "admin-down";
    case BfdState::down:
      return "down";
    case BfdState::init:
      return "init";
    case BfdState::up:
      return "up";
  }
  return "?";
}

char const* routeOpName(RouteOp op) {
  switch (op) {
    case RouteOp::add:
      return "add";
    case RouteOp::remove:
      return "remove";
    case RouteOp::replace:
      return "replace";
  }
  return "?";
}

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
