// An agent embedding the installed library: it reads a small switch (one interface, one static
// route), builds the runtime's scheduler and the library's machines around the stand-ins, runs to
// idle and prints the default VRF's RIB. The install test checks what it prints.
#include <iostream>

#include "foundations/runtime/TaskScheduler.h"
#include "host/Runner.h"
#include "host/ScenarioParser.h"
#include "host/Switch.h"

namespace {

constexpr char const* kSwitch = R"(
interfaces:
  - {name: Ethernet1, addresses: [198.51.100.1/24]}
routes:
  - {prefix: 192.0.2.0/24, vias: [{nexthop: 198.51.100.2}]}
)";

}  // namespace

int main() {
  Host::ScenarioParse parse = Host::ScenarioParser::parseText(kSwitch, "embedded.yaml", ".");
  if (!parse.ok()) {
    std::cerr << parse.errorText();
    return 1;
  }
  auto* scheduler = Halyard::TaskSchedulerRoot::findOrCreateScheduler();
  {
    Host::Switch sw(*parse.scenario, scheduler);
    sw.start();
    sw.settle();
    std::cout << Host::showText(sw.view("embedded", "default"));
  }
  return 0;
}
