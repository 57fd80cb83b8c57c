// Host::RouteFile: every line form (next hop, next hop and interface, interface, drop, preference),
// comments and blank lines, IPv6, the errors with their line numbers, and loading from a file.
#include "host/RouteFile.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace {

using Host::RouteFile;
using Ondex::IntfId;
using Ondex::IpGenAddr;
using Ondex::IpGenPrefix;
using Routing::RouteType;

IpGenPrefix pfx(char const* text) { return *IpGenPrefix::fromString(text); }
IpGenAddr addr(char const* text) { return *IpGenAddr::fromString(text); }

std::vector<std::string> errorTexts(RouteFile const& rf) {
  std::vector<std::string> out;
  for (auto const& e : rf.errors()) out.push_back(e.text());
  return out;
}

std::filesystem::path scenarioDir() { return std::filesystem::path(__FILE__).parent_path() / "scenarios"; }

TEST(RouteFileTest, EveryLineFormWithCommentsAndBlankLines) {
  RouteFile const rf = RouteFile::parse(
      "# a comment line\n"
      "\n"
      "   \t  \n"
      "10.0.0.0/8 192.168.1.1\n"
      "10.1.0.0/16\t192.168.1.2\t7   # trailing comment\n"
      "10.2.0.0/16 192.168.1.3 Ethernet3 9\n"
      "10.3.0.0/16 Vlan10\n"
      "10.4.0.0/16 drop 200\n"
      "10.5.0.0/16 Ethernet5#no blank before the comment\n"
      "10.6.7.8/16 192.168.1.6\r\n"
      "2001:db8::/32 fe80::1 Ethernet1\n"
      "::/0 2001:db8::ff 255\n"
      "10.7.0.0/16 192.168.1.7",  // no newline at the end
      "t.txt");
  ASSERT_TRUE(rf.ok()) << rf.errors().front().text();
  EXPECT_EQ(rf.lines(), 13u);
  std::vector<RouteFile::Entry> const want = {
      {pfx("10.0.0.0/8"), addr("192.168.1.1"), IntfId(), 1, RouteType::forward},
      {pfx("10.1.0.0/16"), addr("192.168.1.2"), IntfId(), 7, RouteType::forward},
      {pfx("10.2.0.0/16"), addr("192.168.1.3"), IntfId("Ethernet3"), 9, RouteType::forward},
      {pfx("10.3.0.0/16"), IpGenAddr(), IntfId("Vlan10"), 1, RouteType::forward},
      {pfx("10.4.0.0/16"), IpGenAddr(), IntfId(), 200, RouteType::drop},
      {pfx("10.5.0.0/16"), IpGenAddr(), IntfId("Ethernet5"), 1, RouteType::forward},
      {pfx("10.6.0.0/16"), addr("192.168.1.6"), IntfId(), 1, RouteType::forward},  // host bits cleared
      {pfx("2001:db8::/32"), addr("fe80::1"), IntfId("Ethernet1"), 1, RouteType::forward},
      {pfx("::/0"), addr("2001:db8::ff"), IntfId(), 255, RouteType::forward},
      {pfx("10.7.0.0/16"), addr("192.168.1.7"), IntfId(), 1, RouteType::forward},
  };
  ASSERT_EQ(rf.entries().size(), want.size());
  for (std::size_t i = 0; i < want.size(); ++i) {
    EXPECT_EQ(rf.entries()[i], want[i]) << "entry " << i << ": " << rf.entries()[i].prefix;
  }
}

