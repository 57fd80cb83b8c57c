#include "foundations/rib/ViaSet.h"

#include "foundations/runtime/Hash.h"

namespace Routing::Rib::Skein {

std::uint32_t ViaSet::hash(std::uint32_t seed) const noexcept {
  Zel::HashBuilder h(seed);
  h.add(viaSetKey_.hash(seed)).add(std::uint64_t(fecType_) << 40 | std::uint64_t(flags_) << 32 | viaCount());
  for (ViaKey const& k : viaKey_) h.add(k.hash(seed));
  return h.value();
}

std::ostream& operator<<(std::ostream& os, ViaSet const& s) {
  os << "ViaSet(" << s.viaSetKey() << ": fec " << unsigned(s.fecType()) << " flags " << unsigned(s.flags()) << " [";
  char const* sep = "";
  for (ViaKey const& k : s) {
    os << sep << k;
    sep = ", ";
  }
  return os << "])";
}

}  // namespace Routing::Rib::Skein
