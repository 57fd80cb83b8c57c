// The next hops that BFD tracks for static routes of one VRF: per BFD peer (BfdStatusKey), per
// local address, the session's status object with the routes and vias that depend on it. Written
// by the route review machine (which vias are tracked) and by the BFD machines (resolved interface,
// session status); read by both. Owned by the directory of tracked-route lists, one per VRF.
#pragma once

#include <cstdint>
#include <ostream>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/records/RouteKey.h"
#include "foundations/records/TrackedViaList.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/IpGenAddr.h"
#include "foundations/types/VrfName.h"

namespace Routing {

// A BFD peer: its address, and for an IPv6 link-local address the interface it is reached on
// (the empty interface for every other address).
class BfdStatusKey : public Zel::ValueFields<BfdStatusKey> {
 public:
  // Hash, equality and order (address first) come from these.
  static constexpr auto fields() {
    return std::tuple{Zel::field("ip", &BfdStatusKey::ip_), Zel::field("intf", &BfdStatusKey::intf_)};
  }

  BfdStatusKey() noexcept = default;
  BfdStatusKey(Ondex::IpGenAddr const& ip, Ondex::IntfId intf) noexcept : ip_(ip), intf_(intf) {}

  [[nodiscard]] Ondex::IpGenAddr const& ip() const noexcept { return ip_; }
  [[nodiscard]] Ondex::IntfId intf() const noexcept { return intf_; }

  friend std::ostream& operator<<(std::ostream& os, BfdStatusKey const& k) {
    return os << k.ip_ << (k.intf_.empty() ? "" : "%") << k.intf_;
  }

 private:
  Ondex::IpGenAddr ip_;
  Ondex::IntfId intf_;
};

// One BFD session: a peer and a local address (the zero address when none is configured).
class BfdTrackedStaticRoutes : public Zel::Entity {
 public:
  ZEL_CONST(Ondex::IpGenAddr, localAddr)
  ZEL_CONST(BfdStatusKey, bfdStatusKey)
  // The interface the peer is reached through now; empty while unresolved.
  ZEL_ATTR(Ondex::IntfId, resolvedIntf, 130)
  ZEL_ATTR(Ondex::IntfId, oldResolvedIntf, 131)
  // True while the session counts as up.
  ZEL_ATTR(bool, status, 132)
  // The routes tracked through this session, with their tracked vias.
  ZEL_OWNED_MAP(RouteKey, TrackedViaList, dependantRoute, 133)

 protected:
  friend struct Zel::Factory;
  BfdTrackedStaticRoutes(Ondex::IpGenAddr const& localAddr, BfdStatusKey const& key)
      : localAddr_(localAddr), bfdStatusKey_(key) {}
};

// The sessions of one peer, by local address.
class BfdTrackedStaticRoutesByLocalAddr : public Zel::Entity {
 public:
  ZEL_CONST(BfdStatusKey, key)
  ZEL_OWNED_MAP(Ondex::IpGenAddr, BfdTrackedStaticRoutes, bfdRoute, 130)

 protected:
  friend struct Zel::Factory;
  explicit BfdTrackedStaticRoutesByLocalAddr(BfdStatusKey const& key) : key_(key) {}
};

// The tracked next hops of one VRF.
class BfdTrackedStaticRoutesList : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<BfdTrackedStaticRoutesList> BfdTrackedStaticRoutesListIs(L3::VrfName const& name) {
    return Zel::make<BfdTrackedStaticRoutesList>(name);
  }
  ZEL_CONST(L3::VrfName, name)
  ZEL_OWNED_MAP(BfdStatusKey, BfdTrackedStaticRoutesByLocalAddr, route, 130)

 protected:
  friend struct Zel::Factory;
  explicit BfdTrackedStaticRoutesList(L3::VrfName const& name) : name_(name) {}
};

}  // namespace Routing

template <>
struct fmt::formatter<Routing::BfdStatusKey> : fmt::ostream_formatter {};
