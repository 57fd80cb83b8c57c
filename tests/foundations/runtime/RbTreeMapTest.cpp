#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundations/runtime/MapConformance.h"
#include "foundations/runtime/RbTreeMap.h"

namespace {

using MapConformance::Tracked;

using TreeMaps = ::testing::Types<Zel::RbTreeMap<int, Tracked>>;
INSTANTIATE_TYPED_TEST_SUITE_P(RbTreeMap, MapConformanceTest, TreeMaps);

TEST(RbTreeMap, WalksAscendingAndFirstIsTheLowest) {
  Zel::RbTreeMap<int, std::string> m;
  EXPECT_TRUE(m.first().done());
  for (int k : {40, 10, 30, 20, 50}) m.insert(k, std::to_string(k));
  m.erase(10);
  EXPECT_EQ(m.first().key(), 20) << "the lowest live key comes first";

  Zel::RbTreeMap<int, int, std::greater<int>> down;
  for (int k : {1, 3, 2}) down.insert(k, k);
  EXPECT_EQ(down.first().key(), 3) << "Less decides which key is lowest";
}

TEST(RbTreeMap, DuplicateInsertEndsTheProcess) {
  Zel::RbTreeMap<int, int> m;
  m.insert(1, 1);
  EXPECT_DEATH(m.insert(1, 2), "Zel::RbTreeMap::assertDupKey: duplicate key");
}

TEST(RbTreeMap, MoveOnlyValuesKeepTheirAddresses) {
  Zel::RbTreeMap<int, std::unique_ptr<int>> m;
  m.insert(5, std::make_unique<int>(5));
  std::unique_ptr<int>* at5 = m.find(5);
  for (int k = 100; k < 1100; ++k) m.insert(k, std::make_unique<int>(k));
  EXPECT_EQ(m.find(5), at5);
}

}  // namespace
