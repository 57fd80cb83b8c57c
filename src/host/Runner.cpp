#include "host/Runner.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <iterator>
#include <string_view>
#include <variant>
#include <memory>
#include <sstream>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "foundations/runtime/Slab.h"
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

// Communities as AS:NN, the form a scenario gives them in.
std::string communitiesText(std::vector<std::uint32_t> const& communities) {
  std::string out;
  for (std::uint32_t c : communities) out += fmt::format("{}{}:{}", out.empty() ? "" : ",", c >> 16, c & 0xffff);
  return out;
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
        if (r.tag) out += fmt::format(" tag {}", r.tag);
        if (!r.communities.empty()) out += " communities " + communitiesText(r.communities);
        if (r.stale) out += " (stale)";
        out += "\n";
        for (auto const& v : r.vias) {
          out += "      via";
          if (v.nextHop.af().isSet()) out += fmt::format(" {}", text(v.nextHop));
          if (!v.intf.empty()) out += fmt::format(" {}", text(v.intf));
          if (!v.nextHop.af().isSet() && v.intf.empty()) out += " cpu";
          if (!v.vrf.view().empty() && std::string(v.vrf.view()) != vrf.name)
            out += fmt::format(" vrf {}", v.vrf.view());
          if (v.weight != 0) out += fmt::format(" weight {}", weightText(v.weight));
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
                          {"tag", r.tag},
                          {"communities", r.communities},
                          {"stale", r.stale},
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

namespace {

// What the run is doing, kept where an abort handler can print it without allocating.
char gContext[256] = "the start";

void contextIs(std::string_view text) {
  std::size_t const n = std::min(text.size(), sizeof(gContext) - 1);
  std::memcpy(gContext, text.data(), n);
  gContext[n] = '\0';
}

extern "C" void reportAbort(int) {
  // Only async-signal-safe calls: the message, then the default action.
  constexpr char kHead[] = "bowline: aborted during ";
  (void)!::write(STDERR_FILENO, kHead, sizeof(kHead) - 1);
  (void)!::write(STDERR_FILENO, gContext, std::strlen(gContext));
  (void)!::write(STDERR_FILENO, "\n", 1);
  std::signal(SIGABRT, SIG_DFL);
  std::raise(SIGABRT);
}

constexpr char const* kStepNames[] = {"route", "global", "vrf", "interface", "bfd",
                                      "rib",   "command_tag", "restart", "show", "settle"};
static_assert(std::size(kStepNames) == std::variant_size_v<Step::Kind>);

// Shows printed one at a time: text as it comes, JSON as the members of one document's "shows"
// array, each flushed so that a run that stops later keeps what it printed.
class ShowPrinter {
 public:
  ShowPrinter(std::ostream& out, bool json) : out_(out), json_(json) {
    if (json_) out_ << "{\n  \"shows\": [";
  }
  void print(ShowView const& view) {
    if (!json_) {
      out_ << showText(view);
    } else {
      out_ << (count_ == 0 ? "\n" : ",\n") << indented(jsonText(showJson(view)), "    ");
    }
    ++count_;
    out_.flush();
  }
  void finish() {
    if (json_) out_ << (count_ == 0 ? "]" : "\n  ]") << "\n}\n";
    out_.flush();
  }

 private:
  static std::string indented(std::string const& text, std::string_view prefix) {
    std::string out(prefix);
    for (char c : text) {
      out += c;
      if (c == '\n') out += prefix;
    }
    return out;
  }
  std::ostream& out_;
  bool json_;
  std::size_t count_ = 0;
};

}  // namespace

double peakMemoryMiB() {
  rusage usage{};
  if (getrusage(RUSAGE_SELF, &usage) != 0) return 0;
  return double(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
}

std::string memoryByTypeText() {
  auto all = Plinth::typeStats();
  std::stable_sort(all.begin(), all.end(), [](auto const& a, auto const& b) { return a.bytes > b.bytes; });
  std::string out = fmt::format("memory by type: {} bytes in {} objects; slab reserved {} bytes\n",
                                Plinth::liveBytesAll(), Plinth::liveCountAll(), Plinth::bytesReserved());
  for (auto const& type : all) {
    if (type.live == 0) continue;
    out += fmt::format("{:>14} {:>10} {}\n", type.bytes, type.live, type.name);
  }
  return out;
}

std::string jsonText(nlohmann::json const& doc) {
  // Names are checked as UTF-8 when the scenario is read; a stray byte still never throws here.
  return doc.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
}

void installAbortReport() { std::signal(SIGABRT, reportAbort); }

std::string stepText(Step const& step, std::size_t index) {
  return fmt::format("step {} ({}, line {})", index + 1, kStepNames[step.kind.index()], step.line);
}

int runScenario(Scenario const& scenario, RunOptions const& options, std::ostream& out, std::ostream& err) {
  auto* scheduler = Halyard::TaskSchedulerRoot::findOrCreateScheduler();
  double converge = 0;
  double output = 0;
  std::size_t routes = 0;
  std::string stepTimes;  // one line a step, printed with the stats
  int status = 0;
  ShowPrinter printer(out, options.json);
  auto owned = std::make_unique<Switch>(scenario, scheduler);
  Switch& sw = *owned;
  if (options.progress) sw.progressIs(&err);
  auto emit = [&](std::string const& label, std::string const& vrf) {
    auto const t1 = std::chrono::steady_clock::now();
    printer.print(sw.view(label, vrf));
    output += secondsSince(t1);
  };
  try {
    contextIs("the start");
    auto t0 = std::chrono::steady_clock::now();
    sw.start();
    sw.settle();
    converge += secondsSince(t0);
    bool shown = false;
    for (std::size_t i = 0; i < scenario.steps.size(); ++i) {
      Step const& step = scenario.steps[i];
      contextIs(stepText(step, i));
      auto const t1 = std::chrono::steady_clock::now();
      if (auto const* show = std::get_if<ShowStep>(&step.kind)) {
        sw.settle();
        converge += secondsSince(t1);
        emit(show->label, show->vrf);
        shown = true;
      } else {
        sw.apply(step);
        converge += secondsSince(t1);
      }
      if (options.stats) stepTimes += fmt::format("stats: {}: {:.3f} s\n", stepText(step, i), secondsSince(t1));
    }
    // A scenario without a show prints the RIB it ends with.
    contextIs("the end");
    if (!shown) {
      sw.settle();
      emit("end", "");
    }
    routes = sw.routeCount();
    if (options.memoryByType) err << memoryByTypeText();
  } catch (std::exception const& e) {
    err << fmt::format("{}: {}: {}\n", scenario.path, gContext, e.what());
    status = kExitRunStopped;
  }
  printer.finish();
  contextIs("the teardown");
  auto const t2 = std::chrono::steady_clock::now();
  if (options.keepAtExit)
    (void)owned.release();  // NOLINT: deliberately left to the process's exit
  else
    owned.reset();
  double const teardown = secondsSince(t2);
  if (options.stats) {
    err << stepTimes;
    double const toRib = options.loadSeconds + converge;
    err << fmt::format(
        "stats: load {:.3f} s, converge {:.3f} s, output {:.3f} s, teardown {}, routes installed {}, {:.0f} routes/s, "
        "peak memory {:.1f} MiB\n",
        options.loadSeconds, converge, output,
        options.keepAtExit ? std::string("left to exit") : fmt::format("{:.3f} s", teardown), routes,
        toRib > 0 ? double(routes) / toRib : 0.0, peakMemoryMiB());
  }
  return status;
}

}  // namespace Host
