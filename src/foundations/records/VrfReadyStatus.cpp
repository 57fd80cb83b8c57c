#include "foundations/records/VrfReadyStatus.h"

namespace Routing::Protocol {

VrfReadyStatus::VrfReadyStatus(L3::VrfName const& vrfName) : vrfName_(vrfName) {}

}  // namespace Routing::Protocol
