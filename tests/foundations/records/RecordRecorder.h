// A notifiee for the record tests: it keeps the id of every notification of one record, and lets a
// test look at the key and the notify values while the notification is running.
#pragma once

#include <functional>
#include <vector>

#include "foundations/runtime/Notifiee.h"
#include "foundations/runtime/NotifyValues.h"

namespace BowlineTest {

template <class T>
class RecordRecorder : public Zel::Notifiee<T> {
 public:
  static Quill::Ptr<RecordRecorder> RecordRecorderIs(Quill::Ptr<T const> record) {
    auto r = Zel::make<RecordRecorder>();
    r->notifierIs(std::move(record));
    return r;
  }

  void onAttribute(Zel::AttrId id, void const* key) override {
    ids.push_back(id);
    if (react) react(id, key);
  }

  // The value the attribute had before the change being notified, read from inside react.
  template <class V>
  [[nodiscard]] V const* oldValue(Zel::AttrId id) const {
    return Zel::notifyOldValue<V>(this->notifier().get(), id);
  }
  // The value it has now, as the mutator announced it (null for a removed key).
  template <class V>
  [[nodiscard]] V const* newValue(Zel::AttrId id) const {
    auto const* a = Zel::Impl::getNotifyValues(this->notifier().get(), id, typeid(V));
    return a ? static_cast<V const*>(a->newValue) : nullptr;
  }

  std::vector<Zel::AttrId> ids;
  std::function<void(Zel::AttrId, void const*)> react;

 protected:
  friend struct Zel::Factory;
  RecordRecorder() = default;
};

}  // namespace BowlineTest
