// RouteStatusSm from configuration to the RIB: routes configured through a RouteConfigSm, the RIB's
// via metric reports written by the test, the scheduler run to idle, and the route table read.
#include "protocol/ProtocolRouteStatusSm.h"

#include <gtest/gtest.h>

#include "support/RibHarness.h"
#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"
#include "foundations/runtime/Toggle.h"

namespace BowlineTest {
namespace {

using Routing::RouteViaAttr;

class RouteStatusSmTest : public RuntimeFixture {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
    rib.viaMetricStatusSmIs(h.statusDir);
  }
  void start() {
    h.start(scheduler());
    rs = rib.routeStatusSmIs(h.vrfName, h.af, h.vrfId, h.status, h.ipViaConfig, scheduler(), h.ready);
    runToIdle();
  }
  void TearDown() override {
    rs = nullptr;
    rib.vms = nullptr;
    h.stop();
    RuntimeFixture::TearDown();
  }
  // The via key of a next hop in the via table.
  Routing::Rib::ViaKey keyOf(char const* hop) {
    for (auto it = h.ipViaConfig->viaIteratorConst(); it; it.advance()) {
      if (it.value().nextHop() == addr(hop)) return it.key();
    }
    ADD_FAILURE() << "no via to " << hop;
    return {};
  }
  void reported() { runToIdle(); }
  void resolve(char const* hop, Routing::RouteMetric metric = 1) {
    rib.report(keyOf(hop), metric);
    reported();
  }
  void unresolve(char const* hop) {
    rib.reportUnresolved(keyOf(hop));
    reported();
  }
  std::string ribRoute(char const* prefix) { return rib.routeOf(h.vrfId, prefix, *h.ipViaConfig); }

