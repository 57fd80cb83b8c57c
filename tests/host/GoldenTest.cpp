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

TEST_F(GoldenTest, GracefulRestartHoldsRoutesUntilReconciledThenDropsOnlyTheStale) {
  auto parse = Host::parseScenario((kGoldenDir / "restart.yaml").string());
  ASSERT_TRUE(parse.ok()) << parse.errorText();
  Host::Switch sw(*parse.scenario, scheduler());
  sw.start();
  sw.settle();
  auto routeLines = [&] {
    std::string out;
    std::istringstream in(Host::showText(sw.view("", "")));
    for (std::string line; std::getline(in, line);) {
      if (line.rfind("    ", 0) == 0 && line.rfind("      ", 0) != 0) out += line + "\n";
    }
    return out;
  };
  std::string const before = routeLines();
  ASSERT_NE(before.find("10.20.0.0/16 static"), std::string::npos) << before;

  // 1. The agent goes down; while it is away 10.20.0.0/16 is removed from the configuration.
  sw.agentStop(true);
  Host::RouteStep remove;
  remove.op = Host::RouteOp::remove;
  remove.route.prefix = *Ondex::IpGenPrefix::fromString("10.20.0.0/16");
  remove.route.preference = 200;
  sw.apply(Host::Step{remove, 0});
  sw.agentStart(true);
  sw.settle();
  // 2. Back, waiting for verification: everything it had installed is still forwarded on, as stale.
  std::string held = routeLines();
  EXPECT_NE(held.find("10.20.0.0/16 static pref 200 metric 0 (stale)"), std::string::npos) << held;
  for (auto pos = held.find(" (stale)"); pos != std::string::npos; pos = held.find(" (stale)")) held.erase(pos, 8);
  EXPECT_EQ(held, before) << "the RIB holds exactly what was installed";

  // 3. Verification: the agent writes its routes again; only the removed one goes.
  sw.apply(Host::Step{Host::GlobalStep{{}, {}, {}, true}, 0});
  sw.settle();
  std::string const after = routeLines();
  EXPECT_EQ(after.find("(stale)"), std::string::npos) << after;
  EXPECT_EQ(after.find("10.20.0.0/16"), std::string::npos) << after;
  std::string expected = before;
  expected.erase(expected.find("    10.20.0.0/16"), before.find('\n', before.find("    10.20.0.0/16")) -
                                                       expected.find("    10.20.0.0/16") + 1);
  EXPECT_EQ(after, expected);
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
