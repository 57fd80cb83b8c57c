#include "foundations/records/RoutePreference.h"

#include "foundations/runtime/Hash.h"
#include "foundations/runtime/ValueText.h"

namespace Routing {

std::optional<RoutePreference> RoutePreference::fromString(std::string_view text) {
  auto n = Zel::ValueText::parseUnsigned<std::uint8_t>(text);
  if (!n) return std::nullopt;
  return RoutePreference(*n);
}

std::uint32_t RoutePreference::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed).add(value_).value();
}

std::string valueToStrep(RoutePreference p) { return std::to_string(p.value()); }

}  // namespace Routing
