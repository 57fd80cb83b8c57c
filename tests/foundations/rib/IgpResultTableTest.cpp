// The IGP result table: equal results share one id and one handle, the entry goes with its last
// handle, and the community index is bounded with its own range text.
#include "foundations/rib/IgpResultTable.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include "foundations/runtime/Exception.h"
#include "support/RuntimeFixture.h"
#include "RibRecorder.h"

namespace BowlineTest {
namespace {

using Routing::Bgp::IgpResult;
using Routing::Bgp::IgpResultTable;

IgpResult result(std::uint32_t tag, std::initializer_list<std::uint32_t> communities) {
  IgpResult r;
  r.tagIs(tag);
  std::uint32_t i = 0;
  for (auto c : communities) r.communityIs(i++, c);
  return r;
}

class IgpResultTableTest : public RuntimeFixture {};

TEST_F(IgpResultTableTest, EqualResultsShareOneIdForAsLongAsOneHandleLives) {
  auto table = IgpResultTable::IgpResultTableIs();
  auto rec = KeyRecorder<IgpResultTable, std::uint32_t>::KeyRecorderIs(table, IgpResultTable::igpResultId);
  auto a = table->dedup(result(5, {100, 200}));
  auto b = table->dedup(result(5, {100, 200}));
  EXPECT_EQ(a, b);
  EXPECT_NE(a->id(), 0u);
  EXPECT_EQ(table->igpResult(a->id()), result(5, {100, 200}));

  auto otherOrder = table->dedup(result(5, {200, 100}));
  auto otherTag = table->dedup(result(6, {100, 200}));
  auto fewer = table->dedup(result(5, {100}));
  EXPECT_NE(otherOrder->id(), a->id());
  EXPECT_NE(otherTag->id(), a->id());
  EXPECT_NE(fewer->id(), a->id());
  EXPECT_EQ(table->igpResultSize(), 4u);

  std::uint32_t const id = a->id();
  a = nullptr;
  EXPECT_TRUE(table->igpResultHas(id));
  b = nullptr;
  EXPECT_FALSE(table->igpResultHas(id));
  EXPECT_EQ(rec->keys, (std::vector<std::uint32_t>{id, otherOrder->id(), otherTag->id(), fewer->id(), id}));
}

TEST_F(IgpResultTableTest, CommunityIndexStopsAtThree) {
  IgpResult r;
  r.communityIs(3, 9);
  EXPECT_EQ(r.communityCount(), 4u);
  EXPECT_EQ(r.community(0), 0u);
  EXPECT_EQ(fmt::format("{}", r), "IgpResult(tag 0 communities [0, 0, 0, 9])");
  try {
    r.communityIs(4, 1);
    FAIL() << "index 4 must raise";
  } catch (Zel::RangeException const& e) {
    EXPECT_STREQ(e.what(),
                 "Routing::IgpRedistribute::CommunityIndex::value < Routing::IgpRedistribute::CommunityIndex::min or > "
                 "Routing::IgpRedistribute::CommunityIndex::max not allowed");
  }
  EXPECT_EQ(r.communityCount(), 4u);
}

}  // namespace
}  // namespace BowlineTest
