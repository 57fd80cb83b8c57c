#include "host/fuzz/ScenarioFuzzer.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace BowlineTest::Fuzz {

namespace fs = std::filesystem;

namespace {

void writeFile(fs::path const& p, std::string const& text) { std::ofstream(p, std::ios::binary) << text; }

std::string firstLines(std::string const& text, std::size_t n) {
  std::istringstream in(text);
  std::string line, out;
  for (std::size_t i = 0; i < n && std::getline(in, line); ++i) out += "    " + line.substr(0, 300) + "\n";
  return out;
}

// The last `n` shows of a text output, one string per show, without the "== show" line.
std::vector<std::string> lastShows(std::string const& out, std::size_t n) {
  std::vector<std::string> shows;
  std::istringstream in(out);
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind("== show", 0) == 0) {
      shows.emplace_back();
    } else if (!shows.empty()) {
      shows.back() += line + "\n";
    }
  }
  if (shows.size() > n) shows.erase(shows.begin(), shows.end() - std::ptrdiff_t(n));
  return shows;
}

// What a plain restart must leave as it was: the show without its readiness and handshake lines.
std::string routeLines(std::string const& show) {
  std::istringstream in(show);
  std::string line, out;
  while (std::getline(in, line)) {
    if (line.rfind("  handshake:", 0) != 0 && line.rfind("  ready:", 0) != 0) out += line + "\n";
  }
  return out;
}

// Whether every VRF of the show is whole: routes ready and the handshake answered. A VRF waiting
// for a graceful restart's verification is not, and a restart may rightly change it.
bool whole(std::string const& show) {
  return show.find("(pending)") == std::string::npos && show.find("routes ready: ipv4 no") == std::string::npos &&
         show.find("ipv6 no\n") == std::string::npos;
}

// The first line where two texts differ, both sides.
std::string firstDifference(std::string const& a, std::string const& b) {
  std::istringstream ia(a), ib(b);
  std::string la, lb;
  for (int line = 1;; ++line) {
    bool const ha = bool(std::getline(ia, la));
    bool const hb = bool(std::getline(ib, lb));
    if (!ha && !hb) return "no difference";
    if (!ha || !hb || la != lb) {
      return fmt::format("line {}: \"{}\" against \"{}\"", line, ha ? la : "<end>", hb ? lb : "<end>");
    }
  }
}

std::size_t countShows(std::string const& out) {
  std::size_t n = 0;
  for (std::size_t at = out.find("== show"); at != std::string::npos; at = out.find("== show", at + 1)) {
    if (at == 0 || out[at - 1] == '\n') ++n;
  }
  return n;
}

// The scenario with a show, a plain restart and a show appended; empty when it has no list of steps.
std::string withRestart(GeneratedScenario const& s) {
  YamlTree tree = s.tree;
  YamlTree* steps = tree.field("steps");
  if (!steps) steps = &tree.add("steps", YamlTree::list());
  if (steps->type() != YamlTree::Type::list) return {};
  steps->push(YamlTree::map()).add("show", "fuzz: before the restart");
  steps->push(YamlTree::map()).add("restart", YamlTree::map()).add("graceful_restart", "false");
  steps->push(YamlTree::map()).add("show", "fuzz: after the restart");
  return tree.emit();
}

// What tells one failure from another of its category: a crash by its assertion text (else by the
// way it ended), the other categories by the category alone.
std::string signatureOf(std::string const& category, std::string const& reason, std::string const& err) {
  if (category != "crash") return category;
  std::size_t const at = err.find("assertion failed: ");
  if (at == std::string::npos) return reason;
  std::size_t const end = err.find_first_of("(\n", at);
  return err.substr(at, end == std::string::npos ? std::string::npos : end - at);
}

}  // namespace

struct ScenarioFuzzer::Case {
  GeneratedScenario const& s;
  std::string name;
  fs::path dir;
  fs::path file;
  Failures failures;  // counted for this scenario
};

ScenarioFuzzer::ScenarioFuzzer(FuzzOptions options) : options_(std::move(options)) {
  std::string pattern = (fs::temp_directory_path() / "bowline-fuzz-XXXXXX").string();
  if (char* made = mkdtemp(pattern.data())) work_ = made;
}

ScenarioFuzzer::~ScenarioFuzzer() {
  std::error_code ec;
  if (!work_.empty()) fs::remove_all(work_, ec);
}