TEST(RouteFileTest, BadLinesAreNamedByLineAndTheRestStillLoads) {
  RouteFile const rf = RouteFile::parse(
      "10.0.0.0/8 192.168.1.1\n"                       // 1 ok
      "10.0.0.300/8 192.168.1.1\n"                     // 2 bad prefix address
      "10.0.0.0/33 192.168.1.1\n"                      // 3 length too long
      "10.0.0.0 192.168.1.1\n"                         // 4 no length
      "10.1.0.0/16 192.168.1.300\n"                    // 5 bad next hop
      "10.2.0.0/16\n"                                  // 6 nothing after the prefix
      "10.3.0.0/16 192.168.1.1 0\n"                    // 7 preference 0
      "10.3.0.0/16 192.168.1.1 256\n"                  // 8 preference too large
      "10.4.0.0/16 drop 5 extra\n"                     // 9 trailing field
      "10.5.0.0/16 01.2.3.4\n"                         // 10 leading zero
      "2001:db8::/129 ::1\n"                           // 11 IPv6 length too long
      "2001:db8::/64 2001:db8:::1\n"                   // 12 bad IPv6 next hop
      "10.6.0.0/16 192.168.1.1 Ethernet1 Ethernet2\n"  // 13 two interfaces
      "10.7.0.0/16 192.168.1.7\n",                     // 14 ok
      "bad.txt");
  EXPECT_FALSE(rf.ok());
  ASSERT_EQ(rf.entries().size(), 2u);
  EXPECT_EQ(rf.entries()[1].prefix, pfx("10.7.0.0/16"));
  std::vector<std::string> const want = {
      "bad.txt:2: \"10.0.0.300/8\" is not a prefix",
      "bad.txt:3: \"10.0.0.0/33\" is not a prefix",
      "bad.txt:4: \"10.0.0.0\" is not a prefix",
      "bad.txt:5: \"192.168.1.300\" is not an IP address",
      "bad.txt:6: missing next hop (an address, an interface or \"drop\")",
      "bad.txt:7: \"0\" is not a preference (1..255)",
      "bad.txt:8: \"256\" is not a preference (1..255)",
      "bad.txt:9: unexpected \"extra\" after the route",
      "bad.txt:10: \"01.2.3.4\" is not an IP address",
      "bad.txt:11: \"2001:db8::/129\" is not a prefix",
      "bad.txt:12: \"2001:db8:::1\" is not an IP address",
      "bad.txt:13: \"Ethernet2\" is not a preference (1..255)",
  };
  ASSERT_EQ(rf.errors().size(), want.size());
  for (std::size_t i = 0; i < want.size(); ++i) EXPECT_EQ(rf.errors()[i].text(), want[i]);
  EXPECT_EQ(rf.errorCount(), want.size());
}

TEST(RouteFileTest, ErrorsPastTheCapAreCountedNotKept) {
  std::string text;
  for (std::size_t i = 0; i < RouteFile::kMaxErrors + 20; ++i) text += "nonsense\n";
  RouteFile const rf = RouteFile::parse(text, "x");
  EXPECT_EQ(rf.errors().size(), RouteFile::kMaxErrors);
  EXPECT_EQ(rf.errorCount(), RouteFile::kMaxErrors + 20);
  EXPECT_EQ(rf.errors().back().line, RouteFile::kMaxErrors);
}

TEST(RouteFileTest, LoadsFromAFileAndNamesAMissingOne) {
  RouteFile const rf = RouteFile::load((scenarioDir() / "routes.txt").string(), "routes.txt");
  ASSERT_TRUE(rf.ok()) << rf.errors().front().text();
  ASSERT_EQ(rf.size(), 6u);
  EXPECT_EQ(rf.entries()[1].preference, 20);
  EXPECT_EQ(rf.entries()[4].type, RouteType::drop);
  EXPECT_EQ(rf.entries()[5].prefix, pfx("2001:db8:100::/48"));

  // An empty file is no routes and no error.
  auto const empty = std::filesystem::temp_directory_path() / "bowline-routefile-empty.txt";
  { std::ofstream(empty.string()); }
  RouteFile const none = RouteFile::load(empty.string());
  std::filesystem::remove(empty);
  EXPECT_TRUE(none.ok());
  EXPECT_EQ(none.size(), 0u);

  RouteFile const missing = RouteFile::load("/nonexistent/dir/routes.txt", "routes.txt");
  ASSERT_EQ(missing.errors().size(), 1u);
  EXPECT_EQ(missing.errors()[0].text(), "routes.txt: cannot read: No such file or directory");
  RouteFile const dir = RouteFile::load(scenarioDir().string(), "scenarios");
  ASSERT_EQ(dir.errors().size(), 1u);
  EXPECT_EQ(dir.errors()[0].text(), "scenarios: cannot read: is a directory, not a regular file");
}

TEST(RouteFileTest, OnlyARegularFileOfBoundedSizeIsOpened) {
  // A FIFO would block the open and a device never ends: both are refused before they are opened.
  auto const fifo = std::filesystem::temp_directory_path() / fmt::format("bowline-routefile-{}.fifo", ::getpid());
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  RouteFile const fromFifo = RouteFile::load(fifo.string(), "f");
  std::filesystem::remove(fifo);
  ASSERT_EQ(fromFifo.errors().size(), 1u);
  EXPECT_EQ(fromFifo.errors()[0].text(), "f: cannot read: is a FIFO, not a regular file");
  RouteFile const device = RouteFile::load("/dev/zero", "z");
  ASSERT_EQ(device.errors().size(), 1u);
  EXPECT_EQ(device.errors()[0].text(), "z: cannot read: is a device, not a regular file");
  RouteFile const large = RouteFile::load((scenarioDir() / "routes.txt").string(), "r", 64);
  ASSERT_EQ(large.errors().size(), 1u);
  EXPECT_EQ(large.errors()[0].text().find("r: cannot read: is "), 0u);
  EXPECT_NE(large.errors()[0].text().find(" bytes; at most 64 are read"), std::string::npos);
}

