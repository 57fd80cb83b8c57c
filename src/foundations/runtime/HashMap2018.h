// Zel::HashMap2018 owns its elements (nodes from the Plinth slab) and a bucket array; it writes
// nothing outside itself. It is owned by the record or state machine that declares the attribute,
// or by a backlog run's local snapshot. With Value = void it is a set.
//
// Order. Elements are walked by (h, key): h is the 32-bit hash of the key under the seed
// Zel::HashHelper::hashSeed32() ^ attributeConstant, and ties of h are broken by Less on the key.
// A key's bucket is the top bits of h and every chain is kept sorted, so the bucket array walked in
// index order is this order, whatever the table size: the order of a set of keys never changes
// with growth, with insertion order or with other keys coming and going. orderLess(a, b) tells it.
// Two maps of different attribute constants (or processes of different seeds) walk alike keys in
// unrelated orders.
//
// Iterator contract (Iterator, ConstIterator, and the range-for iterator built on them):
// - An iterator stands on one element or is done. It keeps a copy of that element's key and hash,
//   so currNodeMaybeStale() / key() read the key even after the element was erased.
// - While an iterator is live, any element (the one it stands on included) may be erased, elements
//   may be inserted and the table may grow. advance() then moves to the first element live at that
//   moment that stands strictly after the iterator's key in the order. Hence: no element is visited
//   twice; an element erased before the walk reaches it is not visited; an element inserted during
//   the walk is visited iff it stands after the iterator's position when the iterator next moves.
// - currNodeNonStale() / value() require the element at the iterator to be live (an element of
//   equal key inserted again counts as live); otherwise the process ends on an assertion.
// - iteratorAt(k) starts at the first element not before k, iteratorAfter(k) at the first element
//   strictly after k; k need not be present. Resuming from a saved key therefore visits exactly the
//   elements after it, across any erases (of that key too) and any growth since it was saved.
// - After clear(), a range delete, swap(), updateG() or a move of the map, an iterator over it goes
//   on from its key in whatever the map then holds. An iterator must not outlive its map.
// - Cost: a step with no erase since the iterator's last step is a plain node walk; after an erase
//   the iterator finds its place again by (hash, key), one bucket walk. Iteration never allocates.
// Value addresses are stable until that element is erased: nodes never move, not even on growth,
// swap or updateG.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Hash.h"
#include "foundations/runtime/Slab.h"

namespace Zel {

namespace HashMapImpl {

// One element: the chain link and the hash first, so that a bucket walk that misses on the hash
// touches only the first bytes of a node.
template <class Key, class Value>
struct Node {
  template <class... A>
  Node(std::uint32_t h, Key const& k, A&&... valueArgs)
      : hash(h), key(k), value(std::forward<A>(valueArgs)...) {}
  Node* next = nullptr;
  std::uint32_t hash;
  Key key;
  Value value;
};

template <class Key>
struct Node<Key, void> {
  Node(std::uint32_t h, Key const& k) : hash(h), key(k) {}
  Node* next = nullptr;
  std::uint32_t hash;
  Key key;
};

// What an iterator reads: the value, or for a set the key.
template <class Key, class Value, bool kConst>
struct ElementRef {
  using type = std::conditional_t<kConst, Value const&, Value&>;
};
template <class Key, bool kConst>
struct ElementRef<Key, void, kConst> {
  using type = Key const&;
};

// Bytes the Plinth slab really hands out for a request: 16-byte granules up to 512 bytes, larger
// blocks exactly. Used only to report memory honestly.
constexpr std::size_t slabBytes(std::size_t n) { return n > 512 ? n : (n + 15) / 16 * 16; }

}  // namespace HashMapImpl

template <class Key, class Value = void, class HashFn = Hash<Key>, class Less = std::less<Key>>
class HashMap2018 {
  using Node = HashMapImpl::Node<Key, Value>;
  static constexpr bool kIsSet = std::is_void_v<Value>;
  static_assert(alignof(Node) <= 16, "the slab hands out 16-byte aligned blocks");

  template <bool kConst>
  class IteratorT;
  template <bool kConst>
  class RangeIterator;

 public:
  using KeyType = Key;
  using ValueType = Value;
  using Iterator = IteratorT<false>;
  using ConstIterator = IteratorT<true>;
  struct End {};

  explicit HashMap2018(std::uint32_t attributeConstant = 0) : seed_(HashHelper::hashSeed32() ^ attributeConstant) {}
  ~HashMap2018() { releaseAll(); }

