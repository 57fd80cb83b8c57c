// Routing::Route, Routing::RouteList and Routing::RouteInput: find-or-create with a route type, and
// the parent of a route.
#include "foundations/records/RouteList.h"

#include <gtest/gtest.h>

#include <vector>

#include "foundations/records/RouteInput.h"
#include "foundations/runtime/Slab.h"
#include "support/RuntimeFixture.h"
#include "RecordRecorder.h"

namespace BowlineTest {
namespace {

using Routing::Route;
using Routing::RouteInput;
using Routing::RouteKey;
using Routing::RouteList;
using Routing::RouteType;
using Routing::RouteViaAttr;
using Routing::Via;

Ondex::IpGenPrefix pfx(std::string_view text) { return Ondex::IpGenPrefix::fromString(text).value(); }
RouteKey key(std::string_view prefix, std::uint8_t pref = 1) {
  return RouteKey(pfx(prefix), Routing::RoutePreference(pref));
}

class RouteListTest : public RuntimeFixture {};

TEST_F(RouteListTest, RouteIsFindsOrCreatesWithItsType) {
  auto list = RouteList::RouteListIs();
  auto rec = RecordRecorder<RouteList>::RecordRecorderIs(list);
  std::vector<RouteKey> keys;
  rec->react = [&](Zel::AttrId id, void const* k) {
    if (id == RouteList::routeId) keys.push_back(*static_cast<RouteKey const*>(k));
  };

  // 1. A new key: created with key, type and parent, published once with its key.
  auto r1 = list->routeIs(key("10.0.0.0/8"), RouteType::forward);
  EXPECT_EQ(r1->parent(), list.get());
  EXPECT_TRUE(r1->hasNotificationActive()) << "step 1: a created route takes part in notification";
  EXPECT_EQ(keys, (std::vector<RouteKey>{key("10.0.0.0/8")}));

  // 2. The same key and type again: the same route, nothing published.
  EXPECT_EQ(list->routeIs(key("10.0.0.0/8"), RouteType::forward), r1);
  EXPECT_EQ(rec->ids.size(), 1u) << "step 2";

  // 3. The same prefix under another preference is another route; both stand in the list.
  auto r2 = list->routeIs(key("10.0.0.0/8", 2), RouteType::drop);
  EXPECT_NE(r2, r1);
  EXPECT_EQ(list->route(key("10.0.0.0/8")), r1) << "step 3";

  // 4. The same key with another type: a new route replaces the old, which is marked.
  auto r1drop = list->routeIs(key("10.0.0.0/8"), RouteType::drop);
  EXPECT_NE(r1drop, r1);
  EXPECT_TRUE(r1->zelMarkedForDeletion()) << "step 4: the replaced route is a zombie";
  EXPECT_EQ(list->route(key("10.0.0.0/8")), r1drop);
  EXPECT_EQ(keys.size(), 3u) << "step 4: one publish for the replacement";

  // 5. Delete: returns the marked route, publishes its key; a second delete does nothing.
  EXPECT_EQ(list->routeDel(key("10.0.0.0/8")), r1drop);
  EXPECT_TRUE(r1drop->zelMarkedForDeletion());
  EXPECT_FALSE(list->routeDel(key("10.0.0.0/8")));
  EXPECT_EQ(keys, (std::vector<RouteKey>{key("10.0.0.0/8"), key("10.0.0.0/8", 2), key("10.0.0.0/8"),
                                         key("10.0.0.0/8")}));
}

TEST_F(RouteListTest, RouteInputIsANamedListItsRoutesReach) {
  auto input = RouteInput::RouteInputIs("martian");
  EXPECT_TRUE(input->installInFib()) << "an input's routes go to the FIB unless it says otherwise";

  auto route = input->routeIs(key("0.0.0.0/8"), RouteType::drop);
  EXPECT_EQ(route->parent()->routeInput(), input.get()) << "a route of an input reaches the input";

  auto plain = RouteList::RouteListIs();
  EXPECT_FALSE(plain->routeIs(key("1.0.0.0/8"), RouteType::forward)->parent()->routeInput());
}

TEST_F(RouteListTest, RoutesOutlivingTheirListLoseTheParentAndTeardownFreesAll) {
  Quill::Ptr<Route> kept;
  Quill::Ptr<Route> replaced;
  {
    auto list = RouteList::RouteListIs();
    replaced = list->routeIs(key("10.0.0.0/8"), RouteType::forward);
    list->routeIs(key("10.0.0.0/8"), RouteType::drop);  // replaces: `replaced` leaves the list
    kept = list->routeIs(key("10.1.0.0/16"), RouteType::forward);
    for (int i = 0; i < 100; ++i) {
      auto r = list->routeIs(RouteKey(Ondex::IpGenPrefix(Ondex::IpGenAddr::fromV4(0x0b000000u + (i << 8)), 24)),
                             RouteType::forward);
      r->viaIs(Via(Ondex::IpGenAddr::fromV4(0x0a000001u + i)).egressVrfIs("red"), RouteViaAttr(1, 1));
      r->bfdTrackedIs(Via(Ondex::IpGenAddr::fromV4(0x0a000001u + i)));
    }
    EXPECT_EQ(kept->parent(), list.get());
    EXPECT_EQ(replaced->parent(), list.get()) << "a replaced route still knows where it came from";
    EXPECT_GT(liveSinceStart(), 100);
  }
  EXPECT_EQ(kept->parent(), nullptr) << "the list is gone";
  EXPECT_EQ(replaced->parent(), nullptr);
  EXPECT_EQ(Plinth::liveCount<Route>(), 2);
  kept = nullptr;
  replaced = nullptr;
  EXPECT_EQ(liveSinceStart(), 0);
}

}  // namespace
}  // namespace BowlineTest
