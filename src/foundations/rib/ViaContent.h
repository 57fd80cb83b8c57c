// Routing::Rib::ViaContent: what an IP via is, the part of a via that deduplication compares: the
// next hop, the interface, an MPLS label, flag bits, the resolution profile, the weight, a stack of
// at most 3 labels and a list of at most 1024 entries. A plain value that owns its arrays and
// writes nothing; writing past either bound raises the runtime's fixed-array range failure.
#pragma once

#include <compare>
#include <cstdint>
#include <ostream>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/rib/BoundedArray.h"
#include "foundations/rib/ResolutionRibProfileConfig.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/IpGenAddr.h"

namespace Routing::Rib {

class ViaContent : public Zel::ValueFields<ViaContent> {
 public:
  // Labels are 20 bits; any larger value means the via has no label.
  static constexpr std::uint32_t kMaxLabel = 0xfffff;
  static constexpr std::uint32_t kNoLabel = 0x100000;
  static constexpr std::uint32_t kMaxLabelStack = 3;
  static constexpr std::uint32_t kMaxEntries = 1024;
  // Flag bits: a drop via of FEC type 9; a via that sends to the CPU; a next hop that was taken
  // from a host prefix.
  static constexpr std::uint32_t kFlagDrop = 0x20;
  static constexpr std::uint32_t kFlagToCpu = 0x40;
  static constexpr std::uint32_t kFlagNextHopFromHostPrefix = 0x100;

  using LabelStack = BoundedArray<std::uint32_t, kMaxLabelStack>;
  using EntryList = BoundedArray<std::uint32_t, kMaxEntries>;

  ViaContent() = default;
  ViaContent(Ondex::IpGenAddr nextHop, Ondex::IntfId intfId, std::uint32_t mplsLabel = kNoLabel,
             std::uint32_t flags = 0)
      : nextHop_(nextHop), intfId_(intfId), mplsLabel_(mplsLabel), flags_(flags) {}

  [[nodiscard]] Ondex::IpGenAddr const& nextHop() const noexcept { return nextHop_; }
  [[nodiscard]] Ondex::IntfId intfId() const noexcept { return intfId_; }
  [[nodiscard]] std::uint32_t mplsLabel() const noexcept { return mplsLabel_; }
  [[nodiscard]] bool hasLabel() const noexcept { return mplsLabel_ <= kMaxLabel; }
  [[nodiscard]] std::uint32_t flags() const noexcept { return flags_; }
  [[nodiscard]] ResolutionRibProfileConfig const& resolutionRibProfile() const noexcept { return profile_; }
  [[nodiscard]] float weight() const noexcept { return weight_; }
  [[nodiscard]] LabelStack const& labelStack() const noexcept { return labelStack_; }
  [[nodiscard]] EntryList const& entryList() const noexcept { return entryList_; }

  void nextHopIs(Ondex::IpGenAddr const& a) noexcept { nextHop_ = a; }
  void intfIdIs(Ondex::IntfId i) noexcept { intfId_ = i; }
  void mplsLabelIs(std::uint32_t label) noexcept { mplsLabel_ = label; }
  void flagsIs(std::uint32_t flags) noexcept { flags_ = flags; }
  void resolutionRibProfileIs(ResolutionRibProfileConfig p) { profile_ = std::move(p); }
  void weightIs(float w) noexcept { weight_ = w; }
  // Index 3 or more raises.
  void labelStackIs(std::uint32_t index, std::uint32_t label) { labelStack_.set(index, label); }
  void labelStackDelAll() noexcept { labelStack_.clear(); }
  // Index 1024 or more raises.
  void entryListIs(std::uint32_t index, std::uint32_t value) { entryList_.set(index, value); }
  void entryListDelAll() noexcept { entryList_.clear(); }

  // Hash, equality and order (field by field, partial for the weight) come from these.
  static constexpr auto fields() {
    return std::tuple{Zel::field("nextHop", &ViaContent::nextHop_),     Zel::field("intfId", &ViaContent::intfId_),
                      Zel::field("mplsLabel", &ViaContent::mplsLabel_), Zel::field("flags", &ViaContent::flags_),
                      Zel::field("profile", &ViaContent::profile_),     Zel::field("weight", &ViaContent::weight_),
                      Zel::field("labelStack", &ViaContent::labelStack_),
                      Zel::field("entryList", &ViaContent::entryList_)};
  }
  // "nextHop 10.0.0.1 intf Ethernet1 label 16 flags 0x100 weight 1 profile [...]", with only the
  // parts that are set; the arrays as their counts.
  friend std::ostream& operator<<(std::ostream& os, ViaContent const& c);

 private:
  Ondex::IpGenAddr nextHop_;
  Ondex::IntfId intfId_;
  std::uint32_t mplsLabel_ = kNoLabel;
  std::uint32_t flags_ = 0;
  ResolutionRibProfileConfig profile_;
  float weight_ = 0;
  LabelStack labelStack_;
  EntryList entryList_;
};

}  // namespace Routing::Rib

template <>
struct fmt::formatter<Routing::Rib::ViaContent> : fmt::ostream_formatter {};
