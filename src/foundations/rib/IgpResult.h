// Routing::Bgp::IgpResult: the result of redistributing one static route: its tag and at most
// four communities, indexed by Routing::IgpRedistribute::CommunityIndex, whose range check raises
// "Routing::IgpRedistribute::CommunityIndex::value < ...::min or > ...::max not allowed". A plain
// value that the IGP result table deduplicates; it owns nothing and writes nothing.
#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <tuple>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/rib/RangedIndex.h"
#include "foundations/runtime/ValueFields.h"

namespace Routing::IgpRedistribute {

// The position of a community in a result, 0..3; outside raises the range text of this type.
struct CommunityIndexName {
  static constexpr std::string_view kTypeName = "Routing::IgpRedistribute::CommunityIndex";
};
using CommunityIndex = Routing::Rib::RangedIndex<CommunityIndexName, 3>;

}  // namespace Routing::IgpRedistribute

namespace Routing::Bgp {

class IgpResult : public Zel::ValueFields<IgpResult> {
 public:
  static constexpr std::uint32_t kMaxCommunities = IgpRedistribute::CommunityIndex::kMax + 1;

  IgpResult() = default;

  [[nodiscard]] std::uint32_t tag() const noexcept { return tag_; }
  void tagIs(std::uint32_t tag) noexcept { tag_ = tag; }
  // The community at index; 0 past the used ones.
  [[nodiscard]] std::uint32_t community(IgpRedistribute::CommunityIndex index) const noexcept {
    return community_[index.value()];
  }
  // Sets the community at index and raises communityCount() to cover it.
  void communityIs(IgpRedistribute::CommunityIndex index, std::uint32_t value) noexcept;
  [[nodiscard]] std::uint32_t communityCount() const noexcept { return communityCount_; }

  // Hash, equality and order come from these (the communities past the used ones stay 0).
  static constexpr auto fields() {
    return std::tuple{Zel::field("tag", &IgpResult::tag_), Zel::field("communityCount", &IgpResult::communityCount_),
                      Zel::field("community", &IgpResult::community_)};
  }
  // "IgpResult(tag 5 communities [1, 2])".
  friend std::ostream& operator<<(std::ostream& os, IgpResult const& r);

 private:
  std::uint32_t tag_ = 0;
  std::uint32_t communityCount_ = 0;
  std::array<std::uint32_t, kMaxCommunities> community_{};
};

}  // namespace Routing::Bgp

template <>
struct fmt::formatter<Routing::Bgp::IgpResult> : fmt::ostream_formatter {};
