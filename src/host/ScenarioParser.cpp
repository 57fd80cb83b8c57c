#include "host/ScenarioParser.h"

#include <yaml-cpp/yaml.h>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <limits>
#include <set>
#include <sstream>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace Host {

namespace {

using Node = YAML::Node;

constexpr std::uint32_t kNoVrfId = 0xffffff;
constexpr std::size_t kMaxNameLength = 100;
constexpr std::size_t kMaxLabels = 3;

[[nodiscard]] int lineOf(Node const& n) { return n.Mark().is_null() ? 0 : n.Mark().line + 1; }
[[nodiscard]] std::string inQuotes(std::string_view s) { return fmt::format("\"{}\"", s); }

// The prefixes whose routes go to the CPU whatever their vias: such a route needs none.
[[nodiscard]] bool sendsToCpu(Ondex::IpGenPrefix const& p) {
  static Ondex::IpGenPrefix const v4 = *Ondex::IpGenPrefix::fromString("127.0.0.0/8");
  static Ondex::IpGenPrefix const v6 = *Ondex::IpGenPrefix::fromString("::ffff:127.0.0.0/104");
  return p == v4 || p == v6;
}

// Which keys a route map may have where it appears.
struct RouteForm {
  bool vrf = false;      // names its VRF (else the enclosing block's)
  bool dynamic = false;  // may be a dynamic route
  bool user = false;     // names the injecting user
  bool keyOnly = false;  // a removal: only what finds the route
};

class Reader;

// A YAML map whose keys were checked against those allowed (unknown or repeated keys are errors);
// reads its fields by name, each through a parser of Reader that reports a bad value.
class Map {
 public:
  Map(Reader& r, Node const& node, std::string path, std::vector<std::string_view> keys);

  [[nodiscard]] bool valid() const noexcept { return valid_; }
  [[nodiscard]] Node const& node() const noexcept { return node_; }
  [[nodiscard]] std::string path(std::string_view key) const {
    return path_.empty() ? std::string(key) : fmt::format("{}.{}", path_, key);
  }
  [[nodiscard]] std::optional<Node> get(std::string_view key) const {
    for (auto const& [k, v] : fields_) {
      if (k == key) return v;
    }
    return std::nullopt;
  }
  // The field, or an error that it is missing.
  [[nodiscard]] std::optional<Node> required(std::string_view key) const;

  // Sets `out` from the field when it is there and parses; true when it is there.
  template <class T, class Parse>
  bool read(std::string_view key, T& out, Parse&& parse) const {
    auto n = get(key);
    if (!n) return false;
    if (auto v = std::invoke(parse, reader_, *n, path(key))) out = T(std::move(*v));
    return true;
  }
  template <class T, class Parse>
  void readRequired(std::string_view key, T& out, Parse&& parse) const {
    if (!read(key, out, std::forward<Parse>(parse))) (void)required(key);
  }

 private:
  Reader& reader_;
  Node node_;
  std::string path_;
  bool valid_ = false;
  std::vector<std::pair<std::string, Node>> fields_;
};

class Reader {
 public:
  Reader(std::string file, std::filesystem::path baseDir) : file_(std::move(file)), baseDir_(std::move(baseDir)) {}

  ScenarioParse run(std::string_view yaml);

  void error(Node const& n, std::string field, std::string message) {
    errors_.push_back(ScenarioError{file_, lineOf(n), std::move(field), std::move(message)});
  }

