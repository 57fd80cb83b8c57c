// Zel::ValueText and Zel::ValueFields: the Value('Type', ** {...}) form of a key whose fields are
// declared once, printed and read back; the separators checked in order, quoted strings and nested
// forms that hold separators, and the field kinds the form knows (numbers, flags, lists).
#include "foundations/runtime/ValueText.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "foundations/runtime/ValueFields.h"
#include "foundations/types/AddressFamily.h"
#include "foundations/types/IpGenPrefix.h"
#include "foundations/types/VrfName.h"

namespace {

using Zel::ValueText;

constexpr std::string_view kType = "Test::VrfAfKey";
constexpr std::string_view kFields[] = {"vrfName", "af"};

// A key of the shape record keys take.
struct VrfAfKey : Zel::ValueFields<VrfAfKey> {
  static constexpr std::string_view kTypeName = kType;
  static constexpr auto fields() {
    return std::tuple{Zel::field("vrfName", &VrfAfKey::vrfName), Zel::field("af", &VrfAfKey::af)};
  }
  VrfAfKey() = default;
  VrfAfKey(L3::VrfName v, Ondex::AddressFamily a) : vrfName(std::move(v)), af(a) {}
  [[nodiscard]] std::string strep() const { return valueToStrep(*this); }

  L3::VrfName vrfName;
  Ondex::AddressFamily af;
};

// Every other kind of field the form prints itself.
struct Kinds : Zel::ValueFields<Kinds> {
  static constexpr std::string_view kTypeName = "Test::Kinds";
  static constexpr auto fields() {
    return std::tuple{Zel::field("n", &Kinds::n), Zel::field("on", &Kinds::on), Zel::field("name", &Kinds::name),
                      Zel::field("list", &Kinds::list)};
  }
  std::uint16_t n = 0;
  bool on = false;
  Zel::String name;
  std::vector<std::uint8_t> list;
};

TEST(ValueTextTest, EveryFieldKindPrintsAndReadsBack) {
  Kinds k;
  k.n = 65535;
  k.on = true;
  k.name = "it's";
  k.list = {0, 255};
  EXPECT_EQ(valueToStrep(k), "Value('Test::Kinds', ** {'n': 65535, 'on': True, 'name': 'it\\'s', 'list': [0, 255]})");
  EXPECT_EQ(Kinds::fromStrep(valueToStrep(k)), k);
  EXPECT_EQ(Kinds::fromStrep(valueToStrep(Kinds())), Kinds());
  for (std::string_view bad : {"Value('Test::Kinds', ** {'n': 65536, 'on': True, 'name': '', 'list': []})",
                               "Value('Test::Kinds', ** {'n': 1, 'on': true, 'name': '', 'list': []})",
                               "Value('Test::Kinds', ** {'n': 1, 'on': False, 'name': x, 'list': []})",
                               "Value('Test::Kinds', ** {'n': 1, 'on': False, 'name': '', 'list': [256]})",
                               "Value('Test::Kinds', ** {'n': 1, 'on': False, 'name': '', 'list': [1,2]})",
                               "Value('Test::Kinds', ** {'n': 1, 'on': False, 'name': '', 'list': [1, ]})",
                               "Value('Test::Kinds', ** {'n': 1, 'on': False, 'name': '', 'list': 1})"}) {
    EXPECT_FALSE(Kinds::fromStrep(bad).has_value()) << bad;
  }
}

TEST(ValueTextTest, TwoFieldKeyRoundTrip) {
  VrfAfKey const key{"red", Ondex::AddressFamily::ipv6};
  EXPECT_EQ(key.strep(), "Value('Test::VrfAfKey', ** {'vrfName': 'red', 'af': 'ipv6'})");
  EXPECT_EQ(VrfAfKey::fromStrep(key.strep()), key);
  // Quotes, backslashes and separators inside the string survive.
  for (std::string_view name : {"", "a, 'af': 'ipv4'})", "it's", "x\\", "{(['"}) {
    VrfAfKey const k{name, Ondex::AddressFamily(7)};
    EXPECT_EQ(VrfAfKey::fromStrep(k.strep()), k) << k.strep();
  }
}

TEST(ValueTextTest, SeparatorsAreCheckedInOrder) {
  std::string_view const good = "Value('Test::VrfAfKey', ** {'vrfName': 'red', 'af': 1})";
  auto fields = ValueText::parse(good, kType, kFields);
  ASSERT_TRUE(fields.has_value());
  EXPECT_EQ((*fields)[0], "'red'");
  EXPECT_EQ((*fields)[1], "1");
  for (std::string_view bad : {
           "Value('Other::Key', ** {'vrfName': 'red', 'af': 1})",
           "Value('Test::VrfAfKeyX', ** {'vrfName': 'red', 'af': 1})",
           "Value('Test::VrfAfKey', {'vrfName': 'red', 'af': 1})",
           "Value('Test::VrfAfKey', ** {'af': 1, 'vrfName': 'red'})",
           "Value('Test::VrfAfKey', ** {'vrf': 'red', 'af': 1})",
           "Value('Test::VrfAfKey', ** {'vrfName': 'red'})",
           "Value('Test::VrfAfKey', ** {'vrfName': 'red', 'af': 1, 'x': 2})",
           "Value('Test::VrfAfKey', ** {'vrfName': 'red', 'af': 1}",
           "Value('Test::VrfAfKey', ** {'vrfName': 'red', 'af': 1}) ",
           "Value('Test::VrfAfKey', ** {'vrfName': 'red', 'af': })",
           "Value('Test::VrfAfKey', ** {'vrfName': , 'af': 1})",
           "Value('Test::VrfAfKey', ** {'vrfName': 'red, 'af': 1})",
           "Value('Test::VrfAfKey', ** {'vrfName': 'red','af': 1})",
           "Value('Test::VrfAfKey', ** {'vrfName': ('red', 'af': 1})",
           "Value('Test::VrfAfKey', ** {'vrfName': 'red'), 'af': 1})",
           " Value('Test::VrfAfKey', ** {'vrfName': 'red', 'af': 1})",
           "",
       }) {
    EXPECT_FALSE(ValueText::parse(bad, kType, kFields).has_value()) << bad;
  }
  // A field whose text is of the wrong kind passes the shape but not the field's own parser.
  EXPECT_FALSE(VrfAfKey::fromStrep("Value('Test::VrfAfKey', ** {'vrfName': red, 'af': 1})").has_value());
  EXPECT_FALSE(VrfAfKey::fromStrep("Value('Test::VrfAfKey', ** {'vrfName': 'red', 'af': 'ipv9'})").has_value());
}

TEST(ValueTextTest, NestedFormsAndPrefixes) {
  Ondex::IpGenPrefix const prefix = Ondex::IpGenPrefix::fromString("2001:db8::/32").value();
  std::string const inner = ValueText::print("Test::Route", {{"prefix", valueToStrep(prefix)}, {"preference", "1"}});
  EXPECT_EQ(inner, "Value('Test::Route', ** {'prefix': '2001:db8::/32', 'preference': 1})");
  std::string const outer = ValueText::print("Test::Outer", {{"route", inner}, {"vrf", "'red'"}});
  constexpr std::string_view outerFields[] = {"route", "vrf"};
  auto fields = ValueText::parse(outer, "Test::Outer", outerFields);
  ASSERT_TRUE(fields.has_value()) << outer;
  EXPECT_EQ((*fields)[0], inner);
  EXPECT_EQ((*fields)[1], "'red'");
  constexpr std::string_view innerFields[] = {"prefix", "preference"};
  auto innerParsed = ValueText::parse((*fields)[0], "Test::Route", innerFields);
  ASSERT_TRUE(innerParsed.has_value());
  EXPECT_EQ(Ondex::IpGenPrefix::fromStrep((*innerParsed)[0]), prefix);
  EXPECT_EQ(ValueText::parseUnsigned<std::uint8_t>((*innerParsed)[1]), 1);
}

TEST(ValueTextTest, QuotingAndNumbers) {
  for (std::string_view s : {"", "red", "it's", "\\", "\\'", "''", "a\nb"}) {
    EXPECT_EQ(ValueText::unquote(ValueText::quote(s)), std::string(s)) << s;
  }
  EXPECT_EQ(ValueText::quote("it's"), "'it\\'s'");
  for (std::string_view bad : {"", "'", "red", "'red", "red'", "'it's'", "'x\\'", "\"red\""}) {
    EXPECT_FALSE(ValueText::unquote(bad).has_value()) << bad;
  }
  EXPECT_EQ(ValueText::parseUnsigned<std::uint32_t>("4294967295"), 4294967295u);
  EXPECT_EQ(ValueText::parseUnsigned<std::uint8_t>("0"), 0);
  for (std::string_view bad : {"", "256", "-1", "+1", " 1", "1 ", "0x1", "1.0"}) {
    EXPECT_FALSE(ValueText::parseUnsigned<std::uint8_t>(bad).has_value()) << bad;
  }
}

}  // namespace
