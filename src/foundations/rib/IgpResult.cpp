#include "foundations/rib/IgpResult.h"

namespace Routing::Bgp {

void IgpResult::communityIs(IgpRedistribute::CommunityIndex index, std::uint32_t value) noexcept {
  community_[index.value()] = value;
  if (index.value() >= communityCount_) communityCount_ = index.value() + 1;
}

std::ostream& operator<<(std::ostream& os, IgpResult const& r) {
  os << "IgpResult(tag " << r.tag() << " communities [";
  for (std::uint32_t i = 0; i < r.communityCount(); ++i) os << (i ? ", " : "") << r.community(i);
  return os << "])";
}

}  // namespace Routing::Bgp