  // --- Values: each reports what is wrong and gives nothing then.
  std::optional<std::string> text(Node const& n, std::string const& path) {
    if (!n.IsScalar()) {
      error(n, path, n.IsNull() ? "missing a value" : "expected a single value");
      return std::nullopt;
    }
    return n.Scalar();
  }
  std::optional<std::string> name(Node const& n, std::string const& path) {
    auto t = text(n, path);
    if (!t) return std::nullopt;
    if (t->empty() || t->size() > kMaxNameLength) {
      error(n, path, fmt::format("{} is not a name of 1 to {} characters", inQuotes(*t), kMaxNameLength));
      return std::nullopt;
    }
    return t;
  }
  std::optional<std::uint64_t> number(Node const& n, std::string const& path, std::uint64_t lo, std::uint64_t hi) {
    auto t = text(n, path);
    if (!t) return std::nullopt;
    std::uint64_t v = 0;
    auto [end, ec] = std::from_chars(t->data(), t->data() + t->size(), v);
    if (t->empty() || (*t)[0] == '-' || (*t)[0] == '+' || end != t->data() + t->size() ||
        (ec != std::errc() && ec != std::errc::result_out_of_range)) {
      error(n, path, fmt::format("{} is not a number", inQuotes(*t)));
      return std::nullopt;
    }
    if (ec == std::errc::result_out_of_range || v < lo || v > hi) {
      error(n, path, fmt::format("{} is out of range {}..{}", *t, lo, hi));
      return std::nullopt;
    }
    return v;
  }
  auto numberIn(std::uint64_t lo, std::uint64_t hi) {
    return [lo, hi](Reader& r, Node const& n, std::string const& path) { return r.number(n, path, lo, hi); };
  }
  std::optional<bool> boolean(Node const& n, std::string const& path) {
    auto t = text(n, path);
    if (!t) return std::nullopt;
    if (*t == "true" || *t == "yes" || *t == "on") return true;
    if (*t == "false" || *t == "no" || *t == "off") return false;
    error(n, path, fmt::format("{} is not true or false", inQuotes(*t)));
    return std::nullopt;
  }
  // The value `parse` makes of the scalar, or the error that the scalar "is not `what`".
  template <class Parse>
  auto scalarAs(Node const& n, std::string const& path, char const* what, Parse&& parse)
      -> decltype(parse(std::string_view())) {
    auto t = text(n, path);
    if (!t) return std::nullopt;
    auto v = parse(std::string_view(*t));
    if (!v) error(n, path, fmt::format("{} is not {}", inQuotes(*t), what));
    return v;
  }
  std::optional<Ondex::IpGenAddr> address(Node const& n, std::string const& path) {
    return scalarAs(n, path, "an IP address", [](std::string_view t) {
      auto a = Ondex::IpGenAddr::fromString(t);
      return a && a->af().isSet() ? a : std::nullopt;
    });
  }
  std::optional<Ondex::IpGenPrefix> prefix(Node const& n, std::string const& path) {
    return scalarAs(n, path, "a prefix (address/length)", [](std::string_view t) {
      auto p = Ondex::IpGenPrefix::fromString(t);
      return p && p->af().isSet() ? p : std::nullopt;
    });
  }
  std::optional<IntfAddress> intfAddress(Node const& n, std::string const& path) {
    return scalarAs(n, path, "an interface address (address/length)", [](std::string_view t) {
      std::size_t const slash = t.rfind('/');
      if (slash == std::string_view::npos) return std::optional<IntfAddress>();
      auto a = Ondex::IpGenAddr::fromString(t.substr(0, slash));
      unsigned len = 0;
      auto [end, ec] = std::from_chars(t.data() + slash + 1, t.data() + t.size(), len);
      if (!a || !a->af().isSet() || ec != std::errc() || end != t.data() + t.size() || len > a->af().bits()) {
        return std::optional<IntfAddress>();
      }
      return std::optional<IntfAddress>(IntfAddress{*a, std::uint8_t(len)});
    });
  }
  std::optional<std::vector<IntfAddress>> intfAddresses(Node const& n, std::string const& path) {
    std::vector<IntfAddress> out;
    if (n.IsScalar()) {
      if (auto a = intfAddress(n, path)) out.push_back(*a);
      return out;
    }
    forEach(n, path, [&](Node const& e, std::string const& p) {
      if (auto a = intfAddress(e, p)) out.push_back(*a);
    });
    return out;
  }
  std::optional<Ondex::IntfId> intfName(Node const& n, std::string const& path) {
    return scalarAs(n, path, "an interface name", [](std::string_view t) {
      auto id = Ondex::IntfId::fromString(t);
      return id && !id->empty() ? id : std::nullopt;
    });
  }
  // An interface the scenario declares.
  std::optional<Ondex::IntfId> intf(Node const& n, std::string const& path) {
    auto id = intfName(n, path);
    if (id && !sc_.interface(*id)) {
      error(n, path, fmt::format("interface {} is not declared", inQuotes(id->name())));
      return std::nullopt;
    }
    return id;
  }
  // A VRF that exists at this point of the scenario.
  std::optional<std::string> vrf(Node const& n, std::string const& path) {
    auto v = name(n, path);
    if (v && !vrfsNow_.count(*v)) {
      error(n, path, fmt::format("VRF {} is not declared", inQuotes(*v)));
      return std::nullopt;
    }
    return v;
  }
  std::optional<Ondex::EthAddr> mac(Node const& n, std::string const& path) {
    return scalarAs(n, path, "a MAC address", [](std::string_view t) {
      auto m = Ondex::EthAddr::fromString(t);
      return m && !m->isZero() ? m : std::nullopt;
    });
  }
  std::optional<Vxlan::VniExtOrNone> vni(Node const& n, std::string const& path) {
    auto v = number(n, path, Vxlan::VniExt::kMin, Vxlan::VniExt::kMax);
    if (!v) return std::nullopt;
    return Vxlan::VniExtOrNone(std::uint32_t(*v));
  }
  // One label or a list of at most three.
  std::optional<std::vector<Ondex::MplsLabel>> labels(Node const& n, std::string const& path) {
    std::vector<Ondex::MplsLabel> out;
    auto one = [&](Node const& e, std::string const& p) {
      if (auto v = number(e, p, 0, Ondex::MplsLabel::kMaxLabel)) out.emplace_back(std::uint32_t(*v));
    };
    if (n.IsSequence()) {
      if (n.size() > kMaxLabels) error(n, path, fmt::format("at most {} labels", kMaxLabels));
      forEach(n, path, one);
    } else {
      one(n, path);
    }
    return out;
  }
  // Communities as numbers or "AS:NN".
  std::optional<std::vector<std::uint32_t>> communities(Node const& n, std::string const& path) {
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
      if (r1.ec != std::errc() || r1.ptr != s + colon || r2.ec != std::errc() || r2.ptr != s + t->size() ||
          hi > 0xffff || lo > 0xffff) {
        error(e, p, fmt::format("{} is not a community (a number or AS:NN)", inQuotes(*t)));
        return;
      }
      out.push_back(hi << 16 | lo);
    });
    return out;
  }
  template <class E>
  std::optional<E> choice(Node const& n, std::string const& path,
                          std::initializer_list<std::pair<std::string_view, E>> table) {
    auto t = text(n, path);
    if (!t) return std::nullopt;
    for (auto const& [word, value] : table) {
      if (*t == word) return value;
    }
    std::vector<std::string_view> words;
    for (auto const& entry : table) words.push_back(entry.first);
    error(n, path, fmt::format("{} is not one of: {}", inQuotes(*t), fmt::join(words, ", ")));
    return std::nullopt;
  }
  std::optional<BfdState> bfdState(Node const& n, std::string const& path) {
    return choice<BfdState>(n, path,
                            {{"up", BfdState::up},
                             {"down", BfdState::down},
                             {"init", BfdState::init},
                             {"admin-down", BfdState::adminDown}});
  }
  std::optional<EcmpState> ecmp(Node const& n, std::string const& path) {
    return choice<EcmpState>(
        n, path,
        {{"by-via-type", EcmpState::byViaType}, {"single-group", EcmpState::singleGroup}, {"none", EcmpState::none}});
  }
  std::optional<Routing::RouteType> routeType(Node const& n, std::string const& path) {
    return choice<Routing::RouteType>(n, path,
                                      {{"forward", Routing::RouteType::forward},
                                       {"drop", Routing::RouteType::drop},
                                       {"drop-with-indication", Routing::RouteType::dropWithIndication}});
  }
  std::optional<RibOverrideKind> ribOverride(Node const& n, std::string const& path) {
    return choice<RibOverrideKind>(n, path,
                                   {{"resolved", RibOverrideKind::resolved},
                                    {"unresolved", RibOverrideKind::unresolved},
                                    {"clear", RibOverrideKind::clear}});
  }
  auto preference() { return numberIn(1, 255); }
  auto u32() { return numberIn(0, std::numeric_limits<std::uint32_t>::max()); }

  // Calls `each` for every element of a list, with its path "path[i]".
  template <class Each>
  void forEach(Node const& n, std::string const& path, Each&& each) {
    if (!n.IsSequence()) {
      error(n, path, n.IsNull() ? "missing a value" : "expected a list");
      return;
    }
    for (std::size_t i = 0; i < n.size(); ++i) each(n[i], fmt::format("{}[{}]", path, i));
  }

 private:
  void readVrfs(Node const& n);
  void readCommandTags(Node const& n);
  void readInterfaces(Node const& n);
  void readGlobal(Node const& n);
  void readInjected(Node const& n);
  void readBfd(Node const& n);
  void readRouteFiles(Node const& n);
  void readSteps(Node const& n);
  std::optional<Vrf> vrfDecl(Node const& n, std::string const& path);
  std::optional<BfdSession> bfdSession(Node const& n, std::string const& path);
  std::optional<Via> via(Node const& n, std::string const& path);
  // A route of the given form; `user` receives the injecting user when the form has one.
  std::optional<StaticRoute> route(Node const& n, std::string const& path, RouteForm form, std::string* user = nullptr);
  std::optional<Step::Kind> step(std::string_view kind, Node const& args, std::string const& path);
  std::optional<Step::Kind> routeStep(RouteOp op, bool injected, Node const& args, std::string const& path);

  std::string file_;
  std::filesystem::path baseDir_;
  std::vector<ScenarioError> errors_;
  Scenario sc_;
  std::set<std::string> vrfsNow_;  // the VRFs that exist at the point being read
  std::set<std::uint32_t> vrfIdsNow_;
};

