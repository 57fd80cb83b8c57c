// Ondex::DynamicTunnelIntfId: tells the interfaces of dynamic tunnels, those whose name begins
// "DynamicTunnel". Injected routes may name such an interface before the interface status table
// has it, so the check of a via's interface lets it through. Stateless.
#pragma once

#include <string_view>

#include "foundations/types/IntfId.h"

namespace Ondex {

class DynamicTunnelIntfId {
 public:
  static constexpr std::string_view kNamePrefix = "DynamicTunnel";

  [[nodiscard]] static bool isDynamicTunnelIntfId(IntfId intfId) noexcept;
};

}  // namespace Ondex
