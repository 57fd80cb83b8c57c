// The assembly of one VRF and address family of a routing protocol: it creates the input records
// (leaked routes in static mode; in route-input mode the users' lists, collected from the agents'
// directories, with the martian list as one more user), then the protocol core (status store,
// review into the RIB) and the RouteConfigSm that fills it, in that order. Owned by the hosting
// agent, one per VRF, family and protocol. It watches the agents' directories (route-input mode)
// and writes the users' collections from them.
#pragma once

#include "foundations/records/BfdTrackedStaticRoutes.h"
#include "foundations/records/RouteInput.h"
#include "foundations/runtime/Dir.h"
#include "foundations/runtime/StateMachine.h"
#include "input/MartianRouteSm.h"
#include "foundations/records/RouteInputByUser.h"
#include "leak/ProtocolRouteLeak.h"
#include "protocol/ProtocolContainerSm.h"
#include "routecache/RouteCacheRouteHelperSm.h"
#include "static/RouteConfigSm.h"

namespace Routing::Input {

class RouteInputContainerSm : public Zel::StateMachine<RouteInputContainerSm> {
 public:
  // The constructor's arguments: those the protocol core takes (its vrfId and ribString are set
  // here, from the VRF map and "rib"; routeStatusDir is the family's directory of status stores,
  // which the via metric machine watches, and null gives the container its own), then the inputs
  // of the route config machine that the caller gives (the CALLER entries of its list), then the
  // agents' directories of the route-input mode.
  struct Inputs : Protocol::ProtocolContainerSm::Inputs {
    ROUTE_CONFIG_SM_INPUTS(ZEL_INPUTS_CALLER_FIELD)
    Quill::Ptr<Zel::Dir const> configDir;
    Quill::Ptr<Zel::Dir const> configTagDir;
  };
  [[nodiscard]] static Quill::Ptr<RouteInputContainerSm> RouteInputContainerSmIs(Inputs const& inputs) {
    return Zel::make<RouteInputContainerSm>(inputs);
  }

  void handleInitialized();
  void handleConfigDir();
  void handleConfigDir(Quill::String const& name);
  void handleConfigTagDir();
  void handleConfigTagDir(Quill::String const& name);

  [[nodiscard]] Inputs const& inputs() const noexcept { return inputs_; }
  [[nodiscard]] Protocol::ContainerKey const& containerKey() const noexcept { return inputs_.containerKey; }
  ZEL_CONST(L3::VrfName, vrfName)
  [[nodiscard]] Quill::Ptr<Vrf::VrfIdMap::NameToIdMap const> vrfNameToIdMap() const;

  using ConfigDirReactors =
      Zel::Reactors<Zel::On<Zel::Dir::entryStateId, static_cast<void (RouteInputContainerSm::*)(Quill::String const&)>(
                                                        &RouteInputContainerSm::handleConfigDir)>>;
  ZEL_INPUT(Zel::Dir, configDir, ConfigDirReactors)
  using ConfigTagDirReactors =
      Zel::Reactors<Zel::On<Zel::Dir::entryStateId, static_cast<void (RouteInputContainerSm::*)(Quill::String const&)>(
                                                        &RouteInputContainerSm::handleConfigTagDir)>>;
  ZEL_INPUT(Zel::Dir, configTagDir, ConfigTagDirReactors)

  // Own records and children, in the order they are made.
  ZEL_ATTR(Quill::Ptr<Protocol::LeakRouteConfig>, leakRouteConfig, 130)
  ZEL_ATTR(Quill::Ptr<RouteInput>, martianRouteConfig, 131)
  ZEL_ATTR(Quill::Ptr<Martian::MartianRouteSm>, martianRouteSm, 132)
  ZEL_ATTR(Quill::Ptr<ConfigByUser>, configByUser, 133)
  ZEL_ATTR(Quill::Ptr<ConfigTaggedByUser>, configTaggedByUser, 134)
  ZEL_ATTR(Quill::Ptr<Protocol::ProtocolContainerSm>, protocolContainerSm, 135)
  ZEL_ATTR(Quill::Ptr<Static::RouteConfigSm>, routeConfigSm, 136)
  ZEL_ATTR(bool, initialized, 137)

 protected:
  friend struct Zel::Factory;
  explicit RouteInputContainerSm(Inputs const& inputs);

 private:
  Inputs inputs_;
};

}  // namespace Routing::Input
