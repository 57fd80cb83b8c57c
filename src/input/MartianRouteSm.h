// Fills the "martian" route-input list of one VRF and address family with the prefixes that must
// never be forwarded, once at start, and removes whatever an older run left there. It writes the
// list and has no reactors. Owned by the route input container of a VRF in the route-input mode.
#pragma once

#include <string_view>

#include "foundations/records/RouteKey.h"
#include "foundations/records/RouteList.h"
#include "foundations/records/RouteType.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/types/AddressFamily.h"
#include "foundations/types/VrfName.h"

namespace Routing::Martian {

class MartianRouteSm : public Zel::StateMachine<MartianRouteSm> {
 public:
  [[nodiscard]] static Quill::Ptr<MartianRouteSm> MartianRouteSmIs(Ondex::AddressFamily af, L3::VrfName const& vrfName,
                                                                   Quill::Ptr<RouteList> config) {
    return Zel::make<MartianRouteSm>(af, vrfName, std::move(config));
  }

  void handleInitialized();
  void doAddMartianRoute(Ondex::IpGenPrefix const& prefix, RouteType routeType);
  void doAddIpv4MartianRoutes();
  void doAddIpv6MartianRoutes();
  void doCleanupIpv4Config();
  void doCleanupIpv6Config();

  ZEL_CONST(Ondex::AddressFamily, af)
  ZEL_CONST(L3::VrfName, vrfName)
  ZEL_CONST(Quill::Ptr<RouteList>, config)
  static constexpr RoutePreference preference{1};
  static constexpr std::string_view doNotInstallMartianEnvVar = "DO_NOT_INSTALL_MARTIAN";
  ZEL_ATTR(bool, initialized, 130)

 protected:
  friend struct Zel::Factory;
  MartianRouteSm(Ondex::AddressFamily af, L3::VrfName const& vrfName, Quill::Ptr<RouteList> config);
};

// The same as MartianRouteSm::MartianRouteSmIs.
[[nodiscard]] Quill::Ptr<MartianRouteSm> martianRouteSmFactory(Ondex::AddressFamily af, L3::VrfName const& vrfName,
                                                               Quill::Ptr<RouteList> config);

}  // namespace Routing::Martian
