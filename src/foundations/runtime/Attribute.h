// Attributes of records and state machines. A class declares each attribute once with one of the
// ZEL_* macros below; the members of the runtime's vocabulary (x(), xHas, xIs, xDel, xDelAll, xInc,
// iteration) and their publishing come from the storage templates here, never from a hand-written
// body per attribute. Every mutator publishes only when something changed, after storing (after
// removing, for a delete), with the old value reachable through Zel::notifyOldValue.
//
// The class using the macros derives from Zel::Entity. Each macro leaves the class in `public:`.
#pragma once

#include <cstddef>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "foundations/runtime/Entity.h"
#include "foundations/runtime/HashMap2018.h"
#include "foundations/runtime/NotifyValues.h"
#include "foundations/runtime/RbTreeMap.h"

namespace Zel {

// The id tag through which generic code (reconciling nested state machines) finds a collection.
template <AttrId Id>
using AttrTag = std::integral_constant<AttrId, Id>;

namespace Impl {
template <class T>
void publishWithOld(Entity const& owner, AttrId id, void const* key, T const* now, T const* old) {
  NotifyValuesAnchor anchor(&owner, id, now, old, typeid(T));
  owner.publish(id, key);
}
}  // namespace Impl

// One value: x(), xIs(v), xDel(), xInc(n).
template <class T>
class ScalarAttr {
 public:
  ScalarAttr() = default;
  explicit ScalarAttr(T initial) : v_(std::move(initial)) {}

  [[nodiscard]] T const& get() const noexcept { return v_; }

  bool set(Entity const& owner, AttrId id, T v) {
    if (v_ == v) return false;
    if (!owner.publisher().hasSubscribers()) {
      v_ = std::move(v);
      return true;
    }
    T old = std::move(v_);
    v_ = std::move(v);
    Impl::publishWithOld<T>(owner, id, nullptr, &v_, &old);
    return true;
  }
  template <class N>
  T inc(Entity const& owner, AttrId id, N n) {
    if (n == 0) return v_;
    set(owner, id, T(v_ + n));
    return v_;
  }

 private:
  T v_{};
};

// What every collection attribute has: its table, and xDelAll as a walk of xDel over the keys
// (the walk survives reactors that delete other keys meanwhile).
template <class Derived, class MapT>
class CollAttrBase {
 public:
  using Map = MapT;
  void delAll(Entity const& owner, AttrId id) {
    for (auto it = map_.iterator(); it; it.advance()) {
      auto const k = it.currNodeMaybeStale();
      static_cast<Derived*>(this)->del(owner, id, k);
    }
  }
  [[nodiscard]] Map const& map() const noexcept { return map_; }
  [[nodiscard]] Map& map() noexcept { return map_; }

 protected:
  explicit CollAttrBase(Map&& m) : map_(std::move(m)) {}
  Map map_;
};

template <class V>
struct IsPtr : std::false_type {};
template <class T>
struct IsPtr<Quill::Ptr<T>> : std::true_type {};

// A keyed collection of plain values: x(key) (default value when absent), xHas, xIs(key, value).
template <class K, class V, std::uint32_t Salt>
class MapAttr : public CollAttrBase<MapAttr<K, V, Salt>, HashMap2018<K, V>> {
  using Base = CollAttrBase<MapAttr<K, V, Salt>, HashMap2018<K, V>>;
  using Base::map_;

 public:
  MapAttr() : Base(HashMap2018<K, V>(Salt)) {}

  [[nodiscard]] V get(K const& k) const {
    V const* p = map_.find(k);
    return p ? *p : V{};
  }
  [[nodiscard]] bool has(K const& k) const { return map_.contains(k); }
  bool set(Entity const& owner, AttrId id, K const& k, V v) {
    if constexpr (IsPtr<V>::value) {
      if (!v) return del(owner, id, k);  // a null handle removes the entry
    }
    auto [p, inserted] = map_.tryEmplace(k, v);
    if (inserted) {
      Impl::publishWithOld<V>(owner, id, &k, p, nullptr);
      return true;
    }
    if (*p == v) return false;
    V old = std::move(*p);
    *p = std::move(v);
    Impl::publishWithOld<V>(owner, id, &k, p, &old);
    return true;
  }
  bool del(Entity const& owner, AttrId id, K const& k) {
    auto old = map_.extract(k);
    if (!old) return false;
    Impl::publishWithOld<V>(owner, id, &k, nullptr, &*old);
    return true;
  }
};

// A keyed set: xHas, xIs(key), xDel(key). A delete carries the lost key as the old value.
template <class K, std::uint32_t Salt>
class SetAttr : public CollAttrBase<SetAttr<K, Salt>, HashMap2018<K, void>> {
  using Base = CollAttrBase<SetAttr<K, Salt>, HashMap2018<K, void>>;
  using Base::map_;

