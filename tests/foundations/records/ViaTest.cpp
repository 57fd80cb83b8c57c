// Routing::Via, Routing::RouteViaAttr and Routing::RouteAttributes: what is identity and what is
// not, the IP/EVPN split, the label and VRF bounds, and the text forms.
#include "foundations/records/Via.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "foundations/records/RouteAttributes.h"
#include "foundations/records/RouteViaAttr.h"
#include "foundations/runtime/Exception.h"

namespace BowlineTest {
namespace {

using Routing::RouteAttributes;
using Routing::RouteViaAttr;
using Routing::Via;

Ondex::IpGenAddr addr(std::string_view text) { return Ondex::IpGenAddr::fromString(text).value(); }
Ondex::EthAddr mac(std::string_view text) { return Ondex::EthAddr::fromString(text).value(); }

// A via with every field set away from its default.
Via fullVia() {
  return Via(addr("10.0.0.1"), Ondex::IntfId("Ethernet1"))
      .mplsLabelIs(Ondex::MplsLabel(16))
      .vniIs(Vxlan::VniExtOrNone(5000))
      .vtepSipValidationIs(true)
      .vtepAddrIs(addr("192.0.2.1"))
      .routerMacIs(mac("02:00:5e:10:00:55"))
      .egressVrfIs("red")
      .localAddrIs(addr("10.0.0.2"));
}

TEST(ViaTest, EveryFieldIsIdentity) {
  std::vector<std::pair<std::string, std::function<void(Via&)>>> const changes = {
      {"hop", [](Via& v) { v.hopIs(addr("10.0.0.3")); }},
      {"hop family", [](Via& v) { v.hopIs(addr("::ffff:10.0.0.1")); }},
      {"intfId", [](Via& v) { v.intfIdIs(Ondex::IntfId("Ethernet2")); }},
      {"intfId none", [](Via& v) { v.intfIdIs(Ondex::IntfId()); }},
      {"mplsLabel", [](Via& v) { v.mplsLabelIs(Ondex::MplsLabel(17)); }},
      {"mplsLabel none", [](Via& v) { v.mplsLabelIs(Ondex::MplsLabel::none()); }},
      {"vni", [](Via& v) { v.vniIs(Vxlan::VniExtOrNone(5001)); }},
      {"vtepSipValidation", [](Via& v) { v.vtepSipValidationIs(false); }},
      {"vtepAddr", [](Via& v) { v.vtepAddrIs(addr("192.0.2.2")); }},
      {"routerMac", [](Via& v) { v.routerMacIs(mac("02:00:5e:10:00:56")); }},
      {"egressVrf", [](Via& v) { v.egressVrfIs("blue"); }},
      {"egressVrf own", [](Via& v) { v.egressVrfIs(L3::VrfName()); }},
      {"localAddr", [](Via& v) { v.localAddrIs(addr("10.0.0.9")); }},
      {"localAddr absent", [](Via& v) { v.localAddrDel(); }},
  };
  Via const base = fullVia();
  std::vector<Via> seen = {base};
  for (auto const& [what, change] : changes) {
    Via v = base;
    change(v);
    EXPECT_NE(v, base) << what;
    EXPECT_FALSE(Via::isEq(v, base)) << what;
    EXPECT_TRUE((v < base) != (base < v)) << what << ": the order must separate them";
    int sameHash = 0;
    for (std::uint32_t seed : {0u, 3u, 0x9e3779b9u, 0xffffffffu}) sameHash += v.hash(seed) == base.hash(seed);
    EXPECT_LT(sameHash, 2) << what << ": the hash must cover the field";
    seen.push_back(v);
  }
  // The order is a total order over all of them: sorting gives no two equivalent neighbours.
  std::sort(seen.begin(), seen.end());
  for (std::size_t i = 1; i < seen.size(); ++i) EXPECT_TRUE(seen[i - 1] < seen[i]) << i;

  // The same via built twice, its VRF name from separate strings: equal, same hash.
  Via const again = fullVia().egressVrfIs(std::string("re") + "d");
  EXPECT_EQ(again, base);
  EXPECT_EQ(again.hash(11), base.hash(11));
  EXPECT_FALSE(again < base || base < again);
}

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

TEST(ViaTest, TextFormsRoundTrip) {
  Via const simple(addr("10.0.0.1"), Ondex::IntfId("Ethernet1"));
  EXPECT_EQ(simple.toStrep(),
            "Value('Routing::Via', ** {'hop': '10.0.0.1', 'intfId': 'Ethernet1', 'mplsLabel': 1048576, "
            "'vni': 4294967295, 'vtepSipValidation': False, 'vtepAddr': '', 'routerMac': '00:00:00:00:00:00', "
            "'egressVrf': '', 'localAddr': None})");
  EXPECT_EQ(fmt::format("{}", simple), simple.toStrep());

  for (Via const& v : {Via(), simple, fullVia(), Via(addr("2001:db8::1")).egressVrfIs("it's, odd})"),
                       Via().localAddrIs(addr("fe80::1"))}) {
    auto back = Via::fromStrep(v.toStrep());
    ASSERT_TRUE(back.has_value()) << v.toStrep();
    EXPECT_EQ(*back, v) << v.toStrep();
  }

  std::string const good = simple.toStrep();
  auto replaced = [&](std::string_view from, std::string_view to) {
    std::string s = good;
    s.replace(s.find(from), from.size(), to);
    return s;
  };
  for (std::string const& bad : {replaced("False", "false"), replaced("'10.0.0.1'", "'10.0.0.256'"),
                                 replaced("1048576", "-1"), replaced("'localAddr': None", "'localAddr': 'x'"),
                                 replaced("Routing::Via", "Routing::RouteKey"), good.substr(0, good.size() - 1)}) {
    EXPECT_FALSE(Via::fromStrep(bad).has_value()) << bad;
  }
}

TEST(ViaTest, ViaAttrIsMetricAndWeight) {
  EXPECT_EQ(RouteViaAttr(), RouteViaAttr(0, 0));
  EXPECT_NE(RouteViaAttr(1, 1), RouteViaAttr(1, 2)) << "a weight change is a change of the value";
  EXPECT_NE(RouteViaAttr(1, 1), RouteViaAttr(2, 1));
  EXPECT_NE(RouteViaAttr(1, 2).hash(5), RouteViaAttr(2, 1).hash(5));
  EXPECT_LT(RouteViaAttr(1, 9), RouteViaAttr(2, 0)) << "metric first";
  EXPECT_EQ(RouteViaAttr(7, 3).toStrep(), "Value('Routing::RouteViaAttr', ** {'metric': 7, 'weight': 3})");
  EXPECT_EQ(RouteViaAttr::fromStrep(RouteViaAttr(0xffffffff, 42).toStrep()), RouteViaAttr(0xffffffff, 42));
  EXPECT_FALSE(RouteViaAttr::fromStrep("Value('Routing::RouteViaAttr', ** {'metric': 4294967296, 'weight': 0})"));
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

  EXPECT_EQ(ab.toStrep(), "Value('Routing::RouteAttributes', ** {'community': [1, 2]})");
  EXPECT_EQ(RouteAttributes().toStrep(), "Value('Routing::RouteAttributes', ** {'community': []})");
  for (RouteAttributes const& a : {RouteAttributes(), RouteAttributes({0}), RouteAttributes({4294967295u, 7, 7})}) {
    EXPECT_EQ(RouteAttributes::fromStrep(a.toStrep()), a) << a.toStrep();
  }
  for (std::string_view bad : {"Value('Routing::RouteAttributes', ** {'community': [1,2]})",
                               "Value('Routing::RouteAttributes', ** {'community': [1, ]})",
                               "Value('Routing::RouteAttributes', ** {'community': [, 1]})",
                               "Value('Routing::RouteAttributes', ** {'community': 1})"}) {
    EXPECT_FALSE(RouteAttributes::fromStrep(bad).has_value()) << bad;
  }
}

}  // namespace
}  // namespace BowlineTest
