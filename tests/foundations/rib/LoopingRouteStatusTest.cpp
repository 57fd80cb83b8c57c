// What the RIB tells of loops: the dependency graph's looping-route answer with its whole-graph
// notification.
#include "foundations/rib/LoopingRouteStatus.h"

#include <gtest/gtest.h>

#include "foundations/rib/NextHopDependencyGraph.h"
#include "support/RuntimeFixture.h"
#include "RibRecorder.h"

namespace BowlineTest {
namespace {

using Ondex::IpGenPrefix;
using Routing::MetricPref;
using Routing::Rib::ViaKey;
using Routing::Rib::Ip::GlobalNextHopDependencyGraph;

IpGenPrefix prefix(std::string_view text) { return IpGenPrefix::fromString(text).value_or(IpGenPrefix()); }

class LoopingRouteStatusTest : public RuntimeFixture {};

TEST_F(LoopingRouteStatusTest, DependencyGraphAnswersFromItsMarksOrItsCallbackAndNotifiesAsAWhole) {
  auto graph = GlobalNextHopDependencyGraph::GlobalNextHopDependencyGraphIs();
  auto rec = KeyRecorder<GlobalNextHopDependencyGraph, int>::KeyRecorderIs(graph, GlobalNextHopDependencyGraph::graphVersionId);
  ViaKey const via(3, 5, 2, 1);
  IpGenPrefix const p = prefix("10.1.0.0/16");
  EXPECT_FALSE(graph->loopingRoute(p, MetricPref(0, 1), 5, via, 0, 0, false));

  graph->loopingViaIs({p, 5, via});
  graph->loopingViaIs({p, 5, via});  // present: no change
  EXPECT_EQ(rec->keys.size(), 1u);
  EXPECT_TRUE(graph->loopingRoute(p, MetricPref(0, 1), 5, via, 0, 0, false));
  EXPECT_FALSE(graph->loopingRoute(p, MetricPref(0, 1), 6, via, 0, 0, false)) << "another VRF";
  EXPECT_FALSE(graph->loopingRoute(prefix("10.2.0.0/16"), MetricPref(0, 1), 5, via, 0, 0, false));

  bool sawMrib = false;
  graph->loopingRouteFnIs([&](IpGenPrefix const& q, MetricPref mp, Vrf::VrfIdMap::VrfId, ViaKey const&, std::uint32_t,
                              std::uint32_t, bool mrib) {
    sawMrib = mrib;
    return q == prefix("10.9.0.0/16") && mp.preference() == 7;
  });
  EXPECT_TRUE(graph->loopingRoute(prefix("10.9.0.0/16"), MetricPref(0, 7), 0, via, 0, 0, true));
  EXPECT_TRUE(sawMrib) << "the callback gets every argument";
  EXPECT_FALSE(graph->loopingRoute(prefix("10.9.0.0/16"), MetricPref(0, 1), 0, via, 0, 0, true));

  graph->loopingViaDel({p, 5, via});
  graph->loopingViaDel({p, 5, via});  // absent: no change
  graph->loopingViaDelAll();          // already empty: no change
  EXPECT_FALSE(graph->loopingRoute(p, MetricPref(0, 1), 5, via, 0, 0, false));
  EXPECT_EQ(rec->keys.size(), 3u) << "each change of the graph is one notification";
}

}  // namespace
}  // namespace BowlineTest
