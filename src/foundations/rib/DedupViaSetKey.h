// Routing::Rib::DedupViaSetKey: a holder's handle to one via set of the via-set table. While a
// handle exists the table keeps the set; when the last one goes the set goes (unless a VRF is
// restarting). Two users of the same set content get the same handle. Created by the via-set table
// only; held by a route preference of the status store.
#pragma once

#include <ostream>

#include "foundations/rib/DedupHandle.h"
#include "foundations/rib/ViaSetKey.h"

namespace Routing::Rib {

class DedupViaSetKey : public DedupHandle<ViaSetKey> {
 public:
  [[nodiscard]] ViaSetKey const& viaSetKey() const noexcept { return key(); }
  friend std::ostream& operator<<(std::ostream& os, DedupViaSetKey const& h) { return os << h.viaSetKey(); }

 protected:
  friend struct Zel::Factory;
  DedupViaSetKey(ViaSetKey const& key, DedupOwner<ViaSetKey>* owner) noexcept : DedupHandle(key, owner) {}
};

}  // namespace Routing::Rib
