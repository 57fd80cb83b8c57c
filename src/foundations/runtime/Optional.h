// Zel::Optional<T>: a value or nothing, as attributes hold an optional value. Reading an empty one
// raises through Zel::Impl::throwBadOptionalAccess(); optionalClearValue() empties it. It owns its
// value in place (trivially copyable when T is). Empty compares unequal to, and before, any present
// value, also one whose own value is empty (an empty vector).
#pragma once

#include <compare>
#include <concepts>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Hash.h"

namespace Zel {

template <class T>
class Optional {
 public:
  using ValueType = T;

  constexpr Optional() noexcept = default;
  constexpr Optional(T const& value) : v_(value) {}  // NOLINT(google-explicit-constructor)
  constexpr Optional(T&& value) : v_(std::move(value)) {}  // NOLINT(google-explicit-constructor)

  [[nodiscard]] constexpr bool hasValue() const noexcept { return v_.has_value(); }
  [[nodiscard]] constexpr bool has_value() const noexcept { return v_.has_value(); }
  constexpr explicit operator bool() const noexcept { return v_.has_value(); }

  [[nodiscard]] constexpr T const& value() const& {
    if (!v_) Impl::throwBadOptionalAccess();
    return *v_;
  }
  [[nodiscard]] constexpr T& value() & {
    if (!v_) Impl::throwBadOptionalAccess();
    return *v_;
  }
  [[nodiscard]] constexpr T const& operator*() const& { return value(); }
  [[nodiscard]] constexpr T& operator*() & { return value(); }
  [[nodiscard]] constexpr T const* operator->() const { return &value(); }
  [[nodiscard]] constexpr T* operator->() { return &value(); }
  [[nodiscard]] constexpr T valueOr(T fallback) const& { return v_ ? *v_ : std::move(fallback); }

  // Stores a value, replacing any held one.
  constexpr void valueIs(T value) { v_ = std::move(value); }
  constexpr void optionalClearValue() noexcept { v_.reset(); }

  // Empty hashes to a value of its own; a present value mixes in the value's hash under the seed.
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const {
    HashBuilder h(seed);
    h.add(v_.has_value());
    if (v_) h.add(hashOf(*v_, seed));
    return h.value();
  }

  // The inverse of valueToStrep below: "None", or the text T::fromStrep reads.
  [[nodiscard]] static std::optional<Optional> fromStrep(std::string_view text)
    requires requires { T::fromStrep(text); }
  {
    if (text == "None") return Optional();
    auto value = T::fromStrep(text);
    if (!value) return std::nullopt;
    return Optional(std::move(*value));
  }

  friend constexpr bool operator==(Optional const& a, Optional const& b)
    requires std::equality_comparable<T>
  {
    return a.v_ == b.v_;
  }
  friend constexpr auto operator<=>(Optional const& a, Optional const& b)
    requires std::three_way_comparable<T>
  {
    return a.v_ <=> b.v_;
  }
  // For a T that has operator< only: empty first, then by the values.
  friend constexpr bool operator<(Optional const& a, Optional const& b)
    requires(!std::three_way_comparable<T>)
  {
    if (!b.v_) return false;
    return !a.v_ || *a.v_ < *b.v_;
  }
  friend std::ostream& operator<<(std::ostream& os, Optional const& o)
    requires requires(T const& v) { os << v; }
  {
    if (!o.v_) return os << "None";
    return os << *o.v_;
  }

 private:
  std::optional<T> v_;
};

// The text form inside Value('...') forms: None, or the value's own form (found by its namespace).
template <class T>
[[nodiscard]] std::string valueToStrep(Optional<T> const& o) {
  if (!o) return "None";
  return valueToStrep(*o);
}

}  // namespace Zel
