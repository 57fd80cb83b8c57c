// Routing::Rib::ViaSetKey: the identity of one via set, of the same four parts as a via key. The
// default key is all zero: the key of a via set under construction, before the via-set table has
// deduplicated it. A plain value; it owns nothing.
#pragma once

#include <string_view>

#include <fmt/ostream.h>

#include "foundations/rib/TableKey.h"
#include "foundations/rib/ViaKey.h"

namespace Routing::Rib {

class ViaSetKey : public TableKey<ViaSetKey> {
 public:
  static constexpr std::string_view kTypeName = "Routing::Rib::ViaSetKey";
  static constexpr std::uint32_t kDefaultVrfId = 0;

  using TableKey::TableKey;

  // The route cache names one via where a route names its via set: the same four parts.
  [[nodiscard]] static constexpr ViaSetKey fromViaKey(ViaKey const& k) noexcept {
    return ViaSetKey(k.id(), k.vrfId(), k.routingProtocol(), k.transport());
  }
  [[nodiscard]] constexpr ViaKey toViaKey() const noexcept {
    return ViaKey(id(), vrfId(), routingProtocol(), transport());
  }
};

}  // namespace Routing::Rib

template <>
struct fmt::formatter<Routing::Rib::ViaSetKey> : fmt::ostream_formatter {};
