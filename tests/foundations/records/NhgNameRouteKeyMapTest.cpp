// Routing::NexthopGroup::NhgNameRouteKeyMap: a key stands under one name at a time, moves with its
// route's group, and a list lives exactly as long as it holds a key.
#include "foundations/records/NhgNameRouteKeyMap.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

using Routing::RouteKey;
using Routing::NexthopGroup::NhgNameRouteKeyMap;

RouteKey key(std::string_view prefix) { return RouteKey(Ondex::IpGenPrefix::fromString(prefix).value()); }

// The whole index as name -> keys, read through the public collections, plus a check that the
// reverse index agrees with it.
std::map<std::string, std::set<std::string>> contents(NhgNameRouteKeyMap const& m) {
  std::map<std::string, std::set<std::string>> out;
  std::size_t keys = 0;
  for (auto it = m.nhgNameToRouteKeyListIteratorConst(); it; it.advance()) {
    auto const& list = it.value();
    EXPECT_EQ(list->nhgName(), it.key());
    EXPECT_GT(list->routeKeyListSize(), 0u) << "no empty list may stay: " << it.key();
    auto& names = out[std::string(it.key().view())];
    for (auto k = list->routeKeyListIteratorConst(); k; k.advance()) {
      names.insert(k.key().pretty());
      EXPECT_EQ(m.routeKeyToNhgName(k.key()), it.key()) << "reverse index of " << k.key().pretty();
      ++keys;
    }
  }
  EXPECT_EQ(m.routeKeyToNhgNameSize(), keys) << "every filed key once, and no other";
  return out;
}

using Contents = std::map<std::string, std::set<std::string>>;

class NhgNameRouteKeyMapTest : public RuntimeFixture {};

TEST_F(NhgNameRouteKeyMapTest, KeysMoveBetweenNamesAndEmptiedListsGo) {
  auto m = NhgNameRouteKeyMap::NhgNameRouteKeyMapIs();
  RouteKey const a = key("10.0.0.0/24");
  RouteKey const b = key("10.0.1.0/24");

  // 1. Two routes of one group share its list.
  m->addOrUpdateNhgNameRouteKeyMap(a, "g1");
  m->addOrUpdateNhgNameRouteKeyMap(b, "g1");
  m->addOrUpdateNhgNameRouteKeyMap(b, "g1");  // again: nothing changes
  EXPECT_EQ(contents(*m), (Contents{{"g1", {"10.0.0.0/24 pref 1", "10.0.1.0/24 pref 1"}}})) << "step 1";

  // 2. One route changes group: it leaves g1's list for g2's.
  m->addOrUpdateNhgNameRouteKeyMap(a, "g2");
  EXPECT_EQ(contents(*m), (Contents{{"g1", {"10.0.1.0/24 pref 1"}}, {"g2", {"10.0.0.0/24 pref 1"}}})) << "step 2";

  // 3. The other follows: g1 is left empty and goes.
  m->addOrUpdateNhgNameRouteKeyMap(b, "g2");
  EXPECT_EQ(contents(*m), (Contents{{"g2", {"10.0.0.0/24 pref 1", "10.0.1.0/24 pref 1"}}})) << "step 3";
  EXPECT_FALSE(m->nhgNameToRouteKeyList("g1"));

  // 4. Deleting one keeps the list for the other; deleting the last removes it.
  m->deleteNhgNameRouteKeyMap(a, "g2");
  EXPECT_EQ(contents(*m), (Contents{{"g2", {"10.0.1.0/24 pref 1"}}})) << "step 4";
  m->deleteNhgNameRouteKeyMap(b, "g2");
  EXPECT_TRUE(contents(*m).empty()) << "step 4";
  EXPECT_EQ(m->nhgNameToRouteKeyListSize(), 0u);

  // 5. Deleting what is not there does nothing.
  m->deleteNhgNameRouteKeyMap(a, "g2");
  m->deleteNhgNameRouteKeyMap(a, "");
  EXPECT_TRUE(contents(*m).empty()) << "step 5";
}

TEST_F(NhgNameRouteKeyMapTest, DeleteUnderAStaleNameStillRemovesTheKey) {
  auto m = NhgNameRouteKeyMap::NhgNameRouteKeyMapIs();
  RouteKey const a = key("10.0.0.0/24");
  RouteKey const b = key("10.0.1.0/24");
  m->addOrUpdateNhgNameRouteKeyMap(a, "g1");
  m->addOrUpdateNhgNameRouteKeyMap(b, "g2");
  // The route's group was renamed to g2 but the index was not told before the route went.
  m->deleteNhgNameRouteKeyMap(a, "g2");
  EXPECT_EQ(contents(*m), (Contents{{"g2", {"10.0.1.0/24 pref 1"}}}));
}

TEST_F(NhgNameRouteKeyMapTest, ManyRoutesOverManyGroupsReleaseEverything) {
  {
    auto m = NhgNameRouteKeyMap::NhgNameRouteKeyMapIs();
    std::vector<RouteKey> keys;
    for (std::uint32_t i = 0; i < 300; ++i)
      keys.push_back(RouteKey(Ondex::IpGenPrefix(Ondex::IpGenAddr::fromV4(0x0a000000u + (i << 8)), 24)));
    for (std::size_t i = 0; i < keys.size(); ++i) m->addOrUpdateNhgNameRouteKeyMap(keys[i], "g" + std::to_string(i % 7));
    for (std::size_t i = 0; i < keys.size(); i += 2) m->addOrUpdateNhgNameRouteKeyMap(keys[i], "h" + std::to_string(i % 3));
    auto c = contents(*m);
    std::size_t total = 0;
    for (auto const& [name, ks] : c) total += ks.size();
    EXPECT_EQ(total, keys.size()) << "each key under exactly one name";
    for (std::size_t i = 1; i < keys.size(); i += 4) m->deleteNhgNameRouteKeyMap(keys[i], "g" + std::to_string(i % 7));
    EXPECT_EQ(m->routeKeyToNhgNameSize(), keys.size() - keys.size() / 4);
    (void)contents(*m);
    EXPECT_GT(liveSinceStart(), 0);
  }
  EXPECT_EQ(liveSinceStart(), 0);
}

}  // namespace
}  // namespace BowlineTest
