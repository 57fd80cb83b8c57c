// Routing::Rib::ViaKey: the identity of one via in one VRF (id, vrfId, routing protocol,
// transport). The default key, with no VRF (0xffffff), is the empty key: no via wherever a via key
// is optional. A plain value; it owns nothing.
#pragma once

#include <string_view>

#include <fmt/ostream.h>

#include "foundations/rib/TableKey.h"

namespace Routing::Rib {

class ViaKey : public TableKey<ViaKey> {
 public:
  static constexpr std::string_view kTypeName = "Routing::Rib::ViaKey";
  static constexpr std::uint32_t kDefaultVrfId = Vrf::VrfIdMap::VrfId::kNone;

  using TableKey::TableKey;
};

}  // namespace Routing::Rib

template <>
struct fmt::formatter<Routing::Rib::ViaKey> : fmt::ostream_formatter {};
