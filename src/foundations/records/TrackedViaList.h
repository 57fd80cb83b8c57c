// Routing::TrackedViaList: the vias of one route that one BFD session tracks, keyed by the route.
// Owned by the BFD status object of that session (its dependantRoute collection) and written by the
// BFD route machine; trackedVia publishes the via that came or went.
//
// Iterator contract of trackedViaIterator(): that of Zel::HashMap2018 (hash order; any via may be
// deleted during a walk, and resuming from a saved via visits exactly the vias after it).
#pragma once

#include "foundations/records/RouteKey.h"
#include "foundations/records/Via.h"
#include "foundations/runtime/Attribute.h"

namespace Routing {

class TrackedViaList : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<TrackedViaList> TrackedViaListIs(RouteKey const& routeKey);

  ZEL_CONST(RouteKey, routeKey)
  ZEL_SET(Via, trackedVia, 131)

 protected:
  friend struct Zel::Factory;
  explicit TrackedViaList(RouteKey const& routeKey) : routeKey_(routeKey) {}
};

}  // namespace Routing
