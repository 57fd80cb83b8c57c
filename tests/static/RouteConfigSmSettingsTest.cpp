// RouteConfigSm under changes of the general settings (global preference, ECMP grouping) that come
// together with other changes before the machine settles. Each case checks that what the status
// store holds in the end is what a fresh review of the same configuration writes, whatever was
// settled in between.
#include "static/RouteConfigSm.h"

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

using Routing::RouteType;
using Routing::General::StaticRouteEcmpState;
using Set = std::multiset<std::string>;

class RouteConfigSmSettingsTest : public RuntimeFixture {
 protected:
  void start(StaticRouteHarness& g) {
    g.start(scheduler());
    runToIdle();
  }
  void start() { start(h); }
  static void globalPrefIs(StaticRouteHarness& g, unsigned pref) {
    g.general->staticRoutePreferenceIs(Routing::RoutePreference(static_cast<std::uint8_t>(pref)));
  }
  void globalPrefIs(unsigned pref) { globalPrefIs(h, pref); }
  // The entries of a prefix as "prefix pref" to their vias.
  [[nodiscard]] static std::map<std::string, Set> entries(StaticRouteHarness const& g, char const* prefix) {
    std::map<std::string, Set> out;
    for (unsigned pref : g.prefsOf(prefix)) out[std::string(prefix) + " " + std::to_string(pref)] = g.viasOf(prefix, pref);
    return out;
  }
  StaticRouteHarness h;
};

Set one(char const* hop) { return Set{std::string("2: nextHop ") + hop + " intf  weight 0"}; }

// One prefix configured without a preference (D) and at 200 (E200) and 250 (F250) explicitly; the
// global preference goes 250 -> 200 -> 255. With or without a settle between the two changes, and
// with the keys reviewed again in either order, D ends at 255 alone and each explicit route has
// its own entry with its own via.
TEST_F(RouteConfigSmSettingsTest, TwoGlobalPreferenceChangesBeforeOneReviewLeaveNothingAtEitherFormerValue) {
  auto const d = routeKey("5.0.0.0/8");
  auto const e = routeKey("5.0.0.0/8", 200);
  auto const f = routeKey("5.0.0.0/8", 250);
  std::map<std::string, Set> const expected{
      {"5.0.0.0/8 200", one("10.0.0.2")}, {"5.0.0.0/8 250", one("10.0.0.3")}, {"5.0.0.0/8 255", one("10.0.0.1")}};
  for (int settle = 0; settle < 3; ++settle) {
    SCOPED_TRACE(settle == 0 ? "no settle" : settle == 1 ? "one run between" : "settled between");
    StaticRouteHarness g;
    globalPrefIs(g, 250);
    g.config->routeIs(d, RouteType::forward)->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
    g.config->routeIs(e, RouteType::forward)->viaIs(StaticRouteHarness::via("10.0.0.2"), {});
    g.config->routeIs(f, RouteType::forward)->viaIs(StaticRouteHarness::via("10.0.0.3"), {});
    start(g);
    EXPECT_EQ(g.prefsOf("5.0.0.0/8"), (std::vector<unsigned>{200, 250}));
    globalPrefIs(g, 200);
    if (settle == 1) scheduler()->runOnce();
    if (settle == 2) runToIdle();
    globalPrefIs(g, 255);
    runToIdle();
    EXPECT_EQ(entries(g, "5.0.0.0/8"), expected);
    for (auto const& order : {std::vector{d, e, f}, std::vector{f, e, d}}) {
      for (auto const& key : order) g.sm->handleRoute(key);
      runToIdle();
      EXPECT_EQ(entries(g, "5.0.0.0/8"), expected) << "reviewed again";
    }
      }
}

