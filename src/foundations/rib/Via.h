// Routing::Rib::Via: one entry of an IP via table, a via's content with the key the table gave it.
// Built from a key alone it has the default content: the look-up of an absent key gives that. A
// plain value; it owns its content and writes nothing.
#pragma once

#include <compare>
#include <ostream>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/rib/ViaContent.h"
#include "foundations/rib/ViaKey.h"

namespace Routing::Rib {

class Via : public ViaContent, public Zel::ValueFields<Via> {
 public:
  Via() = default;
  explicit Via(ViaKey const& key) : viaKey_(key) {}
  Via(ViaKey const& key, ViaContent content) : ViaContent(std::move(content)), viaKey_(key) {}

  [[nodiscard]] ViaKey const& viaKey() const noexcept { return viaKey_; }
  void viaKeyIs(ViaKey const& key) noexcept { viaKey_ = key; }
  [[nodiscard]] ViaContent const& content() const noexcept { return *this; }

  // Hash, equality and order (the content first, then the key) come from these.
  static constexpr auto fields() {
    return std::tuple{Zel::field("content", &Via::content), Zel::field("viaKey", &Via::viaKey_)};
  }
  using ValueFields<Via>::hash;
  // "Via(key: content)", for traces.
  friend std::ostream& operator<<(std::ostream& os, Via const& v) {
    return os << "Via(" << v.viaKey_ << ": " << v.content() << ')';
  }

 private:
  ViaKey viaKey_;
};

}  // namespace Routing::Rib

template <>
struct fmt::formatter<Routing::Rib::Via> : fmt::ostream_formatter {};
