// Fuzz::ScenarioBuilder: builds one valid scenario for ScenarioGenerator. It keeps a model of the
// switch as the scenario stands at the point being written (which VRFs exist, which routes and
// injected routes, which addresses each interface holds), so that a step only removes, replaces or
// names what is there. The sections are written in ScenarioBuilder.cpp, the steps in
// ScenarioBuilderSteps.cpp.
//
// Address pools (documentation ranges): interface k holds 192.0.2.(16k+1)/28 and
// 2001:db8:0:(k+1)::1/64; routes are for prefixes of 198.51.100.0/24, 203.0.113.0/24 and
// 2001:db8:100::/40 and for the interface subnets and default routes themselves; next hops are on the
// interface subnets, inside route prefixes (recursive), or on subnets an interface only gains later.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/fuzz/ScenarioGenerator.h"

namespace BowlineTest::Fuzz {

enum class Family : std::uint8_t { v4, v6 };

class ScenarioBuilder {
 public:
  explicit ScenarioBuilder(Dice& dice) : dice_(dice) {}
  [[nodiscard]] GeneratedScenario build();

 private:
  struct Intf {
    std::string name;
    std::size_t slot = 0;  // its place in the address plan
    std::string vrf;
    std::vector<std::string> addresses;  // "192.0.2.17/28"
  };
  // A configured route as the model knows it.
  struct Route {
    std::string vrf;
    std::string user;  // empty: static or dynamic
    bool dynamic = false;
    std::string prefix;
    unsigned preference = 1;
    bool forward = true;
    std::set<std::string> vias;  // identities of its vias
  };

  // Sections.
  void vrfs(YamlTree& doc);
  void interfaces(YamlTree& doc);
  void commandTags(YamlTree& doc);
  void global(YamlTree& doc);
  void routes(YamlTree& doc);
  void injected(YamlTree& doc);
  void bfd(YamlTree& doc);
  void routeFiles(YamlTree& doc, GeneratedScenario& out);
  void steps(YamlTree& doc);

  // Pieces.
  [[nodiscard]] Family family() { return dice_.percent(70) ? Family::v4 : Family::v6; }
  [[nodiscard]] std::string prefix(Family f, bool injected);
  [[nodiscard]] std::string nexthop(Family f);
  [[nodiscard]] std::string intfAddress(std::size_t slot, Family f, bool extra) const;
  [[nodiscard]] std::string aliveVrf();
  [[nodiscard]] std::string otherVrfName(std::string const& not_);
  [[nodiscard]] unsigned preference(YamlTree& route);
  // A route map for `key` with its attributes and vias; `r` gains the vias' identities.
  void routeBody(YamlTree& map, Route& r, Family f, bool injectedForm);
  [[nodiscard]] YamlTree via(Family f, std::string const& vrf, std::string& identity);
  void viaExtras(YamlTree& via, Family f, std::string const& vrf);
  [[nodiscard]] YamlTree bfdSession();
  [[nodiscard]] static std::string key(Route const& r);
  [[nodiscard]] Route* pickRoute(bool injected);

  // Steps.
  void routeStep(YamlTree& steps, bool injected);
  void addRoute(YamlTree& steps, bool injected);
  void replaceRoute(YamlTree& steps, Route& r);
  void removeRoute(YamlTree& steps, Route const& r);
  void globalStep(YamlTree& steps);
  void addVrf(YamlTree& steps);
  void removeVrf(YamlTree& steps);
  void interfaceStep(YamlTree& steps);
  void ribStep(YamlTree& steps);
  void showStep(YamlTree& steps);
  void restartStep(YamlTree& steps);

  Dice& dice_;
  std::map<std::string, unsigned> vrfIds_;  // the VRFs that exist now, default included
  std::set<std::string> vrfNamesUsed_;      // a removed VRF's name is not used again
  std::vector<Intf> intfs_;
  std::vector<std::string> tags_;
  unsigned globalPreference_ = 1;
  std::map<std::string, Route> routes_;       // by key(): static, dynamic and injected
  std::set<std::string> fileKeys_;            // "vrf|prefix|preference" of route-file routes
  std::vector<std::string> users_ = {"agentA", "agentB", "bgp-lite"};
};

}  // namespace BowlineTest::Fuzz
