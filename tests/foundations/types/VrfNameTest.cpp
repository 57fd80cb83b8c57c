// L3::VrfName: the 100-byte bound on every way of building one, the default VRF, text forms.
#include "foundations/types/VrfName.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "foundations/runtime/Exception.h"

namespace {

using L3::VrfName;

constexpr char kBoundText[] = "Zel::String::bytes > maxLength() not allowed";

TEST(VrfNameTest, EveryConstructionChecksTheBound) {
  std::string const name100(100, 'v');
  std::string const name101(101, 'v');
  std::vector<std::pair<char const*, std::function<VrfName(std::string const&)>>> const ways{
      {"std::string", [](std::string const& s) { return VrfName(s); }},
      {"string_view", [](std::string const& s) { return VrfName(std::string_view(s)); }},
      {"char const*", [](std::string const& s) { return VrfName(s.c_str()); }},
      {"Quill::String", [](std::string const& s) { return VrfName(Quill::String(s)); }},
      {"assignment", [](std::string const& s) {
         VrfName v;
         v = Quill::String(s);
         return v;
       }},
  };
  for (auto const& [way, make] : ways) {
    EXPECT_EQ(make(name100).view(), name100) << way;
    EXPECT_EQ(make(name100).size(), 100u) << way;
    try {
      (void)make(name101);
      ADD_FAILURE() << way << ": 101 bytes accepted";
    } catch (Zel::RangeException const& e) {
      EXPECT_STREQ(e.what(), kBoundText) << way;
    }
  }
  // Parsing gives nothing instead of raising.
  EXPECT_EQ(VrfName::fromString(name100), VrfName(name100));
  EXPECT_FALSE(VrfName::fromString(name101).has_value());
  EXPECT_FALSE(VrfName::fromStrep("'" + name101 + "'").has_value());
}

TEST(VrfNameTest, DefaultVrfAndEmptyName) {
  EXPECT_EQ(VrfName::defaultVrf().view(), "default");
  EXPECT_TRUE(VrfName::defaultVrf().isDefault());
  EXPECT_TRUE(VrfName("default").isDefault());
  EXPECT_FALSE(VrfName("red").isDefault());
  EXPECT_FALSE(VrfName().isDefault());
  EXPECT_TRUE(VrfName().empty());
  EXPECT_EQ(VrfName(), VrfName(""));
  EXPECT_NE(VrfName(), VrfName::defaultVrf());
}

TEST(VrfNameTest, TextForms) {
  for (std::string_view name : {"red", "default", "", "it's", "back\\slash", "a, 'af': 1"}) {
    VrfName const v(name);
    EXPECT_EQ(VrfName::fromStrep(valueToStrep(v)), v) << name;
    EXPECT_EQ(fmt::format("{}", v), name);
  }
  EXPECT_EQ(valueToStrep(VrfName("red")), "'red'");
  EXPECT_EQ(valueToStrep(VrfName("it's")), "'it\\'s'");
  EXPECT_FALSE(VrfName::fromStrep("red").has_value()) << "unquoted";
}

}  // namespace
