#include "protocol/ProtocolContainerKey.h"

namespace Routing::Protocol {

bool operator<(ContainerKey const& a, ContainerKey const& b) noexcept {
  if (a.vrfName_ != b.vrfName_) {
    bool const aDefault = a.vrfName_ == L3::VrfName::defaultVrf();
    bool const bDefault = b.vrfName_ == L3::VrfName::defaultVrf();
    if (aDefault != bDefault) return aDefault;
    return a.vrfName_ < b.vrfName_;
  }
  return a.af_ < b.af_;
}

}  // namespace Routing::Protocol
