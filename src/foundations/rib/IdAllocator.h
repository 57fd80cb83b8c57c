// Routing::Rib::IdAllocator: hands out the ids of table entries (vias, via sets, IGP results). It
// owns one 64-bit word, the current id, reached through idPtr(); this base keeps the word in
// memory, MmapIdAllocator in a file so that ids survive a restart. It writes only that word. A
// table holds its allocator through Quill::Ptr; several tables may share one. Not thread-safe.
#pragma once

#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Ptr.h"

namespace Routing::Rib {

class IdAllocator : public Zel::PtrInterface {
 public:
  static constexpr Id kNoLimit = ~Id(0);

  // An allocator whose current id lives in memory and starts at 0.
  [[nodiscard]] static Quill::Ptr<IdAllocator> IdAllocatorIs(Id maxId = kNoLimit);

  // The word that holds the current id; null when its store could not be set up, and then every
  // other reader and writer ends the process on the assertion "idPtr != NULL".
  [[nodiscard]] Id const* idPtr() const noexcept { return idPtr_; }
  [[nodiscard]] Id currentId() const;
  [[nodiscard]] Id maxId() const noexcept { return maxId_; }
  void currentIdIs(Id id);
  // Adds n to the current id and returns the new value.
  Id currentIdInc(Id n);
  // A fresh id: the current id plus one, or 1 once the current id has reached maxId().
  Id nextId();
  // The next fresh id for which inUse(id) is false. Ends the process when every id is in use.
  template <class InUse>
  Id nextFreeId(InUse inUse) {
    for (Id tries = 0;; ++tries) {
      QUILL_ASSERT(tries <= maxId_, "Routing::Rib::IdAllocator: every id is in use");
      Id const id = nextId();
      if (!inUse(id)) return id;
    }
  }

 protected:
  friend struct Zel::Factory;
  explicit IdAllocator(Id maxId) noexcept : maxId_(maxId) {}
  void idPtrIs(Id* p) noexcept { idPtr_ = p; }

 private:
  Id* storage() const;

  Id word_ = 0;
  Id* idPtr_ = &word_;
  Id maxId_;
};

}  // namespace Routing::Rib
