#include "foundations/types/AddressFamily.h"

#include "foundations/runtime/Hash.h"
#include "foundations/runtime/ValueText.h"

namespace Ondex {

std::string_view AddressFamily::name() const noexcept {
  if (isV4()) return "ipv4";
  if (isV6()) return "ipv6";
  return "unknown";
}

std::optional<AddressFamily> AddressFamily::fromString(std::string_view text) {
  if (text == "ipv4") return ipv4;
  if (text == "ipv6") return ipv6;
  if (text == "unknown") return unset;
  if (auto n = Zel::ValueText::parseUnsigned<std::uint8_t>(text)) return AddressFamily(*n);
  return std::nullopt;
}

std::optional<AddressFamily> AddressFamily::fromStrep(std::string_view text) {
  if (auto unquoted = Zel::ValueText::unquote(text)) return fromString(*unquoted);
  return fromString(text);
}

std::uint32_t AddressFamily::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed).add(value_).value();
}

std::string valueToStrep(AddressFamily af) {
  if (af.isSet()) return Zel::ValueText::quote(af.name());
  return std::to_string(af.value());
}

}  // namespace Ondex