void ScenarioFuzzer::runCase(std::uint64_t index) {
  ScenarioGenerator gen(caseSeed(options_.seed, index));
  // The mode is drawn from its own seed so that a case is the same scenario whatever the mix.
  bool const broken = caseSeed(options_.seed ^ 0x5bd1e995, index) % 100 < options_.brokenPercent;
  GeneratedScenario const s = broken ? gen.broken() : gen.valid();
  std::string const name = fmt::format("seed{}-case{}", options_.seed, index);
  auto const failures = runScenario(s, name);
  if (!options_.reduce || failures.empty() || s.textEdited) return;
  // The first category found, as small as it gets; kept beside the scenario it came from.
  auto const& [category, signature] = *failures.begin();
  unsigned const runs = category == "nondeterministic" ? 8 : 2;
  GeneratedScenario const small = reduceScenario(s, [&](GeneratedScenario const& t) {
    auto const again = probe(t, runs);
    auto const it = again.find(category);
    return it != again.end() && it->second == signature;
  });
  fs::path const dir = options_.failureDir / fmt::format("{}-{}", name, category) / "reduced";
  fs::create_directories(dir);
  writeFile(dir / "scenario.yaml", small.text);
  for (GeneratedFile const& f : small.files) writeFile(dir / f.name, f.text);
  if (options_.log) *options_.log << fmt::format("  reduced to {}:\n{}", dir.string(), firstLines(small.text, 60));
}

ProcessOutcome ScenarioFuzzer::bowline(Case& c, std::string const& stem, std::initializer_list<std::string> args) {
  std::vector<std::string> argv = {options_.binary};
  argv.insert(argv.end(), args.begin(), args.end());
  return runProcess(argv, c.dir, stem, options_.timeoutSeconds);
}

void ScenarioFuzzer::fail(Case& c, std::string const& category, std::string const& reason, std::string const& err) {
  std::string const signature = signatureOf(category, reason, err);
  if (!c.failures.emplace(category, signature).second || probing_) return;
  auto& seen = distinct_[category == "crash" ? signature : category];
  if (seen.first++ == 0) seen.second = c.name;
  if (category == "crash") ++counts_.crashes;
  if (category == "hang") ++counts_.hangs;
  if (category == "nondeterministic") ++counts_.nondeterministic;
  if (category == "restart-difference") ++counts_.restartDifferences;
  if (category == "bad-json") ++counts_.badJson;
  fs::path const kept = options_.failureDir / fmt::format("{}-{}", c.name, category);
  std::error_code ec;
  fs::remove_all(kept, ec);
  fs::create_directories(kept.parent_path(), ec);
  fs::copy(c.dir, kept, fs::copy_options::recursive, ec);
  writeFile(kept / "why.txt", fmt::format("{}: {}\nmutation: {}\nstderr:\n{}", category, reason,
                                          c.s.broken ? c.s.mutation : "none (a valid scenario)", err));
  if (options_.log) {
    *options_.log << fmt::format("fuzz: {} in {}: {}\n  kept in {}\n", category, c.name, reason, kept.string());
    if (!err.empty()) *options_.log << "  stderr:\n" << firstLines(err, 5);
  }
}

bool ScenarioFuzzer::expectEnd(Case& c, ProcessOutcome const& p, std::string const& what,
                               std::initializer_list<int> allowed) {
  using End = ProcessOutcome::End;
  if (p.end == End::timedOut) {
    fail(c, "hang", fmt::format("{}: no end after {} s", what, options_.timeoutSeconds), p.err);
    return false;
  }
  if (p.end == End::exited && std::find(allowed.begin(), allowed.end(), p.code) != allowed.end()) {
    if (p.code != 3 || !p.err.empty()) return true;
    fail(c, "crash", fmt::format("{}: exit 3 without a message on stderr", what), p.err);
    return false;
  }
  fail(c, "crash", fmt::format("{}: {}", what, p.describe()), p.err);
  return false;
}

ScenarioFuzzer::Failures ScenarioFuzzer::probe(GeneratedScenario const& s, unsigned runs) {
  FuzzCounts const counts = counts_;
  unsigned const usualRuns = options_.runs;
  probing_ = true;
  options_.runs = runs;
  auto failures = runScenario(s, "probe");
  probing_ = false;
  options_.runs = usualRuns;
  counts_ = counts;
  return failures;
}

ScenarioFuzzer::Failures ScenarioFuzzer::runScenario(GeneratedScenario const& s, std::string const& name) {
  ++counts_.scenarios;
  Case c{s, name, work_ / name, work_ / name / "scenario.yaml", {}};
  std::error_code ec;
  fs::remove_all(c.dir, ec);
  fs::create_directories(c.dir);
  writeFile(c.file, s.text);
  for (GeneratedFile const& f : s.files) writeFile(c.dir / f.name, f.text);

  ProcessOutcome const check = bowline(c, "check", {"check", c.file.string()});
  if (expectEnd(c, check, "check", {0, 1})) {
    if (check.code == 0) {
      ++counts_.accepted;
      runAccepted(c);
    } else {
      ++counts_.rejected;
      if (!s.broken) {
        ++counts_.validRejected;
        if (options_.log && !probing_ && std::getenv("BOWLINE_FUZZ_VERBOSE")) {
          *options_.log << fmt::format("fuzz: valid {} rejected:\n{}", name, firstLines(check.err, 3));
        }
      }
      ProcessOutcome const run = bowline(c, "run", {"run", c.file.string()});
      if (expectEnd(c, run, "run of a rejected scenario", {1, 3}) && run.code != 1) {
        fail(c, "crash", "check rejected it but run did not (exit 3)", run.err);
      }
    }
  }
  fs::remove_all(c.dir, ec);
  return c.failures;
}

