// The mutations that turn a valid generated scenario into a broken one, the way users break files:
// a value of the wrong type, a missing key, a number out of range, an address that is not one (or of
// the other family), a name nothing declares, a step removing what does not exist, a key given
// twice, an odd name (too long, control characters, bytes that are not UTF-8), bad lines in a route
// file, and at the level of bytes: random edits and truncation.
#include <fmt/format.h>

#include "host/fuzz/ScenarioBuilder.h"

namespace BowlineTest::Fuzz {

std::uint64_t caseSeed(std::uint64_t seed, std::uint64_t index) {
  // splitmix64 of the pair: neighbouring cases get unrelated engines.
  std::uint64_t z = seed + 0x9e3779b97f4a7c15ULL * (index + 1);
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
  return z ^ (z >> 31);
}

GeneratedScenario ScenarioGenerator::valid() { return ScenarioBuilder(dice_).build(); }

GeneratedScenario ScenarioGenerator::broken() {
  GeneratedScenario s = valid();
  mutateScenario(s, dice_);
  return s;
}

namespace {

using Mutation = bool (*)(GeneratedScenario&, Dice&);

// Every node of the tree that `keep` accepts; the root is not a candidate.
std::vector<YamlTree*> nodes(YamlTree& root, bool (*keep)(YamlTree const&)) {
  std::vector<YamlTree*> out;
  root.walk([&](YamlTree& n) {
    if (&n != &root && keep(n)) out.push_back(&n);
  });
  return out;
}

std::vector<YamlTree*> scalarsOf(YamlTree& root, std::initializer_list<ValueKind> kinds) {
  std::vector<YamlTree*> out;
  root.walk([&](YamlTree& n) {
    if (!n.isScalar()) return;
    for (ValueKind k : kinds) {
      if (n.kind() == k) out.push_back(&n);
    }
  });
  return out;
}

bool setOneOf(GeneratedScenario& s, Dice& dice, std::initializer_list<ValueKind> kinds,
              std::vector<std::string> const& values) {
  auto targets = scalarsOf(s.tree, kinds);
  if (targets.empty()) return false;
  dice.pick(targets)->textIs(dice.pick(values));
  return true;
}

bool wrongType(GeneratedScenario& s, Dice& dice) {
  auto targets = nodes(s.tree, [](YamlTree const&) { return true; });
  if (targets.empty()) return false;
  YamlTree& n = *dice.pick(targets);
  if (n.isScalar()) {
    YamlTree wrapped = dice.percent(50) ? YamlTree::list() : YamlTree::map();
    if (wrapped.type() == YamlTree::Type::list) {
      wrapped.push(n);
    } else {
      wrapped.add("value", n);
    }
    n = std::move(wrapped);
  } else {
    n = YamlTree::scalar(dice.percent(50) ? "oops" : "");
  }
  return true;
}

bool missingKey(GeneratedScenario& s, Dice& dice) {
  auto maps = nodes(s.tree, [](YamlTree const& n) { return n.type() == YamlTree::Type::map && !n.fields().empty(); });
  if (maps.empty()) return false;
  auto& fields = dice.pick(maps)->fields();
  fields.erase(fields.begin() + std::ptrdiff_t(dice.below(fields.size())));
  return true;
}

bool duplicatedKey(GeneratedScenario& s, Dice& dice) {
  auto maps = nodes(s.tree, [](YamlTree const& n) { return n.type() == YamlTree::Type::map && !n.fields().empty(); });
  maps.push_back(&s.tree);
  auto& fields = dice.pick(maps)->fields();
  if (fields.empty()) return false;
  auto copy = fields[dice.below(fields.size())];
  fields.insert(fields.begin() + std::ptrdiff_t(dice.below(fields.size() + 1)), std::move(copy));
  return true;
}

bool unknownKey(GeneratedScenario& s, Dice& dice) {
  auto maps = nodes(s.tree, [](YamlTree const& n) { return n.type() == YamlTree::Type::map && !n.fields().empty(); });
  maps.push_back(&s.tree);
  YamlTree& m = *dice.pick(maps);
  if (m.fields().empty()) return false;
  auto& key = m.fields()[dice.below(m.fields().size())].first;
  key = dice.pick(std::vector<std::string>{key + "s", "prefernce", "", "steps", "vias", key.substr(1)});
  return true;
}

bool outOfRange(GeneratedScenario& s, Dice& dice) {
  return setOneOf(s, dice, {ValueKind::number},
                  {"0", "256", "-1", "16777214", "16777215", "16777216", "1048576", "4294967295", "4294967296",
                   "99999999999999999999999", "1.5", "0x10", "", "+3", "1e3", "00"});
}

bool badAddress(GeneratedScenario& s, Dice& dice) {
  return setOneOf(s, dice, {ValueKind::address, ValueKind::prefix},
                  {"10.0.0.300",      "2001:db8::g",      "1.2.3",          "0.0.0.0",       "255.255.255.255",
                   "224.0.0.1",       "::",               "ff02::1",        "198.51.100.0/33", "2001:db8::/0128",
                   "198.51.100.77/24", "01.2.3.4",        "::ffff:192.0.2.1", "192.0.2.1/",  "/24",
                   "192.0.2.2",       "2001:db8:0:1::2",  "0.0.0.0/0",      "::/0",          "127.0.0.1",
                   "::1",             "2001:db8::/129",   "192.0.2.0/-1",   "fe80::1",       "203.0.113.255"});
}

// A via's next hop of the other family: an IPv6 route through an IPv4 neighbour and the reverse.
bool familyMix(GeneratedScenario& s, Dice& dice) {
  std::vector<YamlTree*> targets;
  s.tree.walk([&](YamlTree& n) {
    if (YamlTree* nh = n.type() == YamlTree::Type::map ? n.field("nexthop") : nullptr) targets.push_back(nh);
  });
  if (targets.empty()) return false;
  YamlTree& nh = *dice.pick(targets);
  bool const v6 = nh.text().find(':') != std::string::npos;
  nh.textIs(v6 ? dice.pick(std::vector<std::string>{"192.0.2.2", "198.51.100.1", "203.0.113.5"})
               : dice.pick(std::vector<std::string>{"2001:db8:0:1::2", "2001:db8:100::5", "::ffff:192.0.2.2"}));
  return true;
}

bool unknownName(GeneratedScenario& s, Dice& dice) {
  return setOneOf(s, dice, {ValueKind::vrfName, ValueKind::intfName, ValueKind::tagName},
                  {"nosuch", "Ethernet99", "", "default", "red", "blue", "canary", "Ethernet1"});
}

bool oddName(GeneratedScenario& s, Dice& dice) {
  return setOneOf(s, dice, {ValueKind::vrfName, ValueKind::intfName, ValueKind::tagName, ValueKind::other},
                  {std::string(101, 'x'), std::string(5000, 'y'), "bad\x01name", "caf\xc3\xa9", "\xff\xfe", "tab\there",
                   "with space", "a\"quote", "new\nline", "Ethernet1.5", "ethernet1", "Null0", "x:y"});
}

bool badEvpn(GeneratedScenario& s, Dice& dice) {
  return setOneOf(s, dice, {ValueKind::mac},
                  {"00:00:00:00:00:00", "02:00:00:00:00", "zz:00:00:00:00:01", "0200.0000.0001", "ff:ff:ff:ff:ff:ff",
                   "01:00:5e:00:00:01", "02-00-00-00-00-01"});
}

bool removeMissing(GeneratedScenario& s, Dice& dice) {
  YamlTree* steps = s.tree.field("steps");
  if (!steps || steps->type() != YamlTree::Type::list) steps = &s.tree.add("steps", YamlTree::list());
  YamlTree step = YamlTree::map();
  switch (dice.below(5)) {
    case 0: step.add("remove_route", YamlTree::map()).add("prefix", "198.51.100.99/32", ValueKind::prefix); break;
    case 1: step.add("remove_vrf", dice.percent(50) ? "nosuch" : "red", ValueKind::vrfName); break;
    case 2: {
      YamlTree& m = step.add("remove_injected", YamlTree::map());
      m.add("user", dice.percent(50) ? "ghost" : "agentA");
      m.add("prefix", "2001:db8:100::/48", ValueKind::prefix);
      break;
    }
    case 3: {
      YamlTree& m = step.add("interface", YamlTree::map());
      m.add("name", "Ethernet1", ValueKind::intfName);
      m.add("remove_address", "198.51.100.9/30", ValueKind::prefix);
      break;
    }
    default: {
      YamlTree& m = step.add("replace_route", YamlTree::map());
      m.add("prefix", "203.0.113.99/32", ValueKind::prefix);
      m.add("preference", "77", ValueKind::number);
      m.add("type", "drop");
      break;
    }
  }
  steps->items().insert(steps->items().begin() + std::ptrdiff_t(dice.below(steps->items().size() + 1)),
                        std::move(step));
  return true;
}

bool badRouteFile(GeneratedScenario& s, Dice& dice) {
  if (s.files.empty()) return false;
  std::string& text = s.files[dice.below(s.files.size())].text;
  std::vector<std::string> const lines = {
      "198.51.100.0/24 10.0.0.300",       "2001:db8::/0128 2001:db8::1",     "198.51.100.0/24 drop",
      "198.51.100.0/24 192.0.2.2",        "198.51.100.0/24 Ethernet99",      "198.51.100.0/24 192.0.2.2 0",
      "198.51.100.0/24 192.0.2.2 256",    "garbage",                         "2001:db8:100::/48 192.0.2.2",
      "198.51.100.0/24 2001:db8:0:1::2",  "198.51.100.0/24 0.0.0.0",         "198.51.100.0/24 192.0.2.2 Ethernet1 5 x",
      "0.0.0.0/0 255.255.255.255",        "198.51.100.0/24 224.0.0.1",       "::/0 ::",
      "198.51.100.0/24\t192.0.2.3"};
  if (dice.percent(15)) {
    text.resize(dice.below(text.size() + 1));
  } else {
    text += dice.pick(lines) + (dice.percent(80) ? "\n" : "");
  }
  return true;
}

bool missingRouteFile(GeneratedScenario& s, Dice& dice) {
  YamlTree* files = s.tree.field("route_files");
  if (!files || files->items().empty()) return false;
  YamlTree* path = files->items()[0].field("path");
  if (!path) return false;
  path->textIs(dice.pick(std::vector<std::string>{"missing.txt", ".", "", "../", "/dev/null", "routes/"}));
  return true;
}

// Byte edits of the text: replaced, inserted or deleted bytes, or the file cut short.
void editText(GeneratedScenario& s, Dice& dice) {
  std::string& t = s.text;
  s.textEdited = true;
  if (t.empty() || dice.percent(30)) {
    t.resize(dice.below(t.size() + 1));
    s.mutation += " truncation";
    return;
  }
  std::string const bytes = ":-[]{}#&*!|>'\"%@`\n\t ,?0\xff";
  for (std::size_t i = 0, n = 1 + dice.below(4); i < n && !t.empty(); ++i) {
    std::size_t const at = dice.below(t.size());
    char const c = dice.percent(70) ? bytes[dice.below(bytes.size())] : char(dice.below(256));
    switch (dice.below(3)) {
      case 0: t[at] = c; break;
      case 1: t.insert(t.begin() + std::ptrdiff_t(at), c); break;
      default: t.erase(at, 1); break;
    }
  }
  s.mutation += " byte-edits";
}

struct Named {
  char const* name;
  Mutation apply;
};

}  // namespace

void mutateScenario(GeneratedScenario& s, Dice& dice) {
  static Named const kMutations[] = {
      {"wrong-type", wrongType},       {"missing-key", missingKey},     {"duplicated-key", duplicatedKey},
      {"unknown-key", unknownKey},     {"out-of-range", outOfRange},    {"bad-address", badAddress},
      {"family-mix", familyMix},       {"unknown-name", unknownName},   {"odd-name", oddName},
      {"bad-evpn", badEvpn},           {"remove-missing", removeMissing}, {"bad-route-file", badRouteFile},
      {"missing-route-file", missingRouteFile}};
  s.broken = true;
  s.mutation.clear();
  bool const textOnly = dice.percent(15);
  for (std::size_t i = 0, n = textOnly ? 0 : 1 + dice.weighted({60, 30, 10}); i < n;) {
    Named const& m = kMutations[dice.below(std::size(kMutations))];
    if (!m.apply(s, dice)) continue;
    s.mutation += std::string(s.mutation.empty() ? "" : " ") + m.name;
    ++i;
  }
  s.text = s.tree.emit();
  if (textOnly || dice.percent(10)) editText(s, dice);
}

}  // namespace BowlineTest::Fuzz
