// Host::ScenarioParser at the boundary: what the library would assert on is refused with file, line
// and field (next hops of the other family, addresses no next hop can be), the steps are checked
// against the configuration as it stands at each step, and input that is hostile rather than wrong
// - aliases that expand without end, deep nesting, two documents, binary bytes, huge or control
// characters in names - is refused with a short, escaped error.
#include "host/ScenarioParser.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace Host;

std::filesystem::path scenarioDir() { return std::filesystem::path(__FILE__).parent_path() / "scenarios"; }

ScenarioParse parse(std::string const& yaml, ScenarioLimits const& limits = {}) {
  return ScenarioParser::parseText(yaml, "s.yaml", scenarioDir().string(), limits);
}

std::vector<std::string> errorsOf(std::string const& yaml, ScenarioLimits const& limits = {}) {
  ScenarioParse const r = parse(yaml, limits);
  EXPECT_FALSE(r.scenario.has_value());
  std::vector<std::string> out;
  for (ScenarioError const& e : r.errors) out.push_back(e.text());
  return out;
}

struct Case {
  char const* what;
  std::string yaml;
  std::vector<std::string> errors;  // empty: the scenario is good
};

void expectCases(std::vector<Case> const& cases) {
  for (Case const& c : cases) {
    if (c.errors.empty()) {
      ScenarioParse const r = parse(c.yaml);
      EXPECT_TRUE(r.ok()) << c.what << ":\n" << r.errorText();
    } else {
      EXPECT_EQ(errorsOf(c.yaml), c.errors) << c.what;
    }
  }
}

std::string const kVrfs = "vrfs: [{name: red, id: 1}]\n";
std::string const kEth1 = "interfaces: [{name: Ethernet1}]\n";  // routes.txt names it

