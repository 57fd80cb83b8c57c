// IntfStatus: one question per interface, whether routing is enabled on it in the data path,
// answered from the IPv4 or the IPv6 table, with one change counter that consumers watch instead
// of every interface. IntfSm drives the counter; the protocol container owns both.
#pragma once

#include <concepts>
#include <cstdint>
#include <utility>

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

// The interface status of one family, answered from that family's table of the VRF (`Table`:
// Ip::VrfIpIntfStatus or Ip6::VrfIp6IntfStatus); the table may be null.
template <class Table>
class FamilyIntfStatus : public IntfStatus {
 public:
  static Quill::Ptr<FamilyIntfStatus> Ipv4IntfStatusIs(Quill::Ptr<Table const> status)
    requires std::same_as<Table, Ip::VrfIpIntfStatus>
  {
    return Zel::make<FamilyIntfStatus>(std::move(status));
  }
  static Quill::Ptr<FamilyIntfStatus> Ipv6IntfStatusIs(Quill::Ptr<Table const> status)
    requires std::same_as<Table, Ip6::VrfIp6IntfStatus>
  {
    return Zel::make<FamilyIntfStatus>(std::move(status));
  }
  [[nodiscard]] Quill::Ptr<Table const> const& status() const noexcept { return status_; }
  [[nodiscard]] bool intf(Ondex::IntfId intfId) const override {
    return status_ && status_->dpRoutingEnabledOn(intfId);
  }

 protected:
  friend struct Zel::Factory;
  explicit FamilyIntfStatus(Quill::Ptr<Table const> status) : status_(std::move(status)) {}

 private:
  Quill::Ptr<Table const> status_;
};

using Ipv4IntfStatus = FamilyIntfStatus<Ip::VrfIpIntfStatus>;
using Ipv6IntfStatus = FamilyIntfStatus<Ip6::VrfIp6IntfStatus>;

}  // namespace Routing::Protocol
