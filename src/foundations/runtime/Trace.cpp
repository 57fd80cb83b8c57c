#include "foundations/runtime/Trace.h"

#include <charconv>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace Zel {

namespace {

constexpr std::string_view flitPrefix = "flit:";

std::string_view trimmed(std::string_view text) {
  auto const first = text.find_first_not_of(" \t\n");
  if (first == std::string_view::npos) return {};
  auto const last = text.find_last_not_of(" \t\n");
  return text.substr(first, last - first + 1);
}

// How closely a pattern names a facility, or -1 if it does not: an exact name beats any wildcard,
// and a wildcard with a longer prefix beats one with a shorter.
int matchRank(std::string_view pattern, std::string_view name) {
  if (!pattern.empty() && pattern.back() == '*') {
    auto const prefix = pattern.substr(0, pattern.size() - 1);
    return name.starts_with(prefix) ? int(prefix.size()) : -1;
  }
  return pattern == name ? INT_MAX : -1;
}

std::string patternError(std::string_view pattern) {
  if (pattern.empty()) return "empty facility pattern";
  auto const star = pattern.find('*');
  if (star != std::string_view::npos && star != pattern.size() - 1) {
    return fmt::format("'*' is allowed only at the end of facility pattern '{}'", pattern);
  }
  if (pattern.find_first_of(" \t\n=,") != std::string_view::npos) {
    return fmt::format("bad character in facility pattern '{}'", pattern);
  }
  return {};
}

std::optional<int> levelOf(std::string_view text) {
  int value = 0;
  auto const [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size() || value < 0 || value >= traceLevelCount) {
    return std::nullopt;
  }
  return value;
}

// Adds one level term to a mask: "6", "0-9", "all", or "none" (which clears it). False if the term
// is none of these.
bool levelsAdded(std::string_view term, std::uint16_t& mask) {
  if (term == "all") {
    mask = 0xffff;
    return true;
  }
  if (term == "none") {
    mask = 0;
    return true;
  }
  auto const dash = term.find('-');
  auto const low = levelOf(term.substr(0, dash));
  auto const high = dash == std::string_view::npos ? low : levelOf(term.substr(dash + 1));
  if (!low || !high || *low > *high) return false;
  for (int level = *low; level <= *high; ++level) mask = std::uint16_t(mask | (1u << level));
  return true;
}

}  // namespace

void TraceHandle::halfIs(int shift, std::uint16_t mask) noexcept {
  std::uint32_t const keep = ~(std::uint32_t(0xffff) << shift);
  std::uint32_t old = bits_.load(std::memory_order_relaxed);
  while (!bits_.compare_exchange_weak(old, (old & keep) | (std::uint32_t(mask) << shift),
                                      std::memory_order_relaxed)) {
  }
}

std::string TraceLine::text(bool withLocation) const {
  std::string out = fmt::format("{}[{}] {}", facility, level, message);
  if (withLocation) {
    std::string_view path = file ? file : "";
    if (auto const slash = path.rfind('/'); slash != std::string_view::npos) path.remove_prefix(slash + 1);
    fmt::format_to(std::back_inserter(out), " ({}:{})", path, line);
  }
  return out;
}

struct TraceRegistry::Rules {
  std::map<std::string, std::uint16_t, std::less<>> byPattern;

  [[nodiscard]] std::optional<std::uint16_t> match(std::string_view name) const {
    int best = -1;
    std::optional<std::uint16_t> mask;
    for (auto const& [pattern, patternMask] : byPattern) {
      if (int const rank = matchRank(pattern, name); rank > best) {
        best = rank;
        mask = patternMask;
      }
    }
    return mask;
  }
};

TraceRegistry::TraceRegistry() : traceRules_(std::make_unique<Rules>()), flitRules_(std::make_unique<Rules>()) {
  if (char const* rules = std::getenv("BOWLINE_TRACE")) {
    environmentError_ = traceRulesIs(rules);
    if (!environmentError_.empty()) fmt::print(stderr, "BOWLINE_TRACE: {}\n", environmentError_);
  }
}

TraceRegistry::~TraceRegistry() = default;

TraceRegistry& TraceRegistry::instance() {
  static TraceRegistry* registry = new TraceRegistry;
  return *registry;
}

TraceHandle& TraceRegistry::handle(std::string_view facility) {
  std::lock_guard lock(mutex_);
  auto it = handles_.find(facility);
  if (it == handles_.end()) {
    auto const mask = traceRules_->match(facility).value_or(0);
    auto const flitMask = flitRules_->match(facility).value_or(flitDefaultMask);
    std::unique_ptr<TraceHandle> created(new TraceHandle(*this, facility, mask, flitMask));
    it = handles_.emplace(std::string(facility), std::move(created)).first;
  }
  return *it->second;
}

TraceHandle* TraceRegistry::handleIfExists(std::string_view facility) const {
  std::lock_guard lock(mutex_);
  auto const it = handles_.find(facility);
  return it == handles_.end() ? nullptr : it->second.get();
}

std::vector<TraceHandle const*> TraceRegistry::handles() const {
  std::lock_guard lock(mutex_);
  std::vector<TraceHandle const*> out;
  out.reserve(handles_.size());
  for (auto const& [name, handle] : handles_) out.push_back(handle.get());
  return out;
}

