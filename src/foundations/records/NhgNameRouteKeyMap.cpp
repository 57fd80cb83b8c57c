#include "foundations/records/NhgNameRouteKeyMap.h"

namespace Routing::NexthopGroup {

Quill::Ptr<NhgNameRouteKeyMap> NhgNameRouteKeyMap::NhgNameRouteKeyMapIs() { return Zel::make<NhgNameRouteKeyMap>(); }

void NhgNameRouteKeyMap::addOrUpdateNhgNameRouteKeyMap(RouteKey const& routeKey, Zel::String const& name) {
  if (routeKeyToNhgNameHas(routeKey)) {
    Zel::String const former = routeKeyToNhgName(routeKey);
    if (former != name) removeFromList(routeKey, former);
  }
  routeKeyToNhgNameIs(routeKey, name);
  nhgNameToRouteKeyListIs(name)->routeKeyListIs(routeKey);
}

void NhgNameRouteKeyMap::deleteNhgNameRouteKeyMap(RouteKey const& routeKey, Zel::String const& name) {
  removeFromList(routeKey, name);
  if (!routeKeyToNhgNameHas(routeKey)) return;
  Zel::String const filed = routeKeyToNhgName(routeKey);
  if (filed != name) removeFromList(routeKey, filed);
  routeKeyToNhgNameDel(routeKey);
}

void NhgNameRouteKeyMap::removeFromList(RouteKey const& routeKey, Zel::String const& name) {
  Quill::Ptr<NhgNameToRouteKeyList> list = nhgNameToRouteKeyList(name);
  if (!list) return;
  list->routeKeyListDel(routeKey);
  if (list->routeKeyListSize() == 0) nhgNameToRouteKeyListDel(name);
}

}  // namespace Routing::NexthopGroup
