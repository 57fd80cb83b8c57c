// Fuzz::ScenarioFuzzer: runs generated scenarios through the real `bowline` program and counts what
// goes wrong. Per scenario (written with its route files into a folder of its own):
//   - `bowline check F` exits 0 or 1, never on a signal;
//   - when check accepts: `bowline run F` twice and `bowline run F --json` once end with exit 0, or
//     with exit 3 ("the run stopped on an error", counted as stopped) and a message on stderr; the
//     two text runs print the same; the JSON parses and has one show per text show;
//     then F with a show, a plain restart and a show appended ends with the same route lines in its
//     last two shows (the handshake and readiness lines aside), unless the RIB before the restart
//     was not whole (routes not ready or the handshake pending: a graceful restart not verified);
//   - when check rejects: `bowline run F` exits 1 as well, without a crash.
// A program killed by the watchdog is a hang. A scenario that fails is kept, with its route files,
// the outputs and a why.txt, in the failure folder, and the log names the folder and the first lines
// of stderr.
#pragma once

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <map>
#include <string>

#include "host/fuzz/ScenarioGenerator.h"
#include "host/fuzz/Subprocess.h"

namespace BowlineTest::Fuzz {

struct FuzzOptions {
  std::string binary;                  // the bowline program
  std::filesystem::path failureDir;    // where failing scenarios are kept
  std::uint64_t seed = 1;
  double timeoutSeconds = 20;          // the watchdog, per process
  unsigned brokenPercent = 40;         // the share of broken scenarios
  unsigned runs = 2;                   // text runs of an accepted scenario compared with each other
  bool reduce = false;                 // shrink each failing scenario (reduceScenario) and keep it too
  std::ostream* log = nullptr;         // failures as they come; null: none
};

struct FuzzCounts {
  std::uint64_t scenarios = 0;
  std::uint64_t crashes = 0;  // a signal, or an exit status no rule allows
  std::uint64_t hangs = 0;
  std::uint64_t nondeterministic = 0;
  std::uint64_t restartDifferences = 0;
  std::uint64_t badJson = 0;
  std::uint64_t accepted = 0;
  std::uint64_t rejected = 0;
  std::uint64_t stopped = 0;
  std::uint64_t validRejected = 0;  // valid-mode scenarios check rejected (the generator's drift)
  std::uint64_t restartSkipped = 0;  // the RIB before the restart was not whole (a graceful restart pending)
};

class ScenarioFuzzer {
 public:
  explicit ScenarioFuzzer(FuzzOptions options);
  ~ScenarioFuzzer();
  ScenarioFuzzer(ScenarioFuzzer const&) = delete;
  ScenarioFuzzer& operator=(ScenarioFuzzer const&) = delete;

  // Generates and runs case `index` of the seed.
  void runCase(std::uint64_t index);
  // A scenario's failures: category ("crash", "hang", "nondeterministic", "restart-difference",
  // "bad-json") -> what tells it from others of its category (a crash's assertion text).
  using Failures = std::map<std::string, std::string>;

  // Runs one scenario already generated; `name` names it in the log and the failure folder.
  Failures runScenario(GeneratedScenario const& s, std::string const& name);
  // The same, counting, logging and keeping nothing, with `runs` text runs compared (a reducer's
  // question: does it still fail the same way?).
  [[nodiscard]] Failures probe(GeneratedScenario const& s, unsigned runs);

  [[nodiscard]] FuzzCounts const& counts() const { return counts_; }
  // "fuzz: N scenarios run, crashes C, hangs H, nondeterministic outputs D, restart differences R"
  // and a second line with the other counts.
  [[nodiscard]] std::string summary() const;
  // One line per distinct failure (a crash's assertion, or the category), with how often and where
  // first.
  [[nodiscard]] std::string distinctFailures() const;

 private:
  struct Case;
  // False when the outcome is a failure (counted and kept); `allowed` lists the exit statuses.
  bool expectEnd(Case& c, ProcessOutcome const& p, std::string const& what, std::initializer_list<int> allowed);
  void runAccepted(Case& c);
  void checkRestart(Case& c);
  void fail(Case& c, std::string const& category, std::string const& reason, std::string const& err);
  ProcessOutcome bowline(Case& c, std::string const& stem, std::initializer_list<std::string> args);

  FuzzOptions options_;
  FuzzCounts counts_;
  std::filesystem::path work_;  // a temporary folder, removed at the end
  bool probing_ = false;
  std::map<std::string, std::pair<std::uint64_t, std::string>> distinct_;  // signature -> count, first case
};

}  // namespace BowlineTest::Fuzz
