#include "static/EgressVrfIntfStatusHelperSm.h"

#include "foundations/runtime/Trace.h"
#include "static/AllEgressVrfIntfStatusHelperSm.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

namespace Routing::Static {

EgressVrfIntfStatusHelperSm::EgressVrfIntfStatusHelperSm(Protocol::ContainerKey const& key,
                                                         Quill::Ptr<Protocol::IntfStatus> intfStatus,
                                                         AllEgressVrfIntfStatusHelperSm* parentSm)
    : egressVrfAfKey_(key), parentSm_(parentSm), ownIntfStatus_(std::move(intfStatus)) {
  intfStatusIs(ownIntfStatus_);
  handleInitialized();
}

void EgressVrfIntfStatusHelperSm::handleInitialized() {
  TRACE(8, "EgressVrfIntfStatusHelperSm::handleInitialized " << egressVrfAfKey_);
  initializedIs(true);
  intfSmIs(Protocol::IntfSm::IntfSmIs(ownIntfStatus_));
  handleIntfStatus();
}

void EgressVrfIntfStatusHelperSm::handleIntfStatus() {
  TRACE(8, "EgressVrfIntfStatusHelperSm::handleIntfStatus " << egressVrfAfKey_);
  if (parentSm_) parentSm_->notifyIntfStatusChange(egressVrfAfKey_);
}

}  // namespace Routing::Static
