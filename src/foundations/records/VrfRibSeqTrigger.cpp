#include "foundations/records/VrfRibSeqTrigger.h"

namespace Routing::Protocol {

VrfRibSeqTrigger::VrfRibSeqTrigger(L3::VrfName const& vrfName) : vrfName_(vrfName) {}

}  // namespace Routing::Protocol