Map::Map(Reader& r, Node const& node, std::string path, std::vector<std::string_view> keys)
    : reader_(r), node_(node), path_(std::move(path)) {
  if (!node.IsMap()) {
    r.error(node, path_, node.IsNull() ? "missing a value" : "expected a map of keys");
    return;
  }
  valid_ = true;
  for (auto it = node.begin(); it != node.end(); ++it) {
    std::string const key = it->first.Scalar();
    bool const known = std::find(keys.begin(), keys.end(), key) != keys.end();
    if (!known) {
      r.error(it->first, this->path(key), fmt::format("unknown key; expected one of: {}", fmt::join(keys, ", ")));
    } else if (get(key)) {
      r.error(it->first, this->path(key), "given twice");
    } else {
      fields_.emplace_back(key, it->second);
    }
  }
}

std::optional<Node> Map::required(std::string_view key) const {
  auto n = get(key);
  if (!n && valid_) reader_.error(node_, path(key), "missing");
  return n;
}

ScenarioParse Reader::run(std::string_view yaml) {
  Node root;
  try {
    root = YAML::Load(std::string(yaml));
  } catch (YAML::Exception const& e) {
    errors_.push_back(ScenarioError{file_, e.mark.is_null() ? 0 : e.mark.line + 1, {}, e.msg});
    return ScenarioParse{std::nullopt, std::move(errors_)};
  }
  sc_.path = file_;
  if (root.IsNull()) {
    errors_.push_back(ScenarioError{file_, 0, {}, "the scenario is empty"});
    return ScenarioParse{std::nullopt, std::move(errors_)};
  }
  Map const top(*this, root, "",
                {"vrfs", "interfaces", "command_tags", "global", "routes", "injected", "bfd", "route_files", "steps"});
  if (top.valid()) {
    // In the order of dependence, whatever the order of the file.
    sc_.vrfs.push_back(Vrf{kDefaultVrf, kDefaultVrfId, 0});
    vrfsNow_.insert(kDefaultVrf);
    vrfIdsNow_.insert(kDefaultVrfId);
    if (auto n = top.get("vrfs")) readVrfs(*n);
    if (auto n = top.get("command_tags")) readCommandTags(*n);
    if (auto n = top.get("interfaces")) readInterfaces(*n);
    if (auto n = top.get("global")) readGlobal(*n);
    if (auto n = top.get("routes")) {
      std::set<std::tuple<std::string, bool, Routing::RouteKey>> seen;
      forEach(*n, "routes", [&](Node const& e, std::string const& p) {
        auto r = route(e, p, RouteForm{.vrf = true, .dynamic = true});
        if (!r) return;
        if (!seen.emplace(r->vrf, r->dynamic, r->key()).second) {
          error(e, p, fmt::format("route {} is given twice in VRF {}", r->key().pretty(), r->vrf));
        }
        sc_.routes.push_back(std::move(*r));
      });
    }
    if (auto n = top.get("injected")) readInjected(*n);
    if (auto n = top.get("bfd")) readBfd(*n);
    if (auto n = top.get("route_files")) readRouteFiles(*n);
    if (auto n = top.get("steps")) readSteps(*n);
  }
  if (!errors_.empty()) return ScenarioParse{std::nullopt, std::move(errors_)};
  return ScenarioParse{std::move(sc_), {}};
}

