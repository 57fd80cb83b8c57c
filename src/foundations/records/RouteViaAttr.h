// Routing::RouteViaAttr: what a route keeps per via beside the via's identity: the metric (lower
// wins among a route's vias) and the weight for unequal-cost multipath. A plain 8-byte value, the
// value of Route::via; changing either is a change of the value at the via's key.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

namespace Routing {

class RouteViaAttr {
 public:
  constexpr RouteViaAttr() noexcept = default;
  constexpr RouteViaAttr(std::uint32_t metric, std::uint32_t weight) noexcept : metric_(metric), weight_(weight) {}

  [[nodiscard]] constexpr std::uint32_t metric() const noexcept { return metric_; }
  [[nodiscard]] constexpr std::uint32_t weight() const noexcept { return weight_; }
  constexpr RouteViaAttr& metricIs(std::uint32_t metric) noexcept {
    metric_ = metric;
    return *this;
  }
  constexpr RouteViaAttr& weightIs(std::uint32_t weight) noexcept {
    weight_ = weight;
    return *this;
  }

  // "Value('Routing::RouteViaAttr', ** {'metric': 1, 'weight': 0})" and its inverse.
  [[nodiscard]] std::string toStrep() const;
  [[nodiscard]] static std::optional<RouteViaAttr> fromStrep(std::string_view text);

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  [[nodiscard]] static constexpr bool isEq(RouteViaAttr a, RouteViaAttr b) noexcept { return a == b; }
  friend constexpr bool operator==(RouteViaAttr a, RouteViaAttr b) noexcept = default;
  // Metric first, then weight.
  friend constexpr std::strong_ordering operator<=>(RouteViaAttr a, RouteViaAttr b) noexcept = default;
  friend std::ostream& operator<<(std::ostream& os, RouteViaAttr a) { return os << a.toStrep(); }

 private:
  std::uint32_t metric_ = 0;
  std::uint32_t weight_ = 0;
};

[[nodiscard]] inline std::string valueToStrep(RouteViaAttr a) { return a.toStrep(); }

}  // namespace Routing

template <>
struct fmt::formatter<Routing::RouteViaAttr> : fmt::ostream_formatter {};
