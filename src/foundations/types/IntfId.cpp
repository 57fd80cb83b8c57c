#include "foundations/types/IntfId.h"

#include <type_traits>
#include <unordered_map>
#include <vector>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Hash.h"
#include "foundations/runtime/String.h"
#include "foundations/runtime/ValueText.h"

namespace Ondex {

// Held by the million in keys and vias: a plain value that stays this small.
static_assert(std::is_trivially_copyable_v<IntfId> && sizeof(IntfId) == 4);

namespace {

// The process's interned names. Each name lives in a Quill::String whose text block never moves,
// so the views held by the index and handed out by name() stay valid as the vector grows.
class NameTable {
 public:
  NameTable() {
    intern("");
    intern("Null0");
  }
  std::uint32_t intern(std::string_view name) {
    auto it = ids_.find(name);
    if (it != ids_.end()) return it->second;
    auto const id = std::uint32_t(names_.size());
    names_.emplace_back(name);
    ids_.emplace(names_.back().view(), id);
    return id;
  }
  [[nodiscard]] std::string_view name(std::uint32_t id) const noexcept { return names_[id].view(); }

 private:
  std::vector<Quill::String> names_;
  std::unordered_map<std::string_view, std::uint32_t> ids_;
};

NameTable& table() {
  static NameTable t;
  return t;
}

bool validName(std::string_view text) {
  if (text.size() > IntfId::maxLength()) return false;
  for (char const c : text) {
    if (static_cast<unsigned char>(c) <= ' ' || c == '\x7f' || c == '\'' || c == '"') return false;
  }
  return true;
}

}  // namespace

IntfId::IntfId(std::string_view name) {
  if (name.size() > maxLength()) Zel::throwRangeException("Zel::String::bytes > maxLength() not allowed");
  id_ = table().intern(name);
}

std::string_view IntfId::name() const noexcept { return table().name(id_); }

std::optional<IntfId> IntfId::fromString(std::string_view text) {
  if (!validName(text)) return std::nullopt;
  return IntfId(text);
}

std::optional<IntfId> IntfId::fromStrep(std::string_view text) { return Zel::ValueText::unquoteAs<IntfId>(text); }

std::uint32_t IntfId::hash(std::uint32_t seed) const noexcept { return Zel::HashBuilder(seed).add(id_).value(); }

std::strong_ordering operator<=>(IntfId a, IntfId b) noexcept {
  if (a.id_ == b.id_) return std::strong_ordering::equal;
  return a.name() <=> b.name();
}

std::string valueToStrep(IntfId i) { return Zel::ValueText::quote(i.name()); }

}  // namespace Ondex
