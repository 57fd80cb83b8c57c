// Routing::Rib::ViaSetConfigKey: the key of a via-set table: the routing protocol whose sets it
// holds. A plain value; it owns nothing.
#pragma once

#include <compare>
#include <cstdint>
#include <ostream>

#include "foundations/rib/RibTypes.h"

namespace Routing::Rib {

class ViaSetConfigKey {
 public:
  constexpr ViaSetConfigKey() noexcept = default;
  constexpr explicit ViaSetConfigKey(RoutingProtocol routingProtocol) noexcept : routingProtocol_(routingProtocol) {}

  [[nodiscard]] constexpr RoutingProtocol routingProtocol() const noexcept { return routingProtocol_; }

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return routingProtocol_.hash(seed); }
  friend constexpr bool operator==(ViaSetConfigKey a, ViaSetConfigKey b) noexcept = default;
  friend constexpr std::strong_ordering operator<=>(ViaSetConfigKey a, ViaSetConfigKey b) noexcept = default;
  friend std::ostream& operator<<(std::ostream& os, ViaSetConfigKey k) { return os << k.routingProtocol_; }

 private:
  RoutingProtocol routingProtocol_;
};

}  // namespace Routing::Rib
