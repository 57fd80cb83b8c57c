// ViaMetricStatusSm ties the RIB's via metric reports to the routes that use the vias. It watches
// the RIB's via metric tree (VRF -> transport -> protocol -> table of via metrics) and the route
// status store of one address family (Status -> Route -> RoutePref -> via type), each mirrored by
// one nested machine per element. From the store it keeps routeByViaKey, a reverse index from each
// via key to the route preferences of any VRF that use it; a report on a via bumps
// routeChangedVersion of every route in the via's entry, which sends the route back to review. A
// via newly entered for a route preference bumps the route too, so that its first review happens
// even when the RIB has already spoken. routeChangedVersion is all it writes into the store, so it
// holds the store's writable handle. One per address family and RIB, owned by the protocol root.
//
// Iteration: routeByViaKey, each entry's route set and every nested machine map are
// Zel::HashMap2018 with that map's contract (erasing during a walk is safe, resuming from a key
// visits exactly the keys after it).
#pragma once

#include "foundations/rib/ViaMetricStatus.h"
#include "foundations/runtime/StateMachine.h"
#include "protocol/ProtocolRouteStatus.h"

namespace Routing::Protocol {

class ViaMetricStatusSm : public Zel::StateMachine<ViaMetricStatusSm> {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  [[nodiscard]] static Quill::Ptr<ViaMetricStatusSm> ViaMetricStatusSmIs(
      Quill::Ptr<Rib::ViaMetricStatusByVrf const> viaMetricStatusByVrf, Quill::Ptr<RouteStatusDir> routeStatusDir) {
    return Zel::make<ViaMetricStatusSm>(std::move(viaMetricStatusByVrf), std::move(routeStatusDir));
  }

  // ---- The RIB's via metric tree, one machine per level. Levels reconcile their children on
  // every change of their collection; a level pointed at another element reconciles all of them.
  class NestedSm_VmsByProto;

  // One table of via metrics: each added, changed or removed via is reported to the root.
  class NestedSm_Vms : public Zel::NestedSm<NestedSm_VmsByProto, Rib::RoutingProtocol, Rib::ViaMetricStatus> {
   public:
    NestedSm_Vms(NestedSm_VmsByProto* owner, Rib::RoutingProtocol const& protocol,
                 Quill::Ptr<Rib::ViaMetricStatus const> const& table);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void notifierIs(Quill::Ptr<Rib::ViaMetricStatus const> table) override;
    // Every via of the table, as on construction.
    void handleViaMetric();
    void handleViaMetric(Rib::ViaKey const& viaKey);
  };

  class NestedSm_VmsByTransport;

  class NestedSm_VmsByProto
      : public Zel::NestedSm<NestedSm_VmsByTransport, Rib::Transport, Rib::ViaMetricStatusByProtocol> {
   public:
    using ZelSelf = NestedSm_VmsByProto;
    NestedSm_VmsByProto(NestedSm_VmsByTransport* owner, Rib::Transport const& transport,
                        Quill::Ptr<Rib::ViaMetricStatusByProtocol const> const& byProtocol);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void notifierIs(Quill::Ptr<Rib::ViaMetricStatusByProtocol const> byProtocol) override;
    ZEL_NESTED(Rib::RoutingProtocol, NestedSm_Vms, vms)
    using Reconciler = Zel::Reconcile<Rib::ViaMetricStatusByProtocol::protocolStatusId, &NestedSm_VmsByProto::vms_>;
  };

  class NestedSm_VmsByTransport : public Zel::NestedSm<ViaMetricStatusSm, VrfId, Rib::ViaMetricStatusByTransport> {
   public:
    using ZelSelf = NestedSm_VmsByTransport;
    NestedSm_VmsByTransport(ViaMetricStatusSm* owner, VrfId const& vrfId,
                            Quill::Ptr<Rib::ViaMetricStatusByTransport const> const& byTransport);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void notifierIs(Quill::Ptr<Rib::ViaMetricStatusByTransport const> byTransport) override;
    ZEL_NESTED(Rib::Transport, NestedSm_VmsByProto, vmsByProto)
    using Reconciler =
        Zel::Reconcile<Rib::ViaMetricStatusByTransport::transportStatusId, &NestedSm_VmsByTransport::vmsByProto_>;
  };

  // ---- The route status store, one machine per record. Removing a machine first takes the
  // record's vias out of the index (handleDel), so the index never names a route that is gone.
  class NestedSm_RoutePref;
  class NestedSm_Route;
  class NestedSm_RouteStatus;

  // One via type of a preference: each via that comes or goes is reviewed by the preference.
  class NestedSm_DedupViaKeyByViaType : public Zel::NestedSm<NestedSm_RoutePref, ViaType, DedupViaKeyByViaType> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };

