// Static routes from configuration to the RIB's route table at scale: N IPv4 routes, route i =
// (16.0.0.0 + i*256)/24 via 192.168.1.1 in VRF "default" (the peer-daemon load), through the route
// list, RouteConfigSm, the status store, the via metric machine and RouteStatusSm into RouteConfig.
// The bench plays the RIB: it reports the one via resolved as soon as the via is in the via table.
//
// Measured, each against baselines run in the same process (the RouteList alone, and the list with
// RouteConfigSm to the status store):
// - BM_Load<Rib>: the list built and every machine run until idle, when RouteConfig holds N routes;
//   warm (the slab holds freed blocks), CPU time per load.
// - BM_Cold<Rib>: the same first load in a forked child, for wall time, heap bytes per route and
//   peak RSS, beside BM_Cold<StatusStore>; with BOWLINE_PEER_BIRD, as ratios to the peer daemon.
// - BM_Reconverge: with all N installed, the RIB reports the via unresolved and the machines run
//   until idle (RouteConfig must be empty), then resolved again (all N back). CPU seconds of each,
//   in this process after the warm loads, and (BM_ReconvergeFresh) in a child right after a first
//   load: the heap's history alone changes these times by up to two.
// A load that comes out wrong stops its benchmark with the reason, and the program exits with 1.
// BOWLINE_PERF_CTL (see profileWindow) limits a profile to the re-convergence steps.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "../../tests/support/RibHarness.h"
#include "../support/RatioReporter.h"
#include "../support/StaticRouteLoad.h"

namespace {

using BowlineBench::BM_Cold;
using BowlineBench::BM_Load;
using BowlineBench::cpuNow;
using BowlineBench::ListOnly;
using BowlineBench::StatusStore;
using BowlineBench::wallNow;

// The status store's machine, and on the same store the via metric machine and the RouteStatusSm
// that installs into the RIB tables, all built before anything runs, as a switch starts them.
struct Rib {
  static constexpr char const* kLabel = "rib";

  explicit Rib(Quill::Ptr<Routing::RouteList> const& list) : store(list) {
    rib.viaMetricStatusSmIs(store.statusDir);
    rs = rib.routeStatusSmIs(L3::VrfName("default"), Ondex::AddressFamily::ipv4, Vrf::VrfIdMap::VrfId(0),
                             store.status, store.vias, store.scheduler);
    // Run to idle, reporting the via resolved after the run that put it in the via table.
    bool reported = false;
    do {
      if (!reported && store.vias->viaSize()) {
        rib.report(viaKey());
        reported = true;
      }
    } while (store.scheduler->runOnce());
    store.scheduler->runUntilIdle();  // timers, if any were due
  }
  // The RIB side first, as it watches the store.
  ~Rib() {
    rs = nullptr;
    rib.vms = nullptr;
  }

  [[nodiscard]] Routing::Rib::ViaKey viaKey() const { return store.vias->viaIteratorConst().key(); }

  // The store as the status-store load checks it, and RouteConfig holding N routes; with
  // `everyRoute`, each of them of VRF 0 and a prefix of the store, preference 1, through the one via
  // set of the one via.
  [[nodiscard]] std::string wrong(std::uint32_t n, bool everyRoute) const {
    if (auto wrong = BowlineBench::wrongInStore(store, n, everyRoute); !wrong.empty()) return wrong;
    auto const& table = *rib.ribConfig;
    if (table.routeSize() != n) {
      return "RouteConfig holds " + std::to_string(table.routeSize()) + " routes, not " + std::to_string(n);
    }
    if (!everyRoute) return {};
    auto const& sets = *rib.viaSetConfig->configViaSetColl();
    if (sets.viaSetSize() != 1) return "the via-set table holds " + std::to_string(sets.viaSetSize()) + " sets, not 1";
    Routing::Rib::ViaKey const via = viaKey();
    for (auto it = table.routeIteratorConst(); it; it.advance()) {
      Routing::Rib::Route const route(it.key(), it.value());
      if (it.key().vrfId() != 0 || !store.status->routeHas(it.key().prefix())) return "a route of no configured prefix";
      if (route.metricPref().preference() != 1) return "a route of another preference than 1";
      auto const set = sets.viaSet(route.viaSetKey());
      if (set.viaCount() != 1 || *set.begin() != via) return "a route not through the one via";
    }
    return {};
  }

