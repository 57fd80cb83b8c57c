// Routing::Rib::Ip::ViaConfig: the IP via table of one routing protocol and transport (and one
// RIB instance), shared by every VRF: a ViaTable of Routing::Rib::Via. Route configuration writes
// it through dedupViaIs; the RIB reads the vias by key. Owned by the protocol root (the all-VRF
// table) or mounted; see ViaTable for the deduplication and restart rules.
#pragma once

#include "foundations/rib/Via.h"
#include "foundations/rib/ViaTable.h"

namespace Routing::Rib::Ip {

class ViaConfig : public ViaTable<Via> {
 public:
  [[nodiscard]] static Quill::Ptr<ViaConfig> ViaConfigIs(RoutingProtocol rp = {}, Transport transport = {},
                                                         Quill::Ptr<IdAllocator> allocator = nullptr);

  // The handle of the via of this content in this VRF, creating the entry if there is none.
  [[nodiscard]] Quill::Ptr<DedupViaKey> dedupViaIs(ViaContent const& content, VrfId vrfId) {
    return doDedup(Via(ViaKey(), content), vrfId, true);
  }
  // The same without creating: null when the table has no such via.
  [[nodiscard]] Quill::Ptr<DedupViaKey> dedupViaKey(ViaContent const& content, VrfId vrfId) {
    return doDedup(Via(ViaKey(), content), vrfId, false);
  }

 protected:
  friend struct Zel::Factory;
  ViaConfig(RoutingProtocol rp, Transport transport, Quill::Ptr<IdAllocator> allocator)
      : ViaTable(rp, transport, std::move(allocator)) {}
};

}  // namespace Routing::Rib::Ip
