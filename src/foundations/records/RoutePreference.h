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

namespace Routing {

class RoutePreference {
 public:
  static constexpr std::uint8_t kNotConfigured = 1;

  constexpr RoutePreference() noexcept = default;
  constexpr explicit RoutePreference(std::uint8_t value) noexcept : value_(value) {}

  [[nodiscard]] constexpr std::uint8_t value() const noexcept { return value_; }
  // True for the default value, which stands for "use the global preference".
  [[nodiscard]] constexpr bool isNotConfigured() const noexcept { return value_ == kNotConfigured; }

  // A decimal number from 0 to 255; nothing for anything else.
  [[nodiscard]] static std::optional<RoutePreference> fromString(std::string_view text);
  // The bare number valueToStrep prints.
  [[nodiscard]] static std::optional<RoutePreference> fromStrep(std::string_view text) { return fromString(text); }

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  friend constexpr bool operator==(RoutePreference a, RoutePreference b) noexcept = default;
  friend constexpr std::strong_ordering operator<=>(RoutePreference a, RoutePreference b) noexcept = default;
  friend std::ostream& operator<<(std::ostream& os, RoutePreference p) { return os << unsigned(p.value_); }

 private:
  std::uint8_t value_ = kNotConfigured;
};

[[nodiscard]] std::string valueToStrep(RoutePreference p);

}  // namespace Routing

template <>
struct fmt::formatter<Routing::RoutePreference> : fmt::ostream_formatter {};
