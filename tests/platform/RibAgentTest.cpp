// RibAgent on its own: the test writes vias, via sets and routes into the tables as the route
// machines would, flips interfaces, VRFs and overrides, runs the scheduler to idle and reads the
// via metric reports the agent wrote.
#include "platform/RibAgent.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

using namespace Routing::Rib;
using Platform::InterfaceAgent;
using Platform::RibAgent;

Ondex::IpGenAddr ip(char const* text) { return *Ondex::IpGenAddr::fromString(text); }
Ondex::IpGenPrefix prefix(char const* text) { return *Ondex::IpGenPrefix::fromString(text); }

class RibAgentTest : public RuntimeFixture {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
    vrfs = Platform::VrfAgent::VrfAgentIs();
    vrfs->vrfIs("default", 0);
    intfs = InterfaceAgent::InterfaceAgentIs();
    intfs->intfIs({Ondex::IntfId("Ethernet1"), "default", {{ip("10.0.0.1"), 24}, {ip("2001:db8::1"), 64}}});
    v4Vias = Routing::Rib::Ip::ViaConfig::ViaConfigIs(RoutingProtocol::staticConfig(), Transport::transportIpv4());
    v6Vias = Routing::Rib::Ip::ViaConfig::ViaConfigIs(RoutingProtocol::staticConfig(), Transport::transportIpv6());
    evpnVias = Evpn::ViaConfig::ViaConfigIs(RoutingProtocol::staticConfig());
    routes = RouteConfig::RouteConfigIs();
    viaSets = ViaSetConfig::ViaSetConfigIs(ViaSetConfigKey(RoutingProtocol::staticConfig()));
    RibAgent::Inputs in;
    in.ipViaConfigs = {v4Vias, v6Vias};
    in.evpnViaConfigs = {evpnVias};
    in.routeTables = {{Ondex::AddressFamily::ipv4, RoutingProtocol::staticConfig(), routes, viaSets},
                      {Ondex::AddressFamily::ipv6, RoutingProtocol::staticConfig(), routes, viaSets}};
    in.interfaceAgent = intfs;
    in.vrfAgent = vrfs;
    in.configuredWith = [this](Vrf::VrfIdMap::VrfId vrf, Ondex::IpGenAddr const& hop, Ondex::IpGenPrefix const& p) {
      return configured.count({vrf, hop, p}) > 0;
    };
    in.scheduler = scheduler();
    rib = RibAgent::RibAgentIs(in);
    runToIdle();
  }
  void TearDown() override {
    rib = nullptr;
    handles.clear();
    setHandles.clear();
    RuntimeFixture::TearDown();
  }

  // A via of the VRF, held for the test's life.
  ViaKey via(char const* hop, char const* intf = "", Vrf::VrfIdMap::VrfId vrf = 0, std::uint32_t flags = 0) {
    Ondex::IpGenAddr const a = *hop ? ip(hop) : Ondex::IpGenAddr();
    ViaContent content(a, *intf ? Ondex::IntfId(intf) : Ondex::IntfId(), ViaContent::kNoLabel, flags);
    auto& table = (a.isV6() ? v6Vias : v4Vias);
    handles.push_back(table->dedupViaIs(content, vrf));
    return handles.back()->viaKey();
  }
  // Installs a route as RouteStatusSm would: its via set, then the route.
  void routeIs(char const* pfx, std::vector<ViaKey> const& vias, std::uint8_t pref = 1, Routing::RouteMetric metric = 0,
               Vrf::VrfIdMap::VrfId vrf = 0) {
    Skein::ViaSet set;
    for (std::uint32_t i = 0; i < vias.size(); ++i) set.viaKeyIs(Skein::ViaIndex(i), vias[i]);
    setHandles.push_back(viaSets->dedupConfigViaSetIs(set));
    Route r(RouteKey(vrf, prefix(pfx)));
    r.routingProtocolIs(RoutingProtocol::staticConfig());
    r.metricPrefIs(Routing::MetricPref(metric, pref));
    r.viaSetKeyIs(setHandles.back()->viaSetKey());
    routes->routeAdd(r);
  }
  void routeDel(char const* pfx, Vrf::VrfIdMap::VrfId vrf = 0) { routes->routeDel(RouteKey(vrf, prefix(pfx))); }

  // The report on a via: "metric M pref P", "unresolved", "unresolved looping", or "none".
  std::string report(ViaKey const& key) {
    auto const leaf = rib->viaMetricStatusByVrf()->leaf(key.vrfId(), key.transport(), key.routingProtocol());
    if (!leaf || !leaf->viaMetricHas(key)) return "none";
    ViaMetric const m = leaf->viaMetric(key);
    if (!m.isResolved()) return m.looping() ? "unresolved looping" : "unresolved";
    return "metric " + std::to_string(m.metric()) + " pref " + std::to_string(m.preference());
  }

  Quill::Ptr<Platform::VrfAgent> vrfs;
  Quill::Ptr<InterfaceAgent> intfs;
  Quill::Ptr<Routing::Rib::Ip::ViaConfig> v4Vias, v6Vias;
  Quill::Ptr<Evpn::ViaConfig> evpnVias;
  Quill::Ptr<RouteConfig> routes;
  Quill::Ptr<ViaSetConfig> viaSets;
  Quill::Ptr<RibAgent> rib;
  // What the agent's configuredWith answers: (VRF, next hop, prefix) configured together.
  std::set<std::tuple<Vrf::VrfIdMap::VrfId, Ondex::IpGenAddr, Ondex::IpGenPrefix>> configured;
  std::vector<Quill::Ptr<DedupViaKey>> handles;
  std::vector<Quill::Ptr<DedupViaSetKey>> setHandles;
};

