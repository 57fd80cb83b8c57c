// Host::runCommandLine: the version, the help's exit codes, --trace taking one rule per occurrence
// (the scenario after it is the scenario, not a second rule), a rule naming no facility refused as
// a usage error, and the exit code of each outcome. The trace facility list is the one the sources
// declare.
#include "host/CommandLine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/TraceRules.h"

namespace {

using namespace Host;

std::filesystem::path scenarioDir() { return std::filesystem::path(__FILE__).parent_path() / "scenarios"; }

struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

Outcome commandLine(std::vector<std::string> args) {
  args.insert(args.begin(), "bowline");
  std::vector<char const*> argv;
  for (auto const& a : args) argv.push_back(a.c_str());
  std::ostringstream out, err;
  CommandLineSetup const setup{"1.2.3", (scenarioDir() / "full.yaml").string(), false, false};
  Outcome o;
  o.status = runCommandLine(int(argv.size()), argv.data(), setup, out, err);
  o.out = out.str();
  o.err = err.str();
  return o;
}

TEST(CommandLineTest, VersionHelpAndExitCodes) {
  Outcome const version = commandLine({"--version"});
  EXPECT_EQ(version.status, kExitOk);
  EXPECT_EQ(version.out, "bowline 1.2.3\n");

  Outcome const help = commandLine({"run", "--help"});
  EXPECT_EQ(help.status, kExitOk);
  EXPECT_NE(help.out.find("Exit codes: 0 ok; 1 the scenario"), std::string::npos) << help.out;

  std::string const full = (scenarioDir() / "full.yaml").string();
  Outcome const good = commandLine({"check", full});
  EXPECT_EQ(good.status, kExitOk);
  EXPECT_EQ(good.out, full + ": ok\n");

  Outcome const bad = commandLine({"check", (scenarioDir() / "no-such.yaml").string()});
  EXPECT_EQ(bad.status, kExitScenarioError);
  EXPECT_NE(bad.err.find("no-such.yaml: cannot read the file"), std::string::npos) << bad.err;

  Outcome const dir = commandLine({"check", scenarioDir().string()});
  EXPECT_EQ(dir.status, kExitScenarioError);
  EXPECT_NE(dir.err.find("is a directory, not a regular file"), std::string::npos) << dir.err;

  EXPECT_EQ(commandLine({"check", "--bogus", full}).status, kExitUsageError);
  EXPECT_EQ(commandLine({}).status, kExitUsageError);
  EXPECT_EQ(commandLine({"check"}).status, kExitUsageError);
}

TEST(CommandLineTest, TraceTakesOneRulePerOccurrence) {
  // 1. The file after a rule is the scenario: here a missing one, so the run stops at reading it.
  std::string const missing = (scenarioDir() / "no-such.yaml").string();
  Outcome const one = commandLine({"run", "--trace", "StaticRoute::*=0", missing});
  EXPECT_EQ(one.status, kExitScenarioError) << one.err;
  EXPECT_NE(one.err.find("no-such.yaml: cannot read the file"), std::string::npos) << one.err;

  // 2. Two occurrences, two rules.
  Outcome const two = commandLine({"run", "--trace", "IpRib::*=0", "--trace", "RouteInput::ContainerSm=0", missing});
  EXPECT_EQ(two.status, kExitScenarioError) << two.err;

  // 3. A pattern that names no facility is a usage error, found before the scenario is read.
  Outcome const unknown = commandLine({"run", "--trace", "StaticRoute::RouteConfgSm=6", missing});
  EXPECT_EQ(unknown.status, kExitUsageError);
  EXPECT_NE(unknown.err.find("no trace facility is named 'StaticRoute::RouteConfgSm'"), std::string::npos)
      << unknown.err;
  EXPECT_EQ(commandLine({"run", "--trace", "Nothing::*=6", missing}).status, kExitUsageError);
  EXPECT_EQ(commandLine({"run", "--trace", "flit:Nothing=1", missing}).status, kExitUsageError);
  // Bad levels are the trace rules' own error.
  EXPECT_EQ(commandLine({"run", "--trace", "IpRib::IntfSm=99", missing}).status, kExitUsageError);
}

TEST(CommandLineTest, TheFacilityListIsTheOneTheSourcesDeclare) {
  std::filesystem::path const src = std::filesystem::path(__FILE__).parent_path().parent_path().parent_path() / "src";
  std::string const declaration = "ZEL_TRACE_FACILITY(\"";
  std::set<std::string> declared;
  for (auto const& entry : std::filesystem::recursive_directory_iterator(src)) {
    if (entry.path().extension() != ".cpp") continue;
    std::ifstream in(entry.path());
    for (std::string line; std::getline(in, line);) {
      if (!line.starts_with(declaration)) continue;
      std::size_t const start = declaration.size();
      declared.insert(line.substr(start, line.find('"', start) - start));
    }
  }
  std::set<std::string> listed;
  for (std::string_view f : traceFacilities()) listed.emplace(f);
  EXPECT_EQ(listed, declared);
}

}  // namespace
