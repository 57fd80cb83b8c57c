// Zel::ValueFields<Derived>: hash, equality, order and the Value('...') text form of a composite
// value type, all from one list of its fields. The type states its fields once,
//
//   class RouteKey : public Zel::ValueFields<RouteKey> {
//    public:
//     static constexpr std::string_view kTypeName = "Routing::RouteKey";   // only for a text form
//     static constexpr auto fields() {
//       return std::tuple{Zel::field("prefix", &RouteKey::prefix_), Zel::field("preference", &RouteKey::preference_)};
//     }
//     ...
//
// and gets from this base:
//   hash(seed)            every field mixed in, in list order (integers and enums as words, other
//                         fields through their own hash, ranges as their size and elements);
//   ==                    every field equal;
//   <=>                   the fields compared in list order (under ValueOrder::own the type writes
//                         its own order, or has none);
//   valueToStrep, fromStrep   "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/8', 'preference': 1})"
//                         and its inverse, when the type names kTypeName. Each field prints through
//                         Zel::FieldText<M>: unsigned numbers bare, bools True/False, strings quoted,
//                         ranges as "[a, b]", any other type by its own valueToStrep and fromStrep.
// fromStrep builds the default value and sets each field, so the type is default-constructible and
// its fields assignable. fields() may be private when the type befriends Zel::ValueFieldsAccess.
// A plain aggregate (which a base class would stop being) keeps its defaulted == and <=> and takes
// its hash from Zel::hashFields.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <array>
#include <iterator>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "foundations/runtime/Hash.h"
#include "foundations/runtime/String.h"
#include "foundations/runtime/ValueText.h"

namespace Zel {

// One entry of a field list: the name its text form uses and the member.
template <class T, class M>
struct Field {
  std::string_view name;
  M T::*member;
};
template <class T, class M>
constexpr Field<T, M> field(std::string_view name, M T::*member) {
  return {name, member};
}

// The text form of one field's value.
template <class M, class = void>
struct FieldText {
  static std::string print(M const& v) { return valueToStrep(v); }
  static std::optional<M> parse(std::string_view text) { return M::fromStrep(text); }
};
template <class M>
struct FieldText<M, std::enable_if_t<std::is_unsigned_v<M> && !std::is_same_v<M, bool>>> {
  static std::string print(M v) { return std::to_string(v); }
  static std::optional<M> parse(std::string_view text) { return ValueText::parseUnsigned<M>(text); }
};
template <>
struct FieldText<bool> {
  static std::string print(bool v) { return v ? "True" : "False"; }
  static std::optional<bool> parse(std::string_view text) {
    if (text == "True") return true;
    if (text == "False") return false;
    return std::nullopt;
  }
};
template <>
struct FieldText<String> {
  static std::string print(String const& v) { return ValueText::quote(v.view()); }
  static std::optional<String> parse(std::string_view text) {
    auto unquoted = ValueText::unquote(text);
    if (!unquoted) return std::nullopt;
    return String(*unquoted);
  }
};
// A list of values, "[1, 2]", for a range that can be appended to (push_back).
template <class M>
struct FieldText<M, std::enable_if_t<std::ranges::range<M> && !std::is_convertible_v<M, std::string_view>>> {
  using Element = std::ranges::range_value_t<M>;
  static std::string print(M const& v) {
    std::string out = "[";
    for (auto const& e : v) {
      if (out.size() > 1) out += ", ";
      out += FieldText<Element>::print(e);
    }
    return out + "]";
  }
  static std::optional<M> parse(std::string_view text);
};

namespace Impl {
template <class M>
void addToHash(HashBuilder& h, M const& v, std::uint32_t seed) noexcept {
  if constexpr (std::is_integral_v<M> || std::is_enum_v<M>) {
    h.add(std::uint64_t(v));
  } else if constexpr (requires { v.hash(seed); }) {
    h.add(v.hash(seed));
  } else {
    h.add(std::size(v));
    for (auto const& e : v) addToHash(h, e, seed);
  }
}
}  // namespace Impl

struct ValueFieldsAccess {
  template <class T>
  static constexpr auto fields() {
    return T::fields();
  }
};

// The hash of a value from its field list alone: for a plain aggregate that keeps its defaulted
// == and <=> (which already go field by field) and cannot take a base class.
template <class T>
[[nodiscard]] std::uint32_t hashFields(T const& v, std::uint32_t seed) noexcept {
  HashBuilder h(seed);
  std::apply([&](auto const&... f) { (Impl::addToHash(h, v.*f.member, seed), ...); }, ValueFieldsAccess::fields<T>());
  return h.value();
}

enum class ValueOrder { byFields, own };

template <class Derived, ValueOrder kOrder = ValueOrder::byFields>
class ValueFields {
 public:
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return hashFields(self(), seed); }

