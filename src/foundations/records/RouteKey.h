// Routing::RouteKey: the identity of a configured route, its prefix and its preference. A plain,
// trivially copyable value of 19 bytes; route lists, backlogs and indexes of every subsystem key on
// it. The same prefix under two preferences is two routes.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/records/RoutePreference.h"
#include "foundations/types/IpGenPrefix.h"

namespace Routing {

class RouteKey {
 public:
  // The empty prefix with preference 1.
  constexpr RouteKey() noexcept = default;
  constexpr explicit RouteKey(Ondex::IpGenPrefix const& prefix, RoutePreference preference = RoutePreference()) noexcept
      : prefix_(prefix), preference_(preference) {}

  [[nodiscard]] constexpr Ondex::IpGenPrefix const& prefix() const noexcept { return prefix_; }
  [[nodiscard]] constexpr RoutePreference preference() const noexcept { return preference_; }
  void prefixIs(Ondex::IpGenPrefix const& prefix) noexcept { prefix_ = prefix; }
  void preferenceIs(RoutePreference preference) noexcept { preference_ = preference; }

  // Short human form for trace: "10.0.0.0/8 pref 1".
  [[nodiscard]] std::string pretty() const;
  // "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/8', 'preference': 1})" and its inverse.
  [[nodiscard]] std::string toStrep() const;
  [[nodiscard]] static std::optional<RouteKey> fromStrep(std::string_view text);

  // Covers the address, the length and family, and the preference.
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  [[nodiscard]] static constexpr bool isEq(RouteKey const& a, RouteKey const& b) noexcept { return a == b; }
  friend constexpr bool operator==(RouteKey const& a, RouteKey const& b) noexcept = default;
  // Prefix first, then preference.
  friend std::strong_ordering operator<=>(RouteKey const& a, RouteKey const& b) noexcept {
    if (auto c = a.prefix_ <=> b.prefix_; c != 0) return c;
    return a.preference_ <=> b.preference_;
  }
  friend std::ostream& operator<<(std::ostream& os, RouteKey const& k) { return os << k.toStrep(); }

 private:
  Ondex::IpGenPrefix prefix_;
  RoutePreference preference_;
};

[[nodiscard]] inline std::string valueToStrep(RouteKey const& k) { return k.toStrep(); }

}  // namespace Routing

template <>
struct fmt::formatter<Routing::RouteKey> : fmt::ostream_formatter {};
