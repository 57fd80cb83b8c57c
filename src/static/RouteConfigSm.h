// RouteConfigSm turns the configured routes of one VRF and address family into entries of the
// route status store and of the via tables. It watches the static, dynamic and leaked route lists
// (static mode) or the lists of the route-input users (route-input mode), and the interface, MPLS,
// VRF and general settings that decide how a via is entered. Owned by the input container of its
// VRF and family.
//
// Reactors only put keys on the backlog and schedule; "routeReview" reviews the backlog and
// "reviewAllRoutes" reviews every route, both yielding between routes with a bookmark. Its
// inputs are declared once, in ROUTE_CONFIG_SM_INPUTS; its code is split by concern over
// RouteConfigSm*.cpp (review, static lists, route-input users, leaked routes, tags, vias,
// inter-VRF routes), and the inter-VRF index is InterVrfRoutes.
//
// One configured route writes an entry (prefix and preference) of the status store, whatever the
// order in which keys are reviewed:
// - Route input. Of the users' routes of one key, the martian list's wins, then that of the user
//   whose name sorts first (Input::userBefore), skipping routes whose command tag is disabled. The
//   winner is remembered per key: when another user's route takes the key, the entry is emptied
//   before the new winner enters it, and a change of a route that is not the winner only asks for a
//   review of the key. Routes of one prefix at different preferences are separate entries, and the
//   protocol core installs the lowest.
// - Static mode, global preference G other than 1. A route configured without a preference lives
//   at G. A route of explicit preference G is not installed, and leaves the entry at G to a route
//   of the prefix configured without a preference; a route of another explicit preference never
//   removes that entry. Whenever a review removes an entry that another configured route of the
//   prefix lives at (G, or the former global preference), that route is queued to enter it again.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "foundations/records/ConfigTag.h"
#include "foundations/records/GeneralConfig.h"
#include "foundations/records/GrState.h"
#include "foundations/records/MplsConfig.h"
#include "foundations/records/NexthopGroupEntryStatus.h"
#include "foundations/records/NhgNameRouteKeyMap.h"
#include "foundations/records/Route.h"
#include "foundations/records/RouteInput.h"
#include "foundations/records/RouteList.h"
#include "foundations/records/TunnelRibNameIdMap.h"
#include "foundations/records/VrfIdMap.h"
#include "foundations/records/VrfReadyStatus.h"
#include "foundations/records/VrfRouteListTaggedConfig.h"
#include "foundations/records/VtepSipValidationStatus.h"
#include "foundations/rib/EvpnViaConfig.h"
#include "foundations/rib/IpViaConfig.h"
#include "foundations/rib/ViaContent.h"
#include "foundations/runtime/Backlog.h"
#include "foundations/runtime/MachineInputs.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/TaskMember.h"
#include "foundations/records/RouteInputByUser.h"
#include "leak/ProtocolRouteLeak.h"
#include "protocol/ProtocolContainerKey.h"
#include "protocol/ProtocolIntf.h"
#include "protocol/ProtocolRouteStatus.h"
#include "static/AllEgressVrfIntfStatusHelperSm.h"
#include "static/InterVrfRoutes.h"
#include "static/ResRibProfileContainer.h"
#include "static/TaggedRouteConfigSm.h"
#include "static/ViaReevaluateWalkSm.h"

