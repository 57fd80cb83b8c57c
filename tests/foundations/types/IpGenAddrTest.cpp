// Ondex::IpGenAddr and Ondex::AddressFamily: text forms both ways, the "no next hop" test, and the
// spread of the hash over nearby addresses.
#include "foundations/types/IpGenAddr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>


namespace {

using Ondex::AddressFamily;
using Ondex::IpGenAddr;

IpGenAddr addr(std::string_view text) {
  auto a = IpGenAddr::fromString(text);
  EXPECT_TRUE(a.has_value()) << text;
  return a.value_or(IpGenAddr());
}

TEST(AddressFamilyTest, EveryValueSurvivesItsTextForm) {
  for (unsigned v = 0; v < 256; ++v) {
    AddressFamily const af{std::uint8_t(v)};
    EXPECT_EQ(AddressFamily::fromStrep(valueToStrep(af)), af) << v;
  }
  EXPECT_EQ(AddressFamily::fromString("2"), AddressFamily::ipv6);
  for (std::string_view bad : {"", "IPv4", "ipv5", "256", "-1", "1 ", "'ipv4"}) {
    EXPECT_FALSE(AddressFamily::fromStrep(bad).has_value()) << bad;
  }
}

TEST(IpGenAddrTest, PrintsAndParsesBothFamilies) {
  struct Case {
    std::string_view in;
    std::string_view out;
    AddressFamily af;
  };
  for (Case const& c : std::vector<Case>{
           {"10.0.0.1", "10.0.0.1", AddressFamily::ipv4},
           {"0.0.0.0", "0.0.0.0", AddressFamily::ipv4},
           {"255.255.255.255", "255.255.255.255", AddressFamily::ipv4},
           {"2001:db8::1", "2001:db8::1", AddressFamily::ipv6},
           {"2001:0DB8:0000:0000:0000:0000:0000:0001", "2001:db8::1", AddressFamily::ipv6},
           {"::", "::", AddressFamily::ipv6},
           {"fe80::1:2", "fe80::1:2", AddressFamily::ipv6},
           {"::ffff:10.1.2.3", "::ffff:10.1.2.3", AddressFamily::ipv6},
       }) {
    IpGenAddr const a = addr(c.in);
    EXPECT_EQ(a.af(), c.af) << c.in;
    EXPECT_EQ(a.toString(), c.out) << c.in;
  }
  EXPECT_EQ(addr("2001:db8::1").v4(), 0u);
  IpGenAddr::Bytes v6{0x20, 0x01, 0x0d, 0xb8};
  v6[15] = 1;
  EXPECT_EQ(addr("2001:db8::1"), IpGenAddr::fromV6(v6));
  // fromBytes keeps only the family's bytes.
  EXPECT_EQ(IpGenAddr::fromBytes(AddressFamily::ipv4, v6), addr("32.1.13.184"));
  EXPECT_EQ(IpGenAddr::fromBytes(AddressFamily(), v6), IpGenAddr());

  // No address prints and parses as the empty text.
  EXPECT_EQ(IpGenAddr::fromString(""), IpGenAddr());
}

TEST(IpGenAddrTest, RejectsBadTextWithoutRaising) {
  std::string const longText(200, '1');
  for (std::string_view bad : std::initializer_list<std::string_view>{
           "10.0.0", "10.0.0.256", "1.2.3.4.5", "10.0.0.1/8", " 10.0.0.1", "10.0.0.1 ",
           "abc", "1::2::3", "2001:db8::g", ":::", "0x0a.0.0.1", std::string_view(longText),
           std::string_view("10.0.0.1\0junk", 13)}) {
    EXPECT_FALSE(IpGenAddr::fromString(bad).has_value()) << bad;
  }
  EXPECT_FALSE(IpGenAddr::fromStrep("'10.0.0.300'").has_value());
}

TEST(IpGenAddrTest, UnspecifiedAndLinkLocal) {
  // Unset and the zero address of either family all mean "no next hop".
  for (IpGenAddr const& none : {IpGenAddr(), addr("0.0.0.0"), addr("::")}) {
    EXPECT_TRUE(none.isUnspecified()) << none;
  }
  for (std::string_view some : {"10.0.0.1", "0.0.0.1", "128.0.0.0", "::1", "8000::", "0:0:0:1::"}) {
    EXPECT_FALSE(addr(some).isUnspecified()) << some;
  }

  for (std::string_view ll : {"fe80::1", "febf:ffff::", "169.254.0.1", "169.254.255.255"}) {
    EXPECT_TRUE(addr(ll).isLinkLocal()) << ll;
  }
  for (std::string_view other : {"fec0::1", "fe7f::1", "2001:db8::1", "169.253.0.1", "10.0.0.1"}) {
    EXPECT_FALSE(addr(other).isLinkLocal()) << other;
  }
  EXPECT_FALSE(IpGenAddr().isLinkLocal());
}

TEST(IpGenAddrTest, NearbyAddressesSpreadOverTheBucketBits) {
  std::vector<std::uint32_t> buckets;
  for (std::uint32_t i = 0; i < 64; ++i) buckets.push_back(IpGenAddr::fromV4(0x0a000000 + i).hash(3) & 0xff);
  std::sort(buckets.begin(), buckets.end());
  EXPECT_GT(std::unique(buckets.begin(), buckets.end()) - buckets.begin(), 40);
}

}  // namespace
