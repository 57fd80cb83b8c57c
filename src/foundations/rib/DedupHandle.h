// Routing::Rib::DedupHandle<Key>: the reference-counted handle through which users hold one entry
// of a deduplicating table (a via, a via set, an IGP result). It holds the entry's key and a plain
// pointer back to its table (the DedupOwner), which it tells when its last reference goes; the
// table decides then whether the entry leaves. A table that removes the entry, or goes itself,
// first detaches the handle (ownerDel), so a handle may outlive both and its release touches
// nothing. Owned by its holders through Quill::Ptr; created only by the table.
#pragma once

#include "foundations/runtime/Ptr.h"

namespace Routing::Rib {

template <class Key>
class DedupOwner {
 public:
  // The last reference to `handle`, which holds `key`, is going. Runs inside the release: it may
  // publish, and must not hand the dying handle out again.
  virtual void dedupRelease(Key const& key, void const* handle) noexcept = 0;

 protected:
  DedupOwner() = default;
  ~DedupOwner() = default;
};

template <class Key>
class DedupHandle : public Zel::PtrInterface {
 public:
  [[nodiscard]] Key const& key() const noexcept { return key_; }
  [[nodiscard]] bool hasOwner() const noexcept { return owner_ != nullptr; }
  // The table forgets this handle: its release will tell nobody.
  void ownerDel() noexcept { owner_ = nullptr; }

 protected:
  DedupHandle(Key const& key, DedupOwner<Key>* owner) noexcept : key_(key), owner_(owner) {}

  void handleZeroRef() const noexcept override {
    if (owner_) owner_->dedupRelease(key_, this);
    PtrInterface::handleZeroRef();
  }

 private:
  Key key_;
  DedupOwner<Key>* owner_;
};

}  // namespace Routing::Rib
