// Quill::String: immutable, reference-counted text. Copies share one block; the empty string holds
// no block at all. Zel::String is the same type under the name attributes use.
#pragma once

#include <compare>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "foundations/runtime/Hash.h"

namespace Quill {

class String {
 public:
  String() noexcept = default;
  String(std::string_view text);  // NOLINT: implicit from text, as attributes are set from literals
  String(char const* text) : String(std::string_view(text)) {}
  String(std::string const& text) : String(std::string_view(text)) {}
  String(String const& other) noexcept : block_(other.block_) { retain(); }
  String(String&& other) noexcept : block_(other.block_) { other.block_ = nullptr; }
  String& operator=(String const& other) noexcept {
    if (block_ != other.block_) {
      other.retain();
      release();
      block_ = other.block_;
    }
    return *this;
  }
  String& operator=(String&& other) noexcept {
    if (this != &other) {
      release();
      block_ = other.block_;
      other.block_ = nullptr;
    }
    return *this;
  }
  ~String() { release(); }

  [[nodiscard]] char const* data() const noexcept { return block_ ? block_->text : ""; }
  [[nodiscard]] std::size_t size() const noexcept { return block_ ? block_->size : 0; }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  [[nodiscard]] std::string_view view() const noexcept { return {data(), size()}; }
  [[nodiscard]] std::string str() const { return std::string(view()); }
  [[nodiscard]] int compare(String const& other) const noexcept { return view().compare(other.view()); }

  // Concatenations: text + this, this + text.
  [[nodiscard]] String addLeft(std::string_view text) const;
  [[nodiscard]] String addRight(std::string_view text) const;

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept {
    return Zel::hashOf(view(), seed);
  }

  friend bool operator==(String const& a, String const& b) noexcept {
    return a.block_ == b.block_ || a.view() == b.view();
  }
  friend std::strong_ordering operator<=>(String const& a, String const& b) noexcept {
    return a.view() <=> b.view();
  }
  friend std::ostream& operator<<(std::ostream& os, String const& s) { return os << s.view(); }

 private:
  struct Block {
    std::uint32_t refs;
    std::uint32_t size;
    char text[1];
  };
  void retain() const noexcept {
    if (block_) ++block_->refs;
  }
  void release() noexcept;

  Block* block_ = nullptr;
};

}  // namespace Quill

namespace Zel {
using String = Quill::String;
}
