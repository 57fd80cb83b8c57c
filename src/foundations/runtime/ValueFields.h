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
//   hash(seed)            every field mixed in, in list order (integers and enums as themselves,
//                         floats as their bits with -0 as 0, a type with hashWord() as that number,
//                         other fields through their own hash, ranges as their size and elements;
//                         two parts of 32 bits or less in a row go in as one word);
//   ==                    every field equal;
//   <=>                   the fields compared in list order, in the weakest ordering of any field
//                         (a float field makes it partial); under ValueOrder::own the type writes
//                         its own order, or has none;
//   valueToStrep, fromStrep   "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/8', 'preference': 1})"
//                         and its inverse, when the type names kTypeName. Each field prints through
//                         Zel::FieldText<M>: unsigned numbers bare, bools True/False, strings quoted,
//                         ranges as "[a, b]", any other type by its own valueToStrep and fromStrep.
// An entry names a data member or a const member function that gives the field (a base part of
// the value: field("content", &Via::content)); fromStrep sets data members only. fromStrep builds
// the default value and sets each field, so the type is default-constructible and its fields
// assignable. fields() may be private when the type befriends Zel::ValueFieldsAccess.
// A plain aggregate (which a base class would stop being) keeps its defaulted == and <=>, takes its
// hash from Zel::hashFields and its text form from Zel::fieldsToStrep and Zel::fieldsFromStrep.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <array>
#include <bit>
#include <functional>
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

// One entry of a field list: the name its text form uses and the member (a data member, or a const
// member function that gives the field).
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
// Mixes a value's fields into a hash. What fits in 32 bits (a small number, a float, a field's own
// 32-bit hash, a range's size) waits for the next such part, and the two go in as one word.
class FieldMixer {
 public:
  explicit constexpr FieldMixer(std::uint32_t seed) noexcept : h_(seed) {}
  constexpr void half(std::uint32_t w) noexcept {
    if (hasHalf_) {
      h_.add(std::uint64_t(half_) << 32 | w);
      hasHalf_ = false;
    } else {
      half_ = w;
      hasHalf_ = true;
    }
  }
  constexpr void word(std::uint64_t w) noexcept {
    flush();
    h_.add(w);
  }
  [[nodiscard]] constexpr std::uint32_t value() noexcept {
    flush();
    return h_.value();
  }

 private:
  constexpr void flush() noexcept {
    if (hasHalf_) h_.add(half_);
    hasHalf_ = false;
  }

  HashBuilder h_;
  std::uint32_t half_ = 0;
  bool hasHalf_ = false;
};

template <class W>
constexpr void addWord(FieldMixer& m, W w) noexcept {
  if constexpr (sizeof(W) <= 4) {
    m.half(std::uint32_t(w));
  } else {
    m.word(std::uint64_t(w));
  }
}

template <class M>
void addToHash(FieldMixer& m, M const& v, std::uint32_t seed) noexcept {
  if constexpr (std::is_integral_v<M> || std::is_enum_v<M>) {
    addWord(m, v);
  } else if constexpr (std::is_floating_point_v<M>) {
    // 0.0 and -0.0 are equal, so they hash alike.
    M const n = v == 0 ? M(0) : v;
    if constexpr (sizeof(M) == 4) {
      m.half(std::bit_cast<std::uint32_t>(n));
    } else {
      m.word(std::bit_cast<std::uint64_t>(n));
    }
  } else if constexpr (requires { v.hashWord(); }) {
    // A small value whose identity is one number: mixed in directly, not hashed apart first.
    addWord(m, v.hashWord());
  } else if constexpr (requires { v.hash(seed); }) {
    m.half(v.hash(seed));
  } else {
    m.half(std::uint32_t(std::size(v)));
    for (auto const& e : v) addToHash(m, e, seed);
  }
}
}  // namespace Impl

struct ValueFieldsAccess {
  template <class T>
  static constexpr auto fields() {
    return T::fields();
  }
};

