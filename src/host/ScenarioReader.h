// Host::ScenarioReader: the inside of ScenarioParser, shared by its source files and by nothing
// else. A Reader walks one YAML tree into a Scenario: ScenarioValues.cpp holds the readers of
// values (each reports what is wrong with its field and gives nothing then) and of vias and
// routes, ScenarioParser.cpp the sections of the file, ScenarioSteps.cpp the steps and the
// configuration they change, replayed in order so that a step naming a route, a VRF or an address
// is checked against what exists at that point.
#pragma once

#include <yaml-cpp/yaml.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "host/InputText.h"
#include "host/ScenarioParser.h"

namespace Host::ScenarioRead {

using Node = YAML::Node;

inline constexpr std::uint32_t kNoVrfId = 0xffffff;
// Names reach the library's strings (VRF names, interface ids), which take 100 bytes.
inline constexpr std::size_t kMaxNameLength = 100;
// Any other value: a label, a path.
inline constexpr std::size_t kMaxFieldBytes = 4096;
// A static via carries one MPLS label (the route machines have no label stack).
inline constexpr std::size_t kMaxLabels = 1;
inline constexpr std::size_t kMaxErrors = 100;

[[nodiscard]] inline int lineOf(Node const& n) { return n.Mark().is_null() ? 0 : n.Mark().line + 1; }

// Which keys a route map may have where it appears, and which rules its vias follow.
struct RouteForm {
  bool vrf = false;       // names its VRF (else the enclosing block's)
  bool dynamic = false;   // may be a dynamic route
  bool user = false;      // names the injecting user
  bool keyOnly = false;   // a removal: only what finds the route
  bool injected = false;  // a route of the route-input protocol (else a static route)
};

// Where a configured route lives: the static or dynamic list of a VRF, or a user's input there.
struct RouteSlot {
  std::string vrf;
  std::string user;  // empty: the VRF's own lists
  bool dynamic = false;
  Routing::RouteKey key;
  friend auto operator<=>(RouteSlot const&, RouteSlot const&) = default;
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
  Reader(std::string file, std::filesystem::path baseDir, ScenarioLimits const& limits)
      : file_(std::move(file)), baseDir_(std::move(baseDir)), limits_(limits) {}

  ScenarioParse run(std::string_view yaml);

  void error(Node const& n, std::string field, std::string message) {
    error(ScenarioError{file_, lineOf(n), std::move(field), std::move(message)});
  }
  // Errors past kMaxErrors are counted, not kept: a file of a million bad lines says so in one.
  void error(ScenarioError e) {
    if (++errorCount_ <= kMaxErrors) errors_.push_back(std::move(e));
  }

  // --- Values (ScenarioValues.cpp): each reports what is wrong and gives nothing then.
  std::optional<std::string> text(Node const& n, std::string const& path);
  std::optional<std::string> name(Node const& n, std::string const& path);
  // The name of an agent that injects routes.
  std::optional<std::string> user(Node const& n, std::string const& path);
  // Free text of a person (a show's label): any length up to kMaxFieldBytes, no control characters.
  std::optional<std::string> label(Node const& n, std::string const& path);
  std::optional<std::string> filePath(Node const& n, std::string const& path);
  // The text, checked as a name of at most `maxBytes` (see nameProblem); `what` names it in errors.
  std::optional<std::string> checkedText(Node const& n, std::string const& path, char const* what, std::size_t maxBytes,
                                         bool mayBeEmpty);
  std::optional<std::uint64_t> number(Node const& n, std::string const& path, std::uint64_t lo, std::uint64_t hi);
  auto numberIn(std::uint64_t lo, std::uint64_t hi) {
    return [lo, hi](Reader& r, Node const& n, std::string const& path) { return r.number(n, path, lo, hi); };
  }
  std::optional<bool> boolean(Node const& n, std::string const& path);
  // The value `parse` makes of the scalar, or the error that the scalar "is not `what`".
  template <class Parse>
  auto scalarAs(Node const& n, std::string const& path, char const* what, Parse&& parse)
      -> decltype(parse(std::string_view())) {
    auto t = text(n, path);
    if (!t) return std::nullopt;
    auto v = parse(std::string_view(*t));
    if (!v) error(n, path, fmt::format("{} is not {}", quoteInput(*t), what));
    return v;
  }
  std::optional<Ondex::IpGenAddr> address(Node const& n, std::string const& path);
  // A unicast address (see notUnicastReason) of the given role: "next hop", "VTEP", "BFD peer".
  std::optional<Ondex::IpGenAddr> unicast(Node const& n, std::string const& path, char const* role);
  auto unicastAs(char const* role) {
    return [role](Reader& r, Node const& n, std::string const& path) { return r.unicast(n, path, role); };
  }
  std::optional<Ondex::IpGenPrefix> prefix(Node const& n, std::string const& path);
  std::optional<IntfAddress> intfAddress(Node const& n, std::string const& path);
  std::optional<std::vector<IntfAddress>> intfAddresses(Node const& n, std::string const& path);
  std::optional<Ondex::IntfId> intfName(Node const& n, std::string const& path);
  // An interface the scenario declares.
  std::optional<Ondex::IntfId> intf(Node const& n, std::string const& path);
  // A VRF that exists at this point of the scenario.
  std::optional<std::string> vrf(Node const& n, std::string const& path);
  std::optional<Ondex::EthAddr> mac(Node const& n, std::string const& path);
  std::optional<Vxlan::VniExtOrNone> vni(Node const& n, std::string const& path);
  // One label or a list of at most three.
  std::optional<std::vector<Ondex::MplsLabel>> labels(Node const& n, std::string const& path);
  // Communities as numbers or "AS:NN".
  std::optional<std::vector<std::uint32_t>> communities(Node const& n, std::string const& path);
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
    error(n, path, fmt::format("{} is not one of: {}", quoteInput(*t), fmt::join(words, ", ")));
    return std::nullopt;
  }
  std::optional<BfdState> bfdState(Node const& n, std::string const& path);
  std::optional<EcmpState> ecmp(Node const& n, std::string const& path);
  std::optional<Routing::RouteType> routeType(Node const& n, std::string const& path);
  std::optional<RibOverrideKind> ribOverride(Node const& n, std::string const& path);
  auto preference() { return numberIn(1, 255); }
  auto u32() { return numberIn(0, std::numeric_limits<std::uint32_t>::max()); }

