// Routing::Rib::DedupIndex<Content, Key, Handle>: the bookkeeping of a deduplicating table. It
// owns three plain maps: content to key (so equal content finds its entry), key to the live
// handle (a plain pointer: the handle's holders own it), and the set of entries that no handle
// holds (kept while a VRF restarts). It writes nothing outside itself; the table that embeds it
// stores the entries, publishes, and decides on a release whether the entry stays.
//
// Iteration: unheld() is a Zel::HashMap2018 set with that map's contract (entries may be erased
// during a walk); the other maps are not walked from outside.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundations/rib/DedupHandle.h"
#include "foundations/runtime/HashMap2018.h"

namespace Routing::Rib {

template <class Content, class Key, class Handle>
class DedupIndex {
 public:
  explicit DedupIndex(std::uint32_t salt) : byContent_(salt), holder_(salt + 1), unheld_(salt + 2) {}
  ~DedupIndex() { detachAll(); }
  DedupIndex(DedupIndex const&) = delete;
  DedupIndex& operator=(DedupIndex const&) = delete;

  // The key of an entry of this content, or null.
  [[nodiscard]] Key const* keyOf(Content const& c) const { return byContent_.find(c); }
  [[nodiscard]] bool isHeld(Key const& k) const { return holder_.contains(k); }
  [[nodiscard]] bool isUnheld(Key const& k) const { return unheld_.contains(k); }
  [[nodiscard]] std::size_t size() const { return byContent_.size(); }
  [[nodiscard]] Zel::HashMap2018<Key> const& unheld() const noexcept { return unheld_; }

  // Enters a new entry, not yet held by anyone.
  void add(Content const& c, Key const& k) {
    byContent_.tryEmplace(c, k);
    unheld_.insert(k);
  }
  // The handle of an entry: the live one, or a new one when nobody holds the entry.
  Quill::Ptr<Handle> hold(DedupOwner<Key>* owner, Key const& k) {
    if (Handle* const* live = holder_.find(k)) return Quill::Ptr<Handle>(*live);
    Quill::Ptr<Handle> h = Zel::make<Handle>(k, owner);
    holder_.tryEmplace(k, h.get());
    unheld_.erase(k);
    return h;
  }
  // The last reference to `handle` went. True when it was the entry's holder: the entry is now
  // unheld, and the table decides whether it stays.
  bool release(Key const& k, void const* handle) {
    Handle* const* live = holder_.find(k);
    if (!live || *live != handle) return false;
    holder_.erase(k);
    unheld_.insert(k);
    return true;
  }
  // Forgets an entry. Its live handle, if any, is detached and its release will tell nobody.
  void erase(Content const& c, Key const& k) {
    // Two entries of one content (read from storage written elsewhere) share one content slot.
    if (Key const* owner = byContent_.find(c); owner && *owner == k) byContent_.erase(c);
    if (auto live = holder_.extract(k)) (*live)->ownerDel();
    unheld_.erase(k);
  }
  // Forgets everything; every live handle is detached.
  void detachAll() {
    for (auto it = holder_.iterator(); it; it.advance()) it.value()->ownerDel();
    holder_.clear();
    byContent_.clear();
    unheld_.clear();
  }

 private:
  Zel::HashMap2018<Content, Key> byContent_;
  Zel::HashMap2018<Key, Handle*> holder_;
  Zel::HashMap2018<Key> unheld_;
};

}  // namespace Routing::Rib
