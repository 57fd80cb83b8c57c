#include "foundations/types/MplsLabel.h"

#include <type_traits>

namespace Ondex {

// Held by the million in keys and vias: a plain value that stays this small.
static_assert(std::is_trivially_copyable_v<MplsLabel> && sizeof(MplsLabel) == 4);

std::string MplsLabel::toString() const { return isValid() ? std::to_string(value_) : "none"; }

std::optional<MplsLabel> MplsLabel::fromString(std::string_view text) {
  if (text == "none") return none();
  return fromStrep(text);
}

}  // namespace Ondex
