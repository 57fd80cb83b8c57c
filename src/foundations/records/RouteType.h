// Routing::RouteType: the kind of a configured route in one byte. The logic tells the five kinds
// apart by number; any other value is carried as it is and treated as none of them.
//   0 forwarding: its vias are handled one by one
//   1 drop: one via through Null0 stands for the route
//   2 next-hop group: nexthopGroupName stands for its vias
//   3 L2 next-hop group
//   4 drop with an indication of its own
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

namespace Routing {

enum class RouteType : std::uint8_t {
  forward = 0,
  drop = 1,
  nexthopGroup = 2,
  l2NexthopGroup = 3,
  dropWithIndication = 4,
};

// "forward", "drop", "nexthopGroup", "l2NexthopGroup", "dropWithIndication", or the number of any
// other value.
[[nodiscard]] std::string routeTypeName(RouteType t);
// A name above or a decimal number up to 255; nothing for anything else.
[[nodiscard]] std::optional<RouteType> routeTypeFromString(std::string_view text);
// The form inside Value('...') texts: the quoted name, or the bare number of an unnamed value.
[[nodiscard]] std::string valueToStrep(RouteType t);
[[nodiscard]] std::optional<RouteType> routeTypeFromStrep(std::string_view text);

inline std::ostream& operator<<(std::ostream& os, RouteType t) { return os << routeTypeName(t); }

}  // namespace Routing

template <>
struct fmt::formatter<Routing::RouteType> : fmt::ostream_formatter {};
