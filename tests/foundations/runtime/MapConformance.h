// The iterator contract that every keyed collection of the runtime promises, written once as a
// typed test suite. A test file instantiates it for its map types:
//   INSTANTIATE_TYPED_TEST_SUITE_P(Name, MapConformanceTest, ::testing::Types<...>);
// The maps are keyed by int and hold MapConformance::Tracked (or nothing, for a set); the walk
// order is learnt from the map's orderLess, so the same test runs for hash order and key order.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

namespace MapConformance {

// A value that counts its live instances, so that each test proves the map destroyed all it built.
struct Tracked {
  explicit Tracked(int v = 0) : v(v) { ++live; }
  Tracked(Tracked const& o) : v(o.v) { ++live; }
  Tracked(Tracked&& o) noexcept : v(o.v) { ++live; }
  Tracked& operator=(Tracked const&) = default;
  Tracked& operator=(Tracked&&) = default;
  ~Tracked() { --live; }
  int v;
  static inline int live = 0;
};

template <class M>
constexpr bool kIsSet = std::is_void_v<typename M::ValueType>;

// Every element's value is ten times its key, so a value read through an iterator is checked.
template <class M>
bool add(M& m, int k) {
  if constexpr (kIsSet<M>) {
    return m.insert(k);
  } else {
    return m.tryEmplace(k, k * 10).second;
  }
}

template <class It>
int valueAt(It const& it) {
  if constexpr (std::is_same_v<std::decay_t<decltype(it.currNodeNonStale())>, Tracked>) {
    return it.value().v / 10;
  } else {
    return it.currNodeNonStale();
  }
}

// The address of k's value (or, in a set, of its stored key).
template <class M>
void const* elementAddress(M& m, int k) {
  auto it = m.iteratorAt(k);
  if (it.done() || it.key() != k) return nullptr;
  return &it.currNodeNonStale();
}

// The keys as the map walks them; checks each element's value on the way.
template <class M>
std::vector<int> walk(M const& m) {
  std::vector<int> keys;
  for (auto it = m.iterator(); it; ++it) {
    EXPECT_EQ(valueAt(it), it.key());
    keys.push_back(it.key());
  }
  return keys;
}

template <class M>
std::vector<int> walkFrom(typename M::ConstIterator it) {
  std::vector<int> keys;
  for (; it; ++it) keys.push_back(it.key());
  return keys;
}

// Keys sorted in the map's walk order.
template <class M>
std::vector<int> inOrder(M const& m, std::vector<int> keys) {
  std::sort(keys.begin(), keys.end(), [&m](int a, int b) { return m.orderLess(a, b); });
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
  return keys;
}

template <class M>
std::vector<int> fill(M& m, int n, int stride = 3) {
  std::vector<int> keys;
  for (int i = 0; i < n; ++i) keys.push_back(i * stride);
  std::shuffle(keys.begin(), keys.end(), std::mt19937(11));
  for (int k : keys) add(m, k);
  return inOrder(m, keys);
}

}  // namespace MapConformance

template <class M>
class MapConformanceTest : public ::testing::Test {
 protected:
  void SetUp() override { MapConformance::Tracked::live = 0; }
  void TearDown() override {
    EXPECT_EQ(MapConformance::Tracked::live, 0) << "values leaked or destroyed twice";
  }
};

TYPED_TEST_SUITE_P(MapConformanceTest);

using namespace MapConformance;  // NOLINT(google-build-using-namespace): test-only header

TYPED_TEST_P(MapConformanceTest, LookupInsertEraseKeepAddressesStable) {
  TypeParam m;
  EXPECT_FALSE(m.erase(3));
  fill(m, 100);
  EXPECT_FALSE(add(m, 30)) << "a present key is not inserted again";
  if constexpr (!kIsSet<TypeParam>) {
    EXPECT_EQ(m.tryEmplace(30, 7).first->v, 300) << "tryEmplace of a present key keeps its value";
    std::optional<Tracked> out = m.extract(33);
    ASSERT_TRUE(out.has_value());
    EXPECT_EQ(out->v, 330);
    EXPECT_FALSE(m.extract(33).has_value());
    add(m, 33);
  }

  // Addresses survive the inserts of many other keys (the table grows many times) and erases.
  void const* at0 = elementAddress(m, 0);
  void const* at150 = elementAddress(m, 150);
  ASSERT_NE(at0, nullptr);
  for (int k = 1; k < 20000; k += 3) add(m, k);
  for (int k = 3; k < 300; k += 6) EXPECT_TRUE(m.erase(k));
  EXPECT_EQ(elementAddress(m, 0), at0);
  EXPECT_EQ(elementAddress(m, 150), at150);
  EXPECT_EQ(valueAt(m.iteratorAt(150)), 150);
  EXPECT_EQ(m.size(), 100u + 6667u - 50u);

  m.clear();
  EXPECT_TRUE(m.iterator().done());
  EXPECT_TRUE(add(m, 0)) << "a cleared map is usable again";
}

