// The scenario fuzzer: generated scenarios, valid and broken, through the real `bowline` program.
// No scenario may crash it, hang it, print different output from one run to the next, or end with a
// different RIB after a plain restart.
//
//   BOWLINE_FUZZ_COUNT   scenarios to run (default 300)
//   BOWLINE_FUZZ_SEED    the seed (default fixed); case i of a seed is always the same scenario
//   BOWLINE_FUZZ_FIRST   the index of the first case (to run one case again: FIRST=i COUNT=1)
//   BOWLINE_FUZZ_TIMEOUT the watchdog per process, in seconds (default 20)
//   BOWLINE_FUZZ_RUNS    text runs compared per accepted scenario (default 2)
//   BOWLINE_FUZZ_REDUCE  1: shrink each failing scenario and keep the small one beside it
//   BOWLINE_FUZZ_VERBOSE also log the valid-mode scenarios check rejected
// Failing scenarios are kept under fuzz-failures/ in the build folder (scripts/fuzz.sh runs longer).
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "host/ScenarioParser.h"
#include "host/fuzz/ScenarioFuzzer.h"
#include "host/fuzz/ScenarioGenerator.h"

#ifndef BOWLINE_FUZZ_BINARY
#error "BOWLINE_FUZZ_BINARY: the path of the bowline program, from CMake"
#endif
#ifndef BOWLINE_FUZZ_FAILURES
#define BOWLINE_FUZZ_FAILURES "fuzz-failures"
#endif

namespace BowlineTest::Fuzz {
namespace {

namespace fs = std::filesystem;

std::uint64_t envNumber(char const* name, std::uint64_t fallback) {
  char const* v = std::getenv(name);
  return v && *v ? std::strtoull(v, nullptr, 10) : fallback;
}

constexpr std::uint64_t kSeed = 20261123;

// A folder of its own under the system's temporary folder, removed at the end.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (fs::temp_directory_path() / "bowline-fuzz-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~TempDir() {
    std::error_code ec;
    fs::remove_all(path_, ec);
  }
  [[nodiscard]] fs::path const& path() const { return path_; }

 private:
  fs::path path_;
};

void writeScenario(fs::path const& dir, GeneratedScenario const& s) {
  std::ofstream(dir / "scenario.yaml", std::ios::binary) << s.text;
  for (auto const& f : s.files) std::ofstream(dir / f.name, std::ios::binary) << f.text;
}

TEST(ScenarioFuzzTest, TheSameSeedMakesTheSameScenario) {
  for (std::uint64_t i = 0; i < 20; ++i) {
    SCOPED_TRACE(i);
    for (bool broken : {false, true}) {
      ScenarioGenerator a(caseSeed(kSeed, i)), b(caseSeed(kSeed, i));
      GeneratedScenario const x = broken ? a.broken() : a.valid();
      GeneratedScenario const y = broken ? b.broken() : b.valid();
      EXPECT_EQ(x.text, y.text);
      ASSERT_EQ(x.files.size(), y.files.size());
      for (std::size_t f = 0; f < x.files.size(); ++f) EXPECT_EQ(x.files[f].text, y.files[f].text);
    }
  }
  ScenarioGenerator a(caseSeed(kSeed, 0)), b(caseSeed(kSeed, 1));
  EXPECT_NE(a.valid().text, b.valid().text);
}

// Valid mode writes what the parser accepts: every section and step kind, in the parser's own words.
// Broken mode is mostly rejected.
TEST(ScenarioFuzzTest, ValidScenariosAreAcceptedAndCoverEveryStepBrokenOnesMostlyRejected) {
  TempDir dir;
  std::set<std::string> stepKinds;
  std::set<std::string> sections;
  int rejected = 0;
  int const n = 200;
  for (int i = 0; i < 2 * n; ++i) {
    ScenarioGenerator gen(caseSeed(kSeed, std::uint64_t(i % n)));
    GeneratedScenario s = i < n ? gen.valid() : gen.broken();
    writeScenario(dir.path(), s);
    auto parse = Host::ScenarioParser::parseFile((dir.path() / "scenario.yaml").string());
    if (i >= n) {
      EXPECT_FALSE(s.mutation.empty());
      rejected += !parse.ok();
      continue;
    }
    EXPECT_TRUE(parse.ok()) << "case " << i << ":\n" << parse.errorText() << "\n" << s.text;
    for (auto const& [key, value] : s.tree.fields()) sections.insert(key);
    if (YamlTree* steps = s.tree.field("steps")) {
      for (auto const& step : steps->items()) stepKinds.insert(step.isScalar() ? step.text() : step.fields()[0].first);
    }
  }
  EXPECT_EQ(sections.size(), 9u);
  EXPECT_EQ(stepKinds.size(), 16u);
  EXPECT_GT(rejected, n / 2);
}

