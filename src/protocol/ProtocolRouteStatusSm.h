// RouteStatusSm reviews the status store of one VRF, address family and RIB, and for every prefix
// installs the best preference with the usable vias of its most preferred via type and lowest
// metric: a via set into ViaSetConfig and a route into RouteConfig, or the withdrawal of the route.
// It also writes the BFD-tracked next hops of its routes. Owned by the protocol container.
//
// A change of one prefix's records queues the prefix ("routeBacklogTask"); a global change reviews
// every prefix in time slices of reviewQuantum ("reviewAllRoutesTask") from a bookmark.
#pragma once

#include <cstdint>

#include "foundations/records/BfdTrackedStaticRoutes.h"
#include "foundations/records/GeneralConfig.h"
#include "foundations/records/VrfReadyStatus.h"
#include "foundations/rib/IgpResultTable.h"
#include "foundations/rib/IpViaConfig.h"
#include "foundations/rib/LoopingRouteStatus.h"
#include "foundations/rib/NextHopDependencyGraph.h"
#include "foundations/rib/RouteConfig.h"
#include "foundations/rib/ViaMetricStatus.h"
#include "foundations/rib/ViaSet.h"
#include "foundations/rib/ViaSetConfig.h"
#include "foundations/rib/ViaStatus.h"
#include "foundations/runtime/Backlog.h"
#include "foundations/runtime/HashMap2018.h"
#include "foundations/runtime/MachineInputs.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/TaskMember.h"
#include "protocol/ProtocolRouteStatus.h"

namespace Routing::Protocol {

// The inputs of RouteStatusSm, in the order the constructor takes them (see MachineInputs.h);
// vrfReadyStatus, bfdTrackedRoutesList and routingGeneralConfig may be null. The protocol container
// makes the VRF name, the family and the status store.
#define ROUTE_STATUS_SM_INPUTS(X)                                                                 \
  X(CONST, OWN, L3::VrfName, vrfName)                                                             \
  X(CONST, OWN, Ondex::AddressFamily, af)                                                         \
  X(CONST, CORE, Vrf::VrfIdMap::VrfId, vrfId)                                                     \
  X(ARG, OWN, Quill::Ptr<Status>, status)                                                         \
  X(INPUT, CORE, Rib::LoopingRouteStatus, loopingRouteStatus, LoopingReactors)                    \
  X(INPUT, CORE, Rib::Ip::GlobalNextHopDependencyGraph, nhdGraph, GraphReactors)                  \
  X(CONST, CORE, Quill::Ptr<Rib::RouteConfig>, ribConfig)                                         \
  X(CONST, CORE, Quill::Ptr<Rib::ViaSetConfig>, viaSetConfig)                                     \
  X(CONST, CORE, Rib::RoutingProtocol, routingProtocol)                                           \
  X(CONST, CORE, Quill::Ptr<VrfReadyStatus>, vrfReadyStatus)                                      \
  X(ARG, CORE, Quill::Ptr<BfdTrackedStaticRoutesList>, bfdTrackedRoutesList)                      \
  X(CONST, CORE, Quill::Ptr<Rib::Ip::ViaConfig const>, ipViaConfig)                               \
  X(CONST, CORE, Quill::Ptr<Rib::Ip::ViaConfig const>, auxIpViaConfig)                            \
  X(CONST, CORE, Quill::Ptr<Rib::ViaMetricStatusByVrf const>, viaMetricStatusByVrf)               \
  X(CONST, CORE, Quill::String, ribString, "rib")                                                 \
  X(CONST, CORE, Quill::Ptr<Rib::ViaStatusByVrf const>, viaStatusByVrf)                           \
  X(INPUT, CORE, General::Config, routingGeneralConfig, GeneralReactors)                          \
  X(CONST, CORE, Quill::Ptr<Bgp::IgpResultTable>, igpResultTable)                                 \
  X(ARG, CORE, Halyard::TaskScheduler*, scheduler, nullptr)

class RouteStatusSm : public Zel::StateMachine<RouteStatusSm> {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;
  using Prefix = Ondex::IpGenPrefix;

  // The constructor's arguments (ROUTE_STATUS_SM_INPUTS).
  struct Inputs {
    ROUTE_STATUS_SM_INPUTS(ZEL_INPUTS_FIELD)
  };
  [[nodiscard]] static Quill::Ptr<RouteStatusSm> RouteStatusSmIs(Inputs const& inputs) {
    return Zel::make<RouteStatusSm>(inputs);
  }

  // ---- Nested machines: the status store, level by level.
  class NestedSm_RoutePref;

