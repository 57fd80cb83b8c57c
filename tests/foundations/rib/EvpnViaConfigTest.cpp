// The EVPN via table: vias deduplicated by VTEP, VNI and router MAC, all in the default VRF under
// the table's protocol and the EVPN transport, with the same handle and restart rules as IP vias.
#include "foundations/rib/EvpnViaConfig.h"

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

using Ondex::EthAddr;
using Ondex::IpGenAddr;
using Routing::Rib::Transport;
using Routing::Rib::ViaKey;
using Routing::Rib::Evpn::Via;
using Routing::Rib::Evpn::ViaConfig;

Via evpn(std::uint32_t vni, std::uint32_t vtep) {
  return Via(Vxlan::VniExt(vni), EthAddr(EthAddr::Bytes{0, 0, 0, 0, 0, 1}), IpGenAddr::fromV4(vtep));
}

class EvpnViaConfigTest : public RuntimeFixture {};

TEST_F(EvpnViaConfigTest, KeysCarryTheTableProtocolEvpnTransportAndTheDefaultVrf) {
  auto table = ViaConfig::ViaConfigIs();
  table->rpIs(2);
  auto a = table->dedupViaIs(evpn(10, 0x01010101));
  ViaKey const k = a->viaKey();
  EXPECT_EQ(k.transport(), Transport::transportEvpn());
  EXPECT_EQ(k.routingProtocol().value(), 2);
  EXPECT_EQ(k.vrfId().value(), 0u);

  Via withKey = evpn(10, 0x01010101);
  withKey.viaKeyIs(ViaKey(99, 9, 9, 9));
  EXPECT_EQ(table->dedupViaIs(withKey), a) << "the key a caller's via carries is not content";
  EXPECT_NE(table->dedupViaIs(evpn(11, 0x01010101))->viaKey(), k);

  EXPECT_FALSE(table->dedupViaKey(evpn(12, 0x01010101))) << "the look-up never creates";
  a = nullptr;
  EXPECT_FALSE(table->viaHas(k));
}

TEST_F(EvpnViaConfigTest, RestartOfTheDefaultVrfKeepsUnheldVias) {
  auto table = ViaConfig::ViaConfigIs(4);
  table->restartingVrfIs(0);
  ViaKey const k = table->dedupViaIs(evpn(10, 0x01010101))->viaKey();
  EXPECT_TRUE(table->viaHas(k));
  table->restartingVrfDel(0);
  EXPECT_FALSE(table->viaHas(k));
}

}  // namespace
}  // namespace BowlineTest
