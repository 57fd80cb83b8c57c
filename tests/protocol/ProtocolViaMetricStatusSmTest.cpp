// The via metric machine: the reverse index from vias to the route preferences of any VRF that use
// them, kept through every change of the store, the bumps of routeChangedVersion on new vias and
// on RIB reports, and a teardown that releases everything. Each scenario runs for both families.
#include "protocol/ProtocolViaMetricStatusSm.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/rib/IpViaConfig.h"
#include "support/RuntimeFixture.h"

namespace Routing::Protocol {
namespace {

using Rib::ViaKey;
using Vrf::VrfIdMap::VrfId;

// The store, the RIB's via metric tree and via table of one family, and the machine between them.
struct World {
  explicit World(bool v6)
      : v6(v6),
        af(v6 ? Ondex::AddressFamily::ipv6 : Ondex::AddressFamily::ipv4),
        vias(Rib::Ip::ViaConfig::ViaConfigIs(Rib::RoutingProtocol::staticConfig(), Rib::Transport::fromAf(af))) {}

  [[nodiscard]] Ondex::IpGenPrefix prefix(int n) const {
    std::string const text = v6 ? "2001:db8:" + std::to_string(n) + "::/48" : "10." + std::to_string(n) + ".0.0/16";
    return *Ondex::IpGenPrefix::fromString(text);
  }
  [[nodiscard]] DedupViaKeyPtr via(int n, VrfId vrf) const {
    std::string const hop = v6 ? "2001:db8:ff::" + std::to_string(n) : "192.0.2." + std::to_string(n);
    return vias->dedupViaIs(Rib::ViaContent(*Ondex::IpGenAddr::fromString(hop), Ondex::IntfId()), vrf);
  }
  Quill::Ptr<RoutePref> pref(VrfId vrf, int route, int preference) const {
    return dir->statusIs(RouteStatusKey{vrf, af})->routeIs(prefix(route))->routePrefIs(RoutePreference(preference));
  }
  [[nodiscard]] int version(VrfId vrf, int route) const {
    return dir->status(RouteStatusKey{vrf, af})->route(prefix(route))->routeChangedVersion();
  }
  [[nodiscard]] PrefixPrefVrfId user(VrfId vrf, int route, int preference) const {
    return PrefixPrefVrfId{prefix(route), RoutePreference(preference), vrf};
  }
  // The index entry of a via, sorted; empty when the machine keeps no entry.
  [[nodiscard]] std::vector<PrefixPrefVrfId> users(DedupViaKeyPtr const& via) const {
    std::vector<PrefixPrefVrfId> out;
    if (auto entry = sm->routeByViaKey(via->viaKey())) {
      for (auto it = entry->route().iterator(); it; it.advance()) out.push_back(it.key());
    }
    std::sort(out.begin(), out.end());
    return out;
  }
  void report(DedupViaKeyPtr const& via, RouteMetric metric) const {
    ViaKey const& k = via->viaKey();
    metrics->leafIs(k.vrfId(), k.transport(), k.routingProtocol())->viaMetricIs(k, Rib::ViaMetric(k, metric, 1));
  }

