// Ondex::IpGenAddr: an IPv4 or IPv6 address, or no address (family unset, the default). A plain,
// trivially copyable value of 17 bytes: 16 address bytes in network order (an IPv4 address in the
// first four, the rest zero) and the family byte. Vias, keys and statuses hold it by the million.
#pragma once

#include <array>
#include <bit>
#include <compare>
#include <cstdint>
#include <cstring>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/types/AddressFamily.h"

namespace Ondex {

class IpGenAddr {
 public:
  using Bytes = std::array<std::uint8_t, 16>;

  // No address: family unset, all bytes zero.
  constexpr IpGenAddr() noexcept = default;
  // IPv4 from its value in host order: fromV4(0x0a000001) is 10.0.0.1.
  [[nodiscard]] static constexpr IpGenAddr fromV4(std::uint32_t hostOrder) noexcept {
    IpGenAddr a;
    a.bytes_[0] = std::uint8_t(hostOrder >> 24);
    a.bytes_[1] = std::uint8_t(hostOrder >> 16);
    a.bytes_[2] = std::uint8_t(hostOrder >> 8);
    a.bytes_[3] = std::uint8_t(hostOrder);
    a.af_ = AddressFamily::ipv4;
    return a;
  }
  // IPv6 from its 16 bytes in network order.
  [[nodiscard]] static constexpr IpGenAddr fromV6(Bytes const& networkOrder) noexcept {
    IpGenAddr a;
    a.bytes_ = networkOrder;
    a.af_ = AddressFamily::ipv6;
    return a;
  }
  // The address of `af` whose bytes are `networkOrder` (only the family's bytes are kept); no
  // address when `af` is neither IPv4 nor IPv6.
  [[nodiscard]] static IpGenAddr fromBytes(AddressFamily af, Bytes const& networkOrder) noexcept;

  [[nodiscard]] constexpr AddressFamily af() const noexcept { return af_; }
  [[nodiscard]] constexpr bool isV4() const noexcept { return af_.isV4(); }
  [[nodiscard]] constexpr bool isV6() const noexcept { return af_.isV6(); }
  // True when there is no next hop: the family is unset, or the address is 0.0.0.0 or ::.
  [[nodiscard]] bool isUnspecified() const noexcept;
  // The same test under the name callers use for "the zero address".
  [[nodiscard]] bool isZero() const noexcept { return isUnspecified(); }
  // 169.254.0.0/16 for IPv4, fe80::/10 for IPv6.
  [[nodiscard]] bool isLinkLocal() const noexcept;

  // The IPv4 address in host order; 0 for an address of another family.
  [[nodiscard]] constexpr std::uint32_t v4() const noexcept {
    if (!isV4()) return 0;
    return std::uint32_t(bytes_[0]) << 24 | std::uint32_t(bytes_[1]) << 16 | std::uint32_t(bytes_[2]) << 8 |
           std::uint32_t(bytes_[3]);
  }
  // All 16 bytes in network order.
  [[nodiscard]] constexpr Bytes const& bytes() const noexcept { return bytes_; }
  // Bytes [8 * i, 8 * i + 8) as one number (i is 0 or 1), so that comparing and masking words
  // compares and masks addresses. An IPv4 address fills the top 32 bits of word 0.
  [[nodiscard]] std::uint64_t word(std::size_t i) const noexcept {
    std::uint64_t w;
    std::memcpy(&w, bytes_.data() + 8 * i, sizeof w);
    if constexpr (std::endian::native == std::endian::little) w = __builtin_bswap64(w);
    return w;
  }

  // "10.0.0.1", "2001:db8::1", or "" for no address.
  [[nodiscard]] std::string toString() const;
  // Dotted quad or IPv6 text; the empty text is no address. Nothing for anything else.
  [[nodiscard]] static std::optional<IpGenAddr> fromString(std::string_view text);
  // The quoted text as valueToStrep prints it ('10.0.0.1', '' for no address).
  [[nodiscard]] static std::optional<IpGenAddr> fromStrep(std::string_view text);

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  friend constexpr bool operator==(IpGenAddr const& a, IpGenAddr const& b) noexcept = default;
  // Total order: by family (no address first, then IPv4, then IPv6), then numerically.
  friend std::strong_ordering operator<=>(IpGenAddr const& a, IpGenAddr const& b) noexcept;
  friend std::ostream& operator<<(std::ostream& os, IpGenAddr const& a) { return os << a.toString(); }

 private:
  Bytes bytes_{};
  AddressFamily af_{};
};

[[nodiscard]] std::string valueToStrep(IpGenAddr const& a);

}  // namespace Ondex

template <>
struct fmt::formatter<Ondex::IpGenAddr> : fmt::ostream_formatter {};
