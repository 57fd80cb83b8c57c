// Host::Runner: runs one scenario on a Switch: the start, then each step in order, settling the
// scheduler before each show, and prints each show as it comes, as text or as a member of one JSON
// document. With stats it times the phases (load is the caller's: it parsed the file)
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
  // Tear the switch down even where it would be kept, so that the stats time the teardown.
  bool teardown = false;
  // Print the live runtime objects by type (bytes, count) after the run, largest first.
  bool memoryByType = false;
  // Show a long settle's progress on the error stream (a terminal).
  bool progress = false;
};

// The text of one show: per VRF and family the installed routes, then the VRF's readiness.
[[nodiscard]] std::string showText(ShowView const& view);
// The same as JSON; the schema is in docs/scenario.md.
[[nodiscard]] nlohmann::json showJson(ShowView const& view);

// The program's exit status when a run stops on an error (a scenario that does not settle).
inline constexpr int kExitRunStopped = 3;

// The process's peak resident memory so far, in MiB.
[[nodiscard]] double peakMemoryMiB();
// The runtime's live objects by type, largest first: one line each, after a line of totals.
[[nodiscard]] std::string memoryByTypeText();

// The JSON text of a document as the program prints it (indented by two; never throws).
[[nodiscard]] std::string jsonText(nlohmann::json const& doc);
// "step 3 (interface, line 21)": how errors and abort reports name a step (index from 0).
[[nodiscard]] std::string stepText(Step const& step, std::size_t index);
// Makes an abort of the process say which step of the run it was in (for the program, not tests).
void installAbortReport();

// Runs the scenario, printing each show as it comes (flushed). Returns 0, or kExitRunStopped when a
// step failed or the switch did not settle: the error, naming the step, goes to `err`, and what was
// printed before stays printed (a JSON document is closed).
int runScenario(Scenario const& scenario, RunOptions const& options, std::ostream& out, std::ostream& err);

}  // namespace Host
