#include "foundations/rib/ViaContent.h"

#include <bit>

#include "foundations/runtime/Hash.h"

namespace Routing::Rib {

std::uint32_t ViaContent::hash(std::uint32_t seed) const {
  // 0.0 and -0.0 are one weight, so they must hash alike.
  float const w = weight_ == 0 ? 0.0f : weight_;
  return Zel::HashBuilder(seed)
      .add(nextHop_.hash(seed))
      .add(std::uint64_t(intfId_.id()) << 32 | mplsLabel_)
      .add(std::uint64_t(flags_) << 32 | std::bit_cast<std::uint32_t>(w))
      .add(profile_.hash(seed))
      .add(labelStack_.hash(seed))
      .add(entryList_.hash(seed))
      .value();
}

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