TEST(ScenarioChecksTest, NextHopsTheLibraryWouldAssertOnAreRefused) {
  expectCases({
      {"IPv4 next hop of an IPv6 static route without a label",
       "routes: [{prefix: 2001:db8::/32, vias: [{nexthop: 192.0.2.1}]}]\n",
       {"s.yaml:1: routes[0].vias[0].nexthop: the IPv4 next hop 192.0.2.1 of an IPv6 route needs a label (it "
        "resolves over tunnels)"}},
      {"IPv4 next hop of an IPv6 static route with a label",
       "routes: [{prefix: 2001:db8::/32, vias: [{nexthop: 192.0.2.1, label: 16}]}]\n",
       {}},
      {"IPv6 next hop of an IPv4 static route",
       "routes: [{prefix: 192.0.2.0/24, vias: [{nexthop: 2001:db8::1}]}]\n",
       {}},
      {"injected route with a next hop of the other family",
       "injected:\n  - user: bgp\n    routes:\n      - {prefix: 2001:db8::/32, vias: [{nexthop: 192.0.2.1, label: "
       "16}]}\n"
       "      - {prefix: 198.51.100.0/24, vias: [{nexthop: 2001:db8::1}]}\n",
       {"s.yaml:4: injected[0].routes[0].vias[0].nexthop: an injected route's next hop is of its family: "
        "192.0.2.1 is not an IPv6 address",
        "s.yaml:5: injected[0].routes[1].vias[0].nexthop: an injected route's next hop is of its family: "
        "2001:db8::1 is not an IPv4 address"}},
      {"injected step with a next hop of the other family",
       "steps:\n  - add_injected: {user: bgp, prefix: 2001:db8::/32, vias: [{nexthop: 192.0.2.1}]}\n",
       {"s.yaml:2: steps[0].add_injected.vias[0].nexthop: an injected route's next hop is of its family: "
        "192.0.2.1 is not an IPv6 address"}},
      {"addresses no next hop can be",
       "routes:\n  - prefix: 198.51.100.0/24\n    vias:\n"
       "      - nexthop: 0.0.0.0\n      - nexthop: 255.255.255.255\n      - nexthop: 224.0.0.5\n"
       "      - nexthop: 127.0.0.1\n      - nexthop: 0.1.2.3\n"
       "  - prefix: 2001:db8::/32\n    vias:\n      - nexthop: \"::\"\n      - nexthop: ff02::1\n"
       "      - nexthop: ::1\n",
       {"s.yaml:4: routes[0].vias[0].nexthop: 0.0.0.0 is the unspecified address, which no next hop can be",
        "s.yaml:5: routes[0].vias[1].nexthop: 255.255.255.255 is the broadcast address, which no next hop can be",
        "s.yaml:6: routes[0].vias[2].nexthop: 224.0.0.5 is a multicast address, which no next hop can be",
        "s.yaml:7: routes[0].vias[3].nexthop: 127.0.0.1 is a loopback address, which no next hop can be",
        "s.yaml:8: routes[0].vias[4].nexthop: 0.1.2.3 is an address of this network (0.0.0.0/8), which no next "
        "hop can be",
        "s.yaml:11: routes[1].vias[0].nexthop: :: is the unspecified address, which no next hop can be",
        "s.yaml:12: routes[1].vias[1].nexthop: ff02::1 is a multicast address, which no next hop can be",
        "s.yaml:13: routes[1].vias[2].nexthop: ::1 is the loopback address, which no next hop can be"}},
      {"VTEP, BFD peer, RIB override, local address and router MAC",
       "routes: [{prefix: 198.51.100.0/24, vias: [{vtep: 239.1.1.1, vni: 5, router_mac: ff:ff:ff:ff:ff:ff}, "
       "{nexthop: 192.0.2.1, bfd: true, local_address: 0.0.0.0}]}]\n"
       "bfd: [{peer: 255.255.255.255, state: up}]\n"
       "steps: [{rib: {nexthop: 0.0.0.0, state: resolved}}]\n",
       {"s.yaml:1: routes[0].vias[0].vtep: 239.1.1.1 is a multicast address, which no VTEP can be",
        "s.yaml:1: routes[0].vias[0].router_mac: ff:ff:ff:ff:ff:ff is not the unicast MAC address of a router",
        "s.yaml:1: routes[0].vias[1].local_address: 0.0.0.0 is the unspecified address, which no local address "
        "can be",
        "s.yaml:2: bfd[0].peer: 255.255.255.255 is the broadcast address, which no BFD peer can be",
        "s.yaml:3: steps[0].rib.nexthop: 0.0.0.0 is the unspecified address, which no next hop can be"}},
      {"local address of the other family",
       "routes: [{prefix: 198.51.100.0/24, vias: [{nexthop: 192.0.2.1, bfd: true, local_address: 2001:db8::1}]}]\n",
       {"s.yaml:1: routes[0].vias[0].local_address: the local address is of another family than the next hop"}},
      {"interface addresses",
       "interfaces: [{name: Ethernet1, addresses: [224.0.0.1/24, 0.0.0.0/0, 127.0.0.1/8, 192.0.2.1/24, "
       "192.0.2.1/24]}]\n",
       {"s.yaml:1: interfaces[0].addresses[0]: 224.0.0.1 is a multicast address, which no interface address can be",
        "s.yaml:1: interfaces[0].addresses[1]: 0.0.0.0 is the unspecified address, which no interface address can "
        "be",
        "s.yaml:1: interfaces[0].addresses[4]: 192.0.2.1/24 is given twice"}},
      {"the user of the martian routes",
       "injected: [{user: martian, routes: [{prefix: 198.18.0.0/15, type: drop}]}]\n"
       "steps: [{add_injected: {user: martian, prefix: 198.18.0.0/15, type: drop}}]\n",
       {"s.yaml:1: injected[0].user: the user \"martian\" is the route-input protocol's own, for its martian routes",
        "s.yaml:2: steps[0].add_injected.user: the user \"martian\" is the route-input protocol's own, for its "
        "martian routes"}},
      {"empty label list",
       "routes: [{prefix: 198.51.100.0/24, vias: [{nexthop: 192.0.2.1, label: []}]}]\n",
       {"s.yaml:1: routes[0].vias[0].label: an empty list of labels; leave the key out for none"}},
  });
}

TEST(ScenarioChecksTest, PrefixesAndAddressesReadAsInRouteFiles) {
  // One reader for both: a length with a leading zero, a dotted quad with one, are refused alike.
  expectCases({
      {"leading zero in a length",
       "routes: [{prefix: 2001:db8::/0128, type: drop}]\n",
       {"s.yaml:1: routes[0].prefix: \"2001:db8::/0128\" is not a prefix (address/length)"}},
      {"leading zero in an octet",
       "routes: [{prefix: 198.51.100.0/24, vias: [{nexthop: 192.0.2.01}]}]\n",
       {"s.yaml:1: routes[0].vias[0].nexthop: \"192.0.2.01\" is not an IP address"}},
      {"host bits are cleared", "routes: [{prefix: 198.51.100.7/24, type: drop}]\n", {}},
      {"an IPv4 address with a colon is not one",
       "routes: [{prefix: \"1.2.3.4:5/8\", type: drop}]\n",
       {"s.yaml:1: routes[0].prefix: \"1.2.3.4:5/8\" is not a prefix (address/length)"}},
  });
  ScenarioParse const r = parse("routes: [{prefix: 198.51.100.7/24, type: drop}]\n");
  ASSERT_TRUE(r.ok());
  EXPECT_EQ(r.scenario->routes[0].prefix.toString(), "198.51.100.0/24");
}