TEST_F(RibAgentTest, ConnectedThenRecursiveResolutionFollowsTheCoveringRoute) {
  ViaKey const onSubnet = via("10.0.0.2");
  ViaKey const onSubnet6 = via("2001:db8::2");
  ViaKey const wrongIntf = via("10.0.0.3", "Ethernet2");
  ViaKey const remote = via("20.1.1.1");
  runToIdle();
  EXPECT_EQ(report(onSubnet), "metric 0 pref 0") << "1: connected";
  EXPECT_EQ(report(onSubnet6), "metric 0 pref 0") << "1: connected, IPv6";
  EXPECT_EQ(report(wrongIntf), "unresolved") << "1: on the subnet, but of another interface";
  EXPECT_EQ(report(remote), "unresolved") << "1: nothing covers it";

  routeIs("20.0.0.0/8", {onSubnet}, 5, 7);
  runToIdle();
  EXPECT_EQ(report(remote), "metric 7 pref 5") << "2: through the /8";

  // A longer prefix whose vias resolve nothing is passed over; a usable one wins.
  ViaKey const dead = via("30.0.0.1");
  routeIs("20.1.0.0/16", {dead}, 1, 1);
  runToIdle();
  EXPECT_EQ(report(remote), "metric 7 pref 5") << "3: the /16's only via is unresolved";
  routeIs("20.1.1.0/24", {onSubnet}, 2, 3);
  runToIdle();
  EXPECT_EQ(report(remote), "metric 3 pref 2") << "4: the longest usable prefix";

  routeDel("20.1.1.0/24");
  routeDel("20.0.0.0/8");
  runToIdle();
  EXPECT_EQ(report(remote), "unresolved") << "5: the covering routes went";

  // A drop route covers but does not resolve; the drop via itself resolves.
  ViaKey const drop = via("", "Null0");
  routeIs("20.0.0.0/8", {drop});
  runToIdle();
  EXPECT_EQ(report(drop), "metric 0 pref 0") << "6";
  EXPECT_EQ(report(remote), "unresolved") << "6: drop routes resolve no next hop";
}

