// The readers of values, vias and routes of a scenario file (see ScenarioReader.h).
#include <charconv>

#include "foundations/runtime/Toggle.h"
#include "host/AddressText.h"
#include "foundations/records/RouteInputByUser.h"
#include "host/ScenarioReader.h"

namespace Host::ScenarioRead {

namespace {

// The prefixes whose routes go to the CPU whatever their vias: such a route needs none.
[[nodiscard]] bool sendsToCpu(Ondex::IpGenPrefix const& p) {
  static Ondex::IpGenPrefix const v4 = *parsePrefix("127.0.0.0/8");
  static Ondex::IpGenPrefix const v6 = *parsePrefix("::ffff:127.0.0.0/104");
  return p == v4 || p == v6;
}

[[nodiscard]] char const* familyName(Ondex::AddressFamily af) { return af.isV4() ? "IPv4" : "IPv6"; }

}  // namespace

std::optional<std::string> Reader::text(Node const& n, std::string const& path) {
  if (!n.IsScalar()) {
    error(n, path,
          n.IsNull()       ? "missing a value"
          : n.IsSequence() ? "expected a single value, not a list"
                           : "expected a single value, not a map");
    return std::nullopt;
  }
  std::string const& t = n.Scalar();
  if (t.size() > kMaxFieldBytes) {
    error(n, path, fmt::format("{} is {} bytes long; a value has at most {}", quoteInput(t), t.size(), kMaxFieldBytes));
    return std::nullopt;
  }
  return t;
}

std::optional<std::string> Reader::checkedText(Node const& n, std::string const& path, char const* what,
                                               std::size_t maxBytes, bool mayBeEmpty) {
  auto t = text(n, path);
  if (!t || (mayBeEmpty && t->empty())) return t;
  if (auto problem = nameProblem(*t, maxBytes)) {
    error(n, path, fmt::format("the {} {} {}", what, quoteInput(*t), *problem));
    return std::nullopt;
  }
  return t;
}

std::optional<std::string> Reader::name(Node const& n, std::string const& path) {
  return checkedText(n, path, "name", kMaxNameLength, false);
}

std::optional<std::string> Reader::user(Node const& n, std::string const& path) {
  auto u = name(n, path);
  if (u && *u == Routing::Input::kMartianUser) {
    error(n, path,
          fmt::format("the user {} is the route-input protocol's own, for its martian routes", quoteInput(*u)));
    return std::nullopt;
  }
  return u;
}

std::optional<std::string> Reader::label(Node const& n, std::string const& path) {
  return checkedText(n, path, "label", kMaxFieldBytes, true);
}

std::optional<std::string> Reader::filePath(Node const& n, std::string const& path) {
  return checkedText(n, path, "path", kMaxFieldBytes, false);
}

std::optional<std::uint64_t> Reader::number(Node const& n, std::string const& path, std::uint64_t lo,
                                            std::uint64_t hi) {
  auto t = text(n, path);
  if (!t) return std::nullopt;
  std::uint64_t v = 0;
  auto [end, ec] = std::from_chars(t->data(), t->data() + t->size(), v);
  if (t->empty() || (*t)[0] == '-' || (*t)[0] == '+' || end != t->data() + t->size() ||
      (ec != std::errc() && ec != std::errc::result_out_of_range)) {
    error(n, path, fmt::format("{} is not a number", quoteInput(*t)));
    return std::nullopt;
  }
  if (ec == std::errc::result_out_of_range || v < lo || v > hi) {
    // Digits only: shown as they are unless there are very many.
    error(n, path, fmt::format("{} is out of range {}..{}", t->size() > 24 ? quoteInput(*t, 24) : *t, lo, hi));
    return std::nullopt;
  }
  return v;
}

std::optional<bool> Reader::boolean(Node const& n, std::string const& path) {
  auto t = text(n, path);
  if (!t) return std::nullopt;
  if (*t == "true" || *t == "yes" || *t == "on") return true;
  if (*t == "false" || *t == "no" || *t == "off") return false;
  error(n, path, fmt::format("{} is not true or false", quoteInput(*t)));
  return std::nullopt;
}

std::optional<Ondex::IpGenAddr> Reader::address(Node const& n, std::string const& path) {
  return scalarAs(n, path, "an IP address", [](std::string_view t) { return parseAddress(t); });
}

std::optional<Ondex::IpGenAddr> Reader::unicast(Node const& n, std::string const& path, char const* role) {
  auto a = address(n, path);
  if (!a) return std::nullopt;
  if (char const* reason = notUnicastReason(*a)) {
    error(n, path, fmt::format("{} is {}, which no {} can be", a->toString(), reason, role));
    return std::nullopt;
  }
  return a;
}

std::optional<Ondex::IpGenPrefix> Reader::prefix(Node const& n, std::string const& path) {
  return scalarAs(n, path, "a prefix (address/length)", [](std::string_view t) { return parsePrefix(t); });
}

std::optional<IntfAddress> Reader::intfAddress(Node const& n, std::string const& path) {
  auto a = scalarAs(n, path, "an interface address (address/length)",
                    [](std::string_view t) { return parseAddressLength(t); });
  if (!a) return std::nullopt;
  char const* reason = notUnicastReason(a->addr);
  // A loopback address is an interface's own; the rest are nobody's.
  if (reason && a->addr.isV4() && a->addr.v4() >> 24 == 127) reason = nullptr;
  if (reason && a->addr.isV6() && !a->addr.isUnspecified() && a->addr.bytes()[0] != 0xff) reason = nullptr;
  if (reason) {
    error(n, path, fmt::format("{} is {}, which no interface address can be", a->addr.toString(), reason));
    return std::nullopt;
  }
  return IntfAddress{a->addr, a->len};
}

std::optional<std::vector<IntfAddress>> Reader::intfAddresses(Node const& n, std::string const& path) {
  std::vector<IntfAddress> out;
  if (n.IsScalar()) {
    if (auto a = intfAddress(n, path)) out.push_back(*a);
    return out;
  }
  forEach(n, path, [&](Node const& e, std::string const& p) {
    auto a = intfAddress(e, p);
    if (!a) return;
    if (std::find(out.begin(), out.end(), *a) != out.end()) {
      error(e, p, fmt::format("{} is given twice", a->toString()));
      return;
    }
    out.push_back(*a);
  });
  return out;
}

std::optional<Ondex::IntfId> Reader::intfName(Node const& n, std::string const& path) {
  auto t = name(n, path);
  if (!t) return std::nullopt;
  auto id = Ondex::IntfId::fromString(*t);
  if (!id || id->empty()) {
    error(n, path, fmt::format("{} is not an interface name (no blanks or quotes)", quoteInput(*t)));
    return std::nullopt;
  }
  return id;
}

std::optional<Ondex::IntfId> Reader::intf(Node const& n, std::string const& path) {
  auto id = intfName(n, path);
  if (id && !interfaces_.count(*id)) {
    error(n, path, fmt::format("interface {} is not declared", quoteInput(id->name())));
    return std::nullopt;
  }
  return id;
}

std::optional<std::string> Reader::vrf(Node const& n, std::string const& path) {
  auto v = name(n, path);
  if (v && !vrfsNow_.count(*v)) {
    error(n, path, fmt::format("VRF {} is not declared", quoteInput(*v)));
    return std::nullopt;
  }
  return v;
}

std::optional<Ondex::EthAddr> Reader::mac(Node const& n, std::string const& path) {
  auto m = scalarAs(n, path, "a MAC address", [](std::string_view t) { return Ondex::EthAddr::fromString(t); });
  if (!m) return std::nullopt;
  if (m->isZero() || (m->bytes()[0] & 1) != 0) {
    error(n, path, fmt::format("{} is not the unicast MAC address of a router", m->toString()));
    return std::nullopt;
  }
  return m;
}

std::optional<Vxlan::VniExtOrNone> Reader::vni(Node const& n, std::string const& path) {
  auto v = number(n, path, Vxlan::VniExt::kMin, Vxlan::VniExt::kMax);
  if (!v) return std::nullopt;
  return Vxlan::VniExtOrNone(std::uint32_t(*v));
}

std::optional<std::vector<Ondex::MplsLabel>> Reader::labels(Node const& n, std::string const& path) {
  std::vector<Ondex::MplsLabel> out;
  auto one = [&](Node const& e, std::string const& p) {
    if (auto v = number(e, p, 0, Ondex::MplsLabel::kMaxLabel)) out.emplace_back(std::uint32_t(*v));
  };
  if (n.IsSequence()) {
    if (n.size() > kMaxLabels) {
      error(n, path, fmt::format("a via carries one MPLS label, not a stack of {}", n.size()));
      return std::nullopt;
    }
    if (n.size() == 0) error(n, path, "an empty list of labels; leave the key out for none");
    forEach(n, path, one);
  } else {
    one(n, path);
  }
  return out;
}

constexpr std::size_t kMaxCommunities = 4;

std::optional<std::vector<std::uint32_t>> Reader::communities(Node const& n, std::string const& path) {
  std::vector<std::uint32_t> out;
  forEach(n, path, [&](Node const& e, std::string const& p) {
    auto t = text(e, p);
    if (!t) return;
    std::size_t const colon = t->find(':');
    if (colon == std::string::npos) {
      if (auto v = number(e, p, 0, std::numeric_limits<std::uint32_t>::max())) out.push_back(std::uint32_t(*v));
      return;
    }
    std::uint32_t hi = 0, lo = 0;
    auto const* s = t->data();
    auto r1 = std::from_chars(s, s + colon, hi);
    auto r2 = std::from_chars(s + colon + 1, s + t->size(), lo);
    if (r1.ec != std::errc() || r1.ptr != s + colon || r2.ec != std::errc() || r2.ptr != s + t->size() || hi > 0xffff ||
        lo > 0xffff) {
      error(e, p, fmt::format("{} is not a community (a number or AS:NN)", quoteInput(*t)));
      return;
    }
    out.push_back(hi << 16 | lo);
  });
  // The RIB's redistribution result carries four communities.
  if (out.size() > kMaxCommunities)
    error(n, path, fmt::format("{} communities: a route carries at most {}", out.size(), kMaxCommunities));
  return out;
}

std::optional<BfdState> Reader::bfdState(Node const& n, std::string const& path) {
  return choice<BfdState>(
      n, path,
      {{"up", BfdState::up}, {"down", BfdState::down}, {"init", BfdState::init}, {"admin-down", BfdState::adminDown}});
}

std::optional<EcmpState> Reader::ecmp(Node const& n, std::string const& path) {
  return choice<EcmpState>(
      n, path,
      {{"by-via-type", EcmpState::byViaType}, {"single-group", EcmpState::singleGroup}, {"none", EcmpState::none}});
}

std::optional<Routing::RouteType> Reader::routeType(Node const& n, std::string const& path) {
  return choice<Routing::RouteType>(n, path,
                                    {{"forward", Routing::RouteType::forward},
                                     {"drop", Routing::RouteType::drop},
                                     {"drop-with-indication", Routing::RouteType::dropWithIndication}});
}

std::optional<RibOverrideKind> Reader::ribOverride(Node const& n, std::string const& path) {
  return choice<RibOverrideKind>(n, path,
                                 {{"resolved", RibOverrideKind::resolved},
                                  {"unresolved", RibOverrideKind::unresolved},
                                  {"clear", RibOverrideKind::clear}});
}

std::optional<Via> Reader::via(Node const& n, std::string const& path, RouteForm form) {
  Map const m(*this, n, path,
              {"nexthop", "interface", "metric", "weight", "label", "egress_vrf", "bfd", "local_address", "vtep", "vni",
               "router_mac", "vtep_sip_validation"});
  if (!m.valid()) return std::nullopt;
  std::size_t const errorsBefore = errorCount_;
  Via v;
  v.line = lineOf(n);
  auto flag = &Reader::boolean;
  m.read("nexthop", v.nexthop, unicastAs("next hop"));
  m.read("interface", v.intf, &Reader::intf);
  m.read("metric", v.metric, u32());
  m.read("weight", v.weight, u32());
  m.read("label", v.labels, &Reader::labels);
  m.read("egress_vrf", v.egressVrf, &Reader::name);
  m.read("bfd", v.bfd, flag);
  if (m.read("local_address", v.localAddr, unicastAs("local address")) && v.localAddr) {
    if (v.nexthop.af().isSet() && v.localAddr->af() != v.nexthop.af()) {
      error(n, m.path("local_address"), "the local address is of another family than the next hop");
    } else if (form.injected && !toggleRouteInputVxlanBfdEnabled()) {
      error(n, m.path("local_address"), "an injected route's via takes no local address (RouteInputVxlanBfd is off)");
    }
  }
  bool const evpn = m.read("vtep", v.vtep, unicastAs("VTEP"));
  bool const hasVni = m.read("vni", v.vni, &Reader::vni);
  bool const hasMac = m.read("router_mac", v.routerMac, &Reader::mac);
  bool const hasSip = m.read("vtep_sip_validation", v.vtepSipValidation, flag);
  if (evpn && (!hasVni || !hasMac)) {
    error(n, path, "an EVPN via (with a vtep) needs a vni and a router_mac");
  } else if (!evpn && (hasVni || hasMac || hasSip)) {
    error(n, path, "vni, router_mac and vtep_sip_validation belong to an EVPN via, which needs a vtep");
  }
  if (!m.get("nexthop") && !m.get("interface") && !evpn) {
    error(n, path, "a via needs a nexthop, an interface or a vtep");
  }
  if (errorCount_ != errorsBefore) return std::nullopt;
  return v;
}

bool Reader::checkViasOfPrefix(Map const& m, StaticRoute const& r, RouteForm form) {
  std::size_t const errorsBefore = errorCount_;
  Ondex::AddressFamily const af = r.prefix.af();
  Node const vias = m.get("vias").value_or(Node());
  for (std::size_t i = 0; i < r.vias.size(); ++i) {
    Via const& v = r.vias[i];
    Ondex::AddressFamily const hop = v.nexthop.af();
    if (v.isEvpn() || !hop.isSet() || hop == af) continue;
    std::string const where = fmt::format("{}[{}].nexthop", m.path("vias"), i);
    Node const at = vias.IsSequence() ? vias[i] : m.node();
    if (form.injected) {
      error(at, where,
            fmt::format("an injected route's next hop is of its family: {} is not an {} address", v.nexthop.toString(),
                        familyName(af)));
    } else if (hop.isV4() && v.labels.empty()) {
      error(at, where,
            fmt::format("the IPv4 next hop {} of an IPv6 route needs a label (it resolves over tunnels)",
                        v.nexthop.toString()));
    }
  }
  return errorCount_ == errorsBefore;
}

std::optional<StaticRoute> Reader::route(Node const& n, std::string const& path, RouteForm form, std::string* user) {
  std::vector<std::string_view> keys = {"prefix", "preference"};
  if (form.vrf) keys.push_back("vrf");
  if (form.dynamic) keys.push_back("dynamic");
  if (form.user) keys.push_back("user");
  if (!form.keyOnly) {
    keys.insert(keys.end(), {"tag", "type", "communities", "leak_vrf", "command_tag", "rib_bypass", "vias"});
  }
  Map const m(*this, n, path, std::move(keys));
  if (!m.valid()) return std::nullopt;
  std::size_t const errorsBefore = errorCount_;
  StaticRoute r;
  r.line = lineOf(n);
  m.readRequired("prefix", r.prefix, &Reader::prefix);
  m.read("preference", r.preference, preference());
  m.read("vrf", r.vrf, &Reader::vrf);
  m.read("dynamic", r.dynamic, &Reader::boolean);
  if (form.user) m.readRequired("user", *user, &Reader::user);
  m.read("tag", r.tag, u32());
  m.read("type", r.type, &Reader::routeType);
  m.read("communities", r.communities, &Reader::communities);
  m.read("leak_vrf", r.leakVrf, &Reader::name);
  m.read("rib_bypass", r.ribBypass, &Reader::boolean);
  if (auto t = m.get("command_tag")) {
    if (auto tagName = name(*t, m.path("command_tag"))) {
      if (auto it = tags_.find(*tagName); it != tags_.end()) {
        r.commandTag = it->first;
        r.commandTagId = it->second;
      } else {
        error(*t, m.path("command_tag"), fmt::format("command tag {} is not declared", quoteInput(*tagName)));
      }
    }
  }
  if (auto vs = m.get("vias")) {
    std::set<Routing::Via> seen;  // a via's identity; metric, weight and local address ride beside it
    forEach(*vs, m.path("vias"), [&](Node const& e, std::string const& p) {
      auto v = via(e, p, form);
      if (!v) return;
      if (!seen.insert(v->identity()).second) error(e, p, "the same via is given twice");
      r.vias.push_back(std::move(*v));
    });
  }
  if (errorCount_ != errorsBefore) return std::nullopt;
  if (!form.keyOnly) {
    bool const drop = r.type != Routing::RouteType::forward;
    if (drop && !r.vias.empty()) {
      error(n, m.path("vias"), "a drop route has no vias");
      return std::nullopt;
    }
    if (!drop && r.vias.empty() && !sendsToCpu(r.prefix)) {
      error(n, m.path("vias"), "a forward route needs at least one via");
      return std::nullopt;
    }
    if (!checkViasOfPrefix(m, r, form)) return std::nullopt;
  }
  return r;
}

}  // namespace Host::ScenarioRead
