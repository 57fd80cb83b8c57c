// The via-set table: one handle per set content, the set's life tied to its handles, the
// restarting-VRF rule by name, and binding to a storage that a previous life filled.
#include "foundations/rib/ViaSetConfig.h"

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"
#include "RibRecorder.h"

namespace BowlineTest {
namespace {

using Routing::Rib::DedupViaSetKey;
using Routing::Rib::ViaKey;
using Routing::Rib::ViaSetConfig;
using Routing::Rib::ViaSetConfigKey;
using Routing::Rib::ViaSetKey;
using Routing::Rib::Skein::ViaSet;
using Routing::Rib::Skein::ViaSetCollection;

ViaKey via(std::uint64_t id) { return ViaKey(id, 0, 2, 1); }

ViaSet setOf(std::initializer_list<std::uint64_t> ids, std::uint8_t fecType = 0, std::uint8_t flags = 0) {
  ViaSet s;
  s.fecTypeIs(fecType);
  s.flagsIs(flags);
  std::uint32_t i = 0;
  for (auto id : ids) s.viaKeyIs(i++, via(id));
  return s;
}

class ViaSetConfigTest : public RuntimeFixture {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
    table = ViaSetConfig::ViaSetConfigIs(ViaSetConfigKey(2));
    rec = KeyRecorder<ViaSetCollection, ViaSetKey>::KeyRecorderIs(table->configViaSetColl(), ViaSetCollection::viaSetId);
  }
  [[nodiscard]] bool stored(ViaSetKey const& k) const { return table->configViaSetColl()->viaSetHas(k); }

  Quill::Ptr<ViaSetConfig> table;
  Quill::Ptr<KeyRecorder<ViaSetCollection, ViaSetKey>> rec;
};

TEST_F(ViaSetConfigTest, EqualContentIsOneSetAndOneHandle) {
  auto a = table->dedupConfigViaSetIs(setOf({1, 2}));
  ViaSet keyed = setOf({1, 2});
  keyed.viaSetKeyIs(ViaSetKey(77, 3, 2, 1));
  auto b = table->dedupConfigViaSetIs(keyed);
  EXPECT_EQ(a, b) << "the key the caller's set carries is not content";
  ViaSetKey const k = a->viaSetKey();
  EXPECT_NE(k, ViaSetKey()) << "a stored set no longer has the all-zero key of a set under construction";
  EXPECT_TRUE(table->configViaSetColl()->viaSet(k).sameContent(setOf({1, 2})));

  auto reversed = table->dedupConfigViaSetIs(setOf({2, 1}));
  auto fec = table->dedupConfigViaSetIs(setOf({1, 2}, 2));
  auto flagged = table->dedupConfigViaSetIs(setOf({1, 2}, 0, 4));
  auto empty = table->dedupConfigViaSetIs(setOf({}, 2, 2));
  for (auto const& other : {reversed, fec, flagged, empty}) EXPECT_NE(other->viaSetKey(), k);
  EXPECT_EQ(rec->keys.size(), 5u) << "one notification per new set";
}

TEST_F(ViaSetConfigTest, LastHandleTakesTheSetWithIt) {
  auto a = table->dedupConfigViaSetIs(setOf({1}));
  auto b = a;
  ViaSetKey const k = a->viaSetKey();
  rec->keys.clear();
  a = nullptr;
  EXPECT_TRUE(stored(k));
  b = nullptr;
  EXPECT_FALSE(stored(k));
  EXPECT_EQ(rec->keys, std::vector<ViaSetKey>{k});
}

TEST_F(ViaSetConfigTest, UnheldSetsStayWhileAnyVrfRestarts) {
  table->restartingVrfIs("red");
  table->restartingVrfIs("blue");
  ViaSetKey const kept = table->dedupConfigViaSetIs(setOf({1}))->viaSetKey();
  ViaSetKey const rebound = table->dedupConfigViaSetIs(setOf({2}))->viaSetKey();
  EXPECT_TRUE(stored(kept));
  EXPECT_FALSE(table->viaSetHeld(kept));

  auto h = table->dedupConfigViaSetIs(setOf({2}));
  EXPECT_EQ(h->viaSetKey(), rebound) << "the first review binds the set from before the restart again";

  table->restartingVrfDel("red");
  EXPECT_TRUE(stored(kept)) << "blue is still restarting";
  table->restartingVrfDel("blue");
  EXPECT_FALSE(stored(kept)) << "the last mark takes every unheld set";
  EXPECT_TRUE(stored(rebound));
}

TEST_F(ViaSetConfigTest, BindingAStorageOfAPreviousLifeKeepsItsKeys) {
  auto previous = ViaSetCollection::ViaSetCollectionIs();
  ViaSet old = setOf({1, 2});
  old.viaSetKeyIs(ViaSetKey(40, 0, 2, 0));
  previous->viaSetIs(old.viaSetKey(), old);
  ViaSet gone = setOf({3});
  gone.viaSetKeyIs(ViaSetKey(41, 0, 2, 0));
  previous->viaSetIs(gone.viaSetKey(), gone);

  auto before = table->dedupConfigViaSetIs(setOf({9}));
  auto marks = KeyRecorder<ViaSetConfig, int>::KeyRecorderIs(table, ViaSetConfig::configViaSetCollId);
  table->restartingVrfIs("red");
  table->configViaSetCollIs(previous);
  EXPECT_EQ(marks->keys.size(), 1u) << "readers hear of the new storage";
  EXPECT_FALSE(before->hasOwner()) << "handles of the former storage are detached";

  auto h = table->dedupConfigViaSetIs(setOf({1, 2}));
  EXPECT_EQ(h->viaSetKey(), old.viaSetKey());
  auto fresh = table->dedupConfigViaSetIs(setOf({5}));
  EXPECT_GT(fresh->viaSetKey().id(), 41u) << "new ids start past the ids found in the storage";

  table->restartingVrfDel("red");
  EXPECT_FALSE(previous->viaSetHas(gone.viaSetKey())) << "a set nobody claimed again goes at the end of the restart";
  EXPECT_TRUE(previous->viaSetHas(old.viaSetKey()));
  EXPECT_TRUE(previous->viaSetHas(fresh->viaSetKey()));
}

TEST_F(ViaSetConfigTest, TeardownReleasesEverythingWhateverTheOrder) {
  auto h = table->dedupConfigViaSetIs(setOf({1, 2, 3}));
  rec = nullptr;
  table = nullptr;
  EXPECT_FALSE(h->hasOwner());
  h = nullptr;
  EXPECT_EQ(liveSinceStart(), 0);
}

}  // namespace
}  // namespace BowlineTest
