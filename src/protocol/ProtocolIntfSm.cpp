#include "protocol/ProtocolIntfSm.h"

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("IpRib::IntfSm");

namespace Routing::Protocol {

IntfSm::IntfSm(Quill::Ptr<IntfStatus> intfStatus) : intfStatus_(std::move(intfStatus)) {
  // Both tables are still null here: the walks of their collections find nothing.
  handleInitialized();
}

void IntfSm::handleIntfStatus(Ondex::IntfId const& intfId) {
  TRACE(8, "handleIntfStatus(" << intfId << ")");
  if (intfStatus_) intfStatus_->intfStatusChangedInc(1);
}

void IntfSm::handleInitialized() {
  TRACE(8, "handleInitialized");
  initializedIs(true);
  if (auto* v4 = dynamic_cast<Ipv4IntfStatus*>(intfStatus_.get())) {
    TRACE(8, "handleInitialized(IPv4)");
    ipv4StatusIs(v4->status());
  } else if (auto* v6 = dynamic_cast<Ipv6IntfStatus*>(intfStatus_.get())) {
    TRACE(8, "handleInitialized(IPv6)");
    ipv6StatusIs(v6->status());
  } else {
    QUILL_ASSERT(false, "0 && \"A derived type of IntfStatus must be supplied as a constructor arg\"");
  }
}

}  // namespace Routing::Protocol
