#include "foundations/types/IpGenAddr.h"

#include <arpa/inet.h>

#include <cstring>
#include <type_traits>

#include "foundations/runtime/Hash.h"
#include "foundations/runtime/ValueText.h"

namespace Ondex {

// Held by the million in keys and vias: a plain value that stays this small.
static_assert(std::is_trivially_copyable_v<IpGenAddr> && sizeof(IpGenAddr) == 17);

IpGenAddr IpGenAddr::fromBytes(AddressFamily af, Bytes const& networkOrder) noexcept {
  IpGenAddr a;
  if (!af.isSet()) return a;
  std::memcpy(a.bytes_.data(), networkOrder.data(), af.bytes());
  a.af_ = af;
  return a;
}

bool IpGenAddr::isUnspecified() const noexcept {
  return !af_.isSet() || (word(0) | word(1)) == 0;
}

bool IpGenAddr::isLinkLocal() const noexcept {
  if (isV4()) return bytes_[0] == 169 && bytes_[1] == 254;
  if (isV6()) return bytes_[0] == 0xfe && (bytes_[1] & 0xc0) == 0x80;
  return false;
}

std::string IpGenAddr::toString() const {
  if (!af_.isSet()) return {};
  char buf[INET6_ADDRSTRLEN];
  inet_ntop(isV4() ? AF_INET : AF_INET6, bytes_.data(), buf, sizeof buf);
  return buf;
}

std::optional<IpGenAddr> IpGenAddr::fromString(std::string_view text) {
  if (text.empty()) return IpGenAddr();
  char buf[INET6_ADDRSTRLEN];
  if (text.size() >= sizeof buf || text.find('\0') != std::string_view::npos) return std::nullopt;
  std::memcpy(buf, text.data(), text.size());
  buf[text.size()] = '\0';
  IpGenAddr a;
  bool const v6 = text.find(':') != std::string_view::npos;
  if (inet_pton(v6 ? AF_INET6 : AF_INET, buf, a.bytes_.data()) != 1) return std::nullopt;
  a.af_ = v6 ? AddressFamily::ipv6 : AddressFamily::ipv4;
  return a;
}

std::optional<IpGenAddr> IpGenAddr::fromStrep(std::string_view text) {
  return Zel::ValueText::unquoteAs<IpGenAddr>(text);
}

std::uint32_t IpGenAddr::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed).add(word(0)).add(word(1) + af_.value() * 0x9e3779b97f4a7c15ULL).value();
}

std::strong_ordering operator<=>(IpGenAddr const& a, IpGenAddr const& b) noexcept {
  if (auto c = a.af_ <=> b.af_; c != 0) return c;
  if (auto c = a.word(0) <=> b.word(0); c != 0) return c;
  return a.word(1) <=> b.word(1);
}

std::string valueToStrep(IpGenAddr const& a) { return Zel::ValueText::quote(a.toString()); }

}  // namespace Ondex
