#include "host/CommandLine.h"

#include <chrono>
#include <exception>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/Runner.h"
#include "host/ScenarioParser.h"
#include "host/TraceRules.h"

namespace Host {

namespace {

constexpr char const* kExitCodes =
    "Exit codes: 0 ok; 1 the scenario (or a route file) has errors, nothing ran; 2 a usage error "
    "(options, --trace rules); 3 the run stopped on an error.";

}  // namespace

int runCommandLine(int argc, char const* const* argv, CommandLineSetup const& setup, std::ostream& out,
                   std::ostream& err) {
  CLI::App app{
      "bowline: the routing library run on a scenario - a switch's VRFs, interfaces, routes and events - "
      "printing the RIB it builds"};
  app.require_subcommand(1);
  app.set_version_flag("--version", "bowline " + setup.version, "Print the version and exit");
  app.footer(kExitCodes);
  std::string scenarioPath = setup.defaultScenario;
  RunOptions options;
  std::vector<std::string> traces;

  auto* run = app.add_subcommand("run", "Run a scenario and print the RIB at each show step");
  run->add_option("scenario", scenarioPath, "The scenario file (YAML)")->capture_default_str();
  run->add_flag("--json", options.json, "Print the shows as one JSON document (schema in docs/scenario.md)");
  run->add_flag("--stats", options.stats,
                "Print to stderr the time of each phase (load, converge, output, teardown), the routes installed, "
                "routes per second and the peak memory");
  run->add_flag("--teardown", options.teardown,
                "Tear the switch down at the end (timed by --stats) instead of leaving it to the process's exit");
  run->add_flag("--memory-by-type", options.memoryByType,
                "Print to stderr the runtime's live objects by type (bytes, count), largest first, before the "
                "teardown");
  run->add_option("--trace", traces,
                  "Trace to stderr: FACILITY=LEVELS, one rule per --trace, repeatable, e.g. "
                  "IpRib::RouteStatusSm=0-9 or 'StaticRoute::*=6' (a pattern must name a facility; levels "
                  "0-15)")
      ->expected(1)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  run->footer(kExitCodes);

  std::string checkPath;
  auto* check = app.add_subcommand("check", "Read and check a scenario; run nothing");
  check->add_option("scenario", checkPath, "The scenario file (YAML)")->required();
  check->footer(kExitCodes);

  try {
    app.parse(argc, argv);
  } catch (CLI::Success const& e) {  // --help, --version
    return app.exit(e, out, err);
  } catch (CLI::ParseError const& e) {
    (void)app.exit(e, out, err);
    return kExitUsageError;
  }

  // The trace rules are the command line's: checked before the scenario is read.
  for (auto const& rule : traces) {
    std::string const error = traceRuleIs(rule);
    if (!error.empty()) {
      err << "bowline: --trace " << rule << ": " << error << "\n";
      return kExitUsageError;
    }
  }

  auto const t0 = std::chrono::steady_clock::now();
  auto const& path = check->parsed() ? checkPath : scenarioPath;
  ScenarioParse parse = parseScenario(path);
  if (!parse.ok()) {
    err << parse.errorText();
    return kExitScenarioError;
  }
  if (check->parsed()) {
    out << path << ": ok\n";
    return kExitOk;
  }
  options.loadSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  options.keepAtExit = setup.keepAtExit && !options.teardown;
  options.progress = setup.progressOnTerminal;
  try {
    return runScenario(*parse.scenario, options, out, err);
  } catch (std::exception const& e) {
    out.flush();
    err << "bowline: the run stopped: " << e.what() << "\n";
    return kExitRunError;
  }
}

}  // namespace Host
