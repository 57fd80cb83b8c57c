// InterfaceAgent: the interface tables per VRF and family, and the connected subnets it answers.
#include "platform/InterfaceAgent.h"

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

Ondex::IpGenAddr ip(char const* text) { return *Ondex::IpGenAddr::fromString(text); }

class InterfaceAgentTest : public RuntimeFixture {};

TEST_F(InterfaceAgentTest, TablesFollowTheInterfacesOfEachVrfAndFamily) {
  auto const agent = Platform::InterfaceAgent::InterfaceAgentIs();
  Ondex::IntfId const e1("Ethernet1"), e2("Ethernet2");
  agent->intfIs({e1, "red", {{ip("10.0.0.1"), 24}, {ip("2001:db8::1"), 64}}});
  agent->intfIs({e2, "red", {{ip("10.0.1.1"), 24}}, false});
  auto const v4 = agent->ipStatus()->vrfIpIntfStatus("red");
  auto const v6 = agent->ip6Status()->vrfIp6IntfStatus("red");
  ASSERT_TRUE(v4 && v6) << "1";
  EXPECT_EQ(v4->ipIntfStatusSize(), 2u) << "1";
  EXPECT_EQ(v6->intfStatusSize(), 1u) << "1: only Ethernet1 has IPv6";
  EXPECT_TRUE(v4->ipIntfStatus(e1)->dpRoutingEnabled());
  EXPECT_FALSE(v4->ipIntfStatus(e2)->dpRoutingEnabled()) << "1: routing disabled";

  auto const subnets = agent->connectedSubnets("red", Ondex::AddressFamily::ipv4);
  ASSERT_EQ(subnets.size(), 1u) << "2: only usable interfaces";
  EXPECT_EQ(subnets[0].subnet, *Ondex::IpGenPrefix::fromString("10.0.0.0/24"));
  EXPECT_EQ(subnets[0].intfId, e1);
  agent->operUpIs(e1, false);
  EXPECT_TRUE(agent->connectedSubnets("red", Ondex::AddressFamily::ipv4).empty()) << "2: down";
  EXPECT_TRUE(v4->ipIntfStatus(e1)->dpRoutingEnabled()) << "2: the oper state is not routing";

  // Moving Ethernet1 to blue: red keeps only Ethernet2 and loses its IPv6 table.
  auto const redBefore = agent->vrfVersion("red");
  agent->intfIs({e1, "blue", {{ip("2001:db8::1"), 64}}});
  EXPECT_EQ(v4->ipIntfStatusSize(), 1u) << "3";
  EXPECT_FALSE(agent->ip6Status()->vrfIp6IntfStatus("red")) << "3";
  EXPECT_TRUE(agent->ip6Status()->vrfIp6IntfStatus("blue")) << "3";
  EXPECT_FALSE(agent->ipStatus()->vrfIpIntfStatus("blue")) << "3: no IPv4 address in blue";
  EXPECT_GT(agent->vrfVersion("red"), redBefore) << "3: both VRFs are told";

  EXPECT_TRUE(agent->intfDel(e2));
  EXPECT_FALSE(agent->intfDel(e2));
  EXPECT_FALSE(agent->ipStatus()->vrfIpIntfStatus("red")) << "4: the last interface went";
  agent->intfIs({Ondex::IntfId("Ethernet3"), "red", {{ip("10.0.0.1"), 33}}});
  EXPECT_FALSE(agent->ipStatus()->vrfIpIntfStatus("red")) << "5: a bad length is dropped";
}

}  // namespace
}  // namespace BowlineTest
