// Mounting a RIB table's path that holds nothing yet creates an empty table of the type the mount
// names, once the RIB factories are registered; a second mount finds the same table.
#include "foundations/rib/RibTypeFactories.h"

#include <gtest/gtest.h>

#include "foundations/rib/EvpnViaConfig.h"
#include "foundations/rib/IpViaConfig.h"
#include "foundations/rib/LoopingRouteStatus.h"
#include "foundations/rib/NextHopDependencyGraph.h"
#include "foundations/rib/RouteConfig.h"
#include "foundations/rib/ViaMetricStatus.h"
#include "foundations/rib/ViaSetCollection.h"
#include "foundations/rib/ViaStatus.h"
#include "support/RuntimeFixture.h"

namespace BowlineTest {
namespace {

class RibTypeFactoriesTest : public RuntimeFixture {};

TEST_F(RibTypeFactoriesTest, EachMountedTypeNameMakesItsTable) {
  ZelSharedMem::EntityManager shmem;
  EXPECT_FALSE(shmem.doMount("routing/rib/viaConfig/ipv4/staticConfig", "Routing::Rib::Ip::ViaConfig",
                             ZelSkein::MountInfo(ZelSkein::writerTable)))
      << "without the factories nothing can be made";
  Routing::Rib::ribTypeFactoriesIs(shmem);

  auto mount = [&](std::string_view type) {
    return shmem.doMount(std::string("t/") + std::string(type), type, ZelSkein::MountInfo(ZelSkein::writerTable));
  };
  EXPECT_TRUE(Quill::dynamic_ptr_cast<Routing::Rib::Ip::ViaConfig>(mount("Routing::Rib::Ip::ViaConfig")));
  EXPECT_TRUE(Quill::dynamic_ptr_cast<Routing::Rib::Evpn::ViaConfig>(mount("Routing::Rib::Evpn::ViaConfig")));
  EXPECT_TRUE(Quill::dynamic_ptr_cast<Routing::Rib::RouteConfig>(mount("Routing::Rib::RouteConfig")));
  EXPECT_TRUE(Quill::dynamic_ptr_cast<Routing::Rib::Skein::ViaSetCollection>(mount("Routing::Rib::Skein::ViaSetCollection")));
  EXPECT_TRUE(Quill::dynamic_ptr_cast<Routing::Rib::Ip::GlobalNextHopDependencyGraph>(
      mount("Routing::Rib::Ip::GlobalNextHopDependencyGraph")));
  EXPECT_TRUE(Quill::dynamic_ptr_cast<Routing::Rib::ViaMetricStatusByVrf>(mount("Routing::Rib::ViaMetricStatusByVrf")));
  EXPECT_TRUE(Quill::dynamic_ptr_cast<Routing::Rib::ViaStatusByVrf>(mount("Routing::Rib::ViaStatusByVrf")));
  EXPECT_TRUE(
      Quill::dynamic_ptr_cast<Routing::Rib::LoopingRouteStatusByVrf>(mount("Routing::Rib::LoopingRouteStatusByVrf")));
  EXPECT_EQ(Routing::Rib::ribTypeNames().size(), 8u);

  auto first = mount("Routing::Rib::RouteConfig");
  EXPECT_EQ(mount("Routing::Rib::RouteConfig"), first) << "a mounted path keeps its table";
}

}  // namespace
}  // namespace BowlineTest
