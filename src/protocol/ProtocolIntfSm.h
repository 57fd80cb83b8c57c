// IntfSm watches the interface table of its VRF and family (IPv4 or IPv6, by the kind of
// IntfStatus it is given) and bumps IntfStatus::intfStatusChanged once for every interface record
// that appears, goes, or changes dpRoutingEnabled. Owned by the protocol container.
#pragma once

#include "foundations/records/IpIntfStatus.h"
#include "foundations/runtime/StateMachine.h"
#include "protocol/ProtocolIntf.h"

namespace Routing::Protocol {

class IntfSm : public Zel::StateMachine<IntfSm> {
 public:
  static Quill::Ptr<IntfSm> IntfSmIs(Quill::Ptr<IntfStatus> intfStatus) { return Zel::make<IntfSm>(std::move(intfStatus)); }

  // A watcher on one interface record.
  template <class Record>
  class NestedSm_IntfStatus : public Zel::NestedSm<IntfSm, Ondex::IntfId, Record> {
   public:
    using Zel::NestedSm<IntfSm, Ondex::IntfId, Record>::NestedSm;
    void onAttribute(Zel::AttrId id, void const*) override {
      if (id == Record::dpRoutingEnabledId) this->owner()->handleIntfStatus(this->key());
    }
  };
  using NestedSm_Ipv4IntfStatus = NestedSm_IntfStatus<Ip::IpIntfStatus>;
  using NestedSm_Ipv6IntfStatus = NestedSm_IntfStatus<Ip6::IntfStatus>;

  // The one handler: an interface's record came, went or changed.
  void handleIntfStatus(Ondex::IntfId const& intfId);
  void handleInitialized();

  ZEL_CONST(Quill::Ptr<IntfStatus>, intfStatus)
  ZEL_NESTED(Ondex::IntfId, NestedSm_Ipv4IntfStatus, ipv4IntfStatus)
  ZEL_NESTED(Ondex::IntfId, NestedSm_Ipv6IntfStatus, ipv6IntfStatus)
  using Ipv4Reactors = Zel::Reactors<Zel::On<Ip::VrfIpIntfStatus::ipIntfStatusId, &IntfSm::handleIntfStatus>,
                                     Zel::Reconcile<Ip::VrfIpIntfStatus::ipIntfStatusId, &IntfSm::ipv4IntfStatus_>>;
  using Ipv6Reactors = Zel::Reactors<Zel::On<Ip6::VrfIp6IntfStatus::intfStatusId, &IntfSm::handleIntfStatus>,
                                     Zel::Reconcile<Ip6::VrfIp6IntfStatus::intfStatusId, &IntfSm::ipv6IntfStatus_>>;
  ZEL_INPUT(Ip::VrfIpIntfStatus, ipv4Status, Ipv4Reactors)
  ZEL_INPUT(Ip6::VrfIp6IntfStatus, ipv6Status, Ipv6Reactors)
  ZEL_ATTR(bool, initialized, 130)

 protected:
  friend struct Zel::Factory;
  explicit IntfSm(Quill::Ptr<IntfStatus> intfStatus);
};

}  // namespace Routing::Protocol
