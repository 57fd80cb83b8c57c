// The protocol root built as a hosting agent builds it: records of the other agents at their mount
// paths, mounts completed, doMountsComplete; then VRFs, interface tables and the RIB's reports come
// and go, and the ready sets, the VRFs' readiness records and the sequence handshake follow.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundations/rib/ViaConfigLib.h"
#include "foundations/runtime/Toggle.h"
#include "protocol/ProtocolRootSm.h"
#include "support/AgentRecords.h"
#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

using Routing::Protocol::RootSm;
using Routing::Rib::Transport;
using VrfId = Vrf::VrfIdMap::VrfId;

// Logs every change of the root's unicast IPv4 ready set and every publish of `initialized`.
class ReadyWatch : public Zel::StateMachine<ReadyWatch> {
 public:
  static Quill::Ptr<ReadyWatch> ReadyWatchIs(Quill::Ptr<RootSm const> root) { return Zel::make<ReadyWatch>(root); }
  void handleReadyV4(L3::VrfName const& vrf) {
    log.push_back((root()->readyVrfIpv4Has(vrf) ? "+" : "-") + std::string(vrf.view()));
  }
  void handleInitialized() { ++initializedPublishes; }
  using RootReactors = Zel::Reactors<Zel::On<RootSm::readyVrfIpv4Id, &ReadyWatch::handleReadyV4>,
                                     Zel::On<RootSm::initializedId, &ReadyWatch::handleInitialized>>;
  ZEL_INPUT(RootSm, root, RootReactors)
  std::vector<std::string> log;
  int initializedPublishes = 0;

 protected:
  friend struct Zel::Factory;
  explicit ReadyWatch(Quill::Ptr<RootSm const> root) { rootIs(std::move(root)); }
};

// The agents around a protocol root: VRF maps, interface tables, the RIB's reports, at their paths.
class RootSmTest : public RuntimeFixture, protected AgentRecords {
 protected:
  void TearDown() override {
    watch = nullptr;
    root = nullptr;
    RuntimeFixture::TearDown();
  }

  // What a hosting agent does at start.
  void startRoot(Routing::Rib::RoutingProtocol protocol = Routing::Rib::RoutingProtocol::staticConfig(),
                 bool gracefulRestart = false) {
    root = RootSm::RootSmIs(&em, &mg, &shmem, &shmemMg, 1000, 100, 4, protocol, allReady, allTriggers);
    watch = ReadyWatch::ReadyWatchIs(root);
    root->grStateIs(gracefulRestart);
    mg.doCompleteMounts();
    shmemMg.doCompleteMounts();
    root->doMountsComplete();
  }

  // The RIB's via metric entry of a VRF and transport (any protocol's table under it).
  void metricIs(std::uint32_t id, Transport t, bool mc = false) {
    (mc ? mcMetrics : metrics)
        ->vrfStatusIs(VrfId(id))
        ->transportStatusIs(t)
        ->protocolStatusIs(Routing::Rib::RoutingProtocol::staticConfig());
  }
  void metricDel(std::uint32_t id, Transport t) { metrics->vrfStatus(VrfId(id))->transportStatusDel(t); }
  // Everything the RIB gives a VRF for unicast readiness.
  void ribReadyFor(char const* vrf, std::uint32_t id) {
    metricIs(id, Transport::transportIpv4());
    metricIs(id, Transport::transportIpv6());
    if (id == 0) metricIs(0, Transport::transportEvpn());
    looping4->vrfStatusIs(L3::VrfName(vrf));
    looping6->vrfStatusIs(L3::VrfName(vrf));
  }
  void intf4Is(char const* vrf) { ip4->vrfIpIntfStatusIs(L3::VrfName(vrf), Ip::VrfIpIntfStatus::VrfIpIntfStatusIs()); }
  void intf6Is(char const* vrf) {
    ip6->vrfIp6IntfStatusIs(L3::VrfName(vrf), Ip6::VrfIp6IntfStatus::VrfIp6IntfStatusIs());
  }

