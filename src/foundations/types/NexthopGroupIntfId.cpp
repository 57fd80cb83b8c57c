#include "foundations/types/NexthopGroupIntfId.h"

#include <string>

#include "foundations/runtime/ValueText.h"

namespace Ondex {

IntfId NexthopGroupIntfId::nexthopGroupIdToIntfId(std::int64_t id) {
  if (id < 0 || id > std::int64_t(UINT32_MAX)) return IntfId();
  std::string name(kNamePrefix);
  name += std::to_string(id);
  return IntfId(name);
}

std::optional<std::uint32_t> NexthopGroupIntfId::intfIdToNexthopGroupId(IntfId intfId) noexcept {
  std::string_view name = intfId.name();
  if (!name.starts_with(kNamePrefix)) return std::nullopt;
  name.remove_prefix(kNamePrefix.size());
  // Only the canonical decimal form maps back, so that the two directions are inverses.
  if (name.size() > 1 && name.front() == '0') return std::nullopt;
  return Zel::ValueText::parseUnsigned<std::uint32_t>(name);
}

}  // namespace Ondex
