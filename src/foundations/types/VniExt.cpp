#include "foundations/types/VniExt.h"

#include <type_traits>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/ValueText.h"

namespace Vxlan {

// Held by the million in keys and vias: a plain value that stays this small.
static_assert(std::is_trivially_copyable_v<VniExtOrNone> && sizeof(VniExtOrNone) == 4);

void VniExt::throwOutOfRange() { Zel::throwRangeException(Zel::rangeText("Vxlan::VniExt")); }

std::optional<VniExt> VniExt::fromString(std::string_view text) {
  auto n = Zel::ValueText::parseUnsigned<std::uint32_t>(text);
  if (!n || !inRange(*n)) return std::nullopt;
  return VniExt(*n);
}

std::string VniExtOrNone::toString() const { return isNone() ? "none" : std::to_string(value_); }

std::optional<VniExtOrNone> VniExtOrNone::fromString(std::string_view text) {
  if (text == "none") return none();
  return fromStrep(text);
}


}  // namespace Vxlan
