// Routing::Route, Routing::RouteList and Routing::RouteInput: find-or-create with a route type,
// per-via values and their old values, absent attributes, and the parent of a route.
#include "foundations/records/RouteList.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "foundations/records/RouteInput.h"
#include "foundations/runtime/Slab.h"
#include "support/RuntimeFixture.h"
#include "RecordRecorder.h"

namespace BowlineTest {
namespace {

using Routing::Route;
using Routing::RouteAttributes;
using Routing::RouteInput;
using Routing::RouteKey;
using Routing::RouteList;
using Routing::RouteType;
using Routing::RouteViaAttr;
using Routing::Via;

Ondex::IpGenPrefix pfx(std::string_view text) { return Ondex::IpGenPrefix::fromString(text).value(); }
Ondex::IpGenAddr addr(std::string_view text) { return Ondex::IpGenAddr::fromString(text).value(); }
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
  ASSERT_TRUE(r1);
  EXPECT_EQ(r1->key(), key("10.0.0.0/8"));
  EXPECT_EQ(r1->routeType(), RouteType::forward);
  EXPECT_EQ(r1->parent(), list.get());
  EXPECT_TRUE(r1->hasNotificationActive()) << "step 1: a created route takes part in notification";
  EXPECT_EQ(keys, (std::vector<RouteKey>{key("10.0.0.0/8")}));

  // 2. The same key and type again: the same route, nothing published.
  EXPECT_EQ(list->routeIs(key("10.0.0.0/8"), RouteType::forward), r1);
  EXPECT_EQ(rec->ids.size(), 1u) << "step 2";

  // 3. The same prefix under another preference is another route; both stand in the list.
  auto r2 = list->routeIs(key("10.0.0.0/8", 2), RouteType::drop);
  EXPECT_NE(r2, r1);
  EXPECT_EQ(list->routeSize(), 2u);
  EXPECT_EQ(list->route(key("10.0.0.0/8")), r1);
  EXPECT_EQ(list->route(key("10.0.0.0/8", 2)), r2);
  EXPECT_FALSE(list->route(key("10.0.0.0/8", 3))) << "step 3: an absent key reads as null";

  // 4. The same key with another type: a new route replaces the old, which is marked.
  auto r1drop = list->routeIs(key("10.0.0.0/8"), RouteType::drop);
  EXPECT_NE(r1drop, r1);
  EXPECT_EQ(r1drop->routeType(), RouteType::drop);
  EXPECT_TRUE(r1->zelMarkedForDeletion()) << "step 4: the replaced route is a zombie";
  EXPECT_FALSE(r1drop->zelMarkedForDeletion());
  EXPECT_EQ(list->route(key("10.0.0.0/8")), r1drop);
  EXPECT_EQ(list->routeSize(), 2u);
  EXPECT_EQ(keys.size(), 3u) << "step 4: one publish for the replacement";

