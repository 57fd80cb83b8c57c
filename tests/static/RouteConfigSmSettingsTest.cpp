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
using Prefs = std::vector<unsigned>;
using Set = std::multiset<std::string>;

class RouteConfigSmSettingsTest : public RuntimeFixture, public ::testing::WithParamInterface<Family> {
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
  [[nodiscard]] static std::map<std::string, Set> entries(StaticRouteHarness const& g, std::string const& prefix) {
    std::map<std::string, Set> out;
    for (unsigned pref : g.prefsOf(prefix)) out[prefix + " " + std::to_string(pref)] = g.viasOf(prefix, pref);
    return out;
  }
  [[nodiscard]] Routing::Via via(unsigned hop) const { return StaticRouteHarness::via(f.hop(hop)); }
  [[nodiscard]] Set one(unsigned hop) const { return Set{viaText(2, f.hop(hop))}; }

  Family const f = GetParam();
  StaticRouteHarness h{f.af};
};

// One prefix configured without a preference (D) and at 200 (E200) and 250 (F250) explicitly; the
// global preference goes 250 -> 200 -> 255. With or without a settle between the two changes, and
// with the keys reviewed again in either order, D ends at 255 alone and each explicit route has
// its own entry with its own via.
TEST_P(RouteConfigSmSettingsTest, TwoGlobalPreferenceChangesBeforeOneReviewLeaveNothingAtEitherFormerValue) {
  auto const p = f.net(5);
  auto const d = routeKey(p);
  auto const e = routeKey(p, 200);
  auto const g250 = routeKey(p, 250);
  std::map<std::string, Set> const expected{{p + " 200", one(2)}, {p + " 250", one(3)}, {p + " 255", one(1)}};
  for (int settle = 0; settle < 3; ++settle) {
    SCOPED_TRACE(settle == 0 ? "no settle" : settle == 1 ? "one run between" : "settled between");
    StaticRouteHarness g(f.af);
    globalPrefIs(g, 250);
    g.config->routeIs(d, RouteType::forward)->viaIs(via(1), {});
    g.config->routeIs(e, RouteType::forward)->viaIs(via(2), {});
    g.config->routeIs(g250, RouteType::forward)->viaIs(via(3), {});
    start(g);
    EXPECT_EQ(g.prefsOf(f.net(5)), (Prefs{200, 250}));
    globalPrefIs(g, 200);
    if (settle == 1) scheduler()->runOnce();
    if (settle == 2) runToIdle();
    globalPrefIs(g, 255);
    runToIdle();
    EXPECT_EQ(entries(g, f.net(5)), expected);
    for (auto const& order : {std::vector{d, e, g250}, std::vector{g250, e, d}}) {
      for (auto const& key : order) g.sm->handleRoute(key);
      runToIdle();
      EXPECT_EQ(entries(g, f.net(5)), expected) << "reviewed again";
    }
  }
}

// A route without a preference leaves no entry at a former global preference when it goes before
// the review, after two changes.
TEST_P(RouteConfigSmSettingsTest, ARouteGoneBeforeTheReviewOfTwoChangesLeavesNothing) {
  globalPrefIs(250);
  h.routeIs(*h.config, f.net(5))->viaIs(via(1), {});
  h.routeIs(*h.config, f.net(6))->viaIs(via(1), {});
  start();
  itemsPerRun = 1;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
  globalPrefIs(200);
  scheduler()->runOnce();  // one of the two moved to 200
  globalPrefIs(255);
  h.config->routeDel(routeKey(f.net(5)));
  h.config->routeDel(routeKey(f.net(6)));
  runToIdle();
  EXPECT_EQ(h.status->route(pfx(f.net(5))), nullptr);
  EXPECT_EQ(h.status->route(pfx(f.net(6))), nullptr);
}

// A drop route of explicit preference 2 and a change of the global preference to 2 (with or
// without a change of the ECMP grouping) in the same window, in either order: the route is not
// installed, as when the machine starts on that configuration.
TEST_P(RouteConfigSmSettingsTest, ARouteArrivingAtTheNewGlobalPreferenceIsNotInstalled) {
  for (int variant = 0; variant < 4; ++variant) {
    bool const routeFirst = variant & 1;
    bool const ecmp = variant & 2;
    SCOPED_TRACE(std::string(routeFirst ? "route first" : "settings first") + (ecmp ? ", with ECMP" : ""));
    StaticRouteHarness g(f.af);
    g.routeIs(*g.config, f.net(1))->viaIs(via(1), {});
    start(g);
    auto const route = [&] { g.routeIs(*g.config, f.net(2), 2, RouteType::drop); };
    if (routeFirst) route();
    globalPrefIs(g, 2);
    if (ecmp) g.general->staticRouteEcmpStateIs(StaticRouteEcmpState::singleGroup);
    if (!routeFirst) route();
    runToIdle();
    EXPECT_EQ(g.prefsOf(f.net(2)), Prefs{});
    EXPECT_EQ(g.prefsOf(f.net(1)), Prefs{2});
    // The grouping changes back: the walk leaves the route out still.
    if (ecmp) g.general->staticRouteEcmpStateIs(StaticRouteEcmpState::groupByViaType);
    runToIdle();
    EXPECT_EQ(g.prefsOf(f.net(2)), Prefs{});
  }
}

// A change of the global preference while the review of all routes is suspended in the leak walk:
// once that walk ends, the static and dynamic routes are reviewed too.
TEST_P(RouteConfigSmSettingsTest, AChangeDuringASuspendedLeakWalkReviewsEveryRoute) {
  itemsPerRun = 2;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
  auto source = Routing::RouteList::RouteListIs();
  for (unsigned i = 0; i < 6; ++i) {
    auto r = source->routeIs(routeKey(f.net(12 + i), 7), RouteType::forward);
    h.leak->leakRouteIs(Routing::Protocol::LeakRoute::LeakRouteIs(Routing::Protocol::VrfIdAf(0, h.af), r));
  }
  h.routeIs(*h.config, f.net(5))->viaIs(via(1), {});
  h.routeIs(*h.dynamic, f.net(6))->viaIs(via(1), {});
  start();
  globalPrefIs(40);
  while (!h.sm->reviewKeyBookmarkLeak() && scheduler()->runOnce()) {
  }
  ASSERT_TRUE(h.sm->reviewKeyBookmarkLeak());
  globalPrefIs(50);
  runToIdle();
  EXPECT_EQ(h.prefsOf(f.net(5)), Prefs{50});
  EXPECT_EQ(h.prefsOf(f.net(6)), Prefs{50});
  EXPECT_EQ(h.prefsOf(f.net(17)), Prefs{7});
}

INSTANTIATE_TEST_SUITE_P(Families, RouteConfigSmSettingsTest, ::testing::Values(kIpv4, kIpv6), familyName);

}  // namespace
}  // namespace BowlineTest
