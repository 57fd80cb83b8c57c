// The egress helpers: AllEgressVrfIntfStatusHelperSm and the EgressVrfIntfStatusHelperSm it keeps
// per egress VRF and family. First alone, with clients that count what they are told while the
// egress VRF's interface table comes, changes and goes; then under RouteConfigSm, whose routes
// leave through an egress VRF and follow its interfaces. Each scenario runs for IPv4 and IPv6.
#include "static/AllEgressVrfIntfStatusHelperSm.h"

#include <array>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/runtime/Slab.h"
#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

using Routing::Protocol::ContainerKey;
using Routing::Static::AllEgressVrfIntfStatusHelperSm;
using Routing::Static::EgressVrfIntfStatusHelperSm;
using Set = std::multiset<std::string>;

// A route machine of one VRF as the helper sees it: how often it was told of each egress VRF,
// and (when given a log) the order in which the clients were told.
class Client : public Routing::Static::EgressVrfIntfStatusClient {
 public:
  explicit Client(char const* vrf = "default", std::vector<std::string>* log = nullptr,
                  Routing::Rib::RoutingProtocol protocol = Routing::Rib::RoutingProtocol::staticConfig())
      : vrf(vrf), log(log), key{vrf, protocol} {}
  void handleInterVrfRoutes(L3::VrfName const& egressVrf) override {
    ++told[std::string(egressVrf.view())];
    if (log) log->push_back(vrf + " " + key.protocol.toStrep());
    if (onTold) onTold();
  }
  // How often it was told of `vrf` since the last take.
  unsigned take(char const* vrf) { return std::exchange(told[vrf], 0); }
  std::string vrf;
  std::vector<std::string>* log;
  Routing::Static::EgressVrfIntfStatusClient::Key key;
  std::function<void()> onTold;
  std::map<std::string, unsigned> told;
};

class EgressVrfIntfStatusHelperSmTest : public RuntimeFixture, public ::testing::WithParamInterface<Family> {
 protected:
  [[nodiscard]] AllEgressVrfIntfStatusHelperSm& all() const { return *h.egress; }
  void registerFor(char const* vrf, Client& client) { all().registerForVrfIntfStatus(vrf, f.af, client.key, &client); }
  void unregisterFor(char const* vrf, Client& client) { all().unregisterForVrfIntfStatus(vrf, f.af, client.key); }
  [[nodiscard]] bool hasHelper(char const* vrf) const { return all().egressVrfIntfStatusHelperSmHas(ContainerKey(vrf, f.af)); }
  // Whether the helper answers that the interface of the egress VRF routes.
  [[nodiscard]] bool routes(char const* vrf, char const* intf) const {
    return all().getVrfIntfStatus(vrf, f.af)->intf(Ondex::IntfId(intf));
  }

  Family const f = GetParam();
  StaticRouteHarness h{f.af};
  // The same switch seen from the other family: its interface tables are the other family's.
  StaticRouteHarness other{f.v6() ? Ondex::AddressFamily::ipv4 : Ondex::AddressFamily::ipv6, "default", 0, &h};
};

