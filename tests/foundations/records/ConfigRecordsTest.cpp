// The smaller configuration records: command tags and their index, the next-hop group status and
// the BFD tracked-via list.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundations/records/ConfigTag.h"
#include "foundations/records/NexthopGroupEntryStatus.h"
#include "foundations/records/TrackedViaList.h"
#include "foundations/records/VrfRouteListTaggedConfig.h"
#include "foundations/types/NexthopGroupIntfId.h"
#include "support/RuntimeFixture.h"
#include "RecordRecorder.h"

namespace BowlineTest {
namespace {

using Routing::RouteKey;
using Routing::RouteKeySet;
using Routing::RouteListTaggedConfig;
using Routing::VrfRouteListTaggedConfig;

RouteKey key(std::string_view prefix) { return RouteKey(Ondex::IpGenPrefix::fromString(prefix).value()); }

class ConfigRecordsTest : public RuntimeFixture {};

TEST_F(ConfigRecordsTest, CommandTagsEnabledUnlessStateZeroOrTwo) {
  std::vector<bool> enabled;
  for (ConfigTag::OperState s : {0, 1, 2, 3, 4, 6, 0xff}) enabled.push_back(ConfigTag::operStateEnabled(s));
  EXPECT_EQ(enabled, (std::vector<bool>{false, true, false, true, true, true, true}));

  auto status = ConfigTag::ConfigTagStatus::ConfigTagStatusIs();
  auto entry = status->configTagEntryIs("maint");
  EXPECT_EQ(entry->name(), Zel::String("maint"));
  EXPECT_FALSE(entry->enabled()) << "a new entry is in state 0";
  auto rec = RecordRecorder<ConfigTag::ConfigTagEntry>::RecordRecorderIs(entry);
  entry->operStateIs(1);
  EXPECT_TRUE(status->configTagEntry("maint")->enabled());
  EXPECT_EQ(rec->ids, (std::vector<Zel::AttrId>{ConfigTag::ConfigTagEntry::operStateId}));

  auto srec = RecordRecorder<ConfigTag::ConfigTagStatus>::RecordRecorderIs(status);
  status->configTagEntryIs("other");
  status->configTagEntryDel("maint");
  EXPECT_EQ(srec->ids, (std::vector<Zel::AttrId>{258, 258}));

  auto ids = ConfigTag::ConfigTagIdState::ConfigTagIdStateIs();
  ids->tagIdToTagStrIs(4, "maint");
  EXPECT_EQ(ids->tagIdToTagStr(4), Zel::String("maint"));
  EXPECT_TRUE(ids->tagIdToTagStr(5).empty()) << "an unknown id names no tag";
}

TEST_F(ConfigRecordsTest, TagIndexChangesCarryTheFormerAndTheNewSet) {
  auto index = RouteListTaggedConfig::RouteListTaggedConfigIs("red");
  EXPECT_EQ(index->vrfName(), L3::VrfName("red"));
  auto rec = RecordRecorder<RouteListTaggedConfig>::RecordRecorderIs(index);
  struct Seen {
    RouteKeySet const* before;
    RouteKeySet const* after;
  };
  std::vector<Seen> seen;
  rec->react = [&](Zel::AttrId id, void const* k) {
    ASSERT_EQ(id, 258);
    ASSERT_EQ(*static_cast<Zel::String const*>(k), Zel::String("t1"));
    auto const* o = rec->oldValue<RouteListTaggedConfig::RouteKeySetPtr>(id);
    auto const* n = rec->newValue<RouteListTaggedConfig::RouteKeySetPtr>(id);
    seen.push_back({o ? o->get() : nullptr, n ? n->get() : nullptr});
  };

  // 1. A set comes: no former one.
  auto first = RouteKeySet::RouteKeySetIs("t1");
  first->routeKeySetIs(key("10.0.0.0/8"));
  index->tagToRouteKeySetIs("t1", first);
  // 2. Replaced by another: both at hand, so the reader can walk the keys of the one that went.
  auto second = RouteKeySet::RouteKeySetIs("t1");
  index->tagToRouteKeySetIs("t1", second);
  index->tagToRouteKeySetIs("t1", second);  // the same set again: nothing
  // 3. Removed: the former only.
  index->tagToRouteKeySetDel("t1");
  ASSERT_EQ(seen.size(), 3u);
  EXPECT_EQ(seen[0].before, nullptr);
  EXPECT_EQ(seen[0].after, first.get());
  EXPECT_EQ(seen[1].before, first.get());
  EXPECT_EQ(seen[1].after, second.get());
  EXPECT_EQ(seen[2].before, second.get());
  EXPECT_EQ(seen[2].after, nullptr);
  EXPECT_FALSE(index->tagToRouteKeySet("t1")) << "an absent tag reads as null";

  // The keys of a set publish their own id with the key.
  auto srec = RecordRecorder<RouteKeySet>::RecordRecorderIs(first);
  first->routeKeySetIs(key("10.1.0.0/16"));
  first->routeKeySetDel(key("10.0.0.0/8"));
  EXPECT_EQ(srec->ids, (std::vector<Zel::AttrId>{RouteKeySet::routeKeySetId, RouteKeySet::routeKeySetId}));
  EXPECT_EQ(first->tagName(), Zel::String("t1"));
}

TEST_F(ConfigRecordsTest, VrfIndexChangesCarryTheFormerAndTheNewIndex) {
  auto all = VrfRouteListTaggedConfig::VrfRouteListTaggedConfigIs();
  auto rec = RecordRecorder<VrfRouteListTaggedConfig>::RecordRecorderIs(all);
  std::vector<std::pair<bool, bool>> seen;
  std::vector<std::string> vrfs;
  rec->react = [&](Zel::AttrId id, void const* k) {
    vrfs.emplace_back(static_cast<L3::VrfName const*>(k)->view());
    seen.emplace_back(rec->oldValue<VrfRouteListTaggedConfig::RouteListTaggedConfigPtr>(id) != nullptr,
                      rec->newValue<VrfRouteListTaggedConfig::RouteListTaggedConfigPtr>(id) != nullptr);
  };
  auto red = RouteListTaggedConfig::RouteListTaggedConfigIs("red");
  all->vrfConfigIs("red", red);
  EXPECT_EQ(all->vrfConfig("red"), red);
  EXPECT_FALSE(all->vrfConfig("blue"));
  all->vrfConfigDel("red");
  all->vrfConfigDel("red");
  EXPECT_EQ(vrfs, (std::vector<std::string>{"red", "red"}));
  EXPECT_EQ(seen, (std::vector<std::pair<bool, bool>>{{false, true}, {true, false}}));
  EXPECT_THROW(all->vrfConfigIs(std::string(101, 'x'), red), Zel::RangeException);
}

TEST_F(ConfigRecordsTest, NexthopGroupIdsByName) {
  auto status = NexthopGroup::EntryStatus::EntryStatusIs();
  EXPECT_EQ(status->nexthopGroupNameToId("g1"), -1) << "a group without an entry has no id";
  EXPECT_TRUE(Ondex::NexthopGroupIntfId::nexthopGroupIdToIntfId(status->nexthopGroupNameToId("g1")).empty());

  auto rec = RecordRecorder<NexthopGroup::EntryStatus>::RecordRecorderIs(status);
  std::vector<std::string> names;
  rec->react = [&](Zel::AttrId id, void const* k) {
    EXPECT_EQ(id, 258);
    names.push_back(static_cast<NexthopGroup::NexthopGroupEntryKey const*>(k)->nhgName().str());
  };
  status->nhgIdIs(NexthopGroup::NexthopGroupEntryKey("g1"), 0);
  status->nhgIdIs(NexthopGroup::NexthopGroupEntryKey("g2"), 0xffffffffu);
  EXPECT_EQ(status->nexthopGroupNameToId("g1"), 0) << "id 0 is an id";
  EXPECT_EQ(status->nexthopGroupNameToId("g2"), 0xffffffffLL) << "the largest id is not -1";
  status->nhgIdDel(NexthopGroup::NexthopGroupEntryKey("g1"));
  EXPECT_EQ(status->nexthopGroupNameToId("g1"), -1);
  EXPECT_EQ(names, (std::vector<std::string>{"g1", "g2", "g1"}));
}

TEST_F(ConfigRecordsTest, TrackedViaListAddsDeletesAndEmpties) {
  auto list = Routing::TrackedViaList::TrackedViaListIs(key("10.0.0.0/24"));
  EXPECT_EQ(list->routeKey(), key("10.0.0.0/24"));
  auto rec = RecordRecorder<Routing::TrackedViaList>::RecordRecorderIs(list);
  Routing::Via const a(Ondex::IpGenAddr::fromV4(0x0a000001));
  Routing::Via const aLocal = Routing::Via(a).localAddrIs(Ondex::IpGenAddr::fromV4(0x0a000002));
  EXPECT_TRUE(list->trackedViaIs(a));
  EXPECT_FALSE(list->trackedViaIs(a));
  EXPECT_TRUE(list->trackedViaIs(aLocal)) << "another local address is another tracked via";
  EXPECT_TRUE(list->trackedViaDel(a));
  EXPECT_FALSE(list->trackedViaDel(a));
  list->trackedViaIs(a);
  list->trackedViaDelAll();
  EXPECT_EQ(list->trackedViaSize(), 0u);
  EXPECT_EQ(rec->ids.size(), 6u);
}

}  // namespace
}  // namespace BowlineTest
