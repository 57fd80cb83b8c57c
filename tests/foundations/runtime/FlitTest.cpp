#include "foundations/runtime/Flit.h"

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/runtime/Dualog.h"

ZEL_TRACE_FACILITY("Test::FlitTest");

namespace {

// Counts how often it is printed, so that a test can tell when an argument was formatted.
struct Nexthop {
  std::string address;
  mutable int printed = 0;
};
std::ostream& operator<<(std::ostream& os, Nexthop const& nh) {
  ++nh.printed;
  return os << "via " << nh.address;
}

enum class Kind { ipv4, ipv6 };
enum Bare { bareZero, bareOne };

std::uint16_t bit(int level) { return std::uint16_t(1u << level); }

class FlitTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ring().slotsPerLevelIs(Flit::RingBuf::defaultSlotsPerLevel);
    handle().flitMaskIs(Zel::flitDefaultMask);
    handle().maskIs(0);
    Zel::traceSinkIs([this](Zel::TraceLine const& line) { traced.push_back(line.text()); });
  }
  void TearDown() override { Zel::traceSinkIs({}); }
  static Zel::TraceHandle& handle() { return Zel::traceHandle("Test::FlitTest"); }
  static Flit::RingBuf& ring() { return Flit::RingBuf::instance(); }

  std::vector<std::string> traced;
};

// One statement site, run as often as a test likes.
std::uint32_t addedRoute(int vrfIndex, std::string const& prefix) {
  FLIT(2, "Vrf: {}, added {}", vrfIndex, prefix);
  return 0;
}

TEST_F(FlitTest, StatementRegistersItsMessageOnce) {
  std::size_t const before = Flit::msgCount();
  for (int i = 0; i < 3; ++i) addedRoute(i, "10.0.0.0/8");
  ASSERT_EQ(Flit::msgCount(), before + 1) << "three runs of one statement, one message";
  EXPECT_EQ(Flit::msgDesc(std::uint32_t(before + 1))->format, "Vrf: {}, added {}");

  int const line = __LINE__ + 1;
  FLIT(2, "another {}", 1);
  ASSERT_EQ(Flit::msgCount(), before + 2) << "another statement, another message";
  EXPECT_EQ(Flit::msgDesc(std::uint32_t(before + 2))->line, line);

  EXPECT_EQ(ring().lines(2), (std::vector<std::string>{
                                 "Test::FlitTest[2] Vrf: 0, added 10.0.0.0/8",
                                 "Test::FlitTest[2] Vrf: 1, added 10.0.0.0/8",
                                 "Test::FlitTest[2] Vrf: 2, added 10.0.0.0/8",
                                 "Test::FlitTest[2] another 1",
                             }));
}

TEST_F(FlitTest, RingKeepsTheNewestWhenItWraps) {
  ring().slotsPerLevelIs(3);
  EXPECT_EQ(ring().slotsPerLevel(), 4u) << "rounded up to a power of two";
  for (int i = 0; i < 10; ++i) FLIT(1, "route {}", i);
  FLIT(0, "other level {}", 0);
  EXPECT_EQ(ring().writeCount(1), 10u);
  EXPECT_EQ(ring().lines(1), (std::vector<std::string>{"Test::FlitTest[1] route 6", "Test::FlitTest[1] route 7",
                                                       "Test::FlitTest[1] route 8", "Test::FlitTest[1] route 9"}));
  EXPECT_EQ(ring().lines(0), (std::vector<std::string>{"Test::FlitTest[0] other level 0"}))
      << "each level has its own ring";

  ring().clear();
  EXPECT_TRUE(ring().lines(1).empty());
}

