#include "foundations/records/Route.h"

#include <utility>

namespace Routing {

Route::Route(RouteKey const& key, RouteType routeType, Quill::Ptr<ParentLink> parentLink) noexcept
    : key_(key), routeType_(routeType), parentLink_(std::move(parentLink)) {}

}  // namespace Routing
