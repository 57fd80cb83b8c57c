#include "foundations/records/RouteType.h"

#include <array>

#include "foundations/runtime/ValueText.h"

namespace Routing {

namespace {
constexpr std::array<std::string_view, 5> kNames = {"forward", "drop", "nexthopGroup", "l2NexthopGroup",
                                                    "dropWithIndication"};
}  // namespace

std::string routeTypeName(RouteType t) {
  auto const v = static_cast<std::uint8_t>(t);
  if (v < kNames.size()) return std::string(kNames[v]);
  return std::to_string(v);
}

std::optional<RouteType> routeTypeFromString(std::string_view text) {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (text == kNames[i]) return RouteType(i);
  }
  auto n = Zel::ValueText::parseUnsigned<std::uint8_t>(text);
  if (!n) return std::nullopt;
  return RouteType(*n);
}

std::string valueToStrep(RouteType t) {
  auto const v = static_cast<std::uint8_t>(t);
  if (v < kNames.size()) return Zel::ValueText::quote(kNames[v]);
  return std::to_string(v);
}

std::optional<RouteType> routeTypeFromStrep(std::string_view text) {
  if (auto name = Zel::ValueText::unquote(text)) {
    for (std::size_t i = 0; i < kNames.size(); ++i) {
      if (*name == kNames[i]) return RouteType(i);
    }
    return std::nullopt;
  }
  auto n = Zel::ValueText::parseUnsigned<std::uint8_t>(text);
  if (!n) return std::nullopt;
  return RouteType(*n);
}

}  // namespace Routing
