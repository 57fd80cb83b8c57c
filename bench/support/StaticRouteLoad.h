// The load the peer-daemon script gives its daemon, and what the benches that run it share: N IPv4
// routes, route i = (16.0.0.0 + i*256)/24 via 192.168.1.1 (one next hop, no interface) in VRF
// "default"; the static route machine that takes them to the status store; a first load in a forked
// child for heap bytes per route and peak RSS; clocks; the peer daemon's figures. Header only: each
// bench is one file. Objects built here belong to the bench that builds them.
#pragma once

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "RatioReporter.h"
#include "foundations/runtime/Slab.h"
#include "foundations/runtime/TaskScheduler.h"
#include "routecache/RouteCacheRouteHelperSm.h"
#include "static/RouteConfigSm.h"

namespace BowlineBench {

constexpr std::uint32_t kFirstPrefix = 0x10000000u;  // 16.0.0.0
constexpr std::uint32_t kNextHop = 0xc0a80101u;      // 192.168.1.1

inline Quill::Ptr<Routing::RouteList> routeListOf(std::uint32_t n) {
  auto list = Routing::RouteList::RouteListIs();
  Routing::Via const via(Ondex::IpGenAddr::fromV4(kNextHop));
  for (std::uint32_t i = 0; i < n; ++i) {
    Ondex::IpGenPrefix const prefix(Ondex::IpGenAddr::fromV4(kFirstPrefix + (i << 8)), 24);
    list->routeIs(Routing::RouteKey(prefix), Routing::RouteType::forward)->viaIs(via, Routing::RouteViaAttr());
  }
  return list;
}

// The static route machine of VRF "default", IPv4, in static mode, with the tables it writes. A
// next-hop-only via needs no interface table. Built idle: the owner runs the scheduler (after
// attaching whatever else watches the store, if anything).
struct StaticVrf {
  explicit StaticVrf(Quill::Ptr<Routing::RouteList> const& list) {
    using namespace Routing;
    auto const af = Ondex::AddressFamily::ipv4;
    statusDir = Protocol::RouteStatusDir::RouteStatusDirIs();
    status = statusDir->statusIs(Protocol::RouteStatusKey{Vrf::VrfIdMap::VrfId(0), af});
    vias = Rib::Ip::ViaConfig::ViaConfigIs(Rib::RoutingProtocol::staticConfig(), Rib::Transport::transportIpv4());
    Static::RouteConfigSm::Inputs in;
    in.containerKey = Protocol::ContainerKey("default", af);
    in.vrfId = Vrf::VrfIdMap::VrfId(0);
    in.status = status;
    in.ipViaConfig = vias;
    in.leakConfig = Protocol::LeakRouteConfig::LeakRouteConfigIs(Protocol::VrfIdAf(0, af));
    in.scheduler = scheduler;
    in.srConfig = list;
    sm = Static::RouteConfigSm::RouteConfigSmIs(in);
  }
  // Machine first: it watches the list and writes the tables.
  ~StaticVrf() { sm = nullptr; }

