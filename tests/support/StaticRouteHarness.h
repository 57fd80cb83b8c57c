// A RouteConfigSm with every input it reads, in-process: the VRF maps, interface tables, route
// lists, leaked routes and settings, and readers that show what it wrote into the status store and
// the via table as text. Tests build one, change inputs, run the scheduler and read.
#pragma once

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "foundations/records/AllVrfReadyStatus.h"
#include "foundations/records/IpIntfStatus.h"
#include "foundations/runtime/TaskScheduler.h"
#include "protocol/ProtocolIntfSm.h"
#include "routecache/RouteCacheRouteHelperSm.h"
#include "static/RouteConfigSm.h"

namespace BowlineTest {

inline Ondex::IpGenAddr addr(char const* text) { return *Ondex::IpGenAddr::fromString(text); }
inline Ondex::IpGenPrefix pfx(char const* text) { return *Ondex::IpGenPrefix::fromString(text); }
inline Routing::RouteKey routeKey(char const* prefix, unsigned pref = 1) {
  return Routing::RouteKey(pfx(prefix), Routing::RoutePreference(static_cast<std::uint8_t>(pref)));
}

class StaticRouteHarness {
 public:
  using RouteConfigSm = Routing::Static::RouteConfigSm;

  // A VRF of its own, or (with `shareWith`) one more VRF of the same switch: the VRF maps, interface
  // tables, status directory, via table and egress helper are then the other harness's.
  explicit StaticRouteHarness(Ondex::AddressFamily af = Ondex::AddressFamily::ipv4, char const* vrf = "default",
                              std::uint32_t vrfId = 0, StaticRouteHarness const* shareWith = nullptr)
      : vrfName(vrf), vrfId(vrfId), af(af) {
    using namespace Routing;
    if (shareWith) {
      nameMap = shareWith->nameMap;
      vrfNames = shareWith->vrfNames;
      statusDir = shareWith->statusDir;
      ipViaConfig = shareWith->ipViaConfig;
      ipStatus = shareWith->ipStatus;
      ip6Status = shareWith->ip6Status;
      egress = shareWith->egress;
    } else {
      nameMap = Vrf::VrfIdMap::NameToIdMap::NameToIdMapIs();
      vrfNames = Vrf::VrfIdMap::NameToIdMapWrapper::NameToIdMapWrapperIs();
      vrfNames->nameToIdMapIs(nameMap);
      statusDir = Protocol::RouteStatusDir::RouteStatusDirIs();
      ipViaConfig = Rib::Ip::ViaConfig::ViaConfigIs(Rib::RoutingProtocol::staticConfig(), Rib::Transport::fromAf(af));
      ipStatus = Ip::Status::StatusIs();
      ip6Status = Ip6::Status::StatusIs();
    }
    nameMap->vrfNameToIdIs(vrfName, vrfId);
    status = statusDir->statusIs(Protocol::RouteStatusKey{vrfId, af});
    intfTable = Ip::VrfIpIntfStatus::VrfIpIntfStatusIs();
    ipStatus->vrfIpIntfStatusIs(vrfName, intfTable);
    intfStatus = Protocol::Ipv4IntfStatus::Ipv4IntfStatusIs(intfTable);
    intfSm = Protocol::IntfSm::IntfSmIs(intfStatus);
    readyDir = Protocol::AllVrfReadyStatus::AllVrfReadyStatusIs();
    ready = readyDir->vrfReadyStatusIs(vrfName);
    leak = Protocol::LeakRouteConfig::LeakRouteConfigIs(Protocol::VrfIdAf(vrfId, af));
    mpls = Mpls::Config::ConfigIs();
    general = General::Config::ConfigIs();
    resRib = Static::ResRibProfileContainer::ResRibProfileContainerIs("default");
    if (!egress) egress = Static::AllEgressVrfIntfStatusHelperSm::AllEgressVrfIntfStatusHelperSmIs(ipStatus, ip6Status);
    config = RouteList::RouteListIs();
    dynamic = RouteList::RouteListIs();
  }

  ~StaticRouteHarness() { stop(); }

  // Builds the machine from the inputs as they stand now.
  void start(Halyard::TaskScheduler* scheduler, Routing::Rib::RoutingProtocol protocol =
                                                     Routing::Rib::RoutingProtocol::staticConfig()) {
    RouteConfigSm::Inputs in;
    in.containerKey = Routing::Protocol::ContainerKey(vrfName, af);
    in.vrfNameStatus = vrfNames;
    in.vrfId = vrfId;
    in.status = status;
    in.ipViaConfig = ipViaConfig;
    in.auxIpViaConfig = auxIpViaConfig;
    in.intfStatus = intfStatus;
    in.grState = grState;
    in.vrfReadyStatus = grState ? ready : nullptr;
    in.scheduler = scheduler;
    in.allEgressVrfIntfStatusHelperSm = egress;
    in.routingProtocol = protocol;
    in.leakConfig = leak;
    in.configTagStatus = configTagStatus;
    in.configTagIdState = configTagIdState;
    in.mplsConfig = mpls;
    in.routingGeneralConfig = general;
    in.resRibProfileContainer = resRib;
    in.srConfig = config;
    in.srConfigDynamic = dynamic;
    in.riConfigByUser = configByUser;
    in.srTaggedConfig = tagged;
    sm = RouteConfigSm::RouteConfigSmIs(in);
  }
  void stop() { sm = nullptr; }