  HashMap2018(HashMap2018&& other) noexcept
      : buckets_(other.buckets_),
        bits_(other.bits_),
        seed_(other.seed_),
        capacity_(other.capacity_),
        size_(other.size_),
        epoch_(other.epoch_ + 1),
        hashFn_(std::move(other.hashFn_)),
        less_(std::move(other.less_)) {
    other.resetToEmpty();
  }
  HashMap2018& operator=(HashMap2018&& other) noexcept {
    if (this != &other) {
      HashMap2018 taken(std::move(other));
      swap(taken);
    }
    return *this;
  }
  // A deep copy: same seed, same order, new nodes.
  HashMap2018(HashMap2018 const& other) : seed_(other.seed_), hashFn_(other.hashFn_), less_(other.less_) {
    copyFrom(other);
  }
  HashMap2018& operator=(HashMap2018 const& other) {
    if (this != &other) {
      HashMap2018 copy(other);
      swap(copy);
    }
    return *this;
  }

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] std::uint32_t seed() const { return seed_; }

  [[nodiscard]] bool contains(Key const& k) const { return findNode(hashKey(k), k) != nullptr; }

  template <class V = Value, class = std::enable_if_t<!std::is_void_v<V>>>
  [[nodiscard]] V* find(Key const& k) {
    Node* n = findNode(hashKey(k), k);
    return n ? &n->value : nullptr;
  }
  template <class V = Value, class = std::enable_if_t<!std::is_void_v<V>>>
  [[nodiscard]] V const* find(Key const& k) const {
    Node const* n = findNode(hashKey(k), k);
    return n ? &n->value : nullptr;
  }

  // Inserts k with a value built from valueArgs if k is absent; else leaves the map as it is.
  // Returns the element's value and whether it was inserted.
  template <class... A, class V = Value, class = std::enable_if_t<!std::is_void_v<V>>>
  std::pair<V*, bool> tryEmplace(Key const& k, A&&... valueArgs) {
    bool inserted = false;
    Node* n = emplaceNode(k, inserted, std::forward<A>(valueArgs)...);
    return {&n->value, inserted};
  }
  // Set form: true if k was inserted.
  template <class V = Value, class = std::enable_if_t<std::is_void_v<V>>>
  bool insert(Key const& k) {
    bool inserted = false;
    emplaceNode(k, inserted);
    return inserted;
  }

  // True if k was present.
  bool erase(Key const& k) {
    std::uint32_t h = hashKey(k);
    Node** link = linkFor(h, k);
    Node* n = *link;
    if (!n || n->hash != h || !keyEq(n->key, k)) return false;
    *link = n->next;
    freeNode(n);
    --size_;
    ++epoch_;
    return true;
  }

  // Moves the value of k out and erases k.
  template <class V = Value, class = std::enable_if_t<!std::is_void_v<V>>>
  std::optional<V> extract(Key const& k) {
    std::uint32_t h = hashKey(k);
    Node** link = linkFor(h, k);
    Node* n = *link;
    if (!n || n->hash != h || !keyEq(n->key, k)) return std::nullopt;
    std::optional<V> out(std::move(n->value));
    *link = n->next;
    freeNode(n);
    --size_;
    ++epoch_;
    return out;
  }

  // Erases everything and gives back the bucket array too.
  void clear() {
    releaseAll();
    std::uint64_t epoch = epoch_;
    resetToEmpty();
    epoch_ = epoch + 1;
  }

  // Range deletes, in the walk order: k and all after it; all strictly before k; [first, last).
  void eraseFrom(Key const& k) {
    Bound lo{hashKey(k), &k};
    eraseSpan(&lo, nullptr);
  }
  void eraseBefore(Key const& k) {
    Bound hi{hashKey(k), &k};
    eraseSpan(nullptr, &hi);
  }
  void eraseRange(Key const& first, Key const& last) {
    Bound lo{hashKey(first), &first};
    Bound hi{hashKey(last), &last};
    eraseSpan(&lo, &hi);
  }

  // True if a walks before b in this map.
  [[nodiscard]] bool orderLess(Key const& a, Key const& b) const {
    std::uint32_t ha = hashKey(a);
    std::uint32_t hb = hashKey(b);
    return ha < hb || (ha == hb && less_(a, b));
  }

  [[nodiscard]] Iterator iterator() { return Iterator(this, firstFrom(0)); }
  [[nodiscard]] ConstIterator iterator() const { return ConstIterator(this, firstFrom(0)); }
  [[nodiscard]] Iterator iteratorAt(Key const& k) { return Iterator(this, lowerBound(hashKey(k), k)); }
  [[nodiscard]] ConstIterator iteratorAt(Key const& k) const {
    return ConstIterator(this, lowerBound(hashKey(k), k));
  }
  [[nodiscard]] Iterator iteratorAfter(Key const& k) { return Iterator(this, upperBound(hashKey(k), k)); }
  [[nodiscard]] ConstIterator iteratorAfter(Key const& k) const {
    return ConstIterator(this, upperBound(hashKey(k), k));
  }

