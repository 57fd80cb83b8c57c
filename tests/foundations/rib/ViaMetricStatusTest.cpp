// The via metric tree: what a reader of each level is told when levels come and go, the look-ups of
// a leaf, and when a via metric counts as resolved.
#include "foundations/rib/ViaMetricStatus.h"

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"
#include "RibRecorder.h"

namespace BowlineTest {
namespace {

using Routing::MetricPref;
using Routing::Rib::RoutingProtocol;
using Routing::Rib::Transport;
using Routing::Rib::ViaKey;
using Routing::Rib::ViaMetric;
using Routing::Rib::ViaMetricStatus;
using Routing::Rib::ViaMetricStatusByProtocol;
using Routing::Rib::ViaMetricStatusByTransport;
using Routing::Rib::ViaMetricStatusByVrf;
using Vrf::VrfIdMap::VrfId;

class ViaMetricStatusTest : public RuntimeFixture {};

TEST_F(ViaMetricStatusTest, EmptyViaMetricMeansUnresolvedAndMetricPrefPairsTheTwo) {
  ViaMetric const empty;
  EXPECT_FALSE(empty.isResolved()) << "preference 255: no route resolves the via";
  EXPECT_TRUE(ViaMetric(ViaKey(1, 0, 2, 1), 20, 1).isResolved());
  ViaMetric reachable = ViaMetric(ViaKey(2, 0, 2, 1), 1, 255);
  reachable.metricIs(1);
  EXPECT_FALSE(reachable.isResolved());
  EXPECT_NE(reachable.metricPref(), MetricPref(1, 1)) << "(1, 1) with preference 255 is told by the pair alone";
  reachable.preferenceIs(1);
  EXPECT_EQ(reachable.metricPref(), MetricPref(1, 1));

  // Equality covers every field, the carried ones too.
  ViaMetric a(ViaKey(1, 0, 2, 1), 20, 1);
  for (auto change : std::vector<std::function<void(ViaMetric&)>>{
           [](ViaMetric& x) { x.auxMetricIs(1); }, [](ViaMetric& x) { x.auxCountIs(1); },
           [](ViaMetric& x) { x.weightIs(0.5f); }, [](ViaMetric& x) { x.loopingIs(true); },
           [](ViaMetric& x) { x.auxFlagIs(false); }}) {
    ViaMetric b = a;
    change(b);
    EXPECT_NE(a, b);
  }
}

TEST_F(ViaMetricStatusTest, EachLevelTellsItsReaderOfItsChildrenComingAndGoing) {
  auto byVrf = ViaMetricStatusByVrf::ViaMetricStatusByVrfIs();
  auto vrfRec = KeyRecorder<ViaMetricStatusByVrf, VrfId>::KeyRecorderIs(byVrf, ViaMetricStatusByVrf::vrfStatusId);

  auto vms = byVrf->leafIs(5, Transport::transportIpv4(), RoutingProtocol::staticConfig());
  EXPECT_EQ(vms->vrfId(), VrfId(5)) << "a leaf knows its place in the tree";

  auto byTransport = byVrf->vrfStatus(5);
  auto byProtocol = byTransport->transportStatus(1);
  auto tRec = KeyRecorder<ViaMetricStatusByTransport, Transport>::KeyRecorderIs(
      byTransport, ViaMetricStatusByTransport::transportStatusId);
  auto pRec = KeyRecorder<ViaMetricStatusByProtocol, RoutingProtocol>::KeyRecorderIs(
      byProtocol, ViaMetricStatusByProtocol::protocolStatusId);

  EXPECT_EQ(byVrf->leafIs(5, 1, 2), vms) << "finding an existing path creates nothing";
  byVrf->leafIs(5, 1, 4);
  byVrf->leafIs(5, 3, 2);
  EXPECT_EQ(pRec->keys, std::vector<RoutingProtocol>{4});
  EXPECT_EQ(tRec->keys, std::vector<Transport>{3});
  EXPECT_EQ(vrfRec->keys.size(), 1u);

  EXPECT_FALSE(byVrf->leaf(6, 1, 2)) << "a missing VRF level";
  EXPECT_FALSE(byVrf->leaf(5, 2, 2)) << "a missing transport level";
  EXPECT_FALSE(byVrf->leaf(5, 1, 9)) << "a missing protocol level";

  // Removing leaves prunes the levels they leave empty, each removal told to its parent's reader.
  byVrf->leafDel(5, 1, 2);
  EXPECT_TRUE(vms->zelMarkedForDeletion()) << "a removed level is a zombie for its nested readers";
  EXPECT_EQ(pRec->keys, (std::vector<RoutingProtocol>{4, 2}));
  EXPECT_TRUE(byVrf->vrfStatus(5)->transportStatusHas(1)) << "protocol 4 is still there";
  byVrf->leafDel(5, 1, 4);
  EXPECT_EQ(tRec->keys, (std::vector<Transport>{3, 1}));
  byVrf->leafDel(5, 3, 2);
  EXPECT_EQ(vrfRec->keys, (std::vector<VrfId>{5, 5}));
  EXPECT_EQ(byVrf->vrfStatusSize(), 0u);
  byVrf->leafDel(5, 3, 2);  // nothing left: silent
  EXPECT_EQ(vrfRec->keys.size(), 2u);
}

TEST_F(ViaMetricStatusTest, TeardownOfTheTreeReleasesEveryLevel) {
  {
    auto byVrf = ViaMetricStatusByVrf::ViaMetricStatusByVrfIs();
    for (std::uint32_t vrf = 0; vrf < 3; ++vrf) {
      for (std::uint8_t t = 1; t <= 3; ++t) byVrf->leafIs(vrf, t, 2)->viaMetricIs(ViaKey(1, vrf, 2, t), ViaMetric());
    }
    EXPECT_EQ(liveSinceStart(), 1 + 3 + 9 + 9);
  }
  EXPECT_EQ(liveSinceStart(), 0);
}

}  // namespace
}  // namespace BowlineTest
