// Ondex::AddressFamily: the family of an address or prefix in one byte: 0 unset, 1 IPv4, 2 IPv6.
// A plain value, copied into every address, prefix and per-family key; it owns nothing.
// Printed "ipv4", "ipv6", or "unknown" for any other value.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

namespace Ondex {

class AddressFamily {
 public:
  static const AddressFamily unset;
  static const AddressFamily ipv4;
  static const AddressFamily ipv6;

  constexpr AddressFamily() noexcept = default;
  constexpr explicit AddressFamily(std::uint8_t value) noexcept : value_(value) {}

  [[nodiscard]] constexpr std::uint8_t value() const noexcept { return value_; }
  [[nodiscard]] constexpr bool isV4() const noexcept { return value_ == 1; }
  [[nodiscard]] constexpr bool isV6() const noexcept { return value_ == 2; }
  [[nodiscard]] constexpr bool isSet() const noexcept { return isV4() || isV6(); }
  // Width of an address of this family in bits: 32, 128, or 0 when unset.
  [[nodiscard]] constexpr std::uint8_t bits() const noexcept { return isV4() ? 32 : isV6() ? 128 : 0; }
  // Bytes that an address of this family fills: 4, 16, or 0.
  [[nodiscard]] constexpr std::uint8_t bytes() const noexcept { return bits() / 8; }

  // "ipv4", "ipv6" or "unknown".
  [[nodiscard]] std::string_view name() const noexcept;
  // "ipv4", "ipv6", "unknown" (value 0) or a decimal number up to 255.
  [[nodiscard]] static std::optional<AddressFamily> fromString(std::string_view text);
  // The text form inside Value('...') forms: the quoted name of IPv4 and IPv6, else the bare number.
  [[nodiscard]] static std::optional<AddressFamily> fromStrep(std::string_view text);

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  friend constexpr bool operator==(AddressFamily a, AddressFamily b) noexcept = default;
  friend constexpr std::strong_ordering operator<=>(AddressFamily a, AddressFamily b) noexcept = default;
  friend std::ostream& operator<<(std::ostream& os, AddressFamily af) { return os << af.name(); }

 private:
  std::uint8_t value_ = 0;
};

inline constexpr AddressFamily AddressFamily::unset{0};
inline constexpr AddressFamily AddressFamily::ipv4{1};
inline constexpr AddressFamily AddressFamily::ipv6{2};

[[nodiscard]] std::string valueToStrep(AddressFamily af);

}  // namespace Ondex

template <>
struct fmt::formatter<Ondex::AddressFamily> : fmt::ostream_formatter {};
