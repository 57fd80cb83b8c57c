// The steps of a generated scenario: each names only what the model says exists at that point, and
// moves the model along.
#include <algorithm>
#include <fmt/format.h>

#include "host/fuzz/ScenarioBuilder.h"

namespace BowlineTest::Fuzz {

namespace {

std::string flag(bool b) { return b ? "true" : "false"; }

// The route's key fields as a step writes them.
void keyFields(YamlTree& m, std::string const& vrf, std::string const& prefix, unsigned preference, bool dynamic) {
  if (vrf != "default") m.add("vrf", vrf, ValueKind::vrfName);
  m.add("prefix", prefix, ValueKind::prefix);
  if (preference != 1) m.add("preference", std::to_string(preference), ValueKind::number);
  if (dynamic) m.add("dynamic", "true", ValueKind::flag);
}

Family familyOf(std::string const& prefix) {
  return prefix.find(':') == std::string::npos ? Family::v4 : Family::v6;
}

}  // namespace

void ScenarioBuilder::addRoute(YamlTree& steps, bool injected) {
  YamlTree& step = steps.push(YamlTree::map());
  YamlTree& m = step.add(injected ? "add_injected" : "add_route", YamlTree::map());
  Route* existing = pickRoute(injected);
  if (existing && existing->forward && dice_.percent(30)) {
    // More vias for a route that is there.
    if (injected) m.add("user", existing->user, ValueKind::other);
    keyFields(m, existing->vrf, existing->prefix, existing->preference, existing->dynamic);
    YamlTree& vias = m.add("vias", YamlTree::list());
    std::string id;
    YamlTree v = via(familyOf(existing->prefix), existing->vrf, id);
    vias.push(std::move(v));
    existing->vias.insert(id);
    return;
  }
  for (int attempt = 0; attempt < 8; ++attempt) {
    Route r;
    r.user = injected ? dice_.pick(users_) : std::string();
    r.vrf = aliveVrf();
    Family const f = family();
    r.prefix = prefix(f, injected);
    r.preference = dice_.percent(50) ? 1 : dice_.pick(std::vector<unsigned>{2, 5, 10, 200, 255});
    r.dynamic = !injected && dice_.percent(15);
    if (routes_.count(key(r)) || (!r.dynamic && fileKeys_.count(fmt::format("{}|{}|{}", r.vrf, r.prefix,
                                                                             r.preference)))) {
      continue;
    }
    if (injected) m.add("user", r.user, ValueKind::other);
    keyFields(m, r.vrf, r.prefix, r.preference, r.dynamic);
    routeBody(m, r, f, injected);
    routes_[key(r)] = r;
    return;
  }
  steps.items().pop_back();
}

void ScenarioBuilder::replaceRoute(YamlTree& steps, Route& r) {
  YamlTree& step = steps.push(YamlTree::map());
  YamlTree& m = step.add(r.user.empty() ? "replace_route" : "replace_injected", YamlTree::map());
  if (!r.user.empty()) m.add("user", r.user, ValueKind::other);
  keyFields(m, r.vrf, r.prefix, r.preference, r.dynamic);
  r.vias.clear();
  routeBody(m, r, familyOf(r.prefix), !r.user.empty());
}

void ScenarioBuilder::removeRoute(YamlTree& steps, Route const& r) {
  YamlTree& step = steps.push(YamlTree::map());
  YamlTree& m = step.add(r.user.empty() ? "remove_route" : "remove_injected", YamlTree::map());
  if (!r.user.empty()) m.add("user", r.user, ValueKind::other);
  keyFields(m, r.vrf, r.prefix, r.preference, r.dynamic);
  routes_.erase(key(r));
}

void ScenarioBuilder::routeStep(YamlTree& steps, bool injected) {
  std::size_t const op = dice_.weighted({45, 30, 25});
  Route* r = pickRoute(injected);
  if (op == 0 || !r) {
    addRoute(steps, injected);
  } else if (op == 1) {
    replaceRoute(steps, *r);
  } else {
    removeRoute(steps, *r);
  }
}

void ScenarioBuilder::globalStep(YamlTree& steps) {
  YamlTree& g = steps.push(YamlTree::map()).add("global", YamlTree::map());
  while (g.fields().empty()) {
    if (dice_.percent(40)) {
      globalPreference_ = dice_.pick(std::vector<unsigned>{1, 2, 5, 10, 200, 255});
      g.add("preference", std::to_string(globalPreference_), ValueKind::number);
    }
    if (dice_.percent(40)) g.add("ecmp", dice_.pick(std::vector<std::string>{"by-via-type", "single-group", "none"}));
    if (dice_.percent(30)) g.add("mpls", flag(dice_.percent(50)), ValueKind::flag);
    if (dice_.percent(30)) g.add("start_ready_verification", flag(dice_.percent(50)), ValueKind::flag);
  }
}

void ScenarioBuilder::addVrf(YamlTree& steps) {
  std::vector<std::string> fresh;
  for (std::string const name : {"red", "blue", "green", "tenant1", "tenant2", "orange"}) {
    if (!vrfNamesUsed_.count(name)) fresh.push_back(name);
  }
  if (fresh.empty()) return;
  unsigned id = unsigned(1 + dice_.below(9));
  for (auto const& [name, other] : vrfIds_) {
    if (other == id) return;  // ids taken now are not reused; a removed VRF's id may be
  }
  std::string const name = dice_.pick(fresh);
  YamlTree& v = steps.push(YamlTree::map()).add("add_vrf", YamlTree::map());
  v.add("name", name, ValueKind::other);
  v.add("id", std::to_string(id), ValueKind::number);
  vrfIds_[name] = id;
  vrfNamesUsed_.insert(name);
}

void ScenarioBuilder::removeVrf(YamlTree& steps) {
  if (vrfIds_.size() < 2) return;
  std::string name;
  while (name.empty() || name == "default") name = aliveVrf();
  steps.push(YamlTree::map()).add("remove_vrf", name, ValueKind::vrfName);
  vrfIds_.erase(name);
  // Its routes go with it; its name is not used again.
  for (auto it = routes_.begin(); it != routes_.end();) {
    it = it->second.vrf == name ? routes_.erase(it) : std::next(it);
  }
}

void ScenarioBuilder::interfaceStep(YamlTree& steps) {
  if (intfs_.empty()) return;
  Intf& intf = intfs_[dice_.below(intfs_.size())];
  YamlTree& m = steps.push(YamlTree::map()).add("interface", YamlTree::map());
  m.add("name", intf.name, ValueKind::intfName);
  // A step removes what the interface held before it, and adds what it did not hold.
  std::vector<std::string> const before = intf.addresses;
  while (m.fields().size() < 2) {
    if (dice_.percent(35)) m.add("up", flag(dice_.percent(50)), ValueKind::flag);
    if (dice_.percent(25)) m.add("routing", flag(dice_.percent(50)), ValueKind::flag);
    if (dice_.percent(25)) {
      // One of its own addresses it lost, or the subnet it gains.
      std::vector<std::string> candidates;
      for (Family f : {Family::v4, Family::v6}) {
        for (bool extra : {false, true}) {
          std::string a = intfAddress(intf.slot, f, extra);
          if (std::find(intf.addresses.begin(), intf.addresses.end(), a) == intf.addresses.end()) {
            candidates.push_back(a);
          }
        }
      }
      if (!candidates.empty() && !m.field("add_address")) {
        std::string const a = dice_.pick(candidates);
        m.add("add_address", a, ValueKind::prefix);
        intf.addresses.push_back(a);
      }
    }
    if (dice_.percent(20) && !before.empty() && !m.field("remove_address")) {
      std::string const a = dice_.pick(before);
      m.add("remove_address", YamlTree::list()).push(YamlTree::scalar(a, ValueKind::prefix));
      intf.addresses.erase(std::find(intf.addresses.begin(), intf.addresses.end(), a));
    }
  }
}

void ScenarioBuilder::ribStep(YamlTree& steps) {
  YamlTree& m = steps.push(YamlTree::map()).add("rib", YamlTree::map());
  std::string const vrf = aliveVrf();
  if (vrf != "default") m.add("vrf", vrf, ValueKind::vrfName);
  m.add("nexthop", nexthop(family()), ValueKind::address);
  if (!intfs_.empty() && dice_.percent(25)) m.add("interface", dice_.pick(intfs_).name, ValueKind::intfName);
  std::size_t const state = dice_.weighted({40, 35, 25});
  m.add("state", state == 0 ? "resolved" : state == 1 ? "unresolved" : "clear");
  if (state == 0 && dice_.percent(60)) m.add("metric", std::to_string(dice_.below(100)), ValueKind::number);
}

void ScenarioBuilder::showStep(YamlTree& steps) {
  std::size_t const form = dice_.weighted({30, 40, 30});
  if (form == 0) {
    steps.push(YamlTree::scalar("show"));
  } else if (form == 1) {
    steps.push(YamlTree::map()).add("show", fmt::format("step {}", steps.items().size()));
  } else {
    YamlTree& m = steps.push(YamlTree::map()).add("show", YamlTree::map());
    m.add("label", "one vrf");
    m.add("vrf", aliveVrf(), ValueKind::vrfName);
  }
}

void ScenarioBuilder::restartStep(YamlTree& steps) {
  if (dice_.percent(40)) {
    steps.push(YamlTree::scalar("restart"));
    return;
  }
  steps.push(YamlTree::map()).add("restart", YamlTree::map()).add("graceful_restart", flag(dice_.percent(50)),
                                                                  ValueKind::flag);
}

void ScenarioBuilder::steps(YamlTree& doc) {
  YamlTree& steps = doc.add("steps", YamlTree::list());
  std::size_t const n = 2 + dice_.below(13);
  while (steps.items().size() < n) {
    switch (dice_.weighted({22, 8, 4, 4, 3, 12, 5, 8, 4, 4, 3, 6})) {
      case 0: routeStep(steps, false); break;
      case 1: routeStep(steps, true); break;
      case 2: globalStep(steps); break;
      case 3: addVrf(steps); break;
      case 4: removeVrf(steps); break;
      case 5: interfaceStep(steps); break;
      case 6: steps.push(YamlTree::map()).add("bfd", bfdSession()); break;
      case 7: ribStep(steps); break;
      case 8:
        if (!tags_.empty()) {
          YamlTree& t = steps.push(YamlTree::map()).add("command_tag", YamlTree::map());
          t.add("name", dice_.pick(tags_), ValueKind::tagName);
          t.add("enabled", flag(dice_.percent(50)), ValueKind::flag);
        }
        break;
      case 9: restartStep(steps); break;
      case 10: steps.push(YamlTree::scalar("settle")); break;
      default: showStep(steps); break;
    }
  }
  if (dice_.percent(90)) steps.push(YamlTree::map()).add("show", "end");
}

}  // namespace BowlineTest::Fuzz
