#include "foundations/records/RouteKey.h"

namespace Routing {

std::string RouteKey::pretty() const { return prefix_.toString() + " pref " + std::to_string(preference_.value()); }

}  // namespace Routing
