// The static route machine at scale: N IPv4 routes, route i = (16.0.0.0 + i*256)/24 via 192.168.1.1
// (one next hop, no interface) in VRF "default" - the load the peer-daemon script gives its daemon.
//
// Baseline: building the RouteList alone. Measured: building the RouteList, constructing
// RouteConfigSm on it and running the scheduler until idle, when every route is in the status store
// with its via; each run checks that the store holds N routes and stops the benchmark if not.
//
// BM_Cold runs once per N in a forked child that starts from a process where nothing was built yet,
// so that the heap figures are what a list and a machine really take and the times are those of a
// first load (fresh pages, empty slab): heap bytes per route of the list and of the machine (status
// store, via table, nested watchers), the RSS growth, the peak RSS and the wall times.
// BM_Load<ListOnly> and BM_Load<Machine> then time warm loads; the program ends with their ratios.
#include <benchmark/benchmark.h>
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

#include "../support/RatioReporter.h"
#include "foundations/runtime/Slab.h"
#include "foundations/runtime/TaskScheduler.h"
#include "static/RouteConfigSm.h"

namespace {

using Routing::RouteList;
using Routing::Static::RouteConfigSm;

constexpr std::uint32_t kFirstPrefix = 0x10000000u;  // 16.0.0.0
constexpr std::uint32_t kNextHop = 0xc0a80101u;      // 192.168.1.1

Quill::Ptr<RouteList> routeListOf(std::uint32_t n) {
  auto list = RouteList::RouteListIs();
  Routing::Via const via(Ondex::IpGenAddr::fromV4(kNextHop));
  for (std::uint32_t i = 0; i < n; ++i) {
    Ondex::IpGenPrefix const prefix(Ondex::IpGenAddr::fromV4(kFirstPrefix + (i << 8)), 24);
    list->routeIs(Routing::RouteKey(prefix), Routing::RouteType::forward)->viaIs(via, Routing::RouteViaAttr());
  }
  return list;
}

// The machine of VRF "default", IPv4, in static mode, with the tables it writes. A next-hop-only via
// needs no interface table.
struct StaticVrf {
  explicit StaticVrf(Quill::Ptr<RouteList> const& list) {
    using namespace Routing;
    auto const af = Ondex::AddressFamily::ipv4;
    statusDir = Protocol::RouteStatusDir::RouteStatusDirIs();
    status = statusDir->statusIs(Protocol::RouteStatusKey{Vrf::VrfIdMap::VrfId(0), af});
    vias = Rib::Ip::ViaConfig::ViaConfigIs(Rib::RoutingProtocol::staticConfig(), Rib::Transport::transportIpv4());
    RouteConfigSm::Inputs in;
    in.containerKey = Protocol::ContainerKey("default", af);
    in.vrfId = Vrf::VrfIdMap::VrfId(0);
    in.status = status;
    in.ipViaConfig = vias;
    in.leakConfig = Protocol::LeakRouteConfig::LeakRouteConfigIs(Protocol::VrfIdAf(0, af));
    in.scheduler = Halyard::TaskSchedulerRoot::findOrCreateScheduler();
    in.srConfig = list;
    sm = RouteConfigSm::RouteConfigSmIs(in);
    in.scheduler->runUntilIdle();
  }
  // Machine first: it watches the list and writes the tables.
  ~StaticVrf() { sm = nullptr; }