TEST_F(RibAgentTest, InterfaceStateDecidesConnectedAndInterfaceVias) {
  ViaKey const hop = via("10.0.0.2");
  ViaKey const intfOnly = via("", "Ethernet1");
  // A host route through an interface: its address, on no subnet, attached to the interface.
  ViaKey const attached = via("10.9.9.9", "Ethernet1", 0, ViaContent::kFlagNextHopFromHostPrefix);
  ViaKey const remote = via("20.1.1.1");
  routeIs("20.0.0.0/8", {hop}, 1, 4);
  runToIdle();
  EXPECT_EQ(report(hop), "metric 0 pref 0") << "1";
  EXPECT_EQ(report(intfOnly), "metric 0 pref 0") << "1";
  EXPECT_EQ(report(attached), "metric 0 pref 0") << "1";
  EXPECT_EQ(report(remote), "metric 4 pref 1") << "1";

  intfs->operUpIs(Ondex::IntfId("Ethernet1"), false);
  runToIdle();
  EXPECT_EQ(report(hop), "unresolved") << "2: interface down";
  EXPECT_EQ(report(intfOnly), "unresolved") << "2";
  EXPECT_EQ(report(attached), "unresolved") << "2";
  EXPECT_EQ(report(remote), "unresolved") << "2: its covering route's via went with it";

  intfs->operUpIs(Ondex::IntfId("Ethernet1"), true);
  runToIdle();
  EXPECT_EQ(report(remote), "metric 4 pref 1") << "3: back up";

  intfs->routingEnabledIs(Ondex::IntfId("Ethernet1"), false);
  runToIdle();
  EXPECT_EQ(report(hop), "unresolved") << "4: routing disabled";
  EXPECT_EQ(report(intfOnly), "unresolved") << "4";
  auto const table = intfs->ipStatus()->vrfIpIntfStatus("default");
  ASSERT_TRUE(table);
  EXPECT_FALSE(table->ipIntfStatus(Ondex::IntfId("Ethernet1"))->dpRoutingEnabled()) << "4";

  intfs->intfDel(Ondex::IntfId("Ethernet1"));
  intfs->intfIs({Ondex::IntfId("Ethernet1"), "default", {{ip("10.0.0.1"), 24}}});
  runToIdle();
  EXPECT_EQ(report(hop), "metric 0 pref 0") << "5: the interface is back";
}

TEST_F(RibAgentTest, ViaNeverResolvesThroughARouteItServesNorThroughALoop) {
  ViaKey const self = via("20.0.0.1");
  routeIs("20.0.0.0/8", {self});
  ViaKey const a = via("30.0.0.1");
  ViaKey const b = via("40.0.0.1");
  routeIs("40.0.0.0/8", {a});
  routeIs("30.0.0.0/8", {b});
  runToIdle();
  EXPECT_EQ(report(self), "unresolved looping") << "1: the only covering route is its own";
  EXPECT_EQ(report(a), "unresolved looping") << "1: a through b through a";
  EXPECT_EQ(report(b), "unresolved looping") << "1";

  // A less specific route through a connected next hop breaks both.
  routeIs("0.0.0.0/0", {via("10.0.0.9")}, 1, 9);
  runToIdle();
  EXPECT_EQ(report(self), "metric 9 pref 1") << "2: falls to the default route";
  // Each resolves through the other's /8: a walk from a refuses only what comes back to a.
  EXPECT_EQ(report(a), "metric 0 pref 1") << "2";
  EXPECT_EQ(report(b), "metric 0 pref 1") << "2";
}

// A host route through a next hop covered only by the default route, whose own next hop lies in
// that host route: a loop that a /25 breaks for one of the two. The via ids follow the order in
// which the library allocated the vias; the reports must not. The same routes are built in two
// VRFs, the vias allocated in opposite orders.
TEST_F(RibAgentTest, LoopThroughTheDefaultRouteGivesTheSameReportsWhicheverViaCameFirst) {
  vrfs->vrfIs("blue", 1);
  intfs->intfIs({Ondex::IntfId("Ethernet3"), "blue", {{ip("10.0.0.1"), 24}}});
  struct Vias {
    ViaKey host;    // 203.0.113.5, the host route's via
    ViaKey dflt;    // 198.51.100.1, the default route's via
    ViaKey direct;  // 10.0.0.19, the /25's via
  };
  auto build = [&](Vrf::VrfIdMap::VrfId vrf, bool hostFirst) {
    Vias v;
    if (hostFirst) {
      v.host = via("203.0.113.5", "", vrf);
      v.dflt = via("198.51.100.1", "", vrf);
    } else {
      v.dflt = via("198.51.100.1", "", vrf);
      v.host = via("203.0.113.5", "", vrf);
    }
    v.direct = via("10.0.0.19", "", vrf);
    routeIs("198.51.100.1/32", {v.host}, 1, 3, vrf);
    routeIs("0.0.0.0/0", {v.dflt}, 1, 7, vrf);
    routeIs("198.51.100.0/25", {v.direct}, 1, 5, vrf);
    return v;
  };
  Vias const first = build(0, true);
  Vias const second = build(1, false);
  runToIdle();
  EXPECT_LT(first.host, first.dflt) << "the two orders of allocation";
  EXPECT_LT(second.dflt, second.host) << "the two orders of allocation";
  for (Vias const& v : {first, second}) {
    // 203.0.113.5 through the default route; 198.51.100.1's walk comes back to it through the
    // host route, so it takes the /25.
    EXPECT_EQ(report(v.host), "metric 7 pref 1") << v.host;
    EXPECT_EQ(report(v.dflt), "metric 5 pref 1") << v.dflt;
    EXPECT_EQ(report(v.direct), "metric 0 pref 0") << v.direct;
  }
  EXPECT_FALSE(rib->oscillation());
}

