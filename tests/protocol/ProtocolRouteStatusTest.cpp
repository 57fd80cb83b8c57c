// The route status store: the invariants of the via types, the previous BFD address a reader is
// told, and that the store holds the RIB vias alive exactly as long as it references them.
#include "protocol/ProtocolRouteStatus.h"

#include <gtest/gtest.h>

#include "foundations/rib/IpViaConfig.h"
#include "foundations/runtime/Notifiee.h"
#include "support/RuntimeFixture.h"

namespace Routing::Protocol {
namespace {

using Rib::ViaKey;

Ondex::IpGenPrefix pfx(char const* text) { return *Ondex::IpGenPrefix::fromString(text); }
Ondex::IpGenAddr addr(char const* text) { return *Ondex::IpGenAddr::fromString(text); }

// Hears one entity's changes: the attribute ids in order.
template <class T>
class Ear : public Zel::Notifiee<T> {
 public:
  static Quill::Ptr<Ear> EarIs(Quill::Ptr<T const> t) {
    auto e = Zel::make<Ear>();
    e->notifierIs(std::move(t));
    return e;
  }
  void onAttribute(Zel::AttrId id, void const*) override {
    ids.push_back(id);
    if constexpr (std::is_same_v<T, RoutePref>) {
      if (id == RoutePref::bfdTrackedViaCollId) {
        auto const* old = Zel::notifyOldValue<Ondex::IpGenAddr>(this->notifier().get(), id);
        previous.push_back(old ? old->toString() : "none");
      }
    }
  }
  std::vector<Zel::AttrId> ids;
  std::vector<std::string> previous;
};

class ProtocolRouteStatusTest : public BowlineTest::RuntimeFixture {
 protected:
  Quill::Ptr<Rib::Ip::ViaConfig> vias = Rib::Ip::ViaConfig::ViaConfigIs(Rib::RoutingProtocol(2), Rib::Transport(1));
  Quill::Ptr<Rib::DedupViaKey> via(char const* hop) {
    return vias->dedupViaIs(Rib::ViaContent(addr(hop), Ondex::IntfId()), Vrf::VrfIdMap::VrfId(0));
  }
};

TEST_F(ProtocolRouteStatusTest, ViaTypesStayNonEmptyAndOrdered) {
  auto dir = RouteStatusDir::RouteStatusDirIs();
  auto pref = dir->statusIs(RouteStatusKey{Vrf::VrfIdMap::VrfId(0), Ondex::AddressFamily::ipv4})
                  ->routeIs(pfx("2.0.0.0/8"))
                  ->routePrefIs(RoutePreference(1));
  auto a = via("10.0.0.1");
  auto b = via("10.0.0.2");
  auto c = via("10.0.0.3");
  pref->dedupViaKeyIs(viaDefault, c, 1);
  pref->dedupViaKeyIs(viaNextHopOnly, a, 10);
  pref->dedupViaKeyIs(viaNextHopOnly, b, 20);
  EXPECT_EQ(pref->dedupViaKeyByViaTypeFirst()->viaType(), ViaType(viaNextHopOnly))
      << "viaDefault sorts after the three-way types";

  // Replacing an entry of the same via key changes its metric.
  pref->dedupViaKeyIs(viaNextHopOnly, a, 15);
  EXPECT_EQ(pref->dedupViaKeyByViaType(viaNextHopOnly)->dedupViaKey(a->viaKey())->metric(), 15u);

  auto typeEar = Ear<RoutePref>::EarIs(pref);
  pref->dedupViaKeyDel(viaIntfOnly, a->viaKey());  // a type the preference lacks: silent
  pref->dedupViaKeyDel(viaNextHopOnly, c->viaKey());  // a key not there, others left: nothing seen
  EXPECT_TRUE(typeEar->ids.empty());
  EXPECT_EQ(pref->dedupViaKeyByViaType(viaNextHopOnly)->dedupViaKeySize(), 2u);

  pref->dedupViaKeyDel(viaNextHopOnly, a->viaKey());
  EXPECT_TRUE(typeEar->ids.empty()) << "a type still holding a via stays";
  pref->dedupViaKeyDel(viaNextHopOnly, b->viaKey());
  EXPECT_EQ(typeEar->ids, (std::vector<Zel::AttrId>{RoutePref::dedupViaKeyByViaTypeId}))
      << "the last via of a type takes the type with it";
  EXPECT_EQ(pref->dedupViaKeyByViaTypeFirst()->viaType(), ViaType(viaDefault));

  pref->dedupViaKeyDelAll(viaDefault);
  EXPECT_EQ(pref->dedupViaKeyByViaTypeSize(), 0u);
}

TEST_F(ProtocolRouteStatusTest, BfdTrackedViaCarriesThePreviousAddress) {
  auto dir = RouteStatusDir::RouteStatusDirIs();
  auto pref = dir->statusIs(RouteStatusKey{Vrf::VrfIdMap::VrfId(0), Ondex::AddressFamily::ipv4})
                  ->routeIs(pfx("3.0.0.0/8"))
                  ->routePrefIs(RoutePreference(1));
  auto ear = Ear<RoutePref>::EarIs(pref);
  auto v = via("10.0.0.9");
  pref->bfdTrackedViaCollIs(v->viaKey(), addr("1.1.1.1"));
  pref->bfdTrackedViaCollIs(v->viaKey(), addr("1.1.1.1"));  // same address: silent
  pref->bfdTrackedViaCollIs(v->viaKey(), addr("2.2.2.2"));
  pref->bfdTrackedViaCollDel(v->viaKey());
  EXPECT_EQ(ear->previous, (std::vector<std::string>{"none", "1.1.1.1", "2.2.2.2"}));

  // A null handle removes an EVPN via's VTEP entry.
  pref->dedupEvpnVtepIpViaKeyIs(v->viaKey(), via("10.0.0.10"));
  EXPECT_TRUE(pref->dedupEvpnVtepIpViaKeyHas(v->viaKey()));
  pref->dedupEvpnVtepIpViaKeyIs(v->viaKey(), nullptr);
  EXPECT_FALSE(pref->dedupEvpnVtepIpViaKeyHas(v->viaKey()));
}

TEST_F(ProtocolRouteStatusTest, StoreHoldsRibViasExactlyAsLongAsItReferencesThem) {
  ViaKey key;
  {
    auto dir = RouteStatusDir::RouteStatusDirIs();
    auto pref = dir->statusIs(RouteStatusKey{Vrf::VrfIdMap::VrfId(0), Ondex::AddressFamily::ipv4})
                    ->routeIs(pfx("4.0.0.0/8"))
                    ->routePrefIs(RoutePreference(1));
    pref->dedupViaKeyIs(viaNextHopOnly, via("10.1.1.1"), 1);
    key = pref->dedupViaKeyByViaTypeFirst()->dedupViaKeyIteratorConst().value()->dedupViaKey()->viaKey();
    EXPECT_EQ(vias->dedupViaKey(Rib::ViaContent(addr("10.1.1.1"), Ondex::IntfId()), Vrf::VrfIdMap::VrfId(0))->viaKey(), key);
  }
  EXPECT_EQ(vias->dedupViaKey(Rib::ViaContent(addr("10.1.1.1"), Ondex::IntfId()), Vrf::VrfIdMap::VrfId(0)), nullptr)
      << "the via leaves the RIB table with the store's last reference";
}

}  // namespace
}  // namespace Routing::Protocol