 public:
  SetAttr() : Base(HashMap2018<K, void>(Salt)) {}

  [[nodiscard]] bool has(K const& k) const { return map_.contains(k); }
  bool set(Entity const& owner, AttrId id, K const& k) {
    return set(owner, id, k, [](K const&) {});
  }
  // Insert, run the side effect, publish: the side effect runs even while nobody observes.
  template <class SideEffect>
  bool set(Entity const& owner, AttrId id, K const& k, SideEffect&& sideEffect) {
    if (!map_.insert(k)) return false;
    sideEffect(k);
    Impl::publishWithOld<K>(owner, id, &k, &k, nullptr);
    return true;
  }
  bool del(Entity const& owner, AttrId id, K const& k) {
    return del(owner, id, k, [](K const&) {});
  }
  // Erase, run the side effect, publish.
  template <class SideEffect>
  bool del(Entity const& owner, AttrId id, K const& k, SideEffect&& sideEffect) {
    if (!map_.erase(k)) return false;
    sideEffect(k);
    Impl::publishWithOld<K>(owner, id, &k, nullptr, &k);
    return true;
  }
};

namespace Impl {
// Owned elements are built from (key, args...), or (key, args..., owner) where the type wants its
// parent.
template <class T, class K, class Owner, class... A>
Quill::Ptr<T> makeOwned(Owner* owner, K const& k, A&&... args) {
  if constexpr (std::is_constructible_v<T, K const&, A&&..., Owner*>)
    return make<T>(k, std::forward<A>(args)..., owner);
  else
    return make<T>(k, std::forward<A>(args)...);
}
}  // namespace Impl

// A keyed collection of owned entities, over a hash map or an ordered tree.
template <class K, class T, class MapT>
class OwnedAttrBase : public CollAttrBase<OwnedAttrBase<K, T, MapT>, MapT> {
  using Base = CollAttrBase<OwnedAttrBase<K, T, MapT>, MapT>;
  using Base::map_;

 public:
  using Elem = Quill::Ptr<T>;

  [[nodiscard]] Elem get(K const& k) const {
    Elem const* p = map_.find(k);
    return p ? *p : Elem();
  }
  [[nodiscard]] bool has(K const& k) const { return map_.contains(k); }

  template <class Owner, class... A>
  Elem findOrCreate(Owner* owner, AttrId id, K const& k, A&&... args) {
    if (Elem const* p = map_.find(k)) return *p;
    Elem e = Impl::makeOwned<T>(owner, k, std::forward<A>(args)...);
    map_.tryEmplace(k, e);
    owner->publish(id, &k);
    return e;
  }
  // Stores a given element under the key, replacing (and marking) a previous one.
  Elem put(Entity const& owner, AttrId id, K const& k, Elem e) {
    auto [p, inserted] = map_.tryEmplace(k, e);
    if (!inserted) {
      if (*p == e) return e;
      Elem old = std::move(*p);
      *p = e;
      old->zelDoZombieReactors(true);
    }
    owner.publish(id, &k);
    return e;
  }
  Elem del(Entity const& owner, AttrId id, K const& k) {
    auto old = map_.extract(k);
    if (!old) return Elem();
    Elem e = std::move(*old);
    e->zelDoZombieReactors(true);
    owner.publish(id, &k);
    return e;
  }

