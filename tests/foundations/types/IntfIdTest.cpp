// Ondex::IntfId and the names built on it: interning, order by name, the name bound, Null0, and
// the dynamic-tunnel and next-hop-group interfaces.
#include "foundations/types/IntfId.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

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
  EXPECT_EQ(a, b);
  EXPECT_NE(a.id(), c.id());
  EXPECT_NE(a, c);
  EXPECT_EQ(a.name(), "Ethernet1");
  EXPECT_EQ(c.name(), "Ethernet2");
  EXPECT_EQ(fmt::format("{}", c), "Ethernet2");

  // The empty id is the empty name, and names outlive the texts they were made from.
  EXPECT_TRUE(IntfId().empty());
  EXPECT_EQ(IntfId(""), IntfId());
  EXPECT_EQ(IntfId().name(), "");
  std::string transient = "Vlan4094";
  IntfId const vlan(transient);
  transient.assign("overwritten");
  for (int i = 0; i < 1000; ++i) (void)IntfId("Filler" + std::to_string(i));
  EXPECT_EQ(vlan.name(), "Vlan4094");
  EXPECT_EQ(IntfId("Vlan4094"), vlan);
}

TEST(IntfIdTest, Null0IsTheDropInterface) {
  EXPECT_EQ(IntfId::null0().name(), "Null0");
  EXPECT_TRUE(IntfId::null0().isNull0());
  EXPECT_EQ(IntfId("Null0"), IntfId::null0());
  EXPECT_TRUE(IntfId("Null0").isNull0());
  EXPECT_FALSE(IntfId("Null1").isNull0());
  EXPECT_FALSE(IntfId().isNull0());
}

TEST(IntfIdTest, OrderIsByNameWhateverTheInterningOrder) {
  // Interned in reverse order, so that ids run against names.
  IntfId const zeta("OrderZeta");
  IntfId const mid("OrderMid");
  IntfId const alpha("OrderAlpha");
  ASSERT_GT(alpha.id(), zeta.id());
  EXPECT_LT(alpha, mid);
  EXPECT_LT(mid, zeta);
  EXPECT_LT(IntfId(), alpha) << "the empty name first";
  std::vector<IntfId> v{zeta, IntfId(), mid, alpha, IntfId("OrderAlpha")};
  std::sort(v.begin(), v.end());
  std::vector<std::string_view> names;
  for (IntfId i : v) names.push_back(i.name());
  EXPECT_EQ(names, (std::vector<std::string_view>{"", "OrderAlpha", "OrderAlpha", "OrderMid", "OrderZeta"}));
  EXPECT_EQ(alpha <=> IntfId("OrderAlpha"), std::strong_ordering::equal);
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

  for (std::string_view text : {"Ethernet1", "Ethernet1/1.100", "Port-Channel10", "Loopback0", ""}) {
    auto parsed = IntfId::fromString(text);
    ASSERT_TRUE(parsed.has_value()) << text;
    EXPECT_EQ(parsed->name(), text);
    EXPECT_EQ(IntfId::fromStrep(valueToStrep(*parsed)), parsed) << text;
  }
  EXPECT_EQ(valueToStrep(IntfId("Ethernet1")), "'Ethernet1'");
  EXPECT_EQ(IntfId::fromString(name100), IntfId(name100));
  // Bad text gives nothing, never raises, and interns nothing under a bad name.
  for (std::string_view bad : {std::string_view(name101), std::string_view("Ether net1"),
                               std::string_view("Ethernet1\n"), std::string_view("Eth'1"), std::string_view("\t")}) {
    EXPECT_FALSE(IntfId::fromString(bad).has_value()) << bad;
  }
  EXPECT_FALSE(IntfId::fromStrep("Ethernet1").has_value()) << "unquoted";
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
    EXPECT_EQ(NexthopGroupIntfId::nexthopGroupIdToIntfId(id), intf) << "the same id gives the same interface";
  }
  EXPECT_NE(NexthopGroupIntfId::nexthopGroupIdToIntfId(1), NexthopGroupIntfId::nexthopGroupIdToIntfId(2));
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
