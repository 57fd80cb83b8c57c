// Routing::Rib::ViaMetricStatus and its tree: the RIB's report on every via, by VRF id
// (ViaMetricStatusByVrf::vrfStatus), transport (ViaMetricStatusByTransport::transportStatus) and
// routing protocol (ViaMetricStatusByProtocol::protocolStatus). A ViaMetricStatus owns the
// ViaMetric of each via key of its place and publishes each added, changed and removed key on
// `viaMetric`; a key it does not hold reads as the empty via metric. The RIB (or its stand-in)
// writes the tree; the via-metric and route machines read it. See StatusTree for the levels.
//
// Iteration: `viaMetric` is a Zel::HashMap2018 with that map's contract.
#pragma once

#include "foundations/rib/StatusTree.h"
#include "foundations/rib/ViaMetric.h"

namespace Routing::Rib {

class ViaMetricStatus : public Zel::Entity {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  // A table of its own, outside any tree.
  [[nodiscard]] static Quill::Ptr<ViaMetricStatus> ViaMetricStatusIs(VrfId vrfId, Transport transport,
                                                                     RoutingProtocol protocol);

  ZEL_CONST(VrfId, vrfId)
  ZEL_CONST(Transport, transport)
  ZEL_CONST(RoutingProtocol, routingProtocol)
  ZEL_MAP(ViaKey, ViaMetric, viaMetric, 130)

  // Built by the parent's collection, which passes itself.
  ViaMetricStatus(RoutingProtocol const& protocol, StatusByProtocol<ViaMetricStatus>* parent)
      : ViaMetricStatus(parent->vrfId(), parent->transport(), protocol) {}

 protected:
  friend struct Zel::Factory;
  ViaMetricStatus(VrfId vrfId, Transport transport, RoutingProtocol protocol)
      : vrfId_(vrfId), transport_(transport), routingProtocol_(protocol) {}
};

using ViaMetricStatusByProtocol = StatusByProtocol<ViaMetricStatus>;
using ViaMetricStatusByTransport = StatusByTransport<ViaMetricStatus>;

class ViaMetricStatusByVrf : public StatusByVrf<ViaMetricStatus> {
 public:
  [[nodiscard]] static Quill::Ptr<ViaMetricStatusByVrf> ViaMetricStatusByVrfIs();

 protected:
  friend struct Zel::Factory;
  ViaMetricStatusByVrf() = default;
};

}  // namespace Routing::Rib