  StaticRouteHarness h;
  RibHarness rib;
  Quill::Ptr<Routing::Protocol::RouteStatusSm> rs;
};

TEST_F(RouteStatusSmTest, FloatingRouteTakesTheWorsePreferenceWhileTheBetterIsUnresolved) {
  h.routeIs(*h.config, "1.0.0.0/24")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  h.routeIs(*h.config, "1.0.0.0/24", 5)->viaIs(StaticRouteHarness::via("10.0.0.5"), {});
  start();
  EXPECT_EQ(ribRoute("1.0.0.0/24"), "") << "no table for the VRF yet: everything unresolved";
  rib.reportUnresolved(keyOf("10.0.0.1"));
  resolve("10.0.0.5");
  EXPECT_EQ(ribRoute("1.0.0.0/24"), "pref 5 metric 0 vias [10.0.0.5]");
  resolve("10.0.0.1");
  EXPECT_EQ(ribRoute("1.0.0.0/24"), "pref 1 metric 0 vias [10.0.0.1]");
  unresolve("10.0.0.1");
  EXPECT_EQ(ribRoute("1.0.0.0/24"), "pref 5 metric 0 vias [10.0.0.5]");
  unresolve("10.0.0.5");
  EXPECT_EQ(ribRoute("1.0.0.0/24"), "");
}

TEST_F(RouteStatusSmTest, MostPreferredTypeFailingWithoutBfdFallsToTheNextPreference) {
  h.intfIs("Ethernet1");
  auto route = h.routeIs(*h.config, "2.0.0.0/24");
  route->viaIs(StaticRouteHarness::via("10.0.0.1", "Ethernet1"), {});  // type 1
  route->viaIs(StaticRouteHarness::via("10.0.0.2"), {});               // type 2
  h.routeIs(*h.config, "2.0.0.0/24", 7)->viaIs(StaticRouteHarness::via("10.0.0.7"), {});
  start();
  rib.reportUnresolved(keyOf("10.0.0.1"));
  rib.report(keyOf("10.0.0.2"));
  resolve("10.0.0.7");
  EXPECT_EQ(ribRoute("2.0.0.0/24"), "pref 7 metric 0 vias [10.0.0.7]")
      << "type 2 is not the most preferred type and is not BFD tracked";
  resolve("10.0.0.1");
  EXPECT_EQ(ribRoute("2.0.0.0/24"), "pref 1 metric 0 vias [10.0.0.1]") << "only the first type's via";
}

TEST_F(RouteStatusSmTest, OnlyTheLowestMetricViasAreInstalled) {
  auto route = h.routeIs(*h.config, "3.0.0.0/24");
  route->viaIs(StaticRouteHarness::via("10.0.0.1"), RouteViaAttr(10, 0));
  route->viaIs(StaticRouteHarness::via("10.0.0.2"), RouteViaAttr(10, 0));
  route->viaIs(StaticRouteHarness::via("10.0.0.3"), RouteViaAttr(20, 0));
  start();
  for (char const* hop : {"10.0.0.1", "10.0.0.2", "10.0.0.3"}) rib.report(keyOf(hop));
  reported();
  auto const text = ribRoute("3.0.0.0/24");
  EXPECT_TRUE(text == "pref 1 metric 10 vias [10.0.0.1 10.0.0.2]" || text == "pref 1 metric 10 vias [10.0.0.2 10.0.0.1]")
      << text;
}

TEST_F(RouteStatusSmTest, LabelledViaThrowsOutUnlabelledOnes) {
  h.mpls->mplsRoutingIs(true);
  auto route = h.routeIs(*h.config, "4.0.0.0/24");
  route->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  auto labelled = StaticRouteHarness::via("10.0.0.2");
  labelled.mplsLabelIs(Ondex::MplsLabel(30));
  route->viaIs(labelled, {});
  route->viaIs(StaticRouteHarness::via("10.0.0.3"), {});
  start();
  for (char const* hop : {"10.0.0.1", "10.0.0.2", "10.0.0.3"}) rib.report(keyOf(hop));
  reported();
  EXPECT_EQ(ribRoute("4.0.0.0/24"), "pref 1 metric 0 vias [10.0.0.2]");
}

TEST_F(RouteStatusSmTest, UndeterminedViaHoldsThePreviousEntry) {
  auto route = h.routeIs(*h.config, "5.0.0.0/24");
  route->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  start();
  resolve("10.0.0.1");
  EXPECT_EQ(ribRoute("5.0.0.0/24"), "pref 1 metric 0 vias [10.0.0.1]");
  // A new via the RIB has not spoken of yet: the old entry stands, whatever else resolves.
  route->viaIs(StaticRouteHarness::via("10.0.0.2"), {});
  runToIdle();
  reported();
  EXPECT_EQ(ribRoute("5.0.0.0/24"), "pref 1 metric 0 vias [10.0.0.1]");
  resolve("10.0.0.2");
  auto const text = ribRoute("5.0.0.0/24");
  EXPECT_TRUE(text == "pref 1 metric 0 vias [10.0.0.1 10.0.0.2]" || text == "pref 1 metric 0 vias [10.0.0.2 10.0.0.1]")
      << text;
}

TEST_F(RouteStatusSmTest, SixHundredViasAtMost) {
  auto route = h.routeIs(*h.config, "6.0.0.0/16");
  for (unsigned i = 0; i < 601; ++i) {
    std::string hop = "10.1." + std::to_string(i / 250) + "." + std::to_string(i % 250 + 1);
    route->viaIs(StaticRouteHarness::via(hop.c_str()), RouteViaAttr(5, 0));
  }
  start();
  for (auto it = h.ipViaConfig->viaIteratorConst(); it; it.advance()) rib.report(it.key());
  runToIdle();
  Routing::Rib::RouteKey const key(h.vrfId, pfx("6.0.0.0/16"));
  ASSERT_TRUE(rib.ribConfig->routeHas(key));
  auto const set = rib.viaSetConfig->configViaSetColl()->viaSet(rib.ribConfig->route(key).viaSetKey());
  EXPECT_EQ(set.viaCount(), 600u) << "the 601st via is left out";
}

TEST_F(RouteStatusSmTest, RestartKeepsOldEntriesUntilTheFirstReviewThenWithdrawsTheStale) {
  // Entries a previous life left: one route that is still configured and one that is not.
  Routing::Rib::Route stale;
  stale.routeKeyIs(Routing::Rib::RouteKey(h.vrfId, pfx("7.0.0.0/8")));
  rib.ribConfig->routeAdd(stale);
  Routing::Rib::Route kept;
  kept.routeKeyIs(Routing::Rib::RouteKey(h.vrfId, pfx("8.0.0.0/8")));
  rib.ribConfig->routeAdd(kept);
  h.grState = Routing::Protocol::GrState::GrStateIs(true);
  h.routeIs(*h.config, "8.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  start();
  EXPECT_TRUE(rib.ribConfig->routeHas(stale.routeKey())) << "nothing reviewed during the restart";
  EXPECT_TRUE(rib.viaSetConfig->restartingVrfHas(h.vrfName));
  h.grState->startReadyVerificationIs(true);
  runToIdle();
  EXPECT_FALSE(rib.ribConfig->routeHas(stale.routeKey()));
  EXPECT_FALSE(rib.viaSetConfig->restartingVrfHas(h.vrfName));
  EXPECT_TRUE(h.ready->v4RouteReviewComplete());
  resolve("10.0.0.1");
  EXPECT_EQ(ribRoute("8.0.0.0/8"), "pref 1 metric 0 vias [10.0.0.1]");
}

TEST_F(RouteStatusSmTest, ZeroQuantumReviewStillAdvancesOnePrefixPerRun) {
  for (int i = 0; i < 5; ++i) {
    std::string p = "9.0." + std::to_string(i) + ".0/24";
    h.routeIs(*h.config, p.c_str(), 1, Routing::RouteType::drop);
  }
  h.start(scheduler());
  runToIdle();
  rs = rib.routeStatusSmIs(h.vrfName, h.af, h.vrfId, h.status, h.ipViaConfig, scheduler(), h.ready);
  rs->reviewQuantumIs(0);
  auto const runsBefore = rs->reviewAllRoutesTask()->taskRuns();
  runToIdle();
  EXPECT_EQ(rs->reviewAllRoutesTask()->taskRuns() - runsBefore, 5u);
  EXPECT_TRUE(rs->reviewedOnce());
}

TEST_F(RouteStatusSmTest, RouteWithNoNextHopIsInstalledWithTheFlagOfItsFamily) {
  // Route-input routes of protocol 60 with no via: FIB route type 36 and FEC type 2.
  for (auto af : {Ondex::AddressFamily::ipv4, Ondex::AddressFamily::ipv6}) {
    StaticRouteHarness in(af, "default", 0);
    in.configByUser = Routing::Input::ConfigByUser::ConfigByUserIs();
    auto input = Routing::RouteInput::RouteInputIs("agent");
    input->routingProtoIs(60);
    char const* prefix = af == Ondex::AddressFamily::ipv4 ? "11.0.0.0/8" : "2001:db8::/32";
    input->routeIs(routeKey(prefix), Routing::RouteType::forward);
    in.configByUser->configIs(input);
    in.start(scheduler(), Routing::Rib::RoutingProtocol::routeInput());
    auto sm = rib.routeStatusSmIs(in.vrfName, in.af, in.vrfId, in.status, in.ipViaConfig, scheduler(), nullptr,
                                  Routing::Rib::RoutingProtocol::routeInput());
    runToIdle();
    EXPECT_EQ(rib.routeOf(0, prefix, *in.ipViaConfig),
              std::string("pref 1 metric 4294967295 vias [] flags ") + (af == Ondex::AddressFamily::ipv4 ? "2" : "4"));
    sm = nullptr;
    in.stop();
  }
}

TEST_F(RouteStatusSmTest, WithViaWeightChangeOffAnUnreportedViaCountsAsUnresolved) {
  Zel::toggleStateResetForTest();
  ASSERT_TRUE(Zel::toggleStateIs("ViaWeightChange", false));
  auto route = h.routeIs(*h.config, "15.0.0.0/24");
  route->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  start();
  resolve("10.0.0.1");
  EXPECT_EQ(ribRoute("15.0.0.0/24"), "pref 1 metric 0 vias [10.0.0.1]");
  route->viaIs(StaticRouteHarness::via("10.0.0.2"), {});
  runToIdle();
  EXPECT_EQ(ribRoute("15.0.0.0/24"), "pref 1 metric 0 vias [10.0.0.1]") << "the new via is left out, not waited for";
  EXPECT_EQ(rs->routeBacklogTask()->taskRuns(), 0u) << "changes are handled at once, without the backlog";
  Zel::toggleStateResetForTest();
}

TEST_F(RouteStatusSmTest, EvpnViaNeedsItsVtepReachable) {
  start();
  using Routing::Rib::ViaKey;
  using Routing::Rib::ViaMetric;
  auto const evpn = Routing::Rib::Transport::transportEvpn();
  auto const v4 = Routing::Rib::Transport::transportIpv4();
  auto const proto = Routing::Rib::RoutingProtocol::staticConfig();
  ViaKey const evpnKey(7, 0, proto, evpn);
  ViaKey const vtepKey(8, 0, proto, v4);
  EXPECT_EQ(rs->validEvpnVia(evpnKey, vtepKey), Routing::Protocol::unresolved) << "no EVPN table";
  rib.report(evpnKey, 10);
  EXPECT_EQ(rs->validEvpnVia(evpnKey, ViaKey()), Routing::Protocol::unresolved) << "no VTEP via key";
  EXPECT_EQ(rs->validEvpnVia(evpnKey, vtepKey), Routing::Protocol::unresolved) << "VTEP not reported";
  rib.report(vtepKey, 3);
  EXPECT_EQ(rs->validEvpnVia(evpnKey, vtepKey), Routing::Protocol::resolved);
  rib.tableOf(vtepKey)->viaMetricIs(vtepKey, ViaMetric(vtepKey, 1, ViaMetric::kUnresolvedPreference));
  EXPECT_EQ(rs->validEvpnVia(evpnKey, vtepKey), Routing::Protocol::unresolved) << "unresolved VTEP";
  rib.tableOf(vtepKey)->viaMetricIs(vtepKey, ViaMetric(vtepKey, 1, 1));
  EXPECT_EQ(rs->validEvpnVia(evpnKey, vtepKey), Routing::Protocol::resolved);
  rib.reportUnresolved(evpnKey);
  EXPECT_EQ(rs->validEvpnVia(evpnKey, vtepKey), Routing::Protocol::unresolved) << "unresolved EVPN via";
}

TEST_F(RouteStatusSmTest, BfdTrackedViaFollowsItsSessionAndIsRecordedPerPeer) {
  rib.bfdTrackedRoutesList = Routing::BfdTrackedStaticRoutesList::BfdTrackedStaticRoutesListIs(h.vrfName);
  auto tracked = StaticRouteHarness::via("10.0.0.1");
  auto route = h.routeIs(*h.config, "12.0.0.0/8");
  route->viaIs(tracked, {});
  route->bfdTrackedIs(tracked);
  start();
  resolve("10.0.0.1");
  Routing::BfdStatusKey const peer(addr("10.0.0.1"), Ondex::IntfId());
  auto bla = rib.bfdTrackedRoutesList->route(peer);
  ASSERT_TRUE(bla);
  auto session = bla->bfdRoute(Ondex::IpGenAddr());
  ASSERT_TRUE(session);
  EXPECT_TRUE(session->dependantRoute(routeKey("12.0.0.0/8"))->trackedViaHas(tracked));
  EXPECT_EQ(ribRoute("12.0.0.0/8"), "") << "a new session starts down";

  session->resolvedIntfIs(Ondex::IntfId("Ethernet1"));
  session->statusIs(true);
  runToIdle();
  EXPECT_EQ(ribRoute("12.0.0.0/8"), "pref 1 metric 0 vias [10.0.0.1]");
  session->statusIs(false);
  runToIdle();
  EXPECT_EQ(ribRoute("12.0.0.0/8"), "");

  // The via is no longer tracked: the session record goes with its last route.
  route->bfdTrackedDel(tracked);
  runToIdle();
  EXPECT_FALSE(rib.bfdTrackedRoutesList->routeHas(peer));
  EXPECT_EQ(ribRoute("12.0.0.0/8"), "pref 1 metric 0 vias [10.0.0.1]");
}

TEST_F(RouteStatusSmTest, ReportOnAViaSharedByRoutesOfTwoVrfsReachesBoth) {
  StaticRouteHarness red(Ondex::AddressFamily::ipv4, "red", 5, &h);
  h.routeIs(*h.config, "13.0.0.0/8")->viaIs(StaticRouteHarness::via("10.0.0.1"), {});
  auto leaving = StaticRouteHarness::via("10.0.0.1");
  leaving.egressVrfIs("default");
  red.routeIs(*red.config, "14.0.0.0/8")->viaIs(leaving, {});
  start();
  red.start(scheduler());
  auto redRs = rib.routeStatusSmIs(red.vrfName, red.af, red.vrfId, red.status, red.ipViaConfig, scheduler());
  runToIdle();
  ASSERT_EQ(h.ipViaConfig->viaSize(), 1u) << "one via in the default VRF, used from both";
  resolve("10.0.0.1");
  EXPECT_EQ(ribRoute("13.0.0.0/8"), "pref 1 metric 0 vias [10.0.0.1]");
  EXPECT_EQ(rib.routeOf(red.vrfId, "14.0.0.0/8", *h.ipViaConfig), "pref 1 metric 0 vias [10.0.0.1]");
  unresolve("10.0.0.1");
  EXPECT_EQ(ribRoute("13.0.0.0/8"), "");
  EXPECT_EQ(rib.routeOf(red.vrfId, "14.0.0.0/8", *h.ipViaConfig), "");
  redRs = nullptr;
  red.stop();
}

}  // namespace
}  // namespace BowlineTest
