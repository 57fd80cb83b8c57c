// Routing::Rib::RangedIndex<Tag, Max>: an index into a fixed array of the RIB's records, checked
// on construction against 0..Max. Out of range raises Zel::RangeException with the range text of
// the type Tag names ("T::value < T::min or > T::max not allowed"). A plain value; it owns nothing.
#pragma once

#include <cstdint>

#include "foundations/runtime/Exception.h"

namespace Routing::Rib {

template <class Tag, std::uint32_t Max>
class RangedIndex {
 public:
  static constexpr std::uint32_t kMin = 0;
  static constexpr std::uint32_t kMax = Max;

  constexpr RangedIndex(std::uint32_t value) : value_(value) {  // NOLINT: an index is its number
    if (value > kMax) Zel::throwRangeException(Zel::rangeText(Tag::kTypeName));
  }
  [[nodiscard]] constexpr std::uint32_t value() const noexcept { return value_; }

 private:
  std::uint32_t value_;
};

}  // namespace Routing::Rib