  // Range-for: each element is seen as the (mutation-safe) iterator standing on it.
  [[nodiscard]] RangeIterator<false> begin() { return RangeIterator<false>(iterator()); }
  [[nodiscard]] RangeIterator<true> begin() const { return RangeIterator<true>(iterator()); }
  [[nodiscard]] End end() const { return {}; }

  // Exchanges everything, seeds included.
  void swap(HashMap2018& other) noexcept {
    using std::swap;
    swap(buckets_, other.buckets_);
    swap(bits_, other.bits_);
    swap(seed_, other.seed_);
    swap(capacity_, other.capacity_);
    swap(size_, other.size_);
    swap(hashFn_, other.hashFn_);
    swap(less_, other.less_);
    std::uint64_t epoch = (epoch_ > other.epoch_ ? epoch_ : other.epoch_) + 1;
    epoch_ = epoch;
    other.epoch_ = epoch;
  }

  // Merges other into this map: keys already here keep this map's value. The nodes move, values
  // keep their addresses; other is left empty. When this map is empty and hashes alike it is a swap.
  void updateG(HashMap2018&& other) {
    if (&other == this || other.size_ == 0) return;
    if (size_ == 0 && seed_ == other.seed_) {
      swap(other);
      other.clear();
      return;
    }
    bool rehash = seed_ != other.seed_;
    std::size_t count = std::size_t(1) << other.bits_;
    for (std::size_t b = 0; b < count; ++b) {
      Node* n = other.buckets_[b];
      other.buckets_[b] = nullptr;
      while (n) {
        Node* next = n->next;
        if (rehash) n->hash = hashKey(n->key);
        adoptNode(n);
        n = next;
      }
    }
    other.size_ = 0;
    other.clear();
  }

  // Bytes of nodes and bucket array, as the slab hands them out.
  [[nodiscard]] std::size_t bytesAllocated() const {
    return size_ * HashMapImpl::slabBytes(sizeof(Node)) +
           (capacity_ ? HashMapImpl::slabBytes(capacity_ * sizeof(Node*)) : 0);
  }
  [[nodiscard]] std::size_t bucketCount() const { return capacity_; }

 private:
  struct Bound {
    std::uint32_t hash;
    Key const* key;
  };

  // The mutation-safe iterator (see the contract at the top of this file).
  template <bool kConst>
  class IteratorT {
    using MapPtr = std::conditional_t<kConst, HashMap2018 const*, HashMap2018*>;
    using Ref = typename HashMapImpl::ElementRef<Key, Value, kConst>::type;

   public:
    IteratorT() = default;
    // An Iterator converts to a ConstIterator.
    template <bool kOther, class = std::enable_if_t<kConst && !kOther>>
    IteratorT(IteratorT<kOther> const& o)  // NOLINT(google-explicit-constructor)
        : map_(o.map_), node_(o.node_), epoch_(o.epoch_), hash_(o.hash_), key_(o.key_) {}

    [[nodiscard]] bool done() const { return node_ == nullptr; }
    explicit operator bool() const { return node_ != nullptr; }

    // The key the iterator stands on, even if that element was just erased.
    [[nodiscard]] Key const& currNodeMaybeStale() const { return *key_; }
    [[nodiscard]] Key const& key() const { return *key_; }

    // The live element the iterator stands on: its value, or for a set its key.
    [[nodiscard]] Ref currNodeNonStale() const {
      Node* n = liveNode();
      if constexpr (kIsSet) {
        return n->key;
      } else {
        return n->value;
      }
    }
    template <bool kSet = kIsSet, class = std::enable_if_t<!kSet>>
    [[nodiscard]] Ref value() const {
      return liveNode()->value;
    }

    void advance() {
      if (!node_) return;
      standOn(map_->epoch_ == epoch_ ? map_->successor(node_) : map_->upperBound(hash_, *key_));
    }
    IteratorT& operator++() {
      advance();
      return *this;
    }

   private:
    friend class HashMap2018;
    template <bool>
    friend class IteratorT;

    IteratorT(MapPtr map, Node* n) : map_(map) { standOn(n); }

