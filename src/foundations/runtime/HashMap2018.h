// Zel::HashMap2018 owns its elements and a bucket array; it writes nothing outside itself. It is
// owned by the record or state machine that declares the attribute, or by a backlog run's local
// snapshot. With Value = void it is a set. Nodes come from the Plinth slab: no malloc header per
// node, and freed nodes are reused by size.
//
// Order. Elements are walked by (h, key): h is the 32-bit hash of the key under the seed
// Zel::HashHelper::hashSeed32() ^ attributeConstant, and ties of h are broken by Less on the key.
// All nodes form one singly linked list sorted in this order; a key's bucket is the top bits of h
// and holds its first element (or null when empty), so a lookup walks the list from there. The
// order of a set of keys never changes with the table size, the insertion order or other keys
// coming and going; orderLess(a, b) tells it. Two maps of different attribute constants (or
// processes of different seeds) walk alike keys in unrelated orders.
//
// Iterator contract (Iterator, ConstIterator, and the range-for iterator built on them):
// - An iterator stands on one element or is done. It keeps a copy of that element's key and hash,
//   so currNodeMaybeStale() / key() read the key even after the element was erased.
// - While an iterator is live, any element (the one it stands on included) may be erased, elements
//   may be inserted and the table may resize. advance() then moves to the first element live at
//   that moment that stands strictly after the iterator's key in the order. Hence: no element is visited
//   twice; an element erased before the walk reaches it is not visited; an element inserted during
//   the walk is visited iff it stands after the iterator's position when the iterator next moves.
// - currNodeNonStale() / value() require the element at the iterator to be live (an element of
//   equal key inserted again counts as live); otherwise the process ends on an assertion.
// - iteratorAt(k) starts at the first element not before k, iteratorAfter(k) at the first element
//   strictly after k; k need not be present. Resuming from a saved key therefore visits exactly the
//   elements after it, across any erases (of that key too) and any growth since it was saved.
// - After clear(), a range delete, swap(), updateG() or a move of the map, an iterator over it goes
//   on from its key in whatever the map then holds. An iterator must not outlive its map.
// - Cost: a step with no erase since the iterator's last step is one link of the list; after an
//   erase the iterator finds its place again by (hash, key), one bucket walk. Iteration never
//   allocates. The table doubles at a load factor of 1 and shrinks below 1/8.
// Value addresses are stable until that element is erased: nodes never move, not on growth or
// shrinking, not on swap or updateG.
#pragma once

#include <bit>
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

// The link part of a node, and the whole of the list head.
template <class N>
struct Link {
  N* next = nullptr;
};

// One element: the link and the hash first, so that a walk that misses on the hash touches only
// the first bytes of a node.
template <class Key, class Value>
struct Node : Link<Node<Key, Value>> {
  template <class... A>
  Node(std::uint32_t h, Key const& k, A&&... valueArgs)
      : hash(h), key(k), value(std::forward<A>(valueArgs)...) {}
  std::uint32_t hash;
  Key key;
  Value value;
};

template <class Key>
struct Node<Key, void> : Link<Node<Key, void>> {
  Node(std::uint32_t h, Key const& k) : hash(h), key(k) {}
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

// Range-for over a mutation-safe iterator (of HashMap2018 or RbTreeMap): each element is seen as
// the iterator standing on it, so the loop body reads key() and value() and may erase.
struct SafeRangeEnd {};
template <class It>
class SafeRangeIterator {
 public:
  explicit SafeRangeIterator(It it) : it_(std::move(it)) {}
  It const& operator*() const { return it_; }
  It const* operator->() const { return &it_; }
  SafeRangeIterator& operator++() {
    it_.advance();
    return *this;
  }
  bool operator==(SafeRangeEnd) const { return it_.done(); }

 private:
  It it_;
};

template <class Key, class Value = void, class HashFn = Hash<Key>, class Less = std::less<Key>>
class HashMap2018 {
  using Node = HashMapImpl::Node<Key, Value>;
  using Link = HashMapImpl::Link<Node>;
  static constexpr bool kIsSet = std::is_void_v<Value>;
  static_assert(alignof(Node) <= 16, "the slab hands out 16-byte aligned blocks");
  static_assert(std::is_invocable_r_v<bool, Less const&, Key const&, Key const&>,
                "keys of equal hash are ordered by Less: the key type needs operator< (or give a Less)");

  template <bool kConst>
  class IteratorT;

 public:
  using KeyType = Key;
  using ValueType = Value;
  using Iterator = IteratorT<false>;
  using ConstIterator = IteratorT<true>;

