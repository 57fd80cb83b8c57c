// The rules ScenarioParser enforces for the library, shown to be the library's own: a scenario that
// checks is run, then the same scenario with the one value the parser refuses put back by hand
// ends the process on the library's assertion text. Should the library change a rule, this test
// says so (and the parser's rule can follow).
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "host/Runner.h"
#include "host/ScenarioParser.h"

namespace {

using namespace Host;

Scenario parsed(std::string const& yaml) {
  ScenarioParse r = ScenarioParser::parseText(yaml, "s.yaml", ".");
  EXPECT_TRUE(r.ok()) << r.errorText();
  return r.scenario ? std::move(*r.scenario) : Scenario{};
}

void run(Scenario const& sc) {
  std::ostringstream out, err;
  (void)runScenario(sc, RunOptions{}, out, err);
}

std::string const kSwitch =
    "interfaces: [{name: Ethernet1, addresses: [192.0.2.1/24, 2001:db8:1::1/64]}]\n"
    "global: {mpls: true}\n";

TEST(LibraryRulesTest, AnIpv4NextHopOfAnIpv6StaticRouteNeedsALabel) {
  // 1. With its label the route is the parser's and the library's.
  Scenario sc = parsed(kSwitch + "routes: [{prefix: 2001:db8:5::/48, vias: [{nexthop: 192.0.2.2, label: 16}]}]\n");
  run(sc);
  // 2. Without it, the parser refuses it (ScenarioChecksTest) and the library asserts.
  sc.routes.at(0).vias.at(0).labels.clear();
  EXPECT_DEATH(run(sc), "via\\.mplsLabel\\(\\)\\.isValid\\(\\)");
}

TEST(LibraryRulesTest, AnInjectedNextHopIsOfTheRoutesFamily) {
  Scenario sc = parsed(kSwitch +
                       "injected: [{user: bgp, routes: [{prefix: 198.51.100.0/24, vias: [{nexthop: "
                       "192.0.2.2}]}]}]\n");
  run(sc);
  sc.injected.at(0).routes.at(0).vias.at(0).nexthop = *Ondex::IpGenAddr::fromString("2001:db8:1::2");
  EXPECT_DEATH(run(sc), "isStaticRoute\\( routingProtocol\\(\\) \\)");
}

TEST(LibraryRulesTest, ALocalAddressIsNeverTheUnspecifiedAddress) {
  Scenario sc = parsed(kSwitch +
                       "routes: [{prefix: 198.51.100.0/24, vias: [{nexthop: 192.0.2.2, bfd: true, "
                       "local_address: 192.0.2.1}]}]\n");
  run(sc);
  sc.routes.at(0).vias.at(0).localAddr = *Ondex::IpGenAddr::fromString("0.0.0.0");
  EXPECT_DEATH(run(sc), "assertion failed: localAddr");
}

}  // namespace