    void standOn(Node* n) {
      node_ = n;
      epoch_ = map_->epoch_;
      if (n) {
        hash_ = n->hash;
        key_ = n->key;
      }
    }
    Node* liveNode() const {
      if (map_->epoch_ != epoch_) {
        Node* n = map_->findNode(hash_, *key_);
        QUILL_ASSERT(n, "Zel::HashMap2018::Iterator::currNodeNonStale: element was erased");
        node_ = n;
        epoch_ = map_->epoch_;
      }
      return node_;
    }

    MapPtr map_ = nullptr;
    mutable Node* node_ = nullptr;  // valid while epoch_ matches the map's
    mutable std::uint64_t epoch_ = 0;
    std::uint32_t hash_ = 0;
    std::optional<Key> key_;
  };

  template <bool kConst>
  class RangeIterator {
   public:
    explicit RangeIterator(IteratorT<kConst> it) : it_(std::move(it)) {}
    IteratorT<kConst> const& operator*() const { return it_; }
    IteratorT<kConst> const* operator->() const { return &it_; }
    RangeIterator& operator++() {
      it_.advance();
      return *this;
    }
    bool operator==(End) const { return it_.done(); }

   private:
    IteratorT<kConst> it_;
  };

  [[nodiscard]] std::uint32_t hashKey(Key const& k) const { return hashFn_(k, seed_); }
  [[nodiscard]] std::size_t bucketOf(std::uint32_t h) const { return std::size_t((std::uint64_t(h) << bits_) >> 32); }
  [[nodiscard]] bool keyEq(Key const& a, Key const& b) const {
    if constexpr (std::equality_comparable<Key>) {
      return a == b;
    } else {
      return !less_(a, b) && !less_(b, a);
    }
  }
  // n walks strictly before (h, k).
  [[nodiscard]] bool before(Node const* n, std::uint32_t h, Key const& k) const {
    return n->hash < h || (n->hash == h && less_(n->key, k));
  }
  // n walks strictly after (h, k).
  [[nodiscard]] bool after(Node const* n, std::uint32_t h, Key const& k) const {
    return n->hash > h || (n->hash == h && less_(k, n->key));
  }

  Node* findNode(std::uint32_t h, Key const& k) const {
    for (Node* n = buckets_[bucketOf(h)]; n; n = n->next) {
      if (n->hash < h) continue;
      if (n->hash > h) return nullptr;
      if (keyEq(n->key, k)) return n;
    }
    return nullptr;
  }
  // The link in (h, k)'s chain where (h, k) is or would be inserted.
  Node** linkFor(std::uint32_t h, Key const& k) {
    Node** link = &buckets_[bucketOf(h)];
    while (*link && before(*link, h, k)) link = &(*link)->next;
    return link;
  }
  Node* firstFrom(std::size_t b) const {
    std::size_t count = std::size_t(1) << bits_;
    for (; b < count; ++b) {
      if (buckets_[b]) return buckets_[b];
    }
    return nullptr;
  }
  Node* successor(Node const* n) const { return n->next ? n->next : firstFrom(bucketOf(n->hash) + 1); }
  Node* lowerBound(std::uint32_t h, Key const& k) const {
    std::size_t b = bucketOf(h);
    for (Node* n = buckets_[b]; n; n = n->next) {
      if (!before(n, h, k)) return n;
    }
    return firstFrom(b + 1);
  }
  Node* upperBound(std::uint32_t h, Key const& k) const {
    std::size_t b = bucketOf(h);
    for (Node* n = buckets_[b]; n; n = n->next) {
      if (after(n, h, k)) return n;
    }
    return firstFrom(b + 1);
  }

  template <class... A>
  Node* emplaceNode(Key const& k, bool& inserted, A&&... valueArgs) {
    std::uint32_t h = hashKey(k);
    Node** link = linkFor(h, k);
    if (*link && (*link)->hash == h && keyEq((*link)->key, k)) {
      inserted = false;
      return *link;
    }
    if (size_ >= capacity_) {
      grow();
      link = linkFor(h, k);
    }
    Node* n = newNode(h, k, std::forward<A>(valueArgs)...);
    n->next = *link;
    *link = n;
    ++size_;
    inserted = true;
    return n;
  }
  // Links a node taken from another map, or frees it if its key is already here.
  void adoptNode(Node* n) {
    Node** link = linkFor(n->hash, n->key);
    if (*link && (*link)->hash == n->hash && keyEq((*link)->key, n->key)) {
      freeNode(n);
      return;
    }
    if (size_ >= capacity_) {
      grow();
      link = linkFor(n->hash, n->key);
    }
    n->next = *link;
    *link = n;
    ++size_;
  }

