#include "foundations/rib/ViaSetConfig.h"

#include <algorithm>

namespace Routing::Rib {

namespace {
// A set as its content: the same set under the all-zero key.
Skein::ViaSet contentOf(Skein::ViaSet set) {
  set.viaSetKeyIs(ViaSetKey());
  return set;
}
}  // namespace

Quill::Ptr<ViaSetConfig> ViaSetConfig::ViaSetConfigIs(ViaSetConfigKey key, Quill::Ptr<IdAllocator> allocator) {
  return Zel::make<ViaSetConfig>(key, std::move(allocator));
}

ViaSetConfig::ViaSetConfig(ViaSetConfigKey key, Quill::Ptr<IdAllocator> allocator)
    : key_(key),
      coll_(Skein::ViaSetCollection::ViaSetCollectionIs()),
      allocator_(allocator ? std::move(allocator) : IdAllocator::IdAllocatorIs()),
      index_(ZEL_SALT(configViaSetCollId) + 7) {}

void ViaSetConfig::restartingVrfDel(L3::VrfName const& vrf) {
  restartingVrf_.del(*this, restartingVrfId, vrf);
  for (auto it = index_.unheld().iterator(); it; it.advance()) {
    if (restartingVrfSize() != 0) return;  // a reactor marked a VRF again
    doRemove(it.key());
  }
}

void ViaSetConfig::configViaSetCollIs(Quill::Ptr<Skein::ViaSetCollection> coll) {
  if (!coll || coll == coll_) return;
  index_.detachAll();
  coll_ = std::move(coll);
  Id highest = 0;
  for (auto it = coll_->viaSetIteratorConst(); it; it.advance()) {
    index_.add(contentOf(it.value()), it.key());
    highest = std::max(highest, it.key().id());
  }
  if (allocator_->currentId() < highest) allocator_->currentIdIs(highest);
  publish(configViaSetCollId);
}

Quill::Ptr<DedupViaSetKey> ViaSetConfig::dedupConfigViaSetIs(Skein::ViaSet const& viaSet) {
  Skein::ViaSet content = contentOf(viaSet);
  if (ViaSetKey const* found = index_.keyOf(content)) return index_.hold(this, *found);
  ViaSetKey const key = freshKey();
  index_.add(content, key);
  Quill::Ptr<DedupViaSetKey> h = index_.hold(this, key);  // held before any reader hears of it
  content.viaSetKeyIs(key);
  coll_->viaSetIs(key, content);
  return h;
}

void ViaSetConfig::dedupRelease(ViaSetKey const& k, void const* handle) noexcept {
  if (!index_.release(k, handle)) return;
  if (restartingVrfSize() != 0) return;
  doRemove(k);
}

void ViaSetConfig::doRemove(ViaSetKey const& k) {
  Skein::ViaSet const* set = coll_->viaSetColl().find(k);
  if (!set) return;
  index_.erase(contentOf(*set), k);
  coll_->viaSetDel(k);
}

ViaSetKey ViaSetConfig::freshKey() {
  ViaSetKey key(0, 0, key_.routingProtocol(), Transport());
  key.idIs(allocator_->nextFreeId([&](Id id) {
    key.idIs(id);
    return coll_->viaSetHas(key);
  }));
  return key;
}

}  // namespace Routing::Rib
