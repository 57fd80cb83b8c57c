#include "foundations/runtime/Trace.h"

#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

ZEL_TRACE_FACILITY("Test::TraceTest");

namespace {

struct Prefix {
  std::string text;
  int length;
};
std::ostream& operator<<(std::ostream& os, Prefix const& p) { return os << p.text << '/' << p.length; }

enum class Af { ipv4 = 1, ipv6 = 2 };
std::ostream& operator<<(std::ostream& os, Af af) { return os << (af == Af::ipv4 ? "ipv4" : "ipv6"); }

enum Plain { plainZero, plainOne, plainTwo };

std::uint16_t bit(int level) { return std::uint16_t(1u << level); }

// Captures the lines of the process registry and starts every test with all stream levels off.
class TraceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Zel::traceSinkIs([this](Zel::TraceLine const& line) {
      lines.push_back(line.text());
      located.push_back(line.text(true));
      functions.push_back(line.function);
      levels.push_back(line.level);
    });
    Zel::traceLevelsIs("*", 0);
    handle().maskIs(0);
  }
  void TearDown() override {
    Zel::traceSinkIs({});
    Zel::traceLocationShownIs(false);
  }
  static Zel::TraceHandle& handle() { return Zel::traceHandle("Test::TraceTest"); }

  std::vector<std::string> lines;
  std::vector<std::string> located;
  std::vector<std::string> functions;
  std::vector<int> levels;
};

// A registry of the test's own, started with BOWLINE_TRACE set to the given text (or unset).
class EnvironmentRegistry {
 public:
  explicit EnvironmentRegistry(char const* rules) {
    if (rules) {
      ::setenv("BOWLINE_TRACE", rules, 1);
    } else {
      ::unsetenv("BOWLINE_TRACE");
    }
    registry = std::make_unique<Zel::TraceRegistry>();
    ::unsetenv("BOWLINE_TRACE");
  }
  [[nodiscard]] std::uint16_t mask(std::string_view facility) const { return registry->handle(facility).mask(); }
  [[nodiscard]] std::uint16_t flitMask(std::string_view facility) const {
    return registry->handle(facility).flitMask();
  }
  std::unique_ptr<Zel::TraceRegistry> registry;
};

TEST_F(TraceTest, DisabledStatementTestsOneBitAndEvaluatesNothing) {
  int calls = 0;
  auto costly = [&calls] {
    ++calls;
    return std::string("costly");
  };
  handle().maskIs(std::uint16_t(~bit(8) & ~bit(6)));  // every level but the two used below
  TRACE(8, "Vrf: red, " << costly());
  FMTRACE(6, "Vrf: {}, added", costly());
  EXPECT_EQ(calls, 0);
  EXPECT_TRUE(lines.empty());

  handle().maskIs(bit(8));
  TRACE(8, "Vrf: red, " << costly());
  FMTRACE(6, "Vrf: {}, added", costly());
  EXPECT_EQ(calls, 1);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0], "Test::TraceTest[8] Vrf: red, costly");

  handle().maskIs(bit(6));
  FMTRACE(6, "Vrf: {}, added", costly());
  EXPECT_EQ(calls, 2);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[1], "Test::TraceTest[6] Vrf: costly, added");

  // A level outside 0-15 never runs, whatever the mask.
  handle().maskIs(0xffff);
  TRACE(16, costly());
  TRACE(-1, costly());
  EXPECT_EQ(calls, 2);
}

