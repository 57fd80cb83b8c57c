// Ondex::NexthopGroupIntfId: the interface that stands for a next-hop group in a via, named
// "NexthopGroup" followed by the group's id in decimal ("NexthopGroup7"), and its inverse.
// Stateless; the names go through the IntfId table like any other.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "foundations/types/IntfId.h"

namespace Ondex {

class NexthopGroupIntfId {
 public:
  static constexpr std::string_view kNamePrefix = "NexthopGroup";

  // The group's interface. An id outside 0..0xffffffff (the lookup's -1 for an unknown group) gives
  // the empty interface, which no group's via carries.
  [[nodiscard]] static IntfId nexthopGroupIdToIntfId(std::int64_t id);
  // The group id of an interface made by nexthopGroupIdToIntfId; nothing for any other interface.
  [[nodiscard]] static std::optional<std::uint32_t> intfIdToNexthopGroupId(IntfId intfId) noexcept;
  [[nodiscard]] static bool isNexthopGroupIntfId(IntfId intfId) noexcept {
    return intfIdToNexthopGroupId(intfId).has_value();
  }
};

}  // namespace Ondex
