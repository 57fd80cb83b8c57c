#include "foundations/records/AllVrfRibSeqTrigger.h"

namespace Routing::Protocol {

Quill::Ptr<AllVrfRibSeqTrigger> AllVrfRibSeqTrigger::AllVrfRibSeqTriggerIs() {
  return Zel::make<AllVrfRibSeqTrigger>();
}

Quill::Ptr<AllVrfRibSeqTrigger> allVrfRibSeqTriggerFactory() { return AllVrfRibSeqTrigger::AllVrfRibSeqTriggerIs(); }

}  // namespace Routing::Protocol
