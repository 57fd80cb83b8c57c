// RouteConfigSm driven through its input records: routes, settings and VRF events go in, the
// scheduler runs to idle with a small item budget per run, and the status store and via table are
// read back.
#include "static/RouteConfigSm.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "foundations/runtime/Slab.h"
#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

using Routing::Route;
using Routing::RouteType;
using Routing::RouteViaAttr;
using Set = std::multiset<std::string>;

class RouteConfigSmTest : public RuntimeFixture {
 protected:
  void start() {
    h.start(scheduler());
    runToIdle();
  }
  StaticRouteHarness h;
};

TEST_F(RouteConfigSmTest, StaticBeatsDynamicBeatsLeakedAndEachTakesOverWhenTheOneAboveGoes) {
  auto viaA = StaticRouteHarness::via("10.0.0.1");
  auto viaB = StaticRouteHarness::via("10.0.0.2");
  auto viaC = StaticRouteHarness::via("10.0.0.3");
  h.routeIs(*h.config, "1.0.0.0/24")->viaIs(viaA, RouteViaAttr(0, 0));
  h.routeIs(*h.dynamic, "1.0.0.0/24")->viaIs(viaB, RouteViaAttr(0, 0));
  // A leaked route of the same key, from VRF 7.
  auto source = Routing::RouteList::RouteListIs();
  auto leaked = source->routeIs(routeKey("1.0.0.0/24"), RouteType::forward);
  leaked->viaIs(viaC, RouteViaAttr(0, 0));
  h.leak->leakRouteIs(Routing::Protocol::LeakRoute::LeakRouteIs(Routing::Protocol::VrfIdAf(7, h.af), leaked));
  start();
  EXPECT_EQ(h.viasOf("1.0.0.0/24"), Set{"2: nextHop 10.0.0.1 intf  weight 0"});
  EXPECT_EQ(h.status->route(pfx("1.0.0.0/24"))->srcVrfId(), Vrf::VrfIdMap::VrfId(0));

  // A dynamic via change under the static route does not reach the store.
  h.dynamic->route(routeKey("1.0.0.0/24"))->viaIs(StaticRouteHarness::via("10.0.0.9"), RouteViaAttr(0, 0));
  runToIdle();
  EXPECT_EQ(h.viasOf("1.0.0.0/24"), Set{"2: nextHop 10.0.0.1 intf  weight 0"});

  h.config->routeDel(routeKey("1.0.0.0/24"));
  runToIdle();
  EXPECT_EQ(h.viasOf("1.0.0.0/24"),
            (Set{"2: nextHop 10.0.0.2 intf  weight 0", "2: nextHop 10.0.0.9 intf  weight 0"}));

  // The dynamic route goes: the leaked route comes into use, resolved in its source VRF.
  h.dynamic->routeDel(routeKey("1.0.0.0/24"));
  runToIdle();
  EXPECT_EQ(h.viasOf("1.0.0.0/24"), Set{"2: nextHop 10.0.0.3 intf  weight 0 vrf 7"});
  EXPECT_EQ(h.status->route(pfx("1.0.0.0/24"))->srcVrfId(), Vrf::VrfIdMap::VrfId(7));
  EXPECT_TRUE(h.sm->leakRouteInUseHas(routeKey("1.0.0.0/24")));

  // A static route comes back: the leaked route is withdrawn first.
  h.routeIs(*h.config, "1.0.0.0/24")->viaIs(viaA, RouteViaAttr(0, 0));
  runToIdle();
  EXPECT_EQ(h.viasOf("1.0.0.0/24"), Set{"2: nextHop 10.0.0.1 intf  weight 0"});
  EXPECT_FALSE(h.sm->leakRouteInUseHas(routeKey("1.0.0.0/24")));

  // All sources gone: nothing of the prefix is left, and no via stays in the table.
  h.leak->leakRouteDel(routeKey("1.0.0.0/24"));
  h.config->routeDel(routeKey("1.0.0.0/24"));
  runToIdle();
  EXPECT_EQ(h.status->route(pfx("1.0.0.0/24")), nullptr);
  EXPECT_EQ(h.ipViaConfig->viaSize(), 0u);
}

TEST_F(RouteConfigSmTest, ManyChangesOfOneKeyAreReviewedOnce) {
  start();
  auto route = h.routeIs(*h.config, "2.0.0.0/16");
  for (unsigned i = 0; i < 20; ++i) route->tagIs(i);
  EXPECT_EQ(h.sm->backlogSize(), 1u);
  runToIdle();
  EXPECT_EQ(h.status->route(pfx("2.0.0.0/16"))->routeChangedVersion(), 1u);
  EXPECT_EQ(h.routePref("2.0.0.0/16")->tag(), 19u);
}

