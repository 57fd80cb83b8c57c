// Routing::RouteInput: the route list of one agent that injects routes (one user of the route-input
// mode), named after that agent. It is a RouteList, so its routes reach their parent through it, and
// it adds the routing protocol its routes carry and whether they go to the FIB. Written by the
// injecting agent (or by the input container, for the martian list), read by the route machines.
#pragma once

#include <cstdint>

#include "foundations/records/RouteList.h"
#include "foundations/runtime/String.h"

namespace Routing {

class RouteInput : public RouteList {
 public:
  [[nodiscard]] static Quill::Ptr<RouteInput> RouteInputIs(Zel::String const& name);

  ZEL_CONST(Zel::String, name)
  // The Routing::Rib::RoutingProtocol value that the routes of this input carry.
  ZEL_ATTR(std::uint8_t, routingProto, 390)
  ZEL_ATTR_DEFAULT(bool, installInFib, 391, true)

  [[nodiscard]] RouteInput const* routeInput() const noexcept override { return this; }
  // An owning attribute keeps the input it holds when asked again for the same name.
  [[nodiscard]] bool zelSameArgs(Zel::String const& name) const noexcept { return name == name_; }

 protected:
  friend struct Zel::Factory;
  explicit RouteInput(Zel::String const& name);
};

}  // namespace Routing