std::optional<Vrf> Reader::vrfDecl(Node const& n, std::string const& path) {
  Map const m(*this, n, path, {"name", "id"});
  if (!m.valid()) return std::nullopt;
  Vrf v{{}, kNoVrfId, lineOf(n)};
  m.readRequired("name", v.name, &Reader::name);
  m.readRequired("id", v.id, numberIn(0, kNoVrfId - 1));
  if (v.name.empty() || v.id == kNoVrfId) return std::nullopt;
  if (v.name == kDefaultVrf) {
    if (v.id != kDefaultVrfId) error(n, m.path("id"), "the default VRF has id 0");
    return std::nullopt;  // always there
  }
  if (vrfsNow_.count(v.name)) {
    error(n, m.path("name"), fmt::format("VRF {} is declared twice", inQuotes(v.name)));
    return std::nullopt;
  }
  if (vrfIdsNow_.count(v.id)) {
    error(n, m.path("id"), fmt::format("VRF id {} is already in use", v.id));
    return std::nullopt;
  }
  vrfsNow_.insert(v.name);
  vrfIdsNow_.insert(v.id);
  return v;
}

void Reader::readVrfs(Node const& n) {
  forEach(n, "vrfs", [&](Node const& e, std::string const& p) {
    if (auto v = vrfDecl(e, p)) sc_.vrfs.push_back(std::move(*v));
  });
}

