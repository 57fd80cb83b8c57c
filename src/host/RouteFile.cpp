#include "host/RouteFile.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <fmt/format.h>

#include "host/AddressText.h"
#include "host/InputFile.h"
#include "host/InputText.h"

namespace Host {

namespace {

[[nodiscard]] constexpr bool isBlank(char c) noexcept { return c == ' ' || c == '\t' || c == '\r'; }
[[nodiscard]] constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// A preference: 1 to 3 decimal digits without a leading zero, 1..255.
[[nodiscard]] std::optional<std::uint8_t> preference(std::string_view t) noexcept {
  if (t.empty() || t.size() > 3 || t[0] == '0') return std::nullopt;
  unsigned v = 0;
  for (char c : t) {
    if (!isDigit(c)) return std::nullopt;
    v = v * 10 + unsigned(c - '0');
  }
  if (v > 255) return std::nullopt;
  return std::uint8_t(v);
}

[[nodiscard]] bool keyLess(RouteFile::Entry const& a, RouteFile::Entry const& b) noexcept {
  if (auto c = a.prefix <=> b.prefix; c != 0) return c < 0;
  return a.preference < b.preference;
}

// The next blank-separated field of the line from `pos`, which it moves past the field; empty at the
// end of the line or at a comment.
[[nodiscard]] std::string_view nextField(std::string_view line, std::size_t& pos) noexcept {
  while (pos < line.size() && isBlank(line[pos])) ++pos;
  if (pos >= line.size() || line[pos] == '#') {
    pos = line.size();
    return {};
  }
  std::size_t const start = pos;
  while (pos < line.size() && !isBlank(line[pos]) && line[pos] != '#') ++pos;
  return line.substr(start, pos - start);
}

}  // namespace

std::string RouteFile::Error::text() const {
  if (line == 0) return fmt::format("{}: {}", file, message);
  return fmt::format("{}:{}: {}", file, line, message);
}

RouteFile RouteFile::load(std::string const& path, std::string name, std::uint64_t maxBytes) {
  if (name.empty()) name = path;
  RouteFile rf;
  InputFile const file(path, maxBytes);
  if (!file.ok()) {
    rf.error(name, 0, "cannot read: " + file.error());
    return rf;
  }
  rf.scan(file.text(), name);
  return rf;
}

RouteFile RouteFile::parse(std::string_view text, std::string name) {
  RouteFile rf;
  rf.scan(text, name);
  return rf;
}

void RouteFile::error(std::string const& name, std::size_t line, std::string message) {
  ++errorCount_;
  if (errors_.size() < kMaxErrors) errors_.push_back(Error{name, line, std::move(message)});
}

char const* RouteFile::kindText(Routing::RouteType t) noexcept {
  return t == Routing::RouteType::drop ? "a drop route" : "a route with next hops";
}

std::optional<RouteFile::Found> RouteFile::find(Routing::RouteKey const& key) const {
  Entry probe;
  probe.prefix = key.prefix();
  probe.preference = key.preference().value();
  auto it = std::lower_bound(byKey_.begin(), byKey_.end(), probe,
                             [&](std::uint32_t i, Entry const& k) { return keyLess(entries_[i], k); });
  if (it == byKey_.end() || keyLess(probe, entries_[*it])) return std::nullopt;
  return Found{entries_[*it].type, lineOf_[*it]};
}

void RouteFile::scan(std::string_view text, std::string const& name) {
  if (text.empty()) return;  // an empty file's text has no data pointer for memchr
  if (void const* nul = std::memchr(text.data(), '\0', text.size())) {
    std::size_t const at = std::size_t(static_cast<char const*>(nul) - text.data());
    error(name, std::size_t(std::count(text.begin(), text.begin() + std::ptrdiff_t(at), '\n')) + 1,
          "the file holds a NUL byte: it is not a text file");
    return;
  }
  // One pass to count the lines lets the vectors be sized once.
  std::size_t newlines = 0;
  for (char const* p = text.data(); p < text.data() + text.size(); ++newlines) {
    p = static_cast<char const*>(std::memchr(p, '\n', std::size_t(text.data() + text.size() - p)));
    if (!p) break;
    ++p;
  }
  entries_.reserve(newlines + 1);
  lineOf_.reserve(newlines + 1);

  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t eol = text.find('\n', pos);
    if (eol == std::string_view::npos) eol = text.size();
    std::string_view const line = text.substr(pos, eol - pos);
    pos = eol + 1;
    ++lines_;
    (void)scanLine(line, name);
  }
  index(name);
}

