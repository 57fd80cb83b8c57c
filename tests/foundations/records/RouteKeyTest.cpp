// Routing::RouteKey and Routing::RoutePreference: identity, order, hashing and the text forms.
#include "foundations/records/RouteKey.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "foundations/runtime/HashMap2018.h"

namespace BowlineTest {
namespace {

using Routing::RouteKey;
using Routing::RoutePreference;

Ondex::IpGenPrefix pfx(std::string_view text) { return Ondex::IpGenPrefix::fromString(text).value(); }
RouteKey key(std::string_view prefix, std::uint8_t pref) { return RouteKey(pfx(prefix), RoutePreference(pref)); }

// Two values that must be told apart: unequal, and unequal in hash under most seeds.
void expectDistinct(RouteKey const& a, RouteKey const& b, std::string const& what) {
  EXPECT_NE(a, b) << what;
  EXPECT_FALSE(RouteKey::isEq(a, b)) << what;
  EXPECT_TRUE((a < b) != (b < a)) << what << ": the order must separate them";
  int sameHash = 0;
  for (std::uint32_t seed : {0u, 1u, 7u, 0x9e3779b9u, 0xdeadbeefu, 0xffffffffu}) sameHash += a.hash(seed) == b.hash(seed);
  EXPECT_LT(sameHash, 2) << what << ": the hash must cover the field";
}

TEST(RouteKeyTest, DefaultIsTheEmptyPrefixWithPreferenceOne) {
  RouteKey const k;
  EXPECT_EQ(k.prefix(), Ondex::IpGenPrefix());
  EXPECT_FALSE(k.prefix().af().isSet());
  EXPECT_EQ(k.preference().value(), 1);
  EXPECT_TRUE(k.preference().isNotConfigured());
  EXPECT_EQ(RoutePreference().value(), 1) << "1 is the default and means no preference configured";
  EXPECT_FALSE(RoutePreference(2).isNotConfigured());
  EXPECT_EQ(RouteKey(pfx("10.0.0.0/8")).preference(), RoutePreference()) << "a key built from a prefix alone";
}

TEST(RouteKeyTest, IdentityCoversAddressLengthFamilyAndPreference) {
  expectDistinct(key("10.0.0.0/8", 1), key("10.0.0.0/8", 2), "preference");
  expectDistinct(key("10.0.0.0/8", 1), key("10.0.0.0/16", 1), "length");
  expectDistinct(key("10.0.0.0/8", 1), key("11.0.0.0/8", 1), "address");
  expectDistinct(key("0.0.0.0/0", 1), key("::/0", 1), "family of two all-zero prefixes");
  expectDistinct(key("2001:db8::/32", 1), key("2001:db8:0:0:0:0:0:1/128", 1), "last bytes of an IPv6 address");
  expectDistinct(RouteKey(), key("0.0.0.0/0", 1), "the empty prefix against the IPv4 default route");

  // Host bits are not part of a prefix: the same route whatever the configuration wrote.
  RouteKey const a = key("10.1.2.3/8", 5);
  RouteKey const b = key("10.0.0.0/8", 5);
  EXPECT_EQ(a, b);
  EXPECT_EQ(a.hash(42), b.hash(42));
  EXPECT_FALSE(a < b || b < a);
}

TEST(RouteKeyTest, OrdersByPrefixThenPreference) {
  std::vector<RouteKey> keys = {key("10.0.0.0/16", 1), key("10.0.0.0/8", 200), key("9.0.0.0/8", 255),
                                key("10.0.0.0/8", 2), key("::/0", 0), key("10.0.0.0/8", 1)};
  std::sort(keys.begin(), keys.end());
  std::vector<std::string> order;
  for (auto const& k : keys) order.push_back(k.pretty());
  EXPECT_EQ(order, (std::vector<std::string>{"9.0.0.0/8 pref 255", "10.0.0.0/8 pref 1", "10.0.0.0/8 pref 2",
                                             "10.0.0.0/8 pref 200", "10.0.0.0/16 pref 1", "::/0 pref 0"}));
}

TEST(RouteKeyTest, SamePrefixUnderTwoPreferencesIsTwoKeysOfOneMap) {
  Zel::HashMap2018<RouteKey, int> map(258);
  map.tryEmplace(key("10.0.0.0/8", 1), 1);
  map.tryEmplace(key("10.0.0.0/8", 2), 2);
  map.tryEmplace(key("10.9.9.9/8", 1), 3);  // the first key again, host bits aside
  ASSERT_EQ(map.size(), 2u);
  EXPECT_EQ(*map.find(key("10.0.0.0/8", 1)), 1);
  EXPECT_EQ(*map.find(key("10.0.0.0/8", 2)), 2);
}

TEST(RouteKeyTest, TextFormsRoundTrip) {
  EXPECT_EQ(key("10.0.0.0/8", 1).toStrep(), "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/8', 'preference': 1})");
  EXPECT_EQ(RouteKey().toStrep(), "Value('Routing::RouteKey', ** {'prefix': '', 'preference': 1})");
  std::ostringstream os;
  os << key("2001:db8::/32", 7);
  EXPECT_EQ(os.str(), "Value('Routing::RouteKey', ** {'prefix': '2001:db8::/32', 'preference': 7})");
  EXPECT_EQ(fmt::format("{}", key("1.2.3.0/24", 9)), key("1.2.3.0/24", 9).toStrep());

  for (RouteKey const& k : {RouteKey(), key("0.0.0.0/0", 0), key("10.0.0.0/8", 255), key("fe80::/10", 1),
                            key("192.168.1.1/32", 20)}) {
    auto back = RouteKey::fromStrep(k.toStrep());
    ASSERT_TRUE(back.has_value()) << k.toStrep();
    EXPECT_EQ(*back, k);
  }

  for (std::string_view bad : {
           "Value('Routing::Via', ** {'prefix': '10.0.0.0/8', 'preference': 1})",     // another type
           "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/8', 'preference': 256})",  // not a byte
           "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/33', 'preference': 1})",   // too long
           "Value('Routing::RouteKey', ** {'prefix': 10.0.0.0/8, 'preference': 1})",      // unquoted
           "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/8'})",                     // a field missing
           "Value('Routing::RouteKey', ** {'preference': 1, 'prefix': '10.0.0.0/8'})",    // out of order
           "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/8', 'preference': 1}) ",   // trailing text
       }) {
    EXPECT_FALSE(RouteKey::fromStrep(bad).has_value()) << bad;
  }
}

TEST(RouteKeyTest, PreferenceParsesOneByte) {
  EXPECT_EQ(RoutePreference::fromString("0"), RoutePreference(0));
  EXPECT_EQ(RoutePreference::fromString("255"), RoutePreference(255));
  for (std::string_view bad : {"256", "-1", "", "1x", " 1", "+1"}) {
    EXPECT_FALSE(RoutePreference::fromString(bad).has_value()) << bad;
  }
  EXPECT_EQ(Routing::valueToStrep(RoutePreference(200)), "200");
  EXPECT_EQ(fmt::format("{}", RoutePreference(3)), "3") << "printed as a number, not as a character";
}

}  // namespace
}  // namespace BowlineTest
