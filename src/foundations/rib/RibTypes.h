// The small identifiers and values that every RIB table and its users share: VRF ids, route
// metrics and metric-preference pairs, FIB route types, routing protocols, transports and table
// ids. Plain, trivially copyable values; they own nothing and write nothing.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include <fmt/ostream.h>

#include "foundations/runtime/NumberValue.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/AddressFamily.h"

namespace Vrf::VrfIdMap {

// The id of a VRF. Values that fit in 24 bits are usable; 0 is the default VRF and 0xffffff
// means no VRF. A default-constructed id is 0, like the plain number it stands for.
class VrfId : public Zel::NumberValue<VrfId, std::uint32_t> {
 public:
  static constexpr std::uint32_t kDefault = 0;
  static constexpr std::uint32_t kNone = 0xffffff;

  constexpr VrfId() noexcept : NumberValue(kDefault) {}
  constexpr VrfId(std::uint32_t value) noexcept : NumberValue(value) {}  // NOLINT: an id is its number

  [[nodiscard]] static constexpr VrfId defaultVrf() noexcept { return VrfId(kDefault); }
  [[nodiscard]] static constexpr VrfId none() noexcept { return VrfId(kNone); }

  [[nodiscard]] constexpr bool isNone() const noexcept { return value_ == kNone; }
  [[nodiscard]] constexpr bool isDefault() const noexcept { return value_ == kDefault; }

  // Hash, equality, order and the bare decimal text form come from the number.
  friend std::ostream& operator<<(std::ostream& os, VrfId v) { return os << v.value_; }
};

}  // namespace Vrf::VrfIdMap

namespace Routing {

// A route or via metric: smaller is better.
using RouteMetric = std::uint32_t;

namespace Fib {
// The FIB's kind of route, carried through to the RIB.
using RouteType = std::uint8_t;
}  // namespace Fib

// A metric with the preference it goes with, written as the pair metric, preference. The default
// is all ones in both: the worst metric at the worst preference.
class MetricPref : public Zel::ValueFields<MetricPref, Zel::ValueOrder::own> {
 public:
  static constexpr RouteMetric kNoMetric = 0xffffffff;
  static constexpr std::uint8_t kNoPreference = 0xff;

  constexpr MetricPref() noexcept = default;
  constexpr MetricPref(RouteMetric metric, std::uint8_t preference) noexcept
      : metric_(metric), preference_(preference) {}

  [[nodiscard]] constexpr RouteMetric metric() const noexcept { return metric_; }
  [[nodiscard]] constexpr std::uint8_t preference() const noexcept { return preference_; }
  constexpr void metricIs(RouteMetric metric) noexcept { metric_ = metric; }
  constexpr void preferenceIs(std::uint8_t preference) noexcept { preference_ = preference; }

  // Hash and equality come from these; a metric and preference pair has no order of its own.
  static constexpr auto fields() {
    return std::tuple{Zel::field("metric", &MetricPref::metric_), Zel::field("preference", &MetricPref::preference_)};
  }
  // "(metric, preference)".
  friend std::ostream& operator<<(std::ostream& os, MetricPref m);

 private:
  RouteMetric metric_ = kNoMetric;
  std::uint8_t preference_ = kNoPreference;
};

}  // namespace Routing

namespace Routing::Rib {

// The identity of a via or a via set, handed out by an id allocator.
using Id = std::uint64_t;

// The routing protocol a RIB entry belongs to, 16 bits. 2 is the static configuration and 4 the
// injected routes of route input; the RIB names the others and they are carried as numbers.
// Hash, equality, order and the text form come from the number and its names.
class RoutingProtocol : public Zel::NumberValue<RoutingProtocol, std::uint16_t> {
 public:
  // The text form names these ('staticConfig'); any other protocol is its number ('7').
  static constexpr std::pair<std::string_view, std::uint16_t> kNames[] = {{"staticConfig", 2}, {"routeInput", 4}};

  constexpr RoutingProtocol() noexcept : NumberValue(0) {}
  constexpr RoutingProtocol(std::uint16_t value) noexcept : NumberValue(value) {}  // NOLINT: a number

  [[nodiscard]] static constexpr RoutingProtocol staticConfig() noexcept { return RoutingProtocol(2); }
  [[nodiscard]] static constexpr RoutingProtocol routeInput() noexcept { return RoutingProtocol(4); }

  friend std::ostream& operator<<(std::ostream& os, RoutingProtocol p) { return os << p.toStrep(); }
};

// What a via runs over, 8 bits: 1 IPv4, 2 IPv6, 3 EVPN. Hash, equality, order and the text form
// come from the number and its names.
class Transport : public Zel::NumberValue<Transport, std::uint8_t> {
 public:
  // The text form names these ('ipv4'); any other transport is its number ('0').
  static constexpr std::pair<std::string_view, std::uint8_t> kNames[] = {{"ipv4", 1}, {"ipv6", 2}, {"evpn", 3}};

  constexpr Transport() noexcept : NumberValue(0) {}
  constexpr Transport(std::uint8_t value) noexcept : NumberValue(value) {}  // NOLINT: a number

  [[nodiscard]] static constexpr Transport transportIpv4() noexcept { return Transport(1); }
  [[nodiscard]] static constexpr Transport transportIpv6() noexcept { return Transport(2); }
  [[nodiscard]] static constexpr Transport transportEvpn() noexcept { return Transport(3); }
  // The IP transport of an address family; 0 for no family.
  [[nodiscard]] static constexpr Transport fromAf(Ondex::AddressFamily af) noexcept {
    return af.isV4() ? transportIpv4() : af.isV6() ? transportIpv6() : Transport();
  }
  // The address family of an IP transport; the unset family (0) for any other, EVPN included.
  [[nodiscard]] static constexpr Ondex::AddressFamily getAfFromTransport(Transport t) noexcept {
    return t == transportIpv4() ? Ondex::AddressFamily::ipv4
           : t == transportIpv6() ? Ondex::AddressFamily::ipv6
                                  : Ondex::AddressFamily::unset;
  }

  friend std::ostream& operator<<(std::ostream& os, Transport t) { return os << t.toStrep(); }
};

}  // namespace Routing::Rib

template <>
struct fmt::formatter<Vrf::VrfIdMap::VrfId> : fmt::ostream_formatter {};
template <>
struct fmt::formatter<Routing::MetricPref> : fmt::ostream_formatter {};
template <>
struct fmt::formatter<Routing::Rib::RoutingProtocol> : fmt::ostream_formatter {};
template <>
struct fmt::formatter<Routing::Rib::Transport> : fmt::ostream_formatter {};
