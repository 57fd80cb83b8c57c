#include "foundations/rib/ViaSetCollection.h"

namespace Routing::Rib::Skein {

Quill::Ptr<ViaSetCollection> ViaSetCollection::ViaSetCollectionIs() { return Zel::make<ViaSetCollection>(); }

}  // namespace Routing::Rib::Skein
