#include "static/ViaReevaluateWalkSm.h"

#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("StaticRoute::RouteConfigSm");

namespace Routing::Static {

std::uint64_t ViaReevaluateWalkSm::walk() {
  std::uint64_t count = 0;
  if (start()) inDynamicIs(false);
  if (!inDynamic() && routeList_ && !walkList(*routeList_, false, count)) return count | kMoreToDo;
  if (dynamicRouteList_ && !walkList(*dynamicRouteList_, true, count)) return count | kMoreToDo;
  startIs(true);
  inDynamicIs(false);
  FMTRACE(8, "Vrf: {}, ViaReevaluateWalkSm::walk finished, processed {} items", vrfName_, count);
  return count;
}

bool ViaReevaluateWalkSm::walkList(RouteList const& list, bool dynamic, std::uint64_t& count) {
  auto const& routes = list.routeColl();
  // Resuming in this list, or starting it.
  bool const resume = !start() && inDynamic() == dynamic;
  auto it = resume ? routes.iteratorAt(bookmark()) : routes.iterator();
  startIs(false);
  inDynamicIs(dynamic);
  while (it) {
    // A dynamic route gives way to a static route of its key.
    if (!dynamic || !routeList_ || !routeList_->routeHas(it.key())) {
      reevaluatedRoute_ = it.value();
      reevaluatedRouteTriggerInc(1);
      reevaluatedRoute_ = nullptr;
      ++count;
    }
    it.advance();
    if (it && mustYield()) {
      bookmarkIs(it.key());
      FMTRACE(8, "Vrf: {}, ViaReevaluateWalkSm::walk yielding, processed {} items", vrfName_, count);
      return false;
    }
  }
  return true;
}

}  // namespace Routing::Static
