#include "static/InterVrfRoutes.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

using Routing::Static::AllEgressVrfIntfStatusHelperSm;
using Routing::Static::InterVrfRoutes;

// A machine registered for egress VRFs: it notes which VRFs it was told about.
class RecordingClient : public Routing::Static::EgressVrfIntfStatusClient {
 public:
  void handleInterVrfRoutes(L3::VrfName const& egressVrf) override { told.push_back(std::string(egressVrf.view())); }
  std::vector<std::string> told;
};

Routing::Via viaThrough(char const* hop, char const* egressVrf) {
  auto via = StaticRouteHarness::via(hop);
  via.egressVrfIs(egressVrf);
  return via;
}

class InterVrfRoutesTest : public RuntimeFixture {
 protected:
  Quill::Ptr<Routing::Route> routeThrough(char const* prefix, std::vector<char const*> const& vrfs) {
    auto route = list->routeIs(routeKey(prefix), Routing::RouteType::forward);
    for (char const* vrf : vrfs) route->viaIs(viaThrough("10.0.0.1", vrf), {});
    return route;
  }
  [[nodiscard]] std::vector<std::string> keysOf(InterVrfRoutes const& routes, char const* vrf) const {
    std::vector<std::string> out;
    routes.forEachKey(vrf, [&](Routing::RouteKey const& key) { out.push_back(key.prefix().toString()); });
    return out;
  }
  [[nodiscard]] bool registered(char const* vrf, Ondex::AddressFamily af = Ondex::AddressFamily::ipv4) const {
    return helper->registeredClientsHas(Routing::Protocol::ContainerKey(vrf, af));
  }

  Quill::Ptr<Routing::RouteList> list = Routing::RouteList::RouteListIs();
  Quill::Ptr<AllEgressVrfIntfStatusHelperSm> helper =
      AllEgressVrfIntfStatusHelperSm::AllEgressVrfIntfStatusHelperSmIs(nullptr, nullptr);
  RecordingClient client;
  InterVrfRoutes routes{helper, &client, Ondex::AddressFamily::ipv4, "default"};
};

TEST_F(InterVrfRoutesTest, TheRegistrationLastsWhileEitherIndexHasTheVrf) {
  auto a = routeThrough("192.0.2.0/24", {"red"});
  auto b = routeThrough("198.51.100.0/24", {"red"});

  // 1. The first route through the VRF registers the client, for the family of the owner.
  routes.resolvedAdd(*a, "red", Vrf::VrfIdMap::VrfId(5));
  EXPECT_TRUE(registered("red")) << "step 1";
  EXPECT_FALSE(registered("red", Ondex::AddressFamily::ipv6)) << "step 1";
  EXPECT_EQ(routes.resolved()->interVrfRouteConfig("red")->vrfId(), Vrf::VrfIdMap::VrfId(5)) << "step 1";

  // 2. A route of the other index keeps it registered when the first index's entry goes.
  routes.unresolvedAdd(*b, "red");
  routes.resolvedDel(a->key(), "red");
  EXPECT_FALSE(routes.resolved()->interVrfRouteConfigHas("red")) << "step 2: the entry went with its last route";
  EXPECT_TRUE(registered("red")) << "step 2";

  // 3. A key that is not there changes nothing; the last route goes with the registration.
  routes.unresolvedDel(a->key(), "red");
  EXPECT_TRUE(registered("red")) << "step 3";
  routes.unresolvedDel(b->key(), "red");
  EXPECT_FALSE(registered("red")) << "step 3";
}

TEST_F(InterVrfRoutesTest, ARouteLeavesEveryEgressVrfItsViasName) {
  auto route = routeThrough("203.0.113.0/24", {"red", "blue"});
  auto other = routeThrough("192.0.2.0/24", {"blue"});
  routes.resolvedAdd(*route, "red", Vrf::VrfIdMap::VrfId(5));
  routes.unresolvedAdd(*route, "blue");
  routes.resolvedAdd(*other, "blue", Vrf::VrfIdMap::VrfId(6));
  EXPECT_EQ(keysOf(routes, "blue"), (std::vector<std::string>{"192.0.2.0/24", "203.0.113.0/24"}))
      << "the resolved index's keys first";

  routes.routeDel(*route);
  EXPECT_FALSE(registered("red"));
  EXPECT_TRUE(registered("blue")) << "another route still goes through blue";
  EXPECT_EQ(keysOf(routes, "blue"), (std::vector<std::string>{"192.0.2.0/24"}));
  EXPECT_EQ(keysOf(routes, "red"), std::vector<std::string>{});
}

TEST_F(InterVrfRoutesTest, TheHelperTellsEachRegisteredClientAndForgetsThoseThatGo) {
  RecordingClient second;
  InterVrfRoutes secondRoutes{helper, &second, Ondex::AddressFamily::ipv4, "green"};
  auto route = routeThrough("192.0.2.0/24", {"red"});
  routes.unresolvedAdd(*route, "red");
  secondRoutes.unresolvedAdd(*route, "red");

  helper->notifyIntfStatusChange(Routing::Protocol::ContainerKey("red", Ondex::AddressFamily::ipv4));
  EXPECT_EQ(client.told, std::vector<std::string>{"red"});
  EXPECT_EQ(second.told, std::vector<std::string>{"red"});

  // The owner goes: its registrations go, the other client's stay.
  routes.unregisterAll();
  helper->notifyIntfStatusChange(Routing::Protocol::ContainerKey("red", Ondex::AddressFamily::ipv4));
  EXPECT_EQ(client.told, std::vector<std::string>{"red"});
  EXPECT_EQ(second.told, (std::vector<std::string>{"red", "red"}));
  secondRoutes.unregisterAll();
  EXPECT_FALSE(registered("red"));
}

}  // namespace
}  // namespace BowlineTest
