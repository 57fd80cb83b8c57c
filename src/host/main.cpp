// bowline: runs the routing library on a scenario (a switch described in YAML) and prints the RIB
// it builds. `bowline run [SCENARIO]` runs it (the shipped default scenario when none is given);
// `bowline check SCENARIO` only reads and checks it.
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "foundations/runtime/Trace.h"
#include "host/Runner.h"
#include "host/ScenarioParser.h"

#ifndef BOWLINE_DEFAULT_SCENARIO
#define BOWLINE_DEFAULT_SCENARIO "scenarios/default.yaml"
#endif

int main(int argc, char** argv) {
  CLI::App app{
      "bowline: the routing library run on a scenario - a switch's VRFs, interfaces, routes and events - "
      "printing the RIB it builds"};
  app.require_subcommand(1);
  std::string scenarioPath = BOWLINE_DEFAULT_SCENARIO;
  Host::RunOptions options;
  std::vector<std::string> traces;

  auto* run = app.add_subcommand("run", "Run a scenario and print the RIB at each show step");
  run->add_option("scenario", scenarioPath, "The scenario file (YAML)")->capture_default_str();
  run->add_flag("--json", options.json, "Print the shows as one JSON document (schema in docs/scenario.md)");
  run->add_flag("--stats", options.stats, "Print the time of each phase (load, converge, output) to stderr");
  run->add_option("--trace", traces,
                  "Trace to stderr: FACILITY=LEVELS, repeatable, e.g. IpRib::RouteStatusSm=0-9 or "
                  "'StaticRoute::*=6' (facility names as the library defines them; levels 0-15)");

  std::string checkPath;
  auto* check = app.add_subcommand("check", "Read and check a scenario; run nothing");
  check->add_option("scenario", checkPath, "The scenario file (YAML)")->required();

  CLI11_PARSE(app, argc, argv);

  auto const t0 = std::chrono::steady_clock::now();
  auto const& path = check->parsed() ? checkPath : scenarioPath;
  Host::ScenarioParse parse = Host::parseScenario(path);
  if (!parse.ok()) {
    std::cerr << parse.errorText();
    return 1;
  }
  if (check->parsed()) {
    std::cout << path << ": ok\n";
    return 0;
  }
  options.loadSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  for (auto const& rule : traces) {
    std::string const error = Zel::traceRulesIs(rule);
    if (!error.empty()) {
      std::cerr << "bowline: --trace " << rule << ": " << error << "\n";
      return 2;
    }
  }
  options.keepAtExit = true;
  int const status = Host::runScenario(*parse.scenario, options, std::cout, std::cerr);
  std::cout.flush();
  // The switch is left standing on purpose: the process ends here.
  std::_Exit(status);
}
