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

namespace Ondex {

class MplsLabel {
 public:
  static constexpr std::uint32_t kMaxLabel = 0xfffff;
  static constexpr std::uint32_t kNoLabel = 0x100000;

  constexpr MplsLabel() noexcept = default;
  constexpr explicit MplsLabel(std::uint32_t value) noexcept : value_(value > kMaxLabel ? kNoLabel : value) {}
  [[nodiscard]] static constexpr MplsLabel none() noexcept { return MplsLabel(); }

  [[nodiscard]] constexpr std::uint32_t value() const noexcept { return value_; }
  // True for a label, false for "no label".
  [[nodiscard]] constexpr bool isValid() const noexcept { return value_ <= kMaxLabel; }

  // The label in decimal, or "none".
  [[nodiscard]] std::string toString() const;
  // A decimal number that fits in 32 bits (above the largest label: no label), or "none".
  [[nodiscard]] static std::optional<MplsLabel> fromString(std::string_view text);
  // The bare decimal number that valueToStrep prints (1048576 for no label).
  [[nodiscard]] static std::optional<MplsLabel> fromStrep(std::string_view text);

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  friend constexpr bool operator==(MplsLabel a, MplsLabel b) noexcept = default;
  // Numeric; "no label" after every label.
  friend constexpr std::strong_ordering operator<=>(MplsLabel a, MplsLabel b) noexcept = default;
  friend std::ostream& operator<<(std::ostream& os, MplsLabel l) { return os << l.toString(); }

 private:
  std::uint32_t value_ = kNoLabel;
};

[[nodiscard]] std::string valueToStrep(MplsLabel l);

}  // namespace Ondex

template <>
struct fmt::formatter<Ondex::MplsLabel> : fmt::ostream_formatter {};