TYPED_TEST_P(MapConformanceTest, WalkVisitsEachElementOnceInOrder) {
  TypeParam m;
  std::vector<int> expected = fill(m, 500);
  EXPECT_EQ(walk(m), expected);
  TypeParam const& cm = m;
  std::vector<int> viaConstRange;
  for (auto const& e : cm) viaConstRange.push_back(e.currNodeMaybeStale());
  EXPECT_EQ(viaConstRange, expected);

  // iteratorAt stands on k or the first element after it; iteratorAfter strictly after k.
  std::vector<int> tail(expected.begin() + 200, expected.end());
  EXPECT_EQ(walkFrom<TypeParam>(cm.iteratorAt(expected[200])), tail);
  EXPECT_EQ(walkFrom<TypeParam>(cm.iteratorAfter(expected[199])), tail);
  int absent = expected[200] + 1;  // keys are multiples of 3
  std::vector<int> afterAbsent;
  for (int k : expected) {
    if (m.orderLess(absent, k)) afterAbsent.push_back(k);
  }
  EXPECT_EQ(walkFrom<TypeParam>(cm.iteratorAt(absent)), afterAbsent);
  EXPECT_EQ(walkFrom<TypeParam>(cm.iteratorAfter(absent)), afterAbsent);
  EXPECT_TRUE(cm.iteratorAfter(expected.back()).done());

  auto it = m.iteratorAt(expected.back());
  ++it;
  it.advance();
  EXPECT_TRUE(it.done()) << "a done iterator stays done";
}

TYPED_TEST_P(MapConformanceTest, EraseAndReinsertOfTheCurrentElementIsNotVisitedTwice) {
  TypeParam m;
  std::vector<int> expected;
  std::vector<int> seen;
  // Erase the current element and insert it again: it is not visited twice, and is live again.
  // (Other erases under a walk are in RandomMutationDuringWalkMatchesModel.)
  expected = fill(m, 50);
  for (auto it = m.iterator(); it; ++it) {
    seen.push_back(it.key());
    m.erase(it.key());
    add(m, it.key());
    EXPECT_EQ(valueAt(it), it.key());
  }
  EXPECT_EQ(seen, expected);
  EXPECT_EQ(m.size(), 50u);
}

TYPED_TEST_P(MapConformanceTest, EraseAllDuringWalkLeavesItEmpty) {
  TypeParam m;
  std::vector<int> expected = fill(m, 3000);
  std::size_t visited = 0;
  for (auto const& e : m) {
    EXPECT_TRUE(m.erase(e.key()));
    ++visited;
  }
  EXPECT_EQ(visited, expected.size());
  EXPECT_TRUE(m.iterator().done());

  // The same with clear() in the middle of a walk: the walk ends at once.
  fill(m, 100);
  auto it = m.iterator();
  ++it;
  m.clear();
  ++it;
  EXPECT_TRUE(it.done());
}

TYPED_TEST_P(MapConformanceTest, InsertDuringWalkIsVisitedIffAfter) {
  TypeParam m;
  std::vector<int> original = fill(m, 40);
  std::set<int> mustSee(original.begin(), original.end());
  std::set<int> mustNotSee;
  std::set<int> seen;
  std::mt19937 rng(9);
  int inserts = 0;
  for (auto it = m.iterator(); it; ++it) {
    EXPECT_TRUE(seen.insert(it.key()).second) << "visited twice: " << it.key();
    // Up to 40 new keys a step (never multiples of 3), on both sides of the iterator: the table
    // doubles several times during the walk.
    for (int n = 0; n < 40 && inserts < 4000; ++n, ++inserts) {
      int k = int(rng() % 3000) * 3 + 1 + int(rng() % 2);
      if (!add(m, k)) continue;
      (m.orderLess(it.key(), k) ? mustSee : mustNotSee).insert(k);
    }
  }
  EXPECT_EQ(seen, mustSee);
  EXPECT_GT(mustSee.size(), original.size());
  EXPECT_FALSE(mustNotSee.empty());
  EXPECT_EQ(m.size(), mustSee.size() + mustNotSee.size());
}

