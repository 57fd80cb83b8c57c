// The inter-VRF bookkeeping of one RouteConfigSm. Per egress VRF it indexes the routes that have a
// via leaving through that VRF: in the resolved index (with the VRF's id) while the VRF exists, in
// the unresolved one while it does not. While either index has an entry of a VRF, the owner is
// registered with the shared helper that watches that VRF's interface status, and is told when it
// changes. Owned and written by the RouteConfigSm; it watches nothing itself.
#pragma once

#include "foundations/records/Route.h"
#include "foundations/runtime/Ptr.h"
#include "foundations/types/AddressFamily.h"
#include "foundations/types/VrfName.h"
#include "static/AllEgressVrfIntfStatusHelperSm.h"
#include "static/InterVrfRouteConfig.h"

namespace Routing::Static {

class InterVrfRoutes {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;
  using Index = Quill::Ptr<InterVrfRouteByEgressVrf>;

  // helper may be null (no registration then); client, the machine of the VRF's routes of the
  // protocol, is told of the egress VRFs' changes.
  InterVrfRoutes(Quill::Ptr<AllEgressVrfIntfStatusHelperSm> helper, EgressVrfIntfStatusClient* client,
                 Ondex::AddressFamily af, L3::VrfName const& vrfName,
                 Rib::RoutingProtocol protocol = Rib::RoutingProtocol::staticConfig());

  // The route has a via through egressVrf, which exists with the id egressVrfId.
  void resolvedAdd(Route const& route, L3::VrfName const& egressVrf, VrfId egressVrfId);
  // The route has a via through egressVrf, which does not exist.
  void unresolvedAdd(Route const& route, L3::VrfName const& egressVrf);
  // The route out of one index's entry of the VRF; the entry goes with its last route, and the
  // registration with the last entry of the VRF in either index.
  void resolvedDel(RouteKey const& key, L3::VrfName const& egressVrf);
  void unresolvedDel(RouteKey const& key, L3::VrfName const& egressVrf);
  // The route out of the entries of every egress VRF its vias name.
  void routeDel(Route const& route);
  // The owner goes: its registrations go with it.
  void unregisterAll();

  [[nodiscard]] Index const& resolved() const noexcept { return resolved_; }
  [[nodiscard]] Index const& unresolved() const noexcept { return unresolved_; }
  // The keys indexed under the VRF, the resolved index's first.
  template <class Fn>
  void forEachKey(L3::VrfName const& egressVrf, Fn&& fn) const {
    for (Index const* index : {&resolved_, &unresolved_}) {
      auto entry = (*index)->interVrfRouteConfig(egressVrf);
      if (!entry || !entry->routeConfig()) continue;
      for (auto it = entry->routeConfig()->routeIteratorConst(); it; it.advance()) fn(it.key());
    }
  }

 private:
  void registerFor(L3::VrfName const& egressVrf);
  void del(InterVrfRouteByEgressVrf& index, InterVrfRouteByEgressVrf const& other, RouteKey const& key,
           L3::VrfName const& egressVrf);

  Quill::Ptr<AllEgressVrfIntfStatusHelperSm> helper_;
  EgressVrfIntfStatusClient* client_;
  Ondex::AddressFamily af_;
  L3::VrfName vrfName_;
  EgressVrfIntfStatusClient::Key clientKey_;
  Index resolved_;
  Index unresolved_;
};

}  // namespace Routing::Static
