#include "protocol/ProtocolIntf.h"

#include "foundations/runtime/Exception.h"

namespace Routing::Protocol {

bool IntfStatus::intf(Ondex::IntfId) const {
  QUILL_ASSERT(false, "0 && \"Must be implemented in derived class\"");
  return false;
}

bool Ipv4IntfStatus::intf(Ondex::IntfId intfId) const {
  if (!status_) return false;
  auto record = status_->ipIntfStatus(intfId);
  return record && record->dpRoutingEnabled();
}

bool Ipv6IntfStatus::intf(Ondex::IntfId intfId) const {
  if (!status_) return false;
  auto record = status_->intfStatus(intfId);
  return record && record->dpRoutingEnabled();
}

}  // namespace Routing::Protocol
