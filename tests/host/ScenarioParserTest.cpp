// Host::ScenarioParser: a scenario with every feature parses into the expected values (and is the
// example the user guide shows); each class of error gives its file:line: field: message, all of
// them are collected, and VRFs added and removed by steps are what later steps may name.
#include "host/ScenarioParser.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace Host;
using Ondex::IntfId;
using Ondex::IpGenAddr;
using Ondex::IpGenPrefix;

std::filesystem::path scenarioDir() { return std::filesystem::path(__FILE__).parent_path() / "scenarios"; }
IpGenPrefix pfx(char const* text) { return *IpGenPrefix::fromString(text); }
IpGenAddr addr(char const* text) { return *IpGenAddr::fromString(text); }

std::string readFile(std::filesystem::path const& p) {
  std::ifstream in(p);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

ScenarioParse parse(std::string const& yaml) {
  return ScenarioParser::parseText(yaml, "s.yaml", scenarioDir().string());
}

// The error texts of a scenario that must not parse.
std::vector<std::string> errorsOf(std::string const& yaml) {
  ScenarioParse const r = parse(yaml);
  EXPECT_FALSE(r.scenario.has_value());
  std::vector<std::string> out;
  for (ScenarioError const& e : r.errors) out.push_back(e.text());
  return out;
}

// Declarations that the error cases build on.
std::string const kSwitch =
    "vrfs: [{name: red, id: 1}]\n"                 // 1
    "interfaces: [{name: Ethernet1, vrf: red}]\n"  // 2
    "command_tags: [{name: maint}]\n";             // 3

template <class T>
T const& stepAs(Scenario const& sc, std::size_t i) {
  EXPECT_LT(i, sc.steps.size());
  T const* s = std::get_if<T>(&sc.steps.at(i).kind);
  EXPECT_NE(s, nullptr) << "step " << i << " is of another kind";
  static T const none{};
  return s ? *s : none;
}

TEST(ScenarioParserTest, FullScenarioParsesIntoTheExpectedValues) {
  std::string const path = (scenarioDir() / "full.yaml").string();
  ScenarioParse const r = parseScenario(path);
  ASSERT_TRUE(r.ok()) << r.errorText();
  Scenario const& sc = *r.scenario;
  EXPECT_EQ(sc.path, path);

  // 1. VRFs, the default one first; interfaces with their addresses and flags.
  ASSERT_EQ(sc.vrfs.size(), 3u);
  EXPECT_EQ(sc.vrfs[0].name, "default");
  EXPECT_EQ(sc.vrf("blue")->id, 2u);
  EXPECT_EQ(sc.vrf("blue")->line, 4);
  Interface const& e1 = *sc.interface(IntfId("Ethernet1"));
  EXPECT_EQ(e1.vrf, "red");
  ASSERT_EQ(e1.addresses.size(), 2u);
  EXPECT_EQ(e1.addresses[0].subnet(), pfx("10.1.0.0/24"));
  EXPECT_EQ(e1.addresses[1].addr, addr("2001:db8:1::1"));
  EXPECT_TRUE(e1.up && e1.routing);
  EXPECT_FALSE(sc.interface(IntfId("Ethernet2"))->up);
  EXPECT_EQ(sc.interface(IntfId("Ethernet2"))->addresses.size(), 1u) << "a single address without a list";
  EXPECT_FALSE(sc.interface(IntfId("Vlan10"))->routing);

  // 2. Command tags get ids in order; global settings.
  EXPECT_EQ(sc.commandTag("canary")->id, 2);
  EXPECT_FALSE(sc.commandTag("canary")->enabled);
  EXPECT_EQ(sc.global.preference, 5);
  EXPECT_EQ(sc.global.ecmp, EcmpState::singleGroup);
  EXPECT_TRUE(sc.global.mpls && sc.global.gracefulRestart && sc.global.startReadyVerification);

  // 3. A static route with every field and two vias.
  ASSERT_EQ(sc.routes.size(), 7u);
  StaticRoute const& r0 = sc.routes[0];
  EXPECT_EQ(r0.vrf, "red");
  EXPECT_EQ(r0.key(), Routing::RouteKey(pfx("10.20.0.0/16"), Routing::RoutePreference(10)));
  EXPECT_EQ(r0.tag, 42u);
  EXPECT_EQ(r0.communities, (std::vector<std::uint32_t>{100, 65000u << 16 | 7}));
  EXPECT_EQ(r0.leakVrf, "blue");
  EXPECT_EQ(r0.commandTagId, 1);
  ASSERT_EQ(r0.vias.size(), 2u);
  Via const& v0 = r0.vias[0];
  EXPECT_EQ(v0.viaAttr(), Routing::RouteViaAttr(3, 2));
  EXPECT_TRUE(v0.bfd);
  EXPECT_EQ(v0.line, 41);
  EXPECT_EQ(v0.routingVia(), Routing::Via(addr("10.1.0.2"), IntfId("Ethernet1"))
                                 .mplsLabelIs(Ondex::MplsLabel(16))
                                 .localAddrIs(addr("10.1.0.1")));
  EXPECT_EQ(r0.vias[1].routingVia(), Routing::Via(addr("10.1.0.3")));

  // 4. The other route forms: IPv6, drop, drop with indication, to the CPU without vias, dynamic
  // with an egress VRF, EVPN.
  EXPECT_EQ(sc.routes[1].vias[0].nexthop, addr("2001:db8:1::2"));
  EXPECT_EQ(sc.routes[2].type, Routing::RouteType::drop);
  EXPECT_TRUE(sc.routes[2].ribBypass);
  EXPECT_FALSE(sc.routes[2].communities.has_value());
  EXPECT_EQ(sc.routes[3].type, Routing::RouteType::dropWithIndication);
  EXPECT_EQ(sc.routes[3].preference, 200);
  EXPECT_TRUE(sc.routes[4].vias.empty());
  EXPECT_TRUE(sc.routes[5].dynamic);
  EXPECT_EQ(sc.routes[5].vias[0].routingVia().egressVrf(), L3::VrfName("blue"));
  EXPECT_EQ(sc.routes[6].vias[0].routingVia(), Routing::Via()
                                                   .vtepAddrIs(addr("2.2.2.2"))
                                                   .vniIs(Vxlan::VniExt(10010))
                                                   .routerMacIs(*Ondex::EthAddr::fromString("02:00:00:00:00:99"))
                                                   .vtepSipValidationIs(true));

  // 5. Injected routes take their user's VRF; BFD sessions; the route file is loaded.
  ASSERT_EQ(sc.injected.size(), 1u);
  EXPECT_FALSE(sc.injected[0].installInFib);
  EXPECT_EQ(sc.injected[0].routes.at(0).vrf, "red");
  ASSERT_EQ(sc.bfd.size(), 2u);
  EXPECT_EQ(sc.bfd[0].intf, IntfId("Ethernet1"));
  EXPECT_EQ(sc.bfd[1].state, BfdState::adminDown);
  EXPECT_EQ(sc.routeFiles.at(0).vrf, "red");
  EXPECT_EQ(sc.routeFiles[0].routes.size(), 6u);

  // 6. The steps, in order.
  ASSERT_EQ(sc.steps.size(), 22u);
  EXPECT_TRUE(stepAs<ShowStep>(sc, 0).label.empty());
  EXPECT_EQ(stepAs<RouteStep>(sc, 1).route.vrf, "red");
  RouteStep const& replace = stepAs<RouteStep>(sc, 2);
  EXPECT_EQ(replace.op, RouteOp::replace);
  EXPECT_TRUE(replace.route.dynamic);
  EXPECT_EQ(stepAs<RouteStep>(sc, 3).op, RouteOp::remove);
  EXPECT_EQ(stepAs<RouteStep>(sc, 4).user, "agentB");
  EXPECT_EQ(stepAs<RouteStep>(sc, 5).user, "agentA");
  GlobalStep const& g = stepAs<GlobalStep>(sc, 6);
  EXPECT_EQ(g.preference, 7);
  EXPECT_FALSE(g.mpls.has_value());
  EXPECT_EQ(stepAs<VrfStep>(sc, 7).vrf.id, 3u);
  EXPECT_EQ(stepAs<RouteStep>(sc, 8).route.vrf, "green");
  EXPECT_EQ(stepAs<VrfStep>(sc, 9).op, VrfOp::remove);
  EXPECT_FALSE(stepAs<InterfaceStep>(sc, 10).routing.has_value());
  InterfaceStep const& intf = stepAs<InterfaceStep>(sc, 11);
  EXPECT_EQ(intf.addAddresses.at(0).toString(), "10.2.0.1/24");
  EXPECT_EQ(intf.removeAddresses.at(0).toString(), "10.1.0.1/24");
  EXPECT_EQ(stepAs<BfdStep>(sc, 12).session.state, BfdState::down);
  EXPECT_EQ(stepAs<RibStep>(sc, 13).metric, 20u);
  EXPECT_EQ(stepAs<RibStep>(sc, 14).kind, RibOverrideKind::unresolved);
  EXPECT_EQ(stepAs<RibStep>(sc, 15).kind, RibOverrideKind::clear);
  EXPECT_FALSE(stepAs<CommandTagStep>(sc, 16).enabled);
  (void)stepAs<SettleStep>(sc, 17);
  EXPECT_EQ(stepAs<RestartStep>(sc, 18).gracefulRestart, false);
  EXPECT_FALSE(stepAs<RestartStep>(sc, 19).gracefulRestart.has_value());
  EXPECT_EQ(stepAs<ShowStep>(sc, 20).vrf, "red");
  EXPECT_EQ(sc.steps[21].line, 122);
}

TEST(ScenarioParserTest, TheUserGuideShowsTheFullExample) {
  std::string const guide = readFile(scenarioDir().parent_path().parent_path().parent_path() / "docs" / "scenario.md");
  std::string const example = readFile(scenarioDir() / "full.yaml");
  ASSERT_FALSE(example.empty());
  EXPECT_NE(guide.find("```yaml\n" + example + "```"), std::string::npos)
      << "docs/scenario.md should show tests/host/scenarios/full.yaml as its full example";
}

TEST(ScenarioParserTest, EachClassOfErrorNamesFileLineAndField) {
  struct Case {
    char const* what;
    std::string yaml;
    std::vector<std::string> errors;
  };
  std::vector<Case> const cases = {
      {"bad address",
       kSwitch + "routes:\n  - prefix: 10.0.0.0/8\n    vias:\n      - nexthop: 10.0.0.300\n",
       {"s.yaml:7: routes[0].vias[0].nexthop: \"10.0.0.300\" is not an IP address"}},
      {"bad prefix",
       kSwitch + "routes: [{prefix: 10.0.0.0/33, type: drop}]\n",
       {"s.yaml:4: routes[0].prefix: \"10.0.0.0/33\" is not a prefix (address/length)"}},
      {"unknown key",
       kSwitch + "routes:\n  - prefix: 10.0.0.0/8\n    vias: [{nexthp: 10.0.0.1}]\n",
       {"s.yaml:6: routes[0].vias[0].nexthp: unknown key; expected one of: nexthop, interface, metric, weight, "
        "label, egress_vrf, bfd, local_address, vtep, vni, router_mac, vtep_sip_validation",
        // the via then has nothing to go by
        "s.yaml:6: routes[0].vias[0]: a via needs a nexthop, an interface or a vtep"}},
      {"unknown top-level key",
       "vrf: []\n",
       {"s.yaml:1: vrf: unknown key; expected one of: vrfs, interfaces, command_tags, global, routes, injected, "
        "bfd, route_files, steps"}},
      {"key given twice", "global:\n  mpls: true\n  mpls: false\n", {"s.yaml:3: global.mpls: given twice"}},
      {"undeclared VRF",
       kSwitch + "routes: [{vrf: blue, prefix: 10.0.0.0/8, type: drop}]\n",
       {"s.yaml:4: routes[0].vrf: VRF \"blue\" is not declared"}},
      {"undeclared interface",
       kSwitch + "routes: [{prefix: 10.0.0.0/8, vias: [{interface: Ethernet9}]}]\n",
       {"s.yaml:4: routes[0].vias[0].interface: interface \"Ethernet9\" is not declared"}},
      {"undeclared command tag",
       kSwitch + "routes: [{prefix: 10.0.0.0/8, type: drop, command_tag: other}]\n",
       {"s.yaml:4: routes[0].command_tag: command tag \"other\" is not declared"}},
      {"preference out of range",
       kSwitch + "routes: [{prefix: 10.0.0.0/8, type: drop, preference: 256}]\n",
       {"s.yaml:4: routes[0].preference: 256 is out of range 1..255"}},
      {"preference 0", "global: {preference: 0}\n", {"s.yaml:1: global.preference: 0 is out of range 1..255"}},
      {"label out of range",
       "routes: [{prefix: 10.0.0.0/8, vias: [{nexthop: 1.1.1.1, label: 1048576}]}]\n",
       {"s.yaml:1: routes[0].vias[0].label: 1048576 is out of range 0..1048575"}},
      {"a label stack",
       "routes: [{prefix: 10.0.0.0/8, vias: [{nexthop: 1.1.1.1, label: [1, 2]}]}]\n",
       {"s.yaml:1: routes[0].vias[0].label: a via carries one MPLS label, not a stack of 2"}},
      {"weight not a number",
       "routes: [{prefix: 10.0.0.0/8, vias: [{nexthop: 1.1.1.1, weight: -1}]}]\n",
       {"s.yaml:1: routes[0].vias[0].weight: \"-1\" is not a number"}},
      {"VRF id out of range",
       "vrfs: [{name: red, id: 16777215}]\n",
       {"s.yaml:1: vrfs[0].id: 16777215 is out of range 0..16777214"}},
      {"VRF declared twice",
       "vrfs: [{name: red, id: 1}, {name: red, id: 2}, {name: blue, id: 1}]\n",
       {"s.yaml:1: vrfs[1].name: VRF \"red\" is declared twice", "s.yaml:1: vrfs[2].id: VRF id 1 is already in use"}},
      {"bad boolean",
       "interfaces: [{name: Ethernet1, up: maybe}]\n",
       {"s.yaml:1: interfaces[0].up: \"maybe\" is not true or false"}},
      {"bad choice",
       "bfd: [{peer: 1.1.1.1, state: sideways}]\n",
       {"s.yaml:1: bfd[0].state: \"sideways\" is not one of: up, down, init, admin-down"}},
      {"missing field", "bfd:\n  - peer: 1.1.1.1\n", {"s.yaml:2: bfd[0].state: missing"}},
      {"list expected", "routes: {prefix: 10.0.0.0/8}\n", {"s.yaml:1: routes: expected a list, not a map"}},
      {"map expected", "routes: [10.0.0.0/8]\n", {"s.yaml:1: routes[0]: expected a map of keys, not a single value"}},
      {"EVPN via without VNI",
       "routes: [{prefix: 10.0.0.0/8, vias: [{vtep: 2.2.2.2, router_mac: 02:00:00:00:00:01}]}]\n",
       {"s.yaml:1: routes[0].vias[0]: an EVPN via (with a vtep) needs a vni and a router_mac"}},
      {"VNI of an IP via",
       "routes: [{prefix: 10.0.0.0/8, vias: [{nexthop: 1.1.1.1, vni: 5}]}]\n",
       {"s.yaml:1: routes[0].vias[0]: vni, router_mac and vtep_sip_validation belong to an EVPN via, which needs a "
        "vtep"}},
      {"drop route with vias",
       "routes: [{prefix: 10.0.0.0/8, type: drop, vias: [{nexthop: 1.1.1.1}]}]\n",
       {"s.yaml:1: routes[0].vias: a drop route has no vias"}},
      {"forward route without vias",
       "routes: [{prefix: 10.0.0.0/8}]\n",
       {"s.yaml:1: routes[0].vias: a forward route needs at least one via"}},
      {"same route twice",
       "routes: [{prefix: 10.0.0.0/8, type: drop}, {prefix: 10.0.0.0/8, type: drop}]\n",
       {"s.yaml:1: routes[1]: route 10.0.0.0/8 pref 1 is given twice in VRF default"}},
      {"same via twice",
       "routes: [{prefix: 10.0.0.0/8, vias: [{nexthop: 1.1.1.1}, {nexthop: 1.1.1.1, metric: 2}]}]\n",
       {"s.yaml:1: routes[0].vias[1]: the same via is given twice"}},
      {"same via with another BFD local address",
       "routes: [{prefix: 10.0.0.0/8, vias: [{nexthop: 1.1.1.1}, {nexthop: 1.1.1.1, bfd: true, local_address: "
       "1.1.1.2}]}]\n",
       {"s.yaml:1: routes[0].vias[1]: the same via is given twice"}},
      {"bad community",
       "routes: [{prefix: 10.0.0.0/8, type: drop, communities: [\"70000:1\"]}]\n",
       {"s.yaml:1: routes[0].communities[0]: \"70000:1\" is not a community (a number or AS:NN)"}},
      {"five communities",
       "routes: [{prefix: 10.0.0.0/8, type: drop, communities: [1, 2, 3, 4, \"65000:5\"]}]\n",
       {"s.yaml:1: routes[0].communities: 5 communities: a route carries at most 4"}},
      {"unknown step",
       "steps:\n  - settle\n  - restat\n",
       {"s.yaml:3: steps[1]: unknown step \"restat\"; expected one of: add_route, remove_route, replace_route, "
        "add_injected, remove_injected, replace_injected, global, add_vrf, remove_vrf, interface, bfd, rib, "
        "command_tag, restart, show, settle"}},
      {"step of two keys",
       "steps:\n  - {settle: , show: }\n",
       {"s.yaml:2: steps[0]: a step is one key naming it, with its settings under it (or a bare settle, restart or "
        "show)"}},
      {"bad step settings",
       kSwitch + "steps:\n  - rib: {nexthop: 10.0.0.1, state: unresolved, metric: 5}\n"
                 "  - interface: {name: Ethernet1}\n  - settle: {now: true}\n",
       {"s.yaml:5: steps[0].rib.metric: a metric goes with state resolved only",
        "s.yaml:6: steps[1].interface: changes nothing", "s.yaml:7: steps[2].settle: takes no settings"}},
      {"removal takes the key only",
       "routes: [{prefix: 10.0.0.0/8, type: drop}]\nsteps:\n  - remove_route: {prefix: 10.0.0.0/8, vias: []}\n",
       {"s.yaml:3: steps[0].remove_route.vias: unknown key; expected one of: prefix, preference, vrf, dynamic"}},
      {"injected step without a user",
       "steps:\n  - add_injected: {prefix: 10.0.0.0/8, type: drop}\n",
       {"s.yaml:2: steps[0].add_injected.user: missing"}},
      {"removing the default VRF",
       "steps: [{remove_vrf: default}]\n",
       {"s.yaml:1: steps[0].remove_vrf: the default VRF cannot be removed"}},
      {"empty file", "# nothing but a comment\n", {"s.yaml: the scenario is empty"}},
      {"YAML syntax", "routes: [{prefix: 10.0.0.0/8\n", {"s.yaml:2: end of map flow not found"}},
      {"route file errors",
       "route_files: [{path: missing.txt}, {path: bad-routes.txt}]\n",
       {"s.yaml:1: route_files[0].path: route file " + (scenarioDir() / "missing.txt").string() +
            ": cannot read: No such file or directory",
        (scenarioDir() / "bad-routes.txt").string() + ":3: \"10.0.0.300\" is not an IP address",
        "s.yaml:1: route_files[1].path: interface \"Ethernet7\" of the route file is not declared"}},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(errorsOf(c.yaml), c.errors) << c.what;
  }
}

TEST(ScenarioParserTest, AllErrorsAreCollectedInFileOrder) {
  std::vector<std::string> const errors = errorsOf(
      "vrfs: [{name: red, id: x}]\n"
      "routes:\n"
      "  - {prefix: 10.0.0.0/8, vias: [{nexthop: 1.1.1.300}]}\n"
      "  - {prefix: 10.1.0.0/16, preference: 300, type: drop}\n"
      "steps: [settle, bogus]\n");
  ASSERT_EQ(errors.size(), 4u);
  EXPECT_EQ(errors[0], "s.yaml:1: vrfs[0].id: \"x\" is not a number");
  EXPECT_EQ(errors[1], "s.yaml:3: routes[0].vias[0].nexthop: \"1.1.1.300\" is not an IP address");
  EXPECT_EQ(errors[2], "s.yaml:4: routes[1].preference: 300 is out of range 1..255");
  EXPECT_NE(errors[3].find("s.yaml:5: steps[1]: unknown step \"bogus\""), std::string::npos) << errors[3];

  ScenarioParse const missing = parseScenario((scenarioDir() / "no-such.yaml").string());
  ASSERT_EQ(missing.errors.size(), 1u);
  EXPECT_EQ(missing.errorText(),
            (scenarioDir() / "no-such.yaml").string() + ": cannot read the file: No such file or directory\n");
}

TEST(ScenarioParserTest, StepsSeeTheVrfsOfTheStepsBefore) {
  // A VRF added by a step may be used after it and not before; once removed, neither its name nor
  // its routes; its id is free again.
  EXPECT_EQ(errorsOf("steps:\n"
                     "  - add_route: {vrf: green, prefix: 10.0.0.0/8, type: drop}\n"
                     "  - add_vrf: {name: green, id: 3}\n"
                     "  - add_route: {vrf: green, prefix: 10.0.0.0/8, type: drop}\n"
                     "  - add_vrf: {name: green, id: 4}\n"
                     "  - remove_vrf: green\n"
                     "  - show: {vrf: green}\n"
                     "  - remove_vrf: green\n"),
            (std::vector<std::string>{"s.yaml:2: steps[0].add_route.vrf: VRF \"green\" is not declared",
                                      "s.yaml:5: steps[3].add_vrf.name: VRF \"green\" is declared twice",
                                      "s.yaml:7: steps[5].show.vrf: VRF \"green\" is not declared",
                                      "s.yaml:8: steps[6].remove_vrf: VRF \"green\" is not declared"}));
  ScenarioParse const r = parse(
      "vrfs: [{name: red, id: 1}]\n"
      "steps:\n"
      "  - remove_vrf: red\n"
      "  - add_vrf: {name: blue, id: 1}\n"
      "  - add_vrf: {name: red, id: 2}\n"
      "  - add_route: {vrf: red, prefix: 10.0.0.0/8, type: drop}\n");
  ASSERT_TRUE(r.ok()) << r.errorText();
  EXPECT_EQ(r.scenario->steps.size(), 4u);
  EXPECT_EQ(r.scenario->steps[3].line, 6);
}

TEST(ScenarioParserTest, PrintedNamesAreTheWordsTheFileTakes) {
  // What a run prints of a BFD state or an ECMP setting can be pasted back into a scenario.
  for (BfdState s : {BfdState::adminDown, BfdState::down, BfdState::init, BfdState::up}) {
    ScenarioParse const r = parse(std::string("bfd: [{peer: 1.1.1.1, state: ") + bfdStateName(s) + "}]\n");
    ASSERT_TRUE(r.ok()) << r.errorText();
    EXPECT_EQ(r.scenario->bfd[0].state, s) << bfdStateName(s);
  }
  for (EcmpState s : {EcmpState::byViaType, EcmpState::singleGroup, EcmpState::none}) {
    ScenarioParse const r = parse(std::string("global: {ecmp: ") + ecmpStateName(s) + "}\n");
    ASSERT_TRUE(r.ok()) << r.errorText();
    EXPECT_EQ(r.scenario->global.ecmp, s) << ecmpStateName(s);
  }
  for (RouteOp op : {RouteOp::add, RouteOp::remove, RouteOp::replace}) {
    ScenarioParse const r =
        parse(std::string("routes: [{prefix: 10.0.0.0/8, type: drop}]\nsteps:\n  - ") + routeOpName(op) +
              "_route: {prefix: 10.0.0.0/8" + (op == RouteOp::remove ? "}\n" : ", type: drop}\n"));
    ASSERT_TRUE(r.ok()) << r.errorText();
    EXPECT_EQ(std::get<RouteStep>(r.scenario->steps[0].kind).op, op) << routeOpName(op);
  }
}

}  // namespace
