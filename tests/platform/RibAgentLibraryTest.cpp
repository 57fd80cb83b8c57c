// RibAgent wired to the library's route machines the way RibHarness is: static routes configured
// through a RouteConfigSm, reviewed by RouteStatusSm, with the via metric machine taking the RIB
// stand-in's reports back to the routes. No report is written by the test: the stand-in resolves.
#include <gtest/gtest.h>

#include "platform/RibAgent.h"
#include "support/RibHarness.h"
#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

class RibAgentLibraryTest : public RuntimeFixture {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
    rib.viaMetricStatusSmIs(h.statusDir);
    vrfs = Platform::VrfAgent::VrfAgentIs();
    vrfs->vrfIs("default", 0);
    intfs = Platform::InterfaceAgent::InterfaceAgentIs();
    intfs->intfIs({Ondex::IntfId("Ethernet1"), "default", {{addr("10.0.0.1"), 24}}});
    h.intfIs("Ethernet1");
  }
  void start() {
    Platform::RibAgent::Inputs in;
    in.ipViaConfigs = {h.ipViaConfig};
    in.routeTables = {{h.af, Routing::Rib::RoutingProtocol::staticConfig(), rib.ribConfig, rib.viaSetConfig}};
    in.interfaceAgent = intfs;
    in.vrfAgent = vrfs;
    in.viaMetricStatusByVrf = rib.viaMetricStatusByVrf;
    in.loopingRouteStatusByVrf4 = rib.loopingByVrf;
    in.scheduler = scheduler();
    agent = Platform::RibAgent::RibAgentIs(in);
    h.start(scheduler());
    rs = rib.routeStatusSmIs(h.vrfName, h.af, h.vrfId, h.status, h.ipViaConfig, scheduler(), h.ready);
    runToIdle();
  }
  void TearDown() override {
    rs = nullptr;
    rib.vms = nullptr;
    h.stop();
    agent = nullptr;
    RuntimeFixture::TearDown();
  }
  std::string ribRoute(char const* prefix) { return rib.routeOf(h.vrfId, prefix, *h.ipViaConfig); }

  StaticRouteHarness h;
  RibHarness rib;
  Quill::Ptr<Platform::VrfAgent> vrfs;
  Quill::Ptr<Platform::InterfaceAgent> intfs;
  Quill::Ptr<Platform::RibAgent> agent;
  Quill::Ptr<Routing::Protocol::RouteStatusSm> rs;
};

TEST_F(RibAgentLibraryTest, StaticRoutesInstallThroughConnectedAndRecursiveNextHops) {
  h.routeIs(*h.config, "1.0.0.0/24")->viaIs(StaticRouteHarness::via("10.0.0.2"), {});
  h.routeIs(*h.config, "2.0.0.0/24")->viaIs(StaticRouteHarness::via("1.0.0.5"), {});
  h.routeIs(*h.config, "3.0.0.0/24")->viaIs(StaticRouteHarness::via("99.0.0.1"), {});
  start();
  EXPECT_EQ(ribRoute("1.0.0.0/24"), "pref 1 metric 0 vias [10.0.0.2]") << "1: connected next hop";
  EXPECT_EQ(ribRoute("2.0.0.0/24"), "pref 1 metric 0 vias [1.0.0.5]") << "1: through 1.0.0.0/24";
  EXPECT_EQ(ribRoute("3.0.0.0/24"), "") << "1: nothing covers 99.0.0.1";

  intfs->operUpIs(Ondex::IntfId("Ethernet1"), false);
  runToIdle();
  EXPECT_EQ(ribRoute("1.0.0.0/24"), "") << "2: the interface went down";
  EXPECT_EQ(ribRoute("2.0.0.0/24"), "") << "2: and the route it resolved through with it";

  intfs->operUpIs(Ondex::IntfId("Ethernet1"), true);
  agent->overrideResolvedIs("default", addr("99.0.0.1"), Ondex::IntfId(), 20);
  runToIdle();
  EXPECT_EQ(ribRoute("2.0.0.0/24"), "pref 1 metric 0 vias [1.0.0.5]") << "3: back";
  EXPECT_EQ(ribRoute("3.0.0.0/24"), "pref 1 metric 0 vias [99.0.0.1]") << "3: forced resolved";
}

}  // namespace
}  // namespace BowlineTest