// The inputs of RouteConfigSm, in the order the constructor takes them (see MachineInputs.h). The
// input container makes the VRF id, the status store, the leak configuration and the users'
// collections, and gives the general settings in static mode only.
#define ROUTE_CONFIG_SM_INPUTS(X)                                                                            \
  X(CONST, CORE, Protocol::ContainerKey, containerKey)                                                       \
  X(INPUT, CALLER, Vrf::VrfIdMap::NameToIdMapWrapper, vrfNameStatus, VrfNameStatusReactors)                  \
  X(CONST, OWN, Vrf::VrfIdMap::VrfId, vrfId)                                                                 \
  X(CONST, OWN, Quill::Ptr<Protocol::Status>, status)                                                        \
  X(CONST, CORE, Quill::Ptr<Rib::Ip::ViaConfig>, ipViaConfig)                                                \
  X(CONST, CORE, Quill::Ptr<Rib::Evpn::ViaConfig>, evpnViaConfig)                                            \
  X(INPUT, CORE, Protocol::IntfStatus, intfStatus, IntfStatusReactors)                                       \
  X(CONST, CORE, Quill::Ptr<Rib::Ip::ViaConfig>, ipv4DefaultVrfViaConfig)                                    \
  X(CONST, CORE, Quill::Ptr<Rib::Ip::ViaConfig>, ipv6DefaultVrfViaConfig)                                    \
  X(INPUT, CALLER, Protocol::GrState, grState, GrStateReactors)                                              \
  X(CONST, CORE, Quill::Ptr<Protocol::VrfReadyStatus>, vrfReadyStatus)                                       \
  X(INPUT, CALLER, ::NexthopGroup::EntryStatus, nexthopGroupEntryStatus, NexthopGroupReactors)               \
  X(CONST, CALLER, Quill::Ptr<Static::RouteCacheRouteHelperSm>, routeCacheRouteHelperSm)                     \
  X(CONST, CORE, Halyard::TaskScheduler*, scheduler, nullptr)                                                \
  X(CONST, CALLER, Quill::Ptr<Static::AllEgressVrfIntfStatusHelperSm>, allEgressVrfIntfStatusHelperSm)       \
  X(CONST, CORE, Rib::RoutingProtocol, routingProtocol, Rib::RoutingProtocol::staticConfig())                \
  X(INPUT, OWN, Protocol::LeakRouteConfig, leakConfig, LeakConfigReactors)                                   \
  X(CONST, CALLER, Quill::Ptr<ConfigTag::ConfigTagStatus const>, configTagStatus)                            \
  X(CONST, CALLER, Quill::Ptr<ConfigTag::ConfigTagIdState const>, configTagIdState)                          \
  X(INPUT, CALLER, Mpls::Config, mplsConfig, MplsReactors)                                                   \
  X(INPUT, OWN, General::Config, routingGeneralConfig, GeneralConfigReactors)                                \
  X(INPUT, CALLER, Static::ResRibProfileContainer, resRibProfileContainer, ResRibProfileReactors)            \
  X(CONST, CALLER, Quill::Ptr<Tunnel::TunnelTable::TunnelRibNameIdMap const>, tunnelRibNameIdMap)            \
  X(CONST, CORE, Quill::Ptr<Rib::Ip::ViaConfig>, auxIpViaConfig)                                             \
  X(CONST, CALLER, Quill::Ptr<Vxlan::VtepSipValidationStatus>, vtepSipValidationStatus)                      \
  X(INPUT, CALLER, RouteList, srConfig, SrConfigReactors)                                                    \
  X(INPUT, CALLER, RouteList, srConfigDynamic, SrConfigDynamicReactors)                                      \
  X(INPUT, CALLER, VrfRouteListTaggedConfig, srTaggedConfig, SrTaggedReactors)                               \
  X(INPUT, CALLER, VrfRouteListTaggedConfig, srTaggedDynamicConfig, SrTaggedDynamicReactors)                 \
  X(LATE, OWN, Input::ConfigByUser, riConfigByUser, ConfigByUserReactors)                                    \
  X(LATE, OWN, Input::ConfigTaggedByUser, riConfigTaggedByUser, ConfigTaggedByUserReactors)

namespace Routing::Static {

class RouteCacheRouteHelperSm;
class SipValidationHelper;

class RouteConfigSm : public Zel::StateMachine<RouteConfigSm>, public EgressVrfIntfStatusClient {
 public:
  enum ReviewState : std::uint8_t { SUSPENDED = 0, FINISHED = 1, CONTINUE = 2 };
  using OptWeight = std::optional<std::uint32_t>;
  using RouteConstPtr = Quill::Ptr<Route const>;
  using RouteListConstPtr = Quill::Ptr<RouteList const>;
  using LeakRouteConstPtr = Quill::Ptr<Protocol::LeakRoute const>;

