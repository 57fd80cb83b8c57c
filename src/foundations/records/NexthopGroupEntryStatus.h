// NexthopGroup::EntryStatus: the next-hop groups that exist, each with the id the platform gave it,
// keyed by NexthopGroup::NexthopGroupEntryKey (the group's name). Written by the next-hop group
// agent; the static route machine reads a group's id by name and reviews the routes of a group
// when its entry changes (id 258, keyed by the entry key).
//
// Iterator contract of nhgIdIterator(): that of Zel::HashMap2018 (hash order; any entry may be
// deleted during a walk, and resuming from a saved key visits exactly the entries after it).
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace NexthopGroup {

using NexthopGroupId = std::uint32_t;

// The key of a group's entry: its name.
class NexthopGroupEntryKey {
 public:
  NexthopGroupEntryKey() noexcept = default;
  explicit NexthopGroupEntryKey(Zel::String name) noexcept : nhgName_(std::move(name)) {}

  [[nodiscard]] Zel::String const& nhgName() const noexcept { return nhgName_; }

  // "Value('NexthopGroup::NexthopGroupEntryKey', ** {'nhgName': 'g1'})" and its inverse.
  [[nodiscard]] std::string toStrep() const;
  [[nodiscard]] static std::optional<NexthopGroupEntryKey> fromStrep(std::string_view text);

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return nhgName_.hash(seed); }
  [[nodiscard]] static bool isEq(NexthopGroupEntryKey const& a, NexthopGroupEntryKey const& b) noexcept {
    return a == b;
  }
  friend bool operator==(NexthopGroupEntryKey const& a, NexthopGroupEntryKey const& b) noexcept = default;
  friend std::strong_ordering operator<=>(NexthopGroupEntryKey const& a, NexthopGroupEntryKey const& b) noexcept {
    return a.nhgName_ <=> b.nhgName_;
  }
  friend std::ostream& operator<<(std::ostream& os, NexthopGroupEntryKey const& k) { return os << k.toStrep(); }

 private:
  Zel::String nhgName_;
};

[[nodiscard]] inline std::string valueToStrep(NexthopGroupEntryKey const& k) { return k.toStrep(); }

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
