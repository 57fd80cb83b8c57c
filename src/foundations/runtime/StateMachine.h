// State machines: an entity with inputs (const pointers it watches), reactors declared per input
// attribute, nested state machines per element of an input collection, tasks and timers. The
// members here take part in the machine's activation and in its zombie walk; the life of a
// machine is: factory -> constructor (inputs set, nested machines built, handleInitialized) ->
// notification on -> live -> last reference gone: notification off, zombie walk, members released
// in reverse order of declaration.
//
//   class WatchSm : public Zel::StateMachine<WatchSm> {
//     void handleItem(int const& key);
//     ZEL_NESTED(int, NestedSm_item, itemSm)
//     using RecordReactors = Zel::Reactors<Zel::On<Record::itemId, &WatchSm::handleItem>,
//                                          Zel::Reconcile<Record::itemId, &WatchSm::itemSm_>>;
//     ZEL_INPUT(Record, record, RecordReactors)
//   };
#pragma once

#include <tuple>
#include <type_traits>
#include <utility>

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/Notifiee.h"

namespace Zel {

class MemberHost;

// A part of a state machine that follows its activation and its zombie walk.
class SmMember {
 public:
  explicit SmMember(MemberHost* host);
  SmMember(SmMember const&) = delete;
  SmMember& operator=(SmMember const&) = delete;
  virtual void zelActiveIs(bool) {}
  virtual void zelZombieIs(bool) {}

 protected:
  ~SmMember() = default;

 private:
  friend class MemberHost;
  SmMember* next_ = nullptr;
};

// The members of a machine in order of declaration. One pointer, since nested machines hold one or
// two members each and exist per element; members are added only while the machine is built.
class MemberHost {
 public:
  void zelMemberAdd(SmMember* member) noexcept {
    SmMember** end = &head_;
    while (*end) end = &(*end)->next_;
    *end = member;
  }

 protected:
  void zelMembersActiveIs(bool active) {
    for (SmMember* m = head_; m; m = m->next_) m->zelActiveIs(active);
  }
  void zelMembersZombieIs(bool marked) {
    for (SmMember* m = head_; m; m = m->next_) m->zelZombieIs(marked);
  }

 private:
  SmMember* head_ = nullptr;
};

inline SmMember::SmMember(MemberHost* host) { host->zelMemberAdd(this); }

class StateMachineBase : public Entity, public MemberHost {
 public:
  void hasNotificationActiveIs(bool active) override {
    if (active == hasNotificationActive()) return;
    PtrInterface::hasNotificationActiveIs(active);
    zelMembersActiveIs(active);
  }
  void zelDoZombieReactors(bool marked) override {
    if (marked == zelMarkedForDeletion()) return;
    zelMembersZombieIs(marked);
    zelMarkedForDeletionIs(marked);
  }