TEST(RouteFileTest, LinesOfOneRouteAreAllDropOrAllNextHops) {
  RouteFile const rf = RouteFile::parse(
      "198.51.100.0/24 192.0.2.1\n"  // 1
      "203.0.113.0/24 drop\n"        // 2
      "198.51.100.0/24 drop\n"       // 3 mixes with line 1
      "198.51.100.0/24 drop 7\n"     // 4 another preference: another route
      "203.0.113.0/24 drop\n"        // 5 the same drop again is the same route
      "203.0.113.0/24 192.0.2.2\n",  // 6 mixes with lines 2 and 5
      "m.txt");
  EXPECT_EQ(errorTexts(rf),
            (std::vector<std::string>{
                "m.txt:3: route 198.51.100.0/24 pref 1 is a drop route here and a route with next hops on line 1; "
                "a route is one or the other",
                "m.txt:6: route 203.0.113.0/24 pref 1 is a route with next hops here and a drop route on line 5; "
                "a route is one or the other"}));
  // A key's route and first line.
  auto found = rf.find(Routing::RouteKey(pfx("203.0.113.0/24"), Routing::RoutePreference(1)));
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->type, RouteType::drop);
  EXPECT_EQ(found->line, 2u);
  EXPECT_EQ(rf.find(Routing::RouteKey(pfx("198.51.100.0/24"), Routing::RoutePreference(7)))->line, 4u);
  EXPECT_FALSE(rf.find(Routing::RouteKey(pfx("198.51.100.0/24"), Routing::RoutePreference(2))).has_value());
}

TEST(RouteFileTest, NextHopsFollowTheScenarioRules) {
  RouteFile const rf = RouteFile::parse(
      "198.51.100.0/24 0.0.0.0\n"      // the address classes are ScenarioChecksTest's (one check for both)
      "2001:db8::/32 192.0.2.1\n"       // an IPv4 next hop of an IPv6 route needs a label
      "2001:db8::/0128 2001:db8::1\n"   // a length with a leading zero, as in the scenario file
      "198.51.100.0/24 2001:db8::1\n",  // good: an IPv6 next hop of an IPv4 route
      "n.txt");
  EXPECT_EQ(errorTexts(rf),
            (std::vector<std::string>{
                "n.txt:1: 0.0.0.0 is the unspecified address, which no next hop can be",
                "n.txt:2: the IPv4 next hop 192.0.2.1 of an IPv6 route needs a label, which a route file cannot "
                "give",
                "n.txt:3: \"2001:db8::/0128\" is not a prefix"}));
  EXPECT_EQ(rf.size(), 1u);
}

TEST(RouteFileTest, BinaryInputIsRefusedAndQuotedEscaped) {
  using namespace std::string_literals;
  RouteFile const nul = RouteFile::parse("198.51.100.0/24 drop\n\n203.0.113.0/24\0 drop\n"s, "b");
  ASSERT_EQ(nul.errors().size(), 1u);
  EXPECT_EQ(nul.errors()[0].text(), "b:3: the file holds a NUL byte: it is not a text file");
  EXPECT_EQ(nul.size(), 0u);

  RouteFile const rf = RouteFile::parse(
      "198.51.100.0/24 Eth\xff\n"  // not UTF-8
      "\x1b[31m/24 drop\n"         // a terminal escape
      "198.51.100.0/24 drop " +
          std::string(5000, '9') +
          "\n"  // a huge field
          "198.51.100.0/24 Eth\xc2\x9b"
          "1\n",  // a C1 control character
      "e");
  EXPECT_EQ(errorTexts(rf), (std::vector<std::string>{
                                "e:1: \"Eth\\xff\" is not an interface name", "e:2: \"\\x1b[31m/24\" is not a prefix",
                                "e:3: \"" + std::string(60, '9') + "\"... is not a preference (1..255)",
                                "e:4: \"Eth\\xc2\\x9b1\" is not an interface name"}));
}

}  // namespace
