#include "host/TraceRules.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "foundations/runtime/Trace.h"

namespace Host {

namespace {

constexpr std::string_view kFacilities[] = {
    "IpRib::IntfSm",           "IpRib::ProtocolRootSm",      "IpRib::RouteStatusSm",       "IpRib::ViaMetricStatusSm",
    "Platform::BfdAgent",      "Platform::InterfaceAgent",   "Platform::RibAgent",         "Platform::VrfAgent",
    "RouteInput::ContainerSm", "RouteInput::MartianRouteSm", "StaticRoute::RouteConfigSm",
};

[[nodiscard]] bool matchesAny(std::string_view pattern) {
  if (!pattern.empty() && pattern.back() == '*') {
    std::string_view const prefix = pattern.substr(0, pattern.size() - 1);
    return std::any_of(std::begin(kFacilities), std::end(kFacilities),
                       [&](std::string_view f) { return f.starts_with(prefix); });
  }
  return std::find(std::begin(kFacilities), std::end(kFacilities), pattern) != std::end(kFacilities);
}

[[nodiscard]] std::string_view trimmed(std::string_view t) {
  while (!t.empty() && (t.front() == ' ' || t.front() == '\t')) t.remove_prefix(1);
  while (!t.empty() && (t.back() == ' ' || t.back() == '\t')) t.remove_suffix(1);
  return t;
}

}  // namespace

std::span<std::string_view const> traceFacilities() { return kFacilities; }

std::string traceRuleIs(std::string_view rule) {
  // Each item "PATTERN=LEVELS" (or "flit:PATTERN=LEVELS"); a term without '=' adds levels.
  std::size_t start = 0;
  while (start <= rule.size()) {
    std::size_t const comma = std::min(rule.find(',', start), rule.size());
    std::string_view const item = trimmed(rule.substr(start, comma - start));
    start = comma + 1;
    std::size_t const eq = item.find('=');
    if (eq == std::string_view::npos) continue;
    std::string_view pattern = trimmed(item.substr(0, eq));
    if (pattern.starts_with("flit:")) pattern.remove_prefix(5);
    if (!pattern.empty() && !matchesAny(pattern)) {
      return fmt::format("no trace facility is named '{}'; the facilities are: {}", pattern,
                         fmt::join(kFacilities, ", "));
    }
  }
  for (std::string_view f : kFacilities) (void)Zel::traceHandle(f);
  return Zel::traceRulesIs(rule);
}

}  // namespace Host
