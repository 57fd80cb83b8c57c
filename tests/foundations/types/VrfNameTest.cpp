// L3::VrfName: the 100-byte bound on every way of building one, quotes in the text form.
#include "foundations/types/VrfName.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

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

TEST(VrfNameTest, QuotesInTheTextFormReadBack) {
  for (std::string_view name : {"it's", "back\\slash", "a, 'af': 1"}) {
    EXPECT_EQ(VrfName::fromStrep(valueToStrep(VrfName(name))), VrfName(name)) << name;
  }
  EXPECT_EQ(valueToStrep(VrfName("it's")), "'it\\'s'");
}

}  // namespace
