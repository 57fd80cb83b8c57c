// Routing::RouteListTaggedConfig: the command-tag index of one VRF, from a tag's name to the set of
// route keys that carry it. Written by the configuration agent, watched by the tagged-route machine.
// The sets are held, not owned: the writer builds a RouteKeySet and puts it under its name, and a
// change of tagToRouteKeySet (id 258, keyed by the name) carries the former and the new set as
// the notify values (Zel::notifyOldValue<Quill::Ptr<RouteKeySet>>), which the reader needs to walk
// the keys of a set that has just gone.
//
// Iterator contract of tagToRouteKeySetIterator(): that of Zel::HashMap2018 (hash order; any entry
// may be deleted during a walk, and resuming from a saved name visits exactly the entries after it).
#pragma once

#include "foundations/records/RouteKeySet.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"
#include "foundations/types/VrfName.h"

namespace Routing {

class RouteListTaggedConfig : public Zel::Entity {
 public:
  using RouteKeySetPtr = Quill::Ptr<RouteKeySet>;

  [[nodiscard]] static Quill::Ptr<RouteListTaggedConfig> RouteListTaggedConfigIs(L3::VrfName const& vrfName);

  ZEL_CONST(L3::VrfName, vrfName)
  // Tag name to its set; an absent name reads as null.
  ZEL_MAP(Zel::String, RouteKeySetPtr, tagToRouteKeySet, 258)

 protected:
  friend struct Zel::Factory;
  explicit RouteListTaggedConfig(L3::VrfName const& vrfName) : vrfName_(vrfName) {}
};

}  // namespace Routing
