// Routing::Via: the identity of one next hop of a configured route. Every field is part of the
// identity (hash, equality and order cover them all), so a via is the key of a route's via
// collections; its metric and weight live apart in RouteViaAttr. A plain value of 80 bytes: it is
// held by the million, so the fields are laid out by size and the egress VRF is a shared string.
//
// An IP via has no VTEP address (and then no VNI and no router MAC); any other via is an EVPN via.
// A hop with no family, or the all-zero address of either family, is no next hop.
#pragma once

#include <ostream>
#include <string_view>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/runtime/Optional.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/EthAddr.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/IpGenAddr.h"
#include "foundations/types/MplsLabel.h"
#include "foundations/types/VniExt.h"
#include "foundations/types/VrfName.h"

namespace Routing {

class Via : public Zel::ValueFields<Via> {
 public:
  // Hash, equality, order (field by field in this order) and the text form
  // "Value('Routing::Via', ** {'hop': '10.0.0.1', 'intfId': 'Ethernet1', ...})" come from these.
  static constexpr std::string_view kTypeName = "Routing::Via";
  static constexpr auto fields() {
    return std::tuple{Zel::field("hop", &Via::hop_),
                      Zel::field("intfId", &Via::intfId_),
                      Zel::field("mplsLabel", &Via::mplsLabel_),
                      Zel::field("vni", &Via::vni_),
                      Zel::field("vtepSipValidation", &Via::vtepSipValidation_),
                      Zel::field("vtepAddr", &Via::vtepAddr_),
                      Zel::field("routerMac", &Via::routerMac_),
                      Zel::field("egressVrf", &Via::egressVrf_),
                      Zel::field("localAddr", &Via::localAddr_)};
  }

  Via() noexcept = default;
  // The common IP via: a next hop, an egress interface, or both.
  explicit Via(Ondex::IpGenAddr const& hop, Ondex::IntfId intfId = Ondex::IntfId()) noexcept
      : intfId_(intfId), hop_(hop) {}

  [[nodiscard]] Ondex::IpGenAddr const& hop() const noexcept { return hop_; }
  [[nodiscard]] Ondex::IntfId intfId() const noexcept { return intfId_; }
  [[nodiscard]] Ondex::MplsLabel mplsLabel() const noexcept { return mplsLabel_; }
  [[nodiscard]] Vxlan::VniExtOrNone vni() const noexcept { return vni_; }
  [[nodiscard]] bool vtepSipValidation() const noexcept { return vtepSipValidation_; }
  [[nodiscard]] Ondex::IpGenAddr const& vtepAddr() const noexcept { return vtepAddr_; }
  [[nodiscard]] Ondex::EthAddr const& routerMac() const noexcept { return routerMac_; }
  // The empty name is the route's own VRF.
  [[nodiscard]] L3::VrfName const& egressVrf() const noexcept { return egressVrf_; }
  // The local address of the via's BFD session, when one is configured.
  [[nodiscard]] Zel::Optional<Ondex::IpGenAddr> const& localAddr() const noexcept { return localAddr_; }

  // Setters return the via, so that a via reads as one expression where it is built.
  Via& hopIs(Ondex::IpGenAddr const& hop) noexcept {
    hop_ = hop;
    return *this;
  }
  Via& intfIdIs(Ondex::IntfId intfId) noexcept {
    intfId_ = intfId;
    return *this;
  }
  Via& mplsLabelIs(Ondex::MplsLabel label) noexcept {
    mplsLabel_ = label;
    return *this;
  }
  Via& vniIs(Vxlan::VniExtOrNone vni) noexcept {
    vni_ = vni;
    return *this;
  }
  Via& vtepSipValidationIs(bool on) noexcept {
    vtepSipValidation_ = on;
    return *this;
  }
  Via& vtepAddrIs(Ondex::IpGenAddr const& addr) noexcept {
    vtepAddr_ = addr;
    return *this;
  }
  Via& routerMacIs(Ondex::EthAddr const& mac) noexcept {
    routerMac_ = mac;
    return *this;
  }
  // A name longer than L3::VrfName::maxLength() raises when the VrfName is built from it.
  Via& egressVrfIs(L3::VrfName vrf) noexcept {
    egressVrf_ = std::move(vrf);
    return *this;
  }
  Via& localAddrIs(Ondex::IpGenAddr const& addr) noexcept {
    localAddr_ = addr;
    return *this;
  }
  Via& localAddrDel() noexcept {
    localAddr_.optionalClearValue();
    return *this;
  }

  // No VTEP address (its family is unset).
  [[nodiscard]] bool isIpVia() const noexcept { return !vtepAddr_.af().isSet(); }
  [[nodiscard]] bool isEvpnVia() const noexcept { return !isIpVia(); }
  // The hop has no family, or is 0.0.0.0 or ::.
  [[nodiscard]] bool hasNoNextHop() const noexcept { return hop_.isUnspecified(); }
  [[nodiscard]] bool hasNextHop() const noexcept { return !hasNoNextHop(); }
  [[nodiscard]] bool hasIntf() const noexcept { return !intfId_.empty(); }
  // The via leaves through another VRF (an inter-VRF via).
  [[nodiscard]] bool hasEgressVrf() const noexcept { return !egressVrf_.empty(); }

  friend std::ostream& operator<<(std::ostream& os, Via const& v) { return os << valueToStrep(v); }

 private:
  // Widest first, so that the 80 bytes hold no padding but the tail.
  L3::VrfName egressVrf_;
  Ondex::IntfId intfId_;
  Ondex::MplsLabel mplsLabel_;
  Vxlan::VniExtOrNone vni_;
  Ondex::IpGenAddr hop_;
  Ondex::IpGenAddr vtepAddr_;
  Zel::Optional<Ondex::IpGenAddr> localAddr_;
  Ondex::EthAddr routerMac_;
  bool vtepSipValidation_ = false;
};

static_assert(sizeof(Via) <= 80, "a via is held by the million: keep it within 80 bytes");

}  // namespace Routing

template <>
struct fmt::formatter<Routing::Via> : fmt::ostream_formatter {};