 protected:
  explicit OwnedAttrBase(MapT&& m) : Base(std::move(m)) {}
};

template <class K, class T, std::uint32_t Salt>
class OwnedMapAttr : public OwnedAttrBase<K, T, HashMap2018<K, Quill::Ptr<T>>> {
 public:
  OwnedMapAttr() : OwnedAttrBase<K, T, HashMap2018<K, Quill::Ptr<T>>>(HashMap2018<K, Quill::Ptr<T>>(Salt)) {}
};

template <class K, class T, std::uint32_t /*Salt: an ordered tree has no hash*/>
class OwnedTreeAttr : public OwnedAttrBase<K, T, RbTreeMap<K, Quill::Ptr<T>>> {
 public:
  OwnedTreeAttr() : OwnedAttrBase<K, T, RbTreeMap<K, Quill::Ptr<T>>>(RbTreeMap<K, Quill::Ptr<T>>()) {}
  [[nodiscard]] Quill::Ptr<T> first() const {
    auto it = this->map().iterator();
    return it ? it.value() : Quill::Ptr<T>();
  }
};

// One owned entity: xIs(args...) finds or creates, xDel() clears.
template <class T>
class OwnedAttr {
 public:
  [[nodiscard]] Quill::Ptr<T> const& get() const noexcept { return p_; }
  template <class Owner, class... A>
  Quill::Ptr<T> findOrCreate(Owner* owner, AttrId id, A&&... args) {
    if (p_) {
      if constexpr (requires(T const& t) { t.zelSameArgs(std::forward<A>(args)...); }) {
        if (p_->zelSameArgs(args...)) return p_;
      } else {
        return p_;
      }
    }
    Quill::Ptr<T> fresh = make<T>(std::forward<A>(args)...);
    Quill::Ptr<T> old = std::exchange(p_, fresh);
    if (old) old->zelDoZombieReactors(true);
    owner->publish(id);
    return fresh;
  }
  void del(Entity const& owner, AttrId id) {
    if (!p_) return;
    Quill::Ptr<T> old = std::move(p_);
    p_ = nullptr;
    old->zelDoZombieReactors(true);
    owner.publish(id);
  }

 private:
  Quill::Ptr<T> p_;
};

}  // namespace Zel

// The salt of a collection's hash: its attribute id spread over the word, so that two collections
// keyed alike walk in unrelated orders.
#define ZEL_SALT(id) (0x9e3779b9U * (static_cast<std::uint32_t>(id) + 1U))

