// The smaller configuration records where they hold logic of their own: when a command tag counts as
// enabled, and the id a next-hop group name maps to.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundations/records/ConfigTag.h"
#include "foundations/records/NexthopGroupEntryStatus.h"
#include "foundations/types/NexthopGroupIntfId.h"
#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

class ConfigRecordsTest : public RuntimeFixture {};

TEST_F(ConfigRecordsTest, CommandTagsEnabledUnlessStateZeroOrTwo) {
  std::vector<bool> enabled;
  for (ConfigTag::OperState s : {0, 1, 2, 3, 4, 6, 0xff}) enabled.push_back(ConfigTag::operStateEnabled(s));
  EXPECT_EQ(enabled, (std::vector<bool>{false, true, false, true, true, true, true}));

  auto status = ConfigTag::ConfigTagStatus::ConfigTagStatusIs();
  auto entry = status->configTagEntryIs("maint");
  EXPECT_FALSE(entry->enabled()) << "a new entry is in state 0";
  entry->operStateIs(1);
  EXPECT_TRUE(status->configTagEntry("maint")->enabled());
}

TEST_F(ConfigRecordsTest, NexthopGroupIdsByName) {
  auto status = NexthopGroup::EntryStatus::EntryStatusIs();
  EXPECT_EQ(status->nexthopGroupNameToId("g1"), -1) << "a group without an entry has no id";
  EXPECT_TRUE(Ondex::NexthopGroupIntfId::nexthopGroupIdToIntfId(status->nexthopGroupNameToId("g1")).empty());
  status->nhgIdIs(NexthopGroup::NexthopGroupEntryKey("g1"), 0);
  status->nhgIdIs(NexthopGroup::NexthopGroupEntryKey("g2"), 0xffffffffu);
  EXPECT_EQ(status->nexthopGroupNameToId("g1"), 0) << "id 0 is an id";
  EXPECT_EQ(status->nexthopGroupNameToId("g2"), 0xffffffffLL) << "the largest id is not -1";
  status->nhgIdDel(NexthopGroup::NexthopGroupEntryKey("g1"));
  EXPECT_EQ(status->nexthopGroupNameToId("g1"), -1);
}

}  // namespace
}  // namespace BowlineTest
