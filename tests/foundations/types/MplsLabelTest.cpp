// Ondex::MplsLabel: the bounds of a valid label, "no label" as one value, the text it reads.
#include "foundations/types/MplsLabel.h"

#include <gtest/gtest.h>

namespace {

using Ondex::MplsLabel;

TEST(MplsLabelTest, AnyValuePastTheLargestLabelIsTheOneNoLabel) {
  EXPECT_TRUE(MplsLabel(0).isValid());
  EXPECT_TRUE(MplsLabel(0xfffff).isValid()) << "the largest label";
  for (std::uint32_t v : {0x100000u, 0x100001u, 0x1fffffu, 0xffffffffu}) {
    EXPECT_FALSE(MplsLabel(v).isValid()) << v;
    EXPECT_EQ(MplsLabel(v), MplsLabel::none()) << v;
    EXPECT_EQ(MplsLabel(v).hash(1), MplsLabel::none().hash(1)) << v;
  }
  EXPECT_EQ(MplsLabel::fromString("4294967295"), MplsLabel::none());
  for (std::string_view bad : {"", "-1", "4294967296", "1e3", "0x10", " 5", "none "}) {
    EXPECT_FALSE(MplsLabel::fromString(bad).has_value()) << bad;
  }
}

}  // namespace