 protected:
  StateMachineBase() = default;
};

template <class Self>
class StateMachine : public StateMachineBase {
 protected:
  using ZelSelf = Self;
};

namespace Impl {
template <class F>
struct ReactorTraits;
template <class C, class R>
struct ReactorTraits<R (C::*)()> {
  using Key = void;
};
template <class C, class R, class A>
struct ReactorTraits<R (C::*)(A)> {
  using Key = std::remove_cvref_t<A>;
};

template <auto Fn, class Owner>
void callReactor(Owner* o, void const* key) {
  using Key = typename ReactorTraits<decltype(Fn)>::Key;
  if constexpr (std::is_void_v<Key>)
    (o->*Fn)();
  else
    (o->*Fn)(*static_cast<Key const*>(key));
}
}  // namespace Impl

// A reactor on attribute Id of an input: handleX() for a scalar, handleX(key) for a collection.
template <AttrId Id, auto Fn>
struct On {
  template <class Owner, class Input>
  static void run(Owner* o, Input const&, AttrId id, void const* key) {
    if (id != Id || o->zelMarkedForDeletion()) return;
    Impl::callReactor<Fn>(o, key);
  }
  template <class Owner, class Input>
  static void reconcileAll(Owner*, Input const&) {}
};

// A reactor on every change of an input, whatever the attribute: handleX().
template <auto Fn>
struct OnAny {
  template <class Owner, class Input>
  static void run(Owner* o, Input const&, AttrId, void const*) {
    if (o->zelMarkedForDeletion()) return;
    (o->*Fn)();
  }
  template <class Owner, class Input>
  static void reconcileAll(Owner*, Input const&) {}
};

// After the reactors of Id: bring the nested machine of the key in line with the input's element.
template <AttrId Id, auto Member>
struct Reconcile {
  template <class Owner, class Input>
  static void run(Owner* o, Input const& input, AttrId id, void const* key) {
    if (id != Id || o->zelMarkedForDeletion()) return;
    auto& nested = o->*Member;
    using K = typename std::remove_reference_t<decltype(nested)>::Key;
    K const& k = *static_cast<K const*>(key);
    auto const& coll = input.zelColl(AttrTag<Id>{});
    nested.orderLike(coll);
    auto const* elem = coll.find(k);
    if (elem)
      nested.is(k, *elem);
    else
      nested.del(k);
  }
  template <class Owner, class Input>
  static void reconcileAll(Owner* o, Input const& input) {
    auto& nested = o->*Member;
    auto const& coll = input.zelColl(AttrTag<Id>{});
    nested.orderLike(coll);
    for (auto it = coll.iterator(); it; it.advance()) nested.is(it.key(), it.value());
    for (auto it = nested.map().iterator(); it; it.advance()) {
      auto const k = it.currNodeMaybeStale();
      if (!coll.contains(k)) nested.del(k);
    }
  }
};

// The reactors of one input, run in declaration order with the zombie test before each.
template <class... Es>
struct Reactors {
  template <class Owner, class Input>
  static void dispatch(Owner* o, Input const& input, AttrId id, void const* key) {
    if (o->zelMarkedForDeletion()) return;
    Quill::Ptr<Owner> hold(o->references() ? o : nullptr);
    (Es::run(o, input, id, key), ...);
  }
  template <class Owner, class Input>
  static void reconcileAll(Owner* o, Input const& input) {
    (Es::reconcileAll(o, input), ...);
  }
};

// One input: a const pointer (null: not come yet) and its subscription.
template <class Owner, class T, class R = Reactors<>>
class Input final : public SmMember {
 public:
  explicit Input(Owner* owner) : SmMember(owner), owner_(owner), sub_(&Input::dispatch, this) {}

  [[nodiscard]] Quill::Ptr<T const> const& get() const noexcept { return p_; }

  // Returns if equal; moves the subscription; reconciles the nested machines with the new input.
  void set(Quill::Ptr<T const> p) {
    if (p == p_) return;
    if (sub_.subscribed()) sub_.publisher()->subscriberRemove(&sub_);
    p_ = std::move(p);
    if (!p_) return;
    if (owner_->hasNotificationActive()) p_->publisher().subscriberAdd(&sub_, false);
    R::reconcileAll(owner_, *p_);
  }
  void zelActiveIs(bool active) override {
    if (active && p_)
      p_->publisher().subscriberAdd(&sub_, false);
    else if (!active && sub_.subscribed())
      sub_.publisher()->subscriberRemove(&sub_);
  }

 private:
  static void dispatch(Quill::Subscriber& s, AttrId id, void const* key) {
    auto* self = static_cast<Input*>(s.owner);
    Quill::Ptr<T const> keep = self->p_;  // the reactor may replace the input
    R::dispatch(self->owner_, *keep, id, key);
  }

  Owner* owner_;
  Quill::Ptr<T const> p_;
  Quill::Subscriber sub_;
};

// A nested state machine per element of an input collection: a notifiee on the element with a
// back pointer to its owner. Derive and override onAttribute.
template <class Owner, class K, class T>
class NestedSm : public Notifiee<T>, public MemberHost {
 public:
  using Key = K;
  [[nodiscard]] Owner* owner() const noexcept { return owner_; }
  [[nodiscard]] K const& key() const noexcept { return key_; }

