// Host::RouteFile: every line form (next hop, next hop and interface, interface, drop, preference),
// comments and blank lines, IPv6, the errors with their line numbers, and loading from a file.
#include "host/RouteFile.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using Host::RouteFile;
using Ondex::IntfId;
using Ondex::IpGenAddr;
using Ondex::IpGenPrefix;
using Routing::RouteType;

IpGenPrefix pfx(char const* text) { return *IpGenPrefix::fromString(text); }
IpGenAddr addr(char const* text) { return *IpGenAddr::fromString(text); }

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
  EXPECT_TRUE(rf.entries()[6].prefix.isV4());
  EXPECT_TRUE(rf.entries()[7].nexthop.isV6());
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
  EXPECT_EQ(dir.errors()[0].text(), "scenarios: cannot read: not a regular file");
}

}  // namespace
