// The leak records: what each mutator publishes (and that it is silent when nothing changes), the
// source and destination rules of the list sets, and that a torn-down chain of records leaves no
// object behind.
#include "leak/ProtocolRouteLeak.h"

#include <gtest/gtest.h>

#include <vector>

#include "foundations/records/RecordRecorder.h"
#include "foundations/records/RouteList.h"
#include "support/RuntimeFixture.h"

namespace Routing::Protocol {
namespace {

using BowlineTest::RecordRecorder;
using LeakRoutePtr = Quill::Ptr<LeakRoute const>;
using Ids = std::vector<Zel::AttrId>;
constexpr Ondex::AddressFamily v4 = Ondex::AddressFamily::ipv4;

RouteKey rk(int i) { return RouteKey(*Ondex::IpGenPrefix::fromString("10." + std::to_string(i) + ".0.0/16")); }

class ProtocolRouteLeakTest : public BowlineTest::RuntimeFixture {
 public:
  void SetUp() override {
    RuntimeFixture::SetUp();
    routes = RouteList::RouteListIs();  // after the fixture's count starts, so teardown can be checked
  }
  Quill::Ptr<RouteList> routes;
  Quill::Ptr<Route> route(int i, RouteType type = RouteType::forward) { return routes->routeIs(rk(i), type); }
  LeakRoutePtr leak(int i, VrfIdAf src = VrfIdAf(3, v4)) { return LeakRoute::LeakRouteIs(src, route(i)); }
};

TEST_F(ProtocolRouteLeakTest, LeakRouteDirKeepsTheSameRouteAndReplacesAnother) {
  auto dir = LeakRouteDir::LeakRouteDirIs();
  auto rec = RecordRecorder<LeakRouteDir>::RecordRecorderIs(dir);
  auto first = dir->leakRouteIs(VrfIdAf(3, v4), route(1));
  EXPECT_EQ(dir->leakRouteIs(VrfIdAf(3, v4), route(1)), first) << "same source, same route: kept, silent";
  auto replaced = route(1, RouteType::drop);  // a new configuration object under the same key
  auto second = dir->leakRouteIs(VrfIdAf(3, v4), replaced);
  EXPECT_EQ(second->route(), replaced);
  EXPECT_TRUE(first->zelMarkedForDeletion());
  EXPECT_NE(dir->leakRouteIs(VrfIdAf(4, v4), replaced), second) << "another source is another LeakRoute";
  EXPECT_THROW(dir->leakRouteIs(VrfIdAf(3, v4), nullptr), Zel::MutatorArgNullPointerException);
  EXPECT_EQ(rec->ids, Ids(3, LeakRouteDir::leakRouteId));
}

// Both bodies of LeakRouteColl: a list and the destination's config.
template <class T>
void checkLeakRouteColl(Quill::Ptr<T> coll, ProtocolRouteLeakTest& t) {
  auto rec = RecordRecorder<T>::RecordRecorderIs(coll);
  std::vector<std::pair<RouteKey, LeakRoutePtr>> seen;  // key and old value of each publish
  rec->react = [&](Zel::AttrId id, void const* key) {
    auto const* old = rec->template oldValue<LeakRoutePtr>(id);
    seen.emplace_back(*static_cast<RouteKey const*>(key), old ? *old : nullptr);
  };
  auto a = t.leak(1);
  auto b = t.leak(1, VrfIdAf(5, v4));
  EXPECT_TRUE(coll->leakRouteIs(a));
  EXPECT_FALSE(coll->leakRouteIs(a)) << "the same object is silent";
  EXPECT_TRUE(coll->leakRouteIs(b)) << "another object under the key replaces";
  EXPECT_EQ(coll->leakRoute(rk(1)), b);
  EXPECT_FALSE(coll->leakRouteDel(rk(2)));
  EXPECT_THROW(coll->leakRouteIs(LeakRoutePtr()), Zel::MutatorArgNullPointerException);
  EXPECT_EQ(seen, (std::vector<std::pair<RouteKey, LeakRoutePtr>>{{rk(1), nullptr}, {rk(1), a}}));
  coll->leakRouteDelAll();
  EXPECT_FALSE(a->zelMarkedForDeletion()) << "shared, not owned";
}

TEST_F(ProtocolRouteLeakTest, LeakRouteListAndConfigPublishOnlyChanges) {
  checkLeakRouteColl(LeakRouteList::LeakRouteListIs(VrfPairAf(3, 9, v4)), *this);
  checkLeakRouteColl(LeakRouteConfig::LeakRouteConfigIs(VrfIdAf(9, v4)), *this);
}

TEST_F(ProtocolRouteLeakTest, ListSetsHoldOnlyTheirSourceOrDestination) {
  auto set = LeakRouteListSet::LeakRouteListSetIs(VrfIdAf(3, v4));
  auto rec = RecordRecorder<LeakRouteListSet>::RecordRecorderIs(set);
  auto toNine = set->leakRouteListIs(VrfPairAf(3, 9, v4));
  EXPECT_EQ(set->leakRouteListIs(VrfPairAf(3, 9, v4)), toNine) << "an existing key returns its list";
  set->leakRouteListIs(VrfPairAf(3, 8, v4));
  EXPECT_EQ(set->leakRouteLists(), 2u);
  EXPECT_EQ(rec->ids, (Ids{LeakRouteListSet::leakRouteListId, LeakRouteListSet::leakRouteListId}));
  EXPECT_DEATH(set->leakRouteListIs(VrfPairAf(4, 9, v4)), "vrfPairAf.srcVrf\\(\\) == vrfAf\\(\\).vrfId\\(\\)");

  auto nine = LeakRouteListPtrSet::LeakRouteListPtrSetIs(VrfIdAf(9, v4));
  EXPECT_TRUE(nine->leakRouteListIs(toNine));
  EXPECT_FALSE(nine->leakRouteListIs(toNine));
  EXPECT_EQ(nine->leakRouteList(VrfPairAf(3, 9, v4)), toNine);
  EXPECT_DEATH(nine->leakRouteListIs(set->leakRouteList(VrfPairAf(3, 8, v4))),
               "lrl->vrfAf\\(\\).dstVrf\\(\\) == vrfAf\\(\\).vrfId\\(\\)");
  EXPECT_THROW(nine->leakRouteListIs(nullptr), Zel::MutatorArgNullPointerException);
  nine->leakRouteListDel(VrfPairAf(3, 9, v4));
  EXPECT_FALSE(toNine->zelMarkedForDeletion()) << "the destination does not own the list";
  EXPECT_EQ(set->leakRouteListDel(VrfPairAf(3, 9, v4)), toNine);
  EXPECT_TRUE(toNine->zelMarkedForDeletion()) << "the source does";
  EXPECT_EQ(nine->leakRouteLists(), 0u);
}

TEST_F(ProtocolRouteLeakTest, AChainOfRecordsReleasesEverything) {
  {
    auto setDir = LeakRouteListSetDir::LeakRouteListSetDirIs();
    auto ptrDir = LeakRouteListPtrSetDir::LeakRouteListPtrSetDirIs();
    auto config = LeakRouteConfig::LeakRouteConfigIs(VrfIdAf(9, v4));
    {
      auto dir = LeakRouteDir::LeakRouteDirIs();
      auto set = LeakRouteListSet::LeakRouteListSetIs(VrfIdAf(3, v4));
      auto ptrSet = LeakRouteListPtrSet::LeakRouteListPtrSetIs(VrfIdAf(9, v4));
      setDir->lrlSetIs(set);
      ptrDir->lrlpSetIs(ptrSet);
      auto list = set->leakRouteListIs(VrfPairAf(3, 9, v4));
      ptrSet->leakRouteListIs(list);
      for (int i = 0; i < 5; ++i) {
        auto lr = dir->leakRouteIs(VrfIdAf(3, v4), route(i));
        list->leakRouteIs(lr);
        config->leakRouteIs(lr);
      }
      routes = nullptr;
      setDir->lrlSetDel(VrfIdAf(3, v4));  // the source goes first; the destination still holds its list
    }
    EXPECT_EQ(ptrDir->lrlpSet(VrfIdAf(9, v4))->leakRouteList(VrfPairAf(3, 9, v4))->leakRouteSize(), 5u);
    EXPECT_EQ(config->leakRoute(rk(4))->route()->key(), rk(4)) << "a leaked route keeps its configuration alive";
  }
  EXPECT_EQ(liveSinceStart(), 0);
}

}  // namespace
}  // namespace Routing::Protocol
