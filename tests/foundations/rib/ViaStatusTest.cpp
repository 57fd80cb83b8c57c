// The resolved-via tree: via sets and their resolved via keys under VRF, transport and protocol,
// the resolved via of each key by transport, and what each reader is told.
#include "foundations/rib/ViaStatus.h"

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"
#include "RibRecorder.h"

namespace BowlineTest {
namespace {

using Ondex::IntfId;
using Ondex::IpGenAddr;
using Routing::Rib::ResolvedVia;
using Routing::Rib::ResolvedViaStatus;
using Routing::Rib::Transport;
using Routing::Rib::ViaKey;
using Routing::Rib::ViaSet;
using Routing::Rib::ViaSetKey;
using Routing::Rib::ViaStatus;
using Routing::Rib::ViaStatusByProtocol;
using Routing::Rib::ViaStatusByVrf;
using Vrf::VrfIdMap::VrfId;

class ViaStatusTest : public RuntimeFixture {};

TEST_F(ViaStatusTest, ViaSetsAndTheirResolvedKeysArePublishedAtEveryLevel) {
  auto tree = ViaStatusByVrf::ViaStatusByVrfIs();
  auto vs = tree->leafIs(3, Transport::transportIpv4(), 2);
  EXPECT_EQ(vs->vrfId(), VrfId(3));
  EXPECT_EQ(vs->transport(), Transport::transportIpv4());
  EXPECT_EQ(vs->routingProtocol().value(), 2);
  auto byProtocol = tree->vrfStatus(3)->transportStatus(1);
  auto pRec = KeyRecorder<ViaStatusByProtocol, Routing::Rib::RoutingProtocol>::KeyRecorderIs(
      byProtocol, ViaStatusByProtocol::protocolStatusId);
  auto setRec = KeyRecorder<ViaStatus, ViaSetKey>::KeyRecorderIs(vs, ViaStatus::viaSetId);

  ViaSetKey const sk(11, 0, 2, 0);
  auto set = vs->viaSetIs(sk);
  EXPECT_EQ(set->viaSetKey(), sk);
  auto keyRec = KeyRecorder<ViaSet, ViaKey>::KeyRecorderIs(set, ViaSet::viaKeyId);
  ViaKey const a(1, 3, 2, 1);
  ViaKey const b(2, 3, 2, 1);
  set->viaKeyIs(a);
  set->viaKeyIs(b);
  set->viaKeyIs(a);  // present: silent
  set->viaKeyDel(a);
  EXPECT_EQ(keyRec->keys, (std::vector<ViaKey>{a, b, a}));
  EXPECT_TRUE(set->viaKeyHas(b));
  EXPECT_FALSE(set->viaKeyHas(a));

  vs->viaSetDel(sk);
  EXPECT_EQ(setRec->keys, (std::vector<ViaSetKey>{sk, sk}));
  EXPECT_TRUE(set->zelMarkedForDeletion());

  tree->leafIs(3, 1, 4);
  tree->leafDel(3, 1, 2);
  EXPECT_EQ(pRec->keys, (std::vector<Routing::Rib::RoutingProtocol>{4, 2}));
}

TEST_F(ViaStatusTest, ResolvedViasByTransportReadAsUnresolvedWhenAbsent) {
  auto tree = ViaStatusByVrf::ViaStatusByVrfIs();
  auto rRec = KeyRecorder<ViaStatusByVrf, Transport>::KeyRecorderIs(tree, ViaStatusByVrf::resolvedViaStatusId);
  auto v4 = tree->resolvedViaStatusIs(Transport::transportIpv4());
  EXPECT_EQ(v4->transport(), Transport::transportIpv4());
  EXPECT_EQ(rRec->keys, std::vector<Transport>{1});
  EXPECT_EQ(tree->vrfStatusSize(), 0u) << "the resolved vias stand beside the tree, not in it";

  auto rec = KeyRecorder<ResolvedViaStatus, ViaKey>::KeyRecorderIs(v4, ResolvedViaStatus::resolvedViaId);
  ViaKey const k(5, 0, 2, 1);
  EXPECT_EQ(v4->resolvedVia(k), ResolvedVia()) << "absent: the default, which means not resolved";
  ResolvedVia const r(IpGenAddr::fromV4(0x0a000001), IntfId("Ethernet7"));
  v4->resolvedViaIs(k, r);
  EXPECT_EQ(v4->resolvedVia(k).nextHop(), IpGenAddr::fromV4(0x0a000001));
  EXPECT_EQ(v4->resolvedVia(k).intfId(), IntfId("Ethernet7"));
  v4->resolvedViaIs(k, ResolvedVia(IpGenAddr::fromV4(0x0a000001), IntfId("Ethernet8")));
  v4->resolvedViaDel(k);
  EXPECT_EQ(rec->keys, (std::vector<ViaKey>{k, k, k}));
}

}  // namespace
}  // namespace BowlineTest
