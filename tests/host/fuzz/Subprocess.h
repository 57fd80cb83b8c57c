// Fuzz::runProcess: runs a program as a subprocess, its standard output and error into files of a
// folder (read back once it ends) and its input from /dev/null, under a wall-clock watchdog that
// kills it past a time limit. The watchdog is a safety net against a hung program, never a pass
// condition: a program killed by it is reported as timed out.
//
// Sanitizer builds: the child runs with ASAN_OPTIONS and UBSAN_OPTIONS asking a sanitizer to abort
// on an error (prepended to whatever the environment sets), so that a report is a signal and never
// an exit status the caller could take for an ordinary one.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace BowlineTest::Fuzz {

struct ProcessOutcome {
  enum class End : std::uint8_t { exited, signalled, timedOut, failedToStart };
  End end = End::failedToStart;
  int code = 0;  // the exit status, or the signal
  std::string out;
  std::string err;

  // "exit 3", "signal 6 (Aborted)", "killed after 20 s", "could not start: ..."
  [[nodiscard]] std::string describe() const;
};

// Runs argv[0] (a path) with the arguments; `stem` names the output files in `dir` (stem.out,
// stem.err).
[[nodiscard]] ProcessOutcome runProcess(std::vector<std::string> const& argv, std::filesystem::path const& dir,
                                        std::string const& stem, double timeoutSeconds);

}  // namespace BowlineTest::Fuzz
