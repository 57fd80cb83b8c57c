// RouteConfigSm driven through its input records: routes, settings and VRF events go in, the
// scheduler runs to idle with a small item budget per run, and the status store and via table are
// read back. Each scenario runs for IPv4 and IPv6 (addresses from the harness's family table).
#include "static/RouteConfigSm.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/runtime/Slab.h"
#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

using Routing::RouteType;
using Routing::RouteViaAttr;
using Routing::General::StaticRouteEcmpState;
using Set = std::multiset<std::string>;
using Prefs = std::vector<unsigned>;

class RouteConfigSmTest : public RuntimeFixture, public ::testing::WithParamInterface<Family> {
 protected:
  void start() {
    h.start(scheduler());
    runToIdle();
  }
  // The i-th next hop as a via, on an interface where one is given.
  [[nodiscard]] Routing::Via via(unsigned hop, char const* intf = "") const {
    return StaticRouteHarness::via(f.hop(hop), intf);
  }
  // What viasOf shows for the i-th next hop alone: a recursive via (type 2) unless told otherwise.
  [[nodiscard]] std::string nh(unsigned hop, std::string const& rest = " weight 0", unsigned type = 2) const {
    return viaText(type, f.hop(hop), "", rest);
  }
  [[nodiscard]] std::string net(unsigned i) const { return f.net(i); }
  void leakIs(Routing::RouteList& source, std::string const& prefix, unsigned pref, Vrf::VrfIdMap::VrfId from,
              unsigned hop = 0) {
    auto route = source.routeIs(routeKey(prefix, pref), RouteType::forward);
    if (hop) route->viaIs(via(hop), {});
    h.leak->leakRouteIs(Routing::Protocol::LeakRoute::LeakRouteIs(Routing::Protocol::VrfIdAf(from, h.af), route));
  }
  void globalPrefIs(unsigned pref) {
    h.general->staticRoutePreferenceIs(Routing::RoutePreference(static_cast<std::uint8_t>(pref)));
  }

  Family const f = GetParam();
  StaticRouteHarness h{f.af};
};

TEST_P(RouteConfigSmTest, StaticBeatsDynamicBeatsLeakedAndEachTakesOverWhenTheOneAboveGoes) {
  auto const p = net(1);
  h.routeIs(*h.config, p)->viaIs(via(1), {});
  h.routeIs(*h.dynamic, p)->viaIs(via(2), {});
  auto source = Routing::RouteList::RouteListIs();
  leakIs(*source, p, 1, 7, 3);  // from VRF 7
  start();
  EXPECT_EQ(h.viasOf(p), Set{nh(1)}) << "step 1";
  EXPECT_EQ(h.status->route(pfx(p))->srcVrfId(), Vrf::VrfIdMap::VrfId(0)) << "step 1";

  // 2. A dynamic via change under the static route does not reach the store.
  h.dynamic->route(routeKey(p))->viaIs(via(9), {});
  runToIdle();
  EXPECT_EQ(h.viasOf(p), Set{nh(1)}) << "step 2";

  h.config->routeDel(routeKey(p));
  runToIdle();
  EXPECT_EQ(h.viasOf(p), (Set{nh(2), nh(9)})) << "step 2";

  // 3. The dynamic route goes: the leaked route comes into use, resolved in its source VRF.
  h.dynamic->routeDel(routeKey(p));
  runToIdle();
  EXPECT_EQ(h.viasOf(p), Set{nh(3, " weight 0 vrf 7")}) << "step 3";
  EXPECT_EQ(h.status->route(pfx(p))->srcVrfId(), Vrf::VrfIdMap::VrfId(7)) << "step 3";
  EXPECT_TRUE(h.sm->leakRouteInUseHas(routeKey(p))) << "step 3";

  // 4. A static route comes back: the leaked route is withdrawn first.
  h.routeIs(*h.config, p)->viaIs(via(1), {});
  runToIdle();
  EXPECT_EQ(h.viasOf(p), Set{nh(1)}) << "step 4";
  EXPECT_FALSE(h.sm->leakRouteInUseHas(routeKey(p))) << "step 4";

  // 5. All sources gone: nothing of the prefix is left, and no via stays in the table.
  h.leak->leakRouteDel(routeKey(p));
  h.config->routeDel(routeKey(p));
  runToIdle();
  EXPECT_EQ(h.status->route(pfx(p)), nullptr) << "step 5";
  EXPECT_EQ(h.ipViaConfig->viaSize(), 0u) << "step 5";
}