  // Calls `each` for every element of a list, with its path "path[i]".
  template <class Each>
  void forEach(Node const& n, std::string const& path, Each&& each) {
    if (!n.IsSequence()) {
      error(n, path,
            n.IsNull()  ? "missing a value"
            : n.IsMap() ? "expected a list, not a map"
                        : "expected a list, not a single value");
      return;
    }
    std::size_t i = 0;
    for (auto it = n.begin(); it != n.end(); ++it, ++i) each(*it, fmt::format("{}[{}]", path, i));
  }

 private:
  // ScenarioParser.cpp: the sections.
  void readVrfs(Node const& n);
  void readCommandTags(Node const& n);
  void readInterfaces(Node const& n);
  void readGlobal(Node const& n);
  void readRoutes(Node const& n);
  void readInjected(Node const& n);
  void readBfd(Node const& n);
  void readRouteFiles(Node const& n);
  void checkRouteFile(Node const& n, Map const& m, RouteFileSource const& src);
  std::optional<Vrf> vrfDecl(Node const& n, std::string const& path);
  std::optional<BfdSession> bfdSession(Node const& n, std::string const& path);

  // ScenarioValues.cpp: vias and routes.
  std::optional<Via> via(Node const& n, std::string const& path, RouteForm form);
  // A route of the given form; `user` receives the injecting user when the form has one.
  std::optional<StaticRoute> route(Node const& n, std::string const& path, RouteForm form, std::string* user = nullptr);
  // The rules between a route's prefix and its vias; true when they hold.
  bool checkViasOfPrefix(Map const& m, StaticRoute const& r, RouteForm form);

  // ScenarioSteps.cpp: the steps, and the configuration they change.
  void readSteps(Node const& n);
  std::optional<Step::Kind> step(std::string_view kind, Node const& args, std::string const& path);
  std::optional<Step::Kind> routeStep(RouteOp op, bool injected, Node const& args, std::string const& path);
  std::optional<Step::Kind> vrfStep(std::string_view kind, Node const& args, std::string const& path);
  std::optional<Step::Kind> interfaceStep(Node const& args, std::string const& path);
  std::optional<Step::Kind> otherStep(std::string_view kind, Node const& args, std::string const& path);
  // Whether the route of the slot exists at the step being read.
  [[nodiscard]] bool routeExists(RouteSlot const& slot) const;
  [[nodiscard]] bool inRouteFiles(std::string const& vrf, Routing::RouteKey const& key) const;

  std::string file_;
  std::filesystem::path baseDir_;
  ScenarioLimits limits_;
  std::vector<ScenarioError> errors_;
  std::size_t errorCount_ = 0;
  Scenario sc_;
  // Declared names, for lookups in files of many routes.
  std::set<Ondex::IntfId> interfaces_;
  std::map<std::string, std::uint16_t, std::less<>> tags_;  // command tags by name, to their ids
  // The VRFs that exist at the point being read, and their ids.
  std::set<std::string> vrfsNow_;
  std::map<std::string, std::uint32_t, std::less<>> vrfIdsByName_;
  std::set<std::uint32_t> vrfIdsNow_;
  // The routes of the start (routes and injected); the steps' changes over them and over the
  // route files; the VRFs removed since the start, whose routes of the start are gone.
  std::set<RouteSlot> startRoutes_;
  std::map<RouteSlot, bool> routesNow_;
  std::set<std::string> vrfsCleared_;
  // The addresses of each interface at the point being read.
  std::map<Ondex::IntfId, std::vector<IntfAddress>> addressesNow_;
};

}  // namespace Host::ScenarioRead
