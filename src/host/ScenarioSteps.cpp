// The steps of a scenario file (see ScenarioReader.h), read in order over the configuration they
// change: what a step names must exist at that point - a VRF added before it and not removed, a
// route configured at the start, by a route file or by a step before it (and not removed, by a step
// or with its VRF), an address the interface has.
#include <algorithm>

#include "host/ScenarioReader.h"

namespace Host::ScenarioRead {

namespace {

// The steps by the key that names them, in the order the documentation gives them.
constexpr std::string_view kStepKinds[] = {"add_route",       "remove_route",     "replace_route", "add_injected",
                                           "remove_injected", "replace_injected", "global",        "add_vrf",
                                           "remove_vrf",      "interface",        "bfd",           "rib",
                                           "command_tag",     "restart",          "show",          "settle"};

}  // namespace

bool Reader::inRouteFiles(std::string const& vrf, Routing::RouteKey const& key) const {
  return std::any_of(sc_.routeFiles.begin(), sc_.routeFiles.end(),
                     [&](RouteFileSource const& f) { return f.vrf == vrf && f.routes.find(key); });
}

bool Reader::routeExists(RouteSlot const& slot) const {
  if (auto it = routesNow_.find(slot); it != routesNow_.end()) return it->second;
  if (vrfsCleared_.count(slot.vrf)) return false;
  if (startRoutes_.count(slot)) return true;
  return slot.user.empty() && !slot.dynamic && inRouteFiles(slot.vrf, slot.key);
}

void Reader::readSteps(Node const& n) {
  forEach(n, "steps", [&](Node const& e, std::string const& p) {
    std::string kind;
    Node args;
    if (e.IsScalar()) {
      kind = e.Scalar();
    } else if (e.IsMap() && e.size() == 1 && e.begin()->first.IsScalar()) {
      kind = e.begin()->first.Scalar();
      args = e.begin()->second;
    } else {
      error(e, p, "a step is one key naming it, with its settings under it (or a bare settle, restart or show)");
      return;
    }
    if (std::find(std::begin(kStepKinds), std::end(kStepKinds), kind) == std::end(kStepKinds)) {
      error(e, p, fmt::format("unknown step {}; expected one of: {}", quoteInput(kind), fmt::join(kStepKinds, ", ")));
      return;
    }
    if (auto k = step(kind, args, fmt::format("{}.{}", p, kind))) sc_.steps.push_back(Step{std::move(*k), lineOf(e)});
  });
}

std::optional<Step::Kind> Reader::routeStep(RouteOp op, bool injected, Node const& args, std::string const& path) {
  RouteStep s;
  s.op = op;
  RouteForm const form{
      .vrf = true, .dynamic = !injected, .user = injected, .keyOnly = op == RouteOp::remove, .injected = injected};
  auto r = route(args, path, form, &s.user);
  if (!r) return std::nullopt;
  s.route = std::move(*r);
  RouteSlot const slot{s.route.vrf, s.user, s.route.dynamic, s.route.key()};
  if (op == RouteOp::remove && !routeExists(slot)) {
    std::string const whose = injected ? fmt::format("user {}", quoteInput(s.user))
                                       : (s.route.dynamic ? "the dynamic routes" : "the static routes");
    error(args, path,
          fmt::format("route {} is not in {} of VRF {} at this point", s.route.key().pretty(), whose, s.route.vrf));
    return std::nullopt;
  }
  routesNow_[slot] = op != RouteOp::remove;
  return s;
}

std::optional<Step::Kind> Reader::vrfStep(std::string_view kind, Node const& args, std::string const& path) {
  std::size_t const errorsBefore = errorCount_;
  if (kind == "add_vrf") {
    auto v = vrfDecl(args, path);
    if (!v) {
      if (errorCount_ == errorsBefore) error(args, path, "the default VRF is always there");
      return std::nullopt;
    }
    return VrfStep{VrfOp::add, std::move(*v)};
  }
  auto v = vrf(args, path);
  if (!v) return std::nullopt;
  if (*v == kDefaultVrf) {
    error(args, path, "the default VRF cannot be removed");
    return std::nullopt;
  }
  // Its id is free again for a later add_vrf; its routes go with it.
  if (auto it = vrfIdsByName_.find(*v); it != vrfIdsByName_.end()) {
    vrfIdsNow_.erase(it->second);
    vrfIdsByName_.erase(it);
  }
  vrfsNow_.erase(*v);
  vrfsCleared_.insert(*v);
  std::erase_if(routesNow_, [&](auto const& entry) { return entry.first.vrf == *v; });
  return VrfStep{VrfOp::remove, Vrf{*v, 0, lineOf(args)}};
}

std::optional<Step::Kind> Reader::interfaceStep(Node const& args, std::string const& path) {
  std::size_t const errorsBefore = errorCount_;
  Map const m(*this, args, path, {"name", "up", "routing", "add_address", "remove_address"});
  InterfaceStep s;
  m.readRequired("name", s.id, &Reader::intf);
  m.read("up", s.up, &Reader::boolean);
  m.read("routing", s.routing, &Reader::boolean);
  m.read("add_address", s.addAddresses, &Reader::intfAddresses);
  m.read("remove_address", s.removeAddresses, &Reader::intfAddresses);
  if (m.valid() && args.size() < 2) error(args, path, "changes nothing");
  if (errorCount_ != errorsBefore) return std::nullopt;
  // Removals first, as the switch applies them.
  std::vector<IntfAddress>& now = addressesNow_[s.id];
  for (IntfAddress const& a : s.removeAddresses) {
    auto it = std::find(now.begin(), now.end(), a);
    if (it == now.end()) {
      error(*m.get("remove_address"), m.path("remove_address"),
            fmt::format("interface {} has no address {} at this point", quoteInput(s.id.name()), a.toString()));
    } else {
      now.erase(it);
    }
  }
  for (IntfAddress const& a : s.addAddresses) {
    if (std::find(now.begin(), now.end(), a) != now.end()) {
      error(*m.get("add_address"), m.path("add_address"),
            fmt::format("interface {} has the address {} already", quoteInput(s.id.name()), a.toString()));
    } else {
      now.push_back(a);
    }
  }
  if (errorCount_ != errorsBefore) return std::nullopt;
  return s;
}

std::optional<Step::Kind> Reader::step(std::string_view kind, Node const& args, std::string const& path) {
  if (kind == "add_route") return routeStep(RouteOp::add, false, args, path);
  if (kind == "remove_route") return routeStep(RouteOp::remove, false, args, path);
  if (kind == "replace_route") return routeStep(RouteOp::replace, false, args, path);
  if (kind == "add_injected") return routeStep(RouteOp::add, true, args, path);
  if (kind == "remove_injected") return routeStep(RouteOp::remove, true, args, path);
  if (kind == "replace_injected") return routeStep(RouteOp::replace, true, args, path);
  if (kind == "add_vrf" || kind == "remove_vrf") return vrfStep(kind, args, path);
  if (kind == "interface") return interfaceStep(args, path);
  return otherStep(kind, args, path);
}

std::optional<Step::Kind> Reader::otherStep(std::string_view kind, Node const& args, std::string const& path) {
  std::size_t const errorsBefore = errorCount_;
  auto ok = [&]() { return errorCount_ == errorsBefore; };
  auto flag = &Reader::boolean;
  if (kind == "global") {
    Map const m(*this, args, path, {"preference", "ecmp", "mpls", "start_ready_verification"});
    GlobalStep g;
    m.read("preference", g.preference, preference());
    m.read("ecmp", g.ecmp, &Reader::ecmp);
    m.read("mpls", g.mpls, flag);
    m.read("start_ready_verification", g.startReadyVerification, flag);
    if (m.valid() && args.size() == 0) error(args, path, "changes nothing");
    if (!ok()) return std::nullopt;
    return g;
  }
  if (kind == "bfd") {
    auto s = bfdSession(args, path);
    if (!s) return std::nullopt;
    return BfdStep{std::move(*s)};
  }
  if (kind == "rib") {
    Map const m(*this, args, path, {"vrf", "nexthop", "interface", "state", "metric"});
    RibStep s;
    m.read("vrf", s.vrf, &Reader::vrf);
    m.readRequired("nexthop", s.nexthop, unicastAs("next hop"));
    m.read("interface", s.intf, &Reader::intf);
    m.readRequired("state", s.kind, &Reader::ribOverride);
    if (m.read("metric", s.metric, u32()) && s.kind != RibOverrideKind::resolved) {
      error(args, m.path("metric"), "a metric goes with state resolved only");
    }
    if (!ok()) return std::nullopt;
    return s;
  }
  if (kind == "command_tag") {
    Map const m(*this, args, path, {"name", "enabled"});
    CommandTagStep s;
    if (auto t = m.required("name")) {
      if (auto tagName = name(*t, m.path("name")); tagName && !tags_.count(*tagName)) {
        error(*t, m.path("name"), fmt::format("command tag {} is not declared", quoteInput(*tagName)));
      } else if (tagName) {
        s.name = *tagName;
      }
    }
    if (!m.read("enabled", s.enabled, flag)) (void)m.required("enabled");
    if (!ok()) return std::nullopt;
    return s;
  }
  if (kind == "restart") {
    RestartStep s;
    if (args.IsNull()) return s;
    Map const m(*this, args, path, {"graceful_restart"});
    m.read("graceful_restart", s.gracefulRestart, flag);
    if (!ok()) return std::nullopt;
    return s;
  }
  if (kind == "show") {
    ShowStep s;
    if (args.IsNull()) return s;
    if (args.IsScalar()) {
      if (auto l = label(args, path)) s.label = *l;
      if (!ok()) return std::nullopt;
      return s;
    }
    Map const m(*this, args, path, {"label", "vrf"});
    m.read("label", s.label, &Reader::label);
    m.read("vrf", s.vrf, &Reader::vrf);
    if (!ok()) return std::nullopt;
    return s;
  }
  if (!args.IsNull()) error(args, path, "takes no settings");
  if (!ok()) return std::nullopt;
  return SettleStep{};
}

}  // namespace Host::ScenarioRead
