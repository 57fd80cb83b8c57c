// Feature toggles: a named boolean read once per process. A test or the host may set a toggle
// before its first use; a setting made after the first read is refused (returns false).
#pragma once

#include <string_view>

namespace Zel {

// Reads the toggle: a value set beforehand, else the environment (BOWLINE_TOGGLE_<name>=0|1),
// else the toggle file's line "<name>=0|1" when the file exists, else the default. The first
// answer stays for the life of the process.
bool getToggleState(std::string_view toggleName, std::string_view toggleFile, bool defaultValue);
// Sets a toggle before its first use; false when it has been read already.
bool toggleStateIs(std::string_view toggleName, bool value);
// Forgets every toggle (tests only: lets each test start from the defaults).
void toggleStateResetForTest();

}  // namespace Zel

// The toggles of the route core, all on by default.
bool toggleRouteInputStaticRouteJointAgentsEnabled();
bool toggleViaWeightChangeEnabled();
// "RouteInputVxlanBfd": BFD-tracked vias of injected routes may name a local address.
bool toggleRouteInputVxlanBfdEnabled();
