// Host::ScenarioParser: reads a scenario file (YAML) into a Host::Scenario, checking it whole before
// anything runs: every key is known, every value parses and is in range, every VRF, interface and
// command tag named is declared, and the route files it names load. It owns nothing past the call;
// the program that runs scenarios calls it once per file. docs/scenario.md describes the format.
//
// Errors name the file, the line (1-based) and the field, and all of them are collected:
//   scenario.yaml:12: routes[3].vias[0].nexthop: "10.0.0.300" is not an IP address
// Anything the library would assert on is an error here, so that no file that checks can stop a
// run. Input is bounded before it is trusted: the file's kind and size, UTF-8 text without NUL
// bytes, one YAML document of bounded depth whose aliases stay within a budget of nodes, and
// names checked as UTF-8 without control characters; errors quote input escaped and cut short.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Scenario.h"
#include "host/YamlShape.h"

namespace Host {

struct ScenarioLimits {
  YamlLimits yaml;
  std::uint64_t maxScenarioBytes = std::uint64_t(64) << 20;
  std::uint64_t maxRouteFileBytes = std::uint64_t(1) << 30;
};

struct ScenarioError {
  std::string file;
  int line = 0;       // 1-based; 0 when the file could not be read at all
  std::string field;  // "routes[3].vias[0].nexthop"; empty for an error of the file itself
  std::string message;

  // "file:line: field: message", leaving out what is not known.
  [[nodiscard]] std::string text() const;
};

// The scenario, or every error found in it (then there is no scenario).
struct ScenarioParse {
  std::optional<Scenario> scenario;
  std::vector<ScenarioError> errors;

  [[nodiscard]] bool ok() const noexcept { return errors.empty(); }
  // One error a line.
  [[nodiscard]] std::string errorText() const;
};

class ScenarioParser {
 public:
  // Reads the file; route files are found relative to its folder.
  [[nodiscard]] static ScenarioParse parseFile(std::string const& path, ScenarioLimits const& limits = {});
  // Reads YAML already in memory: `name` stands for the file in errors, `baseDir` is where route
  // files are found.
  [[nodiscard]] static ScenarioParse parseText(std::string_view yaml, std::string const& name,
                                               std::string const& baseDir, ScenarioLimits const& limits = {});
};

// ScenarioParser::parseFile(path).
[[nodiscard]] inline ScenarioParse parseScenario(std::string const& path) { return ScenarioParser::parseFile(path); }

}  // namespace Host