bool RouteFile::scanLine(std::string_view line, std::string const& name) {
  std::size_t at = 0;
  std::string_view const first = nextField(line, at);
  if (first.empty()) return true;  // blank or comment
  Entry e;
  auto pfx = parsePrefix(first);
  if (!pfx) {
    error(name, lines_, fmt::format("{} is not a prefix", quoteInput(first)));
    return false;
  }
  e.prefix = *pfx;

  std::string_view const target = nextField(line, at);
  if (target.empty()) {
    error(name, lines_, "missing next hop (an address, an interface or \"drop\")");
    return false;
  }
  auto intfOf = [&](std::string_view field) -> std::optional<Ondex::IntfId> {
    // A name as the scenario file takes one (UTF-8, no control characters), then as the library does.
    auto intf = nameProblem(field, Ondex::IntfId::maxLength()) ? std::nullopt : Ondex::IntfId::fromString(field);
    if (!intf) error(name, lines_, fmt::format("{} is not an interface name", quoteInput(field)));
    return intf;
  };
  std::string_view field = nextField(line, at);
  if (target == "drop") {
    e.type = Routing::RouteType::drop;
  } else if (isDigit(target[0]) || target.find(':') != std::string_view::npos) {
    auto hop = parseAddress(target);
    if (!hop) {
      error(name, lines_, fmt::format("{} is not an IP address", quoteInput(target)));
      return false;
    }
    if (char const* reason = notUnicastReason(*hop)) {
      error(name, lines_, fmt::format("{} is {}, which no next hop can be", hop->toString(), reason));
      return false;
    }
    if (hop->isV4() && e.prefix.isV6()) {
      error(name, lines_,
            fmt::format("the IPv4 next hop {} of an IPv6 route needs a label, which a route file cannot give",
                        hop->toString()));
      return false;
    }
    e.nexthop = *hop;
    if (!field.empty() && !isDigit(field[0])) {  // an interface after the next hop
      auto intf = intfOf(field);
      if (!intf) return false;
      e.intf = *intf;
      field = nextField(line, at);
    }
  } else {
    auto intf = intfOf(target);
    if (!intf) return false;
    e.intf = *intf;
  }

  if (!field.empty()) {
    auto pref = preference(field);
    if (!pref) {
      error(name, lines_, fmt::format("{} is not a preference (1..255)", quoteInput(field)));
      return false;
    }
    e.preference = *pref;
  }
  if (std::string_view const extra = nextField(line, at); !extra.empty()) {
    error(name, lines_, fmt::format("unexpected {} after the route", quoteInput(extra)));
    return false;
  }
  entries_.push_back(e);
  lineOf_.push_back(std::uint32_t(lines_));
  return true;
}

void RouteFile::index(std::string const& name) {
  byKey_.resize(entries_.size());
  for (std::uint32_t i = 0; i < byKey_.size(); ++i) byKey_[i] = i;
  std::stable_sort(byKey_.begin(), byKey_.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return keyLess(entries_[a], entries_[b]); });
  // A key's lines are adjacent now, in file order: each one that changes the type is an error.
  for (std::size_t k = 1; k < byKey_.size(); ++k) {
    Entry const& a = entries_[byKey_[k - 1]];
    Entry const& b = entries_[byKey_[k]];
    if (keyLess(a, b) || a.type == b.type) continue;
    Routing::RouteKey const key(b.prefix, Routing::RoutePreference(b.preference));
    error(name, lineOf_[byKey_[k]],
          fmt::format("route {} is {} here and {} on line {}; a route is one or the other", key.pretty(),
                      kindText(b.type), kindText(a.type), lineOf_[byKey_[k - 1]]));
  }
}

}  // namespace Host
