// Zel::RbTreeMap owns its elements (a red-black tree, std::map, with nodes from the Plinth slab),
// walked in ascending key order by Less; it writes nothing outside itself. It is owned by the
// record or state machine that declares the attribute. Used where the lowest key must come first.
// A duplicate insert() is a programming error and ends the process (assertDupKey).
//
// Iterator contract (Iterator, ConstIterator, and the range-for iterator built on them): the same
// as Zel::HashMap2018's, with ascending key order in place of hash order:
// - An iterator stands on one element or is done, and keeps a copy of its key, so
//   currNodeMaybeStale() / key() read the key even after the element was erased.
// - While an iterator is live, any element (the one it stands on included) may be erased and
//   elements may be inserted. advance() then moves to the first element live at that moment whose
//   key is strictly greater than the iterator's key: no element is visited twice, an element erased
//   before the walk reaches it is not visited, an element inserted during the walk is visited iff
//   its key is greater than the iterator's position when the iterator next moves.
// - currNodeNonStale() / value() require the element to be live (an element of equal key inserted
//   again counts as live); otherwise the process ends on an assertion.
// - first() / iterator() start at the lowest key, iteratorAt(k) at the first key not below k,
//   iteratorAfter(k) at the first key above k; k need not be present. Resuming from a saved key
//   visits exactly the keys above it, across any erases (of that key too).
// - After clear(), a range delete, swap() or updateG(), an iterator goes on from its key in
//   whatever the map then holds. An iterator must not outlive its map.
// - Cost: a step with no erase since the iterator's last step is one tree step; after an erase the
//   iterator finds its place again by key, one tree descent. Iteration never allocates.
// Value addresses are stable until that element is erased.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <type_traits>
#include <utility>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/HashMap2018.h"  // SafeRangeIterator, shared by the runtime's maps
#include "foundations/runtime/Slab.h"

namespace Zel {

namespace RbTreeMapImpl {

// Tree nodes come from the Plinth slab: no malloc header per node, freed blocks reused by size.
template <class T>
struct SlabAllocator {
  using value_type = T;
  static_assert(alignof(T) <= 16, "the slab hands out 16-byte aligned blocks");
  SlabAllocator() = default;
  template <class U>
  SlabAllocator(SlabAllocator<U> const&) noexcept {}  // NOLINT(google-explicit-constructor)
  T* allocate(std::size_t n) { return static_cast<T*>(Plinth::slabAlloc(n * sizeof(T))); }
  void deallocate(T* p, std::size_t n) noexcept { Plinth::slabFree(p, n * sizeof(T)); }
  friend bool operator==(SlabAllocator const&, SlabAllocator const&) { return true; }
};

}  // namespace RbTreeMapImpl

template <class Key, class Value, class Less = std::less<Key>>
class RbTreeMap {
  using Store = std::map<Key, Value, Less, RbTreeMapImpl::SlabAllocator<std::pair<Key const, Value>>>;

  template <bool kConst>
  class IteratorT;

 public:
  using KeyType = Key;
  using ValueType = Value;
  using Iterator = IteratorT<false>;
  using ConstIterator = IteratorT<true>;

  RbTreeMap() = default;
  RbTreeMap(RbTreeMap const&) = default;
  RbTreeMap& operator=(RbTreeMap const& other) {
    if (this != &other) {
      store_ = other.store_;
      ++epoch_;
    }
    return *this;
  }
  RbTreeMap(RbTreeMap&& other) noexcept : store_(std::move(other.store_)) { ++other.epoch_; }
  RbTreeMap& operator=(RbTreeMap&& other) noexcept {
    if (this != &other) {
      store_ = std::move(other.store_);
      ++epoch_;
      ++other.epoch_;
    }
    return *this;
  }

  [[nodiscard]] std::size_t size() const { return store_.size(); }
  [[nodiscard]] bool empty() const { return store_.empty(); }
  [[nodiscard]] bool contains(Key const& k) const { return store_.find(k) != store_.end(); }

  [[nodiscard]] Value* find(Key const& k) {
    auto it = store_.find(k);
    return it == store_.end() ? nullptr : &it->second;
  }
  [[nodiscard]] Value const* find(Key const& k) const {
    auto it = store_.find(k);
    return it == store_.end() ? nullptr : &it->second;
  }

  // Inserts a key that must not be present yet.
  template <class... A>
  Value& insert(Key const& k, A&&... valueArgs) {
    auto [it, inserted] = store_.try_emplace(k, std::forward<A>(valueArgs)...);
    assertDupKey(inserted);
    return it->second;
  }
  // Inserts k with a value built from valueArgs if k is absent; else leaves the map as it is.
  template <class... A>
  std::pair<Value*, bool> tryEmplace(Key const& k, A&&... valueArgs) {
    auto [it, inserted] = store_.try_emplace(k, std::forward<A>(valueArgs)...);
    return {&it->second, inserted};
  }

  // True if k was present.
  bool erase(Key const& k) {
    if (store_.erase(k) == 0) return false;
    ++epoch_;
    return true;
  }
  std::optional<Value> extract(Key const& k) {
    auto it = store_.find(k);
    if (it == store_.end()) return std::nullopt;
    std::optional<Value> out(std::move(it->second));
    store_.erase(it);
    ++epoch_;
    return out;
  }
  void clear() {
    store_.clear();
    ++epoch_;
  }