// A route without a preference leaves no entry at a former global preference when it goes before
// the review, after two changes.
TEST_F(RouteConfigSmSettingsTest, ARouteGoneBeforeTheReviewOfTwoChangesLeavesNothing) {
  globalPrefIs(250);
  h.routeIs(*h.config, "5.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  h.routeIs(*h.config, "6.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  start();
  itemsPerRun = 1;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
  globalPrefIs(200);
  scheduler()->runOnce();  // one of the two moved to 200
  globalPrefIs(255);
  h.config->routeDel(routeKey("5.0.0.0/8"));
  h.config->routeDel(routeKey("6.0.0.0/8"));
  runToIdle();
  EXPECT_EQ(h.status->route(pfx("5.0.0.0/8")), nullptr);
  EXPECT_EQ(h.status->route(pfx("6.0.0.0/8")), nullptr);
}

// A drop route of explicit preference 2 and a change of the global preference to 2 (with or
// without a change of the ECMP grouping) in the same window, in either order: the route is not
// installed, as when the machine starts on that configuration.
TEST_F(RouteConfigSmSettingsTest, ARouteArrivingAtTheNewGlobalPreferenceIsNotInstalled) {
  for (int variant = 0; variant < 4; ++variant) {
    bool const routeFirst = variant & 1;
    bool const ecmp = variant & 2;
    SCOPED_TRACE(std::string(routeFirst ? "route first" : "settings first") + (ecmp ? ", with ECMP" : ""));
    StaticRouteHarness g;
    g.routeIs(*g.config, "198.51.100.0/24")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
    start(g);
    auto const route = [&g] { g.routeIs(*g.config, "203.0.113.0/28", 2, RouteType::drop); };
    if (routeFirst) route();
    globalPrefIs(g, 2);
    if (ecmp) g.general->staticRouteEcmpStateIs(StaticRouteEcmpState::singleGroup);
    if (!routeFirst) route();
    runToIdle();
    EXPECT_EQ(g.prefsOf("203.0.113.0/28"), std::vector<unsigned>{});
    EXPECT_EQ(g.prefsOf("198.51.100.0/24"), std::vector<unsigned>{2});
    // The grouping changes back: the walk leaves the route out still.
    if (ecmp) g.general->staticRouteEcmpStateIs(StaticRouteEcmpState::groupByViaType);
    runToIdle();
    EXPECT_EQ(g.prefsOf("203.0.113.0/28"), std::vector<unsigned>{});
      }
}

// A change of the ECMP grouping regroups the vias of dynamic routes too; a dynamic route under a
// static route of its key is left alone.
TEST_F(RouteConfigSmSettingsTest, EcmpChangeRegroupsDynamicRoutes) {
  itemsPerRun = 2;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
  h.intfIs("Ethernet1");
  for (int i = 0; i < 5; ++i) {
    std::string p = "40.0." + std::to_string(i) + ".0/24";
    auto route = h.routeIs(*h.dynamic, p.c_str());
    route->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
    route->viaIs(StaticRouteHarness::via("10.0.0.2", "Ethernet1"), {});
  }
  h.routeIs(*h.config, "40.0.4.0/24")->viaIs(StaticRouteHarness::via("10.0.0.3"), {});
  h.routeIs(*h.config, "41.0.0.0/24")->viaIs(StaticRouteHarness::via("10.0.0.3"), {});
  start();
  Set const byType{"1: nextHop 10.0.0.2 intf Ethernet1 weight 0", "2: nextHop 10.0.0.1 intf  weight 0"};
  Set const single{"4: nextHop 10.0.0.1 intf  weight 0", "4: nextHop 10.0.0.2 intf Ethernet1 weight 0"};
  EXPECT_EQ(h.viasOf("40.0.1.0/24"), byType);

  h.general->staticRouteEcmpStateIs(StaticRouteEcmpState::singleGroup);
  runToIdle();
  for (int i = 0; i < 4; ++i) {
    std::string p = "40.0." + std::to_string(i) + ".0/24";
    EXPECT_EQ(h.viasOf(p.c_str()), single) << p;
  }
  EXPECT_EQ(h.viasOf("40.0.4.0/24"), Set{"4: nextHop 10.0.0.3 intf  weight 0"}) << "the static route's alone";
  EXPECT_EQ(h.viasOf("41.0.0.0/24"), Set{"4: nextHop 10.0.0.3 intf  weight 0"});

  h.general->staticRouteEcmpStateIs(StaticRouteEcmpState::groupByViaType);
  runToIdle();
  EXPECT_EQ(h.viasOf("40.0.3.0/24"), byType);
  EXPECT_EQ(h.viasOf("40.0.4.0/24"), one("10.0.0.3"));
}

// A change of the global preference while the review of all routes is suspended in the leak walk:
// once that walk ends, the static and dynamic routes are reviewed too.
TEST_F(RouteConfigSmSettingsTest, AChangeDuringASuspendedLeakWalkReviewsEveryRoute) {
  itemsPerRun = 2;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
  auto source = Routing::RouteList::RouteListIs();
  for (int i = 0; i < 6; ++i) {
    std::string l = "12.0." + std::to_string(i) + ".0/24";
    auto r = source->routeIs(routeKey(l.c_str(), 7), RouteType::forward);
    h.leak->leakRouteIs(Routing::Protocol::LeakRoute::LeakRouteIs(Routing::Protocol::VrfIdAf(0, h.af), r));
  }
  h.routeIs(*h.config, "5.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  h.routeIs(*h.dynamic, "6.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  start();
  globalPrefIs(40);
  while (!h.sm->reviewKeyBookmarkLeak() && scheduler()->runOnce()) {
  }
  ASSERT_TRUE(h.sm->reviewKeyBookmarkLeak());
  globalPrefIs(50);
  runToIdle();
  EXPECT_EQ(h.prefsOf("5.0.0.0/8"), std::vector<unsigned>{50});
  EXPECT_EQ(h.prefsOf("6.0.0.0/8"), std::vector<unsigned>{50});
  EXPECT_EQ(h.prefsOf("12.0.5.0/24"), std::vector<unsigned>{7});
}

}  // namespace
}  // namespace BowlineTest
