#include "foundations/types/VrfName.h"

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/ValueText.h"

namespace L3 {

namespace {
Quill::String checked(Quill::String name) {
  if (name.size() > VrfName::maxLength()) Zel::throwRangeException("Zel::String::bytes > maxLength() not allowed");
  return name;
}
}  // namespace

VrfName::VrfName(Quill::String name) : name_(checked(std::move(name))) {}

VrfName::VrfName(std::string_view name) : VrfName(Quill::String(name)) {}

VrfName const& VrfName::defaultVrf() {
  static VrfName const name(kDefaultVrfName);
  return name;
}

std::optional<VrfName> VrfName::fromString(std::string_view text) {
  if (text.size() > maxLength()) return std::nullopt;
  return VrfName(text);
}

std::optional<VrfName> VrfName::fromStrep(std::string_view text) { return Zel::ValueText::unquoteAs<VrfName>(text); }

std::string valueToStrep(VrfName const& v) { return Zel::ValueText::quote(v.view()); }

}  // namespace L3
