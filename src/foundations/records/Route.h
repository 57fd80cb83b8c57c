// Routing::Route: the configuration of one route, written by the configuration agent (or by an
// agent that injects routes) and only read by the route machines. It is owned by its RouteList
// (or RouteInput), which parent() reaches; key and routeType are fixed at construction. Every other
// attribute publishes its id when it changes: a collection with the changed via as key.
#pragma once

#include <cstdint>

#include "foundations/records/ConfigTag.h"
#include "foundations/records/RouteAttributes.h"
#include "foundations/records/RouteKey.h"
#include "foundations/records/RouteType.h"
#include "foundations/records/RouteViaAttr.h"
#include "foundations/records/Via.h"
#include "foundations/rib/ResolutionRibProfileConfig.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/Optional.h"
#include "foundations/runtime/String.h"

namespace Routing {

using RouteTag = std::uint32_t;

class RouteList;

class Route : public Zel::Entity {
 public:
  ZEL_CONST(RouteKey, key)
  ZEL_ATTR(RouteTag, tag, 261)
  // The command tag that gates the route; 0 is none.
  ZEL_ATTR(ConfigTag::ConfigTagId, commandTagId, 262)
  // Absent is not the same as present with no community.
  ZEL_ATTR(Zel::Optional<RouteAttributes>, routeAttributes, 263)
  // The next-hop group that stands for the vias of a route of type nexthopGroup; empty is none.
  ZEL_ATTR(Zel::String, nexthopGroupName, 264)
  ZEL_ATTR(std::uint32_t, nexthopGroupMetric, 265)
  ZEL_ATTR(std::uint32_t, nexthopGroupWeight, 266)
  ZEL_CONST(RouteType, routeType)
  // The route may be programmed through the route cache.
  ZEL_ATTR(bool, ribBypass, 269)
  ZEL_MAP(Via, RouteViaAttr, via, 270)
  ZEL_MAP(Via, Rib::ResolutionRibProfileConfig, viaResRibProfileConfig, 271)
  ZEL_SET(Via, bfdTracked, 274)
  // The VRF to leak the route to; empty is none. Kept as the text the agent wrote: a name longer
  // than a VRF name may be raises where it is turned into one.
  ZEL_ATTR(Zel::String, leakVrf, 275)

  // The number of configured vias.
  [[nodiscard]] std::size_t vias() const noexcept { return viaSize(); }
  // The list that owns the route: a RouteList, or a RouteInput in the route-input mode. Null once
  // that list has been destroyed (a reader may hold a route longer than its list lives).
  [[nodiscard]] RouteList const* parent() const noexcept { return parentLink_->list; }
  [[nodiscard]] RouteList* parent() noexcept { return parentLink_->list; }

  // The back pointer that all routes of one list share; the list clears it when it goes, so that
  // no route is left pointing at a destroyed list.
  class ParentLink : public Zel::PtrInterface {
   public:
    RouteList* list;

   protected:
    friend struct Zel::Factory;
    explicit ParentLink(RouteList* l) noexcept : list(l) {}
  };

 protected:
  friend struct Zel::Factory;
  Route(RouteKey const& key, RouteType routeType, Quill::Ptr<ParentLink> parentLink) noexcept;

 private:
  Quill::Ptr<ParentLink> parentLink_;
};

}  // namespace Routing
