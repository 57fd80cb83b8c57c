// Routing::Rib::Evpn::Via: one entry of the EVPN via table: a remote VTEP, the VNI to reach it
// with and its router MAC, with the key the table gave it. The content (all but the key) is what
// the table deduplicates. A plain value; it owns nothing and writes nothing.
#pragma once

#include <cstdint>
#include <ostream>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/rib/ViaKey.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/EthAddr.h"
#include "foundations/types/IpGenAddr.h"
#include "foundations/types/VniExt.h"

namespace Routing::Rib::Evpn {

class Via : public Zel::ValueFields<Via> {
 public:
  // Hash, equality and order (field by field: a total order for tables keyed by content) come from these.
  static constexpr auto fields() {
    return std::tuple{Zel::field("viaKey", &Via::viaKey_), Zel::field("vtepAddr", &Via::vtepAddr_),
                      Zel::field("routerMac", &Via::routerMac_), Zel::field("vni", &Via::vni_)};
  }

  Via() = default;
  explicit Via(ViaKey const& key) : viaKey_(key) {}
  // The content of a via; the VNI is range-checked where the caller builds its Vxlan::VniExt.
  Via(Vxlan::VniExt vni, Ondex::EthAddr routerMac, Ondex::IpGenAddr vtepAddr)
      : vtepAddr_(vtepAddr), routerMac_(routerMac), vni_(vni) {}

  [[nodiscard]] ViaKey const& viaKey() const noexcept { return viaKey_; }
  [[nodiscard]] Vxlan::VniExtOrNone vni() const noexcept { return vni_; }
  [[nodiscard]] Ondex::EthAddr const& routerMac() const noexcept { return routerMac_; }
  [[nodiscard]] Ondex::IpGenAddr const& vtepAddr() const noexcept { return vtepAddr_; }
  void viaKeyIs(ViaKey const& key) noexcept { viaKey_ = key; }
  void vniIs(Vxlan::VniExt vni) noexcept { vni_ = vni; }
  void routerMacIs(Ondex::EthAddr const& mac) noexcept { routerMac_ = mac; }
  void vtepAddrIs(Ondex::IpGenAddr const& addr) noexcept { vtepAddr_ = addr; }

  // "EvpnVia(key: vtep 1.1.1.1 vni 10 rmac aa:bb:cc:dd:ee:ff)", for traces.
  friend std::ostream& operator<<(std::ostream& os, Via const& v);

 private:
  ViaKey viaKey_;
  Ondex::IpGenAddr vtepAddr_;
  Ondex::EthAddr routerMac_;
  Vxlan::VniExtOrNone vni_;
};

}  // namespace Routing::Rib::Evpn

template <>
struct fmt::formatter<Routing::Rib::Evpn::Via> : fmt::ostream_formatter {};
