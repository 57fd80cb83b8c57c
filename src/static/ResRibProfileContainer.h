// The resolution profile that static routes use when a via has none of its own, as a named
// entity that the route machines watch. Written by the configuration reader of the hosting
// agent; read by every static RouteConfigSm.
#pragma once

#include "foundations/rib/ResolutionRibProfile.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace Routing::Static {

class ResRibProfileContainer : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<ResRibProfileContainer> ResRibProfileContainerIs(Quill::String const& name) {
    return Zel::make<ResRibProfileContainer>(name);
  }
  ZEL_CONST(Quill::String, name)
  // Publishes only when the profile differs; a fourth method raises where the profile is built.
  ZEL_ATTR(Rib::ResolutionRibProfile, resRibProfile, 131)

 protected:
  friend struct Zel::Factory;
  explicit ResRibProfileContainer(Quill::String name) : name_(std::move(name)) {}
};

}  // namespace Routing::Static
