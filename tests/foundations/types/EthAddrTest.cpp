// Ondex::EthAddr: text forms both ways, "none" as all zeros.
#include "foundations/types/EthAddr.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

namespace {

using Ondex::EthAddr;

TEST(EthAddrTest, PrintsAndParses) {
  EthAddr const mac(EthAddr::Bytes{0xaa, 0xbb, 0x0c, 0xdd, 0xee, 0x01});
  EXPECT_EQ(mac.toString(), "aa:bb:0c:dd:ee:01");
  EXPECT_EQ(fmt::format("{}", mac), "aa:bb:0c:dd:ee:01");
  EXPECT_EQ(valueToStrep(mac), "'aa:bb:0c:dd:ee:01'");
  EXPECT_EQ(EthAddr::fromString("aa:bb:0c:dd:ee:01"), mac);
  EXPECT_EQ(EthAddr::fromString("AA:BB:0C:DD:EE:01"), mac);
  EXPECT_EQ(EthAddr::fromString("aabb.0cdd.ee01"), mac);
  EXPECT_EQ(EthAddr::fromStrep(valueToStrep(mac)), mac);
  EXPECT_EQ(EthAddr::fromStrep("'00:00:00:00:00:00'"), EthAddr());
  EXPECT_EQ(EthAddr::fromString("ff:ff:ff:ff:ff:ff")->bytes(), (EthAddr::Bytes{255, 255, 255, 255, 255, 255}));

  for (std::string_view bad : {"", "aa:bb:cc:dd:ee", "aa:bb:cc:dd:ee:ff:00", "a:bb:cc:dd:ee:ff", "aa:bb:cc:dd:ee:fg",
                               "aa-bb-cc-dd-ee-ff", "aa:bb:cc:dd:ee:ff ", "aabb.ccdd.eef", "aabb:ccdd:eeff",
                               "aabbccddeeff", "aa:bb.cc:dd:ee:ff"}) {
    EXPECT_FALSE(EthAddr::fromString(bad).has_value()) << bad;
  }
  EXPECT_FALSE(EthAddr::fromStrep("aa:bb:cc:dd:ee:ff").has_value()) << "unquoted";
}

TEST(EthAddrTest, AllZerosIsNone) {
  EXPECT_FALSE(EthAddr());
  EXPECT_TRUE(EthAddr().isZero());
  EXPECT_TRUE(EthAddr(EthAddr::Bytes{0, 0, 0, 0, 0, 1}));
  EXPECT_TRUE(EthAddr(EthAddr::Bytes{0x80, 0, 0, 0, 0, 0}));
}

}  // namespace
