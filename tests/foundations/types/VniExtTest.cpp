// Vxlan::VniExtOrNone and Vxlan::VniExt: "none", the range check of a VNI and its exact text, and
// the text forms.
#include "foundations/types/VniExt.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include "foundations/runtime/Exception.h"

namespace {

using Vxlan::VniExt;
using Vxlan::VniExtOrNone;

constexpr char kRangeText[] = "Vxlan::VniExt::value < Vxlan::VniExt::min or > Vxlan::VniExt::max not allowed";

void expectOutOfRange(std::uint32_t value) {
  try {
    (void)VniExt(value);
    ADD_FAILURE() << value << " accepted";
  } catch (Zel::RangeException const& e) {
    EXPECT_STREQ(e.what(), kRangeText) << value;
  }
  try {
    (void)VniExtOrNone(value).vniExt();
    ADD_FAILURE() << value << " accepted through VniExtOrNone";
  } catch (Zel::RangeException const& e) {
    EXPECT_STREQ(e.what(), kRangeText) << value;
  }
}

TEST(VniExtTest, NoneIsTheDefaultAndConvertsToFalse) {
  EXPECT_FALSE(VniExtOrNone());
  EXPECT_TRUE(VniExtOrNone().isNone());
  EXPECT_EQ(VniExtOrNone().value(), 0xffffffffu);
  EXPECT_EQ(VniExtOrNone(0xffffffff), VniExtOrNone::none());
  EXPECT_TRUE(VniExtOrNone(10));
  EXPECT_TRUE(VniExtOrNone(0)) << "zero is a value, not none";
  EXPECT_TRUE(VniExtOrNone(VniExt(5000)));
  EXPECT_EQ(VniExtOrNone(VniExt(5000)).value(), 5000u);
}

TEST(VniExtTest, RangeCheckRaisesWithItsText) {
  EXPECT_EQ(VniExt(1).value(), 1u);
  EXPECT_EQ(VniExt(0xffffff).value(), 0xffffffu);
  EXPECT_EQ(VniExtOrNone(0xffffff).vniExt(), VniExt(0xffffff));
  for (std::uint32_t bad : {0u, 0x1000000u, 0xfffffffeu, 0xffffffffu}) expectOutOfRange(bad);
  // Parsing never raises.
  for (std::string_view bad : {"0", "16777216", "4294967295", "none", "", "-1"}) {
    EXPECT_FALSE(VniExt::fromString(bad).has_value()) << bad;
  }
}

TEST(VniExtTest, TextForms) {
  for (std::uint32_t v : {0u, 1u, 10100u, 0xffffffu, 0x1000000u, 0xffffffffu}) {
    VniExtOrNone const vni(v);
    EXPECT_EQ(VniExtOrNone::fromString(vni.toString()), vni) << v;
    EXPECT_EQ(VniExtOrNone::fromStrep(valueToStrep(vni)), vni) << v;
  }
  EXPECT_EQ(fmt::format("{} {}", VniExtOrNone(10100), VniExtOrNone()), "10100 none");
  EXPECT_EQ(valueToStrep(VniExtOrNone()), "4294967295");
  EXPECT_EQ(VniExt::fromStrep(valueToStrep(VniExt(77))), VniExt(77));
  EXPECT_EQ(fmt::format("{}", VniExt(77)), "77");
  for (std::string_view bad : {"", "x", "4294967296", "12 "}) {
    EXPECT_FALSE(VniExtOrNone::fromString(bad).has_value()) << bad;
  }
}

}  // namespace
