// IntfStatus: one question per interface, whether routing is enabled on it in the data path,
// answered from the IPv4 or the IPv6 table, with one change counter that consumers watch instead
// of every interface. IntfSm drives the counter; the protocol container owns both.
#pragma once

#include <cstdint>

#include "foundations/records/IpIntfStatus.h"
#include "foundations/runtime/Attribute.h"

namespace Routing::Protocol {

class IntfStatus : public Zel::Entity {
 public:
  static Quill::Ptr<IntfStatus> IntfStatusIs() { return Zel::make<IntfStatus>(); }
  // Bumped by one for every appearance, removal or change of an interface's record; wraps at 32
  // bits, so consumers compare for inequality only.
  ZEL_ATTR(std::uint32_t, intfStatusChanged, 130)

  // Whether routing is enabled on the interface; false when the table or its record is missing.
  [[nodiscard]] virtual bool intf(Ondex::IntfId intfId) const;

 protected:
  friend struct Zel::Factory;
  IntfStatus() = default;
};

class Ipv4IntfStatus : public IntfStatus {
 public:
  static Quill::Ptr<Ipv4IntfStatus> Ipv4IntfStatusIs(Quill::Ptr<Ip::VrfIpIntfStatus const> status) {
    return Zel::make<Ipv4IntfStatus>(std::move(status));
  }
  [[nodiscard]] Quill::Ptr<Ip::VrfIpIntfStatus const> const& status() const noexcept { return status_; }
  [[nodiscard]] bool intf(Ondex::IntfId intfId) const override;

 protected:
  friend struct Zel::Factory;
  explicit Ipv4IntfStatus(Quill::Ptr<Ip::VrfIpIntfStatus const> status) : status_(std::move(status)) {}

 private:
  Quill::Ptr<Ip::VrfIpIntfStatus const> status_;
};

class Ipv6IntfStatus : public IntfStatus {
 public:
  static Quill::Ptr<Ipv6IntfStatus> Ipv6IntfStatusIs(Quill::Ptr<Ip6::VrfIp6IntfStatus const> status) {
    return Zel::make<Ipv6IntfStatus>(std::move(status));
  }
  [[nodiscard]] Quill::Ptr<Ip6::VrfIp6IntfStatus const> const& status() const noexcept { return status_; }
  [[nodiscard]] bool intf(Ondex::IntfId intfId) const override;

 protected:
  friend struct Zel::Factory;
  explicit Ipv6IntfStatus(Quill::Ptr<Ip6::VrfIp6IntfStatus const> status) : status_(std::move(status)) {}

 private:
  Quill::Ptr<Ip6::VrfIp6IntfStatus const> status_;
};

}  // namespace Routing::Protocol
