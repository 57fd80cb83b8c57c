#include "host/fuzz/ScenarioBuilder.h"

#include <fmt/format.h>

namespace BowlineTest::Fuzz {

namespace {

std::vector<std::string> const kIntfNames = {"Ethernet1", "Ethernet2", "Ethernet3", "Ethernet4", "Vlan10", "Loopback0"};
std::vector<std::string> const kVrfNames = {"red", "blue", "green"};
std::vector<std::string> const kPrefixes4 = {
    "0.0.0.0/0",          "192.0.2.0/24",      "192.0.2.16/28",   "192.0.2.2/32",     "198.51.100.0/24",
    "198.51.100.0/25",    "198.51.100.128/25", "198.51.100.1/32", "203.0.113.0/24",   "203.0.113.64/26",
    "203.0.113.77/32",    "203.0.113.0/28",    "203.0.113.128/28"};
std::vector<std::string> const kPrefixes6 = {
    "::/0",                "2001:db8::/32",    "2001:db8:0:1::/64",  "2001:db8:0:1::2/128",
    "2001:db8:100::/48",   "2001:db8:100:1::/64", "2001:db8:100::5/128", "2001:db8:200::/48"};
std::vector<std::string> const kRecursive4 = {"198.51.100.1", "198.51.100.130", "203.0.113.77", "203.0.113.5",
                                              "192.0.2.114"};
std::vector<std::string> const kRecursive6 = {"2001:db8:100::5", "2001:db8:100:1::9", "2001:db8:200::1",
                                              "2001:db8:0:7::2"};
// Prefixes the route-input protocol installs itself in every VRF; an injected route may take one.
std::vector<std::string> const kMartians4 = {"0.0.0.0/8", "127.0.0.0/8"};
std::vector<std::string> const kMartians6 = {"::/96", "fe80::/10", "::ffff:127.0.0.0/104"};
std::vector<unsigned> const kPreferences = {1, 2, 5, 10, 100, 200, 250, 255};

// The prefixes whose forward routes need no via (sent to the CPU).
bool toCpu(std::string const& p) { return p == "127.0.0.0/8" || p == "::ffff:127.0.0.0/104"; }

std::string flag(bool b) { return b ? "true" : "false"; }

}  // namespace

std::string ScenarioBuilder::intfAddress(std::size_t slot, Family f, bool extra) const {
  bool const loopback = kIntfNames[slot].rfind("Loopback", 0) == 0;
  if (f == Family::v4) {
    if (extra) return fmt::format("203.0.113.{}/28", 16 * (slot + 8) + 1);
    return fmt::format("192.0.2.{}/{}", 16 * slot + 1, loopback ? 32 : 28);
  }
  if (extra) return fmt::format("2001:db8:e:{:x}::1/64", slot + 1);
  return fmt::format("2001:db8:0:{:x}::1/{}", slot + 1, loopback ? 128 : 64);
}

std::string ScenarioBuilder::nexthop(Family f) {
  if (!intfs_.empty() && dice_.percent(65)) {
    std::size_t const slot = dice_.pick(intfs_).slot;
    unsigned const host = 2 + unsigned(dice_.below(2));
    bool const extra = dice_.percent(20);
    if (f == Family::v4) {
      return extra ? fmt::format("203.0.113.{}", 16 * (slot + 8) + host)
                   : fmt::format("192.0.2.{}", 16 * slot + host);
    }
    return extra ? fmt::format("2001:db8:e:{:x}::{}", slot + 1, host)
                 : fmt::format("2001:db8:0:{:x}::{}", slot + 1, host);
  }
  return dice_.pick(f == Family::v4 ? kRecursive4 : kRecursive6);
}

std::string ScenarioBuilder::prefix(Family f, bool injected) {
  if (dice_.percent(injected ? 6 : 3)) {
    if (injected) return dice_.pick(f == Family::v4 ? kMartians4 : kMartians6);
    return f == Family::v4 ? "127.0.0.0/8" : "::ffff:127.0.0.0/104";
  }
  return dice_.pick(f == Family::v4 ? kPrefixes4 : kPrefixes6);
}

std::string ScenarioBuilder::aliveVrf() {
  if (dice_.percent(55)) return "default";
  auto it = vrfIds_.begin();
  std::advance(it, std::ptrdiff_t(dice_.below(vrfIds_.size())));
  return it->first;
}

std::string ScenarioBuilder::otherVrfName(std::string const& not_) {
  std::string v = aliveVrf();
  if (v == not_ || dice_.percent(20)) return "purple";  // a VRF that need not exist yet
  return v;
}

unsigned ScenarioBuilder::preference(YamlTree& route) {
  if (dice_.percent(45)) return 1;
  unsigned p = dice_.percent(25) ? globalPreference_ : dice_.pick(kPreferences);
  route.add("preference", std::to_string(p), ValueKind::number);
  return p;
}

std::string ScenarioBuilder::key(Route const& r) {
  return fmt::format("{}|{}|{}|{}|{}", r.user, r.vrf, r.dynamic, r.prefix, r.preference);
}

void ScenarioBuilder::viaExtras(YamlTree& v, Family f, std::string const& vrf) {
  if (dice_.percent(25)) v.add("metric", std::to_string(dice_.pick(std::vector<unsigned>{0, 1, 10, 20, 4294967295u})),
                              ValueKind::number);
  if (dice_.percent(15)) v.add("weight", std::to_string(1 + dice_.below(4)), ValueKind::number);
  if (dice_.percent(10)) {
    std::vector<unsigned> const labels = {3, 16, 100, 1048575, 24001};
    if (dice_.percent(60)) {
      v.add("label", std::to_string(dice_.pick(labels)), ValueKind::number);
    } else {
      // The list form of one label.
      v.add("label", YamlTree::list()).push(YamlTree::scalar(std::to_string(dice_.pick(labels)), ValueKind::number));
    }
  }
  if (dice_.percent(8)) v.add("egress_vrf", otherVrfName(vrf), ValueKind::other);
  if (dice_.percent(10)) {
    v.add("bfd", "true", ValueKind::flag);
    if (!intfs_.empty() && dice_.percent(50)) {
      std::string a = intfAddress(dice_.pick(intfs_).slot, f, false);
      v.add("local_address", a.substr(0, a.find('/')), ValueKind::address);
    }
  }
}

YamlTree ScenarioBuilder::via(Family f, std::string const& vrf, std::string& identity) {
  YamlTree v = YamlTree::map();
  std::size_t const kind = dice_.weighted({60, 12, 18, f == Family::v4 ? 10u : 0u});
  if (kind == 3) {  // EVPN
    std::string const vtep = nexthop(Family::v4);
    std::string const vni = std::to_string(dice_.pick(std::vector<unsigned>{1, 10010, 10020, 16777215}));
    std::string const mac = fmt::format("02:00:00:00:00:{:02x}", 1 + dice_.below(4));
    v.add("vtep", vtep, ValueKind::address);
    v.add("vni", vni, ValueKind::number);
    v.add("router_mac", mac, ValueKind::mac);
    if (dice_.percent(20)) v.add("vtep_sip_validation", flag(dice_.percent(50)), ValueKind::flag);
    if (dice_.percent(20)) v.add("metric", std::to_string(dice_.below(20)), ValueKind::number);
    identity = "evpn " + vtep + " " + vni + " " + mac;
    return v;
  }
  std::string nh, intf;
  if (kind != 1) nh = nexthop(f);
  if ((kind == 1 || kind == 2) && !intfs_.empty()) intf = dice_.pick(intfs_).name;
  if (nh.empty() && intf.empty()) nh = nexthop(f);
  if (!nh.empty()) v.add("nexthop", nh, ValueKind::address);
  if (!intf.empty()) v.add("interface", intf, ValueKind::intfName);
  viaExtras(v, f, vrf);
  identity = nh + " " + intf;
  return v;
}

void ScenarioBuilder::routeBody(YamlTree& m, Route& r, Family f, bool injectedForm) {
  std::size_t const type = dice_.weighted({86, 9, 5});
  if (type == 0 && dice_.percent(5)) m.add("type", "forward");
  if (type == 1) m.add("type", "drop");
  if (type == 2) m.add("type", "drop-with-indication");
  r.forward = type == 0;
  if (dice_.percent(15)) m.add("tag", std::to_string(dice_.pick(std::vector<unsigned>{0, 7, 42, 4294967295u})),
                               ValueKind::number);
  if (dice_.percent(12)) {
    YamlTree& c = m.add("communities", YamlTree::list());
    for (std::size_t i = 0, n = dice_.below(3); i < n; ++i) {
      c.push(YamlTree::scalar(dice_.percent(50) ? "65000:7" : std::to_string(100 + i), ValueKind::other));
    }
  }
  if (dice_.percent(8)) m.add("leak_vrf", otherVrfName(r.vrf));
  if (!tags_.empty() && dice_.percent(12)) m.add("command_tag", dice_.pick(tags_), ValueKind::tagName);
  if (!injectedForm && dice_.percent(5)) m.add("rib_bypass", flag(dice_.percent(70)), ValueKind::flag);
  if (!r.forward || (toCpu(r.prefix) && dice_.percent(60))) return;
  YamlTree& vias = m.add("vias", YamlTree::list());
  for (std::size_t i = 0, n = 1 + dice_.weighted({45, 30, 15, 10}); i < n; ++i) {
    std::string id;
    YamlTree v = via(f, r.vrf, id);
    if (r.vias.insert(id).second) vias.push(std::move(v));
  }
}

ScenarioBuilder::Route* ScenarioBuilder::pickRoute(bool injected) {
  std::vector<Route*> candidates;
  for (auto& [k, r] : routes_) {
    if (r.user.empty() != injected) candidates.push_back(&r);
  }
  return candidates.empty() ? nullptr : dice_.pick(candidates);
}

void ScenarioBuilder::vrfs(YamlTree& doc) {
  vrfIds_["default"] = 0;
  vrfNamesUsed_.insert("default");
  std::size_t const n = dice_.weighted({25, 35, 25, 15});
  if (n == 0 && !dice_.percent(30)) return;
  YamlTree& list = doc.add("vrfs", YamlTree::list());
  if (dice_.percent(10)) {
    YamlTree& d = list.push(YamlTree::map());
    d.add("name", "default", ValueKind::other);
    d.add("id", "0", ValueKind::number);
  }
  for (std::size_t i = 0; i < n; ++i) {
    unsigned id = unsigned(1 + i + dice_.below(3) * 3);
    if (dice_.percent(8)) id = 16777214;
    bool used = false;
    for (auto const& [name, other] : vrfIds_) used = used || other == id;
    if (used) continue;
    YamlTree& v = list.push(YamlTree::map());
    v.add("name", kVrfNames[i], ValueKind::other);
    v.add("id", std::to_string(id), ValueKind::number);
    vrfIds_[kVrfNames[i]] = id;
    vrfNamesUsed_.insert(kVrfNames[i]);
  }
}

void ScenarioBuilder::interfaces(YamlTree& doc) {
  std::size_t const n = dice_.below(6);
  if (n == 0) return;
  YamlTree& list = doc.add("interfaces", YamlTree::list());
  std::vector<std::size_t> slots = {0, 1, 2, 3, 4, 5};
  for (std::size_t i = 0; i < n; ++i) {
    std::size_t const at = dice_.below(slots.size());
    Intf intf{kIntfNames[slots[at]], slots[at], dice_.percent(65) ? "default" : aliveVrf(), {}};
    slots.erase(slots.begin() + std::ptrdiff_t(at));
    YamlTree& m = list.push(YamlTree::map());
    m.add("name", intf.name, ValueKind::other);
    if (intf.vrf != "default" || dice_.percent(10)) m.add("vrf", intf.vrf, ValueKind::vrfName);
    if (dice_.percent(90)) intf.addresses.push_back(intfAddress(intf.slot, Family::v4, false));
    if (dice_.percent(55)) intf.addresses.push_back(intfAddress(intf.slot, Family::v6, false));
    if (intf.addresses.size() == 1 && dice_.percent(40)) {
      m.add("addresses", intf.addresses[0], ValueKind::prefix);
    } else if (!intf.addresses.empty()) {
      YamlTree& a = m.add("addresses", YamlTree::list());
      for (auto const& addr : intf.addresses) a.push(YamlTree::scalar(addr, ValueKind::prefix));
    }
    if (dice_.percent(12)) m.add("routing", flag(dice_.percent(20)), ValueKind::flag);
    if (dice_.percent(15)) m.add("up", flag(dice_.percent(20)), ValueKind::flag);
    intfs_.push_back(std::move(intf));
  }
}

void ScenarioBuilder::commandTags(YamlTree& doc) {
  if (!dice_.percent(25)) return;
  YamlTree& list = doc.add("command_tags", YamlTree::list());
  for (std::string const name : {"maintenance", "canary"}) {
    if (!dice_.percent(70)) continue;
    YamlTree& t = list.push(YamlTree::map());
    t.add("name", name, ValueKind::other);
    if (dice_.percent(60)) t.add("enabled", flag(dice_.percent(50)), ValueKind::flag);
    tags_.push_back(name);
  }
}

void ScenarioBuilder::global(YamlTree& doc) {
  if (!dice_.percent(40)) return;
  YamlTree& g = doc.add("global", YamlTree::map());
  if (dice_.percent(50)) {
    globalPreference_ = dice_.pick(kPreferences);
    g.add("preference", std::to_string(globalPreference_), ValueKind::number);
  }
  if (dice_.percent(40)) g.add("ecmp", dice_.pick(std::vector<std::string>{"by-via-type", "single-group", "none"}));
  if (dice_.percent(30)) g.add("mpls", flag(dice_.percent(60)), ValueKind::flag);
  if (dice_.percent(25)) g.add("graceful_restart", flag(dice_.percent(60)), ValueKind::flag);
  if (dice_.percent(25)) g.add("start_ready_verification", flag(dice_.percent(60)), ValueKind::flag);
}

void ScenarioBuilder::routes(YamlTree& doc) {
  std::size_t const n = dice_.below(18);
  if (n == 0) return;
  YamlTree& list = doc.add("routes", YamlTree::list());
  for (std::size_t i = 0; i < n; ++i) {
    YamlTree m = YamlTree::map();
    Route r;
    r.vrf = aliveVrf();
    if (r.vrf != "default" || dice_.percent(5)) m.add("vrf", r.vrf, ValueKind::vrfName);
    Family const f = family();
    r.prefix = prefix(f, false);
    m.add("prefix", r.prefix, ValueKind::prefix);
    r.preference = preference(m);
    r.dynamic = dice_.percent(15);
    if (r.dynamic) m.add("dynamic", "true", ValueKind::flag);
    if (routes_.count(key(r))) continue;
    routeBody(m, r, f, false);
    routes_[key(r)] = r;
    list.push(std::move(m));
  }
}

void ScenarioBuilder::injected(YamlTree& doc) {
  if (!dice_.percent(45)) return;
  YamlTree& list = doc.add("injected", YamlTree::list());
  std::set<std::string> entries;
  for (std::size_t i = 0, n = 1 + dice_.below(3); i < n; ++i) {
    std::string const user = dice_.pick(users_);
    std::string const vrf = aliveVrf();
    if (!entries.insert(user + "|" + vrf).second) continue;
    YamlTree& u = list.push(YamlTree::map());
    u.add("user", user, ValueKind::other);
    if (vrf != "default" || dice_.percent(10)) u.add("vrf", vrf, ValueKind::vrfName);
    if (dice_.percent(15)) u.add("install_in_fib", flag(dice_.percent(30)), ValueKind::flag);
    YamlTree& rs = u.add("routes", YamlTree::list());
    for (std::size_t j = 0, m = 1 + dice_.below(5); j < m; ++j) {
      YamlTree route = YamlTree::map();
      Route r{vrf, user, false, {}, 1, true, {}};
      Family const f = family();
      r.prefix = prefix(f, true);
      route.add("prefix", r.prefix, ValueKind::prefix);
      r.preference = preference(route);
      if (routes_.count(key(r))) continue;
      routeBody(route, r, f, true);
      routes_[key(r)] = r;
      rs.push(std::move(route));
    }
  }
}

YamlTree ScenarioBuilder::bfdSession() {
  YamlTree s = YamlTree::map();
  Family const f = family();
  s.add("peer", nexthop(f), ValueKind::address);
  std::string const vrf = aliveVrf();
  if (vrf != "default") s.add("vrf", vrf, ValueKind::vrfName);
  if (!intfs_.empty() && dice_.percent(40)) s.add("interface", dice_.pick(intfs_).name, ValueKind::intfName);
  s.add("state", dice_.pick(std::vector<std::string>{"up", "down", "init", "admin-down"}));
  return s;
}

void ScenarioBuilder::bfd(YamlTree& doc) {
  if (!dice_.percent(25)) return;
  YamlTree& list = doc.add("bfd", YamlTree::list());
  for (std::size_t i = 0, n = 1 + dice_.below(3); i < n; ++i) list.push(bfdSession());
}

void ScenarioBuilder::routeFiles(YamlTree& doc, GeneratedScenario& out) {
  if (!dice_.percent(25)) return;
  GeneratedFile file{fmt::format("routes-{}.txt", dice_.below(100)), "# generated routes\n"};
  std::string const vrf = aliveVrf();
  std::map<std::string, bool> lineKeys;  // "prefix pref" -> a drop line
  std::set<std::string> lines;
  for (std::size_t i = 0, n = 2 + dice_.below(9); i < n; ++i) {
    Family const f = family();
    std::string const p = dice_.pick(f == Family::v4 ? kPrefixes4 : kPrefixes6);
    unsigned const pref = dice_.percent(60) ? 1 : dice_.pick(kPreferences);
    std::string const k = fmt::format("{} {}", p, pref);
    if (routes_.count(fmt::format("|{}|false|{}|{}", vrf, p, pref))) continue;
    std::size_t const form = dice_.weighted({55, 15, 15, 15});  // nexthop, nexthop + intf, intf, drop
    if ((form == 1 || form == 2) && intfs_.empty()) continue;
    bool const drop = form == 3;
    if (lineKeys.count(k) && (lineKeys[k] || drop)) continue;
    std::string line = p;
    if (form <= 1) line += " " + nexthop(f);
    if (form >= 1 && form <= 2) line += " " + dice_.pick(intfs_).name;
    if (drop) line += " drop";
    if (pref != 1 || dice_.percent(10)) line += " " + std::to_string(pref);
    if (!lines.insert(line).second) continue;
    lineKeys[k] = drop;
    fileKeys_.insert(fmt::format("{}|{}|{}", vrf, p, pref));
    file.text += (dice_.percent(10) ? "\n" : "") + line + (dice_.percent(10) ? "  # note\n" : "\n");
  }
  YamlTree& list = doc.add("route_files", YamlTree::list());
  YamlTree& m = list.push(YamlTree::map());
  m.add("path", file.name);
  if (vrf != "default") m.add("vrf", vrf, ValueKind::vrfName);
  out.files.push_back(std::move(file));
}

GeneratedScenario ScenarioBuilder::build() {
  GeneratedScenario out;
  out.tree = YamlTree::map();
  YamlTree& doc = out.tree;
  vrfs(doc);
  interfaces(doc);
  commandTags(doc);
  global(doc);
  routes(doc);
  injected(doc);
  bfd(doc);
  routeFiles(doc, out);
  steps(doc);
  out.text = doc.emit();
  return out;
}

std::size_t Dice::weighted(std::vector<unsigned> const& weights) {
  unsigned total = 0;
  for (unsigned w : weights) total += w;
  std::size_t r = below(total);
  for (std::size_t i = 0; i < weights.size(); ++i) {
    if (r < weights[i]) return i;
    r -= weights[i];
  }
  return weights.size() - 1;
}

}  // namespace BowlineTest::Fuzz
