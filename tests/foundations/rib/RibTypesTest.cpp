// The shared RIB identifiers: the numbers other agents read, the text forms paths and traces use,
// and the mapping between transports and address families.
#include "foundations/rib/RibTypes.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

namespace {

using Ondex::AddressFamily;
using Routing::MetricPref;
using Routing::Rib::RoutingProtocol;
using Routing::Rib::Transport;
using Vrf::VrfIdMap::VrfId;

TEST(RibTypesTest, VrfIdConstantsAndTextForm) {
  EXPECT_EQ(VrfId().value(), 0u) << "a default-constructed id is the default VRF";
  EXPECT_TRUE(VrfId().isDefault());
  EXPECT_EQ(VrfId::none().value(), 0xffffffu);
  EXPECT_TRUE(VrfId(0xffffff).isNone());
  EXPECT_EQ(VrfId(0xffffff), 0xffffffu) << "compares with a plain number";
  EXPECT_LT(VrfId(3), VrfId(12));
  for (std::uint32_t v : {0u, 7u, 0xffffffu, 0xffffffffu}) {
    EXPECT_EQ(VrfId::fromStrep(valueToStrep(VrfId(v))), VrfId(v)) << v;
  }
  EXPECT_FALSE(VrfId::fromStrep("-1"));
  EXPECT_NE(VrfId(1).hash(7), VrfId(2).hash(7));
}

TEST(RibTypesTest, TransportsMapToFamiliesAndBack) {
  EXPECT_EQ(Transport::transportIpv4().value(), 1);
  EXPECT_EQ(Transport::transportIpv6().value(), 2);
  EXPECT_EQ(Transport::transportEvpn().value(), 3);
  EXPECT_EQ(Transport::getAfFromTransport(1), AddressFamily::ipv4);
  EXPECT_EQ(Transport::getAfFromTransport(2), AddressFamily::ipv6);
  EXPECT_EQ(Transport::getAfFromTransport(Transport::transportEvpn()).value(), 0) << "EVPN has no family";
  EXPECT_EQ(Transport::getAfFromTransport(9).value(), 0);
  EXPECT_EQ(Transport::fromAf(AddressFamily::ipv6), Transport::transportIpv6());
  EXPECT_EQ(Transport::fromAf(AddressFamily()), Transport());

  EXPECT_EQ(fmt::format("{} {} {} {}", Transport(1), Transport(2), Transport(3), Transport(17)), "ipv4 ipv6 evpn 17");
  for (unsigned v = 0; v < 256; ++v) {
    Transport const t{std::uint8_t(v)};
    EXPECT_EQ(Transport::fromStrep(t.toStrep()), t) << v;
  }
  EXPECT_FALSE(Transport::fromStrep("ipv5"));
}

TEST(RibTypesTest, RoutingProtocolNamesAndPassThroughNumbers) {
  EXPECT_EQ(RoutingProtocol::staticConfig().value(), 2);
  EXPECT_EQ(RoutingProtocol::routeInput().value(), 4);
  EXPECT_EQ(RoutingProtocol(2).toStrep(), "staticConfig");
  EXPECT_EQ(RoutingProtocol(4).toStrep(), "routeInput");
  EXPECT_EQ(RoutingProtocol(60).toStrep(), "60") << "protocols the RIB names are carried as numbers";
  for (std::uint16_t v : {0, 2, 4, 60, 65535}) {
    EXPECT_EQ(RoutingProtocol::fromStrep(RoutingProtocol(v).toStrep()), RoutingProtocol(v)) << v;
  }
  EXPECT_EQ(RoutingProtocol::fromStrep("'routeInput'"), RoutingProtocol::routeInput());
}

TEST(RibTypesTest, MetricPrefDefaultsAndEquality) {
  MetricPref m;
  EXPECT_EQ(m.metric(), 0xffffffffu);
  EXPECT_EQ(m.preference(), 0xff);
  EXPECT_EQ(MetricPref(1, 1), MetricPref(1, 1));
  EXPECT_NE(MetricPref(1, 1), MetricPref(1, 2));
  EXPECT_NE(MetricPref(1, 1), MetricPref(2, 1));
  m.metricIs(10);
  m.preferenceIs(5);
  EXPECT_EQ(m, MetricPref(10, 5));
  EXPECT_EQ(fmt::format("{}", m), "(10, 5)");
}

}  // namespace
