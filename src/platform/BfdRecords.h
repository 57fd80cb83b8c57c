// The BFD service's records, as the BFD agent publishes them: Bfd::Peer (a session's identity),
// Bfd::AppConfig (the peers one application asks sessions for, written by the application),
// Bfd::BfdPeerStatus (one session's state) and Bfd::AppStatus (the sessions' states by peer,
// written by the BFD agent). Session states are the standard's: 0 admin down, 1 down, 2 init, 3 up.
// Only what the routing library reads and writes is here.
//
// Iteration: peerConfig and peerStatus are Zel::HashMap2018 with that map's contract.
#pragma once

#include <compare>
#include <cstdint>
#include <ostream>
#include <tuple>

#include <fmt/ostream.h>

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/IpGenAddr.h"
#include "foundations/types/VrfName.h"

namespace Bfd {

// One session's identity: the peer's address and VRF, the source address, the interface, the
// session type (1 single hop on an interface, 6 bound to a local address) and a last field the
// library always leaves 0.
class Peer : public Zel::ValueFields<Peer> {
 public:
  Peer() = default;
  Peer(Ondex::IpGenAddr ip, L3::VrfName vrf, Ondex::IpGenAddr srcIp, Ondex::IntfId intf, std::uint32_t type,
       std::uint32_t reserved = 0)
      : ip_(ip), vrf_(std::move(vrf)), srcIp_(srcIp), intf_(intf), type_(type), reserved_(reserved) {}

  // Hash, equality and order (VRF first, then the peer's address) come from these.
  static constexpr auto fields() {
    return std::tuple{Zel::field("vrf", &Peer::vrf_),     Zel::field("ip", &Peer::ip_),
                      Zel::field("srcIp", &Peer::srcIp_), Zel::field("intf", &Peer::intf_),
                      Zel::field("type", &Peer::type_),   Zel::field("reserved", &Peer::reserved_)};
  }

  [[nodiscard]] Ondex::IpGenAddr const& ip() const noexcept { return ip_; }
  [[nodiscard]] L3::VrfName const& vrf() const noexcept { return vrf_; }
  [[nodiscard]] Ondex::IpGenAddr const& srcIp() const noexcept { return srcIp_; }
  [[nodiscard]] Ondex::IntfId intf() const noexcept { return intf_; }
  [[nodiscard]] std::uint32_t type() const noexcept { return type_; }
  [[nodiscard]] std::uint32_t reserved() const noexcept { return reserved_; }

  // "Peer(10.0.0.1 vrf default src 0.0.0.0 intf Ethernet1 type 1)".
  friend std::ostream& operator<<(std::ostream& os, Peer const& p) {
    return os << "Peer(" << p.ip_ << " vrf " << p.vrf_ << " src " << p.srcIp_ << " intf " << p.intf_ << " type "
              << p.type_ << ")";
  }

 private:
  Ondex::IpGenAddr ip_;
  L3::VrfName vrf_;
  Ondex::IpGenAddr srcIp_;
  Ondex::IntfId intf_;
  std::uint32_t type_ = 0;
  std::uint32_t reserved_ = 0;
};

// Session states.
enum SessionState : std::uint8_t { adminDown = 0, down = 1, init = 2, up = 3 };

// The peers one application wants sessions with.
class AppConfig : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<AppConfig> AppConfigIs(Quill::String name) { return Zel::make<AppConfig>(std::move(name)); }
  ZEL_CONST(Quill::String, name)
  ZEL_SET(Peer, peerConfig, 130)

 protected:
  friend struct Zel::Factory;
  explicit AppConfig(Quill::String name) : name_(std::move(name)) {}
};

class BfdPeerStatus : public Zel::Entity {
 public:
  ZEL_CONST(Peer, peer)
  ZEL_ATTR_DEFAULT(std::uint8_t, status, 130, SessionState::down)

 protected:
  friend struct Zel::Factory;
  explicit BfdPeerStatus(Peer const& peer) : peer_(peer) {}
};

// The state of every session the agent runs, by peer.
class AppStatus : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<AppStatus> AppStatusIs() { return Zel::make<AppStatus>(); }
  ZEL_OWNED_MAP(Peer, BfdPeerStatus, peerStatus, 130)

 protected:
  friend struct Zel::Factory;
  AppStatus() = default;
};

}  // namespace Bfd

template <>
struct fmt::formatter<Bfd::Peer> : fmt::ostream_formatter {};
