// Routing::RouteViaAttr: what a route keeps per via beside the via's identity: the metric (lower
// wins among a route's vias) and the weight for unequal-cost multipath. A plain 8-byte value, the
// value of Route::via; changing either is a change of the value at the via's key.
#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/runtime/ValueFields.h"

namespace Routing {

class RouteViaAttr : public Zel::ValueFields<RouteViaAttr> {
 public:
  // Hash, equality, order (metric first, then weight) and the text form
  // "Value('Routing::RouteViaAttr', ** {'metric': 1, 'weight': 0})" come from these.
  static constexpr std::string_view kTypeName = "Routing::RouteViaAttr";
  static constexpr auto fields() {
    return std::tuple{Zel::field("metric", &RouteViaAttr::metric_), Zel::field("weight", &RouteViaAttr::weight_)};
  }

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

  friend std::ostream& operator<<(std::ostream& os, RouteViaAttr a) { return os << valueToStrep(a); }

 private:
  std::uint32_t metric_ = 0;
  std::uint32_t weight_ = 0;
};

}  // namespace Routing

template <>
struct fmt::formatter<Routing::RouteViaAttr> : fmt::ostream_formatter {};
