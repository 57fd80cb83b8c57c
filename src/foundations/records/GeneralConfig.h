// Routing::General::Config: the global routing settings that the route machines read; written by
// the configuration agent. staticRouteEcmpState (id 269) decides how the vias of a static route are
// grouped, staticRoutePreference (id 279) is the preference of a static route configured without
// one, and the two metric-type flags choose the AIGP metric type for the routes of each protocol.
#pragma once

#include <cstdint>
#include <ostream>

#include "foundations/records/RoutePreference.h"
#include "foundations/runtime/Attribute.h"

namespace Routing::General {

// 0: the vias of a route are grouped by their via type; 1: all vias of a route form one group;
// any other value: neither.
enum class StaticRouteEcmpState : std::uint8_t {
  groupByViaType = 0,
  singleGroup = 1,
};

inline std::ostream& operator<<(std::ostream& os, StaticRouteEcmpState s) {
  switch (s) {
    case StaticRouteEcmpState::groupByViaType:
      return os << "groupByViaType";
    case StaticRouteEcmpState::singleGroup:
      return os << "singleGroup";
  }
  return os << unsigned(s);
}

class Config : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<Config> ConfigIs();

  ZEL_ATTR(StaticRouteEcmpState, staticRouteEcmpState, 269)
  ZEL_ATTR(RoutePreference, staticRoutePreference, 279)
  ZEL_ATTR(bool, staticMetricTypeAigp, 130)
  ZEL_ATTR(bool, routeInputMetricTypeAigp, 131)

 protected:
  friend struct Zel::Factory;
  Config() = default;
};

}  // namespace Routing::General