TEST(ScenarioChecksTest, StepsNameWhatExistsAtThatPoint) {
  expectCases({
      {"removing a route never added",
       "steps:\n  - remove_route: {prefix: 198.51.100.0/24}\n",
       {"s.yaml:2: steps[0].remove_route: route 198.51.100.0/24 pref 1 is not in the static routes of VRF default at "
        "this point"}},
      {"removing a route twice, and of the wrong list",
       "routes: [{prefix: 198.51.100.0/24, type: drop}]\n"
       "steps:\n"
       "  - remove_route: {prefix: 198.51.100.0/24, dynamic: true}\n"
       "  - remove_route: {prefix: 198.51.100.0/24}\n"
       "  - remove_route: {prefix: 198.51.100.0/24}\n"
       "  - add_route: {prefix: 198.51.100.0/24, preference: 5, type: drop}\n"
       "  - remove_route: {prefix: 198.51.100.0/24, preference: 5}\n",
       {"s.yaml:3: steps[0].remove_route: route 198.51.100.0/24 pref 1 is not in the dynamic routes of VRF default "
        "at this point",
        "s.yaml:5: steps[2].remove_route: route 198.51.100.0/24 pref 1 is not in the static routes of VRF default "
        "at this point"}},
      {"a route file's routes may be removed",
       kEth1 + "route_files: [{path: routes.txt}]\n"
               "steps: [{remove_route: {prefix: 10.100.1.0/24, preference: 20}}]\n",
       {}},
      {"a VRF's routes go with it",
       kVrfs + "routes: [{vrf: red, prefix: 198.51.100.0/24, type: drop}]\n"
               "steps:\n  - remove_vrf: red\n  - add_vrf: {name: red, id: 1}\n"
               "  - remove_route: {vrf: red, prefix: 198.51.100.0/24}\n",
       {"s.yaml:6: steps[2].remove_route: route 198.51.100.0/24 pref 1 is not in the static routes of VRF red at "
        "this point"}},
      {"injected routes are the user's",
       "injected: [{user: bgp, routes: [{prefix: 198.51.100.0/24, type: drop}]}]\n"
       "steps:\n"
       "  - remove_injected: {user: bgp, prefix: 198.51.100.0/24}\n"
       "  - remove_injected: {user: ospf, prefix: 198.51.100.0/24}\n"
       "  - replace_injected: {user: ospf, prefix: 198.51.100.0/24, type: drop}\n"
       "  - remove_injected: {user: ospf, prefix: 198.51.100.0/24}\n",
       {"s.yaml:4: steps[1].remove_injected: route 198.51.100.0/24 pref 1 is not in user \"ospf\" of VRF default at "
        "this point"}},
      {"interface addresses at that point",
       "interfaces: [{name: Ethernet1, addresses: [192.0.2.1/24]}]\n"
       "steps:\n"
       "  - interface: {name: Ethernet1, remove_address: 198.51.100.1/24}\n"
       "  - interface: {name: Ethernet1, add_address: 192.0.2.1/24}\n"
       "  - interface: {name: Ethernet1, remove_address: 192.0.2.1/24, add_address: 192.0.2.1/24}\n"
       "  - interface: {name: Ethernet1, remove_address: 192.0.2.1/24}\n"
       "  - interface: {name: Ethernet1, remove_address: 192.0.2.1/24}\n",
       {"s.yaml:3: steps[0].interface.remove_address: interface \"Ethernet1\" has no address 198.51.100.1/24 at this "
        "point",
        "s.yaml:4: steps[1].interface.add_address: interface \"Ethernet1\" has the address 192.0.2.1/24 already",
        "s.yaml:7: steps[4].interface.remove_address: interface \"Ethernet1\" has no address 192.0.2.1/24 at this "
        "point"}},
      {"a single value where a list is expected, and the reverse",
       "vrfs: red\n"
       "routes: [{prefix: 198.51.100.0/24, vias: {nexthop: 192.0.2.1}}]\n"
       "bfd: [{peer: [192.0.2.1], state: up}]\n",
       {"s.yaml:1: vrfs: expected a list, not a single value", "s.yaml:2: routes[0].vias: expected a list, not a map",
        "s.yaml:3: bfd[0].peer: expected a single value, not a list"}},
  });
}

