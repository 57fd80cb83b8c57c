// Redundancy::RedundancyStatus: whether this supervisor is the active one, as the redundancy agent
// publishes it. Written by that agent; a route-input root holds it for the roots built on it.
#pragma once

#include "foundations/runtime/Attribute.h"

namespace Redundancy {

class RedundancyStatus : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<RedundancyStatus> RedundancyStatusIs() { return Zel::make<RedundancyStatus>(); }
  // True on the active supervisor (the only one in this process).
  ZEL_ATTR_DEFAULT(bool, active, 130, true)

 protected:
  friend struct Zel::Factory;
  RedundancyStatus() = default;
};

}  // namespace Redundancy