  [[nodiscard]] bool ready4(char const* vrf) const { return root->readyVrfIpv4Has(L3::VrfName(vrf)); }
  [[nodiscard]] bool ready6(char const* vrf) const { return root->readyVrfIpv6Has(L3::VrfName(vrf)); }
  [[nodiscard]] bool null4(char const* vrf) const {
    return root->readyVrfIpv4SetWithNullIntfStatusHas(L3::VrfName(vrf));
  }
  [[nodiscard]] Quill::Ptr<Routing::Protocol::VrfReadyStatus> status(char const* vrf) const {
    return allReady->vrfReadyStatus(L3::VrfName(vrf));
  }
  [[nodiscard]] Quill::Ptr<Routing::Protocol::VrfRibSeqTrigger> trigger(char const* vrf) const {
    return allTriggers->vrfRibSeqTrigger(L3::VrfName(vrf));
  }

  Cairn::MountGroup mg{&em};
  ZelSharedMem::MountGroup shmemMg{&shmem};
  Quill::Ptr<Routing::Protocol::AllVrfReadyStatus> allReady = Routing::Protocol::allVrfReadyStatusFactory();
  Quill::Ptr<Routing::Protocol::AllVrfRibSeqTrigger> allTriggers = Routing::Protocol::allVrfRibSeqTriggerFactory();
  Quill::Ptr<RootSm> root;
  Quill::Ptr<ReadyWatch> watch;
};

TEST_F(RootSmTest, MountsBothProtocolsUnderJointAgentsAndReadsItsOwnTables) {
  startRoot(Routing::Rib::RoutingProtocol::routeInput());
  // Joint agents (the toggle's default): both protocols' tables are mounted, this root's is read.
  for (char const* path : {"routing/rib/viaConfig/ipv4/staticConfig", "routing/rib/viaConfig/ipv4/routeInput",
                           "routing/mrib/viaConfig/ipv6/routeInput", "routing/rib/viaSetConfig/staticConfig",
                           "routing/rib/viaSetConfig/routeInput"}) {
    EXPECT_NE(shmem.mountRecord(path), nullptr) << path;
  }
  auto const* viaMount = shmem.mountRecord("routing/rib/viaConfig/ipv4/routeInput");
  ASSERT_NE(viaMount, nullptr);
  ASSERT_EQ(viaMount->info.collectionInfo().size(), 1u);
  EXPECT_EQ(viaMount->info.collectionInfo()[0].capacity, 400u) << "maxViaSets x maxVrfs";
  EXPECT_EQ(root->ipv4AllVrfViaConfig(), shmem.getEntity("routing/rib/viaConfig/ipv4/routeInput"));
  EXPECT_NE(root->ipv4AllVrfViaConfig(), shmem.getEntity("routing/rib/viaConfig/ipv4/staticConfig"));
  EXPECT_EQ(root->ipv4DefaultVrfViaConfig(), root->ipv4AllVrfViaConfig());
  EXPECT_EQ(root->ipv4AllVrfViaConfig()->rp(), Routing::Rib::RoutingProtocol::routeInput());
  EXPECT_EQ(root->mcIpv6AllVrfViaConfig()->rib(), Quill::String("mrib"));
  EXPECT_EQ(root->evpnConfig()->transport(), Transport::transportEvpn());
  EXPECT_EQ(root->viaSetConfig()->configViaSetColl(), shmem.getEntity("routing/rib/viaSetConfig/routeInput"));
  EXPECT_NE(root->mcViaSetConfig()->configViaSetColl(), root->viaSetConfig()->configViaSetColl());
  EXPECT_TRUE(root->viaMetricStatusSm() && root->mcViaMetricStatusSm() && root->nhdGraph() && root->mcNhdGraph());
  EXPECT_EQ(root->viaMetricStatusByVrf(), metrics);
  EXPECT_TRUE(Routing::ViaConfigLib::isAllVrfViaConfig("routeInput", "ipv6", "mrib"));
  // The via metric tables are the hosting agent's to mount under joint agents.
  EXPECT_EQ(shmem.mountRecord("routing/rib/viaMetricStatus"), nullptr);

  // A RIB string other than "rib" and "mrib" reads nothing.
  metricIs(0, Transport::transportIpv4());
  EXPECT_TRUE(root->viaMetricStatus(Transport::transportIpv4(), VrfId(0), "rib"));
  EXPECT_FALSE(root->viaMetricStatus(Transport::transportIpv4(), VrfId(0), "other"));
  EXPECT_FALSE(root->viaMetricStatus(Transport::transportIpv4(), VrfId(0), "mrib"));

  // Mounts completing twice: initialized is published once.
  vrfIs("default", 0);
  root->doMountsComplete();
  EXPECT_EQ(watch->initializedPublishes, 1);

  root = nullptr;
  watch = nullptr;
  EXPECT_FALSE(Routing::ViaConfigLib::isAllVrfViaConfig("routeInput", "ipv6", "mrib")) << "taken back at teardown";
}

