#include "input/RouteInputContainerSm.h"

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("RouteInput::ContainerSm");

#define IC_TRACE(level, expr) TRACE(level, "Vrf: " << vrfName_ << ", " << expr)

namespace Routing::Input {

RouteInputContainerSm::RouteInputContainerSm(Inputs const& inputs)
    : vrfName_(inputs.containerKey.vrfName()), inputs_(inputs) {
  configDirIs(inputs.configDir);
  configTagDirIs(inputs.configTagDir);
  handleInitialized();
}

Quill::Ptr<Vrf::VrfIdMap::NameToIdMap const> RouteInputContainerSm::vrfNameToIdMap() const {
  auto const& wrapper = inputs_.vrfNameStatus;
  return wrapper ? Quill::Ptr<Vrf::VrfIdMap::NameToIdMap const>(wrapper->nameToIdMap()) : nullptr;
}

void RouteInputContainerSm::handleInitialized() {
  Ondex::AddressFamily const af = inputs_.containerKey.af();
  IC_TRACE(8, "ContainerSm::handleInitialized() vrf=" << vrfName_ << " af=" << af);
  initializedIs(true);
  auto const names = vrfNameToIdMap();
  Vrf::VrfIdMap::VrfId const vrfId = names ? names->vrfIdOf(vrfName_) : Vrf::VrfIdMap::VrfId::none();
  bool const staticMode = inputs_.routingProtocol == Rib::RoutingProtocol::staticConfig();
  if (staticMode) {
    leakRouteConfigIs(Protocol::LeakRouteConfig::LeakRouteConfigIs(Protocol::VrfIdAf(vrfId, af)));
  } else {
    QUILL_ASSERT(inputs_.routingProtocol == Rib::RoutingProtocol::routeInput(),
                 "routingProtocol() == Rib::routeInput()");
    configByUserIs(ConfigByUser::ConfigByUserIs());
    configTaggedByUserIs(ConfigTaggedByUser::ConfigTaggedByUserIs());
    martianRouteConfigIs(RouteInput::RouteInputIs(kMartianUser));
    martianRouteConfig()->routingProtoIs(60);
    // The martian routes travel as one more user's input.
    configByUser()->configIs(martianRouteConfig());
    martianRouteSmIs(Martian::MartianRouteSm::MartianRouteSmIs(af, vrfName_, martianRouteConfig()));
    handleConfigDir();
    handleConfigTagDir();
  }

  // The input records exist before the protocol container, whose status store exists before the
  // RouteConfigSm that fills it.
  Protocol::ProtocolContainerSm::Inputs core = inputs_;
  core.vrfId = vrfId;
  core.ribString = "rib";
  protocolContainerSmIs(Protocol::ProtocolContainerSm::ProtocolContainerSmIs(core));

  Static::RouteConfigSm::Inputs rc;
  {
    auto& to = rc;
    auto const& from = inputs_;
    ROUTE_CONFIG_SM_INPUTS(ZEL_INPUTS_COPY)
  }
  rc.vrfId = vrfId;
  rc.status = protocolContainerSm()->status();
  rc.leakConfig = leakRouteConfig();
  // The general settings are the static routes' (global preference, ECMP grouping).
  rc.routingGeneralConfig = staticMode ? inputs_.routingGeneralConfig : nullptr;
  rc.riConfigByUser = configByUser();
  rc.riConfigTaggedByUser = configTaggedByUser();
  routeConfigSmIs(Static::RouteConfigSm::RouteConfigSmIs(rc));
}

void RouteInputContainerSm::handleConfigDir() {
  IC_TRACE(8, "handleConfigDir()");
  if (!initialized() || !configDir()) return;
  for (auto it = configDir()->entryStateIteratorConst(); it; it.advance()) handleConfigDir(it.key());
}

namespace {

// One entry of an agents' directory into the users' collection: an entity of the expected type is
// added under the entry's name; anything else (or nothing) removes the name.
template <class Entry, class Users>
void dirEntryToUsers(Zel::Dir const* dir, Users& users, Quill::String const& name, L3::VrfName const& vrfName,
                     char const* function, char const* adding, char const* deleting) {
  auto entry = dir ? dir->entityPtr<Entry>(name) : nullptr;
  if (entry) {
    TRACE(2, "Vrf: " << vrfName << ", " << function << "(" << name << adding);
    users.configIs(name, entry);
  } else {
    TRACE(2, "Vrf: " << vrfName << ", " << function << "(" << name << deleting);
    users.configDel(name);
  }
}

}  // namespace

void RouteInputContainerSm::handleConfigDir(Quill::String const& name) {
  IC_TRACE(8, "handleConfigDir(" << name << "), Initialized: " << initialized());
  if (!initialized() || !configByUser()) return;
  if (name.view() == kMartianUser) {
    // The name of the container's own list: an agent's entry of that name would replace it.
    IC_TRACE(0, "handleConfigDir(" << name << "), ignored: the martian routes' own list");
    return;
  }
  dirEntryToUsers<RouteInput>(configDir().get(), *configByUser(), name, vrfName_, "handleConfigDir", "), Adding config",
                              "), Deleting config");
}

void RouteInputContainerSm::handleConfigTagDir() {
  IC_TRACE(8, "handleConfigTagDir()");
  if (!initialized() || !configTagDir()) return;
  for (auto it = configTagDir()->entryStateIteratorConst(); it; it.advance()) handleConfigTagDir(it.key());
}

void RouteInputContainerSm::handleConfigTagDir(Quill::String const& name) {
  IC_TRACE(8, "handleConfigTagDir(" << name << "), Initialized: " << (initialized() ? "True" : "False"));
  if (!initialized() || !configTaggedByUser()) return;
  dirEntryToUsers<RouteListTaggedConfig>(configTagDir().get(), *configTaggedByUser(), name, vrfName_,
                                         "handleConfigTagDir", "), Adding tagged config", "), Deleting tagged config");
}

}  // namespace Routing::Input
