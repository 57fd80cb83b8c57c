// Routing::Rib::ViaSetConfigKey: the key of a via-set table: the routing protocol whose sets it
// holds. A plain value; it owns nothing.
#pragma once

#include <ostream>
#include <tuple>

#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/ValueFields.h"

namespace Routing::Rib {

class ViaSetConfigKey : public Zel::ValueFields<ViaSetConfigKey> {
 public:
  // Hash, equality and order come from this.
  static constexpr auto fields() { return std::tuple{Zel::field("routingProtocol", &ViaSetConfigKey::routingProtocol_)}; }

  constexpr ViaSetConfigKey() noexcept = default;
  constexpr explicit ViaSetConfigKey(RoutingProtocol routingProtocol) noexcept : routingProtocol_(routingProtocol) {}

  [[nodiscard]] constexpr RoutingProtocol routingProtocol() const noexcept { return routingProtocol_; }

  friend std::ostream& operator<<(std::ostream& os, ViaSetConfigKey k) { return os << k.routingProtocol_; }

 private:
  RoutingProtocol routingProtocol_;
};

}  // namespace Routing::Rib
