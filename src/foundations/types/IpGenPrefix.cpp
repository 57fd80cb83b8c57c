#include "foundations/types/IpGenPrefix.h"

#include <bit>
#include <cstring>
#include <type_traits>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Hash.h"
#include "foundations/runtime/ValueText.h"

namespace Ondex {

// Held by the million in keys and vias: a plain value that stays this small.
static_assert(std::is_trivially_copyable_v<IpGenPrefix> && sizeof(IpGenPrefix) == 18);

namespace {

// The network bits of word i (0 or 1) of an address under a prefix of `len` bits.
constexpr std::uint64_t maskWord(unsigned len, std::size_t i) noexcept {
  unsigned const bits = i == 0 ? (len > 64 ? 64 : len) : (len > 64 ? len - 64 : 0);
  return bits == 0 ? 0 : ~std::uint64_t(0) << (64 - bits);
}

void storeWord(IpGenAddr::Bytes& b, std::size_t i, std::uint64_t w) noexcept {
  if constexpr (std::endian::native == std::endian::little) w = __builtin_bswap64(w);
  std::memcpy(b.data() + 8 * i, &w, sizeof w);
}

}  // namespace

IpGenPrefix::IpGenPrefix(IpGenAddr const& addr, std::uint8_t len) noexcept : len_(len) {
  QUILL_ASSERT(len <= addr.af().bits(), "IpGenPrefix length is longer than its address");
  IpGenAddr::Bytes masked;
  storeWord(masked, 0, addr.word(0) & maskWord(len, 0));
  storeWord(masked, 1, addr.word(1) & maskWord(len, 1));
  addr_ = IpGenAddr::fromBytes(addr.af(), masked);
}

std::optional<IpGenPrefix> IpGenPrefix::fromAddrLen(IpGenAddr const& addr, unsigned len) noexcept {
  if (len > addr.af().bits()) return std::nullopt;
  return IpGenPrefix(addr, std::uint8_t(len));
}

bool IpGenPrefix::contains(IpGenAddr const& a) const noexcept {
  if (!af().isSet() || a.af() != af()) return false;
  return (a.word(0) & maskWord(len_, 0)) == addr_.word(0) && (a.word(1) & maskWord(len_, 1)) == addr_.word(1);
}

bool IpGenPrefix::contains(IpGenPrefix const& p) const noexcept { return p.len_ >= len_ && contains(p.addr_); }

std::string IpGenPrefix::toString() const {
  if (!af().isSet()) return {};
  return addr_.toString() + '/' + std::to_string(len_);
}

std::optional<IpGenPrefix> IpGenPrefix::fromString(std::string_view text) {
  if (text.empty()) return IpGenPrefix();
  std::size_t const slash = text.rfind('/');
  if (slash == std::string_view::npos) return std::nullopt;
  auto addr = IpGenAddr::fromString(text.substr(0, slash));
  auto len = Zel::ValueText::parseUnsigned<std::uint8_t>(text.substr(slash + 1));
  if (!addr || !len || !addr->af().isSet()) return std::nullopt;
  return fromAddrLen(*addr, *len);
}

std::optional<IpGenPrefix> IpGenPrefix::fromStrep(std::string_view text) {
  return Zel::ValueText::unquoteAs<IpGenPrefix>(text);
}

std::uint32_t IpGenPrefix::hash(std::uint32_t seed) const noexcept {
  // Family and length ride on the second word, spread by an odd multiplier so that no simple
  // pattern of addresses and lengths collides; two mixing steps instead of three.
  std::uint64_t const famLen = std::uint64_t(af().value()) << 8 | len_;
  return Zel::HashBuilder(seed).add(addr_.word(0)).add(addr_.word(1) + famLen * 0x9e3779b97f4a7c15ULL).value();
}

std::string valueToStrep(IpGenPrefix const& p) { return Zel::ValueText::quote(p.toString()); }

}  // namespace Ondex