TEST_F(RouteConfigSmTest, ReviewOfAllRoutesYieldsAndResumesAtEachBookmark) {
  itemsPerRun = 3;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
  auto source = Routing::RouteList::RouteListIs();
  for (int i = 0; i < 7; ++i) {
    std::string p = "10.0." + std::to_string(i) + ".0/24";
    h.routeIs(*h.config, p.c_str());
    std::string d = "11.0." + std::to_string(i) + ".0/24";
    h.routeIs(*h.dynamic, d.c_str());
    std::string l = "12.0." + std::to_string(i) + ".0/24";
    auto r = source->routeIs(routeKey(l.c_str()), RouteType::forward);
    h.leak->leakRouteIs(Routing::Protocol::LeakRoute::LeakRouteIs(Routing::Protocol::VrfIdAf(0, h.af), r));
  }
  h.start(scheduler());
  std::vector<int> bookmarks;  // which walk each run stopped in: 0 static, 1 dynamic, 2 leak
  while (scheduler()->runOnce()) {
    if (h.sm->reviewKeyBookmarkLeak())
      bookmarks.push_back(2);
    else if (h.sm->reviewKeyBookmarkDynamic())
      bookmarks.push_back(1);
    else if (h.sm->reviewKeyBookmark())
      bookmarks.push_back(0);
  }
  EXPECT_EQ(h.status->routeSize(), 21u);
  EXPECT_NE(std::find(bookmarks.begin(), bookmarks.end(), 0), bookmarks.end());
  EXPECT_NE(std::find(bookmarks.begin(), bookmarks.end(), 1), bookmarks.end());
  EXPECT_NE(std::find(bookmarks.begin(), bookmarks.end(), 2), bookmarks.end());
  EXPECT_TRUE(h.status->initialized());

  // A review suspended in the leak walk: an interface change clears the static and dynamic
  // bookmarks but keeps the leak one, so the next run ends the leak walk first.
  h.sm->srHandleRoutes();
  while (!h.sm->reviewKeyBookmarkLeak() && scheduler()->runOnce()) {
  }
  ASSERT_TRUE(h.sm->reviewKeyBookmarkLeak());
  auto const leakMark = *h.sm->reviewKeyBookmarkLeak();
  auto const workBefore = h.sm->reviewAllRoutesTask()->taskWorkCount();
  h.intfIs("Ethernet9");
  EXPECT_FALSE(h.sm->reviewKeyBookmark());
  EXPECT_FALSE(h.sm->reviewKeyBookmarkDynamic());
  ASSERT_TRUE(h.sm->reviewKeyBookmarkLeak());
  EXPECT_EQ(*h.sm->reviewKeyBookmarkLeak(), leakMark);
  scheduler()->runOnce();
  // The run went on in the leak walk: no static route was reviewed before it.
  EXPECT_LE(h.sm->reviewAllRoutesTask()->taskWorkCount() - workBefore, itemsPerRun);
  runToIdle();
  EXPECT_FALSE(h.sm->reviewKeyBookmarkLeak());
}

TEST_F(RouteConfigSmTest, GracefulRestartHoldsTheReviewUntilStartReadyVerification) {
  h.grState = Routing::Protocol::GrState::GrStateIs(true);
  h.routeIs(*h.config, "3.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.1"), RouteViaAttr(0, 0));
  start();
  EXPECT_EQ(h.status->routeSize(), 0u);
  EXPECT_FALSE(h.ready->v4RoutesReady());
  EXPECT_TRUE(h.ipViaConfig->restartingVrfHas(0));
  h.routeIs(*h.config, "4.0.0.0/8");
  runToIdle();
  EXPECT_EQ(h.status->routeSize(), 0u);
  EXPECT_EQ(h.sm->backlogSize(), 1u) << "the backlog waits";

  h.grState->startReadyVerificationIs(true);
  runToIdle();
  EXPECT_EQ(h.status->routeSize(), 2u);
  EXPECT_TRUE(h.ready->v4RoutesReady());
  EXPECT_TRUE(h.status->initialized());
  EXPECT_FALSE(h.ipViaConfig->restartingVrfHas(0));
}

TEST_F(RouteConfigSmTest, GlobalPreferenceMovesDefaultPreferenceRoutes) {
  h.general->staticRoutePreferenceIs(Routing::RoutePreference(40));
  auto hop = StaticRouteHarness::via("10.0.0.1");
  h.routeIs(*h.config, "5.0.0.0/8")->viaIs(hop, RouteViaAttr(0, 0));
  h.routeIs(*h.config, "6.0.0.0/8", 5)->viaIs(hop, RouteViaAttr(0, 0));
  h.routeIs(*h.config, "7.0.0.0/8", 40)->viaIs(hop, RouteViaAttr(0, 0));
  start();
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), std::vector<unsigned>{40});
  EXPECT_EQ(h.prefsOf("6.0.0.0/8"), std::vector<unsigned>{5});
  // An explicit preference equal to the global one is programmed and then removed again.
  EXPECT_EQ(h.prefsOf("7.0.0.0/8"), std::vector<unsigned>{});

  h.general->staticRoutePreferenceIs(Routing::RoutePreference(50));
  runToIdle();
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), std::vector<unsigned>{50});
  EXPECT_EQ(h.prefsOf("6.0.0.0/8"), std::vector<unsigned>{5});
  EXPECT_EQ(h.prefsOf("7.0.0.0/8"), std::vector<unsigned>{40});

  h.general->staticRoutePreferenceIs(Routing::RoutePreference(1));
  runToIdle();
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), std::vector<unsigned>{1});
  EXPECT_EQ(h.prefsOf("7.0.0.0/8"), std::vector<unsigned>{40});

  // Deleting one of two preferences leaves the prefix; the last takes it away.
  h.routeIs(*h.config, "5.0.0.0/8", 9)->viaIs(hop, RouteViaAttr(0, 0));
  runToIdle();
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), (std::vector<unsigned>{1, 9}));
  h.config->routeDel(routeKey("5.0.0.0/8"));
  runToIdle();
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), std::vector<unsigned>{9});
  h.config->routeDel(routeKey("5.0.0.0/8", 9));
  runToIdle();
  EXPECT_EQ(h.status->route(pfx("5.0.0.0/8")), nullptr);
}

