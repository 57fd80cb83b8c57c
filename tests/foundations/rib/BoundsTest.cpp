// The bounded arrays of the RIB records, at their bound and one past it, with the texts the range
// failures carry: the 600 vias of a via set, the 3 labels and 1024 entries of a via's content.
#include <gtest/gtest.h>

#include <string>

#include "foundations/rib/ViaContent.h"
#include "foundations/rib/ViaSet.h"
#include "foundations/runtime/Exception.h"

namespace {

using Routing::Rib::ViaContent;
using Routing::Rib::ViaKey;
using Routing::Rib::ViaSetKey;
using Routing::Rib::Skein::ViaSet;

// The text of the range failure that `f` raises, or "" when it raises none.
template <class F>
std::string rangeFailure(F f) {
  try {
    f();
  } catch (Zel::RangeException const& e) {
    return e.what();
  }
  return "";
}

TEST(BoundsTest, ViaSetHoldsSixHundredViasAndNotOneMore) {
  ViaSet s(ViaSetKey(1, 0, 2, 0));
  for (std::uint32_t i = 0; i < 600; ++i) s.viaKeyIs(i, ViaKey(i + 1, 0, 2, 1));
  std::string const text =
      "Routing::Rib::Skein::ViaIndex::value < Routing::Rib::Skein::ViaIndex::min or > "
      "Routing::Rib::Skein::ViaIndex::max not allowed";
  EXPECT_EQ(rangeFailure([&] { s.viaKeyIs(600, ViaKey(601, 0, 2, 1)); }), text);
  EXPECT_EQ(rangeFailure([&] { s.viaKeyIs(std::uint32_t(-1), ViaKey()); }), text);
  EXPECT_EQ(s.viaCount(), 600u) << "a failed write leaves the set as it was";

  s.viaKeyDelAll();
  EXPECT_EQ(s.viaCount(), 0u);
  s.viaKeyIs(3, ViaKey(9, 0, 2, 1));
  EXPECT_EQ(s.viaCount(), 4u) << "writing at an index raises the count to cover it";
  EXPECT_EQ(s.viaKey(1), ViaKey()) << "the gap holds empty keys";
}

TEST(BoundsTest, ViaContentLabelStackAndEntryListStopAtTheirBounds) {
  ViaContent c;
  for (std::uint32_t i = 0; i < 3; ++i) c.labelStackIs(i, 100 + i);
  EXPECT_NE(rangeFailure([&] { c.labelStackIs(3, 1); }), "") << "a fourth label is a range failure";
  for (std::uint32_t i = 0; i < 1024; ++i) c.entryListIs(i, i);
  EXPECT_NE(rangeFailure([&] { c.entryListIs(1024, 1); }), "");
  EXPECT_EQ(c.entryList().size(), 1024u);

  ViaContent copy = c;
  copy.entryListIs(1023, 0);
  EXPECT_NE(copy, c) << "a copy carries both arrays whole";
}

}  // namespace
