// Ondex::MplsLabel: an MPLS label in 32 bits. Values up to 0xfffff are labels; 0x100000 means no
// label and is the default. Any larger value is stored as 0x100000, so that every "no label" is the
// same value for equality and hashing. A plain, trivially copyable value held in vias.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/runtime/NumberValue.h"

namespace Ondex {

class MplsLabel : public Zel::NumberValue<MplsLabel, std::uint32_t> {
 public:
  static constexpr std::uint32_t kMaxLabel = 0xfffff;
  static constexpr std::uint32_t kNoLabel = 0x100000;

  constexpr MplsLabel() noexcept : NumberValue(kNoLabel) {}
  constexpr explicit MplsLabel(std::uint32_t value) noexcept : NumberValue(value > kMaxLabel ? kNoLabel : value) {}
  [[nodiscard]] static constexpr MplsLabel none() noexcept { return MplsLabel(); }

  // True for a label, false for "no label".
  [[nodiscard]] constexpr bool isValid() const noexcept { return value_ <= kMaxLabel; }

  // The label in decimal, or "none".
  [[nodiscard]] std::string toString() const;
  // A decimal number that fits in 32 bits (above the largest label: no label), or "none".
  [[nodiscard]] static std::optional<MplsLabel> fromString(std::string_view text);
  // Hash, equality, order (numeric; "no label" after every label) and the bare decimal text form
  // (1048576 for no label) come from the number.
  friend std::ostream& operator<<(std::ostream& os, MplsLabel l) { return os << l.toString(); }
};

}  // namespace Ondex

template <>
struct fmt::formatter<Ondex::MplsLabel> : fmt::ostream_formatter {};
