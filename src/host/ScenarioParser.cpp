#include "host/ScenarioParser.h"

#include <algorithm>

#include "host/InputFile.h"
#include "host/ScenarioReader.h"

namespace Host {

namespace ScenarioRead {

namespace {

// A key as a field path shows it: as it is when it is a plain word, quoted and cut short if not.
[[nodiscard]] std::string keyText(std::string const& key) {
  bool const plain = !key.empty() && key.size() <= 40 && std::all_of(key.begin(), key.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
  });
  return plain ? key : quoteInput(key, 40);
}

// The line of the byte at `offset`.
[[nodiscard]] int lineAt(std::string_view text, std::size_t offset) {
  return int(std::count(text.begin(), text.begin() + std::ptrdiff_t(offset), '\n')) + 1;
}

}  // namespace

Map::Map(Reader& r, Node const& node, std::string path, std::vector<std::string_view> keys)
    : reader_(r), node_(node), path_(std::move(path)) {
  if (!node.IsMap()) {
    r.error(node, path_,
            node.IsNull()       ? "missing a value"
            : node.IsSequence() ? "expected a map of keys, not a list"
                                : "expected a map of keys, not a single value");
    return;
  }
  valid_ = true;
  for (auto it = node.begin(); it != node.end(); ++it) {
    std::string const key = it->first.IsScalar() ? it->first.Scalar() : std::string();
    bool const known = std::find(keys.begin(), keys.end(), key) != keys.end();
    if (!known) {
      r.error(it->first, this->path(keyText(key)),
              fmt::format("unknown key; expected one of: {}", fmt::join(keys, ", ")));
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
  auto fail = [&](int line, std::string message) {
    error(ScenarioError{file_, line, {}, std::move(message)});
    return ScenarioParse{std::nullopt, std::move(errors_)};
  };
  if (std::size_t const nul = yaml.find('\0'); nul != std::string_view::npos) {
    return fail(lineAt(yaml, nul), "the file holds a NUL byte: it is not a text file");
  }
  if (auto bad = invalidUtf8At(yaml)) {
    return fail(lineAt(yaml, *bad),
                fmt::format("the file is not UTF-8 text (byte 0x{:02x})", static_cast<unsigned char>(yaml[*bad])));
  }
  if (yamlShapeMayMatter(yaml, limits_.yaml)) {
    YamlShape const shape = yamlShape(yaml, limits_.yaml);
    if (!shape.ok()) return fail(shape.errorLine, shape.error);
  }
  Node root;
  try {
    MemoryStream in(yaml);
    root = YAML::Load(in);
  } catch (YAML::Exception const& e) {
    return fail(e.mark.is_null() ? 0 : e.mark.line + 1, printable(e.msg, 200));
  }
  sc_.path = file_;
  if (root.IsNull()) return fail(0, "the scenario is empty");
  Map const top(*this, root, "",
                {"vrfs", "interfaces", "command_tags", "global", "routes", "injected", "bfd", "route_files", "steps"});
  if (top.valid()) {
    // In the order of dependence, whatever the order of the file.
    sc_.vrfs.push_back(Vrf{kDefaultVrf, kDefaultVrfId, 0});
    vrfsNow_.insert(kDefaultVrf);
    vrfIdsByName_[kDefaultVrf] = kDefaultVrfId;
    vrfIdsNow_.insert(kDefaultVrfId);
    if (auto n = top.get("vrfs")) readVrfs(*n);
    if (auto n = top.get("command_tags")) readCommandTags(*n);
    if (auto n = top.get("interfaces")) readInterfaces(*n);
    if (auto n = top.get("global")) readGlobal(*n);
    if (auto n = top.get("routes")) readRoutes(*n);
    if (auto n = top.get("injected")) readInjected(*n);
    if (auto n = top.get("bfd")) readBfd(*n);
    if (auto n = top.get("route_files")) readRouteFiles(*n);
    if (auto n = top.get("steps")) readSteps(*n);
  }
  if (errorCount_ > errors_.size()) {
    errors_.push_back(ScenarioError{file_, 0, {}, fmt::format("{} more errors", errorCount_ - errors_.size())});
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
    error(n, m.path("name"), fmt::format("VRF {} is declared twice", quoteInput(v.name)));
    return std::nullopt;
  }
  if (vrfIdsNow_.count(v.id)) {
    error(n, m.path("id"), fmt::format("VRF id {} is already in use", v.id));
    return std::nullopt;
  }
  vrfsNow_.insert(v.name);
  vrfIdsNow_.insert(v.id);
  vrfIdsByName_[v.name] = v.id;
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
    if (tags_.count(t.name)) {
      error(e, m.path("name"), fmt::format("command tag {} is declared twice", quoteInput(t.name)));
      return;
    }
    if (sc_.commandTags.size() == 0xffff) {
      error(e, p, "at most 65535 command tags");
      return;
    }
    tags_[t.name] = t.id;
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
    if (!interfaces_.insert(i.id).second) {
      error(e, m.path("name"), fmt::format("interface {} is declared twice", quoteInput(i.id.name())));
      return;
    }
    addressesNow_[i.id] = i.addresses;
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

void Reader::readRoutes(Node const& n) {
  forEach(n, "routes", [&](Node const& e, std::string const& p) {
    auto r = route(e, p, RouteForm{.vrf = true, .dynamic = true});
    if (!r) return;
    if (!startRoutes_.insert(RouteSlot{r->vrf, {}, r->dynamic, r->key()}).second) {
      error(e, p, fmt::format("route {} is given twice in VRF {}", r->key().pretty(), r->vrf));
    }
    sc_.routes.push_back(std::move(*r));
  });
}

void Reader::readInjected(Node const& n) {
  std::set<std::pair<std::string, std::string>> users;
  forEach(n, "injected", [&](Node const& e, std::string const& p) {
    Map const m(*this, e, p, {"user", "vrf", "install_in_fib", "routes"});
    if (!m.valid()) return;
    InjectedUser u;
    u.line = lineOf(e);
    m.readRequired("user", u.user, &Reader::user);
    m.read("vrf", u.vrf, &Reader::vrf);
    m.read("install_in_fib", u.installInFib, &Reader::boolean);
    if (!u.user.empty() && !users.emplace(u.user, u.vrf).second) {
      error(e, m.path("user"), fmt::format("user {} is given twice in VRF {}", quoteInput(u.user), u.vrf));
    }
    if (auto rs = m.get("routes")) {
      forEach(*rs, m.path("routes"), [&](Node const& x, std::string const& q) {
        auto r = route(x, q, RouteForm{.injected = true});
        if (!r) return;
        r->vrf = u.vrf;
        if (!startRoutes_.insert(RouteSlot{u.vrf, u.user, false, r->key()}).second) {
          error(x, q, fmt::format("route {} is given twice", r->key().pretty()));
        }
        u.routes.push_back(std::move(*r));
      });
    }
    sc_.injected.push_back(std::move(u));
  });
}

std::optional<BfdSession> Reader::bfdSession(Node const& n, std::string const& path) {
  Map const m(*this, n, path, {"peer", "vrf", "interface", "state"});
  if (!m.valid()) return std::nullopt;
  std::size_t const errorsBefore = errorCount_;
  BfdSession s;
  s.line = lineOf(n);
  m.readRequired("peer", s.peer, unicastAs("BFD peer"));
  m.read("vrf", s.vrf, &Reader::vrf);
  m.read("interface", s.intf, &Reader::intf);
  m.readRequired("state", s.state, &Reader::bfdState);
  if (errorCount_ != errorsBefore) return std::nullopt;
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
    m.readRequired("path", src.path, &Reader::filePath);
    m.read("vrf", src.vrf, &Reader::vrf);
    if (src.path.empty()) return;
    std::filesystem::path const full = baseDir_ / src.path;
    src.routes = RouteFile::load(full.string(), full.lexically_normal().string(), limits_.maxRouteFileBytes);
    for (RouteFile::Error const& err : src.routes.errors()) {
      if (err.line == 0) {
        error(*m.get("path"), m.path("path"), fmt::format("route file {}: {}", err.file, err.message));
      } else {
        error(ScenarioError{err.file, int(err.line), {}, err.message});
      }
    }
    if (src.routes.errorCount() > src.routes.errors().size()) {
      error(e, m.path("path"),
            fmt::format("{} more errors in the route file", src.routes.errorCount() - src.routes.errors().size()));
    }
    checkRouteFile(e, m, src);
    sc_.routeFiles.push_back(std::move(src));
  });
}

// A route file against the interfaces, the static routes and the route files before it.
void Reader::checkRouteFile(Node const& e, Map const& m, RouteFileSource const& src) {
  Node const at = m.get("path").value_or(e);
  std::set<Ondex::IntfId> undeclared;
  for (RouteFile::Entry const& r : src.routes.entries()) {
    if (!r.intf.empty() && !interfaces_.count(r.intf) && undeclared.insert(r.intf).second) {
      error(at, m.path("path"),
            fmt::format("interface {} of the route file is not declared", quoteInput(r.intf.name())));
    }
  }
  for (StaticRoute const& r : sc_.routes) {
    if (r.dynamic || r.vrf != src.vrf) continue;
    if (auto found = src.routes.find(r.key())) {
      error(
          at, m.path("path"),
          fmt::format("route {} of line {} is also given in routes (line {})", r.key().pretty(), found->line, r.line));
    }
  }
  // Files of one VRF make one route of the lines of a key, all drop or all forward.
  for (RouteFileSource const& before : sc_.routeFiles) {
    if (before.vrf != src.vrf) continue;
    for (RouteFile::Entry const& r : src.routes.entries()) {
      Routing::RouteKey const key(r.prefix, Routing::RoutePreference(r.preference));
      auto other = before.routes.find(key);
      if (other && other->type != r.type) {
        auto const mine = src.routes.find(key);
        error(at, m.path("path"),
              fmt::format("route {} is {} on line {} and {} on line {} of {}; a route is one or the other",
                          key.pretty(), RouteFile::kindText(r.type), mine->line, RouteFile::kindText(other->type),
                          other->line, before.path));
        return;
      }
    }
  }
}

}  // namespace ScenarioRead

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

ScenarioParse ScenarioParser::parseText(std::string_view yaml, std::string const& name, std::string const& baseDir,
                                        ScenarioLimits const& limits) {
  return ScenarioRead::Reader(name, baseDir, limits).run(yaml);
}

ScenarioParse ScenarioParser::parseFile(std::string const& path, ScenarioLimits const& limits) {
  InputFile const file(path, limits.maxScenarioBytes);
  if (!file.ok())
    return ScenarioParse{std::nullopt, {ScenarioError{path, 0, {}, "cannot read the file: " + file.error()}}};
  return parseText(file.text(), path, std::filesystem::path(path).parent_path().string(), limits);
}

}  // namespace Host
