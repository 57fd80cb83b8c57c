// Routing::VrfRouteListTaggedConfig: the command-tag indexes of all VRFs, by VRF name. Written by
// the configuration agent; each route machine watches the entry of its own VRF. As with the sets
// inside an index, the indexes are held, not owned, and a change of vrfConfig (id 258, keyed by
// the VRF name) carries the former and the new index as notify values
// (Zel::notifyOldValue<Quill::Ptr<RouteListTaggedConfig>>).
//
// Iterator contract of vrfConfigIterator(): that of Zel::HashMap2018 (hash order; any entry may be
// deleted during a walk, and resuming from a saved name visits exactly the entries after it).
#pragma once

#include "foundations/records/RouteListTaggedConfig.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/types/VrfName.h"

namespace Routing {

class VrfRouteListTaggedConfig : public Zel::Entity {
 public:
  using RouteListTaggedConfigPtr = Quill::Ptr<RouteListTaggedConfig>;

  [[nodiscard]] static Quill::Ptr<VrfRouteListTaggedConfig> VrfRouteListTaggedConfigIs();

  // VRF name to its index; an absent name reads as null.
  ZEL_MAP(L3::VrfName, RouteListTaggedConfigPtr, vrfConfig, 258)

 protected:
  friend struct Zel::Factory;
  VrfRouteListTaggedConfig() = default;
};

}  // namespace Routing