  class NestedSm_DedupViaKeyByViaType : public Zel::NestedSm<NestedSm_RoutePref, ViaType, DedupViaKeyByViaType> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };

  class NestedSm_Route;

  class NestedSm_RoutePref : public Zel::NestedSm<NestedSm_Route, RoutePreference, RoutePref> {
   public:
    using ZelSelf = NestedSm_RoutePref;
    NestedSm_RoutePref(NestedSm_Route* owner, RoutePreference const& pref, Quill::Ptr<RoutePref const> const& e);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void zelDoZombieReactors(bool marked) override;
    void handleBfdTrackedVia(Rib::ViaKey const& viaKey);
    [[nodiscard]] RouteStatusSm* root() const noexcept;
    ZEL_NESTED(ViaType, NestedSm_DedupViaKeyByViaType, dedupViaKeyByViaType)
  };

  class NestedSm_Route : public Zel::NestedSm<RouteStatusSm, Prefix, Route> {
   public:
    using ZelSelf = NestedSm_Route;
    NestedSm_Route(RouteStatusSm* owner, Prefix const& prefix, Quill::Ptr<Route const> const& route);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void zelDoZombieReactors(bool marked) override;
    ZEL_NESTED(RoutePreference, NestedSm_RoutePref, routePref)
  };

  // ---- Nested machines: the BFD-tracked next hops.
  class NestedSm_BfdRouteBLA;

