// The RIB route table: insert-or-replace with one publish per real change and the old route for
// the reactor, removal, the ordered walk of one VRF from its empty key, and the removal of a VRF.
// Also the route record's packed source-VRF word.
#include "foundations/rib/RouteConfig.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include "foundations/runtime/NotifyValues.h"
#include "support/RuntimeFixture.h"
#include "RibRecorder.h"

namespace BowlineTest {
namespace {

using Ondex::IpGenPrefix;
using Routing::MetricPref;
using Routing::Rib::Route;
using Routing::Rib::RouteConfig;
using Routing::Rib::RouteKey;
using Routing::Rib::ViaKey;
using Routing::Rib::ViaSetKey;
using Vrf::VrfIdMap::VrfId;

IpGenPrefix prefix(std::string_view text) {
  auto p = IpGenPrefix::fromString(text);
  EXPECT_TRUE(p) << text;
  return p.value_or(IpGenPrefix());
}
RouteKey key(std::uint32_t vrf, std::string_view p) { return RouteKey(vrf, prefix(p)); }
Route route(std::uint32_t vrf, std::string_view p, std::uint8_t pref = 1) {
  Route r(key(vrf, p));
  r.routingProtocolIs(2);
  r.metricPrefIs(MetricPref(0, pref));
  r.viaSetKeyIs(ViaSetKey(7, 0, 2, 0));
  return r;
}

class RibRouteConfigTest : public RuntimeFixture {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
    table = RouteConfig::RouteConfigIs();
    rec = KeyRecorder<RouteConfig, RouteKey>::KeyRecorderIs(table, RouteConfig::routeId);
  }
  std::vector<RouteKey> walkVrf(std::uint32_t vrf) const {
    std::vector<RouteKey> keys;
    for (auto it = table->routeIteratorAt(RouteKey::vrfStart(vrf)); it && it.key().vrfId() == VrfId(vrf); it.advance())
      keys.push_back(it.key());
    return keys;
  }

  Quill::Ptr<RouteConfig> table;
  Quill::Ptr<KeyRecorder<RouteConfig, RouteKey>> rec;
};

TEST_F(RibRouteConfigTest, PackedSourceVrfAndViaKey) {
  Route r;
  r.srcVrfIdIs(5);
  EXPECT_EQ(r.srcVrfIdWord(), 0x501u) << "the low byte is kept";
  r.srcVrfIdIs(0xffffff);
  EXPECT_EQ(r.srcVrfIdWord(), 0xffffff01u);
  r.preferenceIs(40);
  EXPECT_EQ(r.metricPref(), MetricPref(0xffffffff, 40));

  ViaKey const v(9, 0, 2, 3);
  r.viaKeyIs(v);
  EXPECT_EQ(r.viaKey(), v) << "a route cache route names one via in the via-set word";
  EXPECT_EQ(Route(r.routeKey(), r.body()), r);
}

TEST_F(RibRouteConfigTest, AddReplacesAndPublishesOnlyRealChangesWithTheOldRoute) {
  std::vector<std::string> olds;
  rec->react = [&](RouteKey const&) {
    Route const* old = Zel::notifyOldValue<Route>(table.get(), RouteConfig::routeId);
    olds.push_back(old ? fmt::format("{}", unsigned(old->preference())) : "new");
  };
  EXPECT_TRUE(table->routeAdd(route(1, "10.0.0.0/8", 1)));
  EXPECT_FALSE(table->routeAdd(route(1, "10.0.0.0/8", 1))) << "the same route again changes nothing";
  EXPECT_TRUE(table->routeAdd(route(1, "10.0.0.0/8", 5)));

  EXPECT_FALSE(table->routeDel(key(1, "11.0.0.0/8")));
  EXPECT_TRUE(table->routeDelete(key(1, "10.0.0.0/8")));
  EXPECT_EQ(rec->keys, (std::vector<RouteKey>(3, key(1, "10.0.0.0/8"))));
  EXPECT_EQ(olds, (std::vector<std::string>{"new", "1", "5"}));
}

TEST_F(RibRouteConfigTest, WalkOfOneVrfFromItsEmptyKeyInKeyOrder) {
  for (auto const& [vrf, p] : std::vector<std::pair<std::uint32_t, std::string_view>>{
           {7, "1.0.0.0/8"}, {5, "2001:db8::/32"}, {5, "10.0.0.0/8"}, {3, "10.0.0.0/8"},
           {5, "0.0.0.0/0"}, {5, "10.0.0.0/16"}, {5, "9.0.0.0/8"}, {0xffffff, "1.0.0.0/8"}}) {
    table->routeAdd(route(vrf, p));
  }
  EXPECT_EQ(walkVrf(5), (std::vector<RouteKey>{key(5, "0.0.0.0/0"), key(5, "9.0.0.0/8"), key(5, "10.0.0.0/8"),
                                               key(5, "10.0.0.0/16"), key(5, "2001:db8::/32")}))
      << "IPv4 before IPv6, then by address, shorter before longer";
  EXPECT_EQ(walkVrf(3), std::vector<RouteKey>{key(3, "10.0.0.0/8")});
  EXPECT_TRUE(walkVrf(4).empty());

  // A walk that saved its place and whose key was removed meanwhile resumes after it.
  table->routeDel(key(5, "10.0.0.0/8"));
  auto it = table->routeIteratorAfter(key(5, "10.0.0.0/8"));
  ASSERT_TRUE(it);
  EXPECT_EQ(it.key(), key(5, "10.0.0.0/16"));
  EXPECT_EQ(Route(it.key(), it.value()), route(5, "10.0.0.0/16"));

  auto first = table->routeIteratorConst();
  EXPECT_EQ(first.key(), key(3, "10.0.0.0/8")) << "the whole table walks from the lowest VRF";
}

TEST_F(RibRouteConfigTest, DeletingTheRoutesOfAVrfLeavesTheOthers) {
  for (std::uint32_t vrf : {4, 5, 6}) {
    for (auto p : {"10.0.0.0/8", "11.0.0.0/8", "2001:db8::/48"}) table->routeAdd(route(vrf, p));
  }
  rec->keys.clear();
  // A reactor that removes the next route of the VRF while the clean-up runs: nothing twice, all gone.
  rec->react = [&](RouteKey const& k) {
    if (k == key(5, "10.0.0.0/8")) table->routeDel(key(5, "11.0.0.0/8"));
  };
  EXPECT_EQ(table->doDeleteRoutesForVrf(5), 2u);
  EXPECT_TRUE(walkVrf(5).empty());
  EXPECT_EQ(rec->keys.size(), 3u) << "one publish per route";
  EXPECT_EQ(walkVrf(4).size(), 3u);
  EXPECT_EQ(walkVrf(6).size(), 3u);
  EXPECT_EQ(table->doDeleteRoutesForVrf(5), 0u);
}

TEST_F(RibRouteConfigTest, SourceVrfOverTwentyFourBitsEndsTheProcess) {
  Route r;
  EXPECT_DEATH(r.srcVrfIdIs(0x1000000), "vrfId.value\\(\\) <= \\( srcVrfIdMask >> srcVrfIdLoc \\)");
}

}  // namespace
}  // namespace BowlineTest