  explicit HashMap2018(std::uint32_t attributeConstant = 0)
      : seed_(HashHelper::hashSeed32() ^ attributeConstant) {}
  ~HashMap2018() { releaseAll(); }

  HashMap2018(HashMap2018&& other) noexcept
      : seed_(other.seed_), hashFn_(std::move(other.hashFn_)), less_(std::move(other.less_)) {
    head_.next = other.head_.next;
    buckets_ = other.bucketInline() ? inlineBucket() : other.buckets_;
    bits_ = other.bits_;
    size_ = other.size_;
    epoch_ = other.epoch_ + 1;
    other.forget();
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
    Link* p = predecessor(h, k);
    Node* n = p->next;
    if (!n || n->hash != h || !keyEq(n->key, k)) return false;
    freeNode(unlinkAfter(p));
    ++epoch_;
    maybeShrink();
    return true;
  }

  // Moves the value of k out and erases k.
  template <class V = Value, class = std::enable_if_t<!std::is_void_v<V>>>
  std::optional<V> extract(Key const& k) {
    std::uint32_t h = hashKey(k);
    Link* p = predecessor(h, k);
    Node* n = p->next;
    if (!n || n->hash != h || !keyEq(n->key, k)) return std::nullopt;
    std::optional<V> out(std::move(n->value));
    freeNode(unlinkAfter(p));
    ++epoch_;
    maybeShrink();
    return out;
  }

  // Erases everything and gives back the bucket array too.
  void clear() {
    releaseAll();
    forget();
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

  [[nodiscard]] Iterator iterator() { return Iterator(this, head_.next); }
  [[nodiscard]] ConstIterator iterator() const { return ConstIterator(this, head_.next); }
  [[nodiscard]] Iterator iteratorAt(Key const& k) { return Iterator(this, lowerBound(hashKey(k), k)); }
  [[nodiscard]] ConstIterator iteratorAt(Key const& k) const {
    return ConstIterator(this, lowerBound(hashKey(k), k));
  }
  [[nodiscard]] Iterator iteratorAfter(Key const& k) { return Iterator(this, upperBound(hashKey(k), k)); }
  [[nodiscard]] ConstIterator iteratorAfter(Key const& k) const {
    return ConstIterator(this, upperBound(hashKey(k), k));
  }

  // Range-for: each element is seen as the (mutation-safe) iterator standing on it.
  [[nodiscard]] SafeRangeIterator<Iterator> begin() { return SafeRangeIterator<Iterator>(iterator()); }
  [[nodiscard]] SafeRangeIterator<ConstIterator> begin() const {
    return SafeRangeIterator<ConstIterator>(iterator());
  }
  [[nodiscard]] SafeRangeEnd end() const { return {}; }

  // Exchanges everything, seeds included.
  void swap(HashMap2018& other) noexcept {
    using std::swap;
    bool const mineInline = bucketInline();
    bool const otherInline = other.bucketInline();
    swap(head_.next, other.head_.next);
    swap(buckets_, other.buckets_);
    if (otherInline) buckets_ = inlineBucket();
    if (mineInline) other.buckets_ = other.inlineBucket();
    swap(bits_, other.bits_);
    swap(seed_, other.seed_);
    swap(size_, other.size_);
    swap(hashFn_, other.hashFn_);
    swap(less_, other.less_);
    std::uint32_t epoch = (epoch_ > other.epoch_ ? epoch_ : other.epoch_) + 1;
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
    // Room for all first, so that no allocation can fail half way through.
    std::size_t want = capacity() ? capacity() : 1;
    while (want < size_ + other.size_) want *= 2;
    if (want != capacity()) rehash(want);
    bool rehashKeys = seed_ != other.seed_;
    Node* n = other.head_.next;
    other.releaseBuckets();
    other.forget();
    while (n) {
      Node* next = n->next;
      if (rehashKeys) n->hash = hashKey(n->key);
      Link* p = predecessor(n->hash, n->key);
      if (p->next && p->next->hash == n->hash && keyEq(p->next->key, n->key)) {
        freeNode(n);
      } else {
        linkAfter(p, n);
      }
      n = next;
    }
  }

  // Bytes of nodes and bucket array, as the slab hands them out.
  [[nodiscard]] std::size_t bytesAllocated() const {
    return size_ * HashMapImpl::slabBytes(sizeof(Node)) +
           (capacity() && !bucketInline() ? HashMapImpl::slabBytes(capacity() * sizeof(Node*)) : 0);
  }
  [[nodiscard]] std::size_t bucketCount() const { return capacity(); }

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
    mutable std::uint32_t epoch_ = 0;
    std::uint32_t hash_ = 0;
    std::optional<Key> key_;
  };

