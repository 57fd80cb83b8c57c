#include "foundations/runtime/PtrInterface.h"

#include <typeinfo>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Slab.h"

namespace Zel {

bool threadSafePointers = false;

namespace {
// The dynamic type of the object being allocated: set by the factory just before `new`, so that
// the slab counts the block under the concrete type rather than under PtrInterface.
thread_local std::type_info const* pendingType = nullptr;
// The dynamic type of the object being freed. Destructors release children, which are freed in
// turn inside this one's `delete`; each level restores the outer value, so the order is LIFO.
thread_local std::type_info const* deletingType = nullptr;
}  // namespace

void setPendingAllocationType(std::type_info const* type) noexcept { pendingType = type; }

void* PtrInterface::operator new(std::size_t size) {
  std::type_info const* type = pendingType ? pendingType : &typeid(PtrInterface);
  pendingType = nullptr;
  return Plinth::slabAlloc(size, *type);
}

void PtrInterface::operator delete(void* pointer, std::size_t size) noexcept {
  Plinth::slabFree(pointer, size, deletingType ? *deletingType : typeid(PtrInterface));
}

PtrInterface::~PtrInterface() {
  // A debug aid that costs nothing in the hot path: nothing may still refer to an object that dies.
  QUILL_ASSERT((word_ & kCountMask) == 0, "Zel::PtrInterface destroyed while still referenced");
}

void PtrInterface::handleZeroRef() const noexcept {
  // Teardown: notification off, then the zombie walk, then the members go in reverse order of
  // declaration with the destructor. The count is held at one meanwhile, so that a strong
  // reference taken and dropped during these steps does not start a second teardown.
  auto* self = const_cast<PtrInterface*>(this);  // the last reference is gone: nobody else reads it
  ++word_;
  if (hasNotificationActive()) self->hasNotificationActiveIs(false);
  if (!zelMarkedForDeletion()) self->zelDoZombieReactors(true);
  --word_;
  std::type_info const* outer = deletingType;
  deletingType = &typeid(*this);
  delete this;
  deletingType = outer;
}

}  // namespace Zel
