// Routing::RouteAttributes: the optional attributes of a configured route, today its list of
// communities. A value that owns its vector and is copied whole with the route; a route holds it
// as a Zel::Optional, and absent is not the same as present with no community.
#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <fmt/ostream.h>

#include "foundations/runtime/ValueFields.h"

namespace Routing {

class RouteAttributes : public Zel::ValueFields<RouteAttributes> {
 public:
  // Hash, equality, order and the text form "Value('Routing::RouteAttributes', ** {'community': [1, 2]})"
  // come from these.
  static constexpr std::string_view kTypeName = "Routing::RouteAttributes";
  static constexpr auto fields() { return std::tuple{Zel::field("community", &RouteAttributes::community_)}; }

  // The element of the community vector.
  using VE_Community = std::uint32_t;

  RouteAttributes() = default;
  explicit RouteAttributes(std::vector<VE_Community> community) : community_(std::move(community)) {}

  [[nodiscard]] std::vector<VE_Community> const& community() const noexcept { return community_; }
  [[nodiscard]] std::size_t communitySize() const noexcept { return community_.size(); }
  RouteAttributes& communityIs(std::vector<VE_Community> community) {
    community_ = std::move(community);
    return *this;
  }
  RouteAttributes& communityPush(VE_Community value) {
    community_.push_back(value);
    return *this;
  }

  friend std::ostream& operator<<(std::ostream& os, RouteAttributes const& a) { return os << valueToStrep(a); }

 private:
  std::vector<VE_Community> community_;
};

}  // namespace Routing

template <>
struct fmt::formatter<Routing::RouteAttributes> : fmt::ostream_formatter {};