TYPED_TEST_P(MapConformanceTest, ResumeFromSavedKeyAfterErases) {
  TypeParam m;
  std::vector<int> expected = fill(m, 300);
  auto it = m.iterator();
  for (int i = 0; i < 120; ++i) ++it;
  int bookmark = it.key();
  ASSERT_EQ(bookmark, expected[120]);

  // The bookmarked key, some keys before it and some after it go; new keys come on both sides.
  m.erase(bookmark);
  for (int i = 0; i < 300; i += 7) m.erase(expected[i]);
  for (int k = 1; k < 400; k += 9) add(m, k);

  std::vector<int> want;
  for (int k : walk(m)) {
    if (m.orderLess(bookmark, k)) want.push_back(k);
  }
  EXPECT_EQ(walkFrom<TypeParam>(std::as_const(m).iteratorAfter(bookmark)), want);
  EXPECT_EQ(walkFrom<TypeParam>(std::as_const(m).iteratorAt(bookmark)), want);
  it.advance();
  ASSERT_FALSE(it.done());
  EXPECT_EQ(it.key(), want.front()) << "a live iterator resumes the same way";
}

TYPED_TEST_P(MapConformanceTest, ResumeAcrossGrowthVisitsExactlyTheKeysAfter) {
  TypeParam m;
  std::vector<int> original = fill(m, 50);
  int bookmark = original[20];
  auto held = m.iteratorAt(bookmark);
  for (int k = 1; k < 15000; k += 3) add(m, k);  // 5000 keys: about seven doublings
  EXPECT_EQ(inOrder(m, original), original) << "growth does not reorder";

  std::vector<int> want;
  for (int k : walk(m)) {
    if (m.orderLess(bookmark, k)) want.push_back(k);
  }
  EXPECT_EQ(walkFrom<TypeParam>(std::as_const(m).iteratorAfter(bookmark)), want);
  ++held;
  std::vector<int> viaHeld;
  for (; held; ++held) viaHeld.push_back(held.key());
  EXPECT_EQ(viaHeld, want) << "an iterator held across the growth walks on in order";
}

TYPED_TEST_P(MapConformanceTest, RangeDeletesCutTheOrder) {
  TypeParam m;
  std::vector<int> order = fill(m, 200);
  auto keysWhere = [&](auto pred) {
    std::vector<int> out;
    for (int k : order) {
      if (pred(k)) out.push_back(k);
    }
    return out;
  };
  auto reset = [&] {
    m.clear();
    for (int k : order) add(m, k);
  };
  int a = order[60];
  int b = order[140];
  int absent = order[100] + 1;

  m.eraseFrom(a);
  EXPECT_EQ(walk(m), keysWhere([&](int k) { return m.orderLess(k, a); }));
  reset();
  m.eraseFrom(absent);
  EXPECT_EQ(walk(m), keysWhere([&](int k) { return m.orderLess(k, absent); }));
  reset();
  m.eraseBefore(b);
  EXPECT_EQ(walk(m), keysWhere([&](int k) { return !m.orderLess(k, b); }));
  reset();
  m.eraseRange(a, b);
  EXPECT_EQ(walk(m), keysWhere([&](int k) { return m.orderLess(k, a) || !m.orderLess(k, b); }));

  reset();
  m.eraseRange(b, a);
  m.eraseRange(a, a);
  EXPECT_EQ(walk(m), order) << "an empty range erases nothing";

  // An iterator inside a deleted range moves to the first survivor after it.
  reset();
  auto it = m.iteratorAt(order[70]);
  m.eraseRange(a, b);
  ++it;
  ASSERT_FALSE(it.done());
  EXPECT_EQ(it.key(), order[140]);
}

