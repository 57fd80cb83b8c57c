// L3::VrfName: the name of a VRF, a Quill::String of at most maxLength() (100) bytes. Every
// construction checks the bound and raises Zel::RangeException past it; parsing returns nothing
// instead. Copies share the string's block. The empty name is a default-constructed VrfName (in a
// via: the route's own VRF); the default VRF is named "default".
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/runtime/String.h"

namespace L3 {

class VrfName {
 public:
  static constexpr std::string_view kDefaultVrfName = "default";
  [[nodiscard]] static constexpr std::size_t maxLength() noexcept { return 100; }

  VrfName() noexcept = default;
  // Implicit, as a string attribute is set from text. Past maxLength() bytes raises
  // Zel::RangeException ("Zel::String::bytes > maxLength() not allowed").
  VrfName(Quill::String name);    // NOLINT(google-explicit-constructor)
  VrfName(std::string_view name);  // NOLINT(google-explicit-constructor)
  VrfName(char const* name) : VrfName(std::string_view(name)) {}  // NOLINT(google-explicit-constructor)
  VrfName(std::string const& name) : VrfName(std::string_view(name)) {}  // NOLINT(google-explicit-constructor)

  // The name "default", built once.
  [[nodiscard]] static VrfName const& defaultVrf();

  [[nodiscard]] Quill::String const& str() const noexcept { return name_; }
  [[nodiscard]] std::string_view view() const noexcept { return name_.view(); }
  [[nodiscard]] std::size_t size() const noexcept { return name_.size(); }
  [[nodiscard]] bool empty() const noexcept { return name_.empty(); }
  [[nodiscard]] bool isDefault() const noexcept { return view() == kDefaultVrfName; }

  // Any text of at most maxLength() bytes; nothing for a longer one, never raises.
  [[nodiscard]] static std::optional<VrfName> fromString(std::string_view text);
  // The quoted name as valueToStrep prints it ('red').
  [[nodiscard]] static std::optional<VrfName> fromStrep(std::string_view text);

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return name_.hash(seed); }
  friend bool operator==(VrfName const& a, VrfName const& b) noexcept { return a.name_ == b.name_; }
  // Byte-wise order of the names.
  friend std::strong_ordering operator<=>(VrfName const& a, VrfName const& b) noexcept {
    return a.name_ <=> b.name_;
  }
  friend std::ostream& operator<<(std::ostream& os, VrfName const& v) { return os << v.view(); }

 private:
  Quill::String name_;
};

[[nodiscard]] std::string valueToStrep(VrfName const& v);

}  // namespace L3

template <>
struct fmt::formatter<L3::VrfName> : fmt::ostream_formatter {};
