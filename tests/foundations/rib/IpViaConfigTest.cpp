// The IP via table: one entry and one handle per content and VRF, the entry's life tied to its
// handles, the restarting-VRF rule, and what readers of `via` and `restartingVrf` are told.
#include "foundations/rib/IpViaConfig.h"

#include <gtest/gtest.h>

#include "foundations/runtime/Slab.h"
#include "support/RuntimeFixture.h"
#include "RibRecorder.h"

namespace BowlineTest {
namespace {

using Routing::Rib::DedupViaKey;
using Routing::Rib::IdAllocator;
using Routing::Rib::Via;
using Routing::Rib::ViaContent;
using Routing::Rib::ViaKey;
using Routing::Rib::Ip::ViaConfig;
using Vrf::VrfIdMap::VrfId;
using ViaRecorder = KeyRecorder<ViaConfig, ViaKey>;

ViaContent hop(std::uint32_t v4, std::string_view intf = "Ethernet1", float weight = 0) {
  ViaContent c(Ondex::IpGenAddr::fromV4(v4), Ondex::IntfId(intf));
  c.weightIs(weight);
  return c;
}

class IpViaConfigTest : public RuntimeFixture {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
    table = ViaConfig::ViaConfigIs(2, 1);
    rec = ViaRecorder::KeyRecorderIs(table, ViaConfig::viaId);
  }
  Quill::Ptr<ViaConfig> table;
  Quill::Ptr<ViaRecorder> rec;
};

TEST_F(IpViaConfigTest, EqualContentInOneVrfIsOneEntryAndOneHandle) {
  auto a = table->dedupViaIs(hop(0x0a000001), 5);
  auto again = table->dedupViaIs(hop(0x0a000001), 5);
  EXPECT_EQ(a, again) << "the same content in the same VRF gives the same handle";
  ViaKey const k = a->viaKey();
  EXPECT_EQ(k, ViaKey(k.id(), 5, 2, 1));

  auto otherVrf = table->dedupViaIs(hop(0x0a000001), 6);
  auto otherWeight = table->dedupViaIs(hop(0x0a000001, "Ethernet1", 2.0f), 5);
  auto otherIntf = table->dedupViaIs(hop(0x0a000001, "Ethernet2"), 5);
  EXPECT_EQ(table->via(k), Via(k, hop(0x0a000001)));
  EXPECT_EQ(rec->keys, (std::vector<ViaKey>{k, otherVrf->viaKey(), otherWeight->viaKey(), otherIntf->viaKey()}))
      << "one notification per new entry, none for a repeated content";

  ViaKey absent(999, 5, 2, 1);
  EXPECT_EQ(table->via(absent), Via(absent)) << "an absent key reads as the default via of that key";
}

TEST_F(IpViaConfigTest, LastHandleTakesTheEntryWithIt) {
  auto a = table->dedupViaIs(hop(0x0a000001), 0);
  auto b = table->dedupViaIs(hop(0x0a000001), 0);
  ViaKey const k = a->viaKey();
  rec->keys.clear();

  a = nullptr;
  EXPECT_TRUE(table->viaHas(k)) << "another reference still holds it";
  EXPECT_TRUE(rec->keys.empty());
  b = nullptr;
  EXPECT_FALSE(table->viaHas(k));
  EXPECT_EQ(rec->keys, std::vector<ViaKey>{k}) << "the removal is published";

  EXPECT_FALSE(table->dedupViaKey(hop(0x0a000001), 0)) << "the look-up never creates";
  auto fresh = table->dedupViaIs(hop(0x0a000001), 0);
  EXPECT_NE(fresh->viaKey(), k) << "a new entry gets a new id";
  EXPECT_EQ(table->dedupViaKey(hop(0x0a000001), 0), fresh);
}

TEST_F(IpViaConfigTest, RestartingVrfKeepsUnheldViasUntilTheMarkGoes) {
  auto restartRec = KeyRecorder<ViaConfig, VrfId>::KeyRecorderIs(table, ViaConfig::restartingVrfId);
  table->restartingVrfIs(5);
  table->restartingVrfIs(5);
  EXPECT_EQ(restartRec->keys, std::vector<VrfId>{5}) << "marking twice publishes once";

  ViaKey const kept = table->dedupViaIs(hop(0x0a000001), 5)->viaKey();      // released at once
  ViaKey const rebound = table->dedupViaIs(hop(0x0a000002), 5)->viaKey();   // released, then bound again
  ViaKey const steady = table->dedupViaIs(hop(0x0a000003), 6)->viaKey();    // VRF 6 is not restarting
  EXPECT_TRUE(table->viaHas(kept));
  EXPECT_TRUE(table->viaHas(rebound));
  EXPECT_FALSE(table->viaHas(steady)) << "outside a restarting VRF the last release removes the via";
  EXPECT_FALSE(table->viaHeld(kept));

  auto h = table->dedupViaIs(hop(0x0a000002), 5);
  EXPECT_EQ(h->viaKey(), rebound) << "binding again by content finds the entry from before the restart";
  EXPECT_TRUE(table->viaHeld(rebound));
  auto lookedUp = table->dedupViaKey(hop(0x0a000001), 5);
  ASSERT_TRUE(lookedUp) << "the non-creating look-up finds an unheld entry too";
  EXPECT_EQ(lookedUp->viaKey(), kept);
  lookedUp = nullptr;

  rec->keys.clear();
  table->restartingVrfDel(5);
  EXPECT_FALSE(table->restartingVrfHas(5));
  EXPECT_FALSE(table->viaHas(kept)) << "the unheld via goes with the mark";
  EXPECT_TRUE(table->viaHas(rebound)) << "a via bound again during the restart stays";
  EXPECT_EQ(rec->keys, std::vector<ViaKey>{kept});
  EXPECT_EQ(restartRec->keys, (std::vector<VrfId>{5, 5}));

  h = nullptr;
  EXPECT_FALSE(table->viaHas(rebound)) << "after the restart the ordinary rule holds again";
}

TEST_F(IpViaConfigTest, RestartOfOneVrfLeavesTheOthersUnheldViasAlone) {
  table->restartingVrfIs(5);
  table->restartingVrfIs(7);
  ViaKey const five = table->dedupViaIs(hop(0x0a000001), 5)->viaKey();
  ViaKey const seven = table->dedupViaIs(hop(0x0a000001), 7)->viaKey();
  table->restartingVrfDel(5);
  EXPECT_FALSE(table->viaHas(five));
  EXPECT_TRUE(table->viaHas(seven)) << "VRF 7 is still restarting";
  table->restartingVrfDel(9);  // never marked: nothing to remove
  EXPECT_TRUE(table->viaHas(seven));
  table->restartingVrfDel(7);
  EXPECT_EQ(table->viaSize(), 0u);
}

TEST_F(IpViaConfigTest, DeletedViaAndDeadTableLeaveHandlesHarmless) {
  auto old = table->dedupViaIs(hop(0x0a000001), 0);
  ViaKey const k = old->viaKey();
  table->viaDel(k);
  EXPECT_FALSE(table->viaHas(k));
  EXPECT_EQ(old->viaKey(), k) << "a detached handle keeps its key";
  EXPECT_FALSE(old->hasOwner());

  auto fresh = table->dedupViaIs(hop(0x0a000001), 0);
  EXPECT_NE(fresh, old);
  old = nullptr;  // must not touch the new entry of the same content
  EXPECT_TRUE(table->viaHas(fresh->viaKey()));

  rec = nullptr;
  table = nullptr;  // the table goes while a handle lives
  EXPECT_FALSE(fresh->hasOwner());
  fresh = nullptr;
  EXPECT_EQ(liveSinceStart(), 0) << "table, vias, index and handles are all released";
}

TEST_F(IpViaConfigTest, ReactorMayDedupDuringThePublishOfARemoval) {
  auto a = table->dedupViaIs(hop(0x0a000001), 0);
  ViaKey const k = a->viaKey();
  Quill::Ptr<DedupViaKey> reborn;
  rec->react = [&](ViaKey const& key) {
    if (key == k && !table->viaHas(k)) reborn = table->dedupViaIs(hop(0x0a000001), 0);
  };
  a = nullptr;
  ASSERT_TRUE(reborn);
  EXPECT_NE(reborn->viaKey(), k);
  EXPECT_TRUE(table->viaHas(reborn->viaKey()));
  EXPECT_EQ(table->viaSize(), 1u);
}

TEST_F(IpViaConfigTest, IdsComeFromTheGivenAllocatorAndSkipIdsInUse) {
  auto alloc = IdAllocator::IdAllocatorIs(3);
  alloc->currentIdIs(1);
  auto t = ViaConfig::ViaConfigIs(4, 2, alloc);
  auto a = t->dedupViaIs(hop(1), 0);
  auto b = t->dedupViaIs(hop(2), 0);
  EXPECT_EQ(a->viaKey().id(), 2u);
  EXPECT_EQ(b->viaKey().id(), 3u);
  auto c = t->dedupViaIs(hop(3), 0);
  EXPECT_EQ(c->viaKey().id(), 1u) << "at the limit the allocator starts again at 1";
  b = nullptr;
  auto d = t->dedupViaIs(hop(4), 0);
  EXPECT_EQ(d->viaKey().id(), 3u) << "ids 1 and 2 are taken, so the table skips to 3";
}

}  // namespace
}  // namespace BowlineTest
