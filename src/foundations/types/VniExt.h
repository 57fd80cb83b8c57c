// Vxlan::VniExt, a VXLAN network identifier checked against its range (1 to 0xffffff, the 24 bits
// a VXLAN header carries), and Vxlan::VniExtOrNone, the same in 32 unchecked bits where 0xffffffff
// means no VNI (the default), as an EVPN via holds it. Plain, trivially copyable values. Turning a
// VniExtOrNone outside the range into a VniExt raises the runtime's range failure.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/runtime/NumberValue.h"

namespace Vxlan {

class VniExt : public Zel::NumberValue<VniExt, std::uint32_t> {
 public:
  static constexpr std::uint32_t kMin = 1;
  static constexpr std::uint32_t kMax = 0xffffff;

  // Outside kMin..kMax raises Zel::RangeException
  // ("Vxlan::VniExt::value < Vxlan::VniExt::min or > Vxlan::VniExt::max not allowed").
  constexpr explicit VniExt(std::uint32_t value) : NumberValue(value) {
    if (!inRange(value)) throwOutOfRange();
  }

  [[nodiscard]] static constexpr bool inRange(std::uint32_t value) noexcept { return value >= kMin && value <= kMax; }

  // A decimal number in range; nothing for anything else, never raises.
  [[nodiscard]] static std::optional<VniExt> fromString(std::string_view text);
  // The bare decimal number that valueToStrep prints, in range.
  [[nodiscard]] static std::optional<VniExt> fromStrep(std::string_view text) { return fromString(text); }

  // Hash, equality, order and the text form come from the number.
  friend std::ostream& operator<<(std::ostream& os, VniExt v) { return os << v.value_; }

 private:
  [[noreturn]] static void throwOutOfRange();
};

class VniExtOrNone : public Zel::NumberValue<VniExtOrNone, std::uint32_t> {
 public:
  static constexpr std::uint32_t kNone = 0xffffffff;

  constexpr VniExtOrNone() noexcept : NumberValue(kNone) {}
  constexpr explicit VniExtOrNone(std::uint32_t value) noexcept : NumberValue(value) {}
  constexpr VniExtOrNone(VniExt vni) noexcept : NumberValue(vni.value()) {}  // NOLINT: a VNI is a VNI-or-none
  [[nodiscard]] static constexpr VniExtOrNone none() noexcept { return VniExtOrNone(); }

  [[nodiscard]] constexpr bool isNone() const noexcept { return value_ == kNone; }
  // True when there is a VNI.
  constexpr explicit operator bool() const noexcept { return !isNone(); }
  // The checked VNI; raises the range failure of VniExt for none and any value out of its range.
  [[nodiscard]] VniExt vniExt() const { return VniExt(value_); }

  // The number in decimal, or "none".
  [[nodiscard]] std::string toString() const;
  // A decimal number that fits in 32 bits, or "none".
  [[nodiscard]] static std::optional<VniExtOrNone> fromString(std::string_view text);
  // Hash, equality, order (numeric; none after every VNI) and the bare decimal text form
  // (4294967295 for none) come from the number.
  friend std::ostream& operator<<(std::ostream& os, VniExtOrNone v) { return os << v.toString(); }
};

}  // namespace Vxlan

template <>
struct fmt::formatter<Vxlan::VniExt> : fmt::ostream_formatter {};
template <>
struct fmt::formatter<Vxlan::VniExtOrNone> : fmt::ostream_formatter {};