  Quill::Ptr<Routing::Protocol::RouteStatusDir> statusDir;
  Quill::Ptr<Routing::Protocol::Status> status;
  Quill::Ptr<Routing::Rib::Ip::ViaConfig> vias;
  Quill::Ptr<RouteConfigSm> sm;
};

// Every route of the store has one preference with the one next-hop-only via, found in the via
// table. Empty when so, else what is wrong.
std::string wrongIn(StaticVrf const& vrf, std::uint32_t n, bool everyRoute) {
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
std::size_t heapInUse() {
  auto const m = mallinfo2();
  return m.uordblks + m.hblkhd;
}
double statusKib(char const* field) {
  std::ifstream in("/proc/self/status");
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind(field, 0) == 0) return std::strtod(line.c_str() + line.find(':') + 1, nullptr);
  }
  return 0;
}
double wallNow() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }
double cpuNow() {
  timespec ts{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
  return double(ts.tv_sec) + double(ts.tv_nsec) * 1e-9;
}

struct ColdFigures {
  double listWall, listCpu, machineWall, machineCpu;        // seconds
  double listHeap, machineHeap, listSlab, machineSlab;      // bytes
  double rssGrowthKib, peakRssKib;
  char wrong[120];    // empty when the store was right
  char byType[2048];  // the slab's largest typed shares of the growth, one "bytes/route count/route type" a line
};

// The types of objects the load added, largest first, per route. The slab names only objects made by
// a factory: the nodes and buckets of the hash maps are counted apart, in the heap figures.
std::string growthByType(std::vector<Plinth::TypeStats> const& before, std::uint32_t n, std::size_t top) {
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

// One list and machine built in a child process, so that the parent's heap stays as it was.
bool coldRunInChild(std::uint32_t n, ColdFigures& out, std::string& error) {
  int fds[2];
  if (pipe(fds) != 0) return error = "pipe failed", false;
  pid_t const pid = fork();
  if (pid < 0) return error = "fork failed", false;
  if (pid == 0) {
    close(fds[0]);
    ColdFigures f{};
    auto const types0 = Plinth::typeStats();
    double const rss0 = statusKib("VmRSS:");
    std::size_t const heap0 = heapInUse(), slab0 = Plinth::bytesReserved();
    double w = wallNow(), c = cpuNow();
    auto list = routeListOf(n);
    f.listWall = wallNow() - w, f.listCpu = cpuNow() - c;
    std::size_t const heap1 = heapInUse(), slab1 = Plinth::bytesReserved();
    w = wallNow(), c = cpuNow();
    // Never torn down: the child ends with _exit, as a daemon that is killed.
    auto const* vrf = new StaticVrf(list);
    f.machineWall = wallNow() - w, f.machineCpu = cpuNow() - c;
    f.listHeap = double(heap1 - heap0), f.machineHeap = double(heapInUse() - heap1);
    f.listSlab = double(slab1 - slab0), f.machineSlab = double(Plinth::bytesReserved() - slab1);
    // Under the sanitizers malloc keeps no counts: the slab's figures stand in.
    if (heap1 == heap0) f.listHeap = f.listSlab, f.machineHeap = f.machineSlab;
    f.rssGrowthKib = statusKib("VmRSS:") - rss0;
    f.peakRssKib = statusKib("VmHWM:");
    std::snprintf(f.wrong, sizeof f.wrong, "%s", wrongIn(*vrf, n, true).c_str());
    std::snprintf(f.byType, sizeof f.byType, "%s", growthByType(types0, n, 12).c_str());
    bool const sent = write(fds[1], &f, sizeof f) == ssize_t(sizeof f);
    _exit(sent ? 0 : 1);  // no static destructors either: the parent goes on
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

std::map<std::uint32_t, std::string> coldByType;  // printed after the table

void BM_Cold(benchmark::State& state) {
  auto const n = std::uint32_t(state.range(0));
  ColdFigures f{};
  for (auto _ : state) {
    std::string error;
    if (!coldRunInChild(n, f, error)) {
      state.SkipWithError(error.c_str());
      return;
    }
    state.SetIterationTime(f.listWall + f.machineWall);
  }
  double const routes = n;
  state.counters["list_s"] = f.listWall;
  state.counters["total_s"] = f.listWall + f.machineWall;
  state.counters["total_cpu_s"] = f.listCpu + f.machineCpu;
  state.counters["list_B/route"] = f.listHeap / routes;
  state.counters["machine_B/route"] = f.machineHeap / routes;
  state.counters["slab_share"] = (f.listSlab + f.machineSlab) / (f.listHeap + f.machineHeap);
  state.counters["rss_B/route"] = f.rssGrowthKib * 1024 / routes;
  state.counters["peak_rss_MiB"] = f.peakRssKib / 1024;
  coldByType[n] = f.byType;
}
BENCHMARK(BM_Cold)->Arg(100000)->Arg(1000000)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

struct ListOnly {
  static void load(benchmark::State& state, std::uint32_t n) {
    auto list = routeListOf(n);
    state.PauseTiming();
    if (list->routeSize() != n) state.SkipWithError("the list lacks routes");
    list = nullptr;
    state.ResumeTiming();
  }
};

// The teardown is not part of the load; its CPU time is kept apart (the machine takes every route
// out of the status store as it goes).
double teardownCpu = 0;

struct Machine {
  static void load(benchmark::State& state, std::uint32_t n) {
    auto list = routeListOf(n);
    auto vrf = std::make_unique<StaticVrf>(list);
    state.PauseTiming();
    if (auto wrong = wrongIn(*vrf, n, false); !wrong.empty()) state.SkipWithError(wrong.c_str());
    double const c = cpuNow();
    vrf = nullptr;
    list = nullptr;
    teardownCpu += cpuNow() - c;
    state.ResumeTiming();
  }
};

template <class Load>
void BM_Load(benchmark::State& state) {
  auto const n = std::uint32_t(state.range(0));
  teardownCpu = 0;
  for (auto _ : state) {
    Load::load(state, n);
    if (state.error_occurred()) break;
  }
  if (teardownCpu > 0) state.counters["teardown_cpu_s"] = teardownCpu / double(state.iterations());
  state.counters["ns/route"] = benchmark::Counter(double(state.iterations()) * n,
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK_TEMPLATE(BM_Load, ListOnly)->Arg(100000)->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, Machine)->Arg(100000)->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, ListOnly)->Arg(1000000)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, Machine)->Arg(1000000)->Iterations(3)->Unit(benchmark::kMillisecond);

// The peer daemon's figures, from the lines peer-bird.sh printed ("bird2 N routes (single): median T s
// ..., peak RSS M MiB, ..."), kept in the file named by BOWLINE_PEER_BIRD; by N.
std::map<std::uint32_t, std::pair<double, double>> peerFigures() {
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

// Per N: wall seconds of the list alone and of list plus machine (and the CPU seconds of the latter),
// their ratio, heap bytes per route of each part and the ratio of the whole to the list, the child's
// peak RSS; with the peer's figures, its time and peak RSS and ours as a ratio to them.
void printColdRuns(BowlineBench::RatioReporter const& reporter) {
  if (coldByType.empty()) return;  // BM_Cold did not run
  auto const peer = peerFigures();
  std::printf("\nfirst load in a fresh process (BM_Cold)\n");
  std::printf("  %-8s %7s %8s %7s %6s %9s %9s %9s %6s %9s", "N", "list s", "total s", "cpu s", "ratio", "list B/r",
              "mach B/r", "total B/r", "ratio", "peak MiB");
  if (!peer.empty()) std::printf(" %8s %9s %7s %9s", "peer s", "peer MiB", "s/peer", "RSS/peer");
  std::printf("\n");
  for (std::uint32_t n : {100000u, 1000000u}) {
    std::string const name = "BM_Cold/" + std::to_string(n) + "/iterations:1/manual_time";
    auto const listS = reporter.counter(name, "list_s"), totalS = reporter.counter(name, "total_s");
    auto const cpuS = reporter.counter(name, "total_cpu_s");
    auto const listB = reporter.counter(name, "list_B/route"), machineB = reporter.counter(name, "machine_B/route");
    auto const peak = reporter.counter(name, "peak_rss_MiB");
    if (!listS || !totalS || !cpuS || !listB || !machineB || !peak) continue;
    double const totalB = *listB + *machineB;
    std::printf("  %-8u %7.3f %8.3f %7.3f %6.2f %9.0f %9.0f %9.0f %6.2f %9.1f", n, *listS, *totalS, *cpuS,
                *totalS / *listS, *listB, *machineB, totalB, totalB / *listB, *peak);
    if (auto p = peer.find(n); p != peer.end()) {
      // Wall time against wall time, and peak RSS against peak RSS, each with its process's base.
      auto const [peerS, peerMib] = p->second;
      std::printf(" %8.3f %9.1f %7.2f %9.2f", peerS, peerMib, *totalS / peerS, *peak / peerMib);
    }
    std::printf("\n");
  }
  for (auto const& [n, text] : coldByType) {
    std::printf("\n  objects the first load of %u routes added, per route (bytes, count, type):\n%s", n, text.c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  return BowlineBench::runWithRatios(argc, argv, [](BowlineBench::RatioReporter const& reporter) {
    reporter.printPairs(BowlineBench::RatioReporter::byTemplateArgument("Machine"), {}, "machine", "list only");
    printColdRuns(reporter);
  });
}