  // The constructor's arguments (ROUTE_CONFIG_SM_INPUTS). Null inputs have not come yet;
  // evpnViaConfig, routeCacheRouteHelperSm and srConfigDynamic may stay null, and static mode needs
  // leakConfig.
  struct Inputs {
    ROUTE_CONFIG_SM_INPUTS(ZEL_INPUTS_FIELD)
  };
  [[nodiscard]] static Quill::Ptr<RouteConfigSm> RouteConfigSmIs(Inputs const& inputs) {
    return Zel::make<RouteConfigSm>(inputs);
  }

  // ---- Nested machines, one per element of a watched collection.

  // One route of srConfig: a change of one of its attributes becomes the smallest work that
  // covers it; its removal takes the route out of the status store.
  class NestedSm_Route : public Zel::NestedSm<RouteConfigSm, RouteKey, Route> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
    void zelDoZombieReactors(bool marked) override;
    void handleRouteDelete();
  };

  // One route of srConfigDynamic, which gives way to a static route of the same key.
  class NestedSm_RouteDynamic : public Zel::NestedSm<RouteConfigSm, RouteKey, Route> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
    void zelDoZombieReactors(bool marked) override;
    void handleRouteDynamicVia(Via const& via);
    void handleRouteDynamicDelete();
    // True while srConfig has a static route of this key, which the dynamic route gives way to.
    [[nodiscard]] bool underStaticRoute() const;
  };

  // The source route of a leaked route: its tag and its vias are followed.
  class ZelLeakedRoute : public Zel::Notifiee<Route> {
   public:
    ZelLeakedRoute(RouteConfigSm* parent, RouteKey const& key, RouteConstPtr route);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void handleLeakedRoute();
    void handleLeakedRouteVia(Via const& via);

   private:
    RouteConfigSm* parent_;
    RouteKey key_;
  };

  // One entry of leakConfig.
  class NestedSm_LeakRoute : public Zel::NestedSm<RouteConfigSm, RouteKey, Protocol::LeakRoute> {
   public:
    NestedSm_LeakRoute(RouteConfigSm* owner, RouteKey const& key, LeakRouteConstPtr const& leakRoute);
    void notifierIs(LeakRouteConstPtr leakRoute) override;
    void zelDoZombieReactors(bool marked) override;
    // Points the watcher at the route; null drops it, the same route changes nothing.
    void leakedRouteIs(RouteConstPtr const& route);
    [[nodiscard]] Quill::Ptr<ZelLeakedRoute> const& leakedRoute() const noexcept { return leakedRoute_; }

   private:
    Quill::Ptr<ZelLeakedRoute> leakedRoute_;
  };

  // The route-input list of one user, with a watcher per route of it.
  class RiZelConfig : public Zel::NestedSm<RouteConfigSm, Quill::String, RouteInput> {
   public:
    using ZelSelf = RiZelConfig;
    class NestedSm_Route : public Zel::NestedSm<RiZelConfig, RouteKey, Route> {
     public:
      using NestedSm::NestedSm;
      void onAttribute(Zel::AttrId id, void const* key) override;
    };

    RiZelConfig(RouteConfigSm* owner, Quill::String const& name, Quill::Ptr<RouteInput const> const& input);
    void onAttribute(Zel::AttrId id, void const* key) override;
    void zelDoZombieReactors(bool marked) override;
    void handleInitialized();
    void handleInstall();
    void handleRouteCommandTagId(Route const& route);
    void handleUserDelete();
    [[nodiscard]] Quill::Ptr<SipValidationHelper> const& sipValidationHelper() const noexcept {
      return sipValidationHelper_;
    }
    ZEL_NESTED(RouteKey, NestedSm_Route, route)

   private:
    Quill::Ptr<SipValidationHelper> sipValidationHelper_;
  };

  // Hears a tagged-route machine: keys to review (149), then one schedule (148).
  class ZelTaggedRouteConfigSm : public Zel::Notifiee<TaggedRouteConfigSm> {
   public:
    explicit ZelTaggedRouteConfigSm(RouteConfigSm* parent) : parent_(parent) {}
    void onAttribute(Zel::AttrId id, void const* key) override;

   private:
    RouteConfigSm* parent_;
  };

  // The command-tag index of one route-input user.
  class RiZelTaggedConfig : public Zel::NestedSm<RouteConfigSm, Quill::String, RouteListTaggedConfig> {
   public:
    RiZelTaggedConfig(RouteConfigSm* owner, Quill::String const& name,
                      Quill::Ptr<RouteListTaggedConfig const> const& config);
    void zelDoZombieReactors(bool marked) override;
    void handleInitialized();
    [[nodiscard]] Quill::Ptr<TaggedRouteConfigSm> const& taggedRouteConfigSm() const noexcept {
      return taggedRouteConfigSm_;
    }

   private:
    Quill::Ptr<TaggedRouteConfigSm> taggedRouteConfigSm_;
    Quill::Ptr<ZelTaggedRouteConfigSm> watcher_;
  };

  // ---- Reactors and procedures: the review.
  void handleInitialized();
  void handleRoute(RouteKey const& key);
  void putToBacklog(RouteKey const& key) { backlogIs(key); }
  void handleRouteDynamic(RouteKey const& key);
  void handleRoutes();
  void srHandleRoutes();
  void riHandleRoutes();
  void doBacklogReview();
  [[nodiscard]] ReviewState beforeReview() const;
  void reviewAllRoutes();
  [[nodiscard]] bool reviewAllRoutesImpl();
  [[nodiscard]] bool srReviewAllRoutesImpl();
  [[nodiscard]] bool riReviewAllRoutesImpl();
  // One walk of a review of all routes over a route list or the leaked routes (Config: RouteList
  // or Protocol::LeakRouteConfig); false when it yielded, with the bookmark at the next key.
  template <class Config>
  [[nodiscard]] bool reviewAllRoutesByConfig(Config const* config, std::optional<RouteKey>& bookmark);
  void reviewRoute(RouteKey const& key);
  void srReviewRoute(RouteKey const& key);
  void riReviewRoute(RouteKey const& key);
  [[nodiscard]] RouteConstPtr routeFromConfig(RouteKey const& key) const;
  [[nodiscard]] RouteConstPtr srRouteFromConfig(RouteKey const& key) const;
  // The winning route of the key among the users' (see the top of this file), and its user.
  [[nodiscard]] RouteConstPtr riRouteFromConfig(RouteKey const& key, Quill::String* user = nullptr) const;
  // Records the user whose route the review enters for the key; a different former one's entry is
  // removed first.
  void riProgrammedUserIs(RouteKey const& key, Quill::String const& user);
  [[nodiscard]] bool riProgrammedUserHas(RouteKey const& key, Quill::String const& user) const;
  void finishReview();
  void maybeSetRoutesReady();
  [[nodiscard]] bool isStaticMode() const noexcept { return routingProtocol_ == Rib::RoutingProtocol::staticConfig(); }

  // ---- Programming a route.
  void handleRouteInit(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId);
  Quill::Ptr<Protocol::RoutePref> routePrefIs(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId);
  void handleRouteAttributes(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId);
  void handleTag(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId);
  void handleVias(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId, bool ecmpStateChanged);
  void routePrefAdjustToGlobalPref(Route const& route);
  // The preference of the status-store entry a key of the static lists lives at: its own, or the
  // global one for a route configured without a preference.
  [[nodiscard]] RoutePreference srEntryPref(RouteKey const& key) const;
  // A route of explicit preference equal to the global one (not 1): it has no entry of its own.
  [[nodiscard]] bool srAtGlobalPrefExplicitly(RouteKey const& key) const;
  // The static or dynamic route whose entry is the preference `entry` of the prefix, if any.
  [[nodiscard]] std::optional<RouteKey> srEntryOwner(Ondex::IpGenPrefix const& prefix, RoutePreference entry) const;
  // After an entry was removed on behalf of `self`: its owner, another route, is queued to enter it again.
  void srReviewEntryOwner(Ondex::IpGenPrefix const& prefix, RoutePreference entry, RouteKey const& self);
  void handleGlobalPreference(RoutePreference former);
  void globalPrefIs(RoutePreference pref);
  [[nodiscard]] static bool sendToCpu(Route const& route);
  // A drop route, or a route to the host's loopback, has its one via (set by handleVias) whatever
  // vias it is configured with: a via that comes or goes changes nothing of it.
  [[nodiscard]] bool viasFixedByType(Route const& route) const;
  [[nodiscard]] static Fib::RouteType fibRouteType(RouteType routeType);
  [[nodiscard]] static Fib::RouteType fibRouteTypeFromRoutingProtocol(std::uint8_t routingProto);
  void srHandleRouteDelete(Route const& route, bool leaked);
  void riHandleRouteDelete(Route const& route);
  void handleRouteDelete(Route const& route, bool leaked);
  void handleRouteKeyDelete(RouteKey const& key);
  void handleRouteVia(Route const& route, Via const& via, RouteList const* routeList,
                      SipValidationHelper* sipValidationHelper);
  // What every watcher of a configured route does with a change of one of the route's own
  // attributes (not its vias); false for any other attribute. nexthopGroupWeight: whether a change
  // of the next-hop group weight is followed.
  bool handleRouteAttributeChange(Route const& route, Zel::AttrId id, bool nexthopGroupWeight);
  [[nodiscard]] bool handleRouteInitForRouteCache(Route const& route);
  [[nodiscard]] bool handleRouteDeleteFromRouteCache(Route const& route);
  [[nodiscard]] bool handleRouteCacheEligibility(Route const& route);
  void handleRouteNexthopGroupAttributes(Route const& route, Vrf::VrfIdMap::VrfId srcVrfId);
  void handleNexthopGroup(::NexthopGroup::NexthopGroupEntryKey const& key);
  [[nodiscard]] bool checkCommandTagInEnabledStatus(ConfigTag::ConfigTagId tagId) const;

  // ---- Vias.
  void handleVia(Route const& route, Via const& via, Vrf::VrfIdMap::VrfId srcVrfId, bool ecmpStateChanged,
                 std::uint32_t weight, OptWeight prevWeight);
  void handleIpVia(Route const& route, Via const& via, Vrf::VrfIdMap::VrfId srcVrfId, bool ecmpStateChanged,
                   std::uint32_t weight, OptWeight prevWeight);
  void handleEvpnVia(Route const& route, Via const& via);
  void handleRouteViaResRibProfileConfig(Route const& route, Via const& via);
  [[nodiscard]] static Protocol::ViaType getViaType(Rib::ViaContent const& content);

  // ---- Leaked routes.
  void leakRouteInUseIs(LeakRouteConstPtr const& leakRoute);
  void handleLeakedRouteDel(RouteKey const& key);
  void handleLeakedRouteVia(RouteKey const& key, Via const& via);

  // ---- Inter-VRF routes.
  [[nodiscard]] static bool anyViaInEgressVrf(Route const& route, L3::VrfName const& egressVrf);
  // Reviews the routes with a via through the VRF, whose interface status changed.
  void handleInterVrfRoutes(L3::VrfName const& egressVrf) override;
  [[nodiscard]] InterVrfRoutes const& interVrfRoutes() const noexcept { return interVrfRoutes_; }
  void handleVrfNameToId(L3::VrfName const& vrf);
  void handleVrfAddition(L3::VrfName const& vrf);
  void handleVrfDeletion(L3::VrfName const& vrf);
  void delAllDedupViaKey(Route const& route, Vrf::VrfIdMap::VrfId oldVrfId);
  void delAllBfdTrackedVias(Route const& route, Vrf::VrfIdMap::VrfId oldVrfId);
  void addAllDedupViaKey(Route const& route, L3::VrfName const& vrf);
  [[nodiscard]] Quill::Ptr<Protocol::IntfStatus const> getVrfIntfStatus(L3::VrfName const& vrf,
                                                                        Ondex::AddressFamily af) const;
  [[nodiscard]] Vrf::VrfIdMap::VrfId egressVrfId(L3::VrfName const& vrf) const;

  // ---- The re-evaluation walk.
  void reevaluateAllVias();
  void handleEcmpStateChanged();
  void handleResRibProfileUpdate();
  void handleReevaluatedRoute();
  void handleWalkFinished();

  // ---- Tagged configuration.
  void handleVrfTaggedConfig();
  void handleVrfTaggedDynamicConfig();
  void handleVrfTaggedConfig(L3::VrfName const& vrfName);
  void handleVrfTaggedDynamicConfig(L3::VrfName const& vrfName);
  void vrfTaggedConfigHelper(L3::VrfName const& vrfName, RouteListTaggedConfig const* prevTagColl,
                             RouteListTaggedConfig const* curTagColl, bool dynamic);
  void reviewAllTaggedRoutesInVrf(RouteListTaggedConfig const& taggedConfig);
  void handleReviewBacklogTrigger();
  void handleReevaluatedKeyTrigger(TaggedRouteConfigSm const& sm);

  // ---- Route-input users.
  void handleConfigByUser(Quill::String const& name);
  void handleConfigTaggedByUser(Quill::String const& name);
  void handleVrfNameStatus();

  // ---- Construction-time values.
  ROUTE_CONFIG_SM_INPUTS(ZEL_INPUTS_CONST)
  ZEL_CONST(L3::VrfName, vrfName)

  // ---- Nested machines. Declared first so that the zombie pass runs them in this order.
  ZEL_NESTED(Quill::String, RiZelConfig, riConfig)
  ZEL_NESTED(Quill::String, RiZelTaggedConfig, riTaggedConfig)
  ZEL_NESTED(RouteKey, NestedSm_RouteDynamic, routeDynamic)
  ZEL_NESTED(RouteKey, NestedSm_Route, route)
  ZEL_NESTED(RouteKey, NestedSm_LeakRoute, leakRoute)

  // ---- Watched inputs.
  using VrfNameStatusReactors = Zel::Reactors<
      Zel::On<Vrf::VrfIdMap::NameToIdMapWrapper::nameToIdMapId, &RouteConfigSm::handleVrfNameStatus>>;
  using IntfStatusReactors =
      Zel::Reactors<Zel::On<Protocol::IntfStatus::intfStatusChangedId, &RouteConfigSm::handleRoutes>>;
  void handleGrState();
  using GrStateReactors =
      Zel::Reactors<Zel::On<Protocol::GrState::startReadyVerificationId, &RouteConfigSm::handleGrState>>;
  using NexthopGroupReactors =
      Zel::Reactors<Zel::On<::NexthopGroup::EntryStatus::nhgIdId, &RouteConfigSm::handleNexthopGroup>>;
  using LeakConfigReactors =
      Zel::Reactors<Zel::On<Protocol::LeakRouteConfig::leakRouteId, &RouteConfigSm::handleRoute>,
                    Zel::Reconcile<Protocol::LeakRouteConfig::leakRouteId, &RouteConfigSm::leakRoute_>>;
  using MplsReactors = Zel::Reactors<Zel::On<Mpls::Config::mplsRoutingId, &RouteConfigSm::handleRoutes>>;
  void handleStaticRoutePreference();
  using GeneralConfigReactors =
      Zel::Reactors<Zel::On<General::Config::staticRouteEcmpStateId, &RouteConfigSm::handleEcmpStateChanged>,
                    Zel::On<General::Config::staticRoutePreferenceId, &RouteConfigSm::handleStaticRoutePreference>>;
  using ResRibProfileReactors = Zel::Reactors<
      Zel::On<ResRibProfileContainer::resRibProfileId, &RouteConfigSm::handleResRibProfileUpdate>>;
  void handleSrConfigRoute(RouteKey const& key);
  void handleSrConfigDynamicRoute(RouteKey const& key);
  using SrConfigReactors = Zel::Reactors<Zel::On<RouteList::routeId, &RouteConfigSm::handleSrConfigRoute>,
                                         Zel::Reconcile<RouteList::routeId, &RouteConfigSm::route_>>;
  using SrConfigDynamicReactors =
      Zel::Reactors<Zel::On<RouteList::routeId, &RouteConfigSm::handleSrConfigDynamicRoute>,
                    Zel::Reconcile<RouteList::routeId, &RouteConfigSm::routeDynamic_>>;
  using SrTaggedReactors = Zel::Reactors<
      Zel::On<VrfRouteListTaggedConfig::vrfConfigId,
              static_cast<void (RouteConfigSm::*)(L3::VrfName const&)>(&RouteConfigSm::handleVrfTaggedConfig)>>;
  using SrTaggedDynamicReactors = Zel::Reactors<Zel::On<
      VrfRouteListTaggedConfig::vrfConfigId,
      static_cast<void (RouteConfigSm::*)(L3::VrfName const&)>(&RouteConfigSm::handleVrfTaggedDynamicConfig)>>;
  using ConfigByUserReactors =
      Zel::Reactors<Zel::On<Input::ConfigByUser::configId, &RouteConfigSm::handleConfigByUser>>;
  using ConfigTaggedByUserReactors =
      Zel::Reactors<Zel::On<Input::ConfigTaggedByUser::configId, &RouteConfigSm::handleConfigTaggedByUser>>;
  ROUTE_CONFIG_SM_INPUTS(ZEL_INPUTS_WATCHED)
  using VrfNameToIdReactors =
      Zel::Reactors<Zel::On<Vrf::VrfIdMap::NameToIdMap::vrfNameToIdId, &RouteConfigSm::handleVrfNameToId>>;
  ZEL_INPUT(Vrf::VrfIdMap::NameToIdMap, vrfNameToIdMap, VrfNameToIdReactors)
  using WalkReactors =
      Zel::Reactors<Zel::On<ViaReevaluateWalkSm::reevaluatedRouteTriggerId, &RouteConfigSm::handleReevaluatedRoute>,
                    Zel::On<ViaReevaluateWalkSm::walkFinishedTriggerId, &RouteConfigSm::handleWalkFinished>>;
  ZEL_INPUT(ViaReevaluateWalkSm, viaReevaluateWalkSmInput, WalkReactors)

  // ---- Own state.
  ZEL_ATTR(bool, ecmpStateChanged, 130)
  // The preference of routes configured without one; globalPrefIs re-reviews on a change.
  ZEL_ATTR_ID(globalPref, 131);
  [[nodiscard]] RoutePreference const& globalPref() const noexcept { return globalPref_.get(); }
  // The global preferences left since the last whole review ended, in the order of the changes:
  // routes configured without a preference may still have entries at any of them.
  [[nodiscard]] std::vector<RoutePreference> const& formerGlobalPrefs() const noexcept { return formerGlobalPrefs_; }
  ZEL_ATTR(Quill::Ptr<ViaReevaluateWalkSm>, viaReevaluateWalkSm, 133)
  ZEL_ATTR(Quill::Ptr<NexthopGroup::NhgNameRouteKeyMap>, nhgNameRouteKeyMap, 134)
  ZEL_BACKLOG(RouteKey, backlog)
  ZEL_TASK(routeReviewTask, doBacklogReview)
  ZEL_TASK(reviewAllRoutesTask, reviewAllRoutes)
  ZEL_MAP(RouteKey, LeakRouteConstPtr, leakRouteInUse, 137)
  ZEL_ATTR(bool, initialized, 138)
  // Static mode: counts the VTEPs the routes' EVPN vias name (made at initialization).
  [[nodiscard]] Quill::Ptr<SipValidationHelper> const& sipValidationHelper() const noexcept {
    return sipValidationHelper_;
  }
  ZEL_ATTR(Quill::Ptr<TaggedRouteConfigSm>, taggedRouteConfigSm, 140)
  ZEL_ATTR(Quill::Ptr<TaggedRouteConfigSm>, taggedRouteDynamicConfigSm, 141)
  ZEL_ATTR(Quill::String, reviewConfigBookmark, 142)
  [[nodiscard]] std::optional<RouteKey> const& reviewKeyBookmark() const noexcept { return reviewKeyBookmark_; }
  [[nodiscard]] std::optional<RouteKey> const& reviewKeyBookmarkDynamic() const noexcept {
    return reviewKeyBookmarkDynamic_;
  }
  [[nodiscard]] std::optional<RouteKey> const& reviewKeyBookmarkLeak() const noexcept {
    return reviewKeyBookmarkLeak_;
  }

 protected:
  friend struct Zel::Factory;
  explicit RouteConfigSm(Inputs const& inputs);
  ~RouteConfigSm() override;
  void handleBaseDel();

 public:
  void zelDoZombieReactors(bool marked) override;

 private:
  // The steps of handleIpVia.
  struct IpViaTarget;
  [[nodiscard]] Rib::ViaContent ipViaContent(Route const& route, Via const& via, std::uint32_t weight) const;
  [[nodiscard]] Rib::Ip::ViaConfig* ipViaTable(Via const& via) const;
  // Whether the via names an interface that its VRF does not have; a host route's via with an
  // interface and no next hop gets the prefix as its next hop.
  [[nodiscard]] bool ipViaIntfMissing(Route const& route, Via const& via, Rib::ViaContent& content) const;
  // What a change of the ECMP grouping left of the former grouping's vias.
  static void dropFormerEcmpGrouping(Protocol::RoutePref& routePref, General::StaticRouteEcmpState ecmp);
  // The VRF whose via table holds the via; none while its egress VRF does not exist.
  [[nodiscard]] std::optional<Vrf::VrfIdMap::VrfId> ipViaEgressVrfId(Route const& route, Via const& via,
                                                                     Vrf::VrfIdMap::VrfId srcVrfId);
  [[nodiscard]] Ondex::IpGenAddr ipViaLocalAddr(Via const& via) const;
  void ipViaAdd(Route const& route, Via const& via, IpViaTarget& target, std::uint32_t weight, RouteMetric metric,
                OptWeight prevWeight);
  void ipViaDel(Route const& route, Via const& via, IpViaTarget const& target, std::uint32_t weight);
  void taggedWatchersIs();

  Zel::ScalarAttr<RoutePreference> globalPref_{RoutePreference()};
  std::vector<RoutePreference> formerGlobalPrefs_;
  // A change asked for a review of all routes while the leak walk was suspended: once that walk
  // ends, the review starts over.
  bool reviewAllAgain_ = false;
  std::optional<RouteKey> reviewKeyBookmark_;
  std::optional<RouteKey> reviewKeyBookmarkDynamic_;
  std::optional<RouteKey> reviewKeyBookmarkLeak_;
  InterVrfRoutes interVrfRoutes_;
  Quill::Ptr<SipValidationHelper> sipValidationHelper_;
  Quill::Ptr<ZelTaggedRouteConfigSm> taggedRouteConfigSmWatcher_;
  Quill::Ptr<ZelTaggedRouteConfigSm> taggedRouteDynamicConfigSmWatcher_;
  // Route input: the user whose route is entered in the status store, per key. Looked up only.
  Zel::HashMap2018<RouteKey, Quill::String> riProgrammedUser_{ZEL_SALT(143)};
};

}  // namespace Routing::Static
