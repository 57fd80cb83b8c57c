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

#include "../support/RatioReporter.h"
#include "../support/StaticRouteLoad.h"

namespace {

using BowlineBench::BM_Cold;
using BowlineBench::BM_Load;
using BowlineBench::ListOnly;
using Machine = BowlineBench::StatusStore;

BENCHMARK_TEMPLATE(BM_Cold, Machine)
    ->Arg(100000)
    ->Arg(1000000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_TEMPLATE(BM_Load, ListOnly)->Arg(100000)->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, Machine)->Arg(100000)->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, ListOnly)->Arg(1000000)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Load, Machine)->Arg(1000000)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  return BowlineBench::runWithRatios(argc, argv, [](BowlineBench::RatioReporter const& reporter) {
    reporter.printPairs(BowlineBench::RatioReporter::byTemplateArgument("Machine"), {}, "machine", "list only");
    BowlineBench::printColdRuns(reporter, {{"machine", "BM_Cold<Machine>"}}, {100000, 1000000});
  });
}
