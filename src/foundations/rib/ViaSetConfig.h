// Routing::Rib::ViaSetConfig: the via-set table of one routing protocol and RIB instance. It
// deduplicates via sets: dedupConfigViaSetIs gives a DedupViaSetKey handle, one per set content
// (FEC type, flags and the via keys in order), and the set stays in the storage while a handle
// holds it. It writes the sets into its storage, a Skein::ViaSetCollection (its own until
// configViaSetCollIs binds it to a mounted one), and publishes `restartingVrf` per VRF name and
// `configViaSetColl` when the storage changes. Owned by the protocol root; read by the RIB.
//
// Restart: while any VRF is marked restarting, sets that no handle holds stay (set content does
// not name a VRF, so the mark of one VRF keeps all); when the last mark goes, every unheld set
// goes. Binding a storage that already holds sets (written by a previous life) makes each of them
// an unheld entry that equal content binds again under its old key.
//
// Iteration: restartingVrfIteratorConst() is a Zel::HashMap2018 iterator with that map's contract.
#pragma once

#include <cstddef>

#include "foundations/rib/DedupIndex.h"
#include "foundations/rib/DedupViaSetKey.h"
#include "foundations/rib/IdAllocator.h"
#include "foundations/rib/ViaSetCollection.h"
#include "foundations/rib/ViaSetConfigKey.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/types/VrfName.h"

namespace Routing::Rib {

class ViaSetConfig : public Zel::Entity, private DedupOwner<ViaSetKey> {
 public:
  [[nodiscard]] static Quill::Ptr<ViaSetConfig> ViaSetConfigIs(ViaSetConfigKey key,
                                                               Quill::Ptr<IdAllocator> allocator = nullptr);

  ZEL_CONST(ViaSetConfigKey, key)

  // VRFs being rebuilt after a restart.
  ZEL_ATTR_ID(restartingVrf, 130);
  [[nodiscard]] bool restartingVrfHas(L3::VrfName const& vrf) const { return restartingVrf_.has(vrf); }
  [[nodiscard]] std::size_t restartingVrfSize() const { return restartingVrf_.map().size(); }
  [[nodiscard]] auto restartingVrfIteratorConst() const { return restartingVrf_.map().iterator(); }
  [[nodiscard]] auto const& zelColl(Zel::AttrTag<restartingVrfId>) const noexcept { return restartingVrf_.map(); }
  void restartingVrfIs(L3::VrfName const& vrf) { restartingVrf_.set(*this, restartingVrfId, vrf); }
  // Clears the mark; when no VRF is left restarting, removes every set that no handle holds.
  void restartingVrfDel(L3::VrfName const& vrf);

  // The storage the sets are written to.
  ZEL_ATTR_ID(configViaSetColl, 131);
  [[nodiscard]] Quill::Ptr<Skein::ViaSetCollection> const& configViaSetColl() const noexcept { return coll_; }
  // Binds the table to a storage: handles of the former one are detached, and the sets already in
  // the new one become unheld entries. The id allocator is moved past their ids.
  void configViaSetCollIs(Quill::Ptr<Skein::ViaSetCollection> coll);

  // The handle of the set of this content (its key is ignored), creating the entry if there is none.
  [[nodiscard]] Quill::Ptr<DedupViaSetKey> dedupConfigViaSetIs(Skein::ViaSet const& viaSet);
  // True while some handle holds the set.
  [[nodiscard]] bool viaSetHeld(ViaSetKey const& k) const { return index_.isHeld(k); }
  [[nodiscard]] Quill::Ptr<IdAllocator> const& idAllocator() const noexcept { return allocator_; }

 protected:
  friend struct Zel::Factory;
  ViaSetConfig(ViaSetConfigKey key, Quill::Ptr<IdAllocator> allocator);

 private:
  void dedupRelease(ViaSetKey const& k, void const* handle) noexcept override;
  void doRemove(ViaSetKey const& k);
  ViaSetKey freshKey();

  Zel::SetAttr<L3::VrfName, ZEL_SALT(restartingVrfId)> restartingVrf_;
  Quill::Ptr<Skein::ViaSetCollection> coll_;
  Quill::Ptr<IdAllocator> allocator_;
  // Declared last, so destroyed first: the handles are detached before anything else goes.
  DedupIndex<Skein::ViaSet, ViaSetKey, DedupViaSetKey> index_;
};

}  // namespace Routing::Rib
