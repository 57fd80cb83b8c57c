#include "host/RoutingAgent.h"

#include "protocol/ProtocolIntf.h"

namespace Host {

namespace {
using Routing::Protocol::RootSm;
constexpr Ondex::AddressFamily kFamilies[] = {Ondex::AddressFamily::ipv4, Ondex::AddressFamily::ipv6};
}  // namespace

RoutingAgent::RoutingAgent(Environment env)
    : env_(std::move(env)),
      mg_(env_.em),
      shmemMg_(env_.shmem),
      allVrfReadyStatus_(Routing::Protocol::allVrfReadyStatusFactory()),
      allVrfRibSeqTrigger_(Routing::Protocol::allVrfRibSeqTriggerFactory()) {
  for (Protocol protocol : {Protocol::staticConfig(), Protocol::routeInput()}) {
    auto root = RootSm::RootSmIs(env_.em, &mg_, env_.shmem, &shmemMg_, env_.maxRoutes, env_.maxViaSets, env_.maxVrfs,
                                 protocol, allVrfReadyStatus_, allVrfRibSeqTrigger_);
    // The state of this start exists before any VRF is evaluated.
    root->grStateIs(env_.gracefulRestart);
    (protocol == Protocol::staticConfig() ? staticRoot_ : routeInputRoot_) = root;
  }
  mg_.doCompleteMounts();
  shmemMg_.doCompleteMounts();
  staticRoot_->doMountsComplete();
  routeInputRoot_->doMountsComplete();
  egress_ = Routing::Static::AllEgressVrfIntfStatusHelperSm::AllEgressVrfIntfStatusHelperSmIs(
      staticRoot_->ipv4IntfStatus(), staticRoot_->ipv6IntfStatus());
  resRibProfileContainer_ = Routing::Static::ResRibProfileContainer::ResRibProfileContainerIs("default");
}

RoutingAgent::~RoutingAgent() {
  for (auto& [vrf, holder] : vrfs_) doReleaseContainers(holder);
  vrfs_.clear();
  egress_ = nullptr;
  routeInputRoot_ = nullptr;
  staticRoot_ = nullptr;
}

void RoutingAgent::startReadyVerificationIs(bool start) {
  for (auto const& root : {staticRoot_, routeInputRoot_}) root->grState()->startReadyVerificationIs(start);
}

void RoutingAgent::doReleaseContainers(VrfContainers& holder) {
  // Reverse order of construction: route input before static, IPv6 before IPv4.
  while (!holder.containers.empty()) holder.containers.erase(std::prev(holder.containers.end()));
}

Quill::Ptr<Routing::Input::RouteInputContainerSm> RoutingAgent::container(L3::VrfName const& vrf,
                                                                          Ondex::AddressFamily af,
                                                                          Protocol protocol) const {
  auto it = vrfs_.find(vrf);
  if (it == vrfs_.end()) return nullptr;
  auto c = it->second.containers.find({af.value(), protocol.value()});
  return c == it->second.containers.end() ? nullptr : c->second;
}

void RoutingAgent::vrfIs(L3::VrfName const& vrf, VrfConfig const& v4, VrfConfig const& v6) {
  vrfDel(vrf);
  VrfContainers& holder = vrfs_[vrf];
  for (auto const& root : {staticRoot_, routeInputRoot_}) {
    holder.bfdTrackedRoutesLists[root->routingProtocol().value()] =
        Routing::BfdTrackedStaticRoutesList::BfdTrackedStaticRoutesListIs(vrf);
    for (auto af : kFamilies) {
      holder.containers[{af.value(), root->routingProtocol().value()}] =
          containerIs(vrf, af, *root, af.isV4() ? v4 : v6, holder);
    }
  }
}

void RoutingAgent::vrfDel(L3::VrfName const& vrf) {
  auto it = vrfs_.find(vrf);
  if (it == vrfs_.end()) return;
  doReleaseContainers(it->second);
  vrfs_.erase(it);
  auto const names = staticRoot_->vrfNameStatus();
  VrfId const vrfId =
      names && names->nameToIdMap() ? names->nameToIdMap()->vrfIdOf(vrf) : VrfId::none();
  if (vrfId.isNone()) return;
  for (auto const& root : {staticRoot_, routeInputRoot_}) {
    root->doCleanupContainer4(vrf, vrfId);
    root->doCleanupContainer6(vrf, vrfId);
  }
}

Quill::Ptr<Routing::Input::RouteInputContainerSm> RoutingAgent::containerIs(L3::VrfName const& vrf,
                                                                            Ondex::AddressFamily af, RootSm const& root,
                                                                            VrfConfig const& config,
                                                                            VrfContainers const& holder) {
  bool const v4 = af.isV4();
  Routing::Input::RouteInputContainerSm::Inputs in;
  in.containerKey = Routing::Protocol::ContainerKey(vrf, af);
  in.routingProtocol = root.routingProtocol();
  in.ipViaConfig = v4 ? root.ipv4AllVrfViaConfig() : root.ipv6AllVrfViaConfig();
  // Routes of one family through next hops of the other resolve in the other family's table.
  in.auxIpViaConfig = v4 ? root.ipv6AllVrfViaConfig() : root.ipv4AllVrfViaConfig();
  in.evpnViaConfig = root.evpnConfig();
  in.viaSetConfig = root.viaSetConfig();
  in.ribConfig = v4 ? root.ipv4AllVrfRibConfig() : root.ipv6AllVrfRibConfig();
  in.nhdGraph = root.nhdGraph();
  if (auto const& looping = v4 ? root.loopingRouteStatusByVrf4() : root.loopingRouteStatusByVrf6())
    in.loopingRouteStatus = looping->vrfStatus(vrf);
  if (v4) {
    auto const table = root.ipv4IntfStatus() ? root.ipv4IntfStatus()->vrfIpIntfStatus(vrf) : nullptr;
    in.intfStatus = Routing::Protocol::Ipv4IntfStatus::Ipv4IntfStatusIs(table);
  } else {
    auto const table = root.ipv6IntfStatus() ? root.ipv6IntfStatus()->vrfIp6IntfStatus(vrf) : nullptr;
    in.intfStatus = Routing::Protocol::Ipv6IntfStatus::Ipv6IntfStatusIs(table);
  }
  in.ipv4DefaultVrfViaConfig = root.ipv4DefaultVrfViaConfig();
  in.ipv6DefaultVrfViaConfig = root.ipv6DefaultVrfViaConfig();
  in.grState = root.grState();
  in.vrfReadyStatus = allVrfReadyStatus_->vrfReadyStatus(vrf);
  in.mplsConfig = env_.mpls;
  in.bfdTrackedRoutesList = holder.bfdTrackedRoutesLists.at(root.routingProtocol().value());
  in.viaStatusByVrf = env_.viaStatusByVrf;
  in.viaMetricStatusByVrf = root.viaMetricStatusByVrf();
  in.resRibProfileContainer = resRibProfileContainer_;
  in.routingGeneralConfig = env_.general;
  in.vrfNameStatus = root.vrfNameStatus();
  in.scheduler = env_.scheduler;
  in.allEgressVrfIntfStatusHelperSm = egress_;
  in.igpResultTable = env_.igpResultTable;
  in.configTagStatus = env_.configTagStatus;
  in.configTagIdState = env_.configTagIdState;
  if (root.routingProtocol() == Protocol::staticConfig()) {
    in.srConfig = config.config;
    in.srConfigDynamic = config.configDynamic;
    in.srTaggedConfig = config.taggedConfig;
    in.srTaggedDynamicConfig = config.taggedDynamicConfig;
  } else {
    in.configDir = config.configDir;
    in.configTagDir = config.configTagDir;
  }
  in.routeStatusDir = root.routeStatusDir();
  return Routing::Input::RouteInputContainerSm::RouteInputContainerSmIs(in);
}

}  // namespace Host
