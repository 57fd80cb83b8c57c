#include "foundations/records/AllVrfReadyStatus.h"

namespace Routing::Protocol {

Quill::Ptr<AllVrfReadyStatus> AllVrfReadyStatus::AllVrfReadyStatusIs() { return Zel::make<AllVrfReadyStatus>(); }

Quill::Ptr<AllVrfReadyStatus> allVrfReadyStatusFactory() { return AllVrfReadyStatus::AllVrfReadyStatusIs(); }

}  // namespace Routing::Protocol
