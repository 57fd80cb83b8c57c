// The whole chain as a hosting agent builds it: two VRFs, both families, both protocols. Routes are
// configured and injected, the RIB reports on the vias, the routes reach the route tables, the VRFs
// become ready, the RIB's handshake is answered; an agent stop releases everything it made.
#include "host/RoutingAgent.h"

#include <cstdlib>
#include <memory>

#include <gtest/gtest.h>

#include "foundations/runtime/Slab.h"
#include "support/AgentRecords.h"
#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

using Routing::Rib::RoutingProtocol;
using Routing::Rib::Transport;
using VrfId = Vrf::VrfIdMap::VrfId;

// The records of the agents around the routing agent, with the tables of each VRF.
struct Switch : AgentRecords {
  void vrfIs(char const* vrf, std::uint32_t id) {
    AgentRecords::vrfIs(vrf, id);
    ip4->vrfIpIntfStatusIs(L3::VrfName(vrf), Ip::VrfIpIntfStatus::VrfIpIntfStatusIs());
    ip6->vrfIp6IntfStatusIs(L3::VrfName(vrf), Ip6::VrfIp6IntfStatus::VrfIp6IntfStatusIs());
    looping4->vrfStatusIs(L3::VrfName(vrf));
    looping6->vrfStatusIs(L3::VrfName(vrf));
    // The RIB's report tables of the VRF, for both protocols and every transport.
    for (auto t : {Transport::transportIpv4(), Transport::transportIpv6(), Transport::transportEvpn()}) {
      for (auto p : {RoutingProtocol::staticConfig(), RoutingProtocol::routeInput()}) metrics->leafIs(VrfId(id), t, p);
    }
  }
  // The RIB resolves every via of a table with metric 5.
  void reportAll(Routing::Rib::Ip::ViaConfig const& vias) {
    for (auto it = vias.viaIteratorConst(); it; it.advance()) {
      auto const key = it.key();
      metrics->leafIs(key.vrfId(), key.transport(), key.routingProtocol())
          ->viaMetricIs(key, Routing::Rib::ViaMetric(key, 5, 1));
    }
  }
};

class RoutingAgentTest : public RuntimeFixture {};

