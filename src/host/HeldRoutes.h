// Host::HeldRoutes: the RIB's hold on the routes of a routing agent that restarts gracefully. When
// the agent stops, the RIB keeps what the agent had installed, per VRF and family, as stale; the
// switch goes on forwarding on them while the restarted agent waits for its verification and reviews
// its configuration. Once the agent declares a VRF's routes of a family ready, it has written all it
// means to keep, and the hold of that VRF and family is let go: what the agent did not write again is
// gone. Owned by the Switch; it reads nothing by itself: the switch gives it the routes at the stop,
// the readiness after each settle, and asks it to merge at each show.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "platform/RibReadout.h"

namespace Host {

class HeldRoutes {
 public:
  using Routes = std::vector<Platform::RibReadout::InstalledRoute>;

  // The agent stops gracefully: `routes` (as shown then, stale ones included) are held.
  void holdIs(std::string const& vrf, int family, Routes routes);
  // The agent has declared the VRF's routes of the family ready: the hold ends.
  void release(std::string const& vrf, int family);
  // The VRF is gone: so is whatever was held of it.
  void releaseVrf(std::string const& vrf);
  [[nodiscard]] bool holding(std::string const& vrf, int family) const;
  [[nodiscard]] bool empty() const noexcept { return held_.empty(); }
  // The routes the RIB forwards on: the live ones, and each held route whose prefix and protocol
  // the agent has not written again, marked stale; in the readout's order.
  [[nodiscard]] Routes merged(std::string const& vrf, int family, Routes live) const;

 private:
  std::map<std::pair<std::string, int>, Routes> held_;
};

}  // namespace Host