  Halyard::TaskScheduler* scheduler = Halyard::TaskSchedulerRoot::findOrCreateScheduler();
  Quill::Ptr<Routing::Protocol::RouteStatusDir> statusDir;
  Quill::Ptr<Routing::Protocol::Status> status;
  Quill::Ptr<Routing::Rib::Ip::ViaConfig> vias;
  Quill::Ptr<Routing::Static::RouteConfigSm> sm;
};

// Every route of the store has one preference with the one next-hop-only via, found in the via
// table (with `everyRoute`; else the counts only). Empty when so, else what is wrong.
inline std::string wrongInStore(StaticVrf const& vrf, std::uint32_t n, bool everyRoute) {
  using Routing::Protocol::viaNextHopOnly;
  if (vrf.status->routeSize() != n) {
    return "status holds " + std::to_string(vrf.status->routeSize()) + " routes, not " + std::to_string(n);
  }
  if (vrf.vias->viaSize() != 1) return "via table holds " + std::to_string(vrf.vias->viaSize()) + " vias, not 1";
  if (!everyRoute) return {};
  for (auto route = vrf.status->routeIteratorConst(); route; route.advance()) {
    auto pref = route.value()->routePrefIteratorConst();
    auto type = pref ? pref.value()->dedupViaKeyByViaType(viaNextHopOnly) : nullptr;
    if (!type || type->dedupViaKeySize() != 1 || !vrf.vias->viaFind(type->dedupViaKeyIteratorConst().key())) {
      return "a route without its next-hop via";
    }
  }
  return {};
}

// Bytes the heap has handed out (slab chunks and large blocks included), and the RSS fields.
inline std::size_t heapInUse() {
  auto const m = mallinfo2();
  return m.uordblks + m.hblkhd;
}
inline double statusKib(char const* field) {
  std::ifstream in("/proc/self/status");
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind(field, 0) == 0) return std::strtod(line.c_str() + line.find(':') + 1, nullptr);
  }
  return 0;
}
inline double wallNow() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
inline double cpuNow() {
  timespec ts{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
  return double(ts.tv_sec) + double(ts.tv_nsec) * 1e-9;
}

// Profiles of marked steps only: with BOWLINE_PERF_CTL naming the control fifo of
// `perf record --control fifo:CTL,ACK -D -1 ...` (and BOWLINE_PERF_ACK its ack fifo), a bench opens
// the profile around the steps it marks and closes it after them; with BOWLINE_PERF_STEP, only
// around the step of that name. Without BOWLINE_PERF_CTL, nothing.
inline void profileWindow(bool open, char const* step) {
  static std::FILE* const ctl = std::getenv("BOWLINE_PERF_CTL") ? std::fopen(std::getenv("BOWLINE_PERF_CTL"), "w")
                                                                 : nullptr;
  static std::FILE* const ack = std::getenv("BOWLINE_PERF_ACK") ? std::fopen(std::getenv("BOWLINE_PERF_ACK"), "r")
                                                                 : nullptr;
  char const* only = std::getenv("BOWLINE_PERF_STEP");
  if (!ctl || (only && std::string(only) != step)) return;
  std::fputs(open ? "enable\n" : "disable\n", ctl);
  std::fflush(ctl);
  char line[16];
  if (ack) std::fgets(line, sizeof line, ack);  // perf answers "ack" once it has switched
}

// The types of objects a load added, largest first, per route. The slab names only objects made by
// a factory: the nodes and buckets of the hash maps are counted apart, in the heap figures.
inline std::string growthByType(std::vector<Plinth::TypeStats> const& before, std::uint32_t n, std::size_t top) {
  std::map<std::string, Plinth::TypeStats> was;
  for (auto const& t : before) was[t.name] = t;
  std::vector<Plinth::TypeStats> grew;
  for (auto t : Plinth::typeStats()) {
    t.bytes -= was[t.name].bytes;
    t.live -= was[t.name].live;
    if (2 * t.bytes >= std::int64_t(n)) grew.push_back(std::move(t));  // half a byte a route and more
  }
  std::sort(grew.begin(), grew.end(), [](auto const& a, auto const& b) { return a.bytes > b.bytes; });
  std::string out;
  std::int64_t typed = 0;
  for (auto const& t : grew) typed += t.bytes;
  for (std::size_t i = 0; i < grew.size() && i < top; ++i) {
    char line[256];
    std::snprintf(line, sizeof line, "    %6.1f B %5.2f x  %.150s\n", double(grew[i].bytes) / n,
                  double(grew[i].live) / n, grew[i].name.c_str());
    out += line;
  }
  char line[160];
  std::snprintf(line, sizeof line, "    %6.1f B in all, as typed objects; the rest is hash map nodes and buckets\n",
                double(typed) / n);
  return out + line;
}

// A first load: the list built, then the machines the bench asks for loaded on it.
struct ColdFigures {
  double listWall, listCpu, loadWall, loadCpu;    // seconds
  double listHeap, loadHeap, listSlab, loadSlab;  // bytes
  double rssGrowthKib, peakRssKib;
  char wrong[120];    // empty when the load was right
  char byType[3072];  // the slab's largest typed shares of the growth, one "bytes/route count/route type" a line
};

// Runs `body` in a child process forked from the parent as it is, so that the parent's heap stays
// as it was, and hands back what the body filled in: Figures is plain data with a `wrong` text,
// empty when all was right. What the child built is never torn down: it ends with _exit, as a
// daemon that is killed, and no static destructor runs either.
template <class Figures, class Body>
bool runInChild(Figures& out, Body&& body, std::string& error) {
  int fds[2];
  if (pipe(fds) != 0) return error = "pipe failed", false;
  pid_t const pid = fork();
  if (pid < 0) return error = "fork failed", false;
  if (pid == 0) {
    close(fds[0]);
    Figures f{};
    body(f);
    bool const sent = write(fds[1], &f, sizeof f) == ssize_t(sizeof f);
    _exit(sent ? 0 : 1);
  }
  close(fds[1]);
  ssize_t const got = read(fds[0], &out, sizeof out);
  close(fds[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  if (got != ssize_t(sizeof out) || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    return error = "the child run failed", false;
  }
  if (out.wrong[0]) return error = out.wrong, false;
  return true;
}

// Builds the list of N routes and then a Load on it (which runs its machines until idle) in a child,
// so that the figures are those of a first load (fresh pages, empty slab). The check of every route
// is not timed.
template <class Load>
bool coldRunInChild(std::uint32_t n, std::size_t topTypes, ColdFigures& out, std::string& error) {
  return runInChild(
      out,
      [&](ColdFigures& f) {
        auto const types0 = Plinth::typeStats();
        double const rss0 = statusKib("VmRSS:");
        std::size_t const heap0 = heapInUse(), slab0 = Plinth::bytesReserved();
        double w = wallNow(), c = cpuNow();
        auto list = routeListOf(n);
        f.listWall = wallNow() - w, f.listCpu = cpuNow() - c;
        std::size_t const heap1 = heapInUse(), slab1 = Plinth::bytesReserved();
        w = wallNow(), c = cpuNow();
        auto const* load = new Load(list);
        f.loadWall = wallNow() - w, f.loadCpu = cpuNow() - c;
        f.listHeap = double(heap1 - heap0), f.loadHeap = double(heapInUse() - heap1);
        f.listSlab = double(slab1 - slab0), f.loadSlab = double(Plinth::bytesReserved() - slab1);
        // Under the sanitizers malloc keeps no counts: the slab's figures stand in.
        if (heap1 == heap0) f.listHeap = f.listSlab, f.loadHeap = f.loadSlab;
        f.rssGrowthKib = statusKib("VmRSS:") - rss0;
        f.peakRssKib = statusKib("VmHWM:");
        std::snprintf(f.wrong, sizeof f.wrong, "%s", load->wrong(n, true).c_str());
        std::snprintf(f.byType, sizeof f.byType, "%s", growthByType(types0, n, topTypes).c_str());
      },
      error);
}

// What each first load added, by type, under "label/N"; printed after the table.
inline std::map<std::string, std::string> coldByType;

// A Load is built on the list and runs its machines until idle; wrong(n, everyRoute) says what is
// not as it should be ("" when all is); kLabel names it in the tables. One first load per
// iteration; its wall time is the iteration's time (use with UseManualTime and Iterations(1)).
template <class Load>
void BM_Cold(benchmark::State& state) {
  auto const n = std::uint32_t(state.range(0));
  ColdFigures f{};
  for (auto _ : state) {
    std::string error;
    if (!coldRunInChild<Load>(n, 14, f, error)) {
      state.SkipWithError(error.c_str());
      return;
    }
    state.SetIterationTime(f.listWall + f.loadWall);
  }
  double const routes = n;
  state.counters["list_s"] = f.listWall;
  state.counters["total_s"] = f.listWall + f.loadWall;
  state.counters["total_cpu_s"] = f.listCpu + f.loadCpu;
  state.counters["list_B/route"] = f.listHeap / routes;
  state.counters["machine_B/route"] = f.loadHeap / routes;
  state.counters["slab_share"] = (f.listSlab + f.loadSlab) / (f.listHeap + f.loadHeap);
  state.counters["rss_B/route"] = f.rssGrowthKib * 1024 / routes;
  state.counters["peak_rss_MiB"] = f.peakRssKib / 1024;
  coldByType[std::string(Load::kLabel) + "/" + std::to_string(n)] = f.byType;
}

// The teardown is not part of a warm load; its CPU time is kept apart.
inline double teardownCpu = 0;

// Warm loads: the list built and the Load on it, timed; the check and the teardown are not.
template <class Load>
void BM_Load(benchmark::State& state) {
  auto const n = std::uint32_t(state.range(0));
  teardownCpu = 0;
  for (auto _ : state) {
    auto list = routeListOf(n);
    auto load = std::make_unique<Load>(list);
    state.PauseTiming();
    if (auto wrong = load->wrong(n, false); !wrong.empty()) state.SkipWithError(wrong.c_str());
    double const c = cpuNow();
    load = nullptr;
    list = nullptr;
    teardownCpu += cpuNow() - c;
    state.ResumeTiming();
    if (state.error_occurred()) break;
  }
  if (teardownCpu > 0) state.counters["teardown_cpu_s"] = teardownCpu / double(state.iterations());
  state.counters["ns/route"] = benchmark::Counter(double(state.iterations()) * n,
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// The loads both benches measure: the list alone, and the static route machine to the status store.
struct ListOnly {
  static constexpr char const* kLabel = "list only";
  explicit ListOnly(Quill::Ptr<Routing::RouteList> list) : list(std::move(list)) {}
  [[nodiscard]] std::string wrong(std::uint32_t n, bool) const {
    return list->routeSize() == n ? "" : "the list lacks routes";
  }
  Quill::Ptr<Routing::RouteList> list;
};

struct StatusStore : StaticVrf {
  static constexpr char const* kLabel = "status store";
  explicit StatusStore(Quill::Ptr<Routing::RouteList> const& list) : StaticVrf(list) { scheduler->runUntilIdle(); }
  [[nodiscard]] std::string wrong(std::uint32_t n, bool everyRoute) const { return wrongInStore(*this, n, everyRoute); }
};

// The peer daemon's figures, from the lines peer-bird.sh printed ("bird2 N routes (single): median T s
// ..., peak RSS M MiB, ..."), kept in the file named by BOWLINE_PEER_BIRD; by N: (seconds, MiB).
inline std::map<std::uint32_t, std::pair<double, double>> peerFigures() {
  std::map<std::uint32_t, std::pair<double, double>> out;
  char const* path = std::getenv("BOWLINE_PEER_BIRD");
  if (!path) return out;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    unsigned n = 0;
    double seconds = 0, mib = 0;
    auto const rss = line.find("peak RSS ");
    if (std::sscanf(line.c_str(), "bird2 %u routes (single): median %lf s", &n, &seconds) == 2 &&
        rss != std::string::npos && std::sscanf(line.c_str() + rss, "peak RSS %lf MiB", &mib) == 1) {
      out[n] = {seconds, mib};
    }
  }
  return out;
}

// The first loads of the named BM_Cold runs ((label, function name as in the table), e.g. ("status
// store", "BM_Cold<StatusStore>")), per N: wall seconds of the list alone and of the list with the
// load (and the CPU seconds of the latter), their ratio, routes per second of the whole, heap bytes
// per route of each part and the ratio of the whole to the list, the child's peak RSS; with the
// peer's figures, its time and peak RSS and ours as ratios to them. Then the objects each load added.
inline void printColdRuns(RatioReporter const& reporter, std::vector<std::pair<std::string, std::string>> const& loads,
                          std::vector<std::uint32_t> const& ns) {
  if (coldByType.empty()) return;  // BM_Cold did not run
  auto const peer = peerFigures();
  std::printf("\nfirst load in a fresh process (BM_Cold)\n");
  std::printf("  %-8s %-13s %7s %8s %7s %6s %9s %9s %9s %9s %6s %9s", "N", "load", "list s", "total s", "cpu s",
              "ratio", "routes/s", "list B/r", "load B/r", "total B/r", "ratio", "peak MiB");
  if (!peer.empty()) std::printf(" %8s %9s %7s %9s", "peer s", "peer MiB", "s/peer", "RSS/peer");
  std::printf("\n");
  for (std::uint32_t n : ns) {
    for (auto const& [label, function] : loads) {
      std::string const name = function + "/" + std::to_string(n) + "/iterations:1/manual_time";
      auto const listS = reporter.counter(name, "list_s"), totalS = reporter.counter(name, "total_s");
      auto const cpuS = reporter.counter(name, "total_cpu_s");
      auto const listB = reporter.counter(name, "list_B/route"), loadB = reporter.counter(name, "machine_B/route");
      auto const peak = reporter.counter(name, "peak_rss_MiB");
      if (!listS || !totalS || !cpuS || !listB || !loadB || !peak) continue;
      double const totalB = *listB + *loadB;
      std::printf("  %-8u %-13s %7.3f %8.3f %7.3f %6.2f %9.0f %9.0f %9.0f %9.0f %6.2f %9.1f", n, label.c_str(), *listS,
                  *totalS, *cpuS, *totalS / *listS, n / *totalS, *listB, *loadB, totalB, totalB / *listB, *peak);
      if (auto p = peer.find(n); p != peer.end()) {
        // Wall time against wall time, and peak RSS against peak RSS, each with its process's base.
        auto const [peerS, peerMib] = p->second;
        std::printf(" %8.3f %9.1f %7.2f %9.2f", peerS, peerMib, *totalS / peerS, *peak / peerMib);
      }
      std::printf("\n");
    }
  }
  for (auto const& [key, text] : coldByType) {
    std::printf("\n  objects the first load (%s routes) added, per route (bytes, count, type):\n%s", key.c_str(),
                text.c_str());
  }
}

}  // namespace BowlineBench
