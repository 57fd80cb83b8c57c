// Fuzz::reduceScenario: shrinks a failing scenario to one that still fails the same way, for a
// person to read. It removes one piece at a time - a map field, a list item (a whole section, a
// step, a route, a via, ...) or a line of a route file - parents before children, and keeps each
// removal after which the scenario still fails, until no single removal does or the budget of tries
// is spent. Only scenarios with a tree (not edited as bytes) can be reduced.
#pragma once

#include <cstddef>
#include <functional>

#include "host/fuzz/ScenarioGenerator.h"

namespace BowlineTest::Fuzz {

[[nodiscard]] GeneratedScenario reduceScenario(GeneratedScenario s,
                                               std::function<bool(GeneratedScenario const&)> const& stillFails,
                                               std::size_t maxTries = 1500);

}  // namespace BowlineTest::Fuzz
