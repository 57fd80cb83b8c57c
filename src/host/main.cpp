// bowline: runs the routing library on a scenario (a switch described in YAML) and prints the RIB
// it builds. `bowline run [SCENARIO]` runs it (the shipped default scenario when none is given);
// `bowline check SCENARIO` only reads and checks it. The command line is Host::runCommandLine.
#include <unistd.h>

#include <cstdlib>
#include <iostream>

#include "host/CommandLine.h"
#include "host/Runner.h"

#ifndef BOWLINE_DEFAULT_SCENARIO
#define BOWLINE_DEFAULT_SCENARIO "scenarios/default.yaml"
#endif
#ifndef BOWLINE_VERSION
#define BOWLINE_VERSION "unknown"
#endif

int main(int argc, char** argv) {
  // An assertion of the library ends the process: it then says which step of the run it was in.
  Host::installAbortReport();
  Host::CommandLineSetup const setup{BOWLINE_VERSION, BOWLINE_DEFAULT_SCENARIO, true, isatty(STDERR_FILENO) != 0};
  int const status = Host::runCommandLine(argc, argv, setup, std::cout, std::cerr);
  std::cout.flush();
  // The switch is left standing on purpose: the process ends here.
  std::_Exit(status);
}