void ScenarioFuzzer::runAccepted(Case& c) {
  ProcessOutcome const first = bowline(c, "run1", {"run", c.file.string()});
  if (!expectEnd(c, first, "run", {0, 3})) return;
  bool stopped = first.code == 3;
  for (unsigned run = 2; run <= std::max(2u, options_.runs); ++run) {
    ProcessOutcome const again = bowline(c, fmt::format("run{}", run), {"run", c.file.string()});
    if (!expectEnd(c, again, fmt::format("run {}", run), {0, 3})) return;
    stopped = stopped || again.code == 3;
    if (first.code != again.code || first.out != again.out) {
      fail(c, "nondeterministic",
           first.code != again.code
               ? fmt::format("run 1 ended with {}, run {} with {}", first.describe(), run, again.describe())
               : fmt::format("runs 1 and {} printed different output: {}", run, firstDifference(first.out, again.out)),
           again.err);
      break;
    }
  }
  ProcessOutcome const json = bowline(c, "json", {"run", c.file.string(), "--json"});
  if (!expectEnd(c, json, "run --json", {0, 3})) return;
  if (json.code != first.code) {
    fail(c, "nondeterministic", fmt::format("run ended with {}, run --json with {}", first.describe(),
                                            json.describe()), json.err);
  } else if (json.code == 0) {
    auto const doc = nlohmann::json::parse(json.out, nullptr, false);
    if (doc.is_discarded() || !doc.contains("shows") || !doc["shows"].is_array()) {
      fail(c, "bad-json", "the output of run --json is not a document with shows", json.err);
    } else if (doc["shows"].size() != countShows(first.out)) {
      fail(c, "bad-json", fmt::format("run --json printed {} shows, run {}", doc["shows"].size(),
                                      countShows(first.out)), json.err);
    }
  }
  if (stopped) {
    ++counts_.stopped;
    return;
  }
  checkRestart(c);
}

void ScenarioFuzzer::checkRestart(Case& c) {
  if (c.s.textEdited) return;  // no tree to append the steps to
  std::string const text = withRestart(c.s);
  if (text.empty()) return;
  fs::path const file = c.dir / "scenario-restart.yaml";
  writeFile(file, text);
  ProcessOutcome const run = bowline(c, "restart", {"run", file.string()});
  if (!expectEnd(c, run, "run with a restart appended", {0, 3})) return;
  if (run.code == 3) {
    // A graceful restart still waiting kept the configuration from running before: the restart
    // is its first run, and a configuration that cannot settle stops there.
    auto const before = lastShows(run.out, 1);
    if (before.size() == 1 && !whole(before[0]))
      ++counts_.restartSkipped;
    else
      fail(c, "restart-difference", "the run stopped after the appended restart", run.err);
    return;
  }
  auto const shows = lastShows(run.out, 2);
  if (shows.size() != 2) {
    fail(c, "restart-difference", fmt::format("{} shows where at least 2 were expected", shows.size()), run.err);
  } else if (!whole(shows[0])) {
    ++counts_.restartSkipped;
  } else if (routeLines(shows[0]) != routeLines(shows[1])) {
    fail(c, "restart-difference",
         "the RIB after the restart differs: " + firstDifference(routeLines(shows[0]), routeLines(shows[1])),
         run.err);
  }
}

std::string ScenarioFuzzer::distinctFailures() const {
  std::string out;
  for (auto const& [signature, seen] : distinct_) {
    out += fmt::format("fuzz: {} x {} (first: {})\n", seen.first, signature, seen.second);
  }
  return out;
}

std::string ScenarioFuzzer::summary() const {
  FuzzCounts const& n = counts_;
  return fmt::format(
      "fuzz: {} scenarios run, crashes {}, hangs {}, nondeterministic outputs {}, restart differences {}\n"
      "fuzz: accepted {}, rejected {} (valid-mode {}), stopped {}, bad JSON {}, restart checks skipped {}; "
      "seed {}\n",
      n.scenarios, n.crashes, n.hangs, n.nondeterministic, n.restartDifferences, n.accepted, n.rejected,
      n.validRejected, n.stopped, n.badJson, n.restartSkipped, options_.seed);
}

}  // namespace BowlineTest::Fuzz