  friend constexpr bool operator==(Derived const& a, Derived const& b) noexcept {
    return std::apply([&](auto const&... f) { return ((a.*f.member == b.*f.member) && ...); }, list());
  }
  friend constexpr std::strong_ordering operator<=>(Derived const& a, Derived const& b) noexcept
    requires(kOrder == ValueOrder::byFields)
  {
    std::strong_ordering c = std::strong_ordering::equal;
    std::apply([&](auto const&... f) { (void)((c = a.*f.member <=> b.*f.member, c == 0) && ...); }, list());
    return c;
  }

  friend std::string valueToStrep(Derived const& v)
    requires requires { Derived::kTypeName; }
  {
    constexpr std::size_t n = std::tuple_size_v<decltype(list())>;
    std::string texts[n];
    ValueText::Field printed[n];
    std::size_t i = 0;
    v.forEach([&](auto const& f) {
      texts[i] = FieldText<std::remove_cvref_t<decltype(v.*f.member)>>::print(v.*f.member);
      printed[i] = {f.name, texts[i]};
      ++i;
    });
    return ValueText::print(Derived::kTypeName, printed);
  }
  [[nodiscard]] static std::optional<Derived> fromStrep(std::string_view text)
    requires requires { Derived::kTypeName; }
  {
    static constexpr auto names = std::apply([](auto const&... f) { return std::array{f.name...}; }, list());
    auto texts = ValueText::parse(text, Derived::kTypeName, names);
    if (!texts) return std::nullopt;
    Derived v;
    std::size_t i = 0;
    bool ok = true;
    v.forEach([&](auto const& f) {
      if (!ok) return;
      auto value = FieldText<std::remove_cvref_t<decltype(v.*f.member)>>::parse((*texts)[i++]);
      if (value) {
        v.*f.member = std::move(*value);
      } else {
        ok = false;
      }
    });
    if (!ok) return std::nullopt;
    return v;
  }

 private:
  static constexpr auto list() { return ValueFieldsAccess::fields<Derived>(); }
  [[nodiscard]] constexpr Derived const& self() const noexcept { return static_cast<Derived const&>(*this); }
  template <class Fn>
  constexpr void forEach(Fn&& fn) const {
    std::apply([&](auto const&... f) { (fn(f), ...); }, list());
  }
};

template <class M>
std::optional<M> FieldText<M, std::enable_if_t<std::ranges::range<M> && !std::is_convertible_v<M, std::string_view>>>::
    parse(std::string_view text) {
  if (text.size() < 2 || text.front() != '[' || text.back() != ']') return std::nullopt;
  text = text.substr(1, text.size() - 2);
  M out;
  while (!text.empty()) {
    std::size_t const comma = text.find(", ");
    auto value = FieldText<Element>::parse(text.substr(0, comma));
    if (!value) return std::nullopt;
    out.push_back(std::move(*value));
    if (comma == std::string_view::npos) break;
    text.remove_prefix(comma + 2);
    if (text.empty()) return std::nullopt;  // a trailing separator
  }
  return out;
}

}  // namespace Zel