TEST_F(TraceTest, LevelsSetByNameBeforeAndAfterTheHandleExists) {
  Zel::TraceRegistry& registry = Zel::TraceRegistry::instance();
  ASSERT_EQ(registry.handleIfExists("Test::Later::Sm"), nullptr);
  EXPECT_EQ(Zel::traceLevelsIs("Test::Later::Sm", bit(0) | bit(9)), "");
  EXPECT_EQ(Zel::traceLevelsIs("Test::Later::*", bit(3)), "");
  Zel::TraceHandle& later = Zel::traceHandle("Test::Later::Sm");
  EXPECT_EQ(later.mask(), bit(0) | bit(9)) << "an exact name beats a wildcard";
  EXPECT_EQ(Zel::traceHandle("Test::Later::Other").mask(), bit(3));
  EXPECT_EQ(Zel::traceHandle("Test::Laterish").mask(), 0) << "'*' only matches what follows the prefix";
  EXPECT_EQ(&Zel::traceHandle("Test::Later::Sm"), &later) << "one handle per name";

  // Changing a rule reaches the existing handles it names, and only those.
  Zel::traceHandle("Test::Direct").maskIs(bit(5));
  EXPECT_EQ(Zel::traceLevelsIs("Test::Later::Sm", bit(8)), "");
  EXPECT_EQ(later.mask(), bit(8));
  EXPECT_EQ(Zel::traceLevelsIs("Test::Later::*", bit(4)), "");
  EXPECT_EQ(later.mask(), bit(8)) << "the exact rule still wins";
  EXPECT_EQ(Zel::traceHandle("Test::Later::Other").mask(), bit(4));
  EXPECT_EQ(Zel::traceHandle("Test::Direct").mask(), bit(5)) << "a directly set mask survives an unrelated rule";

  // The stream and Flit halves are independent.
  EXPECT_EQ(later.flitMask(), Zel::flitDefaultMask);
  EXPECT_EQ(Zel::flitLevelsIs("Test::Later::Sm", 0xff00), "");
  EXPECT_EQ(later.flitMask(), 0xff00);
  EXPECT_EQ(later.mask(), bit(8));

  // A bad pattern changes nothing and says why.
  EXPECT_NE(Zel::traceLevelsIs("Test::*::Sm", 0xffff), "");
  EXPECT_EQ(later.mask(), bit(8));

  // The handles are listed in name order.
  auto const all = registry.handles();
  ASSERT_GE(all.size(), 4u);
  for (std::size_t i = 1; i < all.size(); ++i) EXPECT_LT(all[i - 1]->name(), all[i]->name());
}

TEST_F(TraceTest, RuleStringsAndTheEnvironment) {
  // Read at start-up: ranges, lists, wildcards, "all", Flit levels, and a leading bare term for "*".
  EnvironmentRegistry env("1, IpRib::RouteStatusSm=0-9,StaticRoute::*=6,8 ,*=0,Ferrule::BfdStatusSm=all,"
                          "flit:IpRib::*=none,flit:IpRib::IntfSm=3");
  EXPECT_EQ(env.registry->environmentError(), "");
  EXPECT_EQ(env.mask("IpRib::RouteStatusSm"), 0x03ff);
  EXPECT_EQ(env.mask("StaticRoute::RouteConfigSm"), bit(6) | bit(8));
  EXPECT_EQ(env.mask("StaticRoute::RouteConfigSm::SipValidation"), bit(6) | bit(8));
  EXPECT_EQ(env.mask("Ferrule::BfdStatusSm"), 0xffff);
  EXPECT_EQ(env.mask("RouteCacheRouteHelperSm"), bit(0)) << "the later '*=0' replaced the leading '1'";
  EXPECT_EQ(env.flitMask("IpRib::ViaMetricStatusSm"), 0);
  EXPECT_EQ(env.flitMask("IpRib::IntfSm"), bit(3));
  EXPECT_EQ(env.flitMask("RouteCacheRouteHelperSm"), Zel::flitDefaultMask);

  // Bad items are reported, on stderr when read from the environment, and skipped; good ones apply.
  ::testing::internal::CaptureStderr();
  EnvironmentRegistry bad("A::B=16,A::C=9-3,A::D=x,A::E=,=3,A::*::F=1,A::G=2,5-4,A::H=1-2");
  std::string const printed = ::testing::internal::GetCapturedStderr();
  std::string const& error = bad.registry->environmentError();
  for (char const* expected :
       {"bad trace level '16' in 'A::B=16'", "bad trace level '9-3'", "bad trace level 'x'", "bad trace level ''",
        "empty facility pattern", "'*' is allowed only at the end of facility pattern 'A::*::F'",
        "bad trace level '5-4' in 'A::G=2,5-4'"}) {
    EXPECT_NE(error.find(expected), std::string::npos) << expected << " not in: " << error;
  }
  EXPECT_EQ(printed, "BOWLINE_TRACE: " + error + "\n");
  EXPECT_EQ(bad.mask("A::B"), 0);
  EXPECT_EQ(bad.mask("A::G"), 0) << "an item with one bad term is skipped whole";
  EXPECT_EQ(bad.mask("A::H"), bit(1) | bit(2));

  // Without the variable nothing is set, and a rules string can still be applied later.
  EnvironmentRegistry none(nullptr);
  EXPECT_EQ(none.registry->environmentError(), "");
  EXPECT_EQ(none.mask("IpRib::RouteStatusSm"), 0);
  EXPECT_EQ(none.registry->traceRulesIs("IpRib::*=2-3"), "");
  EXPECT_EQ(none.mask("IpRib::RouteStatusSm"), bit(2) | bit(3));
  EXPECT_EQ(none.registry->traceRulesIs("junk,flit:=3"),
            "bad trace level 'junk' in 'junk'; empty facility pattern in 'flit:=3'");
  EXPECT_EQ(none.registry->traceRulesIs(""), "");
}

