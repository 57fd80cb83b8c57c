// Routing::RoutePreference: the administrative distance of a route in one unsigned byte, smaller
// is better. A plain value held in every route key. The default, 1, has a meaning of its own: no
// preference was configured and the global one applies.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/runtime/NumberValue.h"

namespace Routing {

class RoutePreference : public Zel::NumberValue<RoutePreference, std::uint8_t> {
 public:
  static constexpr std::uint8_t kNotConfigured = 1;

  constexpr RoutePreference() noexcept : NumberValue(kNotConfigured) {}
  constexpr explicit RoutePreference(std::uint8_t value) noexcept : NumberValue(value) {}

  // True for the default value, which stands for "use the global preference".
  [[nodiscard]] constexpr bool isNotConfigured() const noexcept { return value_ == kNotConfigured; }

  // A decimal number from 0 to 255 (the text form, too); nothing for anything else.
  [[nodiscard]] static std::optional<RoutePreference> fromString(std::string_view text) { return fromStrep(text); }

  // Hash, equality, order and the text form come from the number.
  friend std::ostream& operator<<(std::ostream& os, RoutePreference p) { return os << unsigned(p.value_); }
};

}  // namespace Routing

template <>
struct fmt::formatter<Routing::RoutePreference> : fmt::ostream_formatter {};