  BowlineBench::StaticVrf store;
  BowlineTest::RibHarness rib;
  Quill::Ptr<Routing::Protocol::RouteStatusSm> rs;
};

// Iterations per N, in the registrations and in the names the tables look up.
constexpr std::int64_t kRuns100k = 5, kRuns1M = 2;
std::int64_t runsOf(std::uint32_t n) { return n >= 1000000 ? kRuns1M : kRuns100k; }
// Re-convergence in a fresh child: one load and one round per iteration.
constexpr std::int64_t kFreshRuns100k = 3, kFreshRuns1M = 1;
std::int64_t freshRunsOf(std::uint32_t n) { return n >= 1000000 ? kFreshRuns1M : kFreshRuns100k; }

// Seconds of the two re-convergence steps, summed over rounds.
struct ReconvergeFigures {
  double unresolveCpu, unresolveWall, resolveCpu, resolveWall;
  char wrong[120];  // empty when every step left RouteConfig as it should
};

// One round: the via reported unresolved and the machines run until idle, RouteConfig then empty;
// the via resolved again and run until idle, all N back. Adds the times of each step to `f`, or
// says in f.wrong what went wrong.
void reconvergeOnce(Rib& load, std::uint32_t n, ReconvergeFigures& f) {
  auto const via = load.viaKey();
  auto* scheduler = load.store.scheduler;
  BowlineBench::profileWindow(true, "unresolve");
  double w = wallNow(), c = cpuNow();
  load.rib.reportUnresolved(via);
  scheduler->runUntilIdle();
  double const downWall = wallNow() - w, downCpu = cpuNow() - c;
  BowlineBench::profileWindow(false, "unresolve");
  if (auto const left = load.rib.ribConfig->routeSize(); left != 0) {
    std::snprintf(f.wrong, sizeof f.wrong, "RouteConfig holds %zu routes after the withdrawal", left);
    return;
  }
  BowlineBench::profileWindow(true, "resolve");
  w = wallNow(), c = cpuNow();
  load.rib.report(via);
  scheduler->runUntilIdle();
  double const upWall = wallNow() - w, upCpu = cpuNow() - c;
  BowlineBench::profileWindow(false, "resolve");
  if (auto wrong = load.wrong(n, false); !wrong.empty()) {
    std::snprintf(f.wrong, sizeof f.wrong, "%s", wrong.c_str());
    return;
  }
  f.unresolveCpu += downCpu, f.unresolveWall += downWall, f.resolveCpu += upCpu, f.resolveWall += upWall;
}

void reconvergeCounters(benchmark::State& state, ReconvergeFigures const& f) {
  double const runs = double(state.iterations());
  state.counters["unresolve_cpu_s"] = f.unresolveCpu / runs;
  state.counters["unresolve_s"] = f.unresolveWall / runs;
  state.counters["resolve_cpu_s"] = f.resolveCpu / runs;
  state.counters["resolve_s"] = f.resolveWall / runs;
}

// Re-convergence on a fresh heap: per iteration, a child process builds the list and the load and
// runs one round; the iteration's time is the wall time of the two steps.
void BM_ReconvergeFresh(benchmark::State& state) {
  auto const n = std::uint32_t(state.range(0));
  ReconvergeFigures all{};
  for (auto _ : state) {
    ReconvergeFigures f{};
    std::string error;
    bool const ok = BowlineBench::runInChild(
        f,
        [n](ReconvergeFigures& out) {
          auto list = BowlineBench::routeListOf(n);
          auto* load = new Rib(list);  // never torn down, as the child ends with _exit
          if (auto wrong = load->wrong(n, false); !wrong.empty()) {
            std::snprintf(out.wrong, sizeof out.wrong, "%s", wrong.c_str());
            return;
          }
          reconvergeOnce(*load, n, out);
        },
        error);
    if (!ok) {
      state.SkipWithError(error.c_str());
      return;
    }
    all.unresolveCpu += f.unresolveCpu, all.unresolveWall += f.unresolveWall;
    all.resolveCpu += f.resolveCpu, all.resolveWall += f.resolveWall;
    state.SetIterationTime(f.unresolveWall + f.resolveWall);
  }
  reconvergeCounters(state, all);
}

// Re-convergence in this process after the warm loads, whose freed blocks the slab hands out again:
// one load, then one round per iteration.
void BM_Reconverge(benchmark::State& state) {
  auto const n = std::uint32_t(state.range(0));
  auto list = BowlineBench::routeListOf(n);
  auto load = std::make_unique<Rib>(list);
  if (auto wrong = load->wrong(n, false); !wrong.empty()) {
    state.SkipWithError(wrong.c_str());
    return;
  }
  ReconvergeFigures f{};
  for (auto _ : state) {
    double const before = f.unresolveWall + f.resolveWall;
    reconvergeOnce(*load, n, f);
    if (f.wrong[0]) {
      state.SkipWithError(f.wrong);
      break;
    }
    state.SetIterationTime(f.unresolveWall + f.resolveWall - before);
  }
  reconvergeCounters(state, f);
}

BENCHMARK_TEMPLATE(BM_Cold, StatusStore)->Arg(100000)->Arg(1000000)->Iterations(1)->UseManualTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Cold, Rib)->Arg(100000)->Arg(1000000)->Iterations(1)->UseManualTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(BM_ReconvergeFresh)->Arg(100000)->Iterations(kFreshRuns100k)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReconvergeFresh)->Arg(1000000)->Iterations(kFreshRuns1M)->UseManualTime()->Unit(benchmark::kMillisecond);

