#include "foundations/runtime/Notifiee.h"

namespace Zel {

PtrInterface::NotifieeConst::NotifieeConst() noexcept : subscriber_(&NotifieeConst::dispatch, this) {}

PtrInterface::NotifieeConst::~NotifieeConst() = default;

void PtrInterface::NotifieeConst::dispatch(Quill::Subscriber& subscriber, AttrId attributeId, void const* key) {
  auto* self = static_cast<NotifieeConst*>(subscriber.owner);
  if (self->zelMarkedForDeletion()) return;
  Quill::Ptr<NotifieeConst> hold(self->references() ? self : nullptr);
  self->onAttribute(attributeId, key);
}

void PtrInterface::NotifieeConst::resubscribe() {
  bool want = hasNotificationActive() && notifier_;
  if (want && subscriber_.publisher() != &notifier_->publisher()) {
    notifier_->publisher().subscriberAdd(&subscriber_, false);
  } else if (!want && subscriber_.subscribed()) {
    subscriber_.publisher()->subscriberRemove(&subscriber_);
  }
}

void PtrInterface::NotifieeConst::notifierEntityIs(Quill::Ptr<Entity const> notifier) {
  if (notifier == notifier_) return;
  if (subscriber_.subscribed()) subscriber_.publisher()->subscriberRemove(&subscriber_);
  notifier_ = std::move(notifier);
  resubscribe();
}

void PtrInterface::NotifieeConst::hasNotificationActiveIs(bool active) {
  if (active == hasNotificationActive()) return;
  PtrInterface::hasNotificationActiveIs(active);
  resubscribe();
}

}  // namespace Zel