TEST_F(RoutingAgentTest, TwoVrfsBothFamiliesBothProtocolsFromConfigurationToAnsweredHandshake) {
  unsetenv("DO_NOT_INSTALL_MARTIAN");
  {
    Switch sw;
    sw.vrfIs("default", 0);
    sw.vrfIs("red", 1);
    // Configuration: static routes in both VRFs and families, an agent's injected routes in red.
    Host::VrfConfig configs[2][2];
    char const* const vrfs[] = {"default", "red"};
    char const* const v4Routes[] = {"20.0.0.0/8", "30.0.0.0/8"};
    char const* const v6Routes[] = {"2001:db8:20::/48", "2001:db8:30::/48"};
    std::vector<Quill::Ptr<Routing::RouteList>> lists;
    for (int v = 0; v < 2; ++v) {
      for (int f = 0; f < 2; ++f) {
        auto list = Routing::RouteList::RouteListIs();
        list->routeIs(routeKey(f == 0 ? v4Routes[v] : v6Routes[v]), Routing::RouteType::forward)
            ->viaIs(StaticRouteHarness::via(f == 0 ? "10.0.0.1" : "2001:db8::1"), {});
        configs[v][f].config = list;
        lists.push_back(list);
        auto dir = Zel::Dir::DirIs("routeInput");
        configs[v][f].configDir = dir;
        if (v == 1 && f == 0) {
          auto agent = Routing::RouteInput::RouteInputIs("agentA");
          agent->routingProtoIs(16);
          agent->routeIs(routeKey("40.0.0.0/8"), Routing::RouteType::forward)
              ->viaIs(StaticRouteHarness::via("10.0.0.9"), {});
          dir->entityIs("agentA", agent);
        }
      }
    }

    Host::RoutingAgent::Environment env;
    env.em = &sw.em;
    env.shmem = &sw.shmem;
    env.scheduler = scheduler();
    auto agent = std::make_unique<Host::RoutingAgent>(env);
    for (int v = 0; v < 2; ++v) agent->vrfIs(L3::VrfName(vrfs[v]), configs[v][0], configs[v][1]);
    runToIdle();

    auto const& staticRoot = agent->root(RoutingProtocol::staticConfig());
    auto const& inputRoot = agent->root(RoutingProtocol::routeInput());
    for (auto const& root : {staticRoot, inputRoot}) {
      for (char const* vrf : vrfs) {
        EXPECT_TRUE(root->readyVrfIpv4Has(L3::VrfName(vrf)) && root->readyVrfIpv6Has(L3::VrfName(vrf))) << vrf;
      }
    }
    // Each protocol wrote its vias into its own all-VRF tables; nothing is installed before the RIB
    // has spoken.
    EXPECT_EQ(staticRoot->ipv4AllVrfViaConfig()->viaSize(), 2u) << "one next hop per VRF";
    EXPECT_EQ(inputRoot->ipv4AllVrfViaConfig()->viaSize(), 5u) << "agentA's next hop, two martian vias per VRF";
    EXPECT_EQ(staticRoot->ipv4AllVrfRibConfig()->routeSize(), 0u);

    for (auto const& root : {staticRoot, inputRoot}) {
      sw.reportAll(*root->ipv4AllVrfViaConfig());
      sw.reportAll(*root->ipv6AllVrfViaConfig());
    }
    runToIdle();
    auto installed = [](Routing::Rib::RouteConfig const& table, std::uint32_t vrfId, char const* prefix) {
      return table.routeHas(Routing::Rib::RouteKey(VrfId(vrfId), pfx(prefix)));
    };
    EXPECT_TRUE(installed(*staticRoot->ipv4AllVrfRibConfig(), 0, "20.0.0.0/8"));
    EXPECT_TRUE(installed(*staticRoot->ipv4AllVrfRibConfig(), 1, "30.0.0.0/8"));
    EXPECT_TRUE(installed(*staticRoot->ipv6AllVrfRibConfig(), 0, "2001:db8:20::/48"));
    EXPECT_TRUE(installed(*staticRoot->ipv6AllVrfRibConfig(), 1, "2001:db8:30::/48"));
    EXPECT_TRUE(installed(*inputRoot->ipv4AllVrfRibConfig(), 1, "40.0.0.0/8"));
    EXPECT_FALSE(installed(*inputRoot->ipv4AllVrfRibConfig(), 0, "20.0.0.0/8")) << "protocols keep to their tables";
    EXPECT_TRUE(installed(*inputRoot->ipv6AllVrfRibConfig(), 1, "fe80::/10")) << "martian routes of every VRF";

    // Routes ready at once in a plain start; the RIB's handshake is echoed once both reviews ended.
    auto const& ready = agent->allVrfReadyStatus();
    for (char const* vrf : vrfs) {
      auto status = ready->vrfReadyStatus(L3::VrfName(vrf));
      ASSERT_TRUE(status) << vrf;
      EXPECT_TRUE(status->v4RoutesReady() && status->v6RoutesReady()) << vrf;
      agent->allVrfRibSeqTrigger()->vrfRibSeqTrigger(L3::VrfName(vrf))->ribReadySeqTriggerIs(7);
    }
    runToIdle();
    for (char const* vrf : vrfs) EXPECT_EQ(ready->vrfReadyStatus(L3::VrfName(vrf))->ribReadySeqStatus(), 7u) << vrf;

    // A VRF going: its routes leave the route tables, the other VRF's stay.
    agent->vrfDel(L3::VrfName("red"));
    runToIdle();
    EXPECT_FALSE(installed(*staticRoot->ipv4AllVrfRibConfig(), 1, "30.0.0.0/8"));
    EXPECT_FALSE(installed(*inputRoot->ipv4AllVrfRibConfig(), 1, "40.0.0.0/8"));
    EXPECT_TRUE(installed(*staticRoot->ipv4AllVrfRibConfig(), 0, "20.0.0.0/8"));

    agent.reset();
    runToIdle();
  }
  EXPECT_EQ(liveSinceStart(), 0) << "an agent stop and the switch going release every allocation";
}

}  // namespace
}  // namespace BowlineTest
