// Routing::Rib::DedupViaKey: a holder's handle to one via of a via table (IP or EVPN). It keeps
// the entry alive: while a handle exists the table keeps the via, and when the last one goes the
// table lets the via go (unless its VRF is restarting). Two users of the same content in the same
// VRF get the same handle. Created by the via tables only; held by the route status store.
#pragma once

#include <ostream>

#include "foundations/rib/DedupHandle.h"
#include "foundations/rib/ViaKey.h"

namespace Routing::Rib {

class DedupViaKey : public DedupHandle<ViaKey> {
 public:
  [[nodiscard]] ViaKey const& viaKey() const noexcept { return key(); }
  friend std::ostream& operator<<(std::ostream& os, DedupViaKey const& h) { return os << h.viaKey(); }

 protected:
  friend struct Zel::Factory;
  DedupViaKey(ViaKey const& key, DedupOwner<ViaKey>* owner) noexcept : DedupHandle(key, owner) {}
};

}  // namespace Routing::Rib