void Reader::readCommandTags(Node const& n) {
  forEach(n, "command_tags", [&](Node const& e, std::string const& p) {
    Map const m(*this, e, p, {"name", "enabled"});
    if (!m.valid()) return;
    CommandTag t{{}, std::uint16_t(sc_.commandTags.size() + 1), true, lineOf(e)};
    m.readRequired("name", t.name, &Reader::name);
    m.read("enabled", t.enabled, &Reader::boolean);
    if (t.name.empty()) return;
    if (sc_.commandTag(t.name)) {
      error(e, m.path("name"), fmt::format("command tag {} is declared twice", inQuotes(t.name)));
      return;
    }
    sc_.commandTags.push_back(std::move(t));
  });
}

void Reader::readInterfaces(Node const& n) {
  forEach(n, "interfaces", [&](Node const& e, std::string const& p) {
    Map const m(*this, e, p, {"name", "vrf", "addresses", "routing", "up"});
    if (!m.valid()) return;
    Interface i;
    i.line = lineOf(e);
    m.readRequired("name", i.id, &Reader::intfName);
    m.read("vrf", i.vrf, &Reader::vrf);
    m.read("addresses", i.addresses, &Reader::intfAddresses);
    m.read("routing", i.routing, &Reader::boolean);
    m.read("up", i.up, &Reader::boolean);
    if (i.id.empty()) return;
    if (sc_.interface(i.id)) {
      error(e, m.path("name"), fmt::format("interface {} is declared twice", inQuotes(i.id.name())));
      return;
    }
    sc_.interfaces.push_back(std::move(i));
  });
}

void Reader::readGlobal(Node const& n) {
  Map const m(*this, n, "global", {"preference", "ecmp", "mpls", "graceful_restart", "start_ready_verification"});
  Global& g = sc_.global;
  m.read("preference", g.preference, preference());
  m.read("ecmp", g.ecmp, &Reader::ecmp);
  auto flag = &Reader::boolean;
  m.read("mpls", g.mpls, flag);
  m.read("graceful_restart", g.gracefulRestart, flag);
  m.read("start_ready_verification", g.startReadyVerification, flag);
}

