// Ondex::EthAddr: an Ethernet MAC address, six bytes in wire order; all zeros means none (the
// default). A plain, trivially copyable value held in EVPN vias (the remote router MAC).
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

namespace Ondex {

class EthAddr {
 public:
  using Bytes = std::array<std::uint8_t, 6>;

  constexpr EthAddr() noexcept = default;
  constexpr explicit EthAddr(Bytes const& bytes) noexcept : bytes_(bytes) {}

  [[nodiscard]] constexpr Bytes const& bytes() const noexcept { return bytes_; }
  [[nodiscard]] constexpr bool isZero() const noexcept { return bytes_ == Bytes{}; }
  // True when there is an address.
  constexpr explicit operator bool() const noexcept { return !isZero(); }

  // "aa:bb:cc:dd:ee:ff", lower case.
  [[nodiscard]] std::string toString() const;
  // Six colon-separated pairs of hex digits ("aa:bb:cc:dd:ee:ff", either case) or three dot-separated
  // groups of four ("aabb.ccdd.eeff"). Nothing for anything else.
  [[nodiscard]] static std::optional<EthAddr> fromString(std::string_view text);
  // The quoted text as valueToStrep prints it ('aa:bb:cc:dd:ee:ff').
  [[nodiscard]] static std::optional<EthAddr> fromStrep(std::string_view text);

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  friend constexpr bool operator==(EthAddr const& a, EthAddr const& b) noexcept = default;
  // Numeric order of the six bytes.
  friend constexpr std::strong_ordering operator<=>(EthAddr const& a, EthAddr const& b) noexcept = default;
  friend std::ostream& operator<<(std::ostream& os, EthAddr const& e) { return os << e.toString(); }

 private:
  Bytes bytes_{};
};

[[nodiscard]] std::string valueToStrep(EthAddr const& e);

}  // namespace Ondex

template <>
struct fmt::formatter<Ondex::EthAddr> : fmt::ostream_formatter {};
