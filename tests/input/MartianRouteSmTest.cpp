// The martian list of a VRF: filled at start, cleaned of what an older run left.
#include "input/MartianRouteSm.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "foundations/records/RouteInput.h"
#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

Routing::RouteKey key(char const* prefix) {
  return Routing::RouteKey(*Ondex::IpGenPrefix::fromString(prefix), Routing::RoutePreference(1));
}

class MartianRouteSmTest : public RuntimeFixture {};

TEST_F(MartianRouteSmTest, FillsTheTableOfTheFamilyAndDeletesStaleRoutes) {
  unsetenv("DO_NOT_INSTALL_MARTIAN");
  auto v4 = Routing::RouteInput::RouteInputIs("martian");
  v4->routeIs(key("1.0.0.0/8"), Routing::RouteType::forward);  // left by an older run
  auto kept = v4->routeIs(key("127.0.0.0/8"), Routing::RouteType::forward);
  auto sm4 = Routing::Martian::MartianRouteSm::MartianRouteSmIs(Ondex::AddressFamily::ipv4, "default", v4);
  EXPECT_EQ(v4->routeSize(), 2u);
  EXPECT_EQ(v4->route(key("0.0.0.0/8"))->routeType(), Routing::RouteType::drop);
  EXPECT_EQ(v4->route(key("127.0.0.0/8")), kept) << "a route of the table stays as it is";
  EXPECT_FALSE(v4->routeHas(key("1.0.0.0/8")));

  auto v6 = Routing::RouteInput::RouteInputIs("martian");
  auto sm6 = Routing::Martian::martianRouteSmFactory(Ondex::AddressFamily::ipv6, "default", v6);
  EXPECT_EQ(v6->routeSize(), 3u);
  EXPECT_EQ(v6->route(key("::/96"))->routeType(), Routing::RouteType::drop);
  EXPECT_EQ(v6->route(key("fe80::/10"))->routeType(), Routing::RouteType::forward);
  EXPECT_TRUE(v6->routeHas(key("::ffff:127.0.0.0/104")));
}

TEST_F(MartianRouteSmTest, EnvironmentVariableSetEvenEmptyAddsNothingButStillCleans) {
  setenv("DO_NOT_INSTALL_MARTIAN", "", 1);
  auto v4 = Routing::RouteInput::RouteInputIs("martian");
  v4->routeIs(key("1.0.0.0/8"), Routing::RouteType::forward);
  v4->routeIs(key("0.0.0.0/8"), Routing::RouteType::drop);  // a previous run's row stays
  auto sm = Routing::Martian::MartianRouteSm::MartianRouteSmIs(Ondex::AddressFamily::ipv4, "default", v4);
  EXPECT_EQ(v4->routeSize(), 1u);
  EXPECT_TRUE(v4->routeHas(key("0.0.0.0/8")));
  unsetenv("DO_NOT_INSTALL_MARTIAN");
}

}  // namespace
}  // namespace BowlineTest
