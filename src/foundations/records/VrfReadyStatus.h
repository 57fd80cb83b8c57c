// Routing::Protocol::VrfReadyStatus: how far the routes of one VRF are whole. Owned by
// AllVrfReadyStatus; the route config machines set v4RoutesReady / v6RoutesReady, the route status
// machines set the two review-complete flags, and the protocol root echoes the RIB's trigger into
// ribReadySeqStatus once both reviews are complete. Ids from 131 in declaration order.
#pragma once

#include <cstdint>

#include "foundations/runtime/Attribute.h"
#include "foundations/types/VrfName.h"

namespace Routing::Protocol {

class VrfReadyStatus : public Zel::Entity {
 public:
  ZEL_CONST(L3::VrfName, vrfName)
  ZEL_ATTR(bool, v4RoutesReady, 131)
  ZEL_ATTR(bool, v6RoutesReady, 132)
  ZEL_ATTR(std::uint32_t, ribReadySeqStatus, 133)
  ZEL_ATTR(bool, v4RouteReviewComplete, 134)
  ZEL_ATTR(bool, v6RouteReviewComplete, 135)

 protected:
  friend struct Zel::Factory;
  explicit VrfReadyStatus(L3::VrfName const& vrfName);
};

}  // namespace Routing::Protocol
