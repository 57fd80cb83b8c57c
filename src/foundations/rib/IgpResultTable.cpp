#include "foundations/rib/IgpResultTable.h"

namespace Routing::Bgp {

Quill::Ptr<IgpResultTable> IgpResultTable::IgpResultTableIs(Quill::Ptr<Routing::Rib::IdAllocator> allocator) {
  return Zel::make<IgpResultTable>(std::move(allocator));
}

IgpResultTable::IgpResultTable(Quill::Ptr<Routing::Rib::IdAllocator> allocator)
    : allocator_(allocator ? std::move(allocator) : Routing::Rib::IdAllocator::IdAllocatorIs(0xffffffff)),
      index_(ZEL_SALT(igpResultId) + 7) {}

Quill::Ptr<IgpResultHandle> IgpResultTable::dedup(IgpResult const& result) {
  if (std::uint32_t const* found = index_.keyOf(result)) return index_.hold(this, *found);
  auto const id = std::uint32_t(allocator_->nextFreeId([&](Routing::Rib::Id id) {
    return id > 0xffffffff || results_.has(std::uint32_t(id));
  }));
  index_.add(result, id);
  Quill::Ptr<IgpResultHandle> h = index_.hold(this, id);  // held before any reader hears of it
  results_.set(*this, igpResultId, id, result);
  return h;
}

void IgpResultTable::dedupRelease(std::uint32_t const& id, void const* handle) noexcept {
  if (!index_.release(id, handle)) return;
  IgpResult const* r = results_.map().find(id);
  if (!r) return;
  index_.erase(*r, id);
  results_.del(*this, igpResultId, id);
}

}  // namespace Routing::Bgp