std::optional<Via> Reader::via(Node const& n, std::string const& path) {
  Map const m(*this, n, path,
              {"nexthop", "interface", "metric", "weight", "label", "egress_vrf", "bfd", "local_address", "vtep", "vni",
               "router_mac", "vtep_sip_validation"});
  if (!m.valid()) return std::nullopt;
  std::size_t const errorsBefore = errors_.size();
  Via v;
  v.line = lineOf(n);
  auto addr = &Reader::address;
  auto flag = &Reader::boolean;
  m.read("nexthop", v.nexthop, addr);
  m.read("interface", v.intf, &Reader::intf);
  m.read("metric", v.metric, u32());
  m.read("weight", v.weight, u32());
  m.read("label", v.labels, &Reader::labels);
  m.read("egress_vrf", v.egressVrf, &Reader::name);
  m.read("bfd", v.bfd, flag);
  if (m.read("local_address", v.localAddr, addr) && v.localAddr && v.localAddr->isUnspecified()) {
    error(n, m.path("local_address"), "the local address may not be the unspecified address");
  }
  bool const evpn = m.read("vtep", v.vtep, addr);
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
  if (errors_.size() != errorsBefore) return std::nullopt;
  return v;
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
  std::size_t const errorsBefore = errors_.size();
  StaticRoute r;
  r.line = lineOf(n);
  m.readRequired("prefix", r.prefix, &Reader::prefix);
  m.read("preference", r.preference, preference());
  m.read("vrf", r.vrf, &Reader::vrf);
  m.read("dynamic", r.dynamic, &Reader::boolean);
  if (form.user) {
    m.readRequired("user", *user, &Reader::name);
  }
  m.read("tag", r.tag, u32());
  m.read("type", r.type, &Reader::routeType);
  m.read("communities", r.communities, &Reader::communities);
  m.read("leak_vrf", r.leakVrf, &Reader::name);
  m.read("rib_bypass", r.ribBypass, &Reader::boolean);
  if (auto t = m.get("command_tag")) {
    if (auto tagName = name(*t, m.path("command_tag"))) {
      if (CommandTag const* tag = sc_.commandTag(*tagName)) {
        r.commandTag = tag->name;
        r.commandTagId = tag->id;
      } else {
        error(*t, m.path("command_tag"), fmt::format("command tag {} is not declared", inQuotes(*tagName)));
      }
    }
  }
  if (auto vs = m.get("vias")) {
    forEach(*vs, m.path("vias"), [&](Node const& e, std::string const& p) {
      auto v = via(e, p);
      if (!v) return;
      for (Via const& other : r.vias) {
        if (other.routingVia() == v->routingVia()) error(e, p, "the same via is given twice");
      }
      r.vias.push_back(std::move(*v));
    });
  }
  if (errors_.size() != errorsBefore) return std::nullopt;
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
  }
  return r;
}

void Reader::readInjected(Node const& n) {
  forEach(n, "injected", [&](Node const& e, std::string const& p) {
    Map const m(*this, e, p, {"user", "vrf", "install_in_fib", "routes"});
    if (!m.valid()) return;
    InjectedUser u;
    u.line = lineOf(e);
    m.readRequired("user", u.user, &Reader::name);
    m.read("vrf", u.vrf, &Reader::vrf);
    m.read("install_in_fib", u.installInFib, &Reader::boolean);
    for (InjectedUser const& other : sc_.injected) {
      if (!u.user.empty() && other.user == u.user && other.vrf == u.vrf) {
        error(e, m.path("user"), fmt::format("user {} is given twice in VRF {}", inQuotes(u.user), u.vrf));
      }
    }
    if (auto rs = m.get("routes")) {
      std::set<Routing::RouteKey> seen;
      forEach(*rs, m.path("routes"), [&](Node const& x, std::string const& q) {
        auto r = route(x, q, RouteForm{});
        if (!r) return;
        r->vrf = u.vrf;
        if (!seen.insert(r->key()).second) error(x, q, fmt::format("route {} is given twice", r->key().pretty()));
        u.routes.push_back(std::move(*r));
      });
    }
    sc_.injected.push_back(std::move(u));
  });
}

