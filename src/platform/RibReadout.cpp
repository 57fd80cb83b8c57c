#include "platform/RibReadout.h"

#include <algorithm>
#include <tuple>

namespace Platform {

RibReadout::InstalledVia RibReadout::viaOf(Routing::Rib::ViaKey const& key) const {
  InstalledVia out;
  auto const& vrfs = agent_->inputs().vrfAgent;
  if (vrfs) out.vrf = vrfs->vrfName(key.vrfId());
  if (key.transport() == Routing::Rib::Transport::transportEvpn()) {
    if (auto const* v = agent_->evpnVia(key)) {
      out.nextHop = v->vtepAddr();
      if (v->vni()) out.vni = v->vni().value();
    }
  } else if (auto const* v = agent_->ipVia(key)) {
    out.nextHop = v->nextHop();
    out.intf = v->intfId();
    out.weight = v->weight();
    if (v->hasLabel()) out.label = v->mplsLabel();
  }
  out.resolved = agent_->viaMetric(key).isResolved();
  return out;
}

void RibReadout::tagsOf(Routing::Rib::Route::Body const& body, InstalledRoute& route) const {
  if (body.routingProtocol != Routing::Rib::RoutingProtocol::staticConfig()) {
    route.tag = body.tagOrResultId;
    return;
  }
  // A static route names its redistribution result (tag and communities); 0 is none.
  if (body.tagOrResultId == 0 || !igpResults_ || !igpResults_->igpResultHas(body.tagOrResultId)) return;
  Routing::Bgp::IgpResult const result = igpResults_->igpResult(body.tagOrResultId);
  route.tag = result.tag();
  for (std::uint32_t i = 0; i < result.communityCount(); ++i)
    route.communities.push_back(result.community(Routing::IgpRedistribute::CommunityIndex(i)));
}

std::vector<RibReadout::InstalledRoute> RibReadout::routes(L3::VrfName const& vrf, Ondex::AddressFamily af) const {
  std::vector<InstalledRoute> out;
  auto const& vrfs = agent_->inputs().vrfAgent;
  if (!vrfs || !vrfs->vrfHas(vrf)) return out;
  auto const vrfId = vrfs->vrfId(vrf);
  for (auto const& table : agent_->inputs().routeTables) {
    if (table.af != af || !table.routeConfig) continue;
    auto const& coll = table.viaSetConfig ? table.viaSetConfig->configViaSetColl() : nullptr;
    for (auto it = table.routeConfig->routeIteratorAt(Routing::Rib::RouteKey::vrfStart(vrfId));
         it && it.key().vrfId() == vrfId; it.advance()) {
      if (it.key().prefix().af() != af) continue;
      Routing::Rib::Route::Body const& body = it.value();
      InstalledRoute r;
      r.prefix = it.key().prefix();
      r.protocol = body.routingProtocol;
      r.preference = body.metricPref.preference();
      r.metric = body.metricPref.metric();
      r.flags = body.flags;
      tagsOf(body, r);
      if (auto const* set = coll ? coll->viaSetColl().find(body.viaSetKey) : nullptr) {
        r.viaSetFlags = set->flags();
        r.fecType = set->fecType();
        for (auto const& key : *set) r.vias.push_back(viaOf(key));
      }
      std::sort(r.vias.begin(), r.vias.end(), [](InstalledVia const& a, InstalledVia const& b) {
        return std::tie(a.nextHop, a.intf, a.vrf, a.label, a.vni) < std::tie(b.nextHop, b.intf, b.vrf, b.label, b.vni);
      });
      out.push_back(std::move(r));
    }
  }
  std::stable_sort(out.begin(), out.end(), [](InstalledRoute const& a, InstalledRoute const& b) {
    return std::tie(a.prefix, a.protocol) < std::tie(b.prefix, b.protocol);
  });
  return out;
}

}  // namespace Platform
