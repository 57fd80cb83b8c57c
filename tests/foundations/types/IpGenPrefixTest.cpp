// Ondex::IpGenPrefix: text forms both ways, host bits cleared on construction, containment.
#include "foundations/types/IpGenPrefix.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

using Ondex::AddressFamily;
using Ondex::IpGenAddr;
using Ondex::IpGenPrefix;

IpGenPrefix prefix(std::string_view text) {
  auto p = IpGenPrefix::fromString(text);
  EXPECT_TRUE(p.has_value()) << text;
  return p.value_or(IpGenPrefix());
}

IpGenAddr addr(std::string_view text) { return IpGenAddr::fromString(text).value(); }

TEST(IpGenPrefixTest, PrintsAndParsesBothFamilies) {
  for (std::string_view text : {"10.0.0.0/8", "0.0.0.0/0", "10.1.2.3/32", "192.168.4.0/22", "2001:db8::/32", "::/0",
                                "2001:db8::1/128", "fe80::/10", "2001:db8:0:1::/64"}) {
    IpGenPrefix const p = prefix(text);
    EXPECT_EQ(p.toString(), text);
  }
  EXPECT_EQ(prefix("2001:db8::/32").addr(), addr("2001:db8::"));
  EXPECT_EQ(IpGenPrefix::fromString(""), IpGenPrefix());
}

TEST(IpGenPrefixTest, RejectsBadLengthAndBadText) {
  for (std::string_view bad : {"10.0.0.0/33", "2001:db8::/129", "::/1000", "10.0.0.0/", "10.0.0.0/-1",
                               "10.0.0.0/+8", "10.0.0.0/8x", "10.0.0.0/ 8", "10.0.0.0", "/8", "10.0.0/8",
                               "10.0.0.0/8/8", "2001:db8::/0x20"}) {
    EXPECT_FALSE(IpGenPrefix::fromString(bad).has_value()) << bad;
  }
  EXPECT_FALSE(IpGenPrefix::fromAddrLen(addr("10.0.0.0"), 33).has_value());
  EXPECT_FALSE(IpGenPrefix::fromAddrLen(addr("::"), 129).has_value());
  EXPECT_FALSE(IpGenPrefix::fromAddrLen(IpGenAddr(), 1).has_value());
  EXPECT_EQ(IpGenPrefix::fromAddrLen(addr("::"), 128), prefix("::/128"));
}

TEST(IpGenPrefixDeathTest, ConstructionPastTheFamilyWidthIsAProgrammingError) {
  EXPECT_DEATH((void)IpGenPrefix(addr("10.0.0.0"), 33), "IpGenPrefix length is longer than its address");
  EXPECT_DEATH((void)IpGenPrefix(IpGenAddr(), 8), "IpGenPrefix length is longer than its address");
}

TEST(IpGenPrefixTest, ConstructionClearsHostBits) {
  struct Case {
    std::string_view in;
    std::string_view out;
  };
  for (Case const& c : std::initializer_list<Case>{{"10.1.2.3/8", "10.0.0.0/8"},
                                                   {"10.255.255.255/13", "10.248.0.0/13"},
                                                   {"255.255.255.255/0", "0.0.0.0/0"},
                                                   {"10.1.2.3/31", "10.1.2.2/31"},
                                                   {"2001:db8:ffff::1/32", "2001:db8::/32"},
                                                   {"2001:db8::ffff:ffff:ffff:ffff/65", "2001:db8:0:0:8000::/65"},
                                                   {"ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff/127",
                                                    "ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffe/127"},
                                                   {"2001:db8::1/0", "::/0"}}) {
    IpGenPrefix const p = prefix(c.in);
    EXPECT_EQ(p.toString(), c.out) << c.in;
    EXPECT_EQ(p.hash(5), prefix(c.out).hash(5)) << c.in;
  }
  EXPECT_EQ(IpGenPrefix(addr("192.168.1.77"), 24), prefix("192.168.1.0/24"));
}

TEST(IpGenPrefixTest, ContainsAndHostPrefix) {
  IpGenPrefix const p = prefix("10.1.0.0/16");
  EXPECT_TRUE(p.contains(addr("10.1.255.255")));
  EXPECT_FALSE(p.contains(addr("10.0.255.255")));
  EXPECT_FALSE(p.contains(IpGenAddr::fromBytes(AddressFamily::ipv6, addr("10.1.0.1").bytes()))) << "other family";
  EXPECT_FALSE(p.contains(IpGenAddr()));
  IpGenPrefix const v6 = prefix("2001:db8:0:8000::/49");
  EXPECT_TRUE(v6.contains(addr("2001:db8:0:ffff::1")));
  EXPECT_FALSE(v6.contains(addr("2001:db8:0:7fff::1")));
  IpGenPrefix const v6long = prefix("2001:db8::ff00/120");
  EXPECT_TRUE(v6long.contains(addr("2001:db8::ffab")));
  EXPECT_FALSE(v6long.contains(addr("2001:db8::1:ff00")));
  // A default route covers its own family only; the empty prefix covers nothing.
  EXPECT_TRUE(prefix("0.0.0.0/0").contains(addr("200.1.1.1")));
  EXPECT_FALSE(prefix("0.0.0.0/0").contains(addr("::1")));
  EXPECT_FALSE(IpGenPrefix().contains(IpGenAddr()));
  EXPECT_FALSE(IpGenPrefix().contains(addr("0.0.0.0")));

  EXPECT_TRUE(p.contains(prefix("10.1.2.0/24")));
  EXPECT_TRUE(p.contains(p));
  EXPECT_FALSE(p.contains(prefix("10.0.0.0/8")));
  EXPECT_FALSE(prefix("10.1.2.0/24").contains(p));

  for (std::string_view host : {"10.0.0.1/32", "2001:db8::1/128"}) EXPECT_TRUE(prefix(host).isHostPrefix()) << host;
  for (std::string_view net : {"10.0.0.0/31", "2001:db8::/127", "::/32"}) {
    EXPECT_FALSE(prefix(net).isHostPrefix()) << net;
  }
  EXPECT_FALSE(IpGenPrefix().isHostPrefix());
}

}  // namespace
