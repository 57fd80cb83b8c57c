// An agent restart, plain or graceful, ends with the RIB a first start on the same configuration
// gives, and nothing left in the tables from the agent's former life. The scenarios are the golden
// restart scenario and those under tests/host/restart: each runs its steps, then the agent
// restarts. Also: a graceful restart holds what was installed until the agent has reconciled it.
#include <algorithm>
#include <filesystem>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include "host/Runner.h"
#include "host/ScenarioParser.h"
#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

namespace fs = std::filesystem;

fs::path const kHostTests = fs::path(__FILE__).parent_path();

std::vector<fs::path> restartScenarios() {
  std::vector<fs::path> paths{kHostTests / "golden" / "restart.yaml"};
  for (auto const& entry : fs::directory_iterator(kHostTests / "restart")) {
    if (entry.path().extension() == ".yaml") paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

// The show without the handshake's round, which a restart counts up.
std::string showWithoutRound(Host::Switch& sw) {
  std::istringstream in(Host::showText(sw.view("", "")));
  std::string out;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("  handshake:", 0) != 0) out += line + "\n";
  }
  return out;
}

// The tables the RIB reads: via tables and via sets of both protocols.
std::vector<std::size_t> tableSizes(Host::Switch const& sw) {
  std::vector<std::size_t> sizes;
  for (auto p : {Routing::Rib::RoutingProtocol::staticConfig(), Routing::Rib::RoutingProtocol::routeInput()}) {
    auto const& root = sw.agent().root(p);
    sizes.push_back(root->ipv4AllVrfViaConfig()->viaSize());
    sizes.push_back(root->ipv6AllVrfViaConfig()->viaSize());
    sizes.push_back(root->viaSetConfig()->configViaSetColl()->viaSetSize());
  }
  return sizes;
}

class RestartTest : public RuntimeFixture {};

TEST_F(RestartTest, EndsWithTheRibOfAFirstStartAndNothingStale) {
  auto const paths = restartScenarios();
  ASSERT_GE(paths.size(), 5u);
  for (auto const& path : paths) {
    for (bool graceful : {false, true}) {
      SCOPED_TRACE(path.filename().string() + (graceful ? ", graceful restart" : ", plain restart"));
      auto parse = Host::parseScenario(path.string());
      ASSERT_TRUE(parse.ok()) << parse.errorText();
      Host::Switch sw(*parse.scenario, scheduler());
      sw.start();
      for (auto const& step : parse.scenario->steps) {
        if (std::holds_alternative<Host::RestartStep>(step.kind)) break;  // the test's own restart below
        if (!std::holds_alternative<Host::ShowStep>(step.kind)) sw.apply(step);
      }
      sw.settle();
      std::string const before = showWithoutRound(sw);
      auto const sizesBefore = tableSizes(sw);
      sw.restart(graceful);
      if (graceful) sw.apply(Host::Step{Host::GlobalStep{{}, {}, {}, true}, 0});
      sw.settle();
      EXPECT_EQ(showWithoutRound(sw), before);
      // A preference keeps the via set it last installed after its route went out of the RIB
      // (until the preference goes): a first start does not have it.
      auto const sizesAfter = tableSizes(sw);
      for (std::size_t i = 0; i < sizesAfter.size(); ++i)
        EXPECT_LE(sizesAfter[i], sizesBefore[i]) << "table " << i << ": left behind by the agent's former life";
    }
  }
}

TEST_F(RestartTest, GracefulRestartHoldsRoutesUntilReconciledThenDropsOnlyTheStale) {
  auto parse = Host::parseScenario((kHostTests / "golden" / "restart.yaml").string());
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

}  // namespace
}  // namespace BowlineTest
