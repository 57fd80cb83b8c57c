// Host trace rules: the --trace rules of the host program, checked before a run. The library
// registers a facility when its first statement runs, so before a run the registry knows none of
// them; this file names the facilities of the library and of the stand-in agents (a test keeps the
// list equal to the ZEL_TRACE_FACILITY declarations of src/), registers them, and refuses a rule
// whose pattern matches none of them - a misspelt facility would otherwise trace nothing, silently.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Host {

// Every trace facility of the program, sorted.
[[nodiscard]] std::span<std::string_view const> traceFacilities();

// Applies one rule string ("IpRib::RouteStatusSm=0-9,StaticRoute::*=6", as BOWLINE_TRACE takes it)
// after checking that each of its patterns names a facility; the error, or empty when it applied.
[[nodiscard]] std::string traceRuleIs(std::string_view rule);

}  // namespace Host
