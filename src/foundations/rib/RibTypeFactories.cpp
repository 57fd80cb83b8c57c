#include "foundations/rib/RibTypeFactories.h"

#include <utility>

#include "foundations/rib/EvpnViaConfig.h"
#include "foundations/rib/IpViaConfig.h"
#include "foundations/rib/LoopingRouteStatus.h"
#include "foundations/rib/NextHopDependencyGraph.h"
#include "foundations/rib/RouteConfig.h"
#include "foundations/rib/ViaMetricStatus.h"
#include "foundations/rib/ViaSetCollection.h"
#include "foundations/rib/ViaStatus.h"

namespace Routing::Rib {

namespace {
using Factory = Zel::EntityStore::TypeFactory;

std::vector<std::pair<std::string_view, Factory>> const& factories() {
  static std::vector<std::pair<std::string_view, Factory>> const all = {
      {"Routing::Rib::Ip::ViaConfig", [] { return Quill::Ptr<Zel::Entity>(Ip::ViaConfig::ViaConfigIs()); }},
      {"Routing::Rib::Evpn::ViaConfig", [] { return Quill::Ptr<Zel::Entity>(Evpn::ViaConfig::ViaConfigIs()); }},
      {"Routing::Rib::RouteConfig", [] { return Quill::Ptr<Zel::Entity>(RouteConfig::RouteConfigIs()); }},
      {"Routing::Rib::Skein::ViaSetCollection",
       [] { return Quill::Ptr<Zel::Entity>(Skein::ViaSetCollection::ViaSetCollectionIs()); }},
      {"Routing::Rib::Ip::GlobalNextHopDependencyGraph",
       [] { return Quill::Ptr<Zel::Entity>(Ip::GlobalNextHopDependencyGraph::GlobalNextHopDependencyGraphIs()); }},
      {"Routing::Rib::ViaMetricStatusByVrf",
       [] { return Quill::Ptr<Zel::Entity>(ViaMetricStatusByVrf::ViaMetricStatusByVrfIs()); }},
      {"Routing::Rib::ViaStatusByVrf", [] { return Quill::Ptr<Zel::Entity>(ViaStatusByVrf::ViaStatusByVrfIs()); }},
      {"Routing::Rib::LoopingRouteStatusByVrf",
       [] { return Quill::Ptr<Zel::Entity>(LoopingRouteStatusByVrf::LoopingRouteStatusByVrfIs()); }},
  };
  return all;
}
}  // namespace

std::vector<std::string_view> const& ribTypeNames() {
  static std::vector<std::string_view> const names = [] {
    std::vector<std::string_view> v;
    for (auto const& [name, factory] : factories()) v.push_back(name);
    return v;
  }();
  return names;
}

void ribTypeFactoriesIs(Zel::EntityStore& store) {
  for (auto const& [name, factory] : factories()) store.typeFactoryIs(name, factory);
}

}  // namespace Routing::Rib
