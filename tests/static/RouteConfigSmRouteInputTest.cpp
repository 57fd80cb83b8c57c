// RouteConfigSm in the route-input mode: several users' lists hold routes of one key, the
// scheduler runs to idle, and the status store shows the winning user's route. Each scenario runs
// for IPv4 and IPv6.
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
using Set = std::multiset<std::string>;
using Prefs = std::vector<unsigned>;

// Route input: two users of one key. The users' collection walks names in its hash order, so the
// names are chosen to stand in that order the other way round from their byte order: a winner taken
// from the walk would be the wrong one.
class RouteInputUsersTest : public RuntimeFixture, public ::testing::WithParamInterface<Family> {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
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
  Quill::Ptr<Routing::RouteInput> userIs(Quill::String const& name, unsigned hop, unsigned pref = 1) {
    auto& list = lists[name.str()];
    if (!list) list = Routing::RouteInput::RouteInputIs(name);
    list->routingProtoIs(16);
    list->routeIs(routeKey(p, pref), RouteType::forward)->viaIs(StaticRouteHarness::via(f.hop(hop)), {});
    h.configByUser->configIs(list);
    return list;
  }
  // The vias of the winning route, in one group.
  [[nodiscard]] Set one(unsigned hop) const { return Set{viaText(4, f.hop(hop))}; }
  [[nodiscard]] Set two(unsigned a, unsigned b) const { return Set{viaText(4, f.hop(a)), viaText(4, f.hop(b))}; }

  Family const f = GetParam();
  StaticRouteHarness h{f.af};
  std::string const p = f.net(20);

  std::map<std::string, Quill::Ptr<Routing::RouteInput>> lists;  // the writable side of each user's list
  Quill::String first;                                            // sorts first by name, walked second
  Quill::String second;
};

TEST_P(RouteInputUsersTest, TheUserWhoseNameSortsFirstWinsInEitherOrderOfArrival) {
  for (bool firstComesFirst : {true, false}) {
    SCOPED_TRACE(firstComesFirst ? "first user's list made first" : "second user's list made first");
    h.configByUser->configDelAll();
    lists.clear();
    h.stop();
    runToIdle();
    // 1. Both lists are there when the machine starts; the second user has one more preference.
    if (firstComesFirst) userIs(first, 1);
    userIs(second, 2);
    userIs(second, 7, 7);
    if (!firstComesFirst) userIs(first, 1);
    h.start(scheduler(), Routing::Rib::RoutingProtocol::routeInput());
    runToIdle();
    EXPECT_EQ(h.prefsOf(p), (Prefs{1, 7})) << "step 1";
    EXPECT_EQ(h.viasOf(p), one(1)) << "step 1";

    // 2. A via of the losing route changes: the store does not follow it.
    userIs(second, 3);
    runToIdle();
    EXPECT_EQ(h.viasOf(p), one(1)) << "step 2";

    // 3. The winner's route is disabled by its tag, then enabled: each time the key passes whole.
    lists[first.str()]->route(routeKey(p))->commandTagIdIs(3);
    h.configTagStatus->configTagEntry("maint")->operStateIs(2);
    h.sm->handleRoute(routeKey(p));
    runToIdle();
    EXPECT_EQ(h.viasOf(p), two(2, 3))
        << "step 3";
    h.configTagStatus->configTagEntry("maint")->operStateIs(1);
    h.sm->handleRoute(routeKey(p));
    runToIdle();
    EXPECT_EQ(h.viasOf(p), one(1)) << "step 3";
    EXPECT_EQ(h.routePref(p)->fibRouteType(), 35);

    // 4. A user of a name that sorts before both arrives, then the martian list: each takes over.
    userIs("aaa", 4);
    runToIdle();
    EXPECT_EQ(h.viasOf(p), one(4)) << "step 4";
    auto martian = Routing::RouteInput::RouteInputIs(Routing::Input::kMartianUser);
    martian->routingProtoIs(60);
    martian->routeIs(routeKey(p), RouteType::drop);
    h.configByUser->configIs(martian);
    runToIdle();
    EXPECT_EQ(h.viasOf(p).size(), 1u) << "step 4";
    EXPECT_NE(h.viasOf(p).begin()->find("Null0"), std::string::npos) << "step 4";
    EXPECT_EQ(h.routePref(p)->fibRouteType(), 36) << "step 4";

    // 5. Lists go one by one, in the order that leaves each winner in turn.
    h.configByUser->configDel(Routing::Input::kMartianUser);
    h.configByUser->configDel("aaa");
    runToIdle();
    EXPECT_EQ(h.viasOf(p), one(1)) << "step 5";
    h.configByUser->configDel(first);
    runToIdle();
    EXPECT_EQ(h.viasOf(p), two(2, 3))
        << "step 5";
    h.configByUser->configDel(second);
    runToIdle();
    EXPECT_EQ(h.status->route(pfx(p)), nullptr) << "step 5";
  }
}

TEST_P(RouteInputUsersTest, AKeyPassingBetweenUsersRouteByRouteLeavesNothingBehind) {
  h.start(scheduler(), Routing::Rib::RoutingProtocol::routeInput());
  runToIdle();
  // The loser's route comes first and is entered; the winner's takes the key from it.
  auto losing = userIs(second, 2);
  runToIdle();
  EXPECT_EQ(h.viasOf(p), one(2));
  auto winning = userIs(first, 1);
  runToIdle();
  EXPECT_EQ(h.viasOf(p), one(1));
  // The loser's route is replaced and removed: the winner's entry stays as it is.
  losing->routeDel(routeKey(p));
  userIs(second, 5);
  losing->routeDel(routeKey(p));
  runToIdle();
  EXPECT_EQ(h.viasOf(p), one(1));
  // The winner's route is replaced by another of the key: only the new route's vias.
  winning->routeDel(routeKey(p));
  userIs(first, 6);
  runToIdle();
  EXPECT_EQ(h.viasOf(p), one(6));
  EXPECT_EQ(h.ipViaConfig->viaSize(), 1u) << "no via of a former route is held";
}

INSTANTIATE_TEST_SUITE_P(Families, RouteInputUsersTest, ::testing::Values(kIpv4, kIpv6), familyName);
}  // namespace
}  // namespace BowlineTest
