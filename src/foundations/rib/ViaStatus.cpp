#include "foundations/rib/ViaStatus.h"

namespace Routing::Rib {

Quill::Ptr<ViaStatusByVrf> ViaStatusByVrf::ViaStatusByVrfIs() { return Zel::make<ViaStatusByVrf>(); }

}  // namespace Routing::Rib