TEST_F(FlitTest, DumpFormatsTheStoredArguments) {
  Nexthop nh{"10.1.1.1"};
  Quill::String const vrf("red");
  std::string const intf = "Ethernet1";
  int value = 0;
  int const line = __LINE__ + 1;
  FLIT(0, "Vrf: {}, {} {} {:#x} {:.2f} {} {} {} {} {} {} {}", vrf, intf, -5, 255u, 2.5, true, 'c', Kind::ipv6, bareOne,
       nh, std::int8_t(-3), std::uint64_t(1) << 63);
  FLIT(0, "at {}", &value);
  EXPECT_EQ(nh.printed, 1) << "a value without raw form is formatted once, when written";
  nh.address = "changed";
  std::vector<std::string> const lines = ring().lines(0, true);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "Test::FlitTest[0] Vrf: red, Ethernet1 -5 0xff 2.50 true c 1 1 via 10.1.1.1 -3 "
                      "9223372036854775808 (FlitTest.cpp:" + std::to_string(line) + ")");
  EXPECT_EQ(lines[1].substr(0, lines[1].find(" (")),
            fmt::format("Test::FlitTest[0] at {}", static_cast<void*>(&value)));
  EXPECT_EQ(nh.printed, 1);

  FLIT(2, "two");
  EXPECT_EQ(ring().dumpText(), "level 0:\n" + ring().lines(0)[0] + "\n" + ring().lines(0)[1] +
                                   "\nlevel 2:\nTest::FlitTest[2] two\n");
}

TEST_F(FlitTest, TextLongerThanASlotIsCut) {
  std::string const longText(300, 'x');
  FLIT(0, "{}|{}|{}", 1, longText, 2);
  std::vector<std::string> const lines = ring().lines(0);
  ASSERT_EQ(lines.size(), 1u);
  std::string const message = lines[0].substr(std::string("Test::FlitTest[0] ").size());
  EXPECT_EQ(message.substr(0, 2), "1|");
  EXPECT_TRUE(message.ends_with("|<?>")) << message;
  auto const stored = message.size() - 2 - 4;
  EXPECT_GT(stored, 64u);
  EXPECT_LT(stored, Flit::RingBuf::payloadBytes);
  EXPECT_EQ(message.substr(2, stored), std::string(stored, 'x'));
}

TEST_F(FlitTest, FlitMaskGatesTheStatement) {
  int calls = 0;
  auto counted = [&calls] { return ++calls; };
  FLIT(3, "off by default {}", counted());
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(ring().writeCount(3), 0u);
  FLIT(2, "on by default {}", counted());
  EXPECT_EQ(calls, 1);

  EXPECT_EQ(Zel::flitLevelsIs("Test::FlitTest", bit(3)), "");
  FLIT(2, "now off {}", counted());
  FLIT(3, "now on {}", counted());
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(ring().lines(3), (std::vector<std::string>{"Test::FlitTest[3] now on 2"}));
  EXPECT_TRUE(traced.empty()) << "the Flit ring does not write to the sink";
}

TEST_F(FlitTest, DualogWritesToBothBackEnds) {
  int calls = 0;
  auto counted = [&calls] { return ++calls; };
  handle().maskIs(bit(1));
  DUALOG(1, "Vrf: {}, Initialized --> True", counted());
  EXPECT_EQ(calls, 1) << "evaluated once for both";
  ASSERT_EQ(traced.size(), 1u);
  EXPECT_EQ(traced[0], "Test::FlitTest[1] Vrf: 1, Initialized --> True");
  EXPECT_EQ(ring().lines(1), traced);

  // Only the ring.
  handle().maskIs(0);
  DUALOG(1, "ring only {}", counted());
  EXPECT_EQ(traced.size(), 1u);
  EXPECT_EQ(ring().lines(1).back(), "Test::FlitTest[1] ring only 2");

  // Only the sink.
  handle().maskIs(bit(5));
  DUALOG(5, "sink only {}", counted());
  EXPECT_EQ(traced.back(), "Test::FlitTest[5] sink only 3");
  EXPECT_EQ(ring().writeCount(5), 0u);

  // Neither: nothing evaluated.
  DUALOG(6, "neither {}", counted());
  EXPECT_EQ(calls, 3);

  // An explicit handle.
  Zel::TraceHandle& other = Zel::traceHandle("Test::FlitTest::Other");
  other.maskIs(bit(0));
  DUALOG_H(other, 0, "via macro");
  EXPECT_EQ(traced.back(), "Test::FlitTest::Other[0] via macro");
}

}  // namespace
