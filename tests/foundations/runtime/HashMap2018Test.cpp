#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "foundations/runtime/HashMap2018.h"
#include "foundations/runtime/MapConformance.h"
#include "foundations/runtime/String.h"

namespace {

using MapConformance::Tracked;

// Every key hashes alike: the map is one sorted chain, ordered by Less alone.
struct ConstantHash {
  std::uint32_t operator()(int, std::uint32_t) const { return 0x5a5a5a5au; }
};
// Runs of eight keys share a hash, so ties of the hash meet in every bucket.
struct CoarseHash {
  std::uint32_t operator()(int k, std::uint32_t seed) const { return Zel::hashOf(k / 8, seed); }
};

using Map = Zel::HashMap2018<int, Tracked>;
using Set = Zel::HashMap2018<int>;

using HashMaps = ::testing::Types<Map, Set, Zel::HashMap2018<int, Tracked, CoarseHash>,
                                  Zel::HashMap2018<int, void, ConstantHash>>;
INSTANTIATE_TYPED_TEST_SUITE_P(HashMap2018, MapConformanceTest, HashMaps);

template <class M>
std::vector<typename M::KeyType> keysOf(M const& m) {
  std::vector<typename M::KeyType> keys;
  for (auto const& e : m) keys.push_back(e.key());
  return keys;
}

TEST(HashMap2018, OrderDependsOnAttributeConstantOnly) {
  Set a(1);
  Set b(2);
  Set a2(1);
  for (int k = 0; k < 1000; ++k) {
    a.insert(k);
    b.insert(k);
    a2.insert(999 - k);
  }
  EXPECT_NE(keysOf(a), keysOf(b)) << "two attributes keyed alike walk in unrelated orders";
  EXPECT_EQ(keysOf(a), keysOf(a2)) << "the same constant gives the same order, whatever the insertion order";
}

TEST(HashMap2018, OrderDoesNotDependOnTableSizeOrHistory) {
  Set small;
  Set big;
  for (int k = 0; k < 100; ++k) small.insert(k);
  for (int k = 100000; k < 140000; ++k) big.insert(k);
  for (int k = 99; k >= 0; --k) big.insert(k);
  EXPECT_GT(big.bucketCount(), 64 * small.bucketCount());
  auto const inBig = keysOf(big);
  std::vector<int> smallKeysInBig;
  std::copy_if(inBig.begin(), inBig.end(), std::back_inserter(smallKeysInBig), [](int k) { return k < 100; });
  EXPECT_EQ(keysOf(small), smallKeysInBig);
  for (int k = 100000; k < 140000; ++k) big.erase(k);
  EXPECT_LE(big.bucketCount(), 256u) << "a table less than 1/8 full shrinks";
  EXPECT_EQ(keysOf(small), keysOf(big));
}

TEST(HashMap2018, CollidingHashesOrderByLess) {
  Zel::HashMap2018<int, int, ConstantHash> up;
  Zel::HashMap2018<int, int, ConstantHash, std::greater<int>> down;
  for (int k : {5, 1, 9, 3, 7}) {
    up.tryEmplace(k, k);
    down.tryEmplace(k, k);
  }
  EXPECT_EQ(keysOf(up), (std::vector<int>{1, 3, 5, 7, 9}));
  EXPECT_EQ(keysOf(down), (std::vector<int>{9, 7, 5, 3, 1}));
}

TEST(HashMap2018, MemoryIsNodesAndBucketsOnly) {
  Map m;
  EXPECT_EQ(m.bytesAllocated(), 0u) << "an empty map allocates nothing";
  EXPECT_TRUE(m.iteratorAt(1).done());
  m.eraseFrom(1);

  for (int k = 0; k < 1000; ++k) m.tryEmplace(k, k);
  EXPECT_EQ(m.bucketCount(), 1024u) << "the table doubles at a load factor of 1";
  std::size_t bytes = m.bytesAllocated();
  EXPECT_GE(bytes, 1000 * (sizeof(void*) + sizeof(std::uint32_t) + sizeof(int) + sizeof(Tracked)) + 1024 * 8);
  EXPECT_LE(bytes, 1000 * 32 + 1024 * 8);
  m.clear();
  EXPECT_EQ(m.bytesAllocated(), 0u);
}

std::vector<int> sortedKeys(Map const& m) {
  auto keys = keysOf(m);
  std::sort(keys.begin(), keys.end());
  return keys;
}

// A map of one element keeps its one bucket in the list head: moves and swaps must carry that
// bucket over to the map that now holds the element, not leave it pointing into the other map.
TEST(HashMap2018, OneElementMapsMoveAndSwapTheirBucket) {
  Map one;
  one.tryEmplace(1, 10);
  EXPECT_EQ(one.bytesAllocated(), Zel::HashMapImpl::slabBytes(sizeof(Zel::HashMapImpl::Node<int, Tracked>)))
      << "no bucket array for one element";
  Map moved(std::move(one));
  Map other;
  for (int k = 2; k < 5; ++k) other.tryEmplace(k, k);
  moved.swap(other);
  EXPECT_EQ(sortedKeys(other), (std::vector<int>{1}));
  other.tryEmplace(7, 70);  // grows from the head's bucket to an array of two
  EXPECT_EQ(sortedKeys(other), (std::vector<int>{1, 7}));
  EXPECT_TRUE(other.erase(1));
  EXPECT_TRUE(moved.erase(3));
  other.swap(moved);
  EXPECT_EQ(sortedKeys(moved), (std::vector<int>{7}));
  EXPECT_EQ(sortedKeys(other), (std::vector<int>{2, 4}));
  Map copy(moved);
  moved.clear();
  ASSERT_NE(copy.find(7), nullptr);
  EXPECT_EQ(copy.find(7)->v, 70);
  copy.clear();
  other.clear();
  EXPECT_EQ(Tracked::live, 0);
}

TEST(HashMap2018, CopyIsDeepAndMoveLeavesSourceEmpty) {
  // Refcounted keys: the copy, the iterators' key copies and the nodes all share text blocks.
  Zel::HashMap2018<Zel::String, std::string> m(7);
  for (int k = 0; k < 200; ++k) m.tryEmplace(std::to_string(k), "v" + std::to_string(k));
  auto copy = m;
  EXPECT_EQ(keysOf(copy), keysOf(m));
  *m.find("5") = "changed";
  m.erase("6");
  EXPECT_EQ(*copy.find("5"), "v5");
  EXPECT_TRUE(copy.contains("6"));

  std::string* at9 = m.find("9");
  auto moved = std::move(m);
  EXPECT_EQ(moved.find("9"), at9);
  EXPECT_TRUE(m.empty());  // NOLINT(bugprone-use-after-move): a moved-from map is empty
  copy = moved;
  EXPECT_EQ(*copy.find("5"), "changed");
  EXPECT_EQ(copy.size(), 199u);
}

TEST(HashMap2018, MoveOnlyValuesAndMergeAcrossSeeds) {
  Zel::HashMap2018<int, std::unique_ptr<int>> a(1);
  Zel::HashMap2018<int, std::unique_ptr<int>> b(2);
  for (int k = 0; k < 50; ++k) b.tryEmplace(k, std::make_unique<int>(k));
  a.tryEmplace(3, std::make_unique<int>(300));
  int* deep = b.find(20)->get();

  // Different seeds: the nodes are re-hashed into a's order, no value is copied.
  a.updateG(std::move(b));
  EXPECT_EQ(**a.find(3), 300);
  EXPECT_EQ(a.find(20)->get(), deep);
  std::vector<int> walked = keysOf(a);
  EXPECT_TRUE(std::is_sorted(walked.begin(), walked.end(), [&a](int x, int y) { return a.orderLess(x, y); }));
  for (int k : walked) EXPECT_TRUE(a.iteratorAt(k).key() == k && a.contains(k));
}

}  // namespace
