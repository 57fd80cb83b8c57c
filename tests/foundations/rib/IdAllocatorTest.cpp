// Id allocators: the in-memory one and its limit, and the file-backed one whose current id
// survives the allocator (and so a restart of the process), per slot of a shared file.
#include "foundations/rib/MmapIdAllocator.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

#include "foundations/rib/IpViaConfig.h"
#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

using Routing::Rib::IdAllocator;
using Routing::Rib::MmapIdAllocator;
using Routing::Rib::ViaContent;

class IdAllocatorTest : public RuntimeFixture {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
    std::string tmpl = (std::filesystem::temp_directory_path() / "rib-ids-XXXXXX").string();
    ASSERT_NE(mkdtemp(tmpl.data()), nullptr);
    dir = tmpl;
  }
  void TearDown() override {
    std::filesystem::remove_all(dir);
    RuntimeFixture::TearDown();
  }
  std::filesystem::path dir;
};

TEST_F(IdAllocatorTest, InMemoryIdsCountUpAndWrapToOneAtTheLimit) {
  auto a = IdAllocator::IdAllocatorIs(4);
  EXPECT_EQ(a->nextId(), 1u);
  EXPECT_EQ(a->currentIdInc(2), 3u) << "currentIdInc adds to the current id";
  EXPECT_EQ(a->nextId(), 4u);
  EXPECT_EQ(a->nextId(), 1u) << "at the limit the next id is 1 again";
  EXPECT_EQ(a->nextFreeId([](Routing::Rib::Id id) { return id < 3; }), 3u);
}

TEST_F(IdAllocatorTest, FileBackedIdSurvivesTheAllocatorPerSlot) {
  std::string const path = (dir / "ids").string();
  {
    auto a = MmapIdAllocator::MmapIdAllocatorIs(path, 3);
    ASSERT_TRUE(a->isMapped()) << a->error();
    EXPECT_EQ(a->currentId(), 0u) << "a new file starts at 0";
    EXPECT_GE(std::filesystem::file_size(path), 4 * sizeof(Routing::Rib::Id)) << "sized to hold slot 3";
    a->nextId();
    a->currentIdInc(40);
    EXPECT_EQ(a->currentId(), 41u);
    auto other = MmapIdAllocator::MmapIdAllocatorIs(path, 0);
    EXPECT_EQ(other->currentId(), 0u) << "slots are independent";
    other->currentIdIs(7);
  }
  EXPECT_EQ(liveSinceStart(), 0);
  auto again = MmapIdAllocator::MmapIdAllocatorIs(path, 3);
  EXPECT_EQ(again->currentId(), 41u) << "the id survived its allocator";
  EXPECT_EQ(again->nextId(), 42u);
  EXPECT_EQ(MmapIdAllocator::MmapIdAllocatorIs(path, 0)->currentId(), 7u);
  auto wide = MmapIdAllocator::MmapIdAllocatorIs(path, 9);
  EXPECT_EQ(wide->currentId(), 0u) << "a slot past the end grows the file";
  EXPECT_EQ(again->currentId(), 42u) << "growing the file keeps the other slots";
}

TEST_F(IdAllocatorTest, ViaIdsOfARecreatedTableContinueWhereTheLastLifeStopped) {
  std::string const path = (dir / "via-ids").string();
  ViaContent const c(Ondex::IpGenAddr::fromV4(0x0a000001), Ondex::IntfId());
  Routing::Rib::Id first = 0;
  {
    auto table = Routing::Rib::Ip::ViaConfig::ViaConfigIs(2, 1, MmapIdAllocator::MmapIdAllocatorIs(path, 0));
    first = table->dedupViaIs(c, 0)->viaKey().id();
  }
  auto table = Routing::Rib::Ip::ViaConfig::ViaConfigIs(2, 1, MmapIdAllocator::MmapIdAllocatorIs(path, 0));
  EXPECT_GT(table->dedupViaIs(c, 0)->viaKey().id(), first) << "no id of the previous life is handed out again";
}

TEST_F(IdAllocatorTest, RelativePathsGoToTheIdDirectory) {
  ASSERT_EQ(setenv("BOWLINE_ID_DIR", (dir / "sub").c_str(), 1), 0);
  auto a = MmapIdAllocator::MmapIdAllocatorIs("StaticRoute", 3);
  unsetenv("BOWLINE_ID_DIR");
  EXPECT_EQ(a->path(), (dir / "sub" / "StaticRoute").string());
  EXPECT_TRUE(a->isMapped()) << a->error();
  EXPECT_TRUE(std::filesystem::exists(dir / "sub" / "StaticRoute"));
}

TEST_F(IdAllocatorTest, UnusableFileLeavesNoStoreAndUseEndsTheProcess) {
  std::filesystem::create_directories(dir / "taken");
  auto a = MmapIdAllocator::MmapIdAllocatorIs((dir / "taken").string(), 0);  // a directory, not a file
  EXPECT_FALSE(a->isMapped());
  EXPECT_EQ(a->idPtr(), nullptr);
  EXPECT_FALSE(a->error().empty());
  EXPECT_DEATH((void)a->nextId(), "idPtr != NULL");
}

}  // namespace
}  // namespace BowlineTest
