// Host::Runner: runs one scenario on a Switch: the start, then each step in order, settling the
// scheduler before each show, and prints each show as text (as it comes) or, with json, one JSON
// document at the end. With stats it times the phases (load is the caller's: it parsed the file)
// and writes them to the error stream. Owns the Switch for the run; the program and the golden
// tests call it.
#pragma once

#include <ostream>
#include <string>

#include <nlohmann/json.hpp>

#include "host/Scenario.h"
#include "host/Switch.h"

namespace Host {

struct RunOptions {
  bool json = false;
  bool stats = false;
  double loadSeconds = 0;  // the time the caller took to read the scenario, for the stats
  // Leave the switch standing at the end (a program about to exit): the process's exit returns the
  // memory at once, where tearing down every state machine walks every route.
  bool keepAtExit = false;
};

// The text of one show: per VRF and family the installed routes, then the VRF's readiness.
[[nodiscard]] std::string showText(ShowView const& view);
// The same as JSON; the schema is in docs/scenario.md.
[[nodiscard]] nlohmann::json showJson(ShowView const& view);

// Runs the scenario; returns the program's exit status (0).
int runScenario(Scenario const& scenario, RunOptions const& options, std::ostream& out, std::ostream& err);

}  // namespace Host
