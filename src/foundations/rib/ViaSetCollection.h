// Routing::Rib::Skein::ViaSetCollection: the storage of one via-set table: via sets by key,
// published per key on `viaSet`. The via-set table (ViaSetConfig) is its one writer; the RIB reads
// it. In the host it is a shared table that outlives the writer's process, so the sets a previous
// life wrote are still in it when a new ViaSetConfig binds to it. Mounted, or owned by its
// ViaSetConfig when none is mounted.
//
// Iteration: viaSetIteratorConst() is a Zel::HashMap2018 iterator with that map's contract.
#pragma once

#include "foundations/rib/ViaSet.h"
#include "foundations/runtime/Attribute.h"

namespace Routing::Rib::Skein {

class ViaSetCollection : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<ViaSetCollection> ViaSetCollectionIs();

  ZEL_MAP(ViaSetKey, ViaSet, viaSet, 130)

 protected:
  friend struct Zel::Factory;
  ViaSetCollection() = default;
};

}  // namespace Routing::Rib::Skein
