// A notifiee for the RIB table tests: records the keys published on one attribute of one entity,
// in order, and can run a reaction inside the publish, as a reactor would.
#pragma once

#include <functional>
#include <vector>

#include "foundations/runtime/Notifiee.h"

namespace BowlineTest {

template <class T, class K>
class KeyRecorder : public Zel::Notifiee<T> {
 public:
  static Quill::Ptr<KeyRecorder> KeyRecorderIs(Quill::Ptr<T const> notifier, Zel::AttrId attributeId) {
    auto r = Zel::make<KeyRecorder>(attributeId);
    r->notifierIs(std::move(notifier));
    return r;
  }
  void onAttribute(Zel::AttrId id, void const* key) override {
    if (id != attributeId_) return;
    keys.push_back(key ? *static_cast<K const*>(key) : K{});
    if (react) react(keys.back());
  }

  std::vector<K> keys;
  std::function<void(K const&)> react;

 protected:
  friend struct Zel::Factory;
  explicit KeyRecorder(Zel::AttrId attributeId) : attributeId_(attributeId) {}

 private:
  Zel::AttrId attributeId_;
};

}  // namespace BowlineTest
