#include "foundations/rib/RibRoute.h"

#include "foundations/runtime/Exception.h"

namespace Routing::Rib {

void Route::srcVrfIdIs(VrfId vrfId) {
  QUILL_ASSERT(vrfId.value() <= (srcVrfIdMask >> srcVrfIdLoc), "vrfId.value() <= ( srcVrfIdMask >> srcVrfIdLoc )");
  body_.srcVrfIdWord = (vrfId.value() << srcVrfIdLoc) | (body_.srcVrfIdWord & ~srcVrfIdMask);
}

std::ostream& operator<<(std::ostream& os, Route const& r) {
  os << "Route(" << r.routeKey() << " proto " << r.routingProtocol() << " pref " << r.metricPref() << " viaSet "
     << r.viaSetKey();
  if (r.flags()) os << " flags " << unsigned(r.flags());
  if (r.fibRouteType()) os << " fibRouteType " << unsigned(r.fibRouteType());
  if (r.metricType()) os << " metricType " << r.metricType();
  if (!r.srcVrfId().isNone()) os << " srcVrf " << r.srcVrfId();
  if (r.tagOrResultId()) os << " tag " << r.tagOrResultId();
  return os << ')';
}

}  // namespace Routing::Rib
