// ViaReevaluateWalkSm on its own: a VRF's static and dynamic route lists, a walk asked for, and the
// scheduler run step by step with a small item budget; the test reads which routes the walk handed
// to its owner (391), in which run, and when it said it was done (392).
#include "static/ViaReevaluateWalkSm.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/runtime/Notifiee.h"
#include "foundations/runtime/Slab.h"
#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

using Routing::RouteList;
using Routing::RouteType;
using Routing::Static::ViaReevaluateWalkSm;

// The owner's side: each route handed over, as "s <prefix>" or "d <prefix>" by the list it is of.
class WalkLog : public Zel::Notifiee<ViaReevaluateWalkSm> {
 public:
  void onAttribute(Zel::AttrId id, void const*) override {
    if (id == ViaReevaluateWalkSm::walkFinishedTriggerId) ++finished;
    if (id != ViaReevaluateWalkSm::reevaluatedRouteTriggerId) return;
    auto const& route = notifier()->reevaluatedRoute();
    std::ostringstream os;
    os << (route->parent() == notifier()->routeList().get() ? "s " : "d ") << route->key().prefix();
    seen.push_back(os.str());
  }
  std::vector<std::string> seen;
  unsigned finished = 0;
};

class ViaReevaluateWalkSmTest : public RuntimeFixture, public ::testing::WithParamInterface<Family> {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
    itemsPerRun = 3;
    scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
    for (unsigned i = 0; i < 8; ++i) routeIs(*config, i);
    for (unsigned i = 6; i < 12; ++i) routeIs(*dynamic, i);  // 6 and 7 shadowed by static routes
    walk = ViaReevaluateWalkSm::ViaReevaluateWalkSmIs(scheduler(), "viaReevaluateWalk", config, dynamic, "red", 1);
    log = Zel::make<WalkLog>();
    log->notifierIs(walk);
  }
  void routeIs(RouteList& list, unsigned i) { list.routeIs(routeKey(f.net(i)), RouteType::forward); }
  // Runs the scheduler one run at a time; the routes handed over in each run.
  std::vector<std::vector<std::string>> runsToIdle() {
    std::vector<std::vector<std::string>> runs;
    while (scheduler()->runOnce()) {
      runs.push_back(log->seen);
      log->seen.clear();
    }
    return runs;
  }
  // Every route the walk should hand over once: the static list, then the unshadowed dynamic routes.
  [[nodiscard]] std::multiset<std::string> everyRoute() const {
    std::multiset<std::string> out;
    for (unsigned i = 0; i < 8; ++i) out.insert("s " + f.net(i));
    for (unsigned i = 8; i < 12; ++i) out.insert("d " + f.net(i));
    return out;
  }
  static std::multiset<std::string> all(std::vector<std::vector<std::string>> const& runs) {
    std::multiset<std::string> out;
    for (auto const& run : runs) out.insert(run.begin(), run.end());
    return out;
  }

  Family const f = GetParam();
  Quill::Ptr<RouteList> config = RouteList::RouteListIs();
  Quill::Ptr<RouteList> dynamic = RouteList::RouteListIs();
  Quill::Ptr<ViaReevaluateWalkSm> walk;
  Quill::Ptr<WalkLog> log;
};

TEST_P(ViaReevaluateWalkSmTest, EveryRouteOnceAcrossYieldsStaticListFirstShadowedDynamicRoutesLeftOut) {
  walk->scheduleWalk();
  auto const runs = runsToIdle();
  EXPECT_EQ(all(runs), everyRoute());
  EXPECT_GT(std::count_if(runs.begin(), runs.end(), [](auto const& run) { return !run.empty(); }), 1)
      << "the walk yielded and went on";
  // Static routes first: once a dynamic route is handed over, no static route follows.
  std::vector<std::string> order;
  for (auto const& run : runs) order.insert(order.end(), run.begin(), run.end());
  auto const firstDynamic = std::find_if(order.begin(), order.end(), [](auto const& s) { return s[0] == 'd'; });
  EXPECT_TRUE(std::all_of(firstDynamic, order.end(), [](auto const& s) { return s[0] == 'd'; }));
  EXPECT_EQ(log->finished, 1u);
  EXPECT_FALSE(walk->walking());

  // A second walk, later, goes over everything again.
  walk->scheduleWalk();
  EXPECT_EQ(all(runsToIdle()), everyRoute());
  EXPECT_EQ(log->finished, 2u);
}

TEST_P(ViaReevaluateWalkSmTest, AWalkResumesAfterChangesOfTheListsWhileItYielded) {
  walk->scheduleWalk();
  ASSERT_TRUE(scheduler()->runOnce());
  std::set<std::string> const before(log->seen.begin(), log->seen.end());
  ASSERT_FALSE(before.empty());
  log->seen.clear();
  // While the walk waits, three static routes go: the one it would go on with, another one not
  // walked yet and one already walked. A dynamic route whose static twin goes counts again.
  std::vector<unsigned> walked, notYet;
  for (unsigned i = 0; i < 8; ++i) (before.count("s " + f.net(i)) ? walked : notYet).push_back(i);
  ASSERT_GE(notYet.size(), 2u);
  auto const next = walk->bookmark();
  auto const other = *std::find_if(notYet.rbegin(), notYet.rend(), [&](unsigned i) { return routeKey(f.net(i)) != next; });
  std::set<std::string> gone;
  auto expected = everyRoute();
  for (auto const& key : {next, routeKey(f.net(other)), routeKey(f.net(walked.front()))}) {
    std::ostringstream os;
    os << "s " << key.prefix();
    gone.insert(os.str());
    expected.erase(os.str());
    config->routeDel(key);
  }
  for (unsigned i : {6u, 7u})
    if (gone.count("s " + f.net(i))) expected.insert("d " + f.net(i));
  for (auto const& name : before) expected.erase(name);

  auto const rest = all(runsToIdle());
  EXPECT_EQ(rest, expected) << "each route not walked yet, once; none that went";
  EXPECT_EQ(log->finished, 1u);
}

TEST_P(ViaReevaluateWalkSmTest, AWalkAskedAgainWhileOneRunsStartsOverAndEndsOnce) {
  walk->scheduleWalk();
  // Stopped in the static list, then in the dynamic list: each time the walk starts over.
  for (unsigned runsBefore : {1u, 3u}) {
    SCOPED_TRACE(runsBefore == 1 ? "asked again in the static list" : "asked again in the dynamic list");
    for (unsigned i = 0; i < runsBefore; ++i) ASSERT_TRUE(scheduler()->runOnce());
    ASSERT_TRUE(walk->walking());
    log->seen.clear();
    walk->scheduleWalk();
    EXPECT_EQ(all(runsToIdle()), everyRoute()) << "the whole walk after the request";
    EXPECT_EQ(log->finished, runsBefore == 1 ? 1u : 2u) << "one end per walk, none for the one started over";
    walk->scheduleWalk();
  }
  (void)runsToIdle();
}

TEST_P(ViaReevaluateWalkSmTest, EmptyListsEndTheWalkAtOnce) {
  auto empty = ViaReevaluateWalkSm::ViaReevaluateWalkSmIs(scheduler(), "empty", RouteList::RouteListIs(),
                                                          RouteList::RouteListIs(), "blue", 2);
  log->notifierIs(empty);
  empty->scheduleWalk();
  EXPECT_EQ(runsToIdle().size(), 1u);
  EXPECT_EQ(log->finished, 1u);
}

INSTANTIATE_TEST_SUITE_P(Families, ViaReevaluateWalkSmTest, ::testing::Values(kIpv4, kIpv6), familyName);

}  // namespace
}  // namespace BowlineTest
