// Routing::Rib::ResolutionRibProfileConfig: which RIBs, in which order, may resolve a via's next
// hop: at most three methods, each a system RIB or a tunnel RIB named by the configuration (the
// id of a tunnel RIB is filled in where the name has been looked up; 0 until then). A plain value:
// a route holds one per via, a via's content holds the one it was built with. It owns its methods
// and writes nothing; a fourth method raises the runtime's fixed-array range failure.
#pragma once

#include <cstdint>
#include <ostream>
#include <tuple>
#include <string>

#include <fmt/ostream.h>

#include "foundations/rib/BoundedArray.h"
#include "foundations/runtime/String.h"
#include "foundations/runtime/ValueFields.h"

namespace Routing::Rib {

enum class ResolutionRibType : std::uint8_t {
  none = 0,
  systemUnicastRib = 1,
  systemConnected = 2,
  tunnelRib = 3,
};

// One way to resolve a next hop. A small value kept with the profile that lists it.
class ResolutionMethod : public Zel::ValueFields<ResolutionMethod> {
 public:
  // Hash, equality and order come from these.
  static constexpr auto fields() {
    return std::tuple{Zel::field("tunnelRibName", &ResolutionMethod::tunnelRibName_),
                      Zel::field("tunnelRibId", &ResolutionMethod::tunnelRibId_),
                      Zel::field("type", &ResolutionMethod::type_)};
  }

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

  // "system-unicast-rib", "system-connected", "tunnel-rib NAME" (with "#ID" once it has an id).
  friend std::ostream& operator<<(std::ostream& os, ResolutionMethod const& m);

 private:
  Quill::String tunnelRibName_;
  std::uint32_t tunnelRibId_ = 0;
  ResolutionRibType type_ = ResolutionRibType::none;
};

class ResolutionRibProfileConfig : public Zel::ValueFields<ResolutionRibProfileConfig> {
 public:
  static constexpr std::uint32_t kMaxMethods = 3;

  // Hash, equality and order (method by method: a total order for tables keyed by content) come
  // from this.
  static constexpr auto fields() { return std::tuple{Zel::field("methods", &ResolutionRibProfileConfig::methods_)}; }

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
