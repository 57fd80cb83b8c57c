// Routing::RouteKey: the identity of a configured route, its prefix and its preference. A plain,
// trivially copyable value of 19 bytes; route lists, backlogs and indexes of every subsystem key on
// it. The same prefix under two preferences is two routes.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/records/RoutePreference.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/IpGenPrefix.h"

namespace Routing {

class RouteKey : public Zel::ValueFields<RouteKey> {
 public:
  // Hash, equality, order (prefix first, then preference) and the text form
  // "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/8', 'preference': 1})" come from these.
  static constexpr std::string_view kTypeName = "Routing::RouteKey";
  static constexpr auto fields() {
    return std::tuple{Zel::field("prefix", &RouteKey::prefix_), Zel::field("preference", &RouteKey::preference_)};
  }

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
  friend std::ostream& operator<<(std::ostream& os, RouteKey const& k) { return os << valueToStrep(k); }

 private:
  Ondex::IpGenPrefix prefix_;
  RoutePreference preference_;
};

}  // namespace Routing

template <>
struct fmt::formatter<Routing::RouteKey> : fmt::ostream_formatter {};
