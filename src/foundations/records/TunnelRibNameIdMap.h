// The tunnel RIBs the switch knows, by name, with the id the RIB gives each. Written by the
// tunnel agent (the platform stand-in here); read where a configured resolution profile that
// names tunnel RIBs is turned into the profile a via carries.
#pragma once

#include <cstdint>

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace Tunnel::TunnelTable {

class TunnelRibNameIdMap : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<TunnelRibNameIdMap> TunnelRibNameIdMapIs() { return Zel::make<TunnelRibNameIdMap>(); }
  // 0 is no id.
  ZEL_MAP(Quill::String, std::uint32_t, tunnelRibNameToId, 130)

 protected:
  friend struct Zel::Factory;
  TunnelRibNameIdMap() = default;
};

}  // namespace Tunnel::TunnelTable
