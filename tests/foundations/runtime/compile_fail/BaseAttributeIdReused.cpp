// Must not compile: a record that reuses an attribute id of the record it derives from, here 131,
// which the via set table declares by hand for its storage. The test that compiles it passes only
// when the compiler refuses the derived class's id (see CMakeLists.txt).
#include "foundations/rib/ViaSetConfig.h"

class MoreViaSets : public Routing::Rib::ViaSetConfig {
 public:
  ZEL_ATTR(int, extra, 131)
};
