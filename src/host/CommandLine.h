// Host::runCommandLine: the bowline program's command line (CLI11): `run`, `check`, `--version`,
// `--help`, the --trace rules, and the exit codes, with the program's streams passed in so that a
// test can run a command line in process. main() is this and the process's exit.
#pragma once

#include <ostream>
#include <string>

namespace Host {

enum ExitCode : int {
  kExitOk = 0,
  kExitScenarioError = 1,  // the scenario or a route file it names has errors; nothing ran
  kExitUsageError = 2,     // the command line is wrong (options, --trace rules)
  kExitRunError = 3,       // the run stopped on an error (a step failed, or the switch did not settle)
};

struct CommandLineSetup {
  std::string version;          // "0.1.0"
  std::string defaultScenario;  // the scenario `run` reads when none is named
  // Leave the switch standing after a run (a process about to exit); false in tests.
  bool keepAtExit = false;
  // The error stream is a terminal: a long load shows its progress there.
  bool progressOnTerminal = false;
};

[[nodiscard]] int runCommandLine(int argc, char const* const* argv, CommandLineSetup const& setup, std::ostream& out,
                                 std::ostream& err);

}  // namespace Host
