// Routing::Rib::ribTypeFactoriesIs: registers, in an entity store (the central database or the
// shared-memory tables), a factory for each RIB table under the type name its mounts use, so that
// mounting a path that holds nothing yet creates an empty table of the right type. It writes only
// the store's factory list; the tables it creates belong to the store.
#pragma once

#include <string_view>
#include <vector>

#include "foundations/runtime/Mount.h"

namespace Routing::Rib {

// The type names registered by ribTypeFactoriesIs, in registration order.
[[nodiscard]] std::vector<std::string_view> const& ribTypeNames();

void ribTypeFactoriesIs(Zel::EntityStore& store);

}  // namespace Routing::Rib
