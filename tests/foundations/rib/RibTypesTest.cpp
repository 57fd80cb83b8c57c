// The shared RIB identifiers: text forms that carry unnamed numbers through, and the mapping between
// transports and address families.
#include "foundations/rib/RibTypes.h"

#include <gtest/gtest.h>

namespace {

using Ondex::AddressFamily;
using Routing::Rib::RoutingProtocol;
using Routing::Rib::Transport;

TEST(RibTypesTest, TransportsMapToFamiliesAndBack) {
  EXPECT_EQ(Transport::getAfFromTransport(2), AddressFamily::ipv6);
  EXPECT_EQ(Transport::getAfFromTransport(Transport::transportEvpn()).value(), 0) << "EVPN has no family";
  EXPECT_EQ(Transport::getAfFromTransport(9).value(), 0);
  EXPECT_EQ(Transport::fromAf(AddressFamily::ipv6), Transport::transportIpv6());
  EXPECT_EQ(Transport::fromAf(AddressFamily()), Transport());

  for (unsigned v = 0; v < 256; ++v) {
    Transport const t{std::uint8_t(v)};
    EXPECT_EQ(Transport::fromStrep(t.toStrep()), t) << v;
  }
  EXPECT_FALSE(Transport::fromStrep("ipv5"));
}

TEST(RibTypesTest, RoutingProtocolNamesAndPassThroughNumbers) {
  EXPECT_EQ(RoutingProtocol(60).toStrep(), "60") << "protocols the RIB names are carried as numbers";
  for (std::uint16_t v : {0, 2, 4, 60, 65535}) {
    EXPECT_EQ(RoutingProtocol::fromStrep(RoutingProtocol(v).toStrep()), RoutingProtocol(v)) << v;
  }
  EXPECT_EQ(RoutingProtocol::fromStrep("'routeInput'"), RoutingProtocol::routeInput());
}

}  // namespace