TEST_F(RootSmTest, NonDefaultVrfWaitsForTheDefaultVrfsTables) {
  vrfIs("default", 0);
  vrfIs("red", 1);
  intf4Is("red");
  intf6Is("red");
  intf4Is("default");
  intf6Is("default");
  startRoot();
  EXPECT_TRUE(status("default") && status("red") && trigger("red")) << "records for every VRF with an id";

  // Red has all of its own inputs, but the default VRF's via metric tables are missing.
  metricIs(1, Transport::transportIpv4());
  metricIs(1, Transport::transportIpv6());
  looping4->vrfStatusIs(L3::VrfName("red"));
  looping6->vrfStatusIs(L3::VrfName("red"));
  EXPECT_FALSE(ready4("red"));
  EXPECT_FALSE(ready6("red"));

  // The default VRF's tables come: red becomes ready through the default VRF's change, without
  // any input of its own changing.
  watch->log.clear();
  looping4->vrfStatusIs(L3::VrfName("default"));
  looping6->vrfStatusIs(L3::VrfName("default"));
  metricIs(0, Transport::transportEvpn());
  metricIs(0, Transport::transportIpv6());
  EXPECT_FALSE(ready4("red"));
  metricIs(0, Transport::transportIpv4());
  EXPECT_TRUE(ready4("default") && ready6("default"));
  EXPECT_TRUE(ready4("red") && ready6("red"));
  EXPECT_FALSE(null4("red"));
  EXPECT_EQ(watch->log, (std::vector<std::string>{"+red", "+default"}))
      << "the default VRF's dependants are re-evaluated before its own entry is published";

  // The default VRF goes out of the IPv4 set: red, still ready, is left alone.
  metricDel(0, Transport::transportIpv4());
  EXPECT_FALSE(ready4("default"));
  EXPECT_TRUE(ready4("red"));
  // Red's own input going takes it out.
  looping4->vrfStatusDel(L3::VrfName("red"));
  EXPECT_FALSE(ready4("red"));
  EXPECT_TRUE(ready6("red"));
}

TEST_F(RootSmTest, VrfWithoutInterfaceTableIsReadyAndMovesWhenTheTableComes) {
  vrfIs("default", 0);
  vrfIs("blue", 2);
  startRoot();
  ribReadyFor("default", 0);
  ribReadyFor("blue", 2);
  EXPECT_TRUE(ready4("blue"));
  EXPECT_TRUE(null4("blue")) << "ready while it has no interface table";

  watch->log.clear();
  intf4Is("blue");
  EXPECT_EQ(watch->log, (std::vector<std::string>{"-blue", "+blue"})) << "consumers see it become ready anew";
  EXPECT_TRUE(ready4("blue"));
  EXPECT_FALSE(null4("blue"));
  EXPECT_TRUE(ready6("blue")) << "IPv6 has no table yet and keeps its state";
  EXPECT_TRUE(root->readyVrfIpv6SetWithNullIntfStatusHas(L3::VrfName("blue")));

  // The table going: out of the set, and back in as a VRF without interfaces.
  watch->log.clear();
  ip4->vrfIpIntfStatusDel(L3::VrfName("blue"));
  EXPECT_EQ(watch->log, (std::vector<std::string>{"-blue", "+blue"}));
  EXPECT_TRUE(null4("blue"));
}

