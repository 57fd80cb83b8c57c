// BfdAgent: the peers of each served application config get a status with the scenario's state.
#include "platform/BfdAgent.h"

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

Ondex::IpGenAddr ip(char const* text) { return *Ondex::IpGenAddr::fromString(text); }

class BfdAgentTest : public RuntimeFixture {};

TEST_F(BfdAgentTest, ConfiguredPeersGetTheScenarioState) {
  auto const agent = Platform::BfdAgent::BfdAgentIs(scheduler());
  auto const config = Bfd::AppConfig::AppConfigIs("static-route");
  Bfd::Peer const p1(ip("10.0.0.2"), "default", ip("0.0.0.0"), Ondex::IntfId("Ethernet1"), 1);
  Bfd::Peer const p2(ip("10.0.0.3"), "default", ip("10.0.0.1"), Ondex::IntfId(), 6);
  config->peerConfigIs(p1);
  agent->appConfigIs("default", config);
  runToIdle();
  auto const status = agent->appStatus();
  ASSERT_TRUE(status->peerStatus(p1)) << "1";
  EXPECT_EQ(status->peerStatus(p1)->status(), Bfd::SessionState::up) << "1: up unless told otherwise";

  agent->sessionStateIs("default", ip("10.0.0.2"), Bfd::SessionState::down);
  config->peerConfigIs(p2);
  runToIdle();
  EXPECT_EQ(status->peerStatus(p1)->status(), Bfd::SessionState::down) << "2";
  EXPECT_EQ(status->peerStatus(p2)->status(), Bfd::SessionState::up) << "2: a new peer";

  agent->defaultSessionStateIs(Bfd::SessionState::adminDown);
  agent->sessionStateDel("default", ip("10.0.0.2"));
  runToIdle();
  EXPECT_EQ(status->peerStatus(p1)->status(), Bfd::SessionState::adminDown) << "3";

  config->peerConfigDel(p1);
  runToIdle();
  EXPECT_FALSE(status->peerStatus(p1)) << "4: no longer asked for";
  agent->appConfigIs("default", nullptr);
  runToIdle();
  EXPECT_EQ(status->peerStatusSize(), 0u) << "5: the config is no longer served";
}

}  // namespace
}  // namespace BowlineTest
