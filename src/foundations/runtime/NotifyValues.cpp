#include "foundations/runtime/NotifyValues.h"

namespace Zel::Impl {

namespace {
thread_local NotifyValuesAnchor* innermost = nullptr;
}

NotifyValuesAnchor::NotifyValuesAnchor(void const* object, AttrId attributeId, void const* newValue,
                                       void const* oldValue, std::type_info const& typeIndex) noexcept
    : object(object),
      attributeId(attributeId),
      newValue(newValue),
      oldValue(oldValue),
      typeIndex(&typeIndex),
      outer(innermost) {
  innermost = this;
}

NotifyValuesAnchor::~NotifyValuesAnchor() { innermost = outer; }

NotifyValuesAnchor const* getNotifyValues(void const* object, AttrId attributeId, std::type_info const& typeIndex) {
  for (NotifyValuesAnchor const* a = innermost; a; a = a->outer)
    if (a->object == object && a->attributeId == attributeId && *a->typeIndex == typeIndex) return a;
  return nullptr;
}

}  // namespace Zel::Impl
