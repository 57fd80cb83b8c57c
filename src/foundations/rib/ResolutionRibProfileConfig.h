// Routing::Rib::ResolutionRibProfileConfig: which RIBs, in which order, may resolve a via's next
// hop: at most three methods, each a system RIB or a tunnel RIB named by the configuration (the
// id of a tunnel RIB is filled in where the name has been looked up; 0 until then). A plain value:
// a route holds one per via, a via's content holds the one it was built with. It owns its methods
// and writes nothing; a fourth method raises the runtime's fixed-array range failure.
#pragma once

#include <compare>
#include <cstdint>
#include <ostream>
#include <string>

#include <fmt/ostream.h>

#include "foundations/rib/BoundedArray.h"
#include "foundations/runtime/String.h"

namespace Routing::Rib {

enum class ResolutionRibType : std::uint8_t {
  none = 0,
  systemUnicastRib = 1,
  systemConnected = 2,
  tunnelRib = 3,
};

// One way to resolve a next hop. A small value kept with the profile that lists it.
class ResolutionMethod {
 public:
  ResolutionMethod() noexcept = default;
  explicit ResolutionMethod(ResolutionRibType type, Quill::String tunnelRibName = {}, std::uint32_t tunnelRibId = 0)
      : tunnelRibName_(std::move(tunnelRibName)), tunnelRibId_(tunnelRibId), type_(type) {}

  [[nodiscard]] static ResolutionMethod systemUnicastRib() { return ResolutionMethod(ResolutionRibType::systemUnicastRib); }
  [[nodiscard]] static ResolutionMethod systemConnected() { return ResolutionMethod(ResolutionRibType::systemConnected); }
  [[nodiscard]] static ResolutionMethod tunnelRib(Quill::String name, std::uint32_t id = 0) {
    return ResolutionMethod(ResolutionRibType::tunnelRib, std::move(name), id);
  }

  [[nodiscard]] ResolutionRibType type() const noexcept { return type_; }
  [[nodiscard]] Quill::String const& tunnelRibName() const noexcept { return tunnelRibName_; }
  [[nodiscard]] std::uint32_t tunnelRibId() const noexcept { return tunnelRibId_; }
  void tunnelRibIdIs(std::uint32_t id) noexcept { tunnelRibId_ = id; }

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  friend bool operator==(ResolutionMethod const& a, ResolutionMethod const& b) noexcept = default;
  friend std::strong_ordering operator<=>(ResolutionMethod const& a, ResolutionMethod const& b) noexcept = default;
  // "system-unicast-rib", "system-connected", "tunnel-rib NAME" (with "#ID" once it has an id).
  friend std::ostream& operator<<(std::ostream& os, ResolutionMethod const& m);

 private:
  Quill::String tunnelRibName_;
  std::uint32_t tunnelRibId_ = 0;
  ResolutionRibType type_ = ResolutionRibType::none;
};

class ResolutionRibProfileConfig {
 public:
  static constexpr std::uint32_t kMaxMethods = 3;

  ResolutionRibProfileConfig() = default;

  [[nodiscard]] std::uint32_t methodCount() const noexcept { return methods_.size(); }
  [[nodiscard]] bool empty() const noexcept { return methods_.empty(); }
  // The method at index; the empty method past the used ones. An index of 3 or more raises.
  [[nodiscard]] ResolutionMethod method(std::uint32_t index) const { return methods_.at(index); }
  void methodIs(std::uint32_t index, ResolutionMethod m) { methods_.set(index, std::move(m)); }
  // Adds a method after the others; the fourth raises.
  void methodAppend(ResolutionMethod m) { methods_.append(std::move(m)); }
  void methodDelAll() noexcept { methods_.clear(); }
  [[nodiscard]] ResolutionMethod const* begin() const noexcept { return methods_.begin(); }
  [[nodiscard]] ResolutionMethod const* end() const noexcept { return methods_.end(); }

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const { return methods_.hash(seed); }
  [[nodiscard]] static bool isEq(ResolutionRibProfileConfig const& a, ResolutionRibProfileConfig const& b) {
    return a == b;
  }
  friend bool operator==(ResolutionRibProfileConfig const& a, ResolutionRibProfileConfig const& b) = default;
  // Method by method: a total order for tables keyed by content.
  friend std::strong_ordering operator<=>(ResolutionRibProfileConfig const& a,
                                          ResolutionRibProfileConfig const& b) = default;
  // "[m1, m2]"; "[]" for the empty profile.
  friend std::ostream& operator<<(std::ostream& os, ResolutionRibProfileConfig const& p);

 private:
  BoundedArray<ResolutionMethod, kMaxMethods> methods_;
};

}  // namespace Routing::Rib

template <>
struct fmt::formatter<Routing::Rib::ResolutionMethod> : fmt::ostream_formatter {};
template <>
struct fmt::formatter<Routing::Rib::ResolutionRibProfileConfig> : fmt::ostream_formatter {};
