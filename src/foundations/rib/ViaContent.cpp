#include "foundations/rib/ViaContent.h"

namespace Routing::Rib {

std::ostream& operator<<(std::ostream& os, ViaContent const& c) {
  os << "nextHop " << c.nextHop() << " intf " << c.intfId();
  if (c.hasLabel()) os << " label " << c.mplsLabel();
  if (c.flags()) os << " flags 0x" << std::hex << c.flags() << std::dec;
  os << " weight " << c.weight();
  if (!c.resolutionRibProfile().empty()) os << " profile " << c.resolutionRibProfile();
  if (!c.labelStack().empty()) os << " labelStack " << c.labelStack().size();
  if (!c.entryList().empty()) os << " entries " << c.entryList().size();
  return os;
}

}  // namespace Routing::Rib
