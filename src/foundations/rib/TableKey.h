// Routing::Rib::TableKey<Derived>: the four-part identity that the RIB gives its table entries,
// an id from an id allocator within one VRF, routing protocol and transport. ViaKey and ViaSetKey
// are its two forms, with their own type names and defaults. A plain value of 16 bytes; it owns
// nothing. Equality covers all fields, the order is by the fields in declaration order.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/Hash.h"
#include "foundations/types/ValueText.h"

namespace Routing::Rib {

template <class Derived>
class TableKey {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  constexpr TableKey() noexcept = default;
  constexpr TableKey(Id id, VrfId vrfId, RoutingProtocol routingProtocol, Transport transport) noexcept
      : id_(id), vrfId_(vrfId), routingProtocol_(routingProtocol), transport_(transport) {}

  [[nodiscard]] constexpr Id id() const noexcept { return id_; }
  [[nodiscard]] constexpr VrfId vrfId() const noexcept { return vrfId_; }
  [[nodiscard]] constexpr RoutingProtocol routingProtocol() const noexcept { return routingProtocol_; }
  [[nodiscard]] constexpr Transport transport() const noexcept { return transport_; }
  constexpr void idIs(Id id) noexcept { id_ = id; }
  constexpr void vrfIdIs(VrfId vrfId) noexcept { vrfId_ = vrfId; }
  constexpr void routingProtocolIs(RoutingProtocol p) noexcept { routingProtocol_ = p; }
  constexpr void transportIs(Transport t) noexcept { transport_ = t; }

  // The default-constructed key: no entry.
  [[nodiscard]] constexpr bool empty() const noexcept { return *this == TableKey(); }

  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept {
    return Zel::HashBuilder(seed)
        .add(id_)
        .add(std::uint64_t(vrfId_.value()) << 24 | std::uint64_t(routingProtocol_.value()) << 8 | transport_.value())
        .value();
  }
  [[nodiscard]] static constexpr bool isEq(Derived const& a, Derived const& b) noexcept { return a == b; }

  friend constexpr bool operator==(TableKey const& a, TableKey const& b) noexcept = default;
  friend constexpr std::strong_ordering operator<=>(TableKey const& a, TableKey const& b) noexcept = default;

  // "Value('Routing::Rib::ViaKey', ** {'id': 5, 'vrfId': 0, 'routingProtocol': 'staticConfig', ...})".
  friend std::string valueToStrep(Derived const& k) {
    std::string const id = std::to_string(k.id_);
    std::string const vrf = valueToStrep(k.vrfId_);
    std::string const rp = Zel::ValueText::quote(k.routingProtocol_.toStrep());
    std::string const t = Zel::ValueText::quote(k.transport_.toStrep());
    return Zel::ValueText::print(Derived::kTypeName,
                                 {{"id", id}, {"vrfId", vrf}, {"routingProtocol", rp}, {"transport", t}});
  }
  [[nodiscard]] static std::optional<Derived> fromStrep(std::string_view text) {
    static constexpr std::string_view kNames[] = {"id", "vrfId", "routingProtocol", "transport"};
    auto f = Zel::ValueText::parse(text, Derived::kTypeName, kNames);
    if (!f) return std::nullopt;
    auto id = Zel::ValueText::parseUnsigned<Id>((*f)[0]);
    auto vrf = VrfId::fromStrep((*f)[1]);
    auto rp = RoutingProtocol::fromStrep((*f)[2]);
    auto t = Transport::fromStrep((*f)[3]);
    if (!id || !vrf || !rp || !t) return std::nullopt;
    return Derived(*id, *vrf, *rp, *t);
  }
  // "id/vrfId/protocol/transport", the short form of traces.
  friend std::ostream& operator<<(std::ostream& os, Derived const& k) {
    return os << k.id_ << '/' << k.vrfId_ << '/' << k.routingProtocol_ << '/' << k.transport_;
  }

 private:
  Id id_ = 0;
  VrfId vrfId_ = Derived::kDefaultVrfId;
  RoutingProtocol routingProtocol_;
  Transport transport_;
};

}  // namespace Routing::Rib