// One prefix configured without a preference (D, at the global preference G), at G explicitly (E)
// and at another preference (F). Each key is also reviewed alone, in both orders: the outcome may
// not depend on which key's review came last.
TEST_F(RouteConfigSmTest, ARouteAtTheGlobalPreferenceKeepsItsEntryWhateverTheOrderOfReviews) {
  auto const d = routeKey("5.0.0.0/8");
  auto const e = routeKey("5.0.0.0/8", 40);
  auto const f = routeKey("5.0.0.0/8", 60);
  auto const hop = [](char const* text) { return StaticRouteHarness::via(text); };
  auto const at = [this](unsigned pref) { return h.viasOf("5.0.0.0/8", pref); };
  Set const viaD{"2: nextHop 10.0.0.1 intf  weight 0"};
  Set const viaF{"2: nextHop 10.0.0.3 intf  weight 0"};
  h.general->staticRoutePreferenceIs(Routing::RoutePreference(40));
  h.config->routeIs(e, RouteType::forward)->viaIs(hop("10.0.0.2"), {});
  h.config->routeIs(f, RouteType::forward)->viaIs(hop("10.0.0.3"), {});
  h.config->routeIs(d, RouteType::forward)->viaIs(hop("10.0.0.1"), {});
  start();
  // 1. D holds G; E, of explicit preference G, is not installed and takes nothing of D's.
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), (std::vector<unsigned>{40, 60})) << "step 1";
  EXPECT_EQ(at(40), viaD) << "step 1";
  for (auto const& order : {std::vector{e, f, d}, std::vector{d, f, e}, std::vector{f, e}, std::vector{e}}) {
    for (auto const& key : order) h.sm->handleRoute(key);
    runToIdle();
    EXPECT_EQ(h.prefsOf("5.0.0.0/8"), (std::vector<unsigned>{40, 60})) << "step 1, reviewed alone";
    EXPECT_EQ(at(40), viaD) << "step 1, reviewed alone";
  }
  // 2. A via of E changes: D's entry does not take it.
  h.config->route(e)->viaIs(hop("10.0.0.4"), {});
  runToIdle();
  EXPECT_EQ(at(40), viaD) << "step 2";
  // 3. D goes and comes back: E alone is not installed; D takes its entry whole again.
  h.config->routeDel(d);
  runToIdle();
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), std::vector<unsigned>{60}) << "step 3";
  h.config->routeIs(d, RouteType::forward)->viaIs(hop("10.0.0.1"), {});
  runToIdle();
  EXPECT_EQ(at(40), viaD) << "step 3";
  // 4. G moves to F's preference: E now has its own entry, D holds 60 and F is not installed.
  h.general->staticRoutePreferenceIs(Routing::RoutePreference(60));
  runToIdle();
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), (std::vector<unsigned>{40, 60})) << "step 4";
  EXPECT_EQ(at(40), (Set{"2: nextHop 10.0.0.2 intf  weight 0", "2: nextHop 10.0.0.4 intf  weight 0"})) << "step 4";
  EXPECT_EQ(at(60), viaD) << "step 4";
  for (auto const& key : {d, e, f}) h.sm->handleRoute(key);
  runToIdle();
  EXPECT_EQ(at(60), viaD) << "step 4, reviewed again";
  // 5. G goes back to 1 and D goes before the review that would have moved it: nothing of D stays.
  h.general->staticRoutePreferenceIs(Routing::RoutePreference(1));
  h.config->routeDel(d);
  runToIdle();
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), (std::vector<unsigned>{40, 60})) << "step 5";
  EXPECT_EQ(at(60), viaF) << "step 5";
}

