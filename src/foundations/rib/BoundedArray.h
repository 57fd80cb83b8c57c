// Routing::Rib::BoundedArray<T, N>: a list of at most N values, as the RIB's fixed arrays hold
// them (a via's label stack, its entry list, a profile's methods). It owns its values: inline for
// a small bound, on the heap for a large one, so that a mostly empty list of 1024 costs a pointer
// and not four kilobytes in every copy. Writing past N raises the runtime's fixed-array range
// failure (Zel::PodArrayImpl::throwRangeException); it writes nothing outside itself. A value that
// holds one lists it as a field, which hashes it as a range: its size, then its entries.
//
// Iteration: begin()/end() walk the used entries [0, size()) in index order; any write may move
// the heap form's storage, so no iterator or reference survives a write.
#pragma once

#include <algorithm>
#include <array>
#include <compare>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundations/runtime/Exception.h"

namespace Routing::Rib {

template <class T, std::uint32_t N, bool kInline = (N <= 8)>
class BoundedArray {
 public:
  [[nodiscard]] static constexpr std::uint32_t capacity() noexcept { return N; }
  [[nodiscard]] std::uint32_t size() const noexcept {
    if constexpr (kInline) {
      return count_;
    } else {
      return std::uint32_t(values_.size());
    }
  }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }

  // The entry at i; T{} for an index past the used entries. An index of N or more raises.
  [[nodiscard]] T at(std::uint32_t i) const {
    check(i);
    return i < size() ? data()[i] : T{};
  }
  // Stores v at i, extending the used entries to cover it (the gap holds T{}). i >= N raises.
  void set(std::uint32_t i, T v) {
    check(i);
    if (i >= size()) grow(i + 1);
    data()[i] = std::move(v);
  }
  void append(T v) { set(size(), std::move(v)); }
  void clear() noexcept {
    if constexpr (kInline) {
      values_ = {};
      count_ = 0;
    } else {
      values_.clear();
    }
  }

  [[nodiscard]] T const* begin() const noexcept { return data(); }
  [[nodiscard]] T const* end() const noexcept { return data() + size(); }

  friend bool operator==(BoundedArray const& a, BoundedArray const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
  }
  // Lexicographic over the used entries.
  friend auto operator<=>(BoundedArray const& a, BoundedArray const& b) {
    return std::lexicographical_compare_three_way(a.begin(), a.end(), b.begin(), b.end());
  }

 private:
  static void check(std::uint32_t i) {
    if (i >= N) Zel::PodArrayImpl::throwRangeException(N, i);
  }
  [[nodiscard]] T const* data() const noexcept { return values_.data(); }
  [[nodiscard]] T* data() noexcept { return values_.data(); }
  void grow(std::uint32_t n) {
    if constexpr (kInline) {
      count_ = n;
    } else {
      values_.resize(n);
    }
  }

  struct NoCount {};
  std::conditional_t<kInline, std::array<T, N>, std::vector<T>> values_{};
  // The inline form's used entries; the heap form's vector knows its own.
  [[no_unique_address]] std::conditional_t<kInline, std::uint32_t, NoCount> count_{};
};

}  // namespace Routing::Rib
