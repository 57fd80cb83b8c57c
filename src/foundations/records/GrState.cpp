#include "foundations/records/GrState.h"

namespace Routing::Protocol {

Quill::Ptr<GrState> GrState::GrStateIs(bool gracefulRestart) { return Zel::make<GrState>(gracefulRestart); }

Quill::Ptr<GrState> grStateFactory(bool gracefulRestart) { return GrState::GrStateIs(gracefulRestart); }

}  // namespace Routing::Protocol
