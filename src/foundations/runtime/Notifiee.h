// Notifiees: small reactor objects that watch one entity (their notifier) and receive
// onAttribute(attributeId, key) for each change of it. A nested state machine per element of an
// input collection is one; so is the per-input `Zel<Attribute>` object of a state machine.
#pragma once

#include "foundations/runtime/Entity.h"

namespace Zel {

class PtrInterface::NotifieeConst : public PtrInterface {
 public:
  // What runs for a change of the notifier; the zombie test has been made already.
  virtual void onAttribute(AttrId attributeId, void const* key) = 0;

  [[nodiscard]] Entity const* notifierEntity() const noexcept { return notifier_.get(); }
  // Attaches to another notifier, detaching from the previous one.
  void notifierEntityIs(Quill::Ptr<Entity const> notifier);

  // Entering the notifier's notifiee list: subscriptions are live while this is set.
  void isRegisteredNotifieeIs(bool registered) { hasNotificationActiveIs(registered); }
  void hasNotificationActiveIs(bool active) override;

 protected:
  NotifieeConst() noexcept;
  ~NotifieeConst() override;

 private:
  static void dispatch(Quill::Subscriber& subscriber, AttrId attributeId, void const* key);
  void resubscribe();

  Quill::Ptr<Entity const> notifier_;
  Quill::Subscriber subscriber_;
};

// A notifiee on a typed notifier.
template <class T>
class Notifiee : public PtrInterface::NotifieeConst {
 public:
  [[nodiscard]] Quill::Ptr<T const> notifier() const noexcept {
    return Quill::Ptr<T const>(static_cast<T const*>(notifierEntity()));
  }
  virtual void notifierIs(Quill::Ptr<T const> notifier) { notifierEntityIs(std::move(notifier)); }
};

}  // namespace Zel
