// Routing::RouteKeySet: the keys of the routes that carry one command tag, in one VRF. Written by
// the configuration agent into a RouteListTaggedConfig; the tagged-route machine watches it and
// reviews a key when it comes or goes (routeKeySet publishes the key).
//
// Iterator contract of routeKeySetIterator(): that of Zel::HashMap2018 (hash order; any key may be
// deleted during a walk, and resuming from a saved key visits exactly the keys after it).
#pragma once

#include "foundations/records/RouteKey.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace Routing {

class RouteKeySet : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<RouteKeySet> RouteKeySetIs(Zel::String const& tagName);

  // The tag the set belongs to.
  ZEL_CONST(Zel::String, tagName)
  ZEL_SET(RouteKey, routeKeySet, 131)

 protected:
  friend struct Zel::Factory;
  explicit RouteKeySet(Zel::String const& tagName) : tagName_(tagName) {}
};

}  // namespace Routing
