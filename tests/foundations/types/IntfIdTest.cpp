// Ondex::IntfId and the names built on it: interning, order by name, the name bound, Null0, and
// the dynamic-tunnel and next-hop-group interfaces.
#include "foundations/types/IntfId.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "foundations/runtime/Exception.h"
#include "foundations/types/DynamicTunnelIntfId.h"
#include "foundations/types/NexthopGroupIntfId.h"

namespace {

using Ondex::DynamicTunnelIntfId;
using Ondex::IntfId;
using Ondex::NexthopGroupIntfId;

TEST(IntfIdTest, InterningGivesOneIdPerName) {
  IntfId const a("Ethernet1");
  IntfId const b(std::string("Ethernet") + "1");
  IntfId const c("Ethernet2");
  EXPECT_EQ(a.id(), b.id());
  EXPECT_NE(a.id(), c.id());
  EXPECT_EQ(IntfId(""), IntfId());

  // Names outlive the texts they were made from.
  std::string transient = "Vlan4094";
  IntfId const vlan(transient);
  transient.assign("overwritten");
  for (int i = 0; i < 1000; ++i) (void)IntfId("Filler" + std::to_string(i));
  EXPECT_EQ(vlan.name(), "Vlan4094");
  EXPECT_EQ(IntfId("Vlan4094"), vlan);
}

TEST(IntfIdTest, OrderIsByNameWhateverTheInterningOrder) {
  // Interned in reverse order, so that ids run against names.
  IntfId const zeta("OrderZeta");
  IntfId const mid("OrderMid");
  IntfId const alpha("OrderAlpha");
  ASSERT_GT(alpha.id(), zeta.id());
  std::vector<IntfId> v{zeta, IntfId(), mid, alpha, IntfId("OrderAlpha")};
  std::sort(v.begin(), v.end());
  std::vector<std::string_view> names;
  for (IntfId i : v) names.push_back(i.name());
  EXPECT_EQ(names, (std::vector<std::string_view>{"", "OrderAlpha", "OrderAlpha", "OrderMid", "OrderZeta"}));
}

TEST(IntfIdTest, NameBoundAndTextForms) {
  std::string const name100(100, 'e');
  std::string const name101(101, 'e');
  EXPECT_EQ(IntfId(name100).name(), name100);
  try {
    (void)IntfId(name101);
    ADD_FAILURE() << "a name of 101 bytes was accepted";
  } catch (Zel::RangeException const& e) {
    EXPECT_STREQ(e.what(), "Zel::String::bytes > maxLength() not allowed");
  }

  for (std::string_view text :
       {std::string_view("Ethernet1/1.100"), std::string_view("Port-Channel10"), std::string_view(name100)}) {
    EXPECT_EQ(IntfId::fromString(text), IntfId(std::string(text))) << text;
  }
  // Bad text gives nothing, never raises, and interns nothing under a bad name.
  for (std::string_view bad : {std::string_view(name101), std::string_view("Ether net1"),
                               std::string_view("Ethernet1\n"), std::string_view("Eth'1"), std::string_view("\t")}) {
    EXPECT_FALSE(IntfId::fromString(bad).has_value()) << bad;
  }
}

TEST(IntfIdTest, DynamicTunnelInterfaces) {
  EXPECT_TRUE(DynamicTunnelIntfId::isDynamicTunnelIntfId(IntfId("DynamicTunnel1")));
  EXPECT_TRUE(DynamicTunnelIntfId::isDynamicTunnelIntfId(IntfId("DynamicTunnel")));
  for (std::string_view other : {"Ethernet1", "Dynamic", "Tunnel1", "xDynamicTunnel1", "dynamictunnel1", ""}) {
    EXPECT_FALSE(DynamicTunnelIntfId::isDynamicTunnelIntfId(IntfId(other))) << other;
  }
}

TEST(IntfIdTest, NexthopGroupInterfacesBothWays) {
  for (std::int64_t id : {std::int64_t(0), std::int64_t(7), std::int64_t(4095), std::int64_t(UINT32_MAX)}) {
    IntfId const intf = NexthopGroupIntfId::nexthopGroupIdToIntfId(id);
    EXPECT_EQ(intf.name(), "NexthopGroup" + std::to_string(id));
    EXPECT_TRUE(NexthopGroupIntfId::isNexthopGroupIntfId(intf));
    EXPECT_EQ(NexthopGroupIntfId::intfIdToNexthopGroupId(intf), std::uint32_t(id));
  }
  // The id of an unknown group (-1), or one past 32 bits, names no interface.
  EXPECT_TRUE(NexthopGroupIntfId::nexthopGroupIdToIntfId(-1).empty());
  EXPECT_TRUE(NexthopGroupIntfId::nexthopGroupIdToIntfId(std::int64_t(UINT32_MAX) + 1).empty());
  for (std::string_view other : {"NexthopGroup", "NexthopGroup07", "NexthopGroup-1", "NexthopGroupX", "NexthopGroup1a",
                                 "NexthopGroup4294967296", "Ethernet7", "nexthopgroup7", ""}) {
    EXPECT_FALSE(NexthopGroupIntfId::intfIdToNexthopGroupId(IntfId(other)).has_value()) << other;
    EXPECT_FALSE(NexthopGroupIntfId::isNexthopGroupIntfId(IntfId(other))) << other;
  }
}

}  // namespace
