// The host program on the scenarios under tests/host/golden (and the shipped default scenario):
// each run's output must be the expected output kept beside it. BOWLINE_UPDATE_GOLDEN=1 rewrites the
// expected files from the current output (review the diff before committing it). Also: a run that
// cannot settle stops, naming the route and the via.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "host/Runner.h"
#include "host/ScenarioParser.h"
#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

namespace fs = std::filesystem;

fs::path const kGoldenDir = fs::path(__FILE__).parent_path() / "golden";
fs::path const kDefaultScenario = fs::path(__FILE__).parent_path().parent_path().parent_path() / "scenarios" /
                                  "default.yaml";

std::string readFile(fs::path const& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

class GoldenTest : public RuntimeFixture {
 protected:
  // Runs the scenario and compares (or, when asked, rewrites) the expected output.
  void expectGolden(fs::path const& scenarioPath, fs::path const& expectedPath, bool json) {
    auto parse = Host::parseScenario(scenarioPath.string());
    ASSERT_TRUE(parse.ok()) << parse.errorText();
    std::ostringstream out;
    std::ostringstream err;
    Host::RunOptions options;
    options.json = json;
    EXPECT_EQ(Host::runScenario(*parse.scenario, options, out, err), 0);
    if (std::getenv("BOWLINE_UPDATE_GOLDEN")) {
      std::ofstream(expectedPath) << out.str();
      return;
    }
    ASSERT_TRUE(fs::exists(expectedPath)) << expectedPath << " is missing: run with BOWLINE_UPDATE_GOLDEN=1";
    EXPECT_EQ(out.str(), readFile(expectedPath)) << "output of " << scenarioPath << " differs from " << expectedPath;
  }
};

TEST_F(GoldenTest, EveryScenarioPrintsItsExpectedRib) {
  int scenarios = 0;
  for (auto const& entry : fs::directory_iterator(kGoldenDir)) {
    if (entry.path().extension() != ".yaml") continue;
    SCOPED_TRACE(entry.path().filename().string());
    expectGolden(entry.path(), fs::path(entry.path()).replace_extension(".out"), false);
    ++scenarios;
  }
  EXPECT_GE(scenarios, 4);
}

TEST_F(GoldenTest, DefaultScenarioAsTextAndJson) {
  expectGolden(kDefaultScenario, kGoldenDir / "default.out", false);
  expectGolden(kDefaultScenario, kGoldenDir / "default.json", true);
}

TEST_F(GoldenTest, ARunThatDoesNotSettleStopsNamingTheRouteAndTheVia) {
  // 192.0.2.0/24 is reached through 198.51.100.0/24 and the other way round, with a floating route
  // that lets each resolve in turn: the RIB would flip the two vias for ever.
  auto parse = Host::ScenarioParser::parseText(
      "interfaces: [{name: Ethernet1, addresses: [10.0.1.1/24]}]\n"
      "routes:\n"
      "  - {prefix: 192.0.2.0/24, vias: [{nexthop: 198.51.100.1}]}\n"
      "  - {prefix: 192.0.2.0/24, preference: 200, vias: [{nexthop: 10.0.1.2}]}\n"
      "steps:\n"
      "  - show: before\n"
      "  - add_route: {prefix: 198.51.100.0/24, vias: [{nexthop: 192.0.2.1}]}\n"
      "  - show: never printed\n",
      "loop.yaml", ".");
  ASSERT_TRUE(parse.ok()) << parse.errorText();
  for (bool json : {false, true}) {
    std::ostringstream out;
    std::ostringstream err;
    Host::RunOptions options;
    options.json = json;
    EXPECT_EQ(Host::runScenario(*parse.scenario, options, out, err), Host::kExitRunStopped);
    EXPECT_EQ(err.str(),
              "loop.yaml: step 3 (show, line 8): route 198.51.100.0/24 in vrf default does not settle: via "
              "198.51.100.1 flips between resolved and unresolved\n");
    EXPECT_NE(out.str().find("before"), std::string::npos) << "the show before the failing step stays printed";
    EXPECT_EQ(out.str().find("never printed"), std::string::npos);
    if (json) {
      EXPECT_TRUE(nlohmann::json::accept(out.str())) << "the JSON document is closed: " << out.str();
    }
  }
}

}  // namespace
}  // namespace BowlineTest
