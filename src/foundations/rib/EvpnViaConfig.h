// Routing::Rib::Evpn::ViaConfig: the EVPN via table of one routing protocol: a ViaTable of
// Routing::Rib::Evpn::Via, keyed with transport 3. EVPN vias reach their VTEP in the default VRF,
// so every entry is in VRF 0, and restartingVrfIs/Del act on VRF 0's entries. Route configuration
// writes it through dedupViaIs; the RIB reads it. Owned or mounted by the protocol root.
#pragma once

#include "foundations/rib/EvpnVia.h"
#include "foundations/rib/ViaTable.h"

namespace Routing::Rib::Evpn {

class ViaConfig : public ViaTable<Via> {
 public:
  [[nodiscard]] static Quill::Ptr<ViaConfig> ViaConfigIs(RoutingProtocol rp = {},
                                                         Transport transport = Transport::transportEvpn(),
                                                         Quill::Ptr<IdAllocator> allocator = nullptr);

  // The handle of the via of this content (its key is ignored), creating the entry if there is none.
  [[nodiscard]] Quill::Ptr<DedupViaKey> dedupViaIs(Via const& via) { return doDedup(via, VrfId::defaultVrf(), true); }
  // The same without creating: null when the table has no such via.
  [[nodiscard]] Quill::Ptr<DedupViaKey> dedupViaKey(Via const& via) {
    return doDedup(via, VrfId::defaultVrf(), false);
  }

 protected:
  friend struct Zel::Factory;
  ViaConfig(RoutingProtocol rp, Transport transport, Quill::Ptr<IdAllocator> allocator)
      : ViaTable(rp, transport, std::move(allocator)) {}
};

}  // namespace Routing::Rib::Evpn