  // Doubles the bucket array (load factor at most 1). Bucket i splits into 2i and 2i+1: its sorted
  // chain is cut where the next hash bit turns to 1, so chains stay sorted and no node moves.
  void grow() {
    std::size_t newCapacity = capacity_ ? capacity_ * 2 : 1;
    std::uint32_t newBits = capacity_ ? bits_ + 1 : 0;
    Node** fresh = allocBuckets(newCapacity);
    for (std::size_t i = 0; i < capacity_; ++i) {
      Node* head = buckets_[i];
      Node** link = &head;
      while (*link && ((std::uint64_t((*link)->hash) << newBits) >> 32) == 2 * i) link = &(*link)->next;
      fresh[2 * i + 1] = *link;
      *link = nullptr;
      fresh[2 * i] = head;
    }
    if (capacity_) freeBuckets(buckets_, capacity_);
    buckets_ = fresh;
    bits_ = newBits;
    capacity_ = newCapacity;
  }

  // Erases every element e with lo <= e < hi in the walk order; a null bound is open.
  void eraseSpan(Bound const* lo, Bound const* hi) {
    if (size_ == 0) return;
    std::size_t b = lo ? bucketOf(lo->hash) : 0;
    std::size_t last = hi ? bucketOf(hi->hash) : (std::size_t(1) << bits_) - 1;
    std::size_t freed = 0;
    for (bool first = true; b <= last; ++b, first = false) {
      Node** link = &buckets_[b];
      if (first && lo) {
        while (*link && before(*link, lo->hash, *lo->key)) link = &(*link)->next;
      }
      while (*link && (!hi || before(*link, hi->hash, *hi->key))) {
        Node* n = *link;
        *link = n->next;
        freeNode(n);
        ++freed;
      }
    }
    if (freed) {
      size_ -= freed;
      ++epoch_;
    }
  }

  template <class... A>
  static Node* newNode(std::uint32_t h, Key const& k, A&&... valueArgs) {
    void* p = Plinth::slabAlloc(sizeof(Node));
    try {
      return new (p) Node(h, k, std::forward<A>(valueArgs)...);
    } catch (...) {
      Plinth::slabFree(p, sizeof(Node));
      throw;
    }
  }
  static void freeNode(Node* n) noexcept {
    n->~Node();
    Plinth::slabFree(n, sizeof(Node));
  }
  static Node** allocBuckets(std::size_t count) {
    auto** b = static_cast<Node**>(Plinth::slabAlloc(count * sizeof(Node*)));
    std::memset(static_cast<void*>(b), 0, count * sizeof(Node*));
    return b;
  }
  static void freeBuckets(Node** b, std::size_t count) noexcept { Plinth::slabFree(b, count * sizeof(Node*)); }

  void releaseAll() noexcept {
    if (!capacity_) return;
    for (std::size_t b = 0; b < capacity_; ++b) {
      for (Node* n = buckets_[b]; n;) {
        Node* next = n->next;
        freeNode(n);
        n = next;
      }
    }
    freeBuckets(buckets_, capacity_);
  }
  // Forgets the contents (already released or handed over) and stands on the shared empty bucket.
  void resetToEmpty() noexcept {
    buckets_ = emptyBucket_;
    bits_ = 0;
    capacity_ = 0;
    size_ = 0;
    ++epoch_;
  }
  void copyFrom(HashMap2018 const& other) {
    if (!other.capacity_) return;
    buckets_ = allocBuckets(other.capacity_);
    bits_ = other.bits_;
    capacity_ = other.capacity_;
    try {
      for (std::size_t b = 0; b < capacity_; ++b) {
        Node** tail = &buckets_[b];
        for (Node const* n = other.buckets_[b]; n; n = n->next) {
          if constexpr (kIsSet) {
            *tail = newNode(n->hash, n->key);
          } else {
            *tail = newNode(n->hash, n->key, n->value);
          }
          tail = &(*tail)->next;
          ++size_;
        }
      }
    } catch (...) {
      releaseAll();
      throw;
    }
  }

  // An empty map reads this one null bucket and allocates nothing; the first insert grows.
  static inline Node* emptyBucket_[1] = {nullptr};

  Node** buckets_ = emptyBucket_;
  std::uint32_t bits_ = 0;     // bucket of h = top bits_ bits of h
  std::uint32_t seed_;
  std::size_t capacity_ = 0;   // buckets allocated; 0 while on the shared empty bucket
  std::size_t size_ = 0;
  std::uint64_t epoch_ = 0;    // bumped whenever a node leaves the map; iterators compare it
  [[no_unique_address]] HashFn hashFn_;
  [[no_unique_address]] Less less_;
};

}  // namespace Zel
