// Host address text: the one reader of addresses, prefixes and interface addresses that the scenario
// file and the route files share, so that a value one of them takes the other takes too, and the
// rule of which addresses a next hop (or a VTEP, or a BFD peer) can be.
//
// The forms taken:
//   address            10.0.0.1, 2001:db8::1 (four decimal octets without leading zeros; IPv6 as
//                      inet_pton reads it)
//   prefix             ADDRESS/LENGTH: the length decimal, without leading zeros, up to the
//                      family's bits; host bits are cleared (10.1.2.3/8 is 10.0.0.0/8)
//   interface address  ADDRESS/LENGTH as a prefix, the address kept whole (10.0.0.1/24)
// Every reader is allocation-free and noexcept; nothing means the text is not of the form.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "foundations/types/IpGenAddr.h"
#include "foundations/types/IpGenPrefix.h"

namespace Host {

[[nodiscard]] std::optional<Ondex::IpGenAddr> parseAddress(std::string_view text) noexcept;
[[nodiscard]] std::optional<Ondex::IpGenPrefix> parsePrefix(std::string_view text) noexcept;

// An address with the length of its subnet.
struct AddressLength {
  Ondex::IpGenAddr addr;
  std::uint8_t len = 0;
};
[[nodiscard]] std::optional<AddressLength> parseAddressLength(std::string_view text) noexcept;

// Why `addr` cannot be the unicast address of another box (a next hop, a VTEP, a BFD peer), or
// null when it can: the unspecified address, this network (0.0.0.0/8), loopback, multicast and the
// limited broadcast are refused.
[[nodiscard]] char const* notUnicastReason(Ondex::IpGenAddr const& addr) noexcept;

}  // namespace Host
