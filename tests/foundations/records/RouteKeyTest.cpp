// Routing::RouteKey and Routing::RoutePreference: one prefix under two preferences is two keys,
// and a preference is one byte.
#include "foundations/records/RouteKey.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <string_view>

#include "foundations/runtime/HashMap2018.h"

namespace BowlineTest {
namespace {

using Routing::RouteKey;
using Routing::RoutePreference;

Ondex::IpGenPrefix pfx(std::string_view text) { return Ondex::IpGenPrefix::fromString(text).value(); }
RouteKey key(std::string_view prefix, std::uint8_t pref) { return RouteKey(pfx(prefix), RoutePreference(pref)); }

TEST(RouteKeyTest, SamePrefixUnderTwoPreferencesIsTwoKeysOfOneMap) {
  Zel::HashMap2018<RouteKey, int> map(258);
  map.tryEmplace(key("10.0.0.0/8", 1), 1);
  map.tryEmplace(key("10.0.0.0/8", 2), 2);
  map.tryEmplace(key("10.9.9.9/8", 1), 3);  // the first key again, host bits aside
  ASSERT_EQ(map.size(), 2u);
  EXPECT_EQ(*map.find(key("10.0.0.0/8", 1)), 1);
  EXPECT_EQ(*map.find(key("10.0.0.0/8", 2)), 2);
}

TEST(RouteKeyTest, PreferenceParsesOneByte) {
  EXPECT_EQ(RoutePreference::fromString("255"), RoutePreference(255));
  for (std::string_view bad : {"256", "-1", "", "1x", " 1", "+1"}) {
    EXPECT_FALSE(RoutePreference::fromString(bad).has_value()) << bad;
  }
  EXPECT_EQ(fmt::format("{}", RoutePreference(3)), "3") << "printed as a number, not as a character";
}

}  // namespace
}  // namespace BowlineTest
