// Mount groups complete together; the mounted entities are then reachable by path.
#include "foundations/runtime/Mount.h"

#include <gtest/gtest.h>

#include "foundations/runtime/Toggle.h"
#include "support/TestRecords.h"

namespace BowlineTest {
namespace {

TEST(MountTest, GroupCompletesAllMountsTogether) {
  Cairn::EntityManager em;
  em.typeFactoryIs("Record", [] { return Quill::Ptr<Zel::Entity>(Record::RecordIs()); });
  auto existing = Record::RecordIs();
  em.entityIs("vrf/vrfNameStatus", existing);

  Cairn::MountGroup group(&em);
  group.doMount(Cairn::Mount(Quill::String("vrf/vrfNameStatus"), Quill::String("Record")).handleFlags("r"));
  group.doMount(Cairn::Mount(Quill::String("routing/rib/loopingRouteStatus"), Quill::String("Record")).handleFlags("r"));
  group.doMount(Cairn::Mount(Quill::String("unknown/path"), Quill::String("NoSuchType")).handleFlags("r"));
  EXPECT_FALSE(group.mountsComplete());
  EXPECT_EQ(em.getEntity("routing/rib/loopingRouteStatus"), nullptr) << "nothing before the group completes";

  EXPECT_EQ(group.doCompleteMounts(), 3u);
  EXPECT_TRUE(group.mountsComplete());
  EXPECT_EQ(em.getEntity("vrf/vrfNameStatus"), existing) << "a populated path keeps its entity";
  EXPECT_NE(em.get<Record>("routing/rib/loopingRouteStatus"), nullptr) << "an empty path gets an empty table";
  EXPECT_EQ(em.getEntity("unknown/path"), nullptr) << "a type nobody can make stays absent";
  EXPECT_EQ(Cell::path("ip/status").view(), "cell/0/ip/status");
}

TEST(MountTest, SharedMemoryMountsKeepTheirModes) {
  ZelSharedMem::EntityManager sm;
  sm.typeFactoryIs("Record", [] { return Quill::Ptr<Zel::Entity>(Record::RecordIs()); });
  ZelSkein::MountInfo writer(ZelSkein::writerTable);
  writer.collectionInfoIs({Quill::String("via"), 1u << 20, 0});
  auto table = sm.doMount("routing/rib/viaConfig/ip/static", "Record", writer);
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(sm.mountRecord("routing/rib/viaConfig/ip/static")->info.collectionInfo().at(0).capacity, 1u << 20);
  sm.assertSafeToAccess(table.get(), "routing/rib/viaConfig/ip/static");
  sm.doUnmount("routing/rib/viaConfig/ip/static");
  EXPECT_EQ(sm.mountRecord("routing/rib/viaConfig/ip/static"), nullptr);
  sm.cleanup("routing/rib/viaConfig/ip/static");
  EXPECT_EQ(sm.getEntity("routing/rib/viaConfig/ip/static"), nullptr);
}

TEST(MountTest, TogglesAreReadOnceAndSetOnlyBeforeFirstUse) {
  Zel::toggleStateResetForTest();
  EXPECT_TRUE(toggleViaWeightChangeEnabled()) << "on by default";
  EXPECT_FALSE(Zel::toggleStateIs("ViaWeightChange", false)) << "too late once read";
  EXPECT_TRUE(toggleViaWeightChangeEnabled());

  Zel::toggleStateResetForTest();
  EXPECT_TRUE(Zel::toggleStateIs("ViaWeightChange", false));
  EXPECT_FALSE(toggleViaWeightChangeEnabled());
  EXPECT_FALSE(toggleViaWeightChangeEnabled());
  Zel::toggleStateResetForTest();
  EXPECT_TRUE(toggleRouteInputStaticRouteJointAgentsEnabled());
}

}  // namespace
}  // namespace BowlineTest
