#include "host/Runner.h"

#include <chrono>
#include <memory>
#include <sstream>

#include <fmt/format.h>

#include "foundations/runtime/TaskScheduler.h"

namespace Host {

namespace {

constexpr char const* kFamilyNames[] = {"ipv4", "ipv6"};

std::string protocolName(Routing::Rib::RoutingProtocol p) {
  if (p == Routing::Rib::RoutingProtocol::staticConfig()) return "static";
  if (p == Routing::Rib::RoutingProtocol::routeInput()) return "input";
  return p.toStrep();
}

std::string text(auto const& value) {
  std::ostringstream os;
  os << value;
  return os.str();
}

std::string weightText(float w) { return fmt::format("{:g}", w); }

double secondsSince(std::chrono::steady_clock::time_point t0) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

}  // namespace

std::string showText(ShowView const& view) {
  std::string out = fmt::format("== show{}{}\n", view.label.empty() ? "" : ": ", view.label);
  for (auto const& vrf : view.vrfs) {
    out += fmt::format("vrf {} (id {})\n", vrf.name, vrf.id);
    for (int f = 0; f < 2; ++f) {
      auto const& routes = vrf.routes[f];
      out += fmt::format("  {}: {} route{}\n", kFamilyNames[f], routes.size(), routes.size() == 1 ? "" : "s");
      for (auto const& r : routes) {
        out += fmt::format("    {} {} pref {} metric {}", text(r.prefix), protocolName(r.protocol),
                           unsigned(r.preference), r.metric);
        if (r.flags) out += fmt::format(" flags {:#x}", unsigned(r.flags));
        if (r.viaSetFlags) out += fmt::format(" set-flags {:#x}", unsigned(r.viaSetFlags));
        if (r.fecType) out += fmt::format(" fec {}", unsigned(r.fecType));
        out += "\n";
        for (auto const& v : r.vias) {
          out += "      via";
          if (v.nextHop.af().isSet()) out += " " + text(v.nextHop);
          if (!v.intf.empty()) out += " " + text(v.intf);
          if (!v.nextHop.af().isSet() && v.intf.empty()) out += " cpu";
          if (!v.vrf.view().empty() && std::string(v.vrf.view()) != vrf.name)
            out += fmt::format(" vrf {}", v.vrf.view());
          if (v.weight != 0) out += " weight " + weightText(v.weight);
          if (v.label) out += fmt::format(" label {}", *v.label);
          if (v.vni) out += fmt::format(" vni {}", *v.vni);
          if (!v.resolved) out += " (unresolved)";
          out += "\n";
        }
      }
    }
    auto yesNo = [](bool b) { return b ? "yes" : "no"; };
    out += fmt::format("  ready: ipv4 {}, ipv6 {}; routes ready: ipv4 {}, ipv6 {}\n", yesNo(vrf.ready[0]),
                       yesNo(vrf.ready[1]), yesNo(vrf.routesReady[0]), yesNo(vrf.routesReady[1]));
    out += fmt::format("  handshake: trigger {}, status {}{}\n", vrf.seqTrigger, vrf.seqStatus,
                       vrf.seqTrigger != 0 && vrf.seqTrigger == vrf.seqStatus ? " (answered)" : " (pending)");
  }
  return out;
}

nlohmann::json showJson(ShowView const& view) {
  nlohmann::json vrfs = nlohmann::json::array();
  for (auto const& vrf : view.vrfs) {
    nlohmann::json families = nlohmann::json::object();
    for (int f = 0; f < 2; ++f) {
      nlohmann::json routes = nlohmann::json::array();
      for (auto const& r : vrf.routes[f]) {
        nlohmann::json vias = nlohmann::json::array();
        for (auto const& v : r.vias) {
          nlohmann::json via = {{"nexthop", v.nextHop.af().isSet() ? text(v.nextHop) : ""},
                                {"interface", v.intf.empty() ? "" : text(v.intf)},
                                {"vrf", std::string(v.vrf.view())},
                                {"weight", v.weight},
                                {"resolved", v.resolved}};
          via["label"] = v.label ? nlohmann::json(*v.label) : nlohmann::json(nullptr);
          via["vni"] = v.vni ? nlohmann::json(*v.vni) : nlohmann::json(nullptr);
          vias.push_back(std::move(via));
        }
        routes.push_back({{"prefix", text(r.prefix)},
                          {"protocol", protocolName(r.protocol)},
                          {"preference", r.preference},
                          {"metric", r.metric},
                          {"flags", r.flags},
                          {"viaSetFlags", r.viaSetFlags},
                          {"fecType", r.fecType},
                          {"vias", std::move(vias)}});
      }
      families[kFamilyNames[f]] = std::move(routes);
    }
    vrfs.push_back({{"name", vrf.name},
                    {"id", vrf.id},
                    {"routes", std::move(families)},
                    {"ready", {{"ipv4", vrf.ready[0]}, {"ipv6", vrf.ready[1]}}},
                    {"routesReady", {{"ipv4", vrf.routesReady[0]}, {"ipv6", vrf.routesReady[1]}}},
                    {"handshake", {{"trigger", vrf.seqTrigger}, {"status", vrf.seqStatus}}}});
  }
  return {{"label", view.label}, {"vrfs", std::move(vrfs)}};
}

int runScenario(Scenario const& scenario, RunOptions const& options, std::ostream& out, std::ostream& err) {
  auto* scheduler = Halyard::TaskSchedulerRoot::findOrCreateScheduler();
  nlohmann::json shows = nlohmann::json::array();
  double converge = 0;
  double output = 0;
  std::size_t routes = 0;
  auto owned = std::make_unique<Switch>(scenario, scheduler);
  {
    Switch& sw = *owned;
    auto t0 = std::chrono::steady_clock::now();
    sw.start();
    sw.settle();
    converge += secondsSince(t0);
    auto emit = [&](std::string const& label, std::string const& vrf) {
      auto const t1 = std::chrono::steady_clock::now();
      ShowView const view = sw.view(label, vrf);
      if (options.json)
        shows.push_back(showJson(view));
      else
        out << showText(view);
      output += secondsSince(t1);
    };
    bool shown = false;
    for (auto const& step : scenario.steps) {
      if (auto const* show = std::get_if<ShowStep>(&step.kind)) {
        auto const t1 = std::chrono::steady_clock::now();
        sw.settle();
        converge += secondsSince(t1);
        emit(show->label, show->vrf);
        shown = true;
        continue;
      }
      auto const t1 = std::chrono::steady_clock::now();
      sw.apply(step);
      converge += secondsSince(t1);
    }
    // A scenario without a show prints the RIB it ends with.
    if (!shown) {
      sw.settle();
      emit("end", "");
    }
    routes = sw.routeCount();
    auto const t2 = std::chrono::steady_clock::now();
    if (options.json) out << nlohmann::json({{"shows", std::move(shows)}}).dump(2) << "\n";
    output += secondsSince(t2);
  }
  if (options.keepAtExit)
    (void)owned.release();  // NOLINT: deliberately left to the process's exit
  else
    owned.reset();
  if (options.stats) {
    err << fmt::format("stats: load {:.3f} s, converge {:.3f} s, output {:.3f} s, routes installed {}\n",
                       options.loadSeconds, converge, output, routes);
  }
  return 0;
}

}  // namespace Host