  void hasNotificationActiveIs(bool active) override {
    if (active == this->hasNotificationActive()) return;
    Notifiee<T>::hasNotificationActiveIs(active);
    zelMembersActiveIs(active);
  }
  void zelDoZombieReactors(bool marked) override {
    if (marked == this->zelMarkedForDeletion()) return;
    zelMembersZombieIs(marked);
    this->zelMarkedForDeletionIs(marked);
  }
  void onAttribute(AttrId, void const*) override {}

  NestedSm(Owner* owner, K const& key, Quill::Ptr<T const> element) : owner_(owner), key_(key) {
    this->notifierEntityIs(std::move(element));
  }

 private:
  Owner* owner_;
  K key_;
};

// The nested machines of one input collection, by key.
template <class Owner, class K, class N, std::uint32_t Salt>
class NestedMap final : public SmMember {
 public:
  using Key = K;
  using Map = HashMap2018<K, Quill::Ptr<N>>;
  explicit NestedMap(Owner* owner) : SmMember(owner), owner_(owner), map_(Salt) {}

  [[nodiscard]] Quill::Ptr<N> get(K const& k) const {
    auto const* p = map_.find(k);
    return p ? *p : Quill::Ptr<N>();
  }
  [[nodiscard]] Map const& map() const noexcept { return map_; }
  // The machines of a collection are kept in the collection's own order (while there are none, the
  // map takes the collection's seed): a walk of the one then meets the other's elements in the same
  // order, instead of a cold look-up per element.
  template <class C>
  void orderLike(C const& coll) {
    if constexpr (requires { coll.seed(); }) {
      if (map_.empty() && map_.seed() != coll.seed()) map_ = Map(coll.seed() ^ HashHelper::hashSeed32());
    }
  }

  // Creates the machine of a new element, or points the existing one at the element.
  template <class E>
  void is(K const& k, E const& element) {
    if (auto* p = map_.find(k)) {
      (*p)->notifierIs(element);
      return;
    }
    Quill::Ptr<N> n = construct<N>(owner_, k, element);
    map_.tryEmplace(k, n);
    if (owner_->hasNotificationActive()) n->hasNotificationActiveIs(true);
  }
  void del(K const& k) {
    auto n = map_.extract(k);
    if (!n) return;
    (*n)->zelDoZombieReactors(true);
    (*n)->hasNotificationActiveIs(false);
  }
  void zelActiveIs(bool active) override {
    for (auto it = map_.iterator(); it; it.advance()) it.value()->hasNotificationActiveIs(active);
  }
  void zelZombieIs(bool marked) override {
    for (auto it = map_.iterator(); it; it.advance()) it.value()->zelDoZombieReactors(marked);
  }

 private:
  Owner* owner_;
  Map map_;
};

}  // namespace Zel

// An input: x() reads the const pointer, xIs(p) moves the subscription and reconciles.
#define ZEL_INPUT(Type, name, ReactorList)                                                \
 public:                                                                                  \
  [[nodiscard]] ::Quill::Ptr<Type const> const& name() const noexcept { return name##_.get(); } \
  void name##Is(::Quill::Ptr<Type const> p) { name##_.set(std::move(p)); }                \
                                                                                          \
 private:                                                                                 \
  ::Zel::Input<ZelSelf, Type, ReactorList> name##_{this};                                 \
                                                                                          \
 public:

// The nested machines of an input collection: x(key), xHas(key), xSize().
#define ZEL_NESTED(Key, Type, name)                                                         \
 public:                                                                                    \
  [[nodiscard]] ::Quill::Ptr<Type> name(Key const& k) const { return name##_.get(k); }      \
  [[nodiscard]] bool name##Has(Key const& k) const { return name##_.map().contains(k); }    \
  [[nodiscard]] std::size_t name##Size() const noexcept { return name##_.map().size(); }    \
                                                                                            \
 private:                                                                                   \
  ::Zel::NestedMap<ZelSelf, Key, Type, ZEL_SALT(__LINE__)> name##_{this};                   \
                                                                                            \
 public:
