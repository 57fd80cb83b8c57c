// Routing::Rib::Skein::ViaSet: the unit the RIB consumes: an ordered list of at most 600 via keys
// with a FEC type and flags, under the key the via-set table gave it (all zero while it is being
// built). Its content, for deduplication, is everything but the key. A plain value that owns its
// list (on the heap: a set of two vias does not carry 600 slots); it writes nothing. An index
// outside 0..599 raises the range failure of Routing::Rib::Skein::ViaIndex.
//
// Iteration: begin()/end() walk the via keys [0, viaCount()) in index order; any write may move
// the list, so no iterator survives a write.
#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>
#include <tuple>
#include <vector>

#include <fmt/ostream.h>

#include "foundations/rib/RangedIndex.h"
#include "foundations/rib/ViaKey.h"
#include "foundations/rib/ViaSetKey.h"
#include "foundations/runtime/ValueFields.h"

namespace Routing::Rib::Skein {

// A position in a via set, 0..599; outside raises "Routing::Rib::Skein::ViaIndex::value <
// Routing::Rib::Skein::ViaIndex::min or > Routing::Rib::Skein::ViaIndex::max not allowed".
struct ViaIndexName {
  static constexpr std::string_view kTypeName = "Routing::Rib::Skein::ViaIndex";
};
using ViaIndex = RangedIndex<ViaIndexName, 599>;

class ViaSet : public Zel::ValueFields<ViaSet> {
 public:
  static constexpr std::uint32_t kMaxVias = ViaIndex::kMax + 1;
  // Flag bits: an IPv4 route without next hop; an IPv6 one.
  static constexpr std::uint8_t kFlagV4NoNextHop = 2;
  static constexpr std::uint8_t kFlagV6NoNextHop = 4;

  ViaSet() = default;
  explicit ViaSet(ViaSetKey const& key) : viaSetKey_(key) {}

  [[nodiscard]] ViaSetKey const& viaSetKey() const noexcept { return viaSetKey_; }
  [[nodiscard]] std::uint8_t fecType() const noexcept { return fecType_; }
  [[nodiscard]] std::uint8_t flags() const noexcept { return flags_; }
  [[nodiscard]] std::uint32_t viaCount() const noexcept { return std::uint32_t(viaKey_.size()); }
  // The key at index; the empty key past viaCount().
  [[nodiscard]] ViaKey viaKey(ViaIndex index) const {
    return index.value() < viaKey_.size() ? viaKey_[index.value()] : ViaKey();
  }

  void viaSetKeyIs(ViaSetKey const& key) noexcept { viaSetKey_ = key; }
  void fecTypeIs(std::uint8_t t) noexcept { fecType_ = t; }
  void flagsIs(std::uint8_t f) noexcept { flags_ = f; }
  // Sets the entry at index and raises viaCount() to cover it; a gap holds empty keys.
  void viaKeyIs(ViaIndex index, ViaKey const& key) {
    if (index.value() >= viaKey_.size()) viaKey_.resize(index.value() + 1);
    viaKey_[index.value()] = key;
  }
  void viaKeyDelAll() noexcept { viaKey_.clear(); }

  [[nodiscard]] ViaKey const* begin() const noexcept { return viaKey_.data(); }
  [[nodiscard]] ViaKey const* end() const noexcept { return viaKey_.data() + viaKey_.size(); }

  // Equal content: FEC type, flags and the via keys in order; the set's own key is not compared.
  [[nodiscard]] bool sameContent(ViaSet const& other) const noexcept {
    return fecType_ == other.fecType_ && flags_ == other.flags_ && viaKey_ == other.viaKey_;
  }
  // Hash, equality and order (field by field: a total order for tables keyed by content) come from
  // these.
  static constexpr auto fields() {
    return std::tuple{Zel::field("viaSetKey", &ViaSet::viaSetKey_), Zel::field("fecType", &ViaSet::fecType_),
                      Zel::field("flags", &ViaSet::flags_), Zel::field("viaKey", &ViaSet::viaKey_)};
  }
  // "ViaSet(key: fec 0 flags 0 [via, via])", for traces.
  friend std::ostream& operator<<(std::ostream& os, ViaSet const& s);

 private:
  ViaSetKey viaSetKey_;
  std::uint8_t fecType_ = 0;
  std::uint8_t flags_ = 0;
  std::vector<ViaKey> viaKey_;
};

}  // namespace Routing::Rib::Skein

template <>
struct fmt::formatter<Routing::Rib::Skein::ViaSet> : fmt::ostream_formatter {};