  void intfIs(char const* name, bool up = true) {
    intfTable->ipIntfStatusIs(Ondex::IntfId(name))->dpRoutingEnabledIs(up);
  }
  void intfDel(char const* name) { intfTable->ipIntfStatusDel(Ondex::IntfId(name)); }

  // A route of the list with one via per (hop, intf) pair given; "" for none.
  Quill::Ptr<Routing::Route> routeIs(Routing::RouteList& list, char const* prefix, unsigned pref = 1,
                                     Routing::RouteType type = Routing::RouteType::forward) {
    return list.routeIs(routeKey(prefix, pref), type);
  }
  static Routing::Via via(char const* hop, char const* intf = "") {
    Routing::Via v(*hop ? addr(hop) : Ondex::IpGenAddr());
    if (*intf) v.intfIdIs(Ondex::IntfId(intf));
    return v;
  }

  // The preferences of a prefix in the status store; empty when the prefix is absent.
  [[nodiscard]] std::vector<unsigned> prefsOf(char const* prefix) const {
    std::vector<unsigned> out;
    auto route = status->route(pfx(prefix));
    if (!route) return out;
    for (auto it = route->routePrefIteratorConst(); it; it.advance()) out.push_back(it.key().value());
    return out;
  }
  // The vias of one preference as "type: content", sorted.
  [[nodiscard]] std::multiset<std::string> viasOf(char const* prefix, unsigned pref = 1) const {
    std::multiset<std::string> out;
    auto route = status->route(pfx(prefix));
    if (!route) return out;
    auto routePref = route->routePref(Routing::RoutePreference(static_cast<std::uint8_t>(pref)));
    if (!routePref) return out;
    for (auto type = routePref->dedupViaKeyByViaTypeIteratorConst(); type; type.advance()) {
      for (auto it = type.value()->dedupViaKeyIteratorConst(); it; it.advance()) {
        auto const* table = it.key().transport() == ipViaConfig->transport() ? ipViaConfig.get() : auxIpViaConfig.get();
        std::ostringstream os;
        os << unsigned(type.key().viaType()) << ": ";
        if (auto const* v = table ? table->viaFind(it.key()) : nullptr)
          os << v->content();
        else
          os << "missing " << it.key();
        if (it.key().vrfId() != vrfId) os << " vrf " << it.key().vrfId();
        out.insert(os.str());
      }
    }
    return out;
  }
  [[nodiscard]] Quill::Ptr<Routing::Protocol::RoutePref> routePref(char const* prefix, unsigned pref = 1) const {
    auto route = status->route(pfx(prefix));
    return route ? route->routePref(Routing::RoutePreference(static_cast<std::uint8_t>(pref))) : nullptr;
  }

  L3::VrfName vrfName;
  Vrf::VrfIdMap::VrfId vrfId;
  Ondex::AddressFamily af;
  Quill::Ptr<Vrf::VrfIdMap::NameToIdMap> nameMap;
  Quill::Ptr<Vrf::VrfIdMap::NameToIdMapWrapper> vrfNames;
  Quill::Ptr<Routing::Protocol::RouteStatusDir> statusDir;
  Quill::Ptr<Routing::Protocol::Status> status;
  Quill::Ptr<Routing::Rib::Ip::ViaConfig> ipViaConfig;
  Quill::Ptr<Routing::Rib::Ip::ViaConfig> auxIpViaConfig;
  Quill::Ptr<Ip::VrfIpIntfStatus> intfTable;
  Quill::Ptr<Ip::Status> ipStatus;
  Quill::Ptr<Ip6::Status> ip6Status;
  Quill::Ptr<Routing::Protocol::Ipv4IntfStatus> intfStatus;
  Quill::Ptr<Routing::Protocol::IntfSm> intfSm;
  Quill::Ptr<Routing::Protocol::AllVrfReadyStatus> readyDir;
  Quill::Ptr<Routing::Protocol::VrfReadyStatus> ready;
  Quill::Ptr<Routing::Protocol::GrState> grState;
  Quill::Ptr<Routing::Protocol::LeakRouteConfig> leak;
  Quill::Ptr<Mpls::Config> mpls;
  Quill::Ptr<Routing::General::Config> general;
  Quill::Ptr<Routing::Static::ResRibProfileContainer> resRib;
  Quill::Ptr<ConfigTag::ConfigTagStatus> configTagStatus;
  Quill::Ptr<ConfigTag::ConfigTagIdState> configTagIdState;
  Quill::Ptr<Routing::Static::AllEgressVrfIntfStatusHelperSm> egress;
  Quill::Ptr<Routing::RouteList> config;
  Quill::Ptr<Routing::RouteList> dynamic;
  Quill::Ptr<Routing::Input::ConfigByUser> configByUser;
  Quill::Ptr<Routing::VrfRouteListTaggedConfig> tagged;
  Quill::Ptr<RouteConfigSm> sm;
};

}  // namespace BowlineTest
