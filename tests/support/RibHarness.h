// The RIB side of a switch, in-process: the route and via-set tables RouteStatusSms write, the via
// metric tables the RIB reports in, the dependency graph, the looping routes and the via metric
// machine that takes reports to the routes. Tests report via metrics and read the routes as text.
#pragma once

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "foundations/rib/IgpResultTable.h"
#include "foundations/rib/LoopingRouteStatus.h"
#include "foundations/rib/NextHopDependencyGraph.h"
#include "foundations/rib/RouteConfig.h"
#include "foundations/rib/ViaMetricStatus.h"
#include "foundations/rib/ViaSetConfig.h"
#include "foundations/runtime/TaskScheduler.h"
#include "protocol/ProtocolRouteStatusSm.h"
#include "protocol/ProtocolViaMetricStatusSm.h"

namespace BowlineTest {

class RibHarness {
 public:
  using RouteStatusSm = Routing::Protocol::RouteStatusSm;

  RibHarness()
      : ribConfig(Routing::Rib::RouteConfig::RouteConfigIs()),
        viaSetConfig(Routing::Rib::ViaSetConfig::ViaSetConfigIs(
            Routing::Rib::ViaSetConfigKey(Routing::Rib::RoutingProtocol::staticConfig()))),
        viaMetricStatusByVrf(Routing::Rib::ViaMetricStatusByVrf::ViaMetricStatusByVrfIs()),
        nhdGraph(Routing::Rib::Ip::GlobalNextHopDependencyGraph::GlobalNextHopDependencyGraphIs()),
        loopingByVrf(Routing::Rib::LoopingRouteStatusByVrf::LoopingRouteStatusByVrfIs()),
        igpResultTable(Routing::Bgp::IgpResultTable::IgpResultTableIs()) {}

  // A RouteStatusSm over one VRF's status store and via tables.
  Quill::Ptr<RouteStatusSm> routeStatusSmIs(L3::VrfName const& vrf, Ondex::AddressFamily af,
                                            Vrf::VrfIdMap::VrfId vrfId,
                                            Quill::Ptr<Routing::Protocol::Status> const& status,
                                            Quill::Ptr<Routing::Rib::Ip::ViaConfig const> const& ipViaConfig,
                                            Halyard::TaskScheduler* scheduler,
                                            Quill::Ptr<Routing::Protocol::VrfReadyStatus> ready = nullptr,
                                            Routing::Rib::RoutingProtocol protocol =
                                                Routing::Rib::RoutingProtocol::staticConfig()) {
    RouteStatusSm::Inputs in;
    in.vrfName = vrf;
    in.af = af;
    in.vrfId = vrfId;
    in.status = status;
    in.loopingRouteStatus = loopingByVrf->vrfStatusIs(vrf);
    in.nhdGraph = nhdGraph;
    in.ribConfig = ribConfig;
    in.viaSetConfig = viaSetConfig;
    in.routingProtocol = protocol;
    in.vrfReadyStatus = ready;
    in.bfdTrackedRoutesList = bfdTrackedRoutesList;
    in.ipViaConfig = ipViaConfig;
    in.viaMetricStatusByVrf = viaMetricStatusByVrf;
    in.routingGeneralConfig = general;
    in.igpResultTable = igpResultTable;
    in.scheduler = scheduler;
    return RouteStatusSm::RouteStatusSmIs(in);
  }

  // The via metric machine over the family's status stores: a report reaches the routes using the via.
  void viaMetricStatusSmIs(Quill::Ptr<Routing::Protocol::RouteStatusDir> const& dir) {
    vms = Routing::Protocol::ViaMetricStatusSm::ViaMetricStatusSmIs(viaMetricStatusByVrf, dir);
  }

  // The RIB's report on a via: resolved with a metric, or unresolved (preference 255).
  void report(Routing::Rib::ViaKey const& key, Routing::RouteMetric metric = 1, std::uint32_t preference = 1) {
    tableOf(key)->viaMetricIs(key, Routing::Rib::ViaMetric(key, metric, preference));
  }
  void reportUnresolved(Routing::Rib::ViaKey const& key) { report(key, 0, Routing::Rib::ViaMetric::kUnresolvedPreference); }
  // The RIB has a table for the via's VRF, transport and protocol, with nothing on this via.
  void forget(Routing::Rib::ViaKey const& key) { tableOf(key)->viaMetricDel(key); }
  Quill::Ptr<Routing::Rib::ViaMetricStatus> tableOf(Routing::Rib::ViaKey const& key) {
    return viaMetricStatusByVrf->vrfStatusIs(key.vrfId())
        ->transportStatusIs(key.transport())
        ->protocolStatusIs(key.routingProtocol());
  }

  // The route of a prefix as "pref P metric M vias [nextHops...]", or "" when absent.
  [[nodiscard]] std::string routeOf(Vrf::VrfIdMap::VrfId vrfId, char const* prefix,
                                    Routing::Rib::Ip::ViaConfig const& vias) const {
    Routing::Rib::RouteKey const key(vrfId, *Ondex::IpGenPrefix::fromString(prefix));
    if (!ribConfig->routeHas(key)) return "";
    auto const route = ribConfig->route(key);
    std::ostringstream os;
    os << "pref " << unsigned(route.metricPref().preference()) << " metric " << route.metricPref().metric();
    auto const set = viaSetConfig->configViaSetColl()->viaSet(route.viaSetKey());
    os << " vias [";
    char const* sep = "";
    for (auto const& viaKey : set) {
      os << sep << vias.via(viaKey).nextHop();
      sep = " ";
    }
    os << "]";
    if (set.flags()) os << " flags " << unsigned(set.flags());
    return os.str();
  }

  Quill::Ptr<Routing::Rib::RouteConfig> ribConfig;
  Quill::Ptr<Routing::Rib::ViaSetConfig> viaSetConfig;
  Quill::Ptr<Routing::Rib::ViaMetricStatusByVrf> viaMetricStatusByVrf;
  Quill::Ptr<Routing::Rib::Ip::GlobalNextHopDependencyGraph> nhdGraph;
  Quill::Ptr<Routing::Rib::LoopingRouteStatusByVrf> loopingByVrf;
  Quill::Ptr<Routing::Bgp::IgpResultTable> igpResultTable;
  Quill::Ptr<Routing::BfdTrackedStaticRoutesList> bfdTrackedRoutesList;
  Quill::Ptr<Routing::General::Config> general;
  Quill::Ptr<Routing::Protocol::ViaMetricStatusSm> vms;
};

}  // namespace BowlineTest
