// Watches the interface status of one egress VRF and family for the route machines that have
// routes leaving through it, and tells them through its parent when it changes. It owns the
// IntfSm that turns the VRF's interface table into a change counter. Owned by the
// AllEgressVrfIntfStatusHelperSm.
#pragma once

#include "foundations/runtime/StateMachine.h"
#include "protocol/ProtocolContainerKey.h"
#include "protocol/ProtocolIntf.h"
#include "protocol/ProtocolIntfSm.h"

namespace Routing::Static {

class AllEgressVrfIntfStatusHelperSm;

class EgressVrfIntfStatusHelperSm : public Zel::StateMachine<EgressVrfIntfStatusHelperSm> {
 public:
  void handleInitialized();
  void handleIntfStatus();

  ZEL_CONST(Protocol::ContainerKey, egressVrfAfKey)
  [[nodiscard]] AllEgressVrfIntfStatusHelperSm* parentSm() const noexcept { return parentSm_; }
  using IntfStatusReactors =
      Zel::Reactors<Zel::On<Protocol::IntfStatus::intfStatusChangedId, &EgressVrfIntfStatusHelperSm::handleIntfStatus>>;
  ZEL_INPUT(Protocol::IntfStatus, intfStatus, IntfStatusReactors)
  ZEL_ATTR(Quill::Ptr<Protocol::IntfSm>, intfSm, 130)
  ZEL_ATTR(bool, initialized, 131)

 // Public so that the owning collection can hand its owner in; built only by that collection.
  EgressVrfIntfStatusHelperSm(Protocol::ContainerKey const& key, Quill::Ptr<Protocol::IntfStatus> intfStatus,
                              AllEgressVrfIntfStatusHelperSm* parentSm);

 private:
  AllEgressVrfIntfStatusHelperSm* parentSm_;
  // The wrapper the IntfSm writes; intfStatus() reads it.
  Quill::Ptr<Protocol::IntfStatus> ownIntfStatus_;
};

}  // namespace Routing::Static
