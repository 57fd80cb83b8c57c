// The resolution profile of a via: at most three methods in order, and the ids of tunnel RIBs filled
// in from their names.
#include "foundations/rib/ResolutionRibProfileConfig.h"
#include "foundations/rib/ResolutionRibProfile.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include "foundations/runtime/Exception.h"

namespace {

using Routing::Rib::ResolutionMethod;
using Routing::Rib::ResolutionRibProfileConfig;
using Routing::Rib::ResolutionRibType;

ResolutionRibProfileConfig tunnelFirst() {
  ResolutionRibProfileConfig p;
  p.methodAppend(ResolutionMethod::tunnelRib("system-colored-tunnel-rib"));
  p.methodAppend(ResolutionMethod::tunnelRib("system-tunnel-rib"));
  return p;
}

TEST(ResolutionRibProfileConfigTest, MethodsKeepTheirOrderAndAtMostThree) {
  ResolutionRibProfileConfig p = tunnelFirst();
  EXPECT_EQ(fmt::format("{}", p), "[tunnel-rib system-colored-tunnel-rib, tunnel-rib system-tunnel-rib]");

  p.methodAppend(ResolutionMethod::systemConnected());
  EXPECT_EQ(p.methodCount(), 3u);
  EXPECT_THROW(p.methodAppend(ResolutionMethod::systemUnicastRib()), Zel::RangeException);
  EXPECT_EQ(p.methodCount(), 3u) << "a failed write leaves the profile as it was";
}

TEST(ResolutionRibProfileConfigTest, WritingPastTheEndExtendsOverEmptyMethods) {
  ResolutionRibProfileConfig one;
  one.methodIs(1, ResolutionMethod::tunnelRib("system-tunnel-rib", 7));
  EXPECT_EQ(one.method(0).type(), ResolutionRibType::none);
  EXPECT_EQ(fmt::format("{}", one.method(1)), "tunnel-rib system-tunnel-rib#7");
}

TEST(ResolutionRibProfileTest, FromConfigFillsTheIdsOfKnownTunnelRibs) {
  ResolutionRibProfileConfig config;
  config.methodAppend(ResolutionMethod::tunnelRib("gold"));
  config.methodAppend(ResolutionMethod::tunnelRib("silver"));
  config.methodAppend(ResolutionMethod::systemConnected());
  auto map = Tunnel::TunnelTable::TunnelRibNameIdMap::TunnelRibNameIdMapIs();
  map->tunnelRibNameToIdIs("gold", 7);
  auto const profile = Routing::Rib::ResolutionRibProfile::fromConfig(config, map);
  EXPECT_EQ(fmt::format("{}", ResolutionRibProfileConfig(profile)),
            "[tunnel-rib gold#7, tunnel-rib silver, system-connected]")
      << "an unknown tunnel RIB keeps id 0";
  EXPECT_EQ(Routing::Rib::ResolutionRibProfile::fromConfig(config, nullptr), Routing::Rib::ResolutionRibProfile(config));
}

}  // namespace
