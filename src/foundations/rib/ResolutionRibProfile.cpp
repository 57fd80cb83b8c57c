#include "foundations/rib/ResolutionRibProfile.h"

namespace Routing::Rib {

ResolutionRibProfile ResolutionRibProfile::fromConfig(
    ResolutionRibProfileConfig const& config,
    Quill::Ptr<Tunnel::TunnelTable::TunnelRibNameIdMap const> const& tunnelRibNameIdMap) {
  ResolutionRibProfile profile;
  for (ResolutionMethod method : config) {
    if (method.type() == ResolutionRibType::tunnelRib) {
      std::uint32_t id = 0;
      if (tunnelRibNameIdMap) id = tunnelRibNameIdMap->tunnelRibNameToId(method.tunnelRibName());
      method.tunnelRibIdIs(id);
    }
    profile.methodAppend(std::move(method));
  }
  return profile;
}

}  // namespace Routing::Rib