TEST_P(RouteConfigSmTest, ManyChangesOfOneKeyAreReviewedOnce) {
  start();
  auto route = h.routeIs(*h.config, net(2));
  for (unsigned i = 0; i < 20; ++i) route->tagIs(i);
  EXPECT_EQ(h.sm->backlogSize(), 1u);
  runToIdle();
  EXPECT_EQ(h.status->route(pfx(net(2)))->routeChangedVersion(), 1u);
  EXPECT_EQ(h.routePref(net(2))->tag(), 19u);
}

TEST_P(RouteConfigSmTest, ReviewOfAllRoutesYieldsAndResumesAtEachBookmark) {
  itemsPerRun = 3;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
  auto source = Routing::RouteList::RouteListIs();
  for (unsigned i = 0; i < 7; ++i) {
    h.routeIs(*h.config, net(i));
    h.routeIs(*h.dynamic, net(8 + i));
    leakIs(*source, net(16 + i), 1, 0);
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
  for (int walk : {0, 1, 2}) EXPECT_NE(std::find(bookmarks.begin(), bookmarks.end(), walk), bookmarks.end()) << walk;
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

TEST_P(RouteConfigSmTest, GracefulRestartHoldsTheReviewUntilStartReadyVerification) {
  auto const routesReady = [this] { return f.v6() ? h.ready->v6RoutesReady() : h.ready->v4RoutesReady(); };
  h.grState = Routing::Protocol::GrState::GrStateIs(true);
  h.routeIs(*h.config, net(3))->viaIs(via(1), RouteViaAttr(0, 0));
  start();
  EXPECT_EQ(h.status->routeSize(), 0u);
  EXPECT_FALSE(routesReady());
  EXPECT_TRUE(h.ipViaConfig->restartingVrfHas(0));
  h.routeIs(*h.config, net(4));
  runToIdle();
  EXPECT_EQ(h.status->routeSize(), 0u);
  EXPECT_EQ(h.sm->backlogSize(), 1u) << "the backlog waits";

  h.grState->startReadyVerificationIs(true);
  runToIdle();
  EXPECT_EQ(h.status->routeSize(), 2u);
  EXPECT_TRUE(routesReady());
  EXPECT_FALSE(f.v6() ? h.ready->v4RoutesReady() : h.ready->v6RoutesReady()) << "the other family's is not ours";
  EXPECT_TRUE(h.status->initialized());
  EXPECT_FALSE(h.ipViaConfig->restartingVrfHas(0));
}

TEST_P(RouteConfigSmTest, GlobalPreferenceMovesDefaultPreferenceRoutes) {
  globalPrefIs(40);
  h.routeIs(*h.config, net(5))->viaIs(via(1), {});
  h.routeIs(*h.config, net(6), 5)->viaIs(via(1), {});
  h.routeIs(*h.config, net(7), 40)->viaIs(via(1), {});
  start();
  EXPECT_EQ(h.prefsOf(net(5)), Prefs{40}) << "step 1";
  EXPECT_EQ(h.prefsOf(net(6)), Prefs{5}) << "step 1";
  EXPECT_EQ(h.prefsOf(net(7)), Prefs{}) << "step 1: an explicit preference equal to the global one is left out";

  globalPrefIs(50);
  runToIdle();
  EXPECT_EQ(h.prefsOf(net(5)), Prefs{50}) << "step 2";
  EXPECT_EQ(h.prefsOf(net(6)), Prefs{5}) << "step 2";
  EXPECT_EQ(h.prefsOf(net(7)), Prefs{40}) << "step 2";

  globalPrefIs(1);
  runToIdle();
  EXPECT_EQ(h.prefsOf(net(5)), Prefs{1}) << "step 3";
  EXPECT_EQ(h.prefsOf(net(7)), Prefs{40}) << "step 3";

  // 4. Deleting one of two preferences leaves the prefix; the last takes it away.
  h.routeIs(*h.config, net(5), 9)->viaIs(via(1), {});
  runToIdle();
  EXPECT_EQ(h.prefsOf(net(5)), (Prefs{1, 9})) << "step 4";
  h.config->routeDel(routeKey(net(5)));
  runToIdle();
  EXPECT_EQ(h.prefsOf(net(5)), Prefs{9}) << "step 4";
  h.config->routeDel(routeKey(net(5), 9));
  runToIdle();
  EXPECT_EQ(h.status->route(pfx(net(5))), nullptr) << "step 4";
}

// One prefix configured without a preference (D, at the global preference G), at G explicitly (E)
// and at another preference (F). Each key is also reviewed alone, in both orders: the outcome may
// not depend on which key's review came last.
TEST_P(RouteConfigSmTest, ARouteAtTheGlobalPreferenceKeepsItsEntryWhateverTheOrderOfReviews) {
  auto const p = net(5);
  auto const d = routeKey(p);
  auto const e = routeKey(p, 40);
  auto const g = routeKey(p, 60);
  auto const at = [&](unsigned pref) { return h.viasOf(p, pref); };
  globalPrefIs(40);
  h.config->routeIs(e, RouteType::forward)->viaIs(via(2), {});
  h.config->routeIs(g, RouteType::forward)->viaIs(via(3), {});
  h.config->routeIs(d, RouteType::forward)->viaIs(via(1), {});
  start();
  // 1. D holds G; E, of explicit preference G, is not installed and takes nothing of D's.
  EXPECT_EQ(h.prefsOf(p), (Prefs{40, 60})) << "step 1";
  EXPECT_EQ(at(40), Set{nh(1)}) << "step 1";
  for (auto const& order : {std::vector{e, g, d}, std::vector{d, g, e}, std::vector{g, e}, std::vector{e}}) {
    for (auto const& key : order) h.sm->handleRoute(key);
    runToIdle();
    EXPECT_EQ(h.prefsOf(p), (Prefs{40, 60})) << "step 1, reviewed alone";
    EXPECT_EQ(at(40), Set{nh(1)}) << "step 1, reviewed alone";
  }
  // 2. A via of E changes: D's entry does not take it.
  h.config->route(e)->viaIs(via(4), {});
  runToIdle();
  EXPECT_EQ(at(40), Set{nh(1)}) << "step 2";
  // 3. D goes and comes back: E alone is not installed; D takes its entry whole again.
  h.config->routeDel(d);
  runToIdle();
  EXPECT_EQ(h.prefsOf(p), Prefs{60}) << "step 3";
  h.config->routeIs(d, RouteType::forward)->viaIs(via(1), {});
  runToIdle();
  EXPECT_EQ(at(40), Set{nh(1)}) << "step 3";
  // 4. G moves to F's preference: E now has its own entry, D holds 60 and F is not installed.
  globalPrefIs(60);
  runToIdle();
  EXPECT_EQ(h.prefsOf(p), (Prefs{40, 60})) << "step 4";
  EXPECT_EQ(at(40), (Set{nh(2), nh(4)})) << "step 4";
  EXPECT_EQ(at(60), Set{nh(1)}) << "step 4";
  for (auto const& key : {d, e, g}) h.sm->handleRoute(key);
  runToIdle();
  EXPECT_EQ(at(60), Set{nh(1)}) << "step 4, reviewed again";
  // 5. G goes back to 1 and D goes before the review that would have moved it: nothing of D stays.
  globalPrefIs(1);
  h.config->routeDel(d);
  runToIdle();
  EXPECT_EQ(h.prefsOf(p), (Prefs{40, 60})) << "step 5";
  EXPECT_EQ(at(60), Set{nh(3)}) << "step 5";
}

TEST_P(RouteConfigSmTest, DropAndToCpuRoutesHaveOneViaWhateverTheConfiguration) {
  Set const null0{viaText(4, "", "Null0")};
  Set const null0Indication{viaText(4, "", "Null0", " flags 0x20 weight 0")};
  Set const cpu{viaText(4, "", "", " flags 0x40 weight 0")};
  h.routeIs(*h.config, net(8), 1, RouteType::drop)->viaIs(via(1), {});
  h.routeIs(*h.config, net(9), 1, RouteType::dropWithIndication);
  h.routeIs(*h.config, f.toCpu())->viaIs(via(1), {});
  h.routeIs(*h.config, f.nearToCpu())->viaIs(via(1), {});
  start();
  EXPECT_EQ(h.viasOf(net(8)), null0);
  EXPECT_EQ(h.routePref(net(8))->fibRouteType(), 29);
  EXPECT_EQ(h.viasOf(net(9)), null0Indication);
  EXPECT_EQ(h.routePref(net(9))->fecType(), 9);
  EXPECT_EQ(h.routePref(net(9))->fibRouteType(), 40);
  EXPECT_EQ(h.viasOf(f.toCpu()), cpu);
  EXPECT_EQ(h.viasOf(f.nearToCpu()), Set{nh(1)});
  EXPECT_EQ(h.routePref(f.nearToCpu())->fibRouteType(), 7);

  // Vias configured on the live routes change nothing either.
  for (auto const& prefix : {net(8), net(9), f.toCpu()}) h.config->route(routeKey(prefix))->viaIs(via(2), {});
  runToIdle();
  EXPECT_EQ(h.viasOf(net(8)), null0);
  EXPECT_EQ(h.viasOf(net(9)), null0Indication);
  EXPECT_EQ(h.viasOf(f.toCpu()), cpu);
}

TEST_P(RouteConfigSmTest, InterfaceHostPrefixAndLabelRules) {
  h.intfIs("Ethernet1");
  h.mpls->mplsRoutingIs(false);
  auto intfOnly = StaticRouteHarness::via("", "Ethernet1");
  h.routeIs(*h.config, f.host(1))->viaIs(intfOnly, {});
  h.routeIs(*h.config, net(10))->viaIs(intfOnly, {});
  h.routeIs(*h.config, f.host(4))->viaIs(via(9, "Ethernet1"), {});
  h.routeIs(*h.config, net(11))->viaIs(via(2, "Ethernet2"), {});
  auto labelled = via(3);
  labelled.mplsLabelIs(Ondex::MplsLabel(16));
  h.routeIs(*h.config, net(12))->viaIs(labelled, {});
  start();
  EXPECT_EQ(h.viasOf(f.host(1)), Set{viaText(1, f.hop(1), "Ethernet1", " flags 0x100 weight 0")})
      << "step 1: the host prefix is the next hop";
  EXPECT_EQ(h.viasOf(net(10)), Set{viaText(3, "", "Ethernet1")}) << "step 1";
  EXPECT_EQ(h.viasOf(f.host(4)), Set{viaText(1, f.hop(9), "Ethernet1")}) << "step 1";
  EXPECT_EQ(h.viasOf(net(11)), Set{}) << "step 1: interface missing";
  EXPECT_EQ(h.prefsOf(net(11)), Prefs{1}) << "step 1: the preference stays, without vias";
  EXPECT_EQ(h.viasOf(net(12)), Set{}) << "step 1: label with MPLS routing off";

  h.intfIs("Ethernet2");
  h.mpls->mplsRoutingIs(true);
  runToIdle();
  EXPECT_EQ(h.viasOf(net(11)), Set{viaText(1, f.hop(2), "Ethernet2")}) << "step 2";
  EXPECT_EQ(h.viasOf(net(12)), Set{nh(3, " label 16 weight 0")}) << "step 2";

  h.intfIs("Ethernet2", false);
  runToIdle();
  EXPECT_EQ(h.viasOf(net(11)), Set{}) << "step 3: interface down";
  h.intfIs("Ethernet2");
  runToIdle();
  EXPECT_EQ(h.viasOf(net(11)), Set{viaText(1, f.hop(2), "Ethernet2")}) << "step 3";

  h.intfDel("Ethernet2");
  h.mpls->mplsRoutingIs(false);
  runToIdle();
  EXPECT_EQ(h.viasOf(net(11)), Set{}) << "step 4";
  EXPECT_EQ(h.viasOf(net(12)), Set{}) << "step 4";
}

// Static routes and dynamic routes (one under a static route of its key) with a via of each type;
// the ECMP grouping changes, through the via walk, and changes again during a walk.
TEST_P(RouteConfigSmTest, EcmpStateChangeRegroupsEveryViaThroughTheWalk) {
  itemsPerRun = 2;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
  h.intfIs("Ethernet1");
  std::vector<std::string> grouped;  // the prefixes whose vias are regrouped
  for (unsigned i = 0; i < 9; ++i) {
    auto const p = net(i);
    auto route = h.routeIs(i < 6 ? *h.config : *h.dynamic, p);
    route->viaIs(via(1), {});
    route->viaIs(via(2, "Ethernet1"), {});
    grouped.push_back(p);
  }
  h.routeIs(*h.dynamic, net(0))->viaIs(via(3), {});  // shadowed by the static route
  h.routeIs(*h.config, net(9))->viaIs(via(3), {});
  start();
  Set const byType{viaText(1, f.hop(2), "Ethernet1"), nh(1)};
  Set const single{nh(1, " weight 0", 4), viaText(4, f.hop(2), "Ethernet1")};
  EXPECT_EQ(h.viasOf(net(7)), byType) << "step 1";

  h.general->staticRouteEcmpStateIs(StaticRouteEcmpState::singleGroup);
  EXPECT_TRUE(h.sm->ecmpStateChanged()) << "step 2";
  runToIdle();
  EXPECT_FALSE(h.sm->ecmpStateChanged()) << "step 2";
  EXPECT_GT(h.sm->viaReevaluateWalkSm()->walkTask()->taskRuns(), 1u) << "step 2: the walk yielded";
  for (auto const& p : grouped) EXPECT_EQ(h.viasOf(p), single) << "step 2, " << p;
  EXPECT_EQ(h.viasOf(net(9)), Set{nh(3, " weight 0", 4)}) << "step 2";

  // 3. A second change during a walk starts it over; the flag stays until the walk ends.
  h.general->staticRouteEcmpStateIs(StaticRouteEcmpState::groupByViaType);
  scheduler()->runOnce();
  h.general->staticRouteEcmpStateIs(StaticRouteEcmpState::singleGroup);
  h.general->staticRouteEcmpStateIs(StaticRouteEcmpState::groupByViaType);
  EXPECT_TRUE(h.sm->ecmpStateChanged()) << "step 3";
  runToIdle();
  EXPECT_FALSE(h.sm->ecmpStateChanged()) << "step 3";
  for (auto const& p : grouped) EXPECT_EQ(h.viasOf(p), byType) << "step 3, " << p;
  EXPECT_EQ(h.viasOf(net(9)), Set{nh(3)}) << "step 3";
  EXPECT_EQ(h.ipViaConfig->viaSize(), 3u) << "step 3: the vias are shared by all routes";
}

TEST_P(RouteConfigSmTest, ResolutionProfileChangeRehandlesDefaultViasOnly) {
  h.routeIs(*h.config, net(13))->viaIs(via(1), {});
  auto own = h.routeIs(*h.config, net(14));
  own->viaIs(via(1), {});
  Routing::Rib::ResolutionRibProfileConfig connected;
  connected.methodAppend(Routing::Rib::ResolutionMethod::systemConnected());
  own->viaResRibProfileConfigIs(via(1), connected);
  start();
  EXPECT_EQ(h.viasOf(net(13)), Set{nh(1)});
  EXPECT_EQ(h.viasOf(net(14)), Set{nh(1, " weight 0 profile [system-connected]")});

  Routing::Rib::ResolutionRibProfile tunnels;
  tunnels.methodAppend(Routing::Rib::ResolutionMethod::tunnelRib("gold"));
  tunnels.methodAppend(Routing::Rib::ResolutionMethod::systemUnicastRib());
  h.resRib->resRibProfileIs(tunnels);
  runToIdle();
  EXPECT_EQ(h.viasOf(net(13)), (Set{nh(1), nh(1, " weight 0 profile [tunnel-rib gold, system-unicast-rib]")}))
      << "re-handled without clearing: the former via stays until its route is reviewed";
  EXPECT_EQ(h.viasOf(net(14)), Set{nh(1, " weight 0 profile [system-connected]")});
}

// Records the smallest number of vias a preference had at any change.
class ViaCountWatch : public Zel::Notifiee<Routing::Protocol::DedupViaKeyByViaType> {
 public:
  void onAttribute(Zel::AttrId, void const*) override {
    if (auto n = notifier()) least = std::min(least, n->dedupViaKeySize());
  }
  std::size_t least = 99;
};

TEST_P(RouteConfigSmTest, WeightChangeReplacesTheViaWithoutAGap) {
  auto route = h.routeIs(*h.config, net(15));
  route->viaIs(via(1), RouteViaAttr(0, 10));
  start();
  EXPECT_EQ(h.viasOf(net(15)), Set{nh(1, " weight 10")});
  auto watch = Zel::make<ViaCountWatch>();
  watch->notifierIs(h.routePref(net(15))->dedupViaKeyByViaType(Routing::Protocol::viaNextHopOnly));
  route->viaIs(via(1), RouteViaAttr(0, 20));
  runToIdle();
  EXPECT_EQ(h.viasOf(net(15)), Set{nh(1, " weight 20")});
  EXPECT_EQ(watch->least, 1u) << "the route never had no via";
  EXPECT_EQ(h.ipViaConfig->viaSize(), 1u) << "the former via left the table";
}

TEST_P(RouteConfigSmTest, BfdTrackedViaWithAnotherLocalAddressIsKept) {
  auto tracked = via(1);
  tracked.localAddrIs(addr(f.hop(100)));
  auto route = h.routeIs(*h.config, net(16));
  route->viaIs(tracked, {});
  route->bfdTrackedIs(tracked);
  start();
  auto pref = h.routePref(net(16));
  ASSERT_EQ(pref->bfdTrackedViaCollSize(), 1u);
  EXPECT_EQ(pref->bfdTrackedViaCollIteratorConst().value(), addr(f.hop(100)));

  // The same next hop tracked under a second local address replaces the tracking; deleting the
  // first configuration then finds the other address and keeps the via.
  auto second = via(1);
  second.localAddrIs(addr(f.hop(200)));
  route->viaIs(second, {});
  route->bfdTrackedIs(second);
  runToIdle();
  EXPECT_EQ(pref->bfdTrackedViaCollIteratorConst().value(), addr(f.hop(200)));
  route->bfdTrackedDel(tracked);
  route->viaDel(tracked);
  runToIdle();
  EXPECT_EQ(h.viasOf(net(16)), Set{nh(1)});
  route->bfdTrackedDel(second);
  route->viaDel(second);
  runToIdle();
  EXPECT_EQ(h.viasOf(net(16)), Set{});
  EXPECT_EQ(pref->bfdTrackedViaCollSize(), 0u);
}

TEST_P(RouteConfigSmTest, EgressVrfUnknownCreatedDeletedAndRenumbered) {
  auto const p = net(17);
  auto egressVia = via(5, "Ethernet5");
  egressVia.egressVrfIs("red");
  h.routeIs(*h.config, p)->viaIs(egressVia, {});
  start();
  auto const& routes = h.sm->interVrfRoutes();
  Routing::Protocol::ContainerKey const redKey("red", h.af);
  EXPECT_EQ(h.viasOf(p), Set{}) << "step 1";
  EXPECT_TRUE(routes.unresolved()->interVrfRouteConfigHas("red")) << "step 1";
  EXPECT_TRUE(h.egress->registeredClientsHas(redKey)) << "step 1";

  // 2. The VRF gets an id; its interface table is still missing, so the interface is not there.
  h.nameMap->vrfNameToIdIs("red", 5);
  runToIdle();
  EXPECT_TRUE(routes.resolved()->interVrfRouteConfigHas("red")) << "step 2";
  EXPECT_FALSE(routes.unresolved()->interVrfRouteConfigHas("red")) << "step 2";
  EXPECT_EQ(h.viasOf(p), Set{}) << "step 2";

  // 3. Its interfaces appear: a helper watches them and the route is reviewed.
  h.vrfIntfIs("red", "Ethernet5");
  runToIdle();
  EXPECT_TRUE(h.egress->egressVrfIntfStatusHelperSmHas(redKey)) << "step 3";
  EXPECT_EQ(h.viasOf(p), Set{viaText(1, f.hop(5), "Ethernet5", " weight 0 vrf 5")}) << "step 3";

  // 4. Renumbered: the via of the old id goes, one of the new id comes, in one event.
  h.nameMap->vrfNameToIdIs("red", 6);
  runToIdle();
  EXPECT_EQ(h.viasOf(p), Set{viaText(1, f.hop(5), "Ethernet5", " weight 0 vrf 6")}) << "step 4";
  EXPECT_EQ(routes.resolved()->interVrfRouteConfig("red")->vrfId(), Vrf::VrfIdMap::VrfId(6)) << "step 4";

  // 5. Deleted: back to unresolved, no via.
  h.nameMap->vrfNameToIdDel("red");
  runToIdle();
  EXPECT_EQ(h.viasOf(p), Set{}) << "step 5";
  EXPECT_TRUE(routes.unresolved()->interVrfRouteConfigHas("red")) << "step 5";
  EXPECT_FALSE(routes.resolved()->interVrfRouteConfigHas("red")) << "step 5";

  // 6. The route goes: the indexes and the registration go with it.
  h.config->routeDel(routeKey(p));
  runToIdle();
  EXPECT_FALSE(routes.unresolved()->interVrfRouteConfigHas("red")) << "step 6";
  EXPECT_FALSE(h.egress->registeredClientsHas(redKey)) << "step 6";
  EXPECT_FALSE(h.egress->egressVrfIntfStatusHelperSmHas(redKey)) << "step 6";
  EXPECT_EQ(h.ipViaConfig->viaSize(), 0u) << "step 6";
}

TEST_P(RouteConfigSmTest, TeardownReleasesEverything) {
  auto const live = liveSinceStart();
  {
    StaticRouteHarness local(f.af);
    local.intfIs("Ethernet1");
    auto onIntf = via(1, "Ethernet1");
    auto egressVia = via(2);
    egressVia.egressVrfIs("blue");
    for (unsigned i = 0; i < 10; ++i) {
      auto route = local.routeIs(*local.config, net(i));
      route->viaIs(onIntf, RouteViaAttr(1, 1));
      route->viaIs(egressVia, {});
      route->bfdTrackedIs(onIntf);
      local.routeIs(*local.dynamic, net(i));
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

INSTANTIATE_TEST_SUITE_P(Families, RouteConfigSmTest, ::testing::Values(kIpv4, kIpv6), familyName);

// An IPv6 route through an IPv4 next hop goes to the other family's table, with its label and the
// tunnel RIBs of the container profile.
class RouteConfigSmMixedFamilyTest : public RuntimeFixture {};

TEST_F(RouteConfigSmMixedFamilyTest, AnIpv6RouteThroughAnIpv4NextHopUsesTheIpv4ViaTable) {
  StaticRouteHarness v6(Ondex::AddressFamily::ipv6);
  v6.auxIpViaConfig = Routing::Rib::Ip::ViaConfig::ViaConfigIs(Routing::Rib::RoutingProtocol::staticConfig(),
                                                               Routing::Rib::Transport::transportIpv4());
  auto mapped = StaticRouteHarness::via(kIpv4.hop(7));
  mapped.mplsLabelIs(Ondex::MplsLabel(100));
  v6.mpls->mplsRoutingIs(true);
  v6.routeIs(*v6.config, kIpv6.net(0))->viaIs(mapped, {});
  v6.start(scheduler());
  runToIdle();
  EXPECT_EQ(v6.viasOf(kIpv6.net(0)),
            Set{viaText(2, kIpv4.hop(7), "",
                        " label 100 weight 0 profile [tunnel-rib system-colored-tunnel-rib, tunnel-rib "
                        "system-tunnel-rib]")});
  EXPECT_EQ(v6.auxIpViaConfig->viaSize(), 1u);
  EXPECT_EQ(v6.ipViaConfig->viaSize(), 0u);
}

}  // namespace
}  // namespace BowlineTest
