// The contract every value type keeps, written once and run over each of them: equality is an
// equivalence, the order (where the type has one) is a strict weak order that agrees with equality,
// the hash agrees with equality and covers every field, copies compare and hash alike, and the
// Value('...') text form reads back to the same value. Each type gives distinct samples in its own
// ascending order, pairs of equal values built in different ways, and the text of one sample.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "foundations/records/BfdTrackedStaticRoutes.h"
#include "foundations/records/NexthopGroupEntryStatus.h"
#include "foundations/records/RouteAttributes.h"
#include "foundations/records/RouteKey.h"
#include "foundations/records/RouteViaAttr.h"
#include "foundations/records/Via.h"
#include "foundations/rib/EvpnVia.h"
#include "foundations/rib/IgpResult.h"
#include "foundations/rib/ResolutionRibProfileConfig.h"
#include "foundations/rib/RibRoute.h"
#include "foundations/rib/Via.h"
#include "foundations/rib/ViaSet.h"
#include "foundations/rib/ViaSetConfigKey.h"
#include "leak/ProtocolRouteLeak.h"
#include "platform/BfdRecords.h"
#include "protocol/ProtocolContainerKey.h"
#include "protocol/ProtocolRouteStatus.h"

namespace BowlineTest {
namespace {

using Ondex::AddressFamily;
using Ondex::IpGenAddr;
using Ondex::IpGenPrefix;
using Vrf::VrfIdMap::VrfId;

IpGenAddr addr(std::string_view text) { return IpGenAddr::fromString(text).value(); }
IpGenPrefix pfx(std::string_view text) { return IpGenPrefix::fromString(text).value(); }
Ondex::EthAddr mac(std::string_view text) { return Ondex::EthAddr::fromString(text).value(); }

// What a type gives the suite. `ascending` holds distinct values, in the type's order when it has
// one; `equal` holds pairs of equal values built apart; `text` is the text form of `ascending[1]`,
// empty for a type without one.
template <class T>
struct Samples {
  std::vector<T> ascending;
  std::vector<std::pair<T, T>> equal;
  std::string text;
};
template <class T>
Samples<T> samples();

template <>
Samples<AddressFamily> samples() {
  return {{AddressFamily(), AddressFamily::ipv4, AddressFamily::ipv6, AddressFamily(9)}, {}, "'ipv4'"};
}
template <>
Samples<IpGenAddr> samples() {
  return {{IpGenAddr(), addr("0.0.0.0"), addr("10.0.0.2"), addr("10.0.0.10"), addr("::"), addr("::2"),
           addr("2001:db8::1")},
          {{addr("2001:db8::1"), addr("2001:0DB8:0000::1")}, {addr("10.0.0.1"), IpGenAddr::fromV4(0x0a000001)}},
          "'0.0.0.0'"};
}
template <>
Samples<IpGenPrefix> samples() {
  return {{IpGenPrefix(), pfx("0.0.0.0/0"), pfx("10.0.0.0/8"), pfx("10.0.0.0/16"), pfx("11.0.0.0/8"), pfx("::/0"),
           pfx("2001:db8::/32"), pfx("2001:db8::1/128")},
          {{pfx("10.1.2.3/8"), pfx("10.0.0.0/8")}, {pfx("2001:db8::ff/32"), pfx("2001:db8::/32")}},
          "'0.0.0.0/0'"};
}
template <>
Samples<Ondex::EthAddr> samples() {
  return {{Ondex::EthAddr(), mac("02:00:00:00:00:01"), mac("02:00:00:00:00:99"), mac("02:00:00:00:01:00")},
          {},
          "'02:00:00:00:00:01'"};
}
template <>
Samples<Ondex::IntfId> samples() {
  return {{Ondex::IntfId(), Ondex::IntfId("Ethernet1"), Ondex::IntfId("Ethernet10"), Ondex::IntfId("Ethernet2"),
           Ondex::IntfId("Vlan5")},
          {{Ondex::IntfId("Ethernet1"), Ondex::IntfId(std::string("Ether") + "net1")}},
          "'Ethernet1'"};
}
template <>
Samples<Ondex::MplsLabel> samples() {
  return {{Ondex::MplsLabel(0), Ondex::MplsLabel(16), Ondex::MplsLabel(1048575), Ondex::MplsLabel()}, {}, "16"};
}
template <>
Samples<Vxlan::VniExtOrNone> samples() {
  return {{Vxlan::VniExtOrNone(0), Vxlan::VniExtOrNone(10), Vxlan::VniExtOrNone(16777215), Vxlan::VniExtOrNone()},
          {{Vxlan::VniExtOrNone(Vxlan::VniExt(10)), Vxlan::VniExtOrNone(10)}},
          "10"};
}
template <>
Samples<L3::VrfName> samples() {
  return {{L3::VrfName(), L3::VrfName("Red"), L3::VrfName("blue"), L3::VrfName("default"), L3::VrfName("it's")},
          {{L3::VrfName("red"), L3::VrfName(std::string("re") + "d")}},
          "'Red'"};
}
template <>
Samples<Routing::RoutePreference> samples() {
  return {{Routing::RoutePreference(0), Routing::RoutePreference(1), Routing::RoutePreference(255)},
          {{Routing::RoutePreference(), Routing::RoutePreference(1)}},
          "1"};
}
template <>
Samples<VrfId> samples() {
  return {{VrfId(0), VrfId(7), VrfId::none()}, {}, "7"};
}
template <>
Samples<Routing::RouteKey> samples() {
  using Routing::RouteKey;
  return {{RouteKey(), RouteKey(pfx("10.0.0.0/8")), RouteKey(pfx("10.0.0.0/8"), Routing::RoutePreference(200)),
           RouteKey(pfx("10.0.0.0/16")), RouteKey(pfx("::/0"), Routing::RoutePreference(0))},
          {{RouteKey(pfx("10.9.9.9/8")), RouteKey(pfx("10.0.0.0/8"), Routing::RoutePreference(1))}},
          "Value('Routing::RouteKey', ** {'prefix': '10.0.0.0/8', 'preference': 1})"};
}
template <>
Samples<Routing::Via> samples() {
  using Routing::Via;
  Via const hop(addr("10.0.0.1"));
  // Field by field: a label or a VNI sorts before none, any other field set sorts after its default.
  return {{Via(), Via(hop).mplsLabelIs(Ondex::MplsLabel(16)), Via(hop).vniIs(Vxlan::VniExt(10)), hop,
           Via(hop).localAddrIs(addr("10.0.0.9")), Via(hop).egressVrfIs(L3::VrfName("red")),
           Via(hop).routerMacIs(mac("02:00:00:00:00:99")), Via(hop).vtepAddrIs(addr("192.0.2.1")),
           Via(hop).vtepSipValidationIs(true), Via(hop).intfIdIs(Ondex::IntfId("Ethernet1")), Via(addr("10.0.0.2"))},
          {{Via(hop).localAddrIs(addr("10.0.0.9")).localAddrDel(), hop}},
          "Value('Routing::Via', ** {'hop': '10.0.0.1', 'intfId': '', 'mplsLabel': 16, 'vni': 4294967295, "
          "'vtepSipValidation': False, 'vtepAddr': '', 'routerMac': '00:00:00:00:00:00', 'egressVrf': '', "
          "'localAddr': None})"};
}
template <>
Samples<Routing::RouteViaAttr> samples() {
  using Routing::RouteViaAttr;
  return {{RouteViaAttr(), RouteViaAttr(0, 5), RouteViaAttr(1, 0), RouteViaAttr(1, 2)},
          {{RouteViaAttr().metricIs(1).weightIs(2), RouteViaAttr(1, 2)}},
          "Value('Routing::RouteViaAttr', ** {'metric': 0, 'weight': 5})"};
}
template <>
Samples<Routing::RouteAttributes> samples() {
  using Routing::RouteAttributes;
  return {{RouteAttributes(), RouteAttributes({1}), RouteAttributes({1, 2}), RouteAttributes({2, 1})},
          {{RouteAttributes().communityPush(7), RouteAttributes({7})}},
          "Value('Routing::RouteAttributes', ** {'community': [1]})"};
}
template <>
Samples<NexthopGroup::NexthopGroupEntryKey> samples() {
  using NexthopGroup::NexthopGroupEntryKey;
  return {{NexthopGroupEntryKey(), NexthopGroupEntryKey("g1"), NexthopGroupEntryKey("g2"), NexthopGroupEntryKey("it's")},
          {},
          "Value('NexthopGroup::NexthopGroupEntryKey', ** {'nhgName': 'g1'})"};
}
template <>
Samples<Routing::Rib::ViaKey> samples() {
  using Routing::Rib::ViaKey;
  auto const st = Routing::Rib::RoutingProtocol::staticConfig();
  auto const v4 = Routing::Rib::Transport::transportIpv4();
  return {{ViaKey(), ViaKey(1, 0, st, v4), ViaKey(1, 0, st, Routing::Rib::Transport::transportEvpn()),
           ViaKey(1, 0, Routing::Rib::RoutingProtocol(7), v4), ViaKey(1, 3, st, v4), ViaKey(5, 0, st, v4)},
          {},
          "Value('Routing::Rib::ViaKey', ** {'id': 1, 'vrfId': 0, 'routingProtocol': 'staticConfig', "
          "'transport': 'ipv4'})"};
}
template <>
Samples<Routing::Rib::ViaSetKey> samples() {
  using Routing::Rib::ViaSetKey;
  auto const in = Routing::Rib::RoutingProtocol::routeInput();
  return {{ViaSetKey(), ViaSetKey(0, 1, in, 0), ViaSetKey(2, 0, in, Routing::Rib::Transport::transportIpv6())},
          {{ViaSetKey::fromViaKey(Routing::Rib::ViaKey(2, 0, in, 2)), ViaSetKey(2, 0, in, 2)}},
          "Value('Routing::Rib::ViaSetKey', ** {'id': 0, 'vrfId': 1, 'routingProtocol': 'routeInput', "
          "'transport': '0'})"};
}
template <>
Samples<Routing::Rib::RouteKey> samples() {
  using Routing::Rib::RouteKey;
  return {{RouteKey(0, pfx("10.0.0.0/8")), RouteKey(0, pfx("::/0")), RouteKey(5, pfx("0.0.0.0/0")), RouteKey()},
          {{RouteKey::vrfStart(3), RouteKey(3, IpGenPrefix())}},
          "Value('Routing::Rib::RouteKey', ** {'vrfId': 0, 'prefix': '::/0'})"};
}
template <>
Samples<Routing::Protocol::ContainerKey> samples() {
  using Routing::Protocol::ContainerKey;
  return {{ContainerKey(L3::VrfName::defaultVrf(), AddressFamily::ipv4),
           ContainerKey(L3::VrfName::defaultVrf(), AddressFamily::ipv6), ContainerKey(L3::VrfName("blue"), AddressFamily::ipv4),
           ContainerKey(L3::VrfName("red"), AddressFamily::ipv4)},
          {},
          "Value('Routing::Protocol::ContainerKey', ** {'vrfName': 'default', 'af': 'ipv6'})"};
}
template <>
Samples<Routing::Protocol::VrfIdAf> samples() {
  using Routing::Protocol::VrfIdAf;
  return {{VrfIdAf(0, AddressFamily::ipv4), VrfIdAf(3, AddressFamily::ipv4), VrfIdAf(3, AddressFamily::ipv6), VrfIdAf()},
          {},
          "Value('Routing::Protocol::VrfIdAf', ** {'vrfId': 3, 'af': 'ipv4'})"};
}
template <>
Samples<Routing::Protocol::VrfPairAf> samples() {
  using Routing::Protocol::VrfPairAf;
  return {{VrfPairAf(3, 9, AddressFamily::ipv4), VrfPairAf(3, 9, AddressFamily::ipv6), VrfPairAf(3, 10, AddressFamily::ipv4),
           VrfPairAf(4, 0, AddressFamily::ipv4), VrfPairAf()},
          {},
          "Value('Routing::Protocol::VrfPairAf', ** {'srcVrf': 3, 'dstVrf': 9, 'af': 'ipv6'})"};
}
template <>
Samples<Routing::Rib::ViaSetConfigKey> samples() {
  using Routing::Rib::ViaSetConfigKey;
  return {{ViaSetConfigKey(), ViaSetConfigKey(Routing::Rib::RoutingProtocol::staticConfig()),
           ViaSetConfigKey(Routing::Rib::RoutingProtocol::routeInput())},
          {},
          ""};
}
template <>
Samples<Routing::MetricPref> samples() {
  using Routing::MetricPref;
  return {{MetricPref(), MetricPref(10, 1), MetricPref(10, 2), MetricPref(11, 1)},
          {{MetricPref(0xffffffff, 0xff), MetricPref()}},
          ""};
}
template <>
Samples<Routing::Rib::Evpn::Via> samples() {
  using Routing::Rib::Evpn::Via;
  Via const a(Vxlan::VniExt(10), mac("02:00:00:00:00:01"), addr("192.0.2.1"));
  Via keyed = a;
  keyed.viaKeyIs(Routing::Rib::ViaKey(1, 0, Routing::Rib::RoutingProtocol::staticConfig(), 3));
  return {{a, Via(Vxlan::VniExt(10), mac("02:00:00:00:00:02"), addr("192.0.2.1")),
           Via(Vxlan::VniExt(11), mac("02:00:00:00:00:01"), addr("192.0.2.2")), keyed},
          {},
          ""};
}
template <>
Samples<Routing::Bgp::IgpResult> samples() {
  using Routing::Bgp::IgpResult;
  auto result = [](std::uint32_t tag, std::vector<std::uint32_t> communities) {
    IgpResult r;
    r.tagIs(tag);
    for (std::uint32_t i = 0; i < communities.size(); ++i) r.communityIs(i, communities[i]);
    return r;
  };
  return {{result(0, {}), result(0, {5}), result(0, {5, 6}), result(1, {})}, {}, ""};
}
template <>
Samples<Routing::Rib::ResolutionRibProfileConfig> samples() {
  using Routing::Rib::ResolutionMethod;
  using Routing::Rib::ResolutionRibProfileConfig;
  auto profile = [](std::vector<ResolutionMethod> methods) {
    ResolutionRibProfileConfig p;
    for (auto& m : methods) p.methodAppend(std::move(m));
    return p;
  };
  return {{profile({}), profile({ResolutionMethod::tunnelRib("a")}), profile({ResolutionMethod::tunnelRib("a", 2)}),
           profile({ResolutionMethod::tunnelRib("b")}), profile({ResolutionMethod::tunnelRib("b"), ResolutionMethod::systemConnected()})},
          {},
          ""};
}
template <>
Samples<Routing::Rib::Skein::ViaSet> samples() {
  using Routing::Rib::ViaKey;
  using Routing::Rib::ViaSetKey;
  auto set = [](ViaSetKey key, std::uint8_t flags, std::vector<ViaKey> const& vias) {
    Routing::Rib::Skein::ViaSet s(key);
    s.flagsIs(flags);
    for (std::uint32_t i = 0; i < vias.size(); ++i) s.viaKeyIs(i, vias[i]);
    return s;
  };
  ViaKey const a(1, 0, 2, 1);
  ViaKey const b(2, 0, 2, 1);
  return {{set(ViaSetKey(), 0, {}), set(ViaSetKey(), 0, {a}), set(ViaSetKey(), 0, {a, b}), set(ViaSetKey(), 0, {b}),
           set(ViaSetKey(), 4, {}), set(ViaSetKey(1, 0, 2, 0), 0, {})},
          {},
          ""};
}
template <>
Samples<Routing::BfdStatusKey> samples() {
  using Routing::BfdStatusKey;
  return {{BfdStatusKey(addr("10.0.0.1"), Ondex::IntfId()), BfdStatusKey(addr("fe80::1"), Ondex::IntfId()),
           BfdStatusKey(addr("fe80::1"), Ondex::IntfId("Ethernet1"))},
          {},
          ""};
}
template <>
Samples<Routing::Protocol::RouteStatusKey> samples() {
  using Routing::Protocol::RouteStatusKey;
  return {{RouteStatusKey{0, AddressFamily::ipv4}, RouteStatusKey{0, AddressFamily::ipv6},
           RouteStatusKey{3, AddressFamily::ipv4}, RouteStatusKey{VrfId::none(), AddressFamily()}},
          {},
          "Value('Routing::Protocol::RouteStatusKey', ** {'vrfId': 0, 'af': 'ipv6'})"};
}
template <>
Samples<Routing::Protocol::PrefixPrefVrfId> samples() {
  using Routing::RoutePreference;
  using Routing::Protocol::PrefixPrefVrfId;
  return {{PrefixPrefVrfId{pfx("10.0.0.0/8"), RoutePreference(1), 0}, PrefixPrefVrfId{pfx("10.0.0.0/8"), RoutePreference(1), 3},
           PrefixPrefVrfId{pfx("10.0.0.0/8"), RoutePreference(200), 0}, PrefixPrefVrfId{pfx("10.0.0.0/16"), RoutePreference(1), 0}},
          {{PrefixPrefVrfId{pfx("10.9.9.9/8"), RoutePreference(), 0}, PrefixPrefVrfId{pfx("10.0.0.0/8"), RoutePreference(1), 0}}},
          ""};
}
template <>
Samples<Bfd::Peer> samples() {
  using Bfd::Peer;
  Ondex::IntfId const eth1("Ethernet1");
  // The VRF first, then the peer, the source, the interface, the type and the last field.
  return {{Peer(addr("10.0.0.2"), "blue", addr("0.0.0.0"), eth1, 1), Peer(addr("10.0.0.1"), "default", addr("0.0.0.0"), eth1, 1),
           Peer(addr("10.0.0.1"), "default", addr("10.0.0.9"), Ondex::IntfId(), 6),
           Peer(addr("10.0.0.1"), "default", addr("10.0.0.9"), Ondex::IntfId(), 6, 1),
           Peer(addr("10.0.0.2"), "default", addr("0.0.0.0"), eth1, 1)},
          {},
          ""};
}
template <>
Samples<Routing::Rib::ViaContent> samples() {
  using Routing::Rib::ViaContent;
  ViaContent const hop(addr("10.0.0.1"), Ondex::IntfId());
  auto with = [&](auto change) {
    ViaContent c = hop;
    change(c);
    return c;
  };
  Routing::Rib::ResolutionRibProfileConfig profile;
  profile.methodAppend(Routing::Rib::ResolutionMethod::tunnelRib("a"));
  // Field by field: a label sorts before none; any other field set sorts after its default.
  return {{ViaContent(), ViaContent(addr("10.0.0.1"), Ondex::IntfId(), 16), hop, with([](ViaContent& c) { c.entryListIs(0, 5); }),
           with([](ViaContent& c) { c.labelStackIs(0, 7); }), with([](ViaContent& c) { c.weightIs(1); }),
           with([&](ViaContent& c) { c.resolutionRibProfileIs(profile); }),
           with([](ViaContent& c) { c.flagsIs(ViaContent::kFlagDrop); }), ViaContent(addr("10.0.0.1"), Ondex::IntfId("Ethernet1")),
           ViaContent(addr("10.0.0.2"), Ondex::IntfId())},
          {{with([](ViaContent& c) { c.weightIs(-0.0f); }), hop}},
          ""};
}
template <>
Samples<Routing::Rib::Via> samples() {
  using Routing::Rib::Via;
  using Routing::Rib::ViaContent;
  using Routing::Rib::ViaKey;
  ViaKey const one(1, 0, 2, 1);
  ViaContent const hop(addr("10.0.0.1"), Ondex::IntfId());
  Via set(one);
  set.nextHopIs(addr("10.0.0.1"));
  // The content first, then the key.
  return {{Via(one), Via(ViaKey(2, 0, 2, 1)), Via(one, hop), Via(ViaKey(2, 0, 2, 1), hop)}, {{set, Via(one, hop)}}, ""};
}
template <>
Samples<Routing::Rib::RoutingProtocol> samples() {
  using Routing::Rib::RoutingProtocol;
  return {{RoutingProtocol(0), RoutingProtocol::staticConfig(), RoutingProtocol::routeInput(), RoutingProtocol(7)},
          {{RoutingProtocol(2), RoutingProtocol::staticConfig()}},
          "'staticConfig'"};
}
template <>
Samples<Routing::Rib::Transport> samples() {
  using Routing::Rib::Transport;
  return {{Transport(0), Transport::transportIpv4(), Transport::transportIpv6(), Transport::transportEvpn(), Transport(9)},
          {{Transport::fromAf(AddressFamily::ipv6), Transport(2)}},
          "'ipv4'"};
}
template <>
Samples<Vxlan::VniExt> samples() {
  return {{Vxlan::VniExt(1), Vxlan::VniExt(10), Vxlan::VniExt(16777215)}, {{Vxlan::VniExtOrNone(10).vniExt(), Vxlan::VniExt(10)}}, "10"};
}

template <class T>
constexpr bool kOrdered = requires(T const& a) { a < a; };
template <class T>
constexpr bool kHasText = requires(std::string_view s) { T::fromStrep(s); };

constexpr std::uint32_t kSeeds[] = {0u, 1u, 7u, 0x9e3779b9u, 0xdeadbeefu, 0xffffffffu};

template <class T>
class ValueTypeTest : public ::testing::Test {
 protected:
  Samples<T> const s_ = samples<T>();
};

using ValueTypes = ::testing::Types<
    AddressFamily, IpGenAddr, IpGenPrefix, Ondex::EthAddr, Ondex::IntfId, Ondex::MplsLabel, Vxlan::VniExtOrNone,
    L3::VrfName, Routing::RoutePreference, VrfId, Routing::RouteKey, Routing::Via, Routing::RouteViaAttr,
    Routing::RouteAttributes, NexthopGroup::NexthopGroupEntryKey, Routing::Rib::ViaKey, Routing::Rib::ViaSetKey,
    Routing::Rib::RouteKey, Routing::Protocol::ContainerKey, Routing::Protocol::VrfIdAf, Routing::Protocol::VrfPairAf,
    Routing::Rib::ViaSetConfigKey, Routing::MetricPref, Routing::Rib::Evpn::Via, Routing::Bgp::IgpResult,
    Routing::Rib::ResolutionRibProfileConfig, Routing::Rib::Skein::ViaSet, Routing::BfdStatusKey,
    Routing::Protocol::RouteStatusKey,
    Routing::Protocol::PrefixPrefVrfId,
    Bfd::Peer,
    Routing::Rib::ViaContent,
    Routing::Rib::Via,
    Routing::Rib::RoutingProtocol,
    Routing::Rib::Transport,
    Vxlan::VniExt>;
TYPED_TEST_SUITE(ValueTypeTest, ValueTypes);

TYPED_TEST(ValueTypeTest, EqualityIsAnEquivalenceThatTellsSamplesApart) {
  auto const& v = this->s_.ascending;
  ASSERT_GE(v.size(), 3u);
  for (std::size_t i = 0; i < v.size(); ++i) {
    for (std::size_t j = 0; j < v.size(); ++j) {
      EXPECT_EQ(v[i] == v[j], i == j) << i << " against " << j;
      EXPECT_EQ(v[i] != v[j], i != j) << i << " against " << j;
    }
  }
  for (auto const& [a, b] : this->s_.equal) {
    EXPECT_TRUE(a == b && b == a) << a << " and " << b;
    TypeParam const c = b;
    EXPECT_TRUE(a == c) << "transitive through a copy: " << a;
  }
}

TYPED_TEST(ValueTypeTest, OrderIsStrictWeakAndAgreesWithEquality) {
  if constexpr (kOrdered<TypeParam>) {
    auto const& v = this->s_.ascending;
    for (std::size_t i = 0; i < v.size(); ++i) {
      EXPECT_FALSE(v[i] < v[i]) << "irreflexive: " << i;
      for (std::size_t j = 0; j < v.size(); ++j) {
        EXPECT_EQ(v[i] < v[j], i < j) << "samples are listed in ascending order: " << i << " against " << j;
      }
    }
    for (auto const& [a, b] : this->s_.equal) EXPECT_FALSE(a < b || b < a) << "equal values are unordered: " << a;

    // Sorting any permutation gives the one order back.
    std::vector<TypeParam> shuffled(v.rbegin(), v.rend());
    std::swap(shuffled.front(), shuffled[shuffled.size() / 2]);
    std::sort(shuffled.begin(), shuffled.end());
    EXPECT_TRUE(shuffled == v);
  } else {
    GTEST_SKIP() << "the type has no order";
  }
}

TYPED_TEST(ValueTypeTest, HashAgreesWithEqualityAndCoversEveryField) {
  auto const& v = this->s_.ascending;
  for (auto const& [a, b] : this->s_.equal) {
    for (std::uint32_t seed : kSeeds) EXPECT_EQ(a.hash(seed), b.hash(seed)) << a << " seed " << seed;
  }
  // Each sample differs from the others in some field; a hash that left one out would collide
  // under every seed.
  for (std::size_t i = 0; i < v.size(); ++i) {
    for (std::size_t j = i + 1; j < v.size(); ++j) {
      int same = 0;
      for (std::uint32_t seed : kSeeds) same += v[i].hash(seed) == v[j].hash(seed);
      EXPECT_LT(same, 2) << i << " against " << j;
    }
  }
  EXPECT_NE(v[1].hash(1), v[1].hash(2)) << "the seed takes part";
}

TYPED_TEST(ValueTypeTest, CopiesAndAssignmentsCompareAndHashAlike) {
  for (TypeParam const& original : this->s_.ascending) {
    TypeParam copy = original;
    EXPECT_TRUE(copy == original);
    TypeParam assigned = this->s_.ascending.front();
    assigned = original;
    EXPECT_TRUE(assigned == original);
    EXPECT_EQ(assigned.hash(9), original.hash(9));
    TypeParam moved = std::move(copy);
    EXPECT_TRUE(moved == original);
  }
}

TYPED_TEST(ValueTypeTest, TextFormReadsBackToTheSameValue) {
  if constexpr (kHasText<TypeParam>) {
    EXPECT_EQ(valueToStrep(this->s_.ascending[1]), this->s_.text);
    for (TypeParam const& value : this->s_.ascending) {
      std::string const text = valueToStrep(value);
      auto const back = TypeParam::fromStrep(text);
      ASSERT_TRUE(back.has_value()) << text;
      EXPECT_TRUE(*back == value) << text;
      EXPECT_FALSE(TypeParam::fromStrep(text + " ").has_value()) << "trailing text: " << text;
    }
    EXPECT_FALSE(TypeParam::fromStrep("").has_value());
  } else {
    EXPECT_TRUE(this->s_.text.empty()) << "a text given for a type without a text form";
  }
}

}  // namespace
}  // namespace BowlineTest
