// Routing::Via and Routing::RouteAttributes: the IP/EVPN split and "no next hop", absent attributes
// against present ones with no community.
#include "foundations/records/Via.h"

#include <gtest/gtest.h>

#include <string>

#include "foundations/records/RouteAttributes.h"

namespace BowlineTest {
namespace {

using Routing::RouteAttributes;
using Routing::Via;

Ondex::IpGenAddr addr(std::string_view text) { return Ondex::IpGenAddr::fromString(text).value(); }
Ondex::EthAddr mac(std::string_view text) { return Ondex::EthAddr::fromString(text).value(); }

TEST(ViaTest, IpAndEvpnViasAndNextHops) {
  Via const ip(addr("10.0.0.1"), Ondex::IntfId("Ethernet1"));
  EXPECT_TRUE(ip.isIpVia());
  EXPECT_FALSE(ip.isEvpnVia());

  Via const evpn = Via().vtepAddrIs(addr("192.0.2.1")).vniIs(Vxlan::VniExtOrNone(10)).routerMacIs(mac("02:00:00:00:00:99"));
  EXPECT_TRUE(evpn.isEvpnVia());
  EXPECT_FALSE(evpn.isIpVia());
  // A VTEP address of a family is set even when it is all zeros: the via is still EVPN.
  EXPECT_TRUE(Via().vtepAddrIs(addr("0.0.0.0")).isEvpnVia());

  // No next hop: no family, or the all-zero address of either family.
  EXPECT_TRUE(Via().hasNoNextHop());
  EXPECT_TRUE(Via(addr("0.0.0.0")).hasNoNextHop());
  EXPECT_TRUE(Via(addr("::")).hasNoNextHop());
  EXPECT_FALSE(Via(addr("0.0.0.1")).hasNoNextHop());
  EXPECT_TRUE(Via(addr("::1")).hasNextHop());
  EXPECT_FALSE(ip.hasEgressVrf()) << "the empty egress VRF is the route's own";
}

TEST(ViaTest, RouteAttributesAbsentEmptyAndCommunities) {
  using Attrs = Zel::Optional<RouteAttributes>;
  Attrs const absent;
  Attrs const empty{RouteAttributes()};
  Attrs const one{RouteAttributes({100})};
  EXPECT_NE(absent, empty) << "absent is not present with no community";
  EXPECT_NE(absent.hash(1), empty.hash(1));
  EXPECT_NE(empty, one);

  RouteAttributes const ab({1, 2});
  RouteAttributes copy = ab;
  copy.communityPush(3);
  EXPECT_EQ(ab.communitySize(), 2u) << "a copy owns its own vector";
}

}  // namespace
}  // namespace BowlineTest
