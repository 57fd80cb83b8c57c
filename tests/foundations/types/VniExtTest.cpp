// Vxlan::VniExtOrNone and Vxlan::VniExt: the range check of a VNI and its exact text.
#include "foundations/types/VniExt.h"

#include <gtest/gtest.h>

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

TEST(VniExtTest, RangeCheckRaisesWithItsText) {
  EXPECT_TRUE(VniExtOrNone(0)) << "zero is a value, not none";
  EXPECT_EQ(VniExtOrNone(0xffffff).vniExt(), VniExt(0xffffff));
  for (std::uint32_t bad : {0u, 0x1000000u, 0xfffffffeu, 0xffffffffu}) expectOutOfRange(bad);
  // Parsing never raises.
  for (std::string_view bad : {"0", "16777216", "4294967295", "none", "", "-1"}) {
    EXPECT_FALSE(VniExt::fromString(bad).has_value()) << bad;
  }
}

}  // namespace
