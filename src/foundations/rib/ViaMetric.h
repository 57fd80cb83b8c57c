// Routing::Rib::ViaMetric: the RIB's report on one via: its metric and preference through the
// route that resolves it, whether it loops, and values the system only carries. Preference 255
// means that no route resolves the via. A default-constructed entry is the empty via metric, the
// answer for a via the RIB has not spoken of. A plain value; it owns nothing.
#pragma once

#include <cstdint>
#include <ostream>

#include <fmt/ostream.h>

#include "foundations/rib/RibTypes.h"
#include "foundations/rib/ViaKey.h"

namespace Routing::Rib {

class ViaMetric {
 public:
  static constexpr std::uint32_t kUnresolvedPreference = 255;

  ViaMetric() = default;
  explicit ViaMetric(ViaKey const& key) : viaKey_(key) {}
  ViaMetric(ViaKey const& key, RouteMetric metric, std::uint32_t preference)
      : viaKey_(key), metric_(metric), preference_(preference) {}

  [[nodiscard]] ViaKey const& viaKey() const noexcept { return viaKey_; }
  [[nodiscard]] RouteMetric metric() const noexcept { return metric_; }
  [[nodiscard]] std::uint32_t auxMetric() const noexcept { return auxMetric_; }
  [[nodiscard]] std::uint32_t auxCount() const noexcept { return auxCount_; }
  [[nodiscard]] float weight() const noexcept { return weight_; }
  [[nodiscard]] std::uint32_t preference() const noexcept { return preference_; }
  [[nodiscard]] bool looping() const noexcept { return looping_; }
  [[nodiscard]] bool auxFlag() const noexcept { return auxFlag_; }
  // True unless the preference says that no route resolves the via.
  [[nodiscard]] bool isResolved() const noexcept { return preference_ != kUnresolvedPreference; }
  // The metric and the preference (the preference's low byte) as one pair.
  [[nodiscard]] MetricPref metricPref() const noexcept { return MetricPref(metric_, std::uint8_t(preference_)); }

  void viaKeyIs(ViaKey const& key) noexcept { viaKey_ = key; }
  void metricIs(RouteMetric m) noexcept { metric_ = m; }
  void auxMetricIs(std::uint32_t v) noexcept { auxMetric_ = v; }
  void auxCountIs(std::uint32_t v) noexcept { auxCount_ = v; }
  void weightIs(float w) noexcept { weight_ = w; }
  void preferenceIs(std::uint32_t p) noexcept { preference_ = p; }
  void loopingIs(bool b) noexcept { looping_ = b; }
  void auxFlagIs(bool b) noexcept { auxFlag_ = b; }

  friend bool operator==(ViaMetric const& a, ViaMetric const& b) noexcept = default;
  // "ViaMetric(key: metric 10 pref 1)", with " looping" when it loops.
  friend std::ostream& operator<<(std::ostream& os, ViaMetric const& m);

 private:
  ViaKey viaKey_;
  RouteMetric metric_ = 0xffffffff;
  std::uint32_t auxMetric_ = 0xffffffff;
  std::uint32_t auxCount_ = 0;
  float weight_ = 0;
  std::uint32_t preference_ = kUnresolvedPreference;
  bool looping_ = false;
  bool auxFlag_ = true;
};

}  // namespace Routing::Rib

template <>
struct fmt::formatter<Routing::Rib::ViaMetric> : fmt::ostream_formatter {};
