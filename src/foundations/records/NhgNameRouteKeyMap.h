// Routing::NexthopGroup::NhgNameRouteKeyMap: the reverse index from a next-hop group's name to the
// keys of the routes that use it, so that a change of one group reviews exactly its routes. Owned
// and written by the static route machine; nothing else writes it. It keeps each key under at
// most one name (routeKeyToNhgName is the way back), and a name's list lives exactly as long as it
// holds a key.
//
// Iterator contract of both collections and of a list's routeKeyList: that of Zel::HashMap2018
// (hash order; any member may be deleted during a walk, and resuming from a saved key visits
// exactly the members after it).
#pragma once

#include "foundations/records/RouteKey.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace Routing::NexthopGroup {

// The route keys under one group name.
class NhgNameToRouteKeyList : public Zel::Entity {
 public:
  ZEL_CONST(Zel::String, nhgName)
  ZEL_SET(RouteKey, routeKeyList, 131)

 protected:
  friend struct Zel::Factory;
  explicit NhgNameToRouteKeyList(Zel::String const& nhgName) : nhgName_(nhgName) {}
};

class NhgNameRouteKeyMap : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<NhgNameRouteKeyMap> NhgNameRouteKeyMapIs();

  ZEL_OWNED_MAP(Zel::String, NhgNameToRouteKeyList, nhgNameToRouteKeyList, 130)
  // The name each key stands under.
  ZEL_MAP(RouteKey, Zel::String, routeKeyToNhgName, 131)

  // Files the key under `name`, creating the name's list, and takes it out of the list of any
  // other name it stood under (which goes if that leaves it empty).
  void addOrUpdateNhgNameRouteKeyMap(RouteKey const& routeKey, Zel::String const& name);
  // Takes the key out of the index; a list left empty is removed. The key is looked for under
  // `name` and, should the route have changed its group since it was filed, under the name it
  // was filed under.
  void deleteNhgNameRouteKeyMap(RouteKey const& routeKey, Zel::String const& name);

 protected:
  friend struct Zel::Factory;
  NhgNameRouteKeyMap() = default;

 private:
  void removeFromList(RouteKey const& routeKey, Zel::String const& name);
};

}  // namespace Routing::NexthopGroup
