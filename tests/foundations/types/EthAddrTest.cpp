// Ondex::EthAddr: the text forms it reads, and what it refuses.
#include "foundations/types/EthAddr.h"

#include <gtest/gtest.h>

namespace {

using Ondex::EthAddr;

TEST(EthAddrTest, ParsesBothNotationsAndRefusesTheRest) {
  EthAddr const mac(EthAddr::Bytes{0x02, 0xbb, 0x0c, 0xdd, 0xee, 0x01});
  EXPECT_EQ(mac.toString(), "02:bb:0c:dd:ee:01");
  EXPECT_EQ(EthAddr::fromString("02:BB:0C:DD:EE:01"), mac);
  EXPECT_EQ(EthAddr::fromString("02bb.0cdd.ee01"), mac);
  EXPECT_FALSE(EthAddr());
  EXPECT_TRUE(EthAddr(EthAddr::Bytes{0x80, 0, 0, 0, 0, 0}));
  for (std::string_view bad : {"", "aa:bb:cc:dd:ee", "aa:bb:cc:dd:ee:ff:00", "a:bb:cc:dd:ee:ff", "aa:bb:cc:dd:ee:fg",
                               "aa-bb-cc-dd-ee-ff", "aa:bb:cc:dd:ee:ff ", "aabb.ccdd.eef", "aabb:ccdd:eeff",
                               "aabbccddeeff", "aa:bb.cc:dd:ee:ff"}) {
    EXPECT_FALSE(EthAddr::fromString(bad).has_value()) << bad;
  }
}

}  // namespace
