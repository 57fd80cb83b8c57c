// Ondex::IntfId: an interface, by name, as a 4-byte id into a process-wide table of interned names.
// The table owns the names and never forgets one, so name() stays valid for the life of the process;
// an IntfId itself is a plain, trivially copyable value. Id 0 is the empty name (no interface) and
// id 1 is "Null0", the interface of drop routes. The table is not locked: the system runs on one
// thread. Ordering is by name, so output sorted by interface is the same in every run.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

namespace Ondex {

class IntfId {
 public:
  // Longest name; a longer one is a range failure of the runtime's string bound.
  [[nodiscard]] static constexpr std::size_t maxLength() noexcept { return 100; }

  // No interface.
  constexpr IntfId() noexcept = default;
  // The id of `name`, interning it on first use. More than maxLength() bytes raises
  // Zel::RangeException ("Zel::String::bytes > maxLength() not allowed").
  explicit IntfId(std::string_view name);

  // The drop interface "Null0".
  [[nodiscard]] static constexpr IntfId null0() noexcept { return IntfId(kNull0Id); }

  [[nodiscard]] constexpr std::uint32_t id() const noexcept { return id_; }
  [[nodiscard]] constexpr bool empty() const noexcept { return id_ == 0; }
  [[nodiscard]] constexpr bool isNull0() const noexcept { return id_ == kNull0Id; }
  [[nodiscard]] std::string_view name() const noexcept;

  // A name of at most maxLength() printable bytes without blanks ("Ethernet1", "Vlan10"); the empty
  // text is no interface. Nothing for anything else; never raises.
  [[nodiscard]] static std::optional<IntfId> fromString(std::string_view text);
  // The quoted name as valueToStrep prints it ('Ethernet1').
  [[nodiscard]] static std::optional<IntfId> fromStrep(std::string_view text);

  // Hash of the id: equal names have equal ids, so equal values hash equal.
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  // The id, as the word a composite value's hash mixes in (Zel::ValueFields).
  [[nodiscard]] constexpr std::uint32_t hashWord() const noexcept { return id_; }
  friend constexpr bool operator==(IntfId a, IntfId b) noexcept = default;
  // By name; the empty name first.
  friend std::strong_ordering operator<=>(IntfId a, IntfId b) noexcept;
  friend std::ostream& operator<<(std::ostream& os, IntfId i) { return os << i.name(); }

 private:
  static constexpr std::uint32_t kNull0Id = 1;
  constexpr explicit IntfId(std::uint32_t id) noexcept : id_(id) {}

  std::uint32_t id_ = 0;
};

[[nodiscard]] std::string valueToStrep(IntfId i);

}  // namespace Ondex

template <>
struct fmt::formatter<Ondex::IntfId> : fmt::ostream_formatter {};
