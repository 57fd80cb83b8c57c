// Mpls::Config: whether MPLS routing is enabled (mplsRouting, id 258). Written by the
// configuration agent; a via with a label is used only while it is on.
#pragma once

#include "foundations/runtime/Attribute.h"

namespace Mpls {

class Config : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<Config> ConfigIs();

  ZEL_ATTR(bool, mplsRouting, 258)

 protected:
  friend struct Zel::Factory;
  Config() = default;
};

}  // namespace Mpls
