// Routing::Rib::RouteKey and Routing::Rib::Route: one entry of a RIB route table, keyed by VRF and
// prefix: the protocol, flags, FIB route type, metric and preference, metric type, the source VRF
// (packed with another byte in one word), the via set and the tag or IGP result id. Plain values;
// they own nothing and write nothing. A route splits into its key and its Body, which is what the
// route table stores under the key (so that a million routes do not carry their key twice).
#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/rib/RibTypes.h"
#include "foundations/rib/ViaKey.h"
#include "foundations/rib/ViaSetKey.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/IpGenPrefix.h"

namespace Routing::Rib {

// The key of a route: VRF first, then prefix, in that order. The default key, no VRF (0xffffff)
// and the empty prefix, is where a walk of a whole table starts.
class RouteKey : public Zel::ValueFields<RouteKey> {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  // Hash, equality, order (VRF, then prefix) and the text form
  // "Value('Routing::Rib::RouteKey', ** {'vrfId': 5, 'prefix': '10.0.0.0/8'})" come from these.
  static constexpr std::string_view kTypeName = "Routing::Rib::RouteKey";
  static constexpr auto fields() {
    return std::tuple{Zel::field("vrfId", &RouteKey::vrfId_), Zel::field("prefix", &RouteKey::prefix_)};
  }

  constexpr RouteKey() noexcept = default;
  RouteKey(VrfId vrfId, Ondex::IpGenPrefix const& prefix) noexcept : vrfId_(vrfId), prefix_(prefix) {}
  // The empty key of a VRF: the first key of that VRF in the order.
  [[nodiscard]] static RouteKey vrfStart(VrfId vrfId) noexcept { return RouteKey(vrfId, Ondex::IpGenPrefix()); }

  [[nodiscard]] VrfId vrfId() const noexcept { return vrfId_; }
  [[nodiscard]] Ondex::IpGenPrefix const& prefix() const noexcept { return prefix_; }
  void vrfIdIs(VrfId v) noexcept { vrfId_ = v; }
  void prefixIs(Ondex::IpGenPrefix const& p) noexcept { prefix_ = p; }

  // "vrfId/prefix".
  friend std::ostream& operator<<(std::ostream& os, RouteKey const& k) { return os << k.vrfId_ << '/' << k.prefix_; }

 private:
  VrfId vrfId_ = VrfId::none();
  Ondex::IpGenPrefix prefix_;
};

// The metric type a route carries to the RIB (other values belong to the RIB).
enum MetricType : std::uint32_t {
  metricTypeUnknown = 0,
  metricTypeAigp = 3,
};

class Route {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  // Flag bit: the route is not to be installed in the FIB.
  static constexpr std::uint8_t kFlagNotInFib = 2;
  // The source VRF lives in the bits from srcVrfIdLoc up of one word, under srcVrfIdMask.
  static constexpr std::uint32_t srcVrfIdLoc = 8;
  static constexpr std::uint32_t srcVrfIdMask = 0xffffff00;
  static constexpr std::uint32_t kSrcVrfIdWordDefault = 0xffffff01;

  // Everything but the key, as the route table stores it.
  struct Body {
    RoutingProtocol routingProtocol;
    std::uint8_t flags = 0;
    Fib::RouteType fibRouteType = 0;
    MetricPref metricPref;
    std::uint32_t metricType = metricTypeUnknown;
    std::uint32_t srcVrfIdWord = kSrcVrfIdWordDefault;
    std::uint32_t tagOrResultId = 0;
    ViaSetKey viaSetKey;
    friend bool operator==(Body const& a, Body const& b) noexcept = default;
  };

  Route() = default;
  explicit Route(RouteKey const& key) noexcept : routeKey_(key) {}
  Route(RouteKey const& key, Body const& body) noexcept : routeKey_(key), body_(body) {}

  [[nodiscard]] RouteKey const& routeKey() const noexcept { return routeKey_; }
  [[nodiscard]] Body const& body() const noexcept { return body_; }
  [[nodiscard]] RoutingProtocol routingProtocol() const noexcept { return body_.routingProtocol; }
  [[nodiscard]] std::uint8_t flags() const noexcept { return body_.flags; }
  [[nodiscard]] Fib::RouteType fibRouteType() const noexcept { return body_.fibRouteType; }
  [[nodiscard]] MetricPref metricPref() const noexcept { return body_.metricPref; }
  [[nodiscard]] std::uint8_t preference() const noexcept { return body_.metricPref.preference(); }
  [[nodiscard]] std::uint32_t metricType() const noexcept { return body_.metricType; }
  // The packed word: the source VRF above srcVrfIdLoc, another value in the low byte.
  [[nodiscard]] std::uint32_t srcVrfIdWord() const noexcept { return body_.srcVrfIdWord; }
  [[nodiscard]] VrfId srcVrfId() const noexcept { return VrfId(body_.srcVrfIdWord >> srcVrfIdLoc); }
  [[nodiscard]] ViaSetKey const& viaSetKey() const noexcept { return body_.viaSetKey; }
  // A route of the route cache names one via, in the place of the via set.
  [[nodiscard]] ViaKey viaKey() const noexcept { return body_.viaSetKey.toViaKey(); }
  [[nodiscard]] std::uint32_t tagOrResultId() const noexcept { return body_.tagOrResultId; }

  void routeKeyIs(RouteKey const& key) noexcept { routeKey_ = key; }
  void routingProtocolIs(RoutingProtocol p) noexcept { body_.routingProtocol = p; }
  void flagsIs(std::uint8_t f) noexcept { body_.flags = f; }
  void fibRouteTypeIs(Fib::RouteType t) noexcept { body_.fibRouteType = t; }
  void metricPrefIs(MetricPref m) noexcept { body_.metricPref = m; }
  void preferenceIs(std::uint8_t pref) noexcept { body_.metricPref.preferenceIs(pref); }
  void metricTypeIs(std::uint32_t t) noexcept { body_.metricType = t; }
  // Writes the 24 upper bits and keeps the low byte. A VRF id over 24 bits ends the process on
  // "vrfId.value() <= ( srcVrfIdMask >> srcVrfIdLoc )".
  void srcVrfIdIs(VrfId vrfId);
  void viaSetKeyIs(ViaSetKey const& k) noexcept { body_.viaSetKey = k; }
  void viaKeyIs(ViaKey const& k) noexcept { body_.viaSetKey = ViaSetKey::fromViaKey(k); }
  void tagOrResultIdIs(std::uint32_t v) noexcept { body_.tagOrResultId = v; }

  friend bool operator==(Route const& a, Route const& b) noexcept = default;
  // "Route(vrf/prefix proto P pref (m, p) viaSet K ...)", for traces.
  friend std::ostream& operator<<(std::ostream& os, Route const& r);

 private:
  RouteKey routeKey_;
  Body body_;
};

}  // namespace Routing::Rib

template <>
struct fmt::formatter<Routing::Rib::RouteKey> : fmt::ostream_formatter {};
template <>
struct fmt::formatter<Routing::Rib::Route> : fmt::ostream_formatter {};