// The floating default route: the primary's next hop is covered only by the default route, which
// is configured with that next hop, so it stays unresolved and the floating route keeps the prefix.
TEST_F(RibAgentTest, NextHopNeverResolvesThroughItsOwnRoutesPrefix) {
  struct Family {
    char const* any;
    char const* wide;
    char const* remote;
    char const* other;
    char const* onLink;
  };
  for (Family const f : {Family{"0.0.0.0/0", "10.0.0.0/8", "10.9.9.9", "10.9.9.8", "10.0.0.2"},
                         Family{"::/0", "2001:db8::/32", "2001:db8:9::9", "2001:db8:9::8", "2001:db8::2"}}) {
    SCOPED_TRACE(f.any);
    ViaKey const primary = via(f.remote);
    ViaKey const other = via(f.other);
    ViaKey const floating = via(f.onLink);
    configured.insert({0, ip(f.remote), prefix(f.any)});
    configured.insert({0, ip(f.onLink), prefix(f.any)});
    routeIs(f.any, {floating}, 200);
    runToIdle();
    EXPECT_EQ(report(floating), "metric 0 pref 0") << "1";
    EXPECT_EQ(report(primary), "unresolved") << "1: only its own route's prefix covers it";
    EXPECT_EQ(report(other), "metric 0 pref 200") << "1: the rule holds per next hop";

    configured.erase({0, ip(f.remote), prefix(f.any)});
    rib->configurationChangedIs("default");
    runToIdle();
    EXPECT_EQ(report(primary), "metric 0 pref 200") << "2: the prefix is no longer configured with it";
    configured.insert({0, ip(f.remote), prefix(f.any)});
    rib->configurationChangedIs("default");
    runToIdle();
    EXPECT_EQ(report(primary), "unresolved") << "3: configured again";

    // A more specific covering route resolves it, until that prefix is configured with it too.
    routeIs(f.wide, {floating}, 1, 4);
    runToIdle();
    EXPECT_EQ(report(primary), "metric 4 pref 1") << "4";
    configured.insert({0, ip(f.remote), prefix(f.wide)});
    rib->configurationChangedIs("default");
    runToIdle();
    EXPECT_EQ(report(primary), "unresolved") << "5: its own prefix again";
    EXPECT_EQ(report(other), "metric 4 pref 1") << "5";
  }
}

