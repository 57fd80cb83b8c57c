// Ondex::IpGenPrefix: an IPv4 or IPv6 prefix, or the empty prefix (no family, length 0, the
// default). A plain, trivially copyable value of 18 bytes: the address (16 bytes and the family
// byte) and the length byte. Construction clears the host bits, so 10.1.2.3/8 is stored, compared,
// hashed and printed as 10.0.0.0/8; two prefixes are equal when they cover the same addresses.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/types/IpGenAddr.h"

namespace Ondex {

class IpGenPrefix {
 public:
  constexpr IpGenPrefix() noexcept = default;
  // `len` may not exceed the width of the address's family (0 for no address): asserted.
  IpGenPrefix(IpGenAddr const& addr, std::uint8_t len) noexcept;
  // The same, or nothing when `len` is too long for the family.
  [[nodiscard]] static std::optional<IpGenPrefix> fromAddrLen(IpGenAddr const& addr, unsigned len) noexcept;

  [[nodiscard]] constexpr IpGenAddr const& addr() const noexcept { return addr_; }
  [[nodiscard]] constexpr std::uint8_t len() const noexcept { return len_; }
  [[nodiscard]] constexpr AddressFamily af() const noexcept { return addr_.af(); }
  [[nodiscard]] constexpr bool isV4() const noexcept { return addr_.isV4(); }
  [[nodiscard]] constexpr bool isV6() const noexcept { return addr_.isV6(); }
  // A /32 of IPv4 or a /128 of IPv6.
  [[nodiscard]] constexpr bool isHostPrefix() const noexcept {
    return af().isSet() && len_ == af().bits();
  }
  // The address is of this prefix's family and within it. The empty prefix contains nothing.
  [[nodiscard]] bool contains(IpGenAddr const& a) const noexcept;
  // `p` is of this family, no shorter, and within this prefix.
  [[nodiscard]] bool contains(IpGenPrefix const& p) const noexcept;

  // "10.0.0.0/8", "2001:db8::/32", or "" for the empty prefix.
  [[nodiscard]] std::string toString() const;
  // "address/length" with a decimal length no longer than the family's width; host bits are
  // cleared. The empty text is the empty prefix. Nothing for anything else.
  [[nodiscard]] static std::optional<IpGenPrefix> fromString(std::string_view text);
  // The quoted text as valueToStrep prints it ('10.0.0.0/8').
  [[nodiscard]] static std::optional<IpGenPrefix> fromStrep(std::string_view text);

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  friend constexpr bool operator==(IpGenPrefix const& a, IpGenPrefix const& b) noexcept = default;
  // Total order: by address (family first), then shorter before longer.
  friend std::strong_ordering operator<=>(IpGenPrefix const& a, IpGenPrefix const& b) noexcept {
    if (auto c = a.addr_ <=> b.addr_; c != 0) return c;
    return a.len_ <=> b.len_;
  }
  friend std::ostream& operator<<(std::ostream& os, IpGenPrefix const& p) { return os << p.toString(); }

 private:
  IpGenAddr addr_;
  std::uint8_t len_ = 0;
};

[[nodiscard]] std::string valueToStrep(IpGenPrefix const& p);

}  // namespace Ondex

template <>
struct fmt::formatter<Ondex::IpGenPrefix> : fmt::ostream_formatter {};