  [[nodiscard]] std::uint32_t hashKey(Key const& k) const { return hashFn_(k, seed_); }
  [[nodiscard]] std::size_t bucketOf(std::uint32_t h) const {
    return std::size_t((std::uint64_t(h) << bits_) >> 32);
  }
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
    for (Node* n = buckets_[bucketOf(h)]; n && n->hash <= h; n = n->next) {
      if (n->hash == h && keyEq(n->key, k)) return n;
    }
    return nullptr;
  }
  // The first element not before (h, k), or with kAfter strictly after it.
  template <bool kAfter>
  Node* bound(std::uint32_t h, Key const& k) const {
    std::size_t b = bucketOf(h);
    Node* n = buckets_[b];
    if constexpr (kAfter) {
      while (n && !after(n, h, k)) n = n->next;
    } else {
      while (n && before(n, h, k)) n = n->next;
    }
    if (n || buckets_[b]) return n;  // a non-empty bucket's walk runs on into the later buckets
    std::size_t count = std::size_t(1) << bits_;
    while (++b < count) {
      if (buckets_[b]) return buckets_[b];
    }
    return nullptr;
  }
  Node* lowerBound(std::uint32_t h, Key const& k) const { return bound<false>(h, k); }
  Node* upperBound(std::uint32_t h, Key const& k) const { return bound<true>(h, k); }

  // The link whose next is the first element not before (h, k): the place to insert or erase.
  Link* predecessor(std::uint32_t h, Key const& k) const {
    std::size_t b = bucketOf(h);
    Node* n = buckets_[b];
    if (!n || !before(n, h, k)) return lastBefore(b);
    while (n->next && before(n->next, h, k)) n = n->next;
    return n;
  }
  // The last node of the buckets before b, or the head: found from the nearest non-empty bucket
  // below b, so the cost is the distance to it (short, since the table is kept at least 1/8 full).
  Link* lastBefore(std::size_t b) const {
    while (b-- > 0) {
      if (Node* n = buckets_[b]) {
        while (n->next && bucketOf(n->next->hash) == b) n = n->next;
        return n;
      }
    }
    return &head_;
  }

  // The next element of a walk.
  Node* successor(Node const* n) const {
    prefetchAhead(buckets_, capacity(), bits_, n->hash);
    return n->next;
  }
  // The walk order is unrelated to where nodes sit in memory, so a walk over a large table
  // prefetches nodes a few buckets ahead of hash h: it then waits on memory in parallel instead of
  // once per node. Always inlined: GCC takes an out-of-line function that only prefetches for one
  // without effect and drops the call.
  [[gnu::always_inline]] static void prefetchAhead(Node* const* buckets, std::size_t capacity,
                                                   std::uint32_t bits, std::uint32_t h) {
    if (capacity < kPrefetchMinBuckets) return;
    std::size_t ahead = std::size_t((std::uint64_t(h) << bits) >> 32) + kPrefetchBuckets;
    if (ahead < capacity) {
      __builtin_prefetch(buckets[ahead]);
      Node const* near = buckets[ahead - kPrefetchBuckets / 2];
      if (near && near->next) __builtin_prefetch(near->next);
    }
  }

  template <class... A>
  Node* emplaceNode(Key const& k, bool& inserted, A&&... valueArgs) {
    std::uint32_t h = hashKey(k);
    Link* p = predecessor(h, k);
    if (p->next && p->next->hash == h && keyEq(p->next->key, k)) {
      inserted = false;
      return p->next;
    }
    if (size_ >= capacity()) {
      rehash(capacity() ? capacity() * 2 : 1);
      p = predecessor(h, k);
    }
    Node* n = newNode(h, k, std::forward<A>(valueArgs)...);
    linkAfter(p, n);
    inserted = true;
    return n;
  }
  // Links n after p (p->next being the first element after n) and keeps the buckets right: n
  // becomes its bucket's first element unless p is in that bucket.
  void linkAfter(Link* p, Node* n) {
    n->next = p->next;
    p->next = n;
    std::size_t b = bucketOf(n->hash);
    if (p == &head_ || bucketOf(static_cast<Node*>(p)->hash) != b) buckets_[b] = n;
    ++size_;
  }
  // Unlinks p->next and returns it, keeping the buckets right.
  Node* unlinkAfter(Link* p) {
    Node* n = p->next;
    Node* s = n->next;
    p->next = s;
    std::size_t b = bucketOf(n->hash);
    if (buckets_[b] == n) buckets_[b] = s && bucketOf(s->hash) == b ? s : nullptr;
    --size_;
    return n;
  }