namespace Impl {
// The value one entry gives: the member itself, or what the member function returns.
template <class T, class F>
constexpr decltype(auto) fieldOf(T const& v, F const& f) noexcept {
  return std::invoke(f.member, v);
}
template <class T, class F>
using FieldType = std::remove_cvref_t<decltype(fieldOf(std::declval<T const&>(), std::declval<F const&>()))>;

template <class T, class List>
struct FieldsOrdering;
template <class T, class... F>
struct FieldsOrdering<T, std::tuple<F...>> {
  using type = std::common_comparison_category_t<std::compare_three_way_result_t<FieldType<T, F>>...>;
};

template <class T, class Fn>
constexpr void forEachField(Fn&& fn) {
  std::apply([&](auto const&... f) { (fn(f), ...); }, ValueFieldsAccess::fields<T>());
}
}  // namespace Impl

// The order of a value's field list: each field in turn, in the weakest ordering of any of them.
template <class T>
using FieldsOrdering = typename Impl::FieldsOrdering<T, decltype(ValueFieldsAccess::fields<T>())>::type;

// The hash of a value from its field list alone: for a plain aggregate that keeps its defaulted
// == and <=> (which already go field by field) and cannot take a base class.
template <class T>
[[nodiscard]] std::uint32_t hashFields(T const& v, std::uint32_t seed) noexcept {
  Impl::FieldMixer m(seed);
  Impl::forEachField<T>([&](auto const& f) { Impl::addToHash(m, Impl::fieldOf(v, f), seed); });
  return m.value();
}

template <class T>
[[nodiscard]] constexpr bool fieldsEqual(T const& a, T const& b) noexcept {
  return std::apply([&](auto const&... f) { return ((Impl::fieldOf(a, f) == Impl::fieldOf(b, f)) && ...); },
                    ValueFieldsAccess::fields<T>());
}

template <class T>
[[nodiscard]] constexpr FieldsOrdering<T> compareFields(T const& a, T const& b) noexcept {
  FieldsOrdering<T> c = std::strong_ordering::equal;
  std::apply([&](auto const&... f) { (void)((c = Impl::fieldOf(a, f) <=> Impl::fieldOf(b, f), c == 0) && ...); },
             ValueFieldsAccess::fields<T>());
  return c;
}

// "Value('<T::kTypeName>', ** {'field': text, ...})", each field through its FieldText.
template <class T>
[[nodiscard]] std::string fieldsToStrep(T const& v) {
  constexpr std::size_t n = std::tuple_size_v<decltype(ValueFieldsAccess::fields<T>())>;
  std::string texts[n];
  ValueText::Field printed[n];
  std::size_t i = 0;
  Impl::forEachField<T>([&](auto const& f) {
    auto const& value = Impl::fieldOf(v, f);
    texts[i] = FieldText<std::remove_cvref_t<decltype(value)>>::print(value);
    printed[i] = {f.name, texts[i]};
    ++i;
  });
  return ValueText::print(T::kTypeName, printed);
}

// The inverse of fieldsToStrep: nothing unless the whole text is the form of one T.
template <class T>
[[nodiscard]] std::optional<T> fieldsFromStrep(std::string_view text) {
  static constexpr auto names =
      std::apply([](auto const&... f) { return std::array{f.name...}; }, ValueFieldsAccess::fields<T>());
  auto texts = ValueText::parse(text, T::kTypeName, names);
  if (!texts) return std::nullopt;
  T v{};
  std::size_t i = 0;
  bool ok = true;
  Impl::forEachField<T>([&](auto const& f) {
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

enum class ValueOrder { byFields, own };

template <class Derived, ValueOrder kOrder = ValueOrder::byFields>
class ValueFields {
 public:
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept {
    return hashFields(static_cast<Derived const&>(*this), seed);
  }

  friend constexpr bool operator==(Derived const& a, Derived const& b) noexcept { return fieldsEqual(a, b); }
  friend constexpr auto operator<=>(Derived const& a, Derived const& b) noexcept
    requires(kOrder == ValueOrder::byFields)
  {
    return compareFields(a, b);
  }

  friend std::string valueToStrep(Derived const& v)
    requires requires { Derived::kTypeName; }
  {
    return fieldsToStrep(v);
  }
  [[nodiscard]] static std::optional<Derived> fromStrep(std::string_view text)
    requires requires { Derived::kTypeName; }
  {
    return fieldsFromStrep<Derived>(text);
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
