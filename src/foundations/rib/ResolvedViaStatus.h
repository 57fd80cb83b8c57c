// Routing::Rib::ResolvedVia and Routing::Rib::ResolvedViaStatus: how the RIB resolved each via of
// one transport: the next hop it resolved to and the interface it leaves by. ResolvedViaStatus owns
// one ResolvedVia per via key and publishes each added, changed and removed key on `resolvedVia`;
// an absent key reads as the default ResolvedVia, which means "not resolved". Owned by
// ViaStatusByVrf (one per transport); written by the RIB, read by the BFD machines.
//
// Iteration: `resolvedVia` is a Zel::HashMap2018 with that map's contract.
#pragma once

#include <cstdint>
#include <ostream>

#include <fmt/ostream.h>

#include "foundations/rib/RibTypes.h"
#include "foundations/rib/ViaKey.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/IpGenAddr.h"

namespace Routing::Rib {

class ResolvedVia {
 public:
  ResolvedVia() = default;
  ResolvedVia(Ondex::IpGenAddr nextHop, Ondex::IntfId intfId) noexcept : nextHop_(nextHop), intfId_(intfId) {}

  [[nodiscard]] Ondex::IpGenAddr const& nextHop() const noexcept { return nextHop_; }
  [[nodiscard]] Ondex::IntfId intfId() const noexcept { return intfId_; }
  void nextHopIs(Ondex::IpGenAddr const& a) noexcept { nextHop_ = a; }
  void intfIdIs(Ondex::IntfId i) noexcept { intfId_ = i; }

  friend bool operator==(ResolvedVia const& a, ResolvedVia const& b) noexcept = default;
  // "nextHop via intf".
  friend std::ostream& operator<<(std::ostream& os, ResolvedVia const& r) {
    return os << r.nextHop_ << " via " << r.intfId_;
  }

 private:
  Ondex::IpGenAddr nextHop_;
  Ondex::IntfId intfId_;
};

class ResolvedViaStatus : public Zel::Entity {
 public:
  ZEL_CONST(Transport, transport)
  ZEL_MAP(ViaKey, ResolvedVia, resolvedVia, 130)

 protected:
  friend struct Zel::Factory;
  explicit ResolvedViaStatus(Transport const& transport) : transport_(transport) {}
};

}  // namespace Routing::Rib

template <>
struct fmt::formatter<Routing::Rib::ResolvedVia> : fmt::ostream_formatter {};
