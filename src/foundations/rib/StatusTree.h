// The levels of the RIB's status trees: StatusByVrf<Leaf> owns one StatusByTransport<Leaf> per
// VRF id, which owns one StatusByProtocol<Leaf> per transport, which owns one Leaf table per
// routing protocol. Each level is an entity that publishes the coming and going of its children
// per key (`vrfStatus`, `transportStatus`, `protocolStatus`), so a reader can nest a machine per
// element at every level. A level knows its place (VRF id, transport) from its parent at
// construction; the leaf gets (protocol, parent) and reads the rest from the parent. The RIB (or
// its stand-in) writes the trees; the protocol machines read them.
//
// Iteration: every level's collection is a Zel::HashMap2018 with that map's contract.
#pragma once

#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/Attribute.h"

namespace Routing::Rib {

template <class Leaf>
class StatusByTransport;

template <class Leaf>
class StatusByProtocol : public Zel::Entity {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  ZEL_CONST(VrfId, vrfId)
  ZEL_CONST(Transport, transport)
  ZEL_OWNED_MAP(RoutingProtocol, Leaf, protocolStatus, 130)

  // Built by the parent's collection, which passes itself (the owned-collection rule wants this
  // constructor public; nothing else has a parent to give).
  StatusByProtocol(Transport const& transport, StatusByTransport<Leaf>* parent)
      : vrfId_(parent->vrfId()), transport_(transport) {}
};

template <class Leaf>
class StatusByTransport : public Zel::Entity {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  ZEL_CONST(VrfId, vrfId)
  ZEL_OWNED_MAP(Transport, StatusByProtocol<Leaf>, transportStatus, 130)

 protected:
  friend struct Zel::Factory;
  explicit StatusByTransport(VrfId const& vrfId) : vrfId_(vrfId) {}
};

template <class Leaf>
class StatusByVrf : public Zel::Entity {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  ZEL_OWNED_MAP(VrfId, StatusByTransport<Leaf>, vrfStatus, 130)

  // The leaf at (VRF, transport, protocol), or null when any level is missing.
  [[nodiscard]] Quill::Ptr<Leaf> leaf(VrfId vrfId, Transport transport, RoutingProtocol protocol) const {
    auto byTransport = vrfStatus(vrfId);
    if (!byTransport) return nullptr;
    auto byProtocol = byTransport->transportStatus(transport);
    if (!byProtocol) return nullptr;
    return byProtocol->protocolStatus(protocol);
  }
  // Finds or creates every level down to the leaf; each level that is created is published.
  Quill::Ptr<Leaf> leafIs(VrfId vrfId, Transport transport, RoutingProtocol protocol) {
    return vrfStatusIs(vrfId)->transportStatusIs(transport)->protocolStatusIs(protocol);
  }
  // Removes the leaf, then each level above it that is left empty.
  void leafDel(VrfId vrfId, Transport transport, RoutingProtocol protocol) {
    auto byTransport = vrfStatus(vrfId);
    if (!byTransport) return;
    auto byProtocol = byTransport->transportStatus(transport);
    if (!byProtocol) return;
    byProtocol->protocolStatusDel(protocol);
    if (byProtocol->protocolStatusSize() == 0) byTransport->transportStatusDel(transport);
    if (byTransport->transportStatusSize() == 0) vrfStatusDel(vrfId);
  }

 protected:
  StatusByVrf() = default;
};

}  // namespace Routing::Rib
