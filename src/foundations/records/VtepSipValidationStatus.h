// The remote VTEPs whose source address the data path validates, each with the number of EVPN
// vias that use it. Written by the source-IP validation helpers of the route machines; read by
// the VXLAN agent.
#pragma once

#include <cstdint>

#include "foundations/runtime/Attribute.h"
#include "foundations/types/IpGenAddr.h"

namespace Vxlan {

class VtepSipValidationStatus : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<VtepSipValidationStatus> VtepSipValidationStatusIs() {
    return Zel::make<VtepSipValidationStatus>();
  }
  // Reference counts; a VTEP that no via uses has no entry.
  ZEL_MAP(Ondex::IpGenAddr, std::uint32_t, remoteVtepAddr, 130)
  // Set from a restart's mark until the sweep that follows it.
  ZEL_ATTR(bool, marked, 131)

 protected:
  friend struct Zel::Factory;
  VtepSipValidationStatus() = default;
};

}  // namespace Vxlan