TEST_F(TraceTest, SinkReceivesTheExactLine) {
  handle().maskIs(bit(8));
  int const line = __LINE__ + 1;
  TRACE(8, "Vrf: " << "red" << ", handleRoute " << 42 << ' ' << true << ' ' << -1.5 << ' ' << 7u);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0], "Test::TraceTest[8] Vrf: red, handleRoute 42 true -1.5 7");
  EXPECT_EQ(located[0], lines[0] + " (TraceTest.cpp:" + std::to_string(line) + ")");
  EXPECT_EQ(functions[0], "TestBody");
  EXPECT_EQ(levels[0], 8);

  // The default sink writes the same line to stderr, with the location when asked.
  Zel::traceSinkIs({});
  ::testing::internal::CaptureStderr();
  TRACE(8, "to stderr");
  Zel::traceLocationShownIs(true);
  int const secondLine = __LINE__ + 1;
  FMTRACE(8, "{} too", "located");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "Test::TraceTest[8] to stderr\nTest::TraceTest[8] located too (TraceTest.cpp:" +
                std::to_string(secondLine) + ")\n");
}

TEST_F(TraceTest, UserTypesInBothForms) {
  handle().maskIs(bit(6));
  Prefix const prefix{"10.0.0.0", 8};
  Quill::String const vrf("red");
  char const* nothing = nullptr;
  int value = 3;
  FMTRACE(6, "Vrf: {}, added {} {} {} {:>6}|{}|{:#x}|{}", vrf, prefix, Af::ipv6, plainTwo, Af::ipv4, nothing, 255,
          false);
  TRACE(6, "Vrf: " << vrf << ", added " << prefix << ' ' << Af::ipv6 << ' ' << plainTwo << ' ' << nothing);
  TRACE(6, &value);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], "Test::TraceTest[6] Vrf: red, added 10.0.0.0/8 ipv6 2   ipv4|(null)|0xff|false");
  EXPECT_EQ(lines[1], "Test::TraceTest[6] Vrf: red, added 10.0.0.0/8 ipv6 2 (null)");
  EXPECT_EQ(lines[2], fmt::format("Test::TraceTest[6] {}", static_cast<void const*>(&value)));

  // The function form: the prefix goes first, and the level is tested again.
  Quill::fmtrace(handle(), 6, "file.cpp", "handleRoute", 12, "Vrf: red, ", "handleRoute {}", prefix);
  Quill::fmtrace(handle(), 7, "file.cpp", "handleRoute", 12, "Vrf: red, ", "handleRoute {}", prefix);
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(located[3], "Test::TraceTest[6] Vrf: red, handleRoute 10.0.0.0/8 (file.cpp:12)");
}

TEST_F(TraceTest, ExplicitHandleWritesToItsOwnRegistry) {
  EnvironmentRegistry own("Own::Sm=2");
  std::vector<std::string> ownLines;
  own.registry->sinkIs([&ownLines](Zel::TraceLine const& line) { ownLines.push_back(line.text()); });
  Zel::TraceHandle const& ownHandle = own.registry->handle("Own::Sm");
  TRACE_H(ownHandle, 2, "stream " << 1);
  FMTRACE_H(ownHandle, 2, "fmt {}", 2);
  FMTRACE_H(ownHandle, 3, "fmt {}", 3);
  EXPECT_EQ(ownLines, (std::vector<std::string>{"Own::Sm[2] stream 1", "Own::Sm[2] fmt 2"}));
  EXPECT_TRUE(lines.empty());
}

}  // namespace