TEST(ScenarioChecksTest, RouteFilesAgreeWithTheScenario) {
  expectCases({
      {"a route file's route also in routes",
       kEth1 + "routes: [{prefix: 10.100.1.0/24, preference: 20, type: drop}]\nroute_files: [{path: routes.txt}]\n",
       {"s.yaml:3: route_files[0].path: route 10.100.1.0/24 pref 20 of line 3 is also given in routes (line 2)"}},
      {"in another VRF it is another route",
       kVrfs + kEth1 +
           "routes: [{prefix: 10.100.1.0/24, preference: 20, type: drop}]\n"
           "route_files: [{path: routes.txt, vrf: red}]\n",
       {}},
      {"two files of one VRF: one route of their lines",
       kEth1 + "route_files: [{path: routes.txt}, {path: routes.txt}]\n",
       {}},
  });
}

TEST(ScenarioChecksTest, RouteFilesOfOneVrfAgreeOnEachRoute) {
  auto const dir = std::filesystem::temp_directory_path() / fmt::format("bowline-checks-{}", ::getpid());
  std::filesystem::create_directories(dir);
  std::ofstream(dir / "a.txt") << "198.51.100.0/24 192.0.2.1\n203.0.113.0/24 drop\n";
  std::ofstream(dir / "b.txt") << "# b\n203.0.113.0/24 drop\n198.51.100.0/24 drop\n";
  ScenarioParse const r = ScenarioParser::parseText(
      "vrfs: [{name: red, id: 1}]\n"
      "route_files:\n  - {path: a.txt}\n  - {path: b.txt, vrf: red}\n  - {path: b.txt}\n",
      "s.yaml", dir.string());
  std::filesystem::remove_all(dir);
  EXPECT_EQ(r.errorText(),
            "s.yaml:5: route_files[2].path: route 198.51.100.0/24 pref 1 is a drop route on line 3 and a route with "
            "next hops on line 1 of a.txt; a route is one or the other\n");
}

TEST(ScenarioChecksTest, NamesAreUtf8WithoutControlCharacters) {
  std::string const longName(101, 'a');
  std::string const longLabel(5000, 'b');
  expectCases({
      {"control character",
       "vrfs: [{name: \"red\\x01\", id: 1}]\n",
       {"s.yaml:1: vrfs[0].name: the name \"red\\x01\" holds a control character"}},
      {"C1 control character",
       "command_tags: [{name: \"tag\\u0085\"}]\n",
       {"s.yaml:1: command_tags[0].name: the name \"tag\\xc2\\x85\" holds a control character"}},
      {"name past the library's 100 bytes",
       "injected: [{user: " + longName + "}]\n",
       {"s.yaml:1: injected[0].user: the name \"" + std::string(60, 'a') +
        "\"... is 101 bytes long; a name has at most 100"}},
      {"newline in a label",
       "steps: [{show: {label: \"a\\nb\"}}]\n",
       {"s.yaml:1: steps[0].show.label: the label \"a\\nb\" holds a control character"}},
      {"a value past 4 KiB",
       "steps: [{show: " + longLabel + "}]\n",
       {"s.yaml:1: steps[0].show: \"" + std::string(60, 'b') + "\"... is 5000 bytes long; a value has at most 4096"}},
      {"UTF-8 names are good",
       "vrfs: [{name: \"r\u00e9seau\", id: 1}]\nsteps: [{show: \"\u00e9t\u00e9 \u2603\"}]\n",
       {}},
      {"an interface name with a quote",
       "interfaces: [{name: \"Eth'1\"}]\n",
       {"s.yaml:1: interfaces[0].name: \"Eth'1\" is not an interface name (no blanks or quotes)"}},
  });
}

TEST(ScenarioChecksTest, HostileFilesAreRefusedWithAShortError) {
  using namespace std::string_literals;
  // 1. Binary bytes: a NUL, or bytes that are not UTF-8, refuse the file whole.
  EXPECT_EQ(errorsOf("vrfs: []\nroutes: [\0]\n"s),
            (std::vector<std::string>{"s.yaml:2: the file holds a NUL byte: it is not a text file"}));
  EXPECT_EQ(errorsOf("vrfs: []\n\n# caf\xe9\n"),
            (std::vector<std::string>{"s.yaml:3: the file is not UTF-8 text (byte 0xe9)"}));
  // 2. One document only.
  EXPECT_EQ(errorsOf("vrfs: []\n---\nroutes: []\n"),
            (std::vector<std::string>{"s.yaml:2: only one document may be in the file; another starts here"}));
  // 3. Nesting.
  std::string deep = "steps: " + std::string(100, '[') + std::string(100, ']') + "\n";
  EXPECT_EQ(errorsOf(deep), (std::vector<std::string>{"s.yaml:1: the file nests deeper than 64 levels"}));
  // 4. A long key is cut short where it is shown.
  std::vector<std::string> const key = errorsOf("global: {" + std::string(1000, 'k') + ": 1}\n");
  ASSERT_EQ(key.size(), 1u);
  EXPECT_EQ(key[0].find("s.yaml:1: global.\"" + std::string(40, 'k') + "\"...: unknown key"), 0u) << key[0];
  EXPECT_LT(key[0].size(), 300u);
}