  // Range deletes: k and all above it; all strictly below k; [first, last).
  void eraseFrom(Key const& k) { eraseSpan(store_.lower_bound(k), store_.end()); }
  void eraseBefore(Key const& k) { eraseSpan(store_.begin(), store_.lower_bound(k)); }
  void eraseRange(Key const& first, Key const& last) {
    if (!less_(first, last)) return;
    eraseSpan(store_.lower_bound(first), store_.lower_bound(last));
  }

  // True if a walks before b: plain Less, offered under the same name as the hash map's.
  [[nodiscard]] bool orderLess(Key const& a, Key const& b) const { return less_(a, b); }

  // The lowest element, or a done iterator.
  [[nodiscard]] Iterator first() { return iterator(); }
  [[nodiscard]] ConstIterator first() const { return iterator(); }
  [[nodiscard]] Iterator iterator() { return Iterator(this, store_.begin()); }
  [[nodiscard]] ConstIterator iterator() const { return ConstIterator(this, store_.begin()); }
  [[nodiscard]] Iterator iteratorAt(Key const& k) { return Iterator(this, store_.lower_bound(k)); }
  [[nodiscard]] ConstIterator iteratorAt(Key const& k) const {
    return ConstIterator(this, store_.lower_bound(k));
  }
  [[nodiscard]] Iterator iteratorAfter(Key const& k) { return Iterator(this, store_.upper_bound(k)); }
  [[nodiscard]] ConstIterator iteratorAfter(Key const& k) const {
    return ConstIterator(this, store_.upper_bound(k));
  }

  [[nodiscard]] SafeRangeIterator<Iterator> begin() { return SafeRangeIterator<Iterator>(iterator()); }
  [[nodiscard]] SafeRangeIterator<ConstIterator> begin() const {
    return SafeRangeIterator<ConstIterator>(iterator());
  }
  [[nodiscard]] SafeRangeEnd end() const { return {}; }

  void swap(RbTreeMap& other) noexcept {
    store_.swap(other.store_);
    std::uint64_t epoch = (epoch_ > other.epoch_ ? epoch_ : other.epoch_) + 1;
    epoch_ = epoch;
    other.epoch_ = epoch;
  }
  // Merges other into this map: keys already here keep this map's value; other is left empty.
  void updateG(RbTreeMap&& other) {
    if (&other == this || other.empty()) return;
    if (empty()) {
      swap(other);
    } else {
      store_.merge(other.store_);
      other.store_.clear();
      ++other.epoch_;
    }
  }

  // Ends the process if an insert found its key already present.
  static void assertDupKey(bool inserted) {
    QUILL_ASSERT(inserted, "Zel::RbTreeMap::assertDupKey: duplicate key");
  }

 private:
  template <bool kConst>
  class IteratorT {
    using MapPtr = std::conditional_t<kConst, RbTreeMap const*, RbTreeMap*>;
    using Pos = std::conditional_t<kConst, typename Store::const_iterator, typename Store::iterator>;
    using Ref = std::conditional_t<kConst, Value const&, Value&>;

   public:
    IteratorT() = default;
    // An Iterator converts to a ConstIterator.
    template <bool kOther, class = std::enable_if_t<kConst && !kOther>>
    IteratorT(IteratorT<kOther> const& o)  // NOLINT(google-explicit-constructor)
        : map_(o.map_), pos_(o.pos_), done_(o.done_), epoch_(o.epoch_), key_(o.key_) {}

    [[nodiscard]] bool done() const { return done_; }
    explicit operator bool() const { return !done_; }
    [[nodiscard]] Key const& currNodeMaybeStale() const { return *key_; }
    [[nodiscard]] Key const& key() const { return *key_; }
    [[nodiscard]] Ref currNodeNonStale() const { return livePos()->second; }
    [[nodiscard]] Ref value() const { return livePos()->second; }

    void advance() {
      if (done_) return;
      if (map_->epoch_ == epoch_) {
        standOn(std::next(pos_));
      } else {
        standOn(storeOf(map_).upper_bound(*key_));
      }
    }
    IteratorT& operator++() {
      advance();
      return *this;
    }

   private:
    friend class RbTreeMap;
    template <bool>
    friend class IteratorT;

    IteratorT(MapPtr map, Pos pos) : map_(map) { standOn(pos); }

    static auto& storeOf(MapPtr map) { return map->store_; }
    void standOn(Pos pos) {
      pos_ = pos;
      epoch_ = map_->epoch_;
      done_ = pos == storeOf(map_).end();
      if (!done_) key_ = pos->first;
    }
    Pos livePos() const {
      if (map_->epoch_ != epoch_) {
        Pos p = storeOf(map_).find(*key_);
        QUILL_ASSERT(p != storeOf(map_).end(),
                     "Zel::RbTreeMap::Iterator::currNodeNonStale: element was erased");
        pos_ = p;
        epoch_ = map_->epoch_;
      }
      return pos_;
    }

    MapPtr map_ = nullptr;
    mutable Pos pos_{};  // valid while epoch_ matches the map's
    bool done_ = true;
    mutable std::uint64_t epoch_ = 0;
    std::optional<Key> key_;
  };

  void eraseSpan(typename Store::iterator from, typename Store::iterator to) {
    if (from == to) return;
    store_.erase(from, to);
    ++epoch_;
  }

  Store store_;
  std::uint64_t epoch_ = 0;  // bumped whenever an element leaves the map; iterators compare it
  [[no_unique_address]] Less less_;
};

}  // namespace Zel