std::optional<BfdSession> Reader::bfdSession(Node const& n, std::string const& path) {
  Map const m(*this, n, path, {"peer", "vrf", "interface", "state"});
  if (!m.valid()) return std::nullopt;
  std::size_t const errorsBefore = errors_.size();
  BfdSession s;
  s.line = lineOf(n);
  m.readRequired("peer", s.peer, &Reader::address);
  m.read("vrf", s.vrf, &Reader::vrf);
  m.read("interface", s.intf, &Reader::intf);
  m.readRequired("state", s.state, &Reader::bfdState);
  if (errors_.size() != errorsBefore) return std::nullopt;
  return s;
}

void Reader::readBfd(Node const& n) {
  forEach(n, "bfd", [&](Node const& e, std::string const& p) {
    if (auto s = bfdSession(e, p)) sc_.bfd.push_back(std::move(*s));
  });
}

void Reader::readRouteFiles(Node const& n) {
  forEach(n, "route_files", [&](Node const& e, std::string const& p) {
    Map const m(*this, e, p, {"path", "vrf"});
    if (!m.valid()) return;
    RouteFileSource src;
    src.line = lineOf(e);
    m.readRequired("path", src.path, &Reader::text);
    m.read("vrf", src.vrf, &Reader::vrf);
    if (src.path.empty()) return;
    std::filesystem::path const full = baseDir_ / src.path;
    src.routes = RouteFile::load(full.string(), full.lexically_normal().string());
    for (RouteFile::Error const& err : src.routes.errors()) {
      if (err.line == 0) {
        error(*m.get("path"), m.path("path"), fmt::format("route file {}: {}", err.file, err.message));
      } else {
        errors_.push_back(ScenarioError{err.file, int(err.line), {}, err.message});
      }
    }
    if (src.routes.errorCount() > src.routes.errors().size()) {
      error(e, m.path("path"),
            fmt::format("{} more errors in the route file", src.routes.errorCount() - src.routes.errors().size()));
    }
    std::set<Ondex::IntfId> undeclared;
    for (RouteFile::Entry const& r : src.routes.entries()) {
      if (!r.intf.empty() && !sc_.interface(r.intf) && undeclared.insert(r.intf).second) {
        error(*m.get("path"), m.path("path"),
              fmt::format("interface {} of the route file is not declared", inQuotes(r.intf.name())));
      }
    }
    sc_.routeFiles.push_back(std::move(src));
  });
}

// The steps by the key that names them, in the order the documentation gives them.
constexpr std::string_view kStepKinds[] = {"add_route",       "remove_route",     "replace_route", "add_injected",
                                           "remove_injected", "replace_injected", "global",        "add_vrf",
                                           "remove_vrf",      "interface",        "bfd",           "rib",
                                           "command_tag",     "restart",          "show",          "settle"};

void Reader::readSteps(Node const& n) {
  forEach(n, "steps", [&](Node const& e, std::string const& p) {
    std::string kind;
    Node args;
    if (e.IsScalar()) {
      kind = e.Scalar();
    } else if (e.IsMap() && e.size() == 1) {
      kind = e.begin()->first.Scalar();
      args = e.begin()->second;
    } else {
      error(e, p, "a step is one key naming it, with its settings under it (or a bare settle, restart or show)");
      return;
    }
    if (std::find(std::begin(kStepKinds), std::end(kStepKinds), kind) == std::end(kStepKinds)) {
      error(e, p, fmt::format("unknown step {}; expected one of: {}", inQuotes(kind), fmt::join(kStepKinds, ", ")));
      return;
    }
    if (auto k = step(kind, args, fmt::format("{}.{}", p, kind))) sc_.steps.push_back(Step{std::move(*k), lineOf(e)});
  });
}

std::optional<Step::Kind> Reader::routeStep(RouteOp op, bool injected, Node const& args, std::string const& path) {
  RouteStep s;
  s.op = op;
  RouteForm const form{.vrf = true, .dynamic = !injected, .user = injected, .keyOnly = op == RouteOp::remove};
  auto r = route(args, path, form, &s.user);
  if (!r) return std::nullopt;
  s.route = std::move(*r);
  return s;
}

