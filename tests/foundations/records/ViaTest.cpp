// Routing::Via and Routing::RouteAttributes: the IP/EVPN split and "no next hop", the label and
// VRF bounds, absent attributes against present ones with no community.
#include "foundations/records/Via.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <string>

#include "foundations/records/RouteAttributes.h"
#include "foundations/runtime/Exception.h"

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
  EXPECT_FALSE(ip.vni()) << "an IP via has no VNI";
  EXPECT_FALSE(ip.routerMac()) << "an IP via has no router MAC";

  Via const evpn = Via().vtepAddrIs(addr("192.0.2.1")).vniIs(Vxlan::VniExtOrNone(10)).routerMacIs(mac("aa:bb:cc:dd:ee:ff"));
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
  // ...yet the three "no next hop" vias are three different vias.
  EXPECT_NE(Via(), Via(addr("0.0.0.0")));
  EXPECT_NE(Via(addr("0.0.0.0")), Via(addr("::")));

  EXPECT_TRUE(ip.hasIntf());
  EXPECT_FALSE(Via(addr("10.0.0.1")).hasIntf());
  EXPECT_FALSE(ip.hasEgressVrf()) << "the empty egress VRF is the route's own";
  EXPECT_TRUE(Via(ip).egressVrfIs("red").hasEgressVrf());
}

TEST(ViaTest, LabelAndVrfBounds) {
  EXPECT_FALSE(Via().mplsLabel().isValid()) << "no label by default";
  EXPECT_FALSE(Via().mplsLabelIs(Ondex::MplsLabel(0x100000)).mplsLabel().isValid()) << "0x100000 is no label";
  EXPECT_EQ(Via().mplsLabelIs(Ondex::MplsLabel(0x100000)), Via());
  EXPECT_TRUE(Via().mplsLabelIs(Ondex::MplsLabel(0xfffff)).mplsLabel().isValid()) << "0xfffff is the largest label";
  EXPECT_TRUE(Via().mplsLabelIs(Ondex::MplsLabel(0)).mplsLabel().isValid());
  EXPECT_NE(Via().mplsLabelIs(Ondex::MplsLabel(0)), Via()) << "label 0 is a label";

  std::string const name100(100, 'v');
  EXPECT_EQ(Via().egressVrfIs(name100).egressVrf().size(), 100u);
  try {
    Via().egressVrfIs(std::string(101, 'v'));
    ADD_FAILURE() << "a VRF name of 101 bytes must raise";
  } catch (Zel::RangeException const& e) {
    EXPECT_STREQ(e.what(), "Zel::String::bytes > maxLength() not allowed");
  }
}

TEST(ViaTest, RouteAttributesAbsentEmptyAndCommunities) {
  using Attrs = Zel::Optional<RouteAttributes>;
  Attrs const absent;
  Attrs const empty{RouteAttributes()};
  Attrs const one{RouteAttributes({100})};
  EXPECT_NE(absent, empty) << "absent is not present with no community";
  EXPECT_NE(absent.hash(1), empty.hash(1));
  EXPECT_NE(empty, one);
  EXPECT_EQ(one, Attrs(RouteAttributes().communityPush(100)));

  // The order of communities matters, and the copy is whole.
  RouteAttributes const ab({1, 2});
  RouteAttributes const ba({2, 1});
  EXPECT_NE(ab, ba);
  EXPECT_NE(ab.hash(9), ba.hash(9));
  RouteAttributes copy = ab;
  copy.communityPush(3);
  EXPECT_EQ(ab.communitySize(), 2u) << "a copy owns its own vector";
}

}  // namespace
}  // namespace BowlineTest
