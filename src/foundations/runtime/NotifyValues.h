// Old values for reactors: a mutator puts an anchor on the stack around its publish, and a reactor
// further down the call asks for the value the attribute had before this change.
#pragma once

#include <cstdint>
#include <typeinfo>

namespace Zel {
using AttrId = std::uint16_t;
}

namespace Zel::Impl {

class NotifyValuesAnchor {
 public:
  NotifyValuesAnchor(void const* object, AttrId attributeId, void const* newValue, void const* oldValue,
                     std::type_info const& typeIndex) noexcept;
  ~NotifyValuesAnchor();
  NotifyValuesAnchor(NotifyValuesAnchor const&) = delete;
  NotifyValuesAnchor& operator=(NotifyValuesAnchor const&) = delete;

  void const* object;
  AttrId attributeId;
  void const* newValue;
  void const* oldValue;  // null when the key is new
  std::type_info const* typeIndex;
  NotifyValuesAnchor* outer;
};

// The innermost anchor for this object and attribute, or null when no such mutator is running.
NotifyValuesAnchor const* getNotifyValues(void const* object, AttrId attributeId, std::type_info const& typeIndex);

}  // namespace Zel::Impl

namespace Zel {

// Typed form: the value before the change in progress, or null (no such change, or a new key).
template <class T>
T const* notifyOldValue(void const* object, AttrId attributeId) {
  auto const* a = Impl::getNotifyValues(object, attributeId, typeid(T));
  return a ? static_cast<T const*>(a->oldValue) : nullptr;
}

}  // namespace Zel

namespace Zel {

// Both values of the change in progress: `inChange` false when no such change runs; otherwise
// `before` is null for a new key and `after` null for a deleted one.
template <class T>
struct NotifyValues {
  T const* before = nullptr;
  T const* after = nullptr;
  bool inChange = false;
};
template <class T>
NotifyValues<T> notifyValues(void const* object, AttrId attributeId) {
  auto const* a = Impl::getNotifyValues(object, attributeId, typeid(T));
  if (!a) return {};
  return {static_cast<T const*>(a->oldValue), static_cast<T const*>(a->newValue), true};
}

}  // namespace Zel
