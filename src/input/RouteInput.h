// The route-input lists of the agents that inject routes into one VRF and family, by agent name,
// and their command-tag indexes likewise. Filled by the input container from the agents'
// directories; watched by the RouteConfigSm of the route-input mode.
#pragma once

#include "foundations/records/RouteInput.h"
#include "foundations/records/RouteListTaggedConfig.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace Routing::Input {

using RouteInputConstPtr = Quill::Ptr<RouteInput const>;
using RouteListTaggedConfigConstPtr = Quill::Ptr<RouteListTaggedConfig const>;

class ConfigByUser : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<ConfigByUser> ConfigByUserIs() { return Zel::make<ConfigByUser>(); }
  ZEL_MAP(Quill::String, RouteInputConstPtr, config, 130)
  // Keyed by the input's own name.
  bool configIs(RouteInputConstPtr const& input) { return configIs(input->name(), input); }

 protected:
  friend struct Zel::Factory;
  ConfigByUser() = default;
};

class ConfigTaggedByUser : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<ConfigTaggedByUser> ConfigTaggedByUserIs() { return Zel::make<ConfigTaggedByUser>(); }
  ZEL_MAP(Quill::String, RouteListTaggedConfigConstPtr, config, 130)

 protected:
  friend struct Zel::Factory;
  ConfigTaggedByUser() = default;
};

}  // namespace Routing::Input
