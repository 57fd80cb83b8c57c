// Routing::Rib::ViaTable<ViaT>: the deduplicating via table that the IP and the EVPN via tables
// are. It owns its vias (key to via, published per key on `via`), the set of restarting VRFs
// (published per VRF on `restartingVrf`), its dedup index and a reference to its id allocator.
// Users get vias through DedupViaKey handles: equal content in one VRF is one entry and one
// handle; when the last handle goes the entry leaves the table, unless its VRF is marked as
// restarting, and then it stays unheld until restartingVrfDel(vrf) removes every unheld entry of
// that VRF (or someone binds it again by its content). A via's key carries the table's routing
// protocol and transport and the VRF. Owned by the protocol root or a container; read by the RIB.
//
// Iteration: viaIteratorConst() and restartingVrfIteratorConst() are Zel::HashMap2018 iterators
// with that map's contract (entries may come and go during a walk; no order is promised).
#pragma once

#include <cstddef>

#include "foundations/rib/DedupIndex.h"
#include "foundations/rib/DedupViaKey.h"
#include "foundations/rib/IdAllocator.h"
#include "foundations/rib/ViaKey.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace Routing::Rib {

template <class ViaT>
class ViaTable : public Zel::Entity, private DedupOwner<ViaKey> {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  // The protocol and transport that the keys of new vias carry; set them before the first via.
  ZEL_ATTR(RoutingProtocol, rp, 130)
  ZEL_ATTR(Transport, transport, 131)
  // "rib" or "mrib": the RIB instance the table belongs to.
  ZEL_ATTR_DEFAULT(Quill::String, rib, 132, "rib")

  // The vias, by key. An absent key reads as the default via of that key.
  ZEL_ATTR_ID(via, 133);
  [[nodiscard]] ViaT via(ViaKey const& k) const {
    ViaT const* v = via_.map().find(k);
    return v ? *v : ViaT(k);
  }
  [[nodiscard]] ViaT const* viaFind(ViaKey const& k) const { return via_.map().find(k); }
  [[nodiscard]] bool viaHas(ViaKey const& k) const { return via_.has(k); }
  [[nodiscard]] std::size_t viaSize() const { return via_.map().size(); }
  [[nodiscard]] auto viaIteratorConst() const { return via_.map().iterator(); }
  [[nodiscard]] auto const& viaColl() const noexcept { return via_.map(); }
  [[nodiscard]] auto const& zelColl(Zel::AttrTag<viaId>) const noexcept { return via_.map(); }
  // True while some handle holds the via.
  [[nodiscard]] bool viaHeld(ViaKey const& k) const { return index_.isHeld(k); }
  // Removes a via whether or not it is held; its handles are detached and keep a stale key.
  void viaDel(ViaKey const& k) { doRemove(k); }

  // VRFs being rebuilt after a restart: their unheld vias stay until the mark goes.
  ZEL_ATTR_ID(restartingVrf, 134);
  [[nodiscard]] bool restartingVrfHas(VrfId v) const { return restartingVrf_.has(v); }
  [[nodiscard]] std::size_t restartingVrfSize() const { return restartingVrf_.map().size(); }
  [[nodiscard]] auto restartingVrfIteratorConst() const { return restartingVrf_.map().iterator(); }
  [[nodiscard]] auto const& zelColl(Zel::AttrTag<restartingVrfId>) const noexcept { return restartingVrf_.map(); }
  void restartingVrfIs(VrfId v) { restartingVrf_.set(*this, restartingVrfId, v); }
  // Clears the mark, then removes every via of the VRF that no handle holds.
  void restartingVrfDel(VrfId v) {
    restartingVrf_.del(*this, restartingVrfId, v);
    for (auto it = index_.unheld().iterator(); it; it.advance()) {
      ViaKey const k = it.key();
      if (k.vrfId() == v && !restartingVrfHas(v)) doRemove(k);
    }
  }

  [[nodiscard]] Quill::Ptr<IdAllocator> const& idAllocator() const noexcept { return allocator_; }

 protected:
  ViaTable(RoutingProtocol rp, Transport transport, Quill::Ptr<IdAllocator> allocator)
      : allocator_(allocator ? std::move(allocator) : IdAllocator::IdAllocatorIs()), index_(ZEL_SALT(viaId) + 7) {
    rpIs(rp);
    transportIs(transport);
  }

  // The handle of the entry whose content is `content` in `vrfId`; a new entry if there is none
  // and `create` is set, else null. The key `content` carries is ignored.
  Quill::Ptr<DedupViaKey> doDedup(ViaT content, VrfId vrfId, bool create) {
    ViaKey key(0, vrfId, rp(), transport());
    content.viaKeyIs(key);
    if (ViaKey const* found = index_.keyOf(content)) return index_.hold(this, *found);
    if (!create) return nullptr;
    key.idIs(freshId(key));
    index_.add(content, key);
    Quill::Ptr<DedupViaKey> h = index_.hold(this, key);  // held before any reader hears of it
    content.viaKeyIs(key);
    via_.set(*this, viaId, key, std::move(content));
    return h;
  }

 private:
  void dedupRelease(ViaKey const& k, void const* handle) noexcept override {
    if (!index_.release(k, handle)) return;
    if (restartingVrfHas(k.vrfId())) return;
    doRemove(k);
  }
  void doRemove(ViaKey const& k) {
    ViaT const* v = via_.map().find(k);
    if (!v) return;
    ViaT content = *v;
    ViaKey base = k;
    base.idIs(0);
    content.viaKeyIs(base);
    index_.erase(content, k);
    via_.del(*this, viaId, k);
  }
  // The next id of the allocator that no via of this table has under `key`'s other parts.
  Id freshId(ViaKey key) {
    return allocator_->nextFreeId([&](Id id) {
      key.idIs(id);
      return via_.has(key);
    });
  }

  Zel::MapAttr<ViaKey, ViaT, ZEL_SALT(viaId)> via_;
  Zel::SetAttr<VrfId, ZEL_SALT(restartingVrfId)> restartingVrf_;
  Quill::Ptr<IdAllocator> allocator_;
  // Declared last, so destroyed first: the handles are detached before anything else goes.
  DedupIndex<ViaT, ViaKey, DedupViaKey> index_;
};

}  // namespace Routing::Rib