std::string TraceRegistry::traceLevelsIs(std::string_view pattern, std::uint16_t mask) {
  return levelsIs(*traceRules_, pattern, mask);
}

std::string TraceRegistry::flitLevelsIs(std::string_view pattern, std::uint16_t mask) {
  return levelsIs(*flitRules_, pattern, mask);
}

std::string TraceRegistry::levelsIs(Rules& rules, std::string_view pattern, std::uint16_t mask) {
  if (auto error = patternError(pattern); !error.empty()) return error;
  std::lock_guard lock(mutex_);
  rules.byPattern.insert_or_assign(std::string(pattern), mask);
  reapply(rules, pattern);
  return {};
}

// Only the handles the changed pattern names take their levels from the rules again, so that a mask
// set directly on another handle stays.
void TraceRegistry::reapply(Rules const& rules, std::string_view pattern) {
  bool const flit = &rules == flitRules_.get();
  for (auto const& [name, handle] : handles_) {
    if (matchRank(pattern, name) < 0) continue;
    auto const mask = *rules.match(name);
    if (flit) {
      handle->flitMaskIs(mask);
    } else {
      handle->maskIs(mask);
    }
  }
}

std::string TraceRegistry::traceRulesIs(std::string_view rules) {
  struct Item {
    bool flit = false;
    std::string pattern;
    std::uint16_t mask = 0;
    std::string error;
    std::string text;
  };
  std::string errors;
  // The item being read; a plain value with a flag (GCC 12 at -O3 misreads an optional here).
  Item item;
  bool haveItem = false;
  auto finish = [&] {
    if (!haveItem) return;
    if (item.error.empty()) {
      item.error = item.flit ? flitLevelsIs(item.pattern, item.mask) : traceLevelsIs(item.pattern, item.mask);
    }
    if (!item.error.empty()) {
      fmt::format_to(std::back_inserter(errors), "{}{} in '{}'", errors.empty() ? "" : "; ", item.error, item.text);
    }
    haveItem = false;
  };

  std::size_t start = 0;
  while (start <= rules.size()) {
    auto const comma = std::min(rules.find(',', start), rules.size());
    auto const token = trimmed(rules.substr(start, comma - start));
    start = comma + 1;
    if (token.empty()) continue;
    auto const eq = token.find('=');
    if (eq == std::string_view::npos) {
      // A further level of the item before, or alone at the start: levels of every facility.
      if (!haveItem) {
        item = Item{};
        haveItem = true;
        item.pattern = "*";
      }
      item.text += item.text.empty() ? "" : ",";
      item.text += token;
      if (!levelsAdded(token, item.mask) && item.error.empty()) {
        item.error = fmt::format("bad trace level '{}'", token);
      }
      continue;
    }
    finish();
    item = Item{};
    haveItem = true;
    item.text = token;
    auto pattern = trimmed(token.substr(0, eq));
    auto const levels = trimmed(token.substr(eq + 1));
    if (pattern.starts_with(flitPrefix)) {
      item.flit = true;
      pattern.remove_prefix(flitPrefix.size());
    }
    item.pattern = pattern;
    item.error = patternError(pattern);
    if (item.error.empty() && !levelsAdded(levels, item.mask)) {
      item.error = fmt::format("bad trace level '{}'", levels);
    }
  }
  finish();
  return errors;
}

void TraceRegistry::sinkIs(TraceSink sink) { sink_ = std::move(sink); }

void TraceRegistry::emit(TraceLine const& line) const {
  if (sink_) {
    sink_(line);
    return;
  }
  std::string text = line.text(locationShown_);
  text += '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
}

TraceHandle& traceHandle(std::string_view facility) { return TraceRegistry::instance().handle(facility); }

std::string traceLevelsIs(std::string_view pattern, std::uint16_t mask) {
  return TraceRegistry::instance().traceLevelsIs(pattern, mask);
}

std::string flitLevelsIs(std::string_view pattern, std::uint16_t mask) {
  return TraceRegistry::instance().flitLevelsIs(pattern, mask);
}

std::string traceRulesIs(std::string_view rules) { return TraceRegistry::instance().traceRulesIs(rules); }

void traceSinkIs(TraceSink sink) { TraceRegistry::instance().sinkIs(std::move(sink)); }

void traceLocationShownIs(bool shown) { TraceRegistry::instance().locationShownIs(shown); }

namespace TraceImpl {

void fmtraceEmit(TraceHandle const& handle, int level, char const* file, char const* function, int line,
                 std::string_view prefix, fmt::string_view format, fmt::format_args args) {
  fmt::memory_buffer buffer;
  buffer.append(prefix);
  try {
    fmt::vformat_to(std::back_inserter(buffer), format, args);
  } catch (fmt::format_error const& error) {
    // Only a runtime failure gets here (a null C string, say): the format was checked when compiled.
    fmt::format_to(std::back_inserter(buffer), " <format error: {}> {}", error.what(),
                   std::string_view(format.data(), format.size()));
  }
  handle.registry().emit(TraceLine{handle.name(), level, file, line, function, {buffer.data(), buffer.size()}});
}

}  // namespace TraceImpl

TraceHelper::~TraceHelper() {
  handle_.registry().emit(TraceLine{handle_.name(), level_, file_, line_, function_, stream_.view()});
}

}  // namespace Zel
