// The protocol container's assembly.
#include "protocol/ProtocolContainerSm.h"

#include <gtest/gtest.h>

#include "foundations/rib/ViaConfigLib.h"
#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

using Routing::Protocol::ContainerKey;

class ContainerSmTest : public RuntimeFixture {};

TEST_F(ContainerSmTest, BuildsItsChildrenAndDrivesOnlyAPerVrfViaTable) {
  auto const live = liveSinceStart();
  {
    Routing::Protocol::ProtocolContainerSm::Inputs in;
    in.containerKey = ContainerKey("red", Ondex::AddressFamily::ipv6);
    in.vrfId = 9;
    in.ipViaConfig = Routing::Rib::Ip::ViaConfig::ViaConfigIs(Routing::Rib::RoutingProtocol::staticConfig(),
                                                              Routing::Rib::Transport::transportIpv6());
    in.viaSetConfig = Routing::Rib::ViaSetConfig::ViaSetConfigIs(
        Routing::Rib::ViaSetConfigKey(Routing::Rib::RoutingProtocol::staticConfig()));
    in.ribConfig = Routing::Rib::RouteConfig::RouteConfigIs();
    in.intfStatus = Routing::Protocol::Ipv6IntfStatus::Ipv6IntfStatusIs(nullptr);
    in.scheduler = scheduler();
    auto perVrf = Routing::Protocol::ProtocolContainerSm::ProtocolContainerSmIs(in);
    EXPECT_TRUE(perVrf->ipViaConfigSm());
    ASSERT_TRUE(perVrf->status());
    EXPECT_EQ(perVrf->status()->key().vrfId, Vrf::VrfIdMap::VrfId(9));
    EXPECT_EQ(perVrf->status()->key().af, Ondex::AddressFamily::ipv6);
    EXPECT_TRUE(perVrf->routeStatusSm());
    EXPECT_TRUE(perVrf->intfSm());

    Routing::ViaConfigLib::allVrfViaConfigIs("staticConfig", "ipv6", "rib");
    auto allVrf = Routing::Protocol::ProtocolContainerSm::ProtocolContainerSmIs(in);
    EXPECT_FALSE(allVrf->ipViaConfigSm());
    Routing::ViaConfigLib::allVrfViaConfigDel("staticConfig", "ipv6", "rib");
    runToIdle();
  }
  runToIdle();
  EXPECT_EQ(liveSinceStart(), live);
}

}  // namespace
}  // namespace BowlineTest