  // Rebuilds the bucket array at a new size from the list: nodes do not move and the list order
  // does not change.
  void rehash(std::size_t newCapacity) {
    Node** old = buckets_;
    std::size_t oldCapacity = capacity();
    std::uint32_t oldBits = bits_;
    buckets_ = allocBuckets(newCapacity);
    bits_ = std::uint32_t(std::countr_zero(newCapacity));
    std::size_t last = ~std::size_t(0);
    for (Node* n = head_.next; n; n = n->next) {
      prefetchAhead(old, oldCapacity, oldBits, n->hash);
      std::size_t b = bucketOf(n->hash);
      if (b != last) {
        buckets_[b] = n;
        last = b;
      }
    }
    if (oldCapacity) freeBuckets(old, oldCapacity);
  }
  // Halves the table (or more) once it is less than 1/8 full, so that lastBefore stays short.
  void maybeShrink() {
    if (capacity() <= kMinShrinkBuckets || size_ * 8 >= capacity()) return;
    std::size_t want = kMinShrinkBuckets;
    while (want < size_ * 2) want *= 2;
    rehash(want);
  }

  // Erases every element e with lo <= e < hi in the walk order; a null bound is open.
  void eraseSpan(Bound const* lo, Bound const* hi) {
    if (size_ == 0) return;
    Link* p = lo ? predecessor(lo->hash, *lo->key) : &head_;
    bool freed = false;
    while (p->next && (!hi || before(p->next, hi->hash, *hi->key))) {
      freeNode(unlinkAfter(p));
      freed = true;
    }
    if (freed) {
      ++epoch_;
      maybeShrink();
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
  // A table of one bucket is the list head itself: that bucket's first element is the list's first,
  // so a map of one element allocates no bucket array.
  Node** inlineBucket() noexcept { return &head_.next; }
  [[nodiscard]] bool bucketInline() const noexcept { return buckets_ == &head_.next; }
  Node** allocBuckets(std::size_t count) {
    if (count == 1) return inlineBucket();
    auto** b = static_cast<Node**>(Plinth::slabAlloc(count * sizeof(Node*)));
    std::memset(static_cast<void*>(b), 0, count * sizeof(Node*));
    return b;
  }
  void freeBuckets(Node** b, std::size_t count) noexcept {
    if (b == inlineBucket()) return;
    Plinth::slabFree(b, count * sizeof(Node*));
  }

  void releaseAll() noexcept {
    for (Node* n = head_.next; n;) {
      Node* next = n->next;
      freeNode(n);
      n = next;
    }
    releaseBuckets();
  }
  // Buckets allocated; 0 while on the shared empty bucket.
  [[nodiscard]] std::size_t capacity() const noexcept {
    return buckets_ == emptyBucket_ ? 0 : std::size_t(1) << bits_;
  }
  void releaseBuckets() noexcept {
    if (capacity()) freeBuckets(buckets_, capacity());
  }
  // Forgets the contents (already released or handed over) and stands on the shared empty bucket.
  void forget() noexcept {
    head_.next = nullptr;
    buckets_ = emptyBucket_;
    bits_ = 0;
    size_ = 0;
    ++epoch_;
  }
  void copyFrom(HashMap2018 const& other) {
    if (!other.capacity()) return;
    try {
      Link* tail = &head_;
      for (Node const* n = other.head_.next; n; n = n->next) {
        if constexpr (kIsSet) {
          tail->next = newNode(n->hash, n->key);
        } else {
          tail->next = newNode(n->hash, n->key, n->value);
        }
        tail = tail->next;
        ++size_;
      }
      rehash(other.capacity());
    } catch (...) {
      releaseAll();
      throw;
    }
  }

  static constexpr std::size_t kPrefetchBuckets = 16;
  static constexpr std::size_t kPrefetchMinBuckets = 4096;
  static constexpr std::size_t kMinShrinkBuckets = 64;

  // An empty map reads this one null bucket and allocates nothing; the first insert grows.
  static inline Node* emptyBucket_[1] = {nullptr};

  // The list head. Const readers hand out positions in the list, the head among them.
  // Four words in all, since every record and machine holds maps and most of them are empty or
  // small: the bucket count is 2^bits_, or none while on the shared empty bucket.
  mutable Link head_;
  Node** buckets_ = emptyBucket_;  // per bucket: its first element, or null
  std::uint32_t bits_ = 0;         // bucket of h = top bits_ bits of h
  std::uint32_t seed_;
  std::uint32_t size_ = 0;
  std::uint32_t epoch_ = 0;  // bumped whenever a node leaves the map; iterators compare it
  [[no_unique_address]] HashFn hashFn_;
  [[no_unique_address]] Less less_;
};

}  // namespace Zel