TEST_F(RootSmTest, MulticastNeedsTheInterfaceTableAndNotTheDefaultVrf) {
  vrfIs("green", 3);
  startRoot();
  metricIs(3, Transport::transportIpv4(), true);
  mcLooping4->vrfStatusIs(L3::VrfName("green"));
  EXPECT_FALSE(root->mcReadyVrfIpv4Has(L3::VrfName("green"))) << "no interface table, never ready";
  intf4Is("green");
  EXPECT_TRUE(root->mcReadyVrfIpv4Has(L3::VrfName("green"))) << "no default VRF needed";
  EXPECT_FALSE(ready4("green"));
  EXPECT_FALSE(root->mcReadyVrfIpv6Has(L3::VrfName("green")));
  metricIs(3, Transport::transportIpv6(), true);
  mcLooping6->vrfStatusIs(L3::VrfName("green"));
  intf6Is("green");
  EXPECT_TRUE(root->mcReadyVrfIpv6Has(L3::VrfName("green")));
  mcMetrics->vrfStatus(VrfId(3))->transportStatusDel(Transport::transportIpv4());
  EXPECT_FALSE(root->mcReadyVrfIpv4Has(L3::VrfName("green")));
}

// A VRF without an id, or any VRF while there is no VRF map, leaves the sets of both ready rules:
// the unicast rule keeps its mark of a VRF without interfaces when only the id goes (its interfaces
// did not change) and drops it with the map.
TEST_F(RootSmTest, VrfWithoutIdOrMapLeavesTheSetsOfBothRules) {
  L3::VrfName const blue("blue");
  vrfIs("default", 0);
  vrfIs("blue", 2);
  intf4Is("blue");
  startRoot();
  ribReadyFor("default", 0);
  ribReadyFor("blue", 2);
  metricIs(2, Transport::transportIpv4(), true);
  mcLooping4->vrfStatusIs(blue);
  auto const null6 = [&] { return root->readyVrfIpv6SetWithNullIntfStatusHas(blue); };
  auto const mc4 = [&] { return root->mcReadyVrfIpv4Has(blue); };
  ASSERT_TRUE(ready4("blue") && ready6("blue") && null6() && mc4()) << "step 1: ready in both rules";

  vrfDel("blue", 2);
  EXPECT_FALSE(ready4("blue") || ready6("blue")) << "step 2: no id";
  EXPECT_TRUE(null6()) << "step 2: the mark of a VRF without IPv6 interfaces stays";
  EXPECT_FALSE(mc4()) << "step 2";

  vrfIs("blue", 2);
  ASSERT_TRUE(ready4("blue") && ready6("blue") && null6() && mc4()) << "step 3: the id back";

  nameStatus->nameToIdMapIs(nullptr);
  intf6Is("blue");
  EXPECT_FALSE(ready6("blue") || null6()) << "step 4: no map, the IPv6 rules ran";
  EXPECT_TRUE(ready4("blue") && mc4()) << "step 4: the IPv4 rules did not run";
  ip4->vrfIpIntfStatusDel(blue);
  EXPECT_FALSE(ready4("blue") || mc4()) << "step 5: no map, the IPv4 rules ran";
}

TEST_F(RootSmTest, PlainStartMarksRoutesReadyAtOnceEvenForAVrfNotReady) {
  vrfIs("red", 1);
  startRoot(Routing::Rib::RoutingProtocol::staticConfig(), false);
  ASSERT_TRUE(status("red"));
  EXPECT_FALSE(ready4("red"));
  EXPECT_TRUE(status("red")->v4RoutesReady());
  EXPECT_TRUE(status("red")->v6RoutesReady());
}