TEST_F(RibAgentTest, NextHopThroughANamedInterfaceMustBeOnItsSubnets) {
  Ondex::IntfId const e3("Ethernet3");
  intfs->intfIs({e3, "default", {{ip("10.0.3.1"), 24}, {ip("2001:db8:3::1"), 64}}});
  // 10.0.3.7 is on Ethernet3's subnet, not on Ethernet1's.
  ViaKey const pinned = via("10.0.3.7", "Ethernet1");
  ViaKey const pinned6 = via("2001:db8:3::7", "Ethernet1");
  ViaKey const onIt = via("10.0.3.7", "Ethernet3");
  ViaKey const onIt6 = via("2001:db8::7", "Ethernet1");
  ViaKey const free = via("10.0.3.7");
  ViaKey const host = via("10.9.9.9", "Ethernet3", 0, ViaContent::kFlagNextHopFromHostPrefix);
  ViaKey const unknownIntf = via("10.0.0.7", "Ethernet9");
  routeIs("10.0.0.0/8", {via("10.0.0.2")}, 1, 6);
  routeIs("2001:db8::/32", {via("2001:db8::2")}, 1, 6);
  runToIdle();
  EXPECT_EQ(report(pinned), "unresolved") << "1: on none of its interface's subnets, and no recursion";
  EXPECT_EQ(report(pinned6), "unresolved") << "1";
  EXPECT_EQ(report(onIt), "metric 0 pref 0") << "1";
  EXPECT_EQ(report(onIt6), "metric 0 pref 0") << "1";
  EXPECT_EQ(report(free), "metric 0 pref 0") << "1: connected through Ethernet3";
  EXPECT_EQ(report(host), "metric 0 pref 0") << "1: a host prefix's next hop is attached to its interface";
  EXPECT_EQ(report(unknownIntf), "unresolved") << "1: no such interface";

  intfs->operUpIs(e3, false);
  runToIdle();
  EXPECT_EQ(report(pinned), "unresolved") << "2: another interface going down changes nothing";
  EXPECT_EQ(report(pinned6), "unresolved") << "2";
  EXPECT_EQ(report(onIt), "unresolved") << "2: its interface is down, and no recursion";
  EXPECT_EQ(report(free), "metric 6 pref 1") << "2: no interface named: through the /8";
  EXPECT_EQ(report(host), "unresolved") << "2";

  intfs->operUpIs(e3, true);
  vrfs->vrfIs("red", 5);
  ViaKey const otherVrf = via("10.0.0.7", "Ethernet1", 5);
  runToIdle();
  EXPECT_EQ(report(onIt), "metric 0 pref 0") << "3: back up";
  EXPECT_EQ(report(otherVrf), "unresolved") << "3: Ethernet1 is in the default VRF, not red";
}

TEST_F(RibAgentTest, ViaThatKeepsFlippingIsFrozenUntilTheNextEpoch) {
  Ondex::IntfId const e1("Ethernet1");
  ViaKey const remote = via("20.1.1.1");
  ViaKey const hop = via("10.0.0.2");
  routeIs("20.0.0.0/8", {hop}, 1, 3);
  runToIdle();
  ASSERT_EQ(report(remote), "metric 3 pref 1") << "0";
  // Each flap flips both reports twice.
  for (std::uint32_t i = 0; i < RibAgent::kFlipLimit / 2; ++i) {
    intfs->operUpIs(e1, false);
    runToIdle();
    intfs->operUpIs(e1, true);
    runToIdle();
  }
  EXPECT_FALSE(rib->oscillation()) << "1: at the limit, not past it";
  EXPECT_EQ(report(remote), "metric 3 pref 1") << "1";

  intfs->operUpIs(e1, false);
  runToIdle();
  ASSERT_TRUE(rib->oscillation()) << "2: one flip past the limit";
  EXPECT_EQ(report(hop), "metric 0 pref 0") << "2: frozen as it stood";
  EXPECT_EQ(report(remote), "metric 3 pref 1") << "2";
  std::set<std::string> texts;
  for (auto const& o : rib->oscillations()) texts.insert(o.text());
  EXPECT_EQ(texts, (std::set<std::string>{
                       "route 20.0.0.0/8 in vrf default does not settle: via 20.1.1.1 flips between resolved and "
                       "unresolved",
                       "via 10.0.0.2 in vrf default does not settle: it flips between resolved and unresolved"}))
      << "2";

  rib->epochIs();
  EXPECT_FALSE(rib->oscillation()) << "3: a new epoch";
  runToIdle();
  EXPECT_EQ(report(hop), "unresolved") << "3: released and resolved again";
  EXPECT_EQ(report(remote), "unresolved") << "3";
  intfs->operUpIs(e1, true);
  runToIdle();
  EXPECT_EQ(report(remote), "metric 3 pref 1") << "4: counted from zero again";
  EXPECT_FALSE(rib->oscillation()) << "4";
}