  class NestedSm_RoutePref : public Zel::NestedSm<NestedSm_Route, RoutePreference, RoutePref> {
   public:
    using ZelSelf = NestedSm_RoutePref;
    NestedSm_RoutePref(NestedSm_Route* owner, RoutePreference const& pref, Quill::Ptr<RoutePref const> const& routePref);
    void onAttribute(Zel::AttrId id, void const* key) override;
    // Enters the via in the index if a type of the preference still holds it, removes it if not.
    void handleViaKey(Rib::ViaKey const& viaKey);
    void dedupViaKeyByViaTypeIs(ViaType viaType);
    // A type removed with vias still in it: each of them is reviewed against the types left.
    void dedupViaKeyByViaTypeDel(ViaType viaType);
    void handleDel();
    ZEL_NESTED(ViaType, NestedSm_DedupViaKeyByViaType, dedupViaKeyByViaType)
  };

  class NestedSm_Route : public Zel::NestedSm<NestedSm_RouteStatus, Ondex::IpGenPrefix, Route> {
   public:
    using ZelSelf = NestedSm_Route;
    NestedSm_Route(NestedSm_RouteStatus* owner, Ondex::IpGenPrefix const& prefix, Quill::Ptr<Route const> const& route);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void routePrefIs(RoutePreference pref);
    void routePrefDel(RoutePreference pref);
    void handleDel();
    ZEL_NESTED(RoutePreference, NestedSm_RoutePref, routePref)
  };

  class NestedSm_RouteStatus : public Zel::NestedSm<ViaMetricStatusSm, RouteStatusKey, Status> {
   public:
    using ZelSelf = NestedSm_RouteStatus;
    NestedSm_RouteStatus(ViaMetricStatusSm* owner, RouteStatusKey const& key, Quill::Ptr<Status const> const& status);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void routeIs(Ondex::IpGenPrefix const& prefix);
    void routeDel(Ondex::IpGenPrefix const& prefix);
    void handleDel();
    ZEL_NESTED(Ondex::IpGenPrefix, NestedSm_Route, route)
  };

  // ---- Reactors and procedures.
  // Indexes every Status already in the store; runs once, at the end of construction.
  void handleInitialized();
  // The forward path: bumps routeChangedVersion of every route that uses the via.
  void handleViaMetric(VrfId vrfId, Rib::Transport transport, Rib::RoutingProtocol protocol,
                       Rib::ViaKey const& viaKey);
  // Keeps the index entry of one via of one route preference: entered (`del` false and the via
  // known to be there, or found under one of the preference's types) or removed (otherwise). A
  // route preference newly entered for a via bumps the route.
  void handleRouteViaKey(Status const* status, Route const* route, RoutePref const* routePref,
                         Rib::ViaKey const& viaKey, bool del, bool viaKnown);
  // Enters (forceDel false) or removes every via of every route of one Status.
  void handleRouteStatus(RouteStatusKey const& key, bool forceDel);
  void handleRouteVias(Status const& status, Route const& route, bool del);
  void handleRoutePrefVias(Status const& status, Route const& route, RoutePref const& routePref, bool del);
  void handleStatus(RouteStatusKey const& key);
  void routeStatusIs(RouteStatusKey const& key);
  void routeStatusDel(RouteStatusKey const& key);

  // ---- Nested machines; declared before the inputs whose reactors reconcile them.
  ZEL_NESTED(VrfId, NestedSm_VmsByTransport, vmsByTransport)
  ZEL_NESTED(RouteStatusKey, NestedSm_RouteStatus, routeStatus)

  // ---- Inputs.
  using ViaMetricReactors =
      Zel::Reactors<Zel::Reconcile<Rib::ViaMetricStatusByVrf::vrfStatusId, &ViaMetricStatusSm::vmsByTransport_>>;
  ZEL_INPUT(Rib::ViaMetricStatusByVrf, viaMetricStatusByVrf, ViaMetricReactors)
  // The store is set once, at construction: watched as an input, written (routeChangedVersion
  // only) through this handle.
  ZEL_CONST(Quill::Ptr<RouteStatusDir>, routeStatusDir)

  // ---- State.
  // The route preferences that use each via, across all VRFs; changed without notification of
  // the entries' sets.
  ZEL_MAP(Rib::ViaKey, Quill::Ptr<RouteByViaKey>, routeByViaKey, 130)
  ZEL_ATTR(bool, initialized, 131)
  // Find or create the index entry of a via.
  Quill::Ptr<RouteByViaKey> routeByViaKeyIs(Rib::ViaKey const& viaKey);

 protected:
  friend struct Zel::Factory;
  ViaMetricStatusSm(Quill::Ptr<Rib::ViaMetricStatusByVrf const> viaMetricStatusByVrf,
                    Quill::Ptr<RouteStatusDir> routeStatusDir);

 private:
  using StatusReactors = Zel::Reactors<Zel::On<RouteStatusDir::statusId, &ViaMetricStatusSm::handleStatus>>;
  Zel::Input<ViaMetricStatusSm, RouteStatusDir, StatusReactors> routeStatusDirInput_{this};
};

}  // namespace Routing::Protocol
