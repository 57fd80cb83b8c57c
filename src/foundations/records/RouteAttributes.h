// Routing::RouteAttributes: the optional attributes of a configured route, today its list of
// communities. A value that owns its vector and is copied whole with the route; a route holds it
// as a Zel::Optional, and absent is not the same as present with no community.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/ostream.h>

namespace Routing {

class RouteAttributes {
 public:
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

  // "Value('Routing::RouteAttributes', ** {'community': [1, 2]})" and its inverse.
  [[nodiscard]] std::string toStrep() const;
  [[nodiscard]] static std::optional<RouteAttributes> fromStrep(std::string_view text);

  // Covers the communities in order.
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept;
  [[nodiscard]] static bool isEq(RouteAttributes const& a, RouteAttributes const& b) noexcept { return a == b; }
  friend bool operator==(RouteAttributes const& a, RouteAttributes const& b) noexcept = default;
  friend std::ostream& operator<<(std::ostream& os, RouteAttributes const& a) { return os << a.toStrep(); }

 private:
  std::vector<VE_Community> community_;
};

[[nodiscard]] inline std::string valueToStrep(RouteAttributes const& a) { return a.toStrep(); }

}  // namespace Routing

template <>
struct fmt::formatter<Routing::RouteAttributes> : fmt::ostream_formatter {};