TEST_P(EgressVrfIntfStatusHelperSmTest, AClientIsToldWhileItsEgressVrfsInterfacesComeChangeAndGo) {
  Client client;
  // 1. Registered before the VRF has an interface table: no helper, nothing to tell, no interface.
  registerFor("red", client);
  runToIdle();
  EXPECT_FALSE(hasHelper("red")) << "step 1";
  EXPECT_EQ(client.take("red"), 0u) << "step 1";
  EXPECT_FALSE(routes("red", "Ethernet5")) << "step 1";

  // 2. The table comes with an interface: a helper watches it and the client is told.
  h.vrfIntfIs("red", "Ethernet5");
  runToIdle();
  EXPECT_TRUE(hasHelper("red")) << "step 2";
  EXPECT_GT(client.take("red"), 0u) << "step 2";
  EXPECT_TRUE(routes("red", "Ethernet5")) << "step 2";

  // 3. The interface stops routing, another comes, the first goes: told each time.
  h.vrfIntfIs("red", "Ethernet5", false);
  runToIdle();
  EXPECT_GT(client.take("red"), 0u) << "step 3: down";
  EXPECT_FALSE(routes("red", "Ethernet5")) << "step 3";
  h.vrfIntfIs("red", "Ethernet6");
  runToIdle();
  EXPECT_GT(client.take("red"), 0u) << "step 3: another";
  h.vrfIntfDel("red", "Ethernet5");
  runToIdle();
  EXPECT_GT(client.take("red"), 0u) << "step 3: gone";

  // 4. Interfaces of another VRF, or of the other family of this one, are none of its business.
  h.vrfIntfIs("blue", "Ethernet7");
  other.vrfIntfIs("red", "Ethernet8");
  runToIdle();
  EXPECT_EQ(client.take("red") + client.take("blue"), 0u) << "step 4";
  EXPECT_FALSE(routes("red", "Ethernet8")) << "step 4";

  // 5. The table goes: the helper goes, nobody is told, the registration stays; it comes back.
  h.vrfIntfTableDel("red");
  runToIdle();
  EXPECT_FALSE(hasHelper("red")) << "step 5";
  EXPECT_EQ(client.take("red"), 0u) << "step 5";
  EXPECT_TRUE(all().registeredClientsHas(ContainerKey("red", f.af))) << "step 5";
  h.vrfIntfIs("red", "Ethernet5");
  runToIdle();
  EXPECT_TRUE(hasHelper("red")) << "step 5";
  EXPECT_GT(client.take("red"), 0u) << "step 5";

  // 6. Unregistered: the helper and the registration go; later changes tell nobody.
  unregisterFor("red", client);
  EXPECT_FALSE(hasHelper("red")) << "step 6";
  EXPECT_FALSE(all().registeredClientsHas(ContainerKey("red", f.af))) << "step 6";
  h.vrfIntfIs("red", "Ethernet5", false);
  runToIdle();
  EXPECT_EQ(client.take("red"), 0u) << "step 6";
}

TEST_P(EgressVrfIntfStatusHelperSmTest, ClientsOfOneEgressVrfShareOneHelperUntilTheLastGoes) {
  h.vrfIntfIs("red", "Ethernet5");
  Client first("blue");
  Client second("green");
  // 1. A client registered where the table exists is told at once; a second is told with it later.
  registerFor("red", first);
  EXPECT_GT(first.take("red"), 0u) << "step 1";
  registerFor("red", second);
  registerFor("red", second);  // twice is once
  runToIdle();
  h.vrfIntfIs("red", "Ethernet5", false);
  runToIdle();
  EXPECT_EQ(first.take("red"), 1u) << "step 1";
  EXPECT_EQ(second.take("red"), 1u) << "step 1";

  // 2. One goes: the other is still told, through the same helper.
  unregisterFor("red", first);
  unregisterFor("red", first);  // unknown now: nothing
  EXPECT_TRUE(hasHelper("red")) << "step 2";
  h.vrfIntfIs("red", "Ethernet5");
  runToIdle();
  EXPECT_EQ(first.take("red"), 0u) << "step 2";
  EXPECT_EQ(second.take("red"), 1u) << "step 2";

  // 3. The other family's clients of the VRF have a helper of their own.
  Client v;
  all().registerForVrfIntfStatus("red", other.af, v.key, &v);
  EXPECT_FALSE(all().egressVrfIntfStatusHelperSmHas(ContainerKey("red", other.af))) << "step 3: no table there yet";
  other.vrfIntfIs("red", "Ethernet5");
  runToIdle();
  EXPECT_GT(v.take("red"), 0u) << "step 3";
  EXPECT_EQ(second.take("red"), 0u) << "step 3";
  all().unregisterForVrfIntfStatus("red", other.af, v.key);
  unregisterFor("red", second);
  EXPECT_EQ(all().egressVrfIntfStatusHelperSmSize(), 0u);
  EXPECT_EQ(all().registeredClientsSize(), 0u);
}