// The driver itself, on stand-ins for the program that fail in each way it counts.
class FakeBowline : public ::testing::Test {
 protected:
  void fake(std::string const& body) {
    program_ = dir_.path() / "fake-bowline";
    std::ofstream(program_) << "#!/bin/sh\n" << body << "\n";
    fs::permissions(program_, fs::perms::owner_all);
  }
  FuzzCounts run(int scenarios, double timeout = 20) {
    FuzzOptions o;
    o.binary = program_.string();
    o.failureDir = dir_.path() / "failures";
    o.seed = kSeed;
    o.timeoutSeconds = timeout;
    o.brokenPercent = 0;
    ScenarioFuzzer f(o);
    for (int i = 0; i < scenarios; ++i) f.runCase(std::uint64_t(i));
    return f.counts();
  }
  [[nodiscard]] std::size_t kept() const {
    auto const d = dir_.path() / "failures";
    return fs::exists(d) ? std::size_t(std::distance(fs::directory_iterator(d), fs::directory_iterator())) : 0;
  }

  TempDir dir_;
  fs::path program_;
};

TEST_F(FakeBowline, AProgramThatPrintsTheSameEveryTimePasses) {
  fake("[ \"$1\" = check ] && exit 0\n"
       "for a in \"$@\"; do [ \"$a\" = --json ] && { echo '{\"shows\": [{}, {}]}'; exit 0; }; done\n"
       "printf '== show: a\\nvrf default (id 0)\\n== show: b\\nvrf default (id 0)\\n'");
  FuzzCounts const n = run(3);
  EXPECT_EQ(n.scenarios, 3u);
  EXPECT_EQ(n.accepted, 3u);
  EXPECT_EQ(n.crashes + n.hangs + n.nondeterministic + n.restartDifferences + n.badJson, 0u);
  EXPECT_EQ(kept(), 0u);
}

TEST_F(FakeBowline, AbortsExitStatusesHangsAndDifferencesAreCountedAndKept) {
  fake("kill -ABRT $$");
  EXPECT_EQ(run(2).crashes, 2u);
  EXPECT_EQ(kept(), 2u);

  fake("[ \"$1\" = check ] && exit 1\nexit 0");  // check rejects, run accepts
  EXPECT_EQ(run(1).crashes, 1u);

  fake("[ \"$1\" = check ] && exit 0\nexit 3");  // stopped without a message
  EXPECT_EQ(run(1).crashes, 1u);

  fake("[ \"$1\" = check ] && exit 0\necho stopped >&2\nexit 3");
  FuzzCounts const stopped = run(1);
  EXPECT_EQ(stopped.stopped, 1u);
  EXPECT_EQ(stopped.crashes, 0u);

  fake("[ \"$1\" = check ] && exit 0\nexec sleep 600");
  EXPECT_EQ(run(1, 0.5).hangs, 1u);

  fake("[ \"$1\" = check ] && exit 0\necho '== show'\ncat /proc/sys/kernel/random/uuid");
  EXPECT_EQ(run(1).nondeterministic, 1u);

  // The RIB printed after the appended restart differs from the one before it.
  fake("[ \"$1\" = check ] && exit 0\n[ \"$2\" = --json ] || [ \"$3\" = --json ] && "
       "{ echo '{\"shows\": [{}]}'; exit 0; }\n"
       "echo '== show: x'\necho '  route a'\n"
       "case \"$2\" in *restart*) echo '== show: y'; echo '  route b';; esac");
  EXPECT_EQ(run(1).restartDifferences, 1u);
}

TEST(ScenarioFuzzTest, GeneratedScenariosNeverCrashHangOrDiffer) {
  FuzzOptions o;
  o.binary = BOWLINE_FUZZ_BINARY;
  o.failureDir = BOWLINE_FUZZ_FAILURES;
  o.seed = envNumber("BOWLINE_FUZZ_SEED", kSeed);
  o.timeoutSeconds = double(envNumber("BOWLINE_FUZZ_TIMEOUT", 20));
  o.log = &std::cout;
  o.reduce = envNumber("BOWLINE_FUZZ_REDUCE", 0) != 0;
  o.runs = unsigned(envNumber("BOWLINE_FUZZ_RUNS", 2));
  std::uint64_t const first = envNumber("BOWLINE_FUZZ_FIRST", 0);
  std::uint64_t const count = envNumber("BOWLINE_FUZZ_COUNT", 300);
  ScenarioFuzzer fuzzer(o);
  for (std::uint64_t i = first; i < first + count; ++i) fuzzer.runCase(i);
  std::cout << fuzzer.distinctFailures() << fuzzer.summary() << std::flush;
  FuzzCounts const& n = fuzzer.counts();
  EXPECT_EQ(n.crashes, 0u);
  EXPECT_EQ(n.hangs, 0u);
  EXPECT_EQ(n.nondeterministic, 0u);
  EXPECT_EQ(n.restartDifferences, 0u);
  EXPECT_EQ(n.badJson, 0u);
}

}  // namespace
}  // namespace BowlineTest::Fuzz
