// Ondex::MplsLabel: the bounds of a valid label, "no label" as one value, text forms.
#include "foundations/types/MplsLabel.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

namespace {

using Ondex::MplsLabel;

TEST(MplsLabelTest, ValidityBounds) {
  EXPECT_FALSE(MplsLabel().isValid()) << "the default is no label";
  EXPECT_EQ(MplsLabel().value(), 0x100000u);
  EXPECT_TRUE(MplsLabel(0).isValid());
  EXPECT_TRUE(MplsLabel(16).isValid());
  EXPECT_TRUE(MplsLabel(0xfffff).isValid()) << "the largest label";
  EXPECT_EQ(MplsLabel(0xfffff).value(), 0xfffffu);
  EXPECT_FALSE(MplsLabel(0x100000).isValid());
  // Any value past the largest label is the one "no label".
  for (std::uint32_t v : {0x100000u, 0x100001u, 0x1fffffu, 0xffffffffu}) {
    EXPECT_FALSE(MplsLabel(v).isValid()) << v;
    EXPECT_EQ(MplsLabel(v), MplsLabel::none()) << v;
    EXPECT_EQ(MplsLabel(v).hash(1), MplsLabel::none().hash(1)) << v;
  }
}

TEST(MplsLabelTest, TextForms) {
  for (std::uint32_t v : {0u, 3u, 1000u, 0xfffffu, 0x100000u}) {
    MplsLabel const l(v);
    EXPECT_EQ(MplsLabel::fromString(l.toString()), l) << v;
    EXPECT_EQ(MplsLabel::fromStrep(valueToStrep(l)), l) << v;
  }
  EXPECT_EQ(MplsLabel(1000).toString(), "1000");
  EXPECT_EQ(fmt::format("{}", MplsLabel()), "none");
  EXPECT_EQ(valueToStrep(MplsLabel()), "1048576");
  EXPECT_EQ(MplsLabel::fromString("4294967295"), MplsLabel::none());
  for (std::string_view bad : {"", "-1", "4294967296", "1e3", "0x10", " 5", "none "}) {
    EXPECT_FALSE(MplsLabel::fromString(bad).has_value()) << bad;
  }
  EXPECT_FALSE(MplsLabel::fromStrep("none").has_value()) << "the Value form is numeric";
}

}  // namespace
