// Zel::NumberValue<Derived, Raw>: the base of a value that is one unsigned number (an id, a label,
// a preference, a protocol). It holds the number and gives the type
//   value()                 the number;
//   hash(seed)              the number mixed under the seed; hashWord(), the number as the word a
//                           composite value's hash mixes in (Zel::ValueFields);
//   ==, <=>                 numeric;
//   toStrep()               the decimal number, or its name when the type names some numbers;
//   valueToStrep, fromStrep the text form inside Value('...') forms: the bare number, or for a type
//                           with names the quoted name or number ('staticConfig', '7'); fromStrep
//                           reads a number through Derived's constructor from Raw (a type that
//                           checks its range declares its own fromStrep) and a name quoted or not.
// A type names numbers by listing them, as
//   static constexpr std::pair<std::string_view, std::uint16_t> kNames[] = {{"staticConfig", 2}};
// It stays a plain, trivially copyable value the size of Raw; the default value is Derived's to set.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "foundations/runtime/Hash.h"
#include "foundations/runtime/ValueText.h"

namespace Zel {

template <class Derived, class Raw>
class NumberValue {
  static_assert(std::is_unsigned_v<Raw>);

 public:
  [[nodiscard]] constexpr Raw value() const noexcept { return value_; }
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return HashBuilder(seed).add(value_).value(); }
  [[nodiscard]] constexpr auto hashWord() const noexcept {
    return std::conditional_t<(sizeof(Raw) <= 4), std::uint32_t, std::uint64_t>(value_);
  }
  friend constexpr bool operator==(Derived a, Derived b) noexcept { return a.value() == b.value(); }
  friend constexpr std::strong_ordering operator<=>(Derived a, Derived b) noexcept { return a.value() <=> b.value(); }

  [[nodiscard]] std::string toStrep() const {
    if constexpr (requires { Derived::kNames; }) {
      for (auto const& [name, number] : Derived::kNames) {
        if (number == value_) return std::string(name);
      }
    }
    return std::to_string(value_);
  }
  friend std::string valueToStrep(Derived v) {
    if constexpr (requires { Derived::kNames; }) {
      return ValueText::quote(v.toStrep());
    } else {
      return v.toStrep();
    }
  }
  [[nodiscard]] static std::optional<Derived> fromStrep(std::string_view text) {
    // Lives as long as the text may point into it: a quoted name is read unquoted.
    std::optional<std::string> unquoted;
    if constexpr (requires { Derived::kNames; }) {
      unquoted = ValueText::unquote(text);
      if (unquoted) text = *unquoted;
      for (auto const& [name, number] : Derived::kNames) {
        if (text == name) return Derived(number);
      }
    }
    auto n = ValueText::parseUnsigned<Raw>(text);
    if (!n) return std::nullopt;
    return Derived(*n);
  }

 protected:
  constexpr explicit NumberValue(Raw value) noexcept : value_(value) {}

  Raw value_;
};

}  // namespace Zel