  // 5. Delete: returns the marked route, publishes its key; a second delete does nothing.
  EXPECT_EQ(list->routeDel(key("10.0.0.0/8")), r1drop);
  EXPECT_TRUE(r1drop->zelMarkedForDeletion());
  EXPECT_FALSE(list->routeDel(key("10.0.0.0/8")));
  EXPECT_EQ(keys, (std::vector<RouteKey>{key("10.0.0.0/8"), key("10.0.0.0/8", 2), key("10.0.0.0/8"),
                                         key("10.0.0.0/8")}));
  EXPECT_EQ(list->routeSize(), 1u);
}

TEST_F(RouteListTest, LeakVrfIsKeptAsWrittenPastTheBoundOfAVrfName) {
  auto route = RouteList::RouteListIs()->routeIs(key("10.0.0.0/24"), RouteType::forward);
  route->leakVrfIs(std::string(101, 'x'));
  EXPECT_EQ(route->leakVrf().size(), 101u);
  EXPECT_THROW(L3::VrfName(route->leakVrf()), Zel::RangeException) << "the bound applies where a VRF is named";
}

TEST_F(RouteListTest, WeightChangeIsAChangeOfTheValueAtTheSameVia) {
  auto list = RouteList::RouteListIs();
  auto route = list->routeIs(key("10.0.0.0/24"), RouteType::forward);
  Via const via = Via(addr("10.0.0.1"), Ondex::IntfId("Ethernet1"));
  route->viaIs(via, RouteViaAttr(10, 1));

  auto rec = RecordRecorder<Route>::RecordRecorderIs(route);
  struct Seen {
    Via key;
    std::optional<RouteViaAttr> before;
    std::optional<RouteViaAttr> after;
  };
  std::vector<Seen> seen;
  rec->react = [&](Zel::AttrId id, void const* k) {
    if (id != Route::viaId) return;
    Seen s{*static_cast<Via const*>(k), std::nullopt, std::nullopt};
    if (auto const* o = rec->oldValue<RouteViaAttr>(id)) s.before = *o;
    if (auto const* n = rec->newValue<RouteViaAttr>(id)) s.after = *n;
    seen.push_back(s);
  };

  // 1. Only the weight changes: one notification of id 270 for that via, old and new at hand.
  route->viaIs(via, RouteViaAttr(10, 2));
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].key, via);
  EXPECT_EQ(seen[0].before, RouteViaAttr(10, 1));
  EXPECT_EQ(seen[0].after, RouteViaAttr(10, 2));
  EXPECT_EQ(route->vias(), 1u) << "step 1: still one via";
  EXPECT_EQ(route->via(via).weight(), 2u);

  // 2. The same value again: nothing.
  route->viaIs(via, RouteViaAttr(10, 2));
  EXPECT_EQ(seen.size(), 1u);

  // 3. A via that differs in its hop is another via: no old value.
  Via const other = Via(via).hopIs(addr("10.0.0.2"));
  route->viaIs(other, RouteViaAttr(10, 2));
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_FALSE(seen[1].before.has_value());
  EXPECT_EQ(route->vias(), 2u);

  // 4. Delete: the old value, no new one; an absent via reads as the zero value.
  EXPECT_TRUE(route->viaDel(via));
  ASSERT_EQ(seen.size(), 3u);
  EXPECT_EQ(seen[2].before, RouteViaAttr(10, 2));
  EXPECT_FALSE(seen[2].after.has_value());
  EXPECT_FALSE(route->viaHas(via));
  EXPECT_EQ(route->via(via), RouteViaAttr());
  EXPECT_FALSE(route->viaDel(via));
  EXPECT_EQ(seen.size(), 3u);
}

TEST_F(RouteListTest, AbsentRouteAttributesDifferFromEmptyOnes) {
  auto list = RouteList::RouteListIs();
  auto route = list->routeIs(key("10.0.0.0/24"), RouteType::forward);
  auto rec = RecordRecorder<Route>::RecordRecorderIs(route);
  EXPECT_FALSE(route->routeAttributes().hasValue()) << "absent by default";

  route->routeAttributesIs(RouteAttributes());
  EXPECT_EQ(rec->ids.size(), 1u) << "present with no community is a change from absent";
  EXPECT_TRUE(route->routeAttributes().hasValue());
  EXPECT_EQ(route->routeAttributes()->communitySize(), 0u);
  route->routeAttributesIs(RouteAttributes());
  EXPECT_EQ(rec->ids.size(), 1u);
  route->routeAttributesDel();
  EXPECT_EQ(rec->ids.size(), 2u);
  EXPECT_FALSE(route->routeAttributes().hasValue());
}

TEST_F(RouteListTest, RouteInputIsANamedListItsRoutesReach) {
  auto input = RouteInput::RouteInputIs("martian");
  EXPECT_TRUE(input->installInFib()) << "an input's routes go to the FIB unless it says otherwise";

  auto route = input->routeIs(key("0.0.0.0/8"), RouteType::drop);
  ASSERT_TRUE(route->parent());
  ASSERT_TRUE(route->parent()->routeInput()) << "a route of an input reaches the input";
  EXPECT_EQ(route->parent()->routeInput(), input.get());
  EXPECT_EQ(route->parent()->routeInput()->name(), Zel::String("martian"));

  auto plain = RouteList::RouteListIs();
  EXPECT_FALSE(plain->routeIs(key("1.0.0.0/8"), RouteType::forward)->parent()->routeInput());

  EXPECT_TRUE(input->zelSameArgs("martian"));
  EXPECT_FALSE(input->zelSameArgs("bgp"));
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