TYPED_TEST_P(MapConformanceTest, SwapAndUpdateGMoveEverything) {
  TypeParam a;
  TypeParam b;
  for (int k = 0; k < 10; ++k) add(a, k);
  for (int k = 20; k < 26; ++k) add(b, k);
  std::vector<int> aKeys = walk(a);
  std::vector<int> bKeys = walk(b);
  a.swap(b);
  EXPECT_EQ(walk(a), bKeys);
  EXPECT_EQ(walk(b), aKeys);

  // Into an empty map: everything moves, the source is left empty, values keep their addresses.
  TypeParam c;
  void const* at3 = elementAddress(b, 3);
  c.updateG(std::move(b));
  EXPECT_TRUE(b.empty());
  EXPECT_EQ(walk(c), aKeys);
  EXPECT_EQ(elementAddress(c, 3), at3);

  // Into a non-empty map: keys present keep this map's value; the others move over unchanged.
  TypeParam d;
  for (int k = 5; k < 15; ++k) add(d, k);
  if constexpr (!kIsSet<TypeParam>) {
    d.find(5)->v = 5000;
  }
  void const* at12 = elementAddress(d, 12);
  c.updateG(std::move(d));
  EXPECT_TRUE(d.empty());
  std::vector<int> all;
  for (int k = 0; k < 15; ++k) all.push_back(k);
  EXPECT_EQ(walk(c), inOrder(c, all));
  EXPECT_EQ(elementAddress(c, 12), at12);
  if constexpr (!kIsSet<TypeParam>) {
    EXPECT_EQ(c.find(5)->v, 50) << "the receiving map's value wins";
  }
}

TYPED_TEST_P(MapConformanceTest, RandomMutationDuringWalkMatchesModel) {
  TypeParam m;
  auto order = [&m](int a, int b) { return m.orderLess(a, b); };
  std::set<int, decltype(order)> model(order);
  std::mt19937 rng(3);
  for (int i = 0; i < 300; ++i) {
    int k = int(rng() % 3000);
    add(m, k);
    model.insert(k);
  }
  int steps = 0;
  for (auto it = m.iterator(); it;) {
    ASSERT_EQ(it.key(), *model.lower_bound(it.key())) << "step " << steps;
    int pos = it.key();
    for (int op = 0; op < 3; ++op) {
      unsigned r = rng() % 10;
      int k = int(rng() % 3000);
      if (r < 2) {
        k = pos;
      }
      if (r < 6) {
        EXPECT_EQ(m.erase(k), model.erase(k) == 1);
      } else {
        EXPECT_EQ(add(m, k), model.insert(k).second);
      }
    }
    it.advance();
    auto want = model.upper_bound(pos);
    if (want == model.end()) {
      EXPECT_TRUE(it.done()) << "step " << steps;
    } else {
      ASSERT_FALSE(it.done()) << "step " << steps;
      EXPECT_EQ(it.key(), *want) << "step " << steps;
      EXPECT_EQ(valueAt(it), *want);
    }
    ++steps;
  }
  EXPECT_GT(steps, 100);
  EXPECT_EQ(walk(m), std::vector<int>(model.begin(), model.end()));
}

TYPED_TEST_P(MapConformanceTest, ReadingAnErasedElementEndsTheProcess) {
  TypeParam m;
  fill(m, 10);
  auto it = m.iteratorAt(9);
  m.erase(9);
  EXPECT_EQ(it.currNodeMaybeStale(), 9);
  EXPECT_DEATH((void)it.currNodeNonStale(), "currNodeNonStale: element was erased");
}

REGISTER_TYPED_TEST_SUITE_P(MapConformanceTest, LookupInsertEraseKeepAddressesStable,
                            WalkVisitsEachElementOnceInOrder, EraseAndReinsertOfTheCurrentElementIsNotVisitedTwice,
                            EraseAllDuringWalkLeavesItEmpty, InsertDuringWalkIsVisitedIffAfter,
                            ResumeFromSavedKeyAfterErases, ResumeAcrossGrowthVisitsExactlyTheKeysAfter,
                            RangeDeletesCutTheOrder, SwapAndUpdateGMoveEverything,
                            RandomMutationDuringWalkMatchesModel,
                            ReadingAnErasedElementEndsTheProcess);