BENCHMARK_TEMPLATE(BM_Load, ListOnly)->Arg(100000)->Iterations(kRuns100k)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, StatusStore)->Arg(100000)->Iterations(kRuns100k)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, Rib)->Arg(100000)->Iterations(kRuns100k)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, ListOnly)->Arg(1000000)->Iterations(kRuns1M)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, StatusStore)->Arg(1000000)->Iterations(kRuns1M)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, Rib)->Arg(1000000)->Iterations(kRuns1M)->Unit(benchmark::kMillisecond);

BENCHMARK(BM_Reconverge)->Arg(100000)->Iterations(kRuns100k)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Reconverge)->Arg(1000000)->Iterations(kRuns1M)->UseManualTime()->Unit(benchmark::kMillisecond);

// The warm loads per N: CPU seconds, routes per second and the ratios to both baselines; then the
// re-convergence steps in CPU seconds (and wall), as ratios to the same baselines and to the load.
void printWarmRuns(BowlineBench::RatioReporter const& reporter) {
  auto loadCpu = [&](char const* load, std::uint32_t n) {
    return reporter.cpuTime("BM_Load<" + std::string(load) + ">/" + std::to_string(n) +
                            "/iterations:" + std::to_string(runsOf(n)));
  };
  std::printf("\nwarm loads (BM_Load, CPU seconds per load)\n");
  std::printf("  %-8s %-13s %8s %10s %8s %8s\n", "N", "load", "cpu s", "routes/s", "/ list", "/ store");
  for (std::uint32_t n : {100000u, 1000000u}) {
    auto const list = loadCpu("ListOnly", n), store = loadCpu("StatusStore", n);
    for (char const* load : {"ListOnly", "StatusStore", "Rib"}) {
      auto const cpu = loadCpu(load, n);
      if (!cpu || !list || !store) continue;
      std::printf("  %-8u %-13s %8.3f %10.0f %8.2f %8.2f\n", n, load, *cpu, n / *cpu, *cpu / *list, *cpu / *store);
    }
  }
  std::printf("\nre-convergence with N routes installed (mean per step): after a first load in a child "
              "(BM_ReconvergeFresh), and after the warm loads (BM_Reconverge)\n");
  std::printf("  %-8s %-10s %-6s %8s %8s %10s %8s %8s %8s\n", "N", "step", "heap", "cpu s", "wall s", "routes/s",
              "/ list", "/ store", "/ rib");
  for (std::uint32_t n : {100000u, 1000000u}) {
    auto const list = loadCpu("ListOnly", n), store = loadCpu("StatusStore", n), rib = loadCpu("Rib", n);
    std::string const fresh = "BM_ReconvergeFresh/" + std::to_string(n) + "/iterations:" +
                              std::to_string(freshRunsOf(n)) + "/manual_time";
    std::string const after =
        "BM_Reconverge/" + std::to_string(n) + "/iterations:" + std::to_string(runsOf(n)) + "/manual_time";
    for (char const* step : {"unresolve", "resolve"}) {
      for (auto const& [heap, name] : {std::pair{"fresh", fresh}, std::pair{"used", after}}) {
        auto const cpu = reporter.counter(name, std::string(step) + "_cpu_s");
        auto const wall = reporter.counter(name, std::string(step) + "_s");
        if (!cpu || !wall || !list || !store || !rib) continue;
        std::printf("  %-8u %-10s %-6s %8.3f %8.3f %10.0f %8.2f %8.2f %8.2f\n", n, step, heap, *cpu, *wall, n / *cpu,
                    *cpu / *list, *cpu / *store, *cpu / *rib);
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  return BowlineBench::runWithRatios(argc, argv, [](BowlineBench::RatioReporter const& reporter) {
    printWarmRuns(reporter);
    BowlineBench::printColdRuns(reporter, {{"status store", "BM_Cold<StatusStore>"}, {"rib", "BM_Cold<Rib>"}},
                                {100000, 1000000});
  });
}