TEST_F(RibAgentTest, OverridesStandUntilRemoved) {
  ViaKey const connected = via("10.0.0.2");
  ViaKey const remote = via("50.0.0.1");
  ViaKey const remoteOnIntf = via("50.0.0.1", "Ethernet1");
  runToIdle();
  rib->overrideResolvedIs("default", ip("50.0.0.1"), Ondex::IntfId(), 7, 3);
  rib->overrideUnresolvedIs("default", ip("10.0.0.2"), Ondex::IntfId());
  runToIdle();
  EXPECT_EQ(report(remote), "metric 7 pref 3") << "1";
  EXPECT_EQ(report(remoteOnIntf), "metric 7 pref 3") << "1: no interface in the override: any";
  EXPECT_EQ(report(connected), "unresolved") << "1: forced, though connected";

  rib->overrideUnresolvedIs("default", ip("50.0.0.1"), Ondex::IntfId("Ethernet1"));
  runToIdle();
  EXPECT_EQ(report(remoteOnIntf), "unresolved") << "2: the interface's own override first";
  EXPECT_EQ(report(remote), "metric 7 pref 3") << "2";

  EXPECT_TRUE(rib->overrideDel("default", ip("10.0.0.2"), Ondex::IntfId()));
  EXPECT_TRUE(rib->overrideDel("default", ip("50.0.0.1"), Ondex::IntfId()));
  EXPECT_FALSE(rib->overrideDel("default", ip("50.0.0.1"), Ondex::IntfId())) << "3: gone already";
  runToIdle();
  EXPECT_EQ(report(connected), "metric 0 pref 0") << "3";
  EXPECT_EQ(report(remote), "unresolved") << "3";
}

TEST_F(RibAgentTest, ReadinessTablesFollowTheVrfsThroughRenumbering) {
  auto const has = [&](std::uint32_t id, Transport t) {
    return bool(rib->viaMetricStatusByVrf()->leaf(id, t, RoutingProtocol::staticConfig()));
  };
  EXPECT_TRUE(has(0, Transport::transportIpv4()) && has(0, Transport::transportIpv6()) &&
              has(0, Transport::transportEvpn()))
      << "1: the default VRF's tables, before any via";
  EXPECT_TRUE(rib->loopingRouteStatusByVrf4()->vrfStatus("default") &&
              rib->loopingRouteStatusByVrf6()->vrfStatus("default"))
      << "1";

  vrfs->vrfIs("red", 5);
  runToIdle();
  EXPECT_TRUE(has(5, Transport::transportIpv4()) && has(5, Transport::transportIpv6())) << "2";
  EXPECT_TRUE(rib->loopingRouteStatusByVrf4()->vrfStatus("red")) << "2";

  intfs->intfIs({Ondex::IntfId("Ethernet5"), "red", {{ip("10.5.0.1"), 24}}});
  ViaKey const hop6 = via("10.5.0.2", "", 6);
  runToIdle();
  EXPECT_EQ(report(hop6), "none") << "3: id 6 is no VRF yet";

  vrfs->vrfIs("red", 6);
  runToIdle();
  EXPECT_FALSE(rib->viaMetricStatusByVrf()->vrfStatus(5)) << "4: the old id's tables went";
  EXPECT_TRUE(has(6, Transport::transportIpv4())) << "4";
  EXPECT_EQ(report(hop6), "metric 0 pref 0") << "4: red's interface, under its new id";
  EXPECT_TRUE(rib->loopingRouteStatusByVrf4()->vrfStatus("red")) << "4: the name stays";

  vrfs->vrfDel("red");
  runToIdle();
  EXPECT_FALSE(rib->viaMetricStatusByVrf()->vrfStatus(6)) << "5";
  EXPECT_FALSE(rib->loopingRouteStatusByVrf4()->vrfStatus("red")) << "5";
}

TEST_F(RibAgentTest, EvpnViaResolvesThroughItsVtepInTheDefaultVrf) {
  Evpn::Via content(Vxlan::VniExt(100), Ondex::EthAddr(), ip("10.0.0.7"));
  auto const onSubnet = evpnVias->dedupViaIs(content);
  Evpn::Via far(Vxlan::VniExt(200), Ondex::EthAddr(), ip("60.0.0.1"));
  auto const remote = evpnVias->dedupViaIs(far);
  runToIdle();
  EXPECT_EQ(report(onSubnet->viaKey()), "metric 0 pref 0") << "1";
  EXPECT_EQ(report(remote->viaKey()), "unresolved") << "1";
  routeIs("60.0.0.0/8", {via("10.0.0.2")}, 1, 2);
  runToIdle();
  EXPECT_EQ(report(remote->viaKey()), "metric 2 pref 1") << "2: a default-VRF route covers the VTEP";
}

}  // namespace
}  // namespace BowlineTest
