#include "foundations/records/NexthopGroupEntryStatus.h"

namespace NexthopGroup {

Quill::Ptr<EntryStatus> EntryStatus::EntryStatusIs() { return Zel::make<EntryStatus>(); }

std::int64_t EntryStatus::nexthopGroupNameToId(Zel::String const& name) const {
  NexthopGroupId const* id = nhgIdColl().find(NexthopGroupEntryKey(name));
  return id ? std::int64_t(*id) : kNoId;
}

}  // namespace NexthopGroup