// The file kinds the reader refuses are RouteFileTest's (one reader for both); here, the limits.
TEST(ScenarioChecksTest, TheScenarioAndItsRouteFilesAreReadUpToTheirLimits) {
  EXPECT_EQ(parseScenario("/dev/null").errorText(),
            "/dev/null: cannot read the file: is a device, not a regular file\n");
  ScenarioLimits small;
  small.maxScenarioBytes = 100;
  std::string const full = (scenarioDir() / "full.yaml").string();
  std::string const tooLarge = ScenarioParser::parseFile(full, small).errorText();
  EXPECT_EQ(tooLarge.find(full + ": cannot read the file: is "), 0u) << tooLarge;
  EXPECT_NE(tooLarge.find(" bytes; at most 100 are read"), std::string::npos) << tooLarge;
  // A route file past its limit is the route file's error.
  small.maxScenarioBytes = 1 << 20;
  small.maxRouteFileBytes = 10;
  std::vector<std::string> routeFile;
  for (ScenarioError const& e : ScenarioParser::parseFile(full, small).errors) routeFile.push_back(e.text());
  ASSERT_EQ(routeFile.size(), 1u);
  EXPECT_NE(routeFile[0].find("route_files[0].path: route file "), std::string::npos) << routeFile[0];
  EXPECT_NE(routeFile[0].find(" bytes; at most 10 are read"), std::string::npos) << routeFile[0];
}

TEST(ScenarioChecksTest, AnAliasBombIsStoppedByTheNodeBudget) {
  // Each level lists the one before ten times: level 4 (line 5) passes the budget of 100,000 nodes.
  std::string bomb = "a0: &a0 [x, x, x, x, x, x, x, x, x, x]\n";
  for (int i = 1; i <= 6; ++i) {
    bomb += fmt::format("a{}: &a{} [", i, i);
    for (int k = 0; k < 10; ++k) bomb += fmt::format("{}*a{}", k ? ", " : "", i - 1);
    bomb += "]\n";
  }
  ScenarioLimits limits;
  limits.yaml.maxExpandedNodes = 100'000;
  std::vector<std::string> const errors = errorsOf(bomb, limits);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0], "s.yaml:5: the file's aliases expand it past 100000 nodes (it has 59 of its own)");

  // An alias within the budget is fine: a via list shared by two routes.
  ScenarioParse const ok = parse(
      "routes:\n"
      "  - {prefix: 198.51.100.0/24, vias: &v [{nexthop: 192.0.2.1}, {nexthop: 192.0.2.2}]}\n"
      "  - {prefix: 203.0.113.0/24, vias: *v}\n",
      limits);
  ASSERT_TRUE(ok.ok()) << ok.errorText();
  EXPECT_EQ(ok.scenario->routes[1].vias.size(), 2u);
}

TEST(ScenarioChecksTest, ErrorsPastAHundredAreCountedInOne) {
  std::string yaml = "routes:\n";
  for (int i = 0; i < 150; ++i) yaml += "  - {prefix: 10.0.0.300/8, type: drop}\n";
  std::vector<std::string> const errors = errorsOf(yaml);
  ASSERT_EQ(errors.size(), 101u);
  EXPECT_EQ(errors[99], "s.yaml:101: routes[99].prefix: \"10.0.0.300/8\" is not a prefix (address/length)");
  EXPECT_EQ(errors[100], "s.yaml: 50 more errors");
}

TEST(ScenarioChecksTest, ARouteOfTwentyThousandViasIsChecked) {
  // The duplicate check is by an ordered set: one route of many vias reads in n log n.
  std::string yaml = "routes:\n  - prefix: 198.51.100.0/24\n    vias:\n";
  for (int i = 0; i < 20000; ++i) yaml += fmt::format("      - {{nexthop: 10.{}.{}.1}}\n", i / 256 + 1, i % 256);
  yaml += "      - {nexthop: 10.1.0.1}\n";
  std::vector<std::string> const errors = errorsOf(yaml);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0], "s.yaml:20004: routes[0].vias[20000]: the same via is given twice");
}

}  // namespace
