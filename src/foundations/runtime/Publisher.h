// Quill::Publisher: one per observable object. It delivers a change (attribute id and key) to
// every subscriber synchronously, before the mutator returns. Publishes may nest and subscribers
// may come and go during a publish: each running publish keeps a cursor that removal advances.
#pragma once

#include <cstdint>

namespace Zel {
using AttrId = std::uint16_t;
}

namespace Quill {

class Publisher;
class Subscriber;

// The generated dispatch function of a subscription: tests the id and runs the reactors.
using DispatchFn = void (*)(Subscriber& subscriber, Zel::AttrId attributeId, void const* key);

// A subscription slot inside the observing object. A slot with a dispatch function set counts as
// subscribed while it is linked into a publisher.
class Subscriber {
 public:
  Subscriber() noexcept = default;
  Subscriber(DispatchFn fn, void* owner) noexcept : dispatch(fn), owner(owner) {}
  Subscriber(Subscriber const&) = delete;
  Subscriber& operator=(Subscriber const&) = delete;
  ~Subscriber();

  [[nodiscard]] bool subscribed() const noexcept { return publisher_ != nullptr; }
  [[nodiscard]] Publisher* publisher() const noexcept { return publisher_; }

  DispatchFn dispatch = nullptr;
  void* owner = nullptr;

 private:
  friend class Publisher;
  Publisher* publisher_ = nullptr;
  Subscriber* next_ = nullptr;
  Subscriber* prev_ = nullptr;
};

class Publisher {
 public:
  Publisher() noexcept = default;
  Publisher(Publisher const&) = delete;
  Publisher& operator=(Publisher const&) = delete;
  ~Publisher();

  // `immediate` is accepted for the callers' sake; a subscriber sees only later changes.
  void subscriberAdd(Subscriber* subscriber, bool immediate = false) noexcept;
  void subscriberRemove(Subscriber* subscriber) noexcept;
  [[nodiscard]] bool hasSubscribers() const noexcept { return head_ != nullptr; }
  [[nodiscard]] std::uint32_t subscriberCount() const noexcept;

  // Delivers to all subscribers in the order they subscribed; `key` is null for a scalar.
  void publishChange(Zel::AttrId attributeId, void const* key = nullptr) const {
    if (head_) publishSlow(attributeId, key);
  }
  // The mutator's form: `previous` is the value before the change (null for a new key; for a set
  // that lost a key, that key), reachable from the reactors through Zel::notifyOldValue.
  template <class V>
  void publishChangeRecursive(Zel::AttrId attributeId, void const* key, V const* previous, void const* object,
                              V const* current = nullptr) const;

 private:
  struct Cursor {
    Subscriber* next;
    Cursor* outer;
  };
  void publishSlow(Zel::AttrId attributeId, void const* key) const;

  Subscriber* head_ = nullptr;
  Subscriber* tail_ = nullptr;
  mutable Cursor* cursors_ = nullptr;
};

}  // namespace Quill

#include "foundations/runtime/NotifyValues.h"

namespace Quill {
template <class V>
void Publisher::publishChangeRecursive(Zel::AttrId attributeId, void const* key, V const* previous,
                                       void const* object, V const* current) const {
  Zel::Impl::NotifyValuesAnchor anchor(object, attributeId, current, previous, typeid(V));
  publishChange(attributeId, key);
}
}  // namespace Quill

namespace ZelQuill {
// Adds a subscription for one input by way of the owner's publisher.
inline void subscribeTo(Quill::Subscriber* slot, Quill::DispatchFn dispatch, Quill::Publisher& publisher,
                        void* owner) {
  slot->dispatch = dispatch;
  slot->owner = owner;
  publisher.subscriberAdd(slot, false);
}

// Holds a subscription made during construction and removes it if an exception leaves the
// constructor; release() keeps it.
class SubscriberScopeGuard {
 public:
  explicit SubscriberScopeGuard(Quill::Subscriber* slot) noexcept : slot_(slot) {}
  SubscriberScopeGuard(SubscriberScopeGuard const&) = delete;
  SubscriberScopeGuard& operator=(SubscriberScopeGuard const&) = delete;
  ~SubscriberScopeGuard() {
    if (slot_ && slot_->subscribed()) slot_->publisher()->subscriberRemove(slot_);
  }
  void release() noexcept { slot_ = nullptr; }

 private:
  Quill::Subscriber* slot_;
};
}  // namespace ZelQuill
