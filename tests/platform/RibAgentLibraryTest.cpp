// RibAgent wired to the library's route machines the way RibHarness is: static routes configured
// through a RouteConfigSm, reviewed by RouteStatusSm, with the via metric machine taking the RIB
// stand-in's reports back to the routes. No report is written by the test: the stand-in resolves.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>

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
    if (withConfiguredWith) {
      in.configuredWith = [this](Vrf::VrfIdMap::VrfId, Ondex::IpGenAddr const& hop, Ondex::IpGenPrefix const& p) {
        return configured.count({p, hop}) > 0;
      };
    }
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
  // A configured route with one next hop, which the agent's configuredWith knows.
  void configure(char const* prefix, unsigned pref, char const* hop) {
    h.routeIs(*h.config, prefix, pref)->viaIs(StaticRouteHarness::via(hop), {});
    configured.insert({pfx(prefix), addr(hop)});
  }
  std::set<std::string> oscillationTexts() const {
    std::set<std::string> out;
    for (auto const& o : agent->oscillations()) out.insert(o.text());
    return out;
  }

  StaticRouteHarness h;
  RibHarness rib;
  Quill::Ptr<Platform::VrfAgent> vrfs;
  Quill::Ptr<Platform::InterfaceAgent> intfs;
  Quill::Ptr<Platform::RibAgent> agent;
  Quill::Ptr<Routing::Protocol::RouteStatusSm> rs;
  // What the agent's configuredWith answers (the default VRF's configuration), and whether it has one.
  std::set<std::pair<Ondex::IpGenPrefix, Ondex::IpGenAddr>> configured;
  bool withConfiguredWith = true;
};

// A primary default route whose next hop only the default route covers, beside a floating default
// route through a neighbour (tests/host/golden/floating.yaml, where the own-prefix rule settles it):
// without the rule the run still ends, with the oscillation recorded.
TEST_F(RibAgentLibraryTest, FloatingDefaultRouteWithoutTheOwnPrefixRuleStopsAsAnOscillation) {
  withConfiguredWith = false;
  configure("0.0.0.0/0", 1, "10.9.9.9");
  configure("0.0.0.0/0", 200, "10.0.0.2");
  start();
  ASSERT_TRUE(agent->oscillation()) << "1";
  EXPECT_EQ(oscillationTexts(), std::set<std::string>{"route 0.0.0.0/0 in vrf default does not settle: via 10.9.9.9 "
                                                      "flips between resolved and unresolved"})
      << "1";
}

// Two routes, each through a next hop inside the other's prefix, each with a floating route through
// a neighbour: the primaries resolve through the floating routes, replace them, then only through
// each other, which is a loop; the floating routes come back, and so on. The own-prefix rule does
// not apply (each next hop lies in the other prefix).
TEST_F(RibAgentLibraryTest, TwoRoutesThroughEachOtherStopWithTheOscillationRecorded) {
  configure("192.0.2.0/24", 1, "198.51.100.1");
  configure("192.0.2.0/24", 200, "10.0.0.2");
  configure("198.51.100.0/24", 1, "192.0.2.1");
  configure("198.51.100.0/24", 200, "10.0.0.3");
  start();
  std::set<std::string> const expected{
      "route 192.0.2.0/24 in vrf default does not settle: via 192.0.2.1 flips between resolved and unresolved",
      "route 198.51.100.0/24 in vrf default does not settle: via 198.51.100.1 flips between resolved and unresolved"};
  EXPECT_EQ(oscillationTexts(), expected) << "1: the run ended with both vias frozen";
  std::uint64_t const resolutions = agent->vrfResolutions();
  runToIdle();
  EXPECT_EQ(agent->vrfResolutions(), resolutions) << "1: nothing left to do";

  agent->epochIs();
  EXPECT_FALSE(agent->oscillation()) << "2: a new epoch";
  runToIdle();
  EXPECT_EQ(oscillationTexts(), expected) << "2: released, the loop runs again and is stopped again";

  // One primary goes: the other resolves through the remaining floating route and stays.
  h.config->routeDel(routeKey("198.51.100.0/24", 1));
  configured.erase({pfx("198.51.100.0/24"), addr("192.0.2.1")});
  agent->configurationChangedIs("default");
  agent->epochIs();
  runToIdle();
  EXPECT_FALSE(agent->oscillation()) << "3";
  EXPECT_EQ(ribRoute("192.0.2.0/24"), "pref 1 metric 0 vias [198.51.100.1]") << "3";
  EXPECT_EQ(ribRoute("198.51.100.0/24"), "pref 200 metric 0 vias [10.0.0.3]") << "3";
}

}  // namespace
}  // namespace BowlineTest
