// Routing::Rib::ViaStatus and its tree: which vias of each via set the RIB found resolved, by VRF
// id (ViaStatusByVrf::vrfStatus), transport (ViaStatusByTransport::transportStatus) and routing
// protocol (ViaStatusByProtocol::protocolStatus). A ViaStatus owns one Routing::Rib::ViaSet entity
// per via-set key (published per key on `viaSet`), and each of those owns the set of its resolved
// via keys (published per key on `viaKey`). Beside the tree, ViaStatusByVrf owns one
// ResolvedViaStatus per transport (`resolvedViaStatus`). Written by the RIB (or its stand-in); read
// by the BFD machines. See StatusTree for the levels.
//
// Iteration: every collection is a Zel::HashMap2018 with that map's contract.
#pragma once

#include "foundations/rib/ResolvedViaStatus.h"
#include "foundations/rib/StatusTree.h"
#include "foundations/rib/ViaSetKey.h"

namespace Routing::Rib {

// The RIB's view of one via set: its resolved via keys.
class ViaSet : public Zel::Entity {
 public:
  ZEL_CONST(ViaSetKey, viaSetKey)
  ZEL_SET(ViaKey, viaKey, 130)

 protected:
  friend struct Zel::Factory;
  explicit ViaSet(ViaSetKey const& key) : viaSetKey_(key) {}
};

class ViaStatus : public Zel::Entity {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  ZEL_CONST(VrfId, vrfId)
  ZEL_CONST(Transport, transport)
  ZEL_CONST(RoutingProtocol, routingProtocol)
  ZEL_OWNED_MAP(ViaSetKey, ViaSet, viaSet, 130)

  // Built by the parent's collection, which passes itself.
  ViaStatus(RoutingProtocol const& protocol, StatusByProtocol<ViaStatus>* parent)
      : vrfId_(parent->vrfId()), transport_(parent->transport()), routingProtocol_(protocol) {}
};

using ViaStatusByProtocol = StatusByProtocol<ViaStatus>;
using ViaStatusByTransport = StatusByTransport<ViaStatus>;

class ViaStatusByVrf : public StatusByVrf<ViaStatus> {
 public:
  [[nodiscard]] static Quill::Ptr<ViaStatusByVrf> ViaStatusByVrfIs();

  ZEL_OWNED_MAP(Transport, ResolvedViaStatus, resolvedViaStatus, 131)

 protected:
  friend struct Zel::Factory;
  ViaStatusByVrf() = default;
};

}  // namespace Routing::Rib