// A value set at construction and never changed (a key): x().
#define ZEL_CONST(Type, name)                               \
 public:                                                    \
  [[nodiscard]] Type const& name() const noexcept { return name##_; } \
                                                            \
 private:                                                   \
  Type name##_;                                             \
                                                            \
 public:

// An attribute's id: nameId. Every attribute macro declares its id here, and an attribute whose
// members are written by hand declares it with this macro. An id is taken by a final (and deleted,
// never called) virtual zelAttrIdTaken of its tag, so that neither a second attribute of the id in
// one class ("cannot be overloaded") nor one in a class derived from it ("overriding final
// function") compiles. Each class's overloads hide its bases' by design: no hiding warning.
#define ZEL_ATTR_ID(name, id)                                            \
  static constexpr ::Zel::AttrId name##Id = (id);                        \
  _Pragma("GCC diagnostic push")                                         \
  _Pragma("GCC diagnostic ignored \"-Woverloaded-virtual\"")           \
  virtual void zelAttrIdTaken(::Zel::AttrTag<(id)>) final = delete;      \
  _Pragma("GCC diagnostic pop")                                          \
  static_assert(true)

// A scalar: x(), xIs(v), xDel() (back to the default), xInc(n) for numbers.
#define ZEL_ATTR(Type, name, id) ZEL_ATTR_DEFAULT(Type, name, id, Type{})

// A scalar with a default other than the type's zero value.
#define ZEL_ATTR_DEFAULT(Type, name, id, initial)                                         \
 public:                                                                                  \
  ZEL_ATTR_ID(name, id);                                                                  \
  [[nodiscard]] Type const& name() const noexcept { return name##_.get(); }               \
  void name##Is(Type const& v) { name##_.set(*this, name##Id, v); }                       \
  void name##Del() { name##_.set(*this, name##Id, Type(initial)); }                       \
  template <class N>                                                                      \
  Type name##Inc(N n) {                                                                   \
    return name##_.inc(*this, name##Id, n);                                               \
  }                                                                                       \
                                                                                          \
 private:                                                                                 \
  ::Zel::ScalarAttr<Type> name##_{Type(initial)};                                         \
                                                                                          \
 public:

// The members every collection has: test, count, iteration, the table itself.
#define ZEL_COLL_COMMON_(name, id)                                                          \
  ZEL_ATTR_ID(name, id);                                                                    \
  [[nodiscard]] std::size_t name##Size() const noexcept { return name##_.map().size(); }    \
  [[nodiscard]] auto const& name##Coll() const noexcept { return name##_.map(); }           \
  [[nodiscard]] auto name##Iterator() { return name##_.map().iterator(); }                  \
  [[nodiscard]] auto name##IteratorConst() const { return name##_.map().iterator(); }       \
  [[nodiscard]] auto const& zelColl(::Zel::AttrTag<id>) const noexcept { return name##_.map(); } \
  void name##DelAll() { name##_.delAll(*this, name##Id); }

// Key to plain value: x(key) (the default value when absent), xHas, xIs(key, v), xDel(key).
// Where the value is a Quill::Ptr, storing null removes the entry.
#define ZEL_MAP(Key, Value, name, id)                                                        \
 public:                                                                                     \
  ZEL_COLL_COMMON_(name, id)                                                                 \
  [[nodiscard]] Value name(Key const& k) const { return name##_.get(k); }                    \
  [[nodiscard]] bool name##Has(Key const& k) const { return name##_.has(k); }                \
  bool name##Is(Key const& k, Value const& v) { return name##_.set(*this, name##Id, k, v); } \
  bool name##Del(Key const& k) { return name##_.del(*this, name##Id, k); }                   \
                                                                                             \
 private:                                                                                    \
  ::Zel::MapAttr<Key, Value, ZEL_SALT(id)> name##_;                                          \
                                                                                             \
 public:

// A set of keys: xHas, xIs(key), xDel(key).
#define ZEL_SET(Key, name, id)                                                 \
 public:                                                                       \
  ZEL_COLL_COMMON_(name, id)                                                   \
  [[nodiscard]] bool name##Has(Key const& k) const { return name##_.has(k); }  \
  bool name##Is(Key const& k) { return name##_.set(*this, name##Id, k); }      \
  bool name##Del(Key const& k) { return name##_.del(*this, name##Id, k); }     \
                                                                               \
 private:                                                                      \
  ::Zel::SetAttr<Key, ZEL_SALT(id)> name##_;                                   \
                                                                               \
 public:

// A set whose insertions and deletions run `handler(key)` of the class between the change and its
// publish (only on a real change).
#define ZEL_SET_WITH_HANDLER(Key, name, id, handler)                           \
 public:                                                                       \
  ZEL_COLL_COMMON_(name, id)                                                   \
  [[nodiscard]] bool name##Has(Key const& k) const { return name##_.has(k); }  \
  bool name##Is(Key const& k) {                                                \
    return name##_.set(*this, name##Id, k, [this](Key const& key) { handler(key); }); \
  }                                                                            \
  bool name##Del(Key const& k) {                                               \
    return name##_.del(*this, name##Id, k, [this](Key const& key) { handler(key); }); \
  }                                                                            \
                                                                               \
 private:                                                                      \
  ::Zel::SetAttr<Key, ZEL_SALT(id)> name##_;                                   \
                                                                               \
 public:

// Owned entities by key: x(key) (null when absent), xHas, xIs(key, args...) finds or creates
// the element from (key, args...), xDel(key) marks and removes it and returns it.
#define ZEL_OWNED_COLL_(Key, Type, name, id, Storage)                                         \
 public:                                                                                      \
  ZEL_COLL_COMMON_(name, id)                                                                  \
  [[nodiscard]] ::Quill::Ptr<Type> name(Key const& k) const { return name##_.get(k); }        \
  [[nodiscard]] bool name##Has(Key const& k) const { return name##_.has(k); }                 \
  template <class... A>                                                                       \
  ::Quill::Ptr<Type> name##Is(Key const& k, A&&... args) {                                    \
    return name##_.findOrCreate(this, name##Id, k, std::forward<A>(args)...);                 \
  }                                                                                           \
  ::Quill::Ptr<Type> name##Del(Key const& k) { return name##_.del(*this, name##Id, k); }      \
                                                                                              \
 private:                                                                                     \
  Storage<Key, Type, ZEL_SALT(id)> name##_;                                                   \
                                                                                              \
 public:

#define ZEL_OWNED_MAP(Key, Type, name, id) ZEL_OWNED_COLL_(Key, Type, name, id, ::Zel::OwnedMapAttr)

// Owned entities walked in ascending key order; xFirst() is the lowest.
#define ZEL_OWNED_TREE(Key, Type, name, id)                                                      \
  ZEL_OWNED_COLL_(Key, Type, name, id, ::Zel::OwnedTreeAttr)                        \
  [[nodiscard]] ::Quill::Ptr<Type> name##First() const { return name##_.first(); }

// One owned entity: x(), xIs(args...) finds or creates, xDel().
#define ZEL_OWNED(Type, name, id)                                                     \
 public:                                                                              \
  ZEL_ATTR_ID(name, id);                                                              \
  [[nodiscard]] ::Quill::Ptr<Type> const& name() const noexcept { return name##_.get(); } \
  template <class... A>                                                               \
  ::Quill::Ptr<Type> name##Is(A&&... args) {                                          \
    return name##_.findOrCreate(this, name##Id, std::forward<A>(args)...);            \
  }                                                                                   \
  void name##Del() { name##_.del(*this, name##Id); }                                  \
                                                                                      \
 private:                                                                             \
  ::Zel::OwnedAttr<Type> name##_;                                                     \
                                                                                      \
 public:
