// Routing::Bgp::IgpResultTable: the deduplicating table of route-redistribution results. It owns
// the results by 32-bit id (published per id on `igpResult`) and hands out IgpResultHandle
// handles: equal results share one entry and one handle, and the entry goes with its last handle.
// Ids come from its id allocator (limited to 32 bits). Owned by the protocol root; the route
// machines write it and keep the handles; the RIB reads a route's result by its id.
//
// Iteration: `igpResult` is a Zel::HashMap2018 with that map's contract.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>

#include "foundations/rib/DedupIndex.h"
#include "foundations/rib/IdAllocator.h"
#include "foundations/rib/IgpResult.h"
#include "foundations/runtime/Attribute.h"

namespace Routing::Bgp {

// A holder's handle to one IGP result: its id() is what a route carries as tagOrResultId.
class IgpResultHandle : public Routing::Rib::DedupHandle<std::uint32_t> {
 public:
  [[nodiscard]] std::uint32_t id() const noexcept { return key(); }
  friend std::ostream& operator<<(std::ostream& os, IgpResultHandle const& h) { return os << h.id(); }

 protected:
  friend struct Zel::Factory;
  IgpResultHandle(std::uint32_t id, Routing::Rib::DedupOwner<std::uint32_t>* owner) noexcept
      : DedupHandle(id, owner) {}
};

class IgpResultTable : public Zel::Entity, private Routing::Rib::DedupOwner<std::uint32_t> {
 public:
  [[nodiscard]] static Quill::Ptr<IgpResultTable> IgpResultTableIs(
      Quill::Ptr<Routing::Rib::IdAllocator> allocator = nullptr);

  ZEL_ATTR_ID(igpResult, 130);
  // The result of an id; the default result when absent.
  [[nodiscard]] IgpResult igpResult(std::uint32_t id) const { return results_.get(id); }
  [[nodiscard]] bool igpResultHas(std::uint32_t id) const { return results_.has(id); }
  [[nodiscard]] std::size_t igpResultSize() const { return results_.map().size(); }
  [[nodiscard]] auto igpResultIteratorConst() const { return results_.map().iterator(); }
  [[nodiscard]] auto const& zelColl(Zel::AttrTag<igpResultId>) const noexcept { return results_.map(); }

  // The handle of this result, creating the entry if there is none.
  [[nodiscard]] Quill::Ptr<IgpResultHandle> dedup(IgpResult const& result);
  [[nodiscard]] bool igpResultHeld(std::uint32_t id) const { return index_.isHeld(id); }

 protected:
  friend struct Zel::Factory;
  explicit IgpResultTable(Quill::Ptr<Routing::Rib::IdAllocator> allocator);

 private:
  void dedupRelease(std::uint32_t const& id, void const* handle) noexcept override;

  Zel::MapAttr<std::uint32_t, IgpResult, ZEL_SALT(igpResultId)> results_;
  Quill::Ptr<Routing::Rib::IdAllocator> allocator_;
  // Declared last, so destroyed first: the handles are detached before anything else goes.
  Routing::Rib::DedupIndex<IgpResult, std::uint32_t, IgpResultHandle> index_;
};

}  // namespace Routing::Bgp
