#include "foundations/types/DynamicTunnelIntfId.h"

namespace Ondex {

bool DynamicTunnelIntfId::isDynamicTunnelIntfId(IntfId intfId) noexcept {
  return intfId.name().starts_with(kNamePrefix);
}

}  // namespace Ondex
