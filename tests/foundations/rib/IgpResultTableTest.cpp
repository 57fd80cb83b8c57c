// The IGP result table: equal results share one id and one handle, the entry goes with its last
// handle.
#include "foundations/rib/IgpResultTable.h"

#include <gtest/gtest.h>

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

  auto otherOrder = table->dedup(result(5, {200, 100}));
  auto otherTag = table->dedup(result(6, {100, 200}));
  auto fewer = table->dedup(result(5, {100}));
  EXPECT_NE(otherOrder->id(), a->id());
  EXPECT_NE(otherTag->id(), a->id());
  EXPECT_NE(fewer->id(), a->id());

  std::uint32_t const id = a->id();
  a = nullptr;
  EXPECT_TRUE(table->igpResultHas(id));
  b = nullptr;
  EXPECT_FALSE(table->igpResultHas(id));
  EXPECT_EQ(rec->keys, (std::vector<std::uint32_t>{id, otherOrder->id(), otherTag->id(), fewer->id(), id}));
}

}  // namespace
}  // namespace BowlineTest