  bool v6;
  Ondex::AddressFamily af;
  Quill::Ptr<Rib::Ip::ViaConfig> vias;
  Quill::Ptr<Rib::ViaMetricStatusByVrf> metrics = Rib::ViaMetricStatusByVrf::ViaMetricStatusByVrfIs();
  Quill::Ptr<RouteStatusDir> dir = RouteStatusDir::RouteStatusDirIs();
  Quill::Ptr<ViaMetricStatusSm> sm;
};

class ProtocolViaMetricStatusSmTest : public BowlineTest::RuntimeFixture, public ::testing::WithParamInterface<bool> {};

using Users = std::vector<PrefixPrefVrfId>;
VrfId const vrf0(0), vrf1(1), vrf2(2);

TEST_P(ProtocolViaMetricStatusSmTest, IndexFollowsTheStoreAndNewViasBumpOncePerPreference) {
  {
    World w(GetParam());
    auto const v1 = w.via(1, vrf0);
    auto const v2 = w.via(2, vrf0);
    w.pref(vrf0, 1, 1)->dedupViaKeyIs(viaNextHopOnly, v1, 1);
    w.sm = ViaMetricStatusSm::ViaMetricStatusSmIs(w.metrics, w.dir);
    EXPECT_TRUE(w.sm->initialized());
    EXPECT_EQ(w.users(v1), (Users{w.user(vrf0, 1, 1)})) << "step 1: what the store held at start is indexed";
    EXPECT_EQ(w.version(vrf0, 1), 1) << "step 1: and reviewed once";

    w.pref(vrf0, 1, 2)->dedupViaKeyIs(viaNextHopOnly, v1, 1);
    w.pref(vrf0, 2, 1)->dedupViaKeyIs(viaDefault, v1, 1);
    EXPECT_EQ(w.users(v1), (Users{w.user(vrf0, 1, 1), w.user(vrf0, 1, 2), w.user(vrf0, 2, 1)})) << "step 2";
    EXPECT_EQ(w.version(vrf0, 1), 2) << "step 2: one bump per preference that adds the via";
    EXPECT_EQ(w.version(vrf0, 2), 1) << "step 2";

    w.pref(vrf0, 1, 1)->dedupViaKeyIs(viaNextHopOnly, v1, 7);
    EXPECT_EQ(w.version(vrf0, 1), 2) << "step 3: a known via stored again is not new";

    auto const pref1 = w.pref(vrf0, 1, 1);
    pref1->dedupViaKeyIs(viaDefault, v1, 1);
    pref1->dedupViaKeyDel(viaNextHopOnly, v1->viaKey());
    EXPECT_FALSE(pref1->dedupViaKeyByViaTypeHas(viaNextHopOnly));
    EXPECT_EQ(w.users(v1).size(), 3u) << "step 4: a via moving between types keeps its entry";
    EXPECT_EQ(w.version(vrf0, 1), 2) << "step 4: and the move bumps nothing";

    w.pref(vrf0, 1, 2)->dedupViaKeyDel(viaNextHopOnly, v1->viaKey());
    EXPECT_EQ(w.users(v1), (Users{w.user(vrf0, 1, 1), w.user(vrf0, 2, 1)})) << "step 5: a removed via leaves";

    pref1->dedupViaKeyIs(viaIntfOnly, v2, 1);
    EXPECT_EQ(w.version(vrf0, 1), 3) << "step 6";
    pref1->dedupViaKeyByViaTypeDel(viaIntfOnly);  // the type goes with its via still in it
    EXPECT_TRUE(w.users(v2).empty()) << "step 6: the vias of a removed type leave";
    EXPECT_FALSE(w.sm->routeByViaKeyHas(v2->viaKey()));

    w.dir->status(RouteStatusKey{vrf0, w.af})->route(w.prefix(1))->routePrefDel(RoutePreference(1));
    EXPECT_EQ(w.users(v1), (Users{w.user(vrf0, 2, 1)})) << "step 7: a removed preference leaves";
    w.dir->status(RouteStatusKey{vrf0, w.af})->routeDel(w.prefix(2));
    EXPECT_FALSE(w.sm->routeByViaKeyHas(v1->viaKey())) << "step 7: the last user gone, the entry goes";
    EXPECT_EQ(w.sm->routeByViaKeySize(), 0u);
  }
  EXPECT_EQ(liveSinceStart(), 0);
}

TEST_P(ProtocolViaMetricStatusSmTest, ReportsBumpEveryUserAcrossVrfs) {
  {
    World w(GetParam());
    w.sm = ViaMetricStatusSm::ViaMetricStatusSmIs(w.metrics, w.dir);
    auto const shared = w.via(1, vrf1);  // a via of VRF 1 ...
    auto const unused = w.via(2, vrf1);
    w.pref(vrf2, 1, 1)->dedupViaKeyIs(viaNextHopOnly, shared, 1);  // ... used by VRF 2 twice
    w.pref(vrf2, 1, 2)->dedupViaKeyIs(viaNextHopOnly, shared, 1);
    w.pref(vrf1, 3, 1)->dedupViaKeyIs(viaNextHopOnly, shared, 1);
    ASSERT_EQ(w.version(vrf2, 1), 2);
    ASSERT_EQ(w.version(vrf1, 3), 1);

    w.report(unused, 10);
    EXPECT_EQ(w.version(vrf2, 1), 2) << "step 1: a via nobody uses changes nothing";
    EXPECT_EQ(w.version(vrf1, 3), 1) << "step 1";

    w.report(shared, 10);
    EXPECT_EQ(w.version(vrf2, 1), 4) << "step 2: the index spans VRFs; one bump per preference entry";
    EXPECT_EQ(w.version(vrf1, 3), 2) << "step 2";
    w.report(shared, 20);
    EXPECT_EQ(w.version(vrf2, 1), 6) << "step 3: every change is reported";
    w.report(shared, 20);
    EXPECT_EQ(w.version(vrf2, 1), 6) << "step 3: an unchanged metric is no report";

    w.metrics->vrfStatus(vrf1)->transportStatus(shared->viaKey().transport())->protocolStatusDel(
        shared->viaKey().routingProtocol());
    w.report(shared, 30);
    EXPECT_EQ(w.version(vrf2, 1), 8) << "step 4: a table that comes back is watched again";

    w.dir->statusDel(RouteStatusKey{vrf2, w.af});
    EXPECT_EQ(w.users(shared), (Users{w.user(vrf1, 3, 1)})) << "step 5: VRF 2's Status gone, its entries go";
    w.report(shared, 40);
    EXPECT_EQ(w.version(vrf1, 3), 5) << "step 5: the users left are still told";
    w.dir->statusDel(RouteStatusKey{vrf1, w.af});
    EXPECT_EQ(w.sm->routeByViaKeySize(), 0u) << "step 6";
    w.report(shared, 50);  // nobody left to tell
  }
  EXPECT_EQ(liveSinceStart(), 0);
}

TEST_P(ProtocolViaMetricStatusSmTest, TeardownLeavesTheInputsAndReleasesEverything) {
  {
    World w(GetParam());
    auto const v1 = w.via(1, vrf0);
    w.report(v1, 10);
    w.pref(vrf0, 1, 1)->dedupViaKeyIs(viaNextHopOnly, v1, 1);
    w.sm = ViaMetricStatusSm::ViaMetricStatusSmIs(w.metrics, w.dir);
    ASSERT_TRUE(w.sm->vmsByTransportHas(vrf0));
    ASSERT_EQ(w.sm->routeStatusSize(), 1u);
    ASSERT_EQ(w.version(vrf0, 1), 1);

    w.sm = nullptr;
    EXPECT_FALSE(w.dir->publisher().hasSubscribers()) << "nothing watches the store any more";
    EXPECT_FALSE(w.metrics->publisher().hasSubscribers());
    w.report(v1, 20);
    w.pref(vrf0, 1, 1)->dedupViaKeyIs(viaDefault, w.via(2, vrf0), 1);
    EXPECT_EQ(w.version(vrf0, 1), 1) << "a released machine reacts to nothing";
    EXPECT_TRUE(w.dir->status(RouteStatusKey{vrf0, w.af})->route(w.prefix(1))) << "the store is the writers'";
    runToIdle();
  }
  EXPECT_EQ(liveSinceStart(), 0) << "machines, index entries, records and via handles all released";
}

INSTANTIATE_TEST_SUITE_P(Families, ProtocolViaMetricStatusSmTest, ::testing::Values(false, true),
                         [](auto const& info) { return info.param ? "Ipv6" : "Ipv4"; });

}  // namespace
}  // namespace Routing::Protocol