std::optional<Step::Kind> Reader::step(std::string_view kind, Node const& args, std::string const& path) {
  std::size_t const errorsBefore = errors_.size();
  auto ok = [&]() { return errors_.size() == errorsBefore; };
  auto flag = &Reader::boolean;
  auto noArgs = [&]() {
    if (!args.IsNull()) error(args, path, "takes no settings");
    return ok();
  };
  if (kind == "add_route") return routeStep(RouteOp::add, false, args, path);
  if (kind == "remove_route") return routeStep(RouteOp::remove, false, args, path);
  if (kind == "replace_route") return routeStep(RouteOp::replace, false, args, path);
  if (kind == "add_injected") return routeStep(RouteOp::add, true, args, path);
  if (kind == "remove_injected") return routeStep(RouteOp::remove, true, args, path);
  if (kind == "replace_injected") return routeStep(RouteOp::replace, true, args, path);
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
  if (kind == "add_vrf") {
    auto v = vrfDecl(args, path);
    if (!v) {
      if (ok()) error(args, path, "the default VRF is always there");
      return std::nullopt;
    }
    return VrfStep{VrfOp::add, std::move(*v)};
  }
  if (kind == "remove_vrf") {
    auto v = vrf(args, path);
    if (!v) return std::nullopt;
    if (*v == kDefaultVrf) {
      error(args, path, "the default VRF cannot be removed");
      return std::nullopt;
    }
    // Its id is free again for a later add_vrf.
    for (Step const& s : sc_.steps) {
      auto const* added = std::get_if<VrfStep>(&s.kind);
      if (added && added->op == VrfOp::add && added->vrf.name == *v) vrfIdsNow_.erase(added->vrf.id);
    }
    if (Vrf const* declared = sc_.vrf(*v)) vrfIdsNow_.erase(declared->id);
    vrfsNow_.erase(*v);
    return VrfStep{VrfOp::remove, Vrf{*v, 0, lineOf(args)}};
  }
  if (kind == "interface") {
    Map const m(*this, args, path, {"name", "up", "routing", "add_address", "remove_address"});
    InterfaceStep s;
    m.readRequired("name", s.id, &Reader::intf);
    m.read("up", s.up, flag);
    m.read("routing", s.routing, flag);
    auto addrs = &Reader::intfAddresses;
    m.read("add_address", s.addAddresses, addrs);
    m.read("remove_address", s.removeAddresses, addrs);
    if (m.valid() && args.size() < 2) error(args, path, "changes nothing");
    if (!ok()) return std::nullopt;
    return s;
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
    m.readRequired("nexthop", s.nexthop, &Reader::address);
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
      if (auto tagName = name(*t, m.path("name")); tagName && !sc_.commandTag(*tagName)) {
        error(*t, m.path("name"), fmt::format("command tag {} is not declared", inQuotes(*tagName)));
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
      s.label = args.Scalar();
      return s;
    }
    Map const m(*this, args, path, {"label", "vrf"});
    m.read("label", s.label, &Reader::text);
    m.read("vrf", s.vrf, &Reader::vrf);
    if (!ok()) return std::nullopt;
    return s;
  }
  if (!noArgs()) return std::nullopt;
  return SettleStep{};
}

}  // namespace

std::string ScenarioError::text() const {
  std::string out = file;
  if (line > 0) out += fmt::format(":{}", line);
  out += ": ";
  if (!field.empty()) out += field + ": ";
  return out + message;
}

std::string ScenarioParse::errorText() const {
  std::string out;
  for (ScenarioError const& e : errors) out += e.text() + "\n";
  return out;
}

ScenarioParse ScenarioParser::parseText(std::string_view yaml, std::string const& name, std::string const& baseDir) {
  return Reader(name, baseDir).run(yaml);
}

ScenarioParse ScenarioParser::parseFile(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return ScenarioParse{std::nullopt, {ScenarioError{path, 0, {}, "cannot read the file"}}};
  std::ostringstream text;
  text << in.rdbuf();
  return parseText(text.str(), path, std::filesystem::path(path).parent_path().string());
}

}  // namespace Host
