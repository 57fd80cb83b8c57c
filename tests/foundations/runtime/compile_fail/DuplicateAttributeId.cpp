// Must not compile: two attributes of one entity with the same id. The test that compiles it
// passes only when the compiler refuses the second id (see CMakeLists.txt).
#include "foundations/runtime/Attribute.h"

class TwoAttributesOneId : public Zel::Entity {
 public:
  ZEL_ATTR(int, first, 130)
  ZEL_MAP(int, int, second, 130)
};
