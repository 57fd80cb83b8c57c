#include "foundations/types/EthAddr.h"

#include <type_traits>

#include <fmt/format.h>

#include "foundations/runtime/Hash.h"
#include "foundations/runtime/ValueText.h"

namespace Ondex {

// Held by the million in keys and vias: a plain value that stays this small.
static_assert(std::is_trivially_copyable_v<EthAddr> && sizeof(EthAddr) == 6);

namespace {

int hexDigit(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Reads six bytes in groups of `perGroup` bytes (two hex digits each), separated by `sep`.
std::optional<EthAddr> readGroups(std::string_view text, std::size_t perGroup, char sep) {
  std::size_t const groups = 6 / perGroup;
  if (text.size() != groups * perGroup * 2 + groups - 1) return std::nullopt;
  EthAddr::Bytes b{};
  std::size_t pos = 0;
  for (std::size_t g = 0; g < groups; ++g) {
    if (g > 0 && text[pos++] != sep) return std::nullopt;
    for (std::size_t k = 0; k < perGroup; ++k) {
      int const hi = hexDigit(text[pos++]);
      int const lo = hexDigit(text[pos++]);
      if (hi < 0 || lo < 0) return std::nullopt;
      b[g * perGroup + k] = std::uint8_t(hi << 4 | lo);
    }
  }
  return EthAddr(b);
}

}  // namespace

std::string EthAddr::toString() const {
  return fmt::format("{:02x}:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}", bytes_[0], bytes_[1], bytes_[2], bytes_[3],
                     bytes_[4], bytes_[5]);
}

std::optional<EthAddr> EthAddr::fromString(std::string_view text) {
  if (text.find(':') != std::string_view::npos) return readGroups(text, 1, ':');
  return readGroups(text, 2, '.');
}

std::optional<EthAddr> EthAddr::fromStrep(std::string_view text) { return Zel::ValueText::unquoteAs<EthAddr>(text); }

std::uint32_t EthAddr::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed).addBytes(bytes_.data(), bytes_.size()).value();
}

std::string valueToStrep(EthAddr const& e) { return Zel::ValueText::quote(e.toString()); }

}  // namespace Ondex
