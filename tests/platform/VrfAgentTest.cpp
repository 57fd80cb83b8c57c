// VrfAgent: both VRF maps stay one-to-one through additions, renumbering, id takeover and deletion.
#include "platform/VrfAgent.h"

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

class VrfAgentTest : public RuntimeFixture {};

TEST_F(VrfAgentTest, MapsStayConsistentThroughRenumberingAndTakeover) {
  auto const agent = Platform::VrfAgent::VrfAgentIs();
  auto const names = agent->nameStatus()->nameToIdMap();
  auto const ids = agent->idStatus();
  EXPECT_TRUE(agent->vrfIs("red", 5));
  EXPECT_FALSE(agent->vrfIs("red", 5)) << "1: no change";
  EXPECT_EQ(names->vrfIdOf("red"), 5u);
  EXPECT_EQ(ids->vrfIdToName(5), L3::VrfName("red"));

  EXPECT_TRUE(agent->vrfIs("red", 6));
  EXPECT_FALSE(ids->vrfIdToNameHas(5)) << "2: renumbered: the old id is free";
  EXPECT_EQ(ids->vrfIdToName(6), L3::VrfName("red"));

  EXPECT_TRUE(agent->vrfIs("blue", 6));
  EXPECT_FALSE(names->vrfNameToIdHas("red")) << "3: blue took red's id";
  EXPECT_EQ(ids->vrfIdToName(6), L3::VrfName("blue"));
  EXPECT_EQ(ids->vrfIdToNameSize(), names->vrfNameToIdSize());

  EXPECT_FALSE(agent->vrfIs("green", Vrf::VrfIdMap::VrfId::none())) << "4: no VRF is no id";
  EXPECT_FALSE(agent->vrfIs("", 7)) << "4";
  auto const before = agent->version();
  EXPECT_TRUE(agent->vrfDel("blue"));
  EXPECT_FALSE(agent->vrfDel("blue"));
  EXPECT_EQ(agent->version(), before + 1) << "5: one change, one bump";
  EXPECT_EQ(ids->vrfIdToNameSize(), 0u);

  agent->vrfIs("b", 2);
  agent->vrfIs("a", 9);
  agent->nameToIdMapRenew();
  EXPECT_NE(agent->nameStatus()->nameToIdMap(), names) << "6: a new map";
  auto const all = agent->vrfs();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0].first, L3::VrfName("a")) << "6: sorted by name";
  EXPECT_EQ(all[1].second, 2u);
}

}  // namespace
}  // namespace BowlineTest
