#include "protocol/ProtocolIntf.h"

#include "foundations/runtime/Exception.h"

namespace Routing::Protocol {

bool IntfStatus::intf(Ondex::IntfId) const {
  QUILL_ASSERT(false, "0 && \"Must be implemented in derived class\"");
  return false;
}

}  // namespace Routing::Protocol
