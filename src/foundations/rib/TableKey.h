// Routing::Rib::TableKey<Derived>: the four-part identity that the RIB gives its table entries,
// an id from an id allocator within one VRF, routing protocol and transport. ViaKey and ViaSetKey
// are its two forms, with their own type names and defaults. A plain value of 16 bytes; it owns
// nothing.
#pragma once

#include <ostream>
#include <tuple>

#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/ValueFields.h"

namespace Routing::Rib {

template <class Derived>
class TableKey : public Zel::ValueFields<Derived> {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  // Hash, equality, order (by these fields in this order) and the text form
  // "Value('Routing::Rib::ViaKey', ** {'id': 5, 'vrfId': 0, 'routingProtocol': 'staticConfig', ...})"
  // (under the derived type's kTypeName) come from these.
  static constexpr auto fields() {
    return std::tuple{Zel::field("id", &TableKey::id_), Zel::field("vrfId", &TableKey::vrfId_),
                      Zel::field("routingProtocol", &TableKey::routingProtocol_),
                      Zel::field("transport", &TableKey::transport_)};
  }

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
  [[nodiscard]] constexpr bool empty() const noexcept { return static_cast<Derived const&>(*this) == Derived(); }

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
