// The route input container: input records, protocol core and route machine built in order, for
// both protocols, and the agents' route lists collected from a directory.
#include "input/RouteInputContainerSm.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "support/RibHarness.h"
#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

class InputContainerSmTest : public RuntimeFixture {
 protected:
  Routing::Input::RouteInputContainerSm::Inputs inputs(Routing::Rib::RoutingProtocol protocol) {
    Routing::Input::RouteInputContainerSm::Inputs in;
    in.containerKey = Routing::Protocol::ContainerKey(h.vrfName, h.af);
    in.routingProtocol = protocol;
    in.ipViaConfig = h.ipViaConfig;
    in.viaSetConfig = rib.viaSetConfig;
    in.ribConfig = rib.ribConfig;
    in.nhdGraph = rib.nhdGraph;
    in.intfStatus = h.intfStatus;
    in.viaMetricStatusByVrf = rib.viaMetricStatusByVrf;
    in.igpResultTable = rib.igpResultTable;
    in.vrfNameStatus = h.vrfNames;
    in.scheduler = scheduler();
    in.allEgressVrfIntfStatusHelperSm = h.egress;
    in.mplsConfig = h.mpls;
    in.srConfig = h.config;
    in.routeStatusDir = h.statusDir;
    return in;
  }
  StaticRouteHarness h;
  RibHarness rib;
};

TEST_F(InputContainerSmTest, StaticModeCarriesAConfiguredRouteToTheRib) {
  rib.viaMetricStatusSmIs(h.statusDir);
  h.routeIs(*h.config, "20.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  auto sm = Routing::Input::RouteInputContainerSm::RouteInputContainerSmIs(
      inputs(Routing::Rib::RoutingProtocol::staticConfig()));
  runToIdle();
  EXPECT_TRUE(sm->leakRouteConfig());
  EXPECT_FALSE(sm->configByUser());
  EXPECT_FALSE(sm->martianRouteSm());
  ASSERT_EQ(h.ipViaConfig->viaSize(), 1u);
  rib.report(h.ipViaConfig->viaIteratorConst().key());
  runToIdle();
  EXPECT_EQ(rib.routeOf(0, "20.0.0.0/8", *h.ipViaConfig), "pref 1 metric 0 vias [10.0.0.1]");
  sm = nullptr;
  rib.vms = nullptr;
}

TEST_F(InputContainerSmTest, RouteInputModeCollectsTheAgentsListsAfterTheMartianOne) {
  unsetenv("DO_NOT_INSTALL_MARTIAN");
  auto dir = Zel::Dir::DirIs("routeInput");
  auto agent = Routing::RouteInput::RouteInputIs("agentA");
  agent->routingProtoIs(16);
  agent->routeIs(routeKey("30.0.0.0/8"), Routing::RouteType::drop);
  dir->entityIs("agentA", agent);
  auto in = inputs(Routing::Rib::RoutingProtocol::routeInput());
  in.configDir = dir;
  auto sm = Routing::Input::RouteInputContainerSm::RouteInputContainerSmIs(in);
  runToIdle();
  EXPECT_FALSE(sm->leakRouteConfig());
  ASSERT_TRUE(sm->configByUser());
  EXPECT_TRUE(sm->configByUser()->configHas("martian"));
  EXPECT_TRUE(sm->configByUser()->configHas("agentA"));
  auto const status = sm->protocolContainerSm()->status();
  EXPECT_TRUE(status->routeHas(pfx("30.0.0.0/8")));
  EXPECT_TRUE(status->routeHas(pfx("0.0.0.0/8"))) << "the martian routes travel as a user's";
  EXPECT_EQ(rib.routeOf(0, "0.0.0.0/8", *h.ipViaConfig), "") << "a drop via is not reported resolved yet";

  // An entry of another type counts as a deletion; the agent's routes leave.
  dir->entityIs("agentA", Routing::RouteList::RouteListIs());
  runToIdle();
  EXPECT_FALSE(sm->configByUser()->configHas("agentA"));
  EXPECT_FALSE(status->routeHas(pfx("30.0.0.0/8")));
  sm = nullptr;
}

// Users inject martian prefixes, by names sorting before and after the martian list's, arriving
// before and after the container: the martian routes stay what they are, and a user's own preference
// of such a prefix is an entry of its own.
TEST_F(InputContainerSmTest, TheMartianListWinsItsKeysOverEveryUser) {
  unsetenv("DO_NOT_INSTALL_MARTIAN");
  for (bool usersFirst : {true, false}) {
    SCOPED_TRACE(usersFirst ? "users before the container" : "users after the container");
    auto dir = Zel::Dir::DirIs("routeInput");
    auto const inject = [&dir](char const* name) {
      auto agent = Routing::RouteInput::RouteInputIs(name);
      agent->routingProtoIs(16);
      agent->routeIs(routeKey("0.0.0.0/8"), Routing::RouteType::forward)
          ->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
      agent->routeIs(routeKey("127.0.0.0/8"), Routing::RouteType::forward)
          ->viaIs(StaticRouteHarness::via("10.0.0.2"), {});
      agent->routeIs(routeKey("127.0.0.0/8", 9), Routing::RouteType::forward)
          ->viaIs(StaticRouteHarness::via("10.0.0.3"), {});
      dir->entityIs(name, agent);
    };
    if (usersFirst) {
      inject("aaa");
      inject("zzz");
    }
    auto in = inputs(Routing::Rib::RoutingProtocol::routeInput());
    in.configDir = dir;
    auto sm = Routing::Input::RouteInputContainerSm::RouteInputContainerSmIs(in);
    h.status = sm->protocolContainerSm()->status();  // the harness's readers look there
    runToIdle();
    if (!usersFirst) {
      inject("zzz");
      inject("aaa");
    }
    runToIdle();
    auto const drop = h.viasOf("0.0.0.0/8");
    ASSERT_EQ(drop.size(), 1u);
    EXPECT_NE(drop.begin()->find("Null0"), std::string::npos);
    EXPECT_EQ(h.routePref("0.0.0.0/8")->fibRouteType(), 36);
    EXPECT_EQ(h.viasOf("127.0.0.0/8").size(), 1u) << "the one via to the CPU";
    EXPECT_EQ(h.routePref("127.0.0.0/8")->fecType(), 6);
    EXPECT_EQ(h.prefsOf("127.0.0.0/8"), (std::vector<unsigned>{1, 9}));
    EXPECT_EQ(h.viasOf("127.0.0.0/8", 9).size(), 1u);

    // The users go: the martian routes stay, the users' own preference goes with them.
    dir->entityIs("aaa", Routing::RouteList::RouteListIs());
    dir->entityIs("zzz", Routing::RouteList::RouteListIs());
    runToIdle();
    EXPECT_EQ(h.prefsOf("127.0.0.0/8"), std::vector<unsigned>{1});
    EXPECT_EQ(h.viasOf("0.0.0.0/8"), drop);

    // An agent's entry named as the martian list does not replace it, nor take it away on leaving.
    inject(Routing::Input::kMartianUser);
    runToIdle();
    EXPECT_EQ(sm->configByUser()->config(Routing::Input::kMartianUser).get(), sm->martianRouteConfig().get());
    dir->entityIs(Routing::Input::kMartianUser, Routing::RouteList::RouteListIs());
    runToIdle();
    EXPECT_EQ(h.viasOf("0.0.0.0/8"), drop);
    sm = nullptr;
    runToIdle();
  }
}

}  // namespace
}  // namespace BowlineTest
