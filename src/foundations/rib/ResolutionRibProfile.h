// The resolution profile a via carries: the configured profile with the id of each tunnel RIB it
// names filled in from the tunnel RIB map. A tunnel RIB the map does not know keeps id 0, which the
// RIB reads as a RIB that resolves nothing yet; the via is re-handled when the profile changes.
#pragma once

#include "foundations/records/TunnelRibNameIdMap.h"
#include "foundations/rib/ResolutionRibProfileConfig.h"

namespace Routing::Rib {

class ResolutionRibProfile : public ResolutionRibProfileConfig {
 public:
  ResolutionRibProfile() = default;
  explicit ResolutionRibProfile(ResolutionRibProfileConfig const& p) : ResolutionRibProfileConfig(p) {}

  [[nodiscard]] static ResolutionRibProfile fromConfig(
      ResolutionRibProfileConfig const& config,
      Quill::Ptr<Tunnel::TunnelTable::TunnelRibNameIdMap const> const& tunnelRibNameIdMap);
};

}  // namespace Routing::Rib