  class NestedSm_BfdRoute : public Zel::NestedSm<NestedSm_BfdRouteBLA, Ondex::IpGenAddr, BfdTrackedStaticRoutes> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
    void handleBfdStatusChange();
  };

  class NestedSm_BfdRouteBLA
      : public Zel::NestedSm<RouteStatusSm, BfdStatusKey, BfdTrackedStaticRoutesByLocalAddr> {
   public:
    using ZelSelf = NestedSm_BfdRouteBLA;
    NestedSm_BfdRouteBLA(RouteStatusSm* owner, BfdStatusKey const& key,
                         Quill::Ptr<BfdTrackedStaticRoutesByLocalAddr const> const& bla);
    void onAttribute(Zel::AttrId id, void const* key) override;
    ZEL_NESTED(Ondex::IpGenAddr, NestedSm_BfdRoute, bfdRoute)
  };

  // ---- Review.
  void handleInitialized();
  // A full review, from the first prefix.
  void handleRoute();
  // The selection for one prefix.
  void handleRoute(Prefix const& prefix);
  void handleRouteForTask(Prefix const& prefix) { handleRoute(prefix); }
  void updateRouteReviewState(bool done);
  void doReview();
  void routeBacklogAdd(Prefix const& prefix);
  void doRouteBacklogTaskRun();
  void doAddRouteWithLowestMetric(Prefix const& prefix, RoutePref& routePref, Rib::Skein::ViaSet const& viaSet,
                                  VrfId srcVrfId, ViaType viaType);
  void doAddRoute(Prefix const& prefix, RoutePref& routePref, Rib::Skein::ViaSet const& viaSet, VrfId srcVrfId,
                  RouteMetric metric);
  void doDelRoute(Prefix const& prefix);
  void doCleanupRibConfig();
  void handleLoopingRoute(Prefix const& prefix) { handleRoute(prefix); }
  void handleStatusInitialized() { doReview(); }

  // ---- Via validation.
  // What the selection does with one via of a preference: skips it (unresolved or looping), waits
  // for the RIB's report on it (the whole prefix waits), or may use it.
  enum class ViaUse : std::uint8_t { skip, pending, usable };
  [[nodiscard]] ViaUse viaUse(Prefix const& prefix, RoutePreference preference, RoutePref const& routePref,
                              Rib::ViaKey const& viaKey) const;
  [[nodiscard]] Quill::Ptr<Rib::ViaMetricStatus> viaMetricStatus(VrfId vrfId, Rib::Transport transport,
                                                                 Rib::RoutingProtocol protocol) const;
  [[nodiscard]] ViaResolutionStatus validIpVia(Prefix const& prefix, RoutePreference preference,
                                               Rib::ViaKey const& viaKey) const;
  [[nodiscard]] ViaResolutionStatus validEvpnVia(Rib::ViaKey const& viaKey, Rib::ViaKey const& evpnVtepIpViaKey) const;
  [[nodiscard]] Rib::Via getViaFromKey(Rib::ViaKey const& viaKey) const;
  [[nodiscard]] Quill::Ptr<BfdTrackedStaticRoutesByLocalAddr> getBfdTrackedRouteBLAFromViaKey(
      Rib::ViaKey const& viaKey) const;
  [[nodiscard]] BfdStatusKey bfdStatusKeyOf(Rib::Via const& via) const;

  // ---- BFD-tracked vias.
  void handleBfdTrackedVia(RouteKey const& routeKey, Rib::ViaKey const& viaKey, Ondex::IpGenAddr const& prevLocalAddr,
                           Ondex::IpGenAddr const& currLocalAddr, bool add);
  void handleBfdTrackedViaMultihop(RouteKey const& routeKey, Rib::ViaKey const& viaKey,
                                   Ondex::IpGenAddr const& prevLocalAddr, Ondex::IpGenAddr const& currLocalAddr,
                                   bool add);
  void deleteBfdTrackedVias(Prefix const& prefix, RoutePref const& routePref);
  void handleBfdRouteBLA(BfdStatusKey const& key);
  // BFD came to track a next hop, or stopped tracking it. A via below the most preferred via type
  // of a preference counts only while BFD tracks its next hop, for whichever route: every route
  // with such a via to one of these next hops is selected again.
  void doBfdTrackedKeyTaskRun();
  [[nodiscard]] bool usesBelowMostPreferred(Route const& route, std::vector<BfdStatusKey> const& keys) const;

  // ---- Attributes.
  ROUTE_STATUS_SM_INPUTS(ZEL_INPUTS_CONST)
  ZEL_CONST(Quill::Ptr<BfdTrackedStaticRoutesList>, bfdTrackedRoutesListWritable)
  ZEL_CONST(bool, rib)
  [[nodiscard]] Quill::Ptr<Status> const& statusWritable() const noexcept { return statusWritable_; }

  ZEL_NESTED(BfdStatusKey, NestedSm_BfdRouteBLA, bfdRouteBLA)
  ZEL_NESTED(Prefix, NestedSm_Route, route)

  using StatusReactors = Zel::Reactors<Zel::Reconcile<Status::routeId, &RouteStatusSm::route_>,
                                       Zel::On<Status::initializedId, &RouteStatusSm::handleStatusInitialized>>;
  ZEL_INPUT(Status, status, StatusReactors)
  using LoopingReactors =
      Zel::Reactors<Zel::On<Rib::LoopingRouteStatus::loopingRouteId, &RouteStatusSm::handleLoopingRoute>>;
  using GraphReactors = Zel::Reactors<
      Zel::OnAny<static_cast<void (RouteStatusSm::*)()>(&RouteStatusSm::handleRoute)>>;
  using BfdReactors = Zel::Reactors<Zel::On<BfdTrackedStaticRoutesList::routeId, &RouteStatusSm::handleBfdRouteBLA>,
                                    Zel::Reconcile<BfdTrackedStaticRoutesList::routeId, &RouteStatusSm::bfdRouteBLA_>>;
  using GeneralReactors =
      Zel::Reactors<Zel::On<General::Config::staticMetricTypeAigpId, &RouteStatusSm::doReview>,
                    Zel::On<General::Config::routeInputMetricTypeAigpId, &RouteStatusSm::doReview>>;
  ROUTE_STATUS_SM_INPUTS(ZEL_INPUTS_WATCHED)
  ZEL_INPUT(BfdTrackedStaticRoutesList, bfdTrackedRoutesList, BfdReactors)

  ZEL_MAP(Prefix, Quill::Ptr<Bgp::IgpResultHandle>, redistIgpResult, 130)
  ZEL_BACKLOG(Prefix, routeBacklog)
  ZEL_TASK(routeBacklogTask, doRouteBacklogTaskRun)
  ZEL_ATTR(Prefix, reviewBookmark, 131)
  ZEL_ATTR_DEFAULT(double, reviewQuantum, 132, 0.1)
  ZEL_ATTR(bool, reviewedOnce, 133)
  ZEL_TASK(reviewAllRoutesTask, doReview)
  ZEL_TASK(bfdTrackedKeyTask, doBfdTrackedKeyTaskRun)
  ZEL_ATTR(bool, initialized, 134)

  void zelDoZombieReactors(bool marked) override;
  [[nodiscard]] bool tearingDown() const noexcept { return tearingDown_; }

 protected:
  friend struct Zel::Factory;
  explicit RouteStatusSm(Inputs const& inputs);

 private:
  Quill::Ptr<Status> statusWritable_;
  // The toggle "ViaWeightChange": on, a via the RIB has not reported on holds the route's entry,
  // and via changes go through the backlog.
  bool viaWeightChange_;
  Halyard::TaskScheduler* scheduler_;
  bool tearingDown_ = false;
  // The next hops BFD came to track or stopped tracking since bfdTrackedKeyTask last ran.
  std::vector<BfdStatusKey> bfdTrackedKeysChanged_;
};

}  // namespace Routing::Protocol
