#include "static/ViaReevaluateWalkSm.h"

#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

namespace Routing::Static {

std::uint64_t ViaReevaluateWalkSm::walk() {
  std::uint64_t count = 0;
  if (!routeList_) {
    startIs(true);
    return count;
  }
  auto const& routes = routeList_->routeColl();
  auto it = start() ? routes.iterator() : routes.iteratorAt(bookmark());
  startIs(false);
  while (it) {
    reevaluatedRoute_ = it.value();
    reevaluatedRouteTriggerInc(1);
    reevaluatedRoute_ = nullptr;
    ++count;
    it.advance();
    if (it && mustYield()) {
      bookmarkIs(it.key());
      FMTRACE(8, "Vrf: {}, ViaReevaluateWalkSm::walk yielding, processed {} items", vrfName_, count);
      return count | kMoreToDo;
    }
  }
  startIs(true);
  FMTRACE(8, "Vrf: {}, ViaReevaluateWalkSm::walk finished, processed {} items", vrfName_, count);
  return count;
}

}  // namespace Routing::Static