TEST_F(RootSmTest, GracefulRestartWaitsForVerificationThenMarksFamiliesWithoutInterfaces) {
  vrfIs("default", 0);
  vrfIs("red", 1);
  intf4Is("red");
  startRoot(Routing::Rib::RoutingProtocol::staticConfig(), true);
  ribReadyFor("default", 0);
  ribReadyFor("red", 1);
  EXPECT_TRUE(ready4("red"));
  EXPECT_FALSE(status("red")->v4RoutesReady());
  EXPECT_FALSE(status("red")->v6RoutesReady()) << "no route is ready before verification starts";

  root->grState()->startReadyVerificationIs(true);
  EXPECT_TRUE(status("red")->v6RoutesReady()) << "no IPv6 interface table: nothing to wait for";
  EXPECT_FALSE(status("red")->v4RoutesReady()) << "waits for the route config machine's review";
  EXPECT_TRUE(status("default")->v4RoutesReady() && status("default")->v6RoutesReady());

  // Asking again for the same state keeps it; the other state replaces it and is watched.
  auto const held = root->grState();
  EXPECT_EQ(root->grStateIs(true), held);
  auto const plain = root->grStateIs(false);
  EXPECT_NE(plain, held);
  EXPECT_TRUE(status("red")->v4RoutesReady()) << "a plain start marks everything";
}

TEST_F(RootSmTest, SequenceHandshakeEchoesOnceBothReviewsAreComplete) {
  vrfIs("default", 0);
  vrfIs("red", 1);
  vrfIs("idle", 7);
  intf4Is("red");
  intf6Is("red");
  startRoot();
  ribReadyFor("default", 0);
  ribReadyFor("red", 1);

  // Trigger 0: no handshake running.
  trigger("red")->ribReadySeqTriggerIs(0);
  EXPECT_FALSE(status("red")->v4RouteReviewComplete());

  // A VRF ready in neither family has nothing to review: the status echoes at once.
  trigger("idle")->ribReadySeqTriggerIs(5);
  EXPECT_EQ(status("idle")->ribReadySeqStatus(), 5u);
  EXPECT_TRUE(status("idle")->v4RouteReviewComplete() && status("idle")->v6RouteReviewComplete());

  // A ready VRF: the echo waits for both route status machines' reviews.
  trigger("red")->ribReadySeqTriggerIs(9);
  EXPECT_EQ(status("red")->ribReadySeqStatus(), 0u);
  status("red")->v4RouteReviewCompleteIs(true);
  EXPECT_EQ(status("red")->ribReadySeqStatus(), 0u);
  status("red")->v6RouteReviewCompleteIs(true);
  EXPECT_EQ(status("red")->ribReadySeqStatus(), 9u);
  trigger("red")->ribReadySeqTriggerIs(10);
  EXPECT_EQ(status("red")->ribReadySeqStatus(), 10u) << "the flags stay set";
}

TEST_F(RootSmTest, VrfLosingItsIdLosesItsRecordsAndReadiness) {
  vrfIs("default", 0);
  vrfIs("red", 1);
  startRoot();
  ribReadyFor("default", 0);
  ribReadyFor("red", 1);
  auto const held = status("red");
  ASSERT_TRUE(held && ready4("red") && ready6("red"));

  vrfDel("red", 1);
  EXPECT_FALSE(status("red"));
  EXPECT_FALSE(trigger("red"));
  EXPECT_FALSE(ready4("red") || ready6("red"));
  EXPECT_TRUE(held->v4RoutesReady()) << "a holder keeps the old record";

  // A renumbered VRF comes back with new records once the RIB reports for its new id.
  vrfIs("red", 4);
  EXPECT_TRUE(status("red"));
  EXPECT_FALSE(ready4("red"));
  metricIs(4, Transport::transportIpv4());
  EXPECT_TRUE(ready4("red"));

  // The name map replaced whole: the VRFs of the new map are evaluated, and its changes watched.
  auto fresh = Vrf::VrfIdMap::NameToIdMap::NameToIdMapIs();
  fresh->vrfNameToIdIs(L3::VrfName("default"), VrfId(0));
  nameStatus->nameToIdMapIs(fresh);
  EXPECT_TRUE(ready4("default"));
  fresh->vrfNameToIdIs(L3::VrfName("blue"), VrfId(2));
  EXPECT_TRUE(status("blue"));
}

}  // namespace
}  // namespace BowlineTest
