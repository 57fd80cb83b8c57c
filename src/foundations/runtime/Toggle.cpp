#include "foundations/runtime/Toggle.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

namespace Zel {

namespace {
struct ToggleState {
  bool value;
  bool read;
};
std::map<std::string, ToggleState, std::less<>>& toggles() {
  static auto* t = new std::map<std::string, ToggleState, std::less<>>();
  return *t;
}

bool fromText(std::string const& text, bool fallback) {
  if (text == "1" || text == "true" || text == "on") return true;
  if (text == "0" || text == "false" || text == "off") return false;
  return fallback;
}

bool lookUp(std::string_view name, std::string_view file, bool defaultValue) {
  std::string env = "BOWLINE_TOGGLE_" + std::string(name);
  if (char const* v = std::getenv(env.c_str())) return fromText(v, defaultValue);
  if (!file.empty()) {
    std::ifstream in{std::string(file)};
    std::string line;
    while (std::getline(in, line)) {
      auto eq = line.find('=');
      if (eq != std::string::npos && line.compare(0, eq, name) == 0) return fromText(line.substr(eq + 1), defaultValue);
    }
  }
  return defaultValue;
}
}  // namespace

bool getToggleState(std::string_view toggleName, std::string_view toggleFile, bool defaultValue) {
  auto& t = toggles();
  auto it = t.find(toggleName);
  if (it == t.end()) it = t.emplace(std::string(toggleName), ToggleState{lookUp(toggleName, toggleFile, defaultValue), true}).first;
  it->second.read = true;
  return it->second.value;
}

bool toggleStateIs(std::string_view toggleName, bool value) {
  auto& t = toggles();
  auto it = t.find(toggleName);
  if (it != t.end() && it->second.read) return it->second.value == value;
  t[std::string(toggleName)] = ToggleState{value, false};
  return true;
}

void toggleStateResetForTest() { toggles().clear(); }

}  // namespace Zel

bool toggleRouteInputStaticRouteJointAgentsEnabled() {
  return Zel::getToggleState("RouteInputStaticRouteJointAgents", "/etc/bowline/toggles", true);
}

bool toggleViaWeightChangeEnabled() { return Zel::getToggleState("ViaWeightChange", "/etc/bowline/toggles", true); }

bool toggleRouteInputVxlanBfdEnabled() {
  return Zel::getToggleState("RouteInputVxlanBfd", "/etc/bowline/toggles", true);
}
