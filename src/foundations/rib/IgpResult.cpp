#include "foundations/rib/IgpResult.h"

#include "foundations/runtime/Hash.h"

namespace Routing::Bgp {

void IgpResult::communityIs(IgpRedistribute::CommunityIndex index, std::uint32_t value) noexcept {
  community_[index.value()] = value;
  if (index.value() >= communityCount_) communityCount_ = index.value() + 1;
}

std::uint32_t IgpResult::hash(std::uint32_t seed) const noexcept {
  Zel::HashBuilder h(seed);
  h.add(std::uint64_t(tag_) << 32 | communityCount_);
  for (std::uint32_t i = 0; i < communityCount_; ++i) h.add(community_[i]);
  return h.value();
}

std::ostream& operator<<(std::ostream& os, IgpResult const& r) {
  os << "IgpResult(tag " << r.tag() << " communities [";
  for (std::uint32_t i = 0; i < r.communityCount(); ++i) os << (i ? ", " : "") << r.community(i);
  return os << "])";
}

}  // namespace Routing::Bgp