TEST_F(RouteConfigSmTest, DropAndToCpuRoutesHaveOneViaWhateverTheConfiguration) {
  h.routeIs(*h.config, "8.0.0.0/8", 1, RouteType::drop)->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  h.routeIs(*h.config, "9.0.0.0/8", 1, RouteType::dropWithIndication);
  h.routeIs(*h.config, "127.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  h.routeIs(*h.config, "127.0.0.0/9")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  start();
  EXPECT_EQ(h.viasOf("8.0.0.0/8"), Set{"4: nextHop  intf Null0 weight 0"});
  EXPECT_EQ(h.routePref("8.0.0.0/8")->fibRouteType(), 29);
  EXPECT_EQ(h.viasOf("9.0.0.0/8"), Set{"4: nextHop  intf Null0 flags 0x20 weight 0"});
  EXPECT_EQ(h.routePref("9.0.0.0/8")->fecType(), 9);
  EXPECT_EQ(h.routePref("9.0.0.0/8")->fibRouteType(), 40);
  EXPECT_EQ(h.viasOf("127.0.0.0/8"), Set{"4: nextHop  intf  flags 0x40 weight 0"});
  EXPECT_EQ(h.viasOf("127.0.0.0/9"), Set{"2: nextHop 10.0.0.1 intf  weight 0"});
  EXPECT_EQ(h.routePref("127.0.0.0/9")->fibRouteType(), 7);

  // Vias configured on the live routes change nothing either.
  for (char const* prefix : {"8.0.0.0/8", "9.0.0.0/8", "127.0.0.0/8"})
    h.config->route(routeKey(prefix))->viaIs(StaticRouteHarness::via("10.0.0.2"), {});
  runToIdle();
  EXPECT_EQ(h.viasOf("8.0.0.0/8"), Set{"4: nextHop  intf Null0 weight 0"});
  EXPECT_EQ(h.viasOf("9.0.0.0/8"), Set{"4: nextHop  intf Null0 flags 0x20 weight 0"});
  EXPECT_EQ(h.viasOf("127.0.0.0/8"), Set{"4: nextHop  intf  flags 0x40 weight 0"});
}

TEST_F(RouteConfigSmTest, InterfaceHostPrefixAndLabelRules) {
  h.intfIs("Ethernet1");
  h.mpls->mplsRoutingIs(false);
  auto intfOnly = StaticRouteHarness::via("", "Ethernet1");
  h.routeIs(*h.config, "10.0.0.1/32")->viaIs(intfOnly, {});
  h.routeIs(*h.config, "10.0.0.0/24")->viaIs(intfOnly, {});
  h.routeIs(*h.config, "10.0.1.1/32")->viaIs(StaticRouteHarness::via("10.9.9.9", "Ethernet1"), {});
  auto missing = StaticRouteHarness::via("10.0.0.2", "Ethernet2");
  h.routeIs(*h.config, "20.0.0.0/8")->viaIs(missing, {});
  auto labelled = StaticRouteHarness::via("10.0.0.3");
  labelled.mplsLabelIs(Ondex::MplsLabel(16));
  h.routeIs(*h.config, "30.0.0.0/8")->viaIs(labelled, {});
  start();
  EXPECT_EQ(h.viasOf("10.0.0.1/32"), Set{"1: nextHop 10.0.0.1 intf Ethernet1 flags 0x100 weight 0"});
  EXPECT_EQ(h.viasOf("10.0.0.0/24"), Set{"3: nextHop  intf Ethernet1 weight 0"});
  EXPECT_EQ(h.viasOf("10.0.1.1/32"), Set{"1: nextHop 10.9.9.9 intf Ethernet1 weight 0"});
  EXPECT_EQ(h.viasOf("20.0.0.0/8"), Set{}) << "interface missing";
  EXPECT_EQ(h.prefsOf("20.0.0.0/8"), std::vector<unsigned>{1}) << "the preference stays, without vias";
  EXPECT_EQ(h.viasOf("30.0.0.0/8"), Set{}) << "label with MPLS routing off";

  h.intfIs("Ethernet2");
  h.mpls->mplsRoutingIs(true);
  runToIdle();
  EXPECT_EQ(h.viasOf("20.0.0.0/8"), Set{"1: nextHop 10.0.0.2 intf Ethernet2 weight 0"});
  EXPECT_EQ(h.viasOf("30.0.0.0/8"), Set{"2: nextHop 10.0.0.3 intf  label 16 weight 0"});

  h.intfDel("Ethernet2");
  h.mpls->mplsRoutingIs(false);
  runToIdle();
  EXPECT_EQ(h.viasOf("20.0.0.0/8"), Set{});
  EXPECT_EQ(h.viasOf("30.0.0.0/8"), Set{});
}

TEST_F(RouteConfigSmTest, EcmpStateChangeRegroupsEveryViaThroughTheWalk) {
  h.intfIs("Ethernet1");
  for (int i = 0; i < 9; ++i) {
    std::string p = "40.0." + std::to_string(i) + ".0/24";
    auto route = h.routeIs(*h.config, p.c_str());
    route->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
    route->viaIs(StaticRouteHarness::via("10.0.0.2", "Ethernet1"), {});
  }
  start();
  Set const byType{"1: nextHop 10.0.0.2 intf Ethernet1 weight 0", "2: nextHop 10.0.0.1 intf  weight 0"};
  Set const single{"4: nextHop 10.0.0.1 intf  weight 0", "4: nextHop 10.0.0.2 intf Ethernet1 weight 0"};
  EXPECT_EQ(h.viasOf("40.0.3.0/24"), byType);

  h.general->staticRouteEcmpStateIs(Routing::General::StaticRouteEcmpState::singleGroup);
  EXPECT_TRUE(h.sm->ecmpStateChanged());
  runToIdle();
  EXPECT_FALSE(h.sm->ecmpStateChanged());
  EXPECT_GT(h.sm->viaReevaluateWalkSm()->walkTask()->taskRuns(), 1u) << "the walk yielded";
  for (int i = 0; i < 9; ++i) {
    std::string p = "40.0." + std::to_string(i) + ".0/24";
    EXPECT_EQ(h.viasOf(p.c_str()), single) << p;
  }

  // A second change during a walk starts it over; the flag stays until the walk ends.
  h.general->staticRouteEcmpStateIs(Routing::General::StaticRouteEcmpState::groupByViaType);
  scheduler()->runOnce();
  h.general->staticRouteEcmpStateIs(Routing::General::StaticRouteEcmpState::singleGroup);
  h.general->staticRouteEcmpStateIs(Routing::General::StaticRouteEcmpState::groupByViaType);
  EXPECT_TRUE(h.sm->ecmpStateChanged());
  runToIdle();
  EXPECT_FALSE(h.sm->ecmpStateChanged());
  for (int i = 0; i < 9; ++i) {
    std::string p = "40.0." + std::to_string(i) + ".0/24";
    EXPECT_EQ(h.viasOf(p.c_str()), byType) << p;
  }
  EXPECT_EQ(h.ipViaConfig->viaSize(), 2u) << "the vias are shared by all routes";
}

TEST_F(RouteConfigSmTest, ResolutionProfileChangeRehandlesDefaultViasOnly) {
  auto hop = StaticRouteHarness::via("10.0.0.1");
  h.routeIs(*h.config, "100.0.0.0/8")->viaIs(hop, {});
  auto own = h.routeIs(*h.config, "101.0.0.0/8");
  own->viaIs(hop, {});
  Routing::Rib::ResolutionRibProfileConfig connected;
  connected.methodAppend(Routing::Rib::ResolutionMethod::systemConnected());
  own->viaResRibProfileConfigIs(hop, connected);
  start();
  EXPECT_EQ(h.viasOf("100.0.0.0/8"), Set{"2: nextHop 10.0.0.1 intf  weight 0"});
  EXPECT_EQ(h.viasOf("101.0.0.0/8"), Set{"2: nextHop 10.0.0.1 intf  weight 0 profile [system-connected]"});

  Routing::Rib::ResolutionRibProfile tunnels;
  tunnels.methodAppend(Routing::Rib::ResolutionMethod::tunnelRib("gold"));
  tunnels.methodAppend(Routing::Rib::ResolutionMethod::systemUnicastRib());
  h.resRib->resRibProfileIs(tunnels);
  runToIdle();
  EXPECT_EQ(h.viasOf("100.0.0.0/8"), (Set{"2: nextHop 10.0.0.1 intf  weight 0",
                                          "2: nextHop 10.0.0.1 intf  weight 0 profile [tunnel-rib gold, "
                                          "system-unicast-rib]"}))
      << "re-handled without clearing: the former via stays until its route is reviewed";
  EXPECT_EQ(h.viasOf("101.0.0.0/8"), Set{"2: nextHop 10.0.0.1 intf  weight 0 profile [system-connected]"});

  // An IPv6 route through an IPv4 next hop goes to the other family's table, with its label and
  // the tunnel RIBs of the container profile.
  StaticRouteHarness v6(Ondex::AddressFamily::ipv6);
  v6.auxIpViaConfig = Routing::Rib::Ip::ViaConfig::ViaConfigIs(Routing::Rib::RoutingProtocol::staticConfig(),
                                                               Routing::Rib::Transport::transportIpv4());
  auto mapped = StaticRouteHarness::via("10.0.0.7");
  mapped.mplsLabelIs(Ondex::MplsLabel(100));
  v6.mpls->mplsRoutingIs(true);
  v6.routeIs(*v6.config, "2001:db8::/32")->viaIs(mapped, {});
  v6.start(scheduler());
  runToIdle();
  EXPECT_EQ(v6.viasOf("2001:db8::/32"),
            Set{"2: nextHop 10.0.0.7 intf  label 100 weight 0 profile [tunnel-rib system-colored-tunnel-rib, "
                "tunnel-rib system-tunnel-rib]"});
  EXPECT_EQ(v6.auxIpViaConfig->viaSize(), 1u);
  EXPECT_EQ(v6.ipViaConfig->viaSize(), 0u);
}

// Records the smallest number of vias a preference had at any change.
class ViaCountWatch : public Zel::Notifiee<Routing::Protocol::DedupViaKeyByViaType> {
 public:
  void onAttribute(Zel::AttrId, void const*) override {
    if (auto n = notifier()) least = std::min(least, n->dedupViaKeySize());
  }
  std::size_t least = 99;
};

TEST_F(RouteConfigSmTest, WeightChangeReplacesTheViaWithoutAGap) {
  auto hop = StaticRouteHarness::via("10.0.0.1");
  auto route = h.routeIs(*h.config, "50.0.0.0/8");
  route->viaIs(hop, RouteViaAttr(0, 10));
  start();
  EXPECT_EQ(h.viasOf("50.0.0.0/8"), Set{"2: nextHop 10.0.0.1 intf  weight 10"});
  auto watch = Zel::make<ViaCountWatch>();
  watch->notifierIs(h.routePref("50.0.0.0/8")->dedupViaKeyByViaType(Routing::Protocol::viaNextHopOnly));
  route->viaIs(hop, RouteViaAttr(0, 20));
  runToIdle();
  EXPECT_EQ(h.viasOf("50.0.0.0/8"), Set{"2: nextHop 10.0.0.1 intf  weight 20"});
  EXPECT_EQ(watch->least, 1u) << "the route never had no via";
  EXPECT_EQ(h.ipViaConfig->viaSize(), 1u) << "the former via left the table";
}

TEST_F(RouteConfigSmTest, BfdTrackedViaWithAnotherLocalAddressIsKept) {
  auto tracked = StaticRouteHarness::via("10.0.0.1");
  tracked.localAddrIs(addr("10.0.0.100"));
  auto route = h.routeIs(*h.config, "60.0.0.0/8");
  route->viaIs(tracked, {});
  route->bfdTrackedIs(tracked);
  start();
  auto pref = h.routePref("60.0.0.0/8");
  ASSERT_EQ(pref->bfdTrackedViaCollSize(), 1u);
  EXPECT_EQ(pref->bfdTrackedViaCollIteratorConst().value(), addr("10.0.0.100"));

  // The same next hop tracked under a second local address replaces the tracking; deleting the
  // first configuration then finds the other address and keeps the via.
  auto second = StaticRouteHarness::via("10.0.0.1");
  second.localAddrIs(addr("10.0.0.200"));
  route->viaIs(second, {});
  route->bfdTrackedIs(second);
  runToIdle();
  EXPECT_EQ(pref->bfdTrackedViaCollIteratorConst().value(), addr("10.0.0.200"));
  route->bfdTrackedDel(tracked);
  route->viaDel(tracked);
  runToIdle();
  EXPECT_EQ(h.viasOf("60.0.0.0/8"), Set{"2: nextHop 10.0.0.1 intf  weight 0"});
  route->bfdTrackedDel(second);
  route->viaDel(second);
  runToIdle();
  EXPECT_EQ(h.viasOf("60.0.0.0/8"), Set{});
  EXPECT_EQ(pref->bfdTrackedViaCollSize(), 0u);
}

TEST_F(RouteConfigSmTest, EgressVrfUnknownCreatedDeletedAndRenumbered) {
  auto red = Ip::VrfIpIntfStatus::VrfIpIntfStatusIs();
  red->ipIntfStatusIs(Ondex::IntfId("Ethernet5"))->dpRoutingEnabledIs(true);
  auto via = StaticRouteHarness::via("10.5.0.1", "Ethernet5");
  via.egressVrfIs("red");
  h.routeIs(*h.config, "70.0.0.0/8")->viaIs(via, {});
  start();
  EXPECT_EQ(h.viasOf("70.0.0.0/8"), Set{});
  EXPECT_TRUE(h.sm->interVrfRoutes().unresolved()->interVrfRouteConfigHas("red"));
  Routing::Protocol::ContainerKey const redKey("red", h.af);
  EXPECT_TRUE(h.egress->registeredClientsHas(redKey));

  // The VRF gets an id; its interface table is still missing, so the interface is not there.
  h.nameMap->vrfNameToIdIs("red", 5);
  runToIdle();
  EXPECT_TRUE(h.sm->interVrfRoutes().resolved()->interVrfRouteConfigHas("red"));
  EXPECT_FALSE(h.sm->interVrfRoutes().unresolved()->interVrfRouteConfigHas("red"));
  EXPECT_EQ(h.viasOf("70.0.0.0/8"), Set{});

  // Its interfaces appear: a helper watches them and the route is reviewed.
  h.ipStatus->vrfIpIntfStatusIs("red", red);
  runToIdle();
  EXPECT_TRUE(h.egress->egressVrfIntfStatusHelperSmHas(redKey));
  EXPECT_EQ(h.viasOf("70.0.0.0/8"), Set{"1: nextHop 10.5.0.1 intf Ethernet5 weight 0 vrf 5"});

  // Renumbered: the via of the old id goes, one of the new id comes, in one event.
  h.nameMap->vrfNameToIdIs("red", 6);
  runToIdle();
  EXPECT_EQ(h.viasOf("70.0.0.0/8"), Set{"1: nextHop 10.5.0.1 intf Ethernet5 weight 0 vrf 6"});
  EXPECT_EQ(h.sm->interVrfRoutes().resolved()->interVrfRouteConfig("red")->vrfId(), Vrf::VrfIdMap::VrfId(6));

  // Deleted: back to unresolved, no via.
  h.nameMap->vrfNameToIdDel("red");
  runToIdle();
  EXPECT_EQ(h.viasOf("70.0.0.0/8"), Set{});
  EXPECT_TRUE(h.sm->interVrfRoutes().unresolved()->interVrfRouteConfigHas("red"));
  EXPECT_FALSE(h.sm->interVrfRoutes().resolved()->interVrfRouteConfigHas("red"));

  // The route goes: the indexes and the registration go with it.
  h.config->routeDel(routeKey("70.0.0.0/8"));
  runToIdle();
  EXPECT_FALSE(h.sm->interVrfRoutes().unresolved()->interVrfRouteConfigHas("red"));
  EXPECT_FALSE(h.egress->registeredClientsHas(redKey));
  EXPECT_FALSE(h.egress->egressVrfIntfStatusHelperSmHas(redKey));
  EXPECT_EQ(h.ipViaConfig->viaSize(), 0u);
}

TEST_F(RouteConfigSmTest, TeardownReleasesEverything) {
  auto const live = liveSinceStart();
  {
    StaticRouteHarness local;
    local.intfIs("Ethernet1");
    auto via = StaticRouteHarness::via("10.0.0.1", "Ethernet1");
    auto egressVia = StaticRouteHarness::via("10.0.0.2");
    egressVia.egressVrfIs("blue");
    for (int i = 0; i < 10; ++i) {
      std::string p = "80.0." + std::to_string(i) + ".0/24";
      auto route = local.routeIs(*local.config, p.c_str());
      route->viaIs(via, RouteViaAttr(1, 1));
      route->viaIs(egressVia, {});
      route->bfdTrackedIs(via);
      local.routeIs(*local.dynamic, p.c_str());
    }
    local.start(scheduler());
    runToIdle();
    EXPECT_EQ(local.status->routeSize(), 10u);
    local.stop();
    runToIdle();
    EXPECT_EQ(local.status->routeSize(), 0u) << "the delete handlers took the routes out";
    EXPECT_EQ(local.ipViaConfig->viaSize(), 0u);
    EXPECT_FALSE(local.egress->registeredClientsHas(Routing::Protocol::ContainerKey("blue", local.af)));
  }
  runToIdle();
  EXPECT_EQ(Plinth::liveCount<Routing::Static::RouteConfigSm>(), 0);
  EXPECT_EQ(Plinth::liveCount<Routing::Protocol::RoutePref>(), 0);
  EXPECT_EQ(liveSinceStart(), live);
}

// Route input: two users of one key. The users' collection walks names in its hash order, so the
// names are chosen to stand in that order the other way round from their byte order: a winner taken
// from the walk would be the wrong one.
class RouteInputUsersTest : public RouteConfigSmTest {
 protected:
  void SetUp() override {
    RouteConfigSmTest::SetUp();
    h.configByUser = Routing::Input::ConfigByUser::ConfigByUserIs();
    h.configTagStatus = ConfigTag::ConfigTagStatus::ConfigTagStatusIs();
    h.configTagIdState = ConfigTag::ConfigTagIdState::ConfigTagIdStateIs();
    h.configTagIdState->tagIdToTagStrIs(3, "maint");
    h.configTagStatus->configTagEntryIs("maint")->operStateIs(1);
    auto const& coll = h.configByUser->configColl();
    for (int i = 0; i < 64 && first.empty(); ++i) {
      Quill::String const a("user" + std::to_string(i));
      Quill::String const b("user" + std::to_string(i + 1));
      if (coll.orderLess(b, a)) first = a, second = b;
    }
    ASSERT_FALSE(first.empty());
  }
  Quill::Ptr<Routing::RouteInput> userIs(Quill::String const& name, char const* hop, unsigned pref = 1) {
    auto& list = lists[name.str()];
    if (!list) list = Routing::RouteInput::RouteInputIs(name);
    list->routingProtoIs(16);
    list->routeIs(routeKey("90.0.0.0/8", pref), RouteType::forward)->viaIs(StaticRouteHarness::via(hop), {});
    h.configByUser->configIs(list);
    return list;
  }
  static Set one(char const* hop) { return Set{std::string("4: nextHop ") + hop + " intf  weight 0"}; }

  std::map<std::string, Quill::Ptr<Routing::RouteInput>> lists;  // the writable side of each user's list
  Quill::String first;                                            // sorts first by name, walked second
  Quill::String second;
};

TEST_F(RouteInputUsersTest, TheUserWhoseNameSortsFirstWinsInEitherOrderOfArrival) {
  for (bool firstComesFirst : {true, false}) {
    SCOPED_TRACE(firstComesFirst ? "first user's list made first" : "second user's list made first");
    h.configByUser->configDelAll();
    lists.clear();
    h.stop();
    runToIdle();
    // 1. Both lists are there when the machine starts; the second user has one more preference.
    if (firstComesFirst) userIs(first, "10.0.0.1");
    userIs(second, "10.0.0.2");
    userIs(second, "10.0.0.7", 7);
    if (!firstComesFirst) userIs(first, "10.0.0.1");
    h.start(scheduler(), Routing::Rib::RoutingProtocol::routeInput());
    runToIdle();
    EXPECT_EQ(h.prefsOf("90.0.0.0/8"), (std::vector<unsigned>{1, 7})) << "step 1";
    EXPECT_EQ(h.viasOf("90.0.0.0/8"), one("10.0.0.1")) << "step 1";

    // 2. A via of the losing route changes: the store does not follow it.
    userIs(second, "10.0.0.3");
    runToIdle();
    EXPECT_EQ(h.viasOf("90.0.0.0/8"), one("10.0.0.1")) << "step 2";

    // 3. The winner's route is disabled by its tag, then enabled: each time the key passes whole.
    lists[first.str()]->route(routeKey("90.0.0.0/8"))->commandTagIdIs(3);
    h.configTagStatus->configTagEntry("maint")->operStateIs(2);
    h.sm->handleRoute(routeKey("90.0.0.0/8"));
    runToIdle();
    EXPECT_EQ(h.viasOf("90.0.0.0/8"), (Set{"4: nextHop 10.0.0.2 intf  weight 0", "4: nextHop 10.0.0.3 intf  weight 0"}))
        << "step 3";
    h.configTagStatus->configTagEntry("maint")->operStateIs(1);
    h.sm->handleRoute(routeKey("90.0.0.0/8"));
    runToIdle();
    EXPECT_EQ(h.viasOf("90.0.0.0/8"), one("10.0.0.1")) << "step 3";
    EXPECT_EQ(h.routePref("90.0.0.0/8")->fibRouteType(), 35);

    // 4. A user of a name that sorts before both arrives, then the martian list: each takes over.
    userIs("aaa", "10.0.0.4");
    runToIdle();
    EXPECT_EQ(h.viasOf("90.0.0.0/8"), one("10.0.0.4")) << "step 4";
    auto martian = Routing::RouteInput::RouteInputIs(Routing::Input::kMartianUser);
    martian->routingProtoIs(60);
    martian->routeIs(routeKey("90.0.0.0/8"), RouteType::drop);
    h.configByUser->configIs(martian);
    runToIdle();
    EXPECT_EQ(h.viasOf("90.0.0.0/8").size(), 1u) << "step 4";
    EXPECT_NE(h.viasOf("90.0.0.0/8").begin()->find("Null0"), std::string::npos) << "step 4";
    EXPECT_EQ(h.routePref("90.0.0.0/8")->fibRouteType(), 36) << "step 4";

    // 5. Lists go one by one, in the order that leaves each winner in turn.
    h.configByUser->configDel(Routing::Input::kMartianUser);
    h.configByUser->configDel("aaa");
    runToIdle();
    EXPECT_EQ(h.viasOf("90.0.0.0/8"), one("10.0.0.1")) << "step 5";
    h.configByUser->configDel(first);
    runToIdle();
    EXPECT_EQ(h.viasOf("90.0.0.0/8"), (Set{"4: nextHop 10.0.0.2 intf  weight 0", "4: nextHop 10.0.0.3 intf  weight 0"}))
        << "step 5";
    h.configByUser->configDel(second);
    runToIdle();
    EXPECT_EQ(h.status->route(pfx("90.0.0.0/8")), nullptr) << "step 5";
  }
}

TEST_F(RouteInputUsersTest, AKeyPassingBetweenUsersRouteByRouteLeavesNothingBehind) {
  h.start(scheduler(), Routing::Rib::RoutingProtocol::routeInput());
  runToIdle();
  // The loser's route comes first and is entered; the winner's takes the key from it.
  auto losing = userIs(second, "10.0.0.2");
  runToIdle();
  EXPECT_EQ(h.viasOf("90.0.0.0/8"), one("10.0.0.2"));
  auto winning = userIs(first, "10.0.0.1");
  runToIdle();
  EXPECT_EQ(h.viasOf("90.0.0.0/8"), one("10.0.0.1"));
  // The loser's route is replaced and removed: the winner's entry stays as it is.
  losing->routeDel(routeKey("90.0.0.0/8"));
  userIs(second, "10.0.0.5");
  losing->routeDel(routeKey("90.0.0.0/8"));
  runToIdle();
  EXPECT_EQ(h.viasOf("90.0.0.0/8"), one("10.0.0.1"));
  // The winner's route is replaced by another of the key: only the new route's vias.
  winning->routeDel(routeKey("90.0.0.0/8"));
  userIs(first, "10.0.0.6");
  runToIdle();
  EXPECT_EQ(h.viasOf("90.0.0.0/8"), one("10.0.0.6"));
  EXPECT_EQ(h.ipViaConfig->viaSize(), 1u) << "no via of a former route is held";
}

TEST_F(RouteConfigSmTest, CommandTagTakesItsRoutesOutAndBringsThemBack) {
  h.configTagStatus = ConfigTag::ConfigTagStatus::ConfigTagStatusIs();
  h.configTagIdState = ConfigTag::ConfigTagIdState::ConfigTagIdStateIs();
  h.configTagStatus->configTagEntryIs("maint")->operStateIs(1);
  auto keys = Routing::RouteKeySet::RouteKeySetIs("maint");
  keys->routeKeySetIs(routeKey("110.0.0.0/8"));
  auto index = Routing::RouteListTaggedConfig::RouteListTaggedConfigIs(h.vrfName);
  index->tagToRouteKeySetIs("maint", keys);
  h.tagged = Routing::VrfRouteListTaggedConfig::VrfRouteListTaggedConfigIs();
  h.tagged->vrfConfigIs(h.vrfName, index);
  auto route = h.routeIs(*h.config, "110.0.0.0/8");
  route->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  route->commandTagIdIs(3);
  h.routeIs(*h.dynamic, "110.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.2"), {});
  start();
  EXPECT_EQ(h.viasOf("110.0.0.0/8"), Set{"2: nextHop 10.0.0.1 intf  weight 0"}) << "the id has no name yet: enabled";

  h.configTagIdState->tagIdToTagStrIs(3, "maint");
  h.configTagStatus->configTagEntry("maint")->operStateIs(2);
  runToIdle();
  EXPECT_EQ(h.status->route(pfx("110.0.0.0/8")), nullptr) << "disabled: out, and the dynamic twin stays shadowed";
  h.configTagStatus->configTagEntry("maint")->operStateIs(3);
  runToIdle();
  EXPECT_EQ(h.viasOf("110.0.0.0/8"), Set{"2: nextHop 10.0.0.1 intf  weight 0"});
  h.configTagStatus->configTagEntry("maint")->operStateIs(0);
  runToIdle();
  EXPECT_EQ(h.status->route(pfx("110.0.0.0/8")), nullptr);

  // The VRF's index goes: its routes are reviewed once more, and the machine with it.
  h.tagged->vrfConfigDel(h.vrfName);
  EXPECT_FALSE(h.sm->taggedRouteConfigSm());
  EXPECT_EQ(h.sm->backlogSize(), 1u);
  runToIdle();
}

}  // namespace
}  // namespace BowlineTest
