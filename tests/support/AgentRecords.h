// The records of the agents around a routing agent, at the mount paths a protocol root reads them
// from: the VRF maps, the interface tables, the RIB's looping-route and via metric reports (unicast
// and multicast). Tests add VRFs and reports to them as those agents would.
#pragma once

#include "foundations/rib/LoopingRouteStatus.h"
#include "foundations/rib/RibTypeFactories.h"
#include "foundations/rib/ViaMetricStatus.h"
#include "foundations/runtime/Mount.h"
#include "protocol/ProtocolRootSm.h"

namespace BowlineTest {

struct AgentRecords {
  AgentRecords() {
    Routing::Rib::ribTypeFactoriesIs(shmem);
    nameStatus->nameToIdMapIs(names);
    em.entityIs(Cell::path("vrf/vrfNameStatus").view(), nameStatus);
    em.entityIs(Cell::path("ip/status").view(), ip4);
    em.entityIs(Cell::path("ip6/status").view(), ip6);
    em.entityIs(Cell::path("routing/rib/loopingRouteStatus").view(), looping4);
    em.entityIs(Cell::path("routing6/rib/loopingRouteStatus").view(), looping6);
    em.entityIs(Cell::path("routing/mrib/loopingRouteStatus").view(), mcLooping4);
    em.entityIs(Cell::path("routing6/mrib/loopingRouteStatus").view(), mcLooping6);
    shmem.entityIs("vrf/vrfIdMapStatus", idStatus);
    shmem.entityIs("routing/rib/viaMetricStatus", metrics);
    shmem.entityIs("routing/mrib/viaMetricStatus", mcMetrics);
  }
  // The VRF agent's two maps.
  void vrfIs(char const* vrf, std::uint32_t id) {
    names->vrfNameToIdIs(L3::VrfName(vrf), Vrf::VrfIdMap::VrfId(id));
    idStatus->vrfIdToNameIs(Vrf::VrfIdMap::VrfId(id), L3::VrfName(vrf));
  }
  void vrfDel(char const* vrf, std::uint32_t id) {
    idStatus->vrfIdToNameDel(Vrf::VrfIdMap::VrfId(id));
    names->vrfNameToIdDel(L3::VrfName(vrf));
  }

  using Looping = Routing::Rib::LoopingRouteStatusByVrf;
  using Metrics = Routing::Rib::ViaMetricStatusByVrf;
  Cairn::EntityManager em;
  ZelSharedMem::EntityManager shmem;
  Quill::Ptr<Vrf::VrfIdMap::NameToIdMapWrapper> nameStatus = Vrf::VrfIdMap::NameToIdMapWrapper::NameToIdMapWrapperIs();
  Quill::Ptr<Vrf::VrfIdMap::NameToIdMap> names = Vrf::VrfIdMap::NameToIdMap::NameToIdMapIs();
  Quill::Ptr<Vrf::VrfIdMap::Status> idStatus = Vrf::VrfIdMap::Status::StatusIs();
  Quill::Ptr<Ip::Status> ip4 = Ip::Status::StatusIs();
  Quill::Ptr<Ip6::Status> ip6 = Ip6::Status::StatusIs();
  Quill::Ptr<Looping> looping4 = Looping::LoopingRouteStatusByVrfIs();
  Quill::Ptr<Looping> looping6 = Looping::LoopingRouteStatusByVrfIs();
  Quill::Ptr<Looping> mcLooping4 = Looping::LoopingRouteStatusByVrfIs();
  Quill::Ptr<Looping> mcLooping6 = Looping::LoopingRouteStatusByVrfIs();
  Quill::Ptr<Metrics> metrics = Metrics::ViaMetricStatusByVrfIs();
  Quill::Ptr<Metrics> mcMetrics = Metrics::ViaMetricStatusByVrfIs();
};

}  // namespace BowlineTest
