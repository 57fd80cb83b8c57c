#include "foundations/rib/IdAllocator.h"

#include "foundations/runtime/Exception.h"

namespace Routing::Rib {

Quill::Ptr<IdAllocator> IdAllocator::IdAllocatorIs(Id maxId) { return Zel::make<IdAllocator>(maxId); }

Id* IdAllocator::storage() const {
  QUILL_ASSERT(idPtr_ != nullptr, "idPtr != NULL");
  return idPtr_;
}

Id IdAllocator::currentId() const { return *storage(); }

void IdAllocator::currentIdIs(Id id) { *storage() = id; }

Id IdAllocator::currentIdInc(Id n) {
  Id* p = storage();
  *p += n;
  return *p;
}

Id IdAllocator::nextId() {
  if (currentId() >= maxId_) {
    currentIdIs(1);
    return 1;
  }
  return currentIdInc(1);
}

}  // namespace Routing::Rib
