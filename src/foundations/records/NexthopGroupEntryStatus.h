// NexthopGroup::EntryStatus: the next-hop groups that exist, each with the id the platform gave it,
// keyed by NexthopGroup::NexthopGroupEntryKey (the group's name). Written by the next-hop group
// agent; the static route machine reads a group's id by name and reviews the routes of a group
// when its entry changes (id 258, keyed by the entry key).
//
// Iterator contract of nhgIdIterator(): that of Zel::HashMap2018 (hash order; any entry may be
// deleted during a walk, and resuming from a saved key visits exactly the entries after it).
#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"
#include "foundations/runtime/ValueFields.h"

namespace NexthopGroup {

using NexthopGroupId = std::uint32_t;

// The key of a group's entry: its name.
class NexthopGroupEntryKey : public Zel::ValueFields<NexthopGroupEntryKey> {
 public:
  // Hash, equality, order and the text form
  // "Value('NexthopGroup::NexthopGroupEntryKey', ** {'nhgName': 'g1'})" come from these.
  static constexpr std::string_view kTypeName = "NexthopGroup::NexthopGroupEntryKey";
  static constexpr auto fields() { return std::tuple{Zel::field("nhgName", &NexthopGroupEntryKey::nhgName_)}; }

  NexthopGroupEntryKey() noexcept = default;
  explicit NexthopGroupEntryKey(Zel::String name) noexcept : nhgName_(std::move(name)) {}

  [[nodiscard]] Zel::String const& nhgName() const noexcept { return nhgName_; }

  friend std::ostream& operator<<(std::ostream& os, NexthopGroupEntryKey const& k) { return os << valueToStrep(k); }

 private:
  Zel::String nhgName_;
};

class EntryStatus : public Zel::Entity {
 public:
  // The id a group without an entry reads as.
  static constexpr std::int64_t kNoId = -1;

  [[nodiscard]] static Quill::Ptr<EntryStatus> EntryStatusIs();

  ZEL_MAP(NexthopGroupEntryKey, NexthopGroupId, nhgId, 258)

  // The id of the group of that name, or kNoId when there is no such group.
  [[nodiscard]] std::int64_t nexthopGroupNameToId(Zel::String const& name) const;

 protected:
  friend struct Zel::Factory;
  EntryStatus() = default;
};

}  // namespace NexthopGroup

template <>
struct fmt::formatter<NexthopGroup::NexthopGroupEntryKey> : fmt::ostream_formatter {};
