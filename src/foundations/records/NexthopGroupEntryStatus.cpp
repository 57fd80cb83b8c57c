#include "foundations/records/NexthopGroupEntryStatus.h"

#include "foundations/types/ValueText.h"

namespace NexthopGroup {

namespace {
constexpr std::string_view kType = "NexthopGroup::NexthopGroupEntryKey";
constexpr std::string_view kFields[] = {"nhgName"};
}  // namespace

std::string NexthopGroupEntryKey::toStrep() const {
  std::string const name = Zel::ValueText::quote(nhgName_.view());
  return Zel::ValueText::print(kType, {{kFields[0], name}});
}

std::optional<NexthopGroupEntryKey> NexthopGroupEntryKey::fromStrep(std::string_view text) {
  auto fields = Zel::ValueText::parse(text, kType, kFields);
  if (!fields) return std::nullopt;
  auto name = Zel::ValueText::unquote((*fields)[0]);
  if (!name) return std::nullopt;
  return NexthopGroupEntryKey(Zel::String(*name));
}

Quill::Ptr<EntryStatus> EntryStatus::EntryStatusIs() { return Zel::make<EntryStatus>(); }

std::int64_t EntryStatus::nexthopGroupNameToId(Zel::String const& name) const {
  NexthopGroupId const* id = nhgIdColl().find(NexthopGroupEntryKey(name));
  return id ? std::int64_t(*id) : kNoId;
}

}  // namespace NexthopGroup
