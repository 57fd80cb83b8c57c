#include "foundations/types/MplsLabel.h"

#include <type_traits>

#include "foundations/runtime/Hash.h"
#include "foundations/runtime/ValueText.h"

namespace Ondex {

// Held by the million in keys and vias: a plain value that stays this small.
static_assert(std::is_trivially_copyable_v<MplsLabel> && sizeof(MplsLabel) == 4);

std::string MplsLabel::toString() const { return isValid() ? std::to_string(value_) : "none"; }

std::optional<MplsLabel> MplsLabel::fromString(std::string_view text) {
  if (text == "none") return none();
  return fromStrep(text);
}

std::optional<MplsLabel> MplsLabel::fromStrep(std::string_view text) {
  auto n = Zel::ValueText::parseUnsigned<std::uint32_t>(text);
  if (!n) return std::nullopt;
  return MplsLabel(*n);
}

std::uint32_t MplsLabel::hash(std::uint32_t seed) const noexcept { return Zel::HashBuilder(seed).add(value_).value(); }

std::string valueToStrep(MplsLabel l) { return std::to_string(l.value()); }

}  // namespace Ondex
