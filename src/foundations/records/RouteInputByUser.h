// The route-input lists of the agents that inject routes into one VRF and family, by agent name,
// and their command-tag indexes likewise. Filled by the input container from the agents'
// directories; watched by the RouteConfigSm of the route-input mode.
//
// Two users may inject the same key (prefix and preference). One route per key is programmed:
// the martian list's, when it has the key, else the route of the user whose name sorts first
// (byte order). userBefore states that order; it never depends on the order in which the users
// or their routes came.
#pragma once

#include "foundations/records/RouteInput.h"
#include "foundations/records/RouteListTaggedConfig.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"

namespace Routing::Input {

using RouteInputConstPtr = Quill::Ptr<RouteInput const>;
using RouteListTaggedConfigConstPtr = Quill::Ptr<RouteListTaggedConfig const>;

// The name of the input container's own list of martian routes.
inline constexpr char kMartianUser[] = "martian";

// Whether user a's route of a key wins over user b's: the martian list first, then by name.
[[nodiscard]] inline bool userBefore(Quill::String const& a, Quill::String const& b) noexcept {
  bool const aMartian = a.view() == kMartianUser;
  bool const bMartian = b.view() == kMartianUser;
  if (aMartian != bMartian) return aMartian;
  return a.view() < b.view();
}

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