// The clients of an egress VRF are told in the order of their own VRFs' names, then protocols,
// whatever their addresses and the order they came in; one leaving during the walk is not told.
TEST_P(EgressVrfIntfStatusHelperSmTest, ClientsAreToldInTheOrderOfTheirVrfs) {
  h.vrfIntfIs("red", "Ethernet5");
  std::vector<std::string> log;
  auto const input = Routing::Rib::RoutingProtocol::routeInput();
  // Laid out in memory as red, blue (route input), green, blue (static).
  std::array<Client, 4> clients{Client("red", &log), Client("blue", &log, input), Client("green", &log),
                                Client("blue", &log)};
  for (std::size_t i : {2u, 0u, 1u, 3u}) registerFor("red", clients[i]);
  log.clear();

  // 1. A change tells each once, in order.
  h.vrfIntfIs("red", "Ethernet5", false);
  runToIdle();
  EXPECT_EQ(log, (std::vector<std::string>{"blue staticConfig", "blue routeInput", "green staticConfig",
                                           "red staticConfig"}))
      << "step 1";

  // 2. Green makes red leave: red is not told, the others still are.
  log.clear();
  clients[2].onTold = [&] { unregisterFor("red", clients[0]); };
  h.vrfIntfIs("red", "Ethernet5");
  runToIdle();
  EXPECT_EQ(log, (std::vector<std::string>{"blue staticConfig", "blue routeInput", "green staticConfig"})) << "step 2";

  // 3. Another client of a VRF and protocol that has one is a programming error.
  Client intruder("blue");
  EXPECT_DEATH(registerFor("red", intruder), "one client per VRF and protocol registers for an egress VRF");
  registerFor("red", clients[3]);  // the same client again is once
}

// Routes of one VRF leaving through the egress VRF "red" (id 5): they follow its interfaces, and
// they leave the helper nothing when they go.
TEST_P(EgressVrfIntfStatusHelperSmTest, RoutesThroughAnEgressVrfFollowItsInterfaces) {
  h.nameMap->vrfNameToIdIs("red", 5);
  h.vrfIntfIs("red", "Ethernet5");
  for (unsigned i = 0; i < 3; ++i) {
    auto via = StaticRouteHarness::via(f.hop(i + 1), "Ethernet5");
    via.egressVrfIs("red");
    auto route = h.routeIs(*h.config, f.net(i));
    route->viaIs(via, {});
    route->viaIs(StaticRouteHarness::via(f.hop(9)), {});
  }
  h.start(scheduler());
  runToIdle();
  auto const through = [this](unsigned i) { return "1: nextHop " + f.hop(i + 1) + " intf Ethernet5 weight 0 vrf 5"; };
  auto const own = "2: nextHop " + f.hop(9) + " intf  weight 0";
  for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(h.viasOf(f.net(i)), (Set{through(i), own})) << "step 1, route " << i;

  // 2. The egress interface stops routing: every route through it is reviewed and loses that via.
  h.vrfIntfIs("red", "Ethernet5", false);
  runToIdle();
  for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(h.viasOf(f.net(i)), Set{own}) << "step 2, route " << i;

  // 3. Back up: the vias come back.
  h.vrfIntfIs("red", "Ethernet5");
  runToIdle();
  for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(h.viasOf(f.net(i)), (Set{through(i), own})) << "step 3, route " << i;

  // 4. The same interface in the other family's table or in the route's own VRF changes nothing.
  other.vrfIntfIs("red", "Ethernet5", false);
  h.intfIs("Ethernet5", false);
  runToIdle();
  EXPECT_EQ(h.viasOf(f.net(0)), (Set{through(0), own})) << "step 4";

  // 5. The routes go one by one; the registration goes with the last.
  ContainerKey const red("red", f.af);
  for (unsigned i = 0; i < 3; ++i) {
    EXPECT_TRUE(all().registeredClientsHas(red)) << "step 5, before route " << i;
    h.config->routeDel(routeKey(f.net(i)));
    runToIdle();
  }
  EXPECT_FALSE(all().registeredClientsHas(red)) << "step 5";
  EXPECT_FALSE(hasHelper("red")) << "step 5";
}

TEST_P(EgressVrfIntfStatusHelperSmTest, TeardownReleasesEverything) {
  auto const live = liveSinceStart();
  {
    Client client;
    h.vrfIntfIs("red", "Ethernet5");
    registerFor("red", client);
    registerFor("blue", client);
    unregisterFor("red", client);
    unregisterFor("blue", client);
  }
  h.vrfIntfTableDel("red");
  runToIdle();
  EXPECT_EQ(Plinth::liveCount<EgressVrfIntfStatusHelperSm>(), 0);
  EXPECT_EQ(liveSinceStart(), live);
}

INSTANTIATE_TEST_SUITE_P(Families, EgressVrfIntfStatusHelperSmTest, ::testing::Values(kIpv4, kIpv6), familyName);

}  // namespace
}  // namespace BowlineTest
