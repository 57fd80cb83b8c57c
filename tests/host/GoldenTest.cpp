// The host program on the scenarios under tests/host/golden (and the shipped default scenario):
// each run's output must be the expected output kept beside it. BOWLINE_UPDATE_GOLDEN=1 rewrites the
// expected files from the current output (review the diff before committing it). Also: an agent
// restart ends with the RIB it started from and nothing stale in the tables.
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

TEST_F(GoldenTest, AgentRestartEndsWithTheSameRibAndNothingStale) {
  for (bool graceful : {false, true}) {
    SCOPED_TRACE(graceful ? "graceful restart" : "plain restart");
    auto parse = Host::parseScenario((kGoldenDir / "restart.yaml").string());
    ASSERT_TRUE(parse.ok()) << parse.errorText();
    Host::Switch sw(*parse.scenario, scheduler());
    sw.start();
    sw.settle();
    // The tables the RIB reads: via tables and via sets of both protocols.
    auto tableSizes = [&] {
      std::vector<std::size_t> sizes;
      for (auto p : {Routing::Rib::RoutingProtocol::staticConfig(), Routing::Rib::RoutingProtocol::routeInput()}) {
        auto const& root = sw.agent().root(p);
        sizes.push_back(root->ipv4AllVrfViaConfig()->viaSize());
        sizes.push_back(root->ipv6AllVrfViaConfig()->viaSize());
        sizes.push_back(root->viaSetConfig()->configViaSetColl()->viaSetSize());
      }
      return sizes;
    };
    std::string const before = Host::showText(sw.view("", ""));
    auto const sizesBefore = tableSizes();
    sw.restart(graceful);
    if (graceful) sw.apply(Host::Step{Host::GlobalStep{{}, {}, {}, true}, 0});
    sw.settle();
    std::string after = Host::showText(sw.view("", ""));
    // Only the handshake's round differs.
    for (auto pos = after.find("trigger 2, status 2"); pos != std::string::npos; pos = after.find("trigger 2, status 2"))
      after.replace(pos, 19, "trigger 1, status 1");
    EXPECT_EQ(after, before);
    EXPECT_EQ(tableSizes(), sizesBefore) << "no via or via set left behind by the agent's former life";
  }
}

}  // namespace
}  // namespace BowlineTest
