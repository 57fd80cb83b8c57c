#include "host/AddressText.h"

namespace Host {

namespace {

[[nodiscard]] constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// A dotted quad, read in place in one pass: the common case of every large route file. Four
// decimal octets of at most three digits, no leading zeros (as inet_pton takes them).
[[nodiscard]] std::optional<Ondex::IpGenAddr> v4Address(std::string_view t) noexcept {
  std::uint32_t value = 0;
  unsigned octet = 0, digits = 0, dots = 0;
  for (char c : t) {
    if (isDigit(c)) {
      if (digits > 0 && octet == 0) return std::nullopt;  // a leading zero
      octet = octet * 10 + unsigned(c - '0');
      if (++digits > 3 || octet > 255) return std::nullopt;
    } else if (c == '.' && digits > 0 && dots < 3) {
      value = value << 8 | octet;
      octet = digits = 0;
      ++dots;
    } else {
      return std::nullopt;
    }
  }
  if (dots != 3 || digits == 0) return std::nullopt;
  return Ondex::IpGenAddr::fromV4(value << 8 | octet);
}

// A prefix length: 1 to 3 decimal digits, no leading zero unless it is "0", at most `max`.
[[nodiscard]] std::optional<unsigned> length(std::string_view t, unsigned max) noexcept {
  if (t.empty() || t.size() > 3 || (t.size() > 1 && t[0] == '0')) return std::nullopt;
  unsigned v = 0;
  for (char c : t) {
    if (!isDigit(c)) return std::nullopt;
    v = v * 10 + unsigned(c - '0');
  }
  if (v > max) return std::nullopt;
  return v;
}

}  // namespace

std::optional<Ondex::IpGenAddr> parseAddress(std::string_view text) noexcept {
  if (text.find(':') == std::string_view::npos) return v4Address(text);
  auto a = Ondex::IpGenAddr::fromString(text);  // IPv6: parsed on the stack
  if (!a || !a->isV6()) return std::nullopt;
  return a;
}

std::optional<AddressLength> parseAddressLength(std::string_view text) noexcept {
  std::size_t const slash = text.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  auto addr = parseAddress(text.substr(0, slash));
  if (!addr) return std::nullopt;
  auto len = length(text.substr(slash + 1), addr->af().bits());
  if (!len) return std::nullopt;
  return AddressLength{*addr, std::uint8_t(*len)};
}

std::optional<Ondex::IpGenPrefix> parsePrefix(std::string_view text) noexcept {
  auto a = parseAddressLength(text);
  if (!a) return std::nullopt;
  return Ondex::IpGenPrefix(a->addr, a->len);
}

char const* notUnicastReason(Ondex::IpGenAddr const& addr) noexcept {
  if (addr.isUnspecified()) return "the unspecified address";
  if (addr.isV4()) {
    std::uint32_t const v = addr.v4();
    if (v == 0xffffffffu) return "the broadcast address";
    if (v >> 24 == 0) return "an address of this network (0.0.0.0/8)";
    if (v >> 24 == 127) return "a loopback address";
    if (v >> 28 == 0xe) return "a multicast address";
    return nullptr;
  }
  auto const& b = addr.bytes();
  if (b[0] == 0xff) return "a multicast address";
  bool loopback = b[15] == 1;
  for (std::size_t i = 0; i < 15 && loopback; ++i) loopback = b[i] == 0;
  if (loopback) return "the loopback address";
  return nullptr;
}

}  // namespace Host
