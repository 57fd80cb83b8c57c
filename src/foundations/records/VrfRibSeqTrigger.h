// Routing::Protocol::VrfRibSeqTrigger: the sequence number by which the RIB asks whether this
// protocol has reviewed one VRF. Owned by AllVrfRibSeqTrigger; written by the RIB side
// (ribReadySeqTrigger, id 131), read by the protocol root, which answers in VrfReadyStatus.
#pragma once

#include <cstdint>

#include "foundations/runtime/Attribute.h"
#include "foundations/types/VrfName.h"

namespace Routing::Protocol {

class VrfRibSeqTrigger : public Zel::Entity {
 public:
  ZEL_CONST(L3::VrfName, vrfName)
  ZEL_ATTR(std::uint32_t, ribReadySeqTrigger, 131)

 protected:
  friend struct Zel::Factory;
  explicit VrfRibSeqTrigger(L3::VrfName const& vrfName);
};

}  // namespace Routing::Protocol
