#include "foundations/records/TrackedViaList.h"

namespace Routing {

Quill::Ptr<TrackedViaList> TrackedViaList::TrackedViaListIs(RouteKey const& routeKey) {
  return Zel::make<TrackedViaList>(routeKey);
}

}  // namespace Routing
