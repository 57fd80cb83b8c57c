// Speed and memory of the RIB tables at a million routes, each reported as a ratio against a
// baseline run in the same process: the route table against a plain std::map of whole routes
// (std::allocator), and the via table's deduplication against a bare hash look-up of the content.
// Counters: table ns per operation, baseline ns per operation (thread CPU time), ratio (table /
// baseline); for memory, bytes per route of each and their ratio.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include "foundations/rib/IpViaConfig.h"
#include "foundations/rib/RouteConfig.h"
#include "foundations/runtime/HashMap2018.h"
#include "foundations/runtime/Slab.h"

namespace {

using Routing::MetricPref;
using Routing::Rib::Route;
using Routing::Rib::RouteConfig;
using Routing::Rib::RouteKey;
using Routing::Rib::ViaContent;
using Routing::Rib::ViaSetKey;
// The thread's CPU time: the machine is shared, so wall time would measure the neighbours too.
struct Clock {
  using time_point = std::chrono::nanoseconds;
  static time_point now() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return std::chrono::seconds(ts.tv_sec) + std::chrono::nanoseconds(ts.tv_nsec);
  }
};

constexpr std::uint32_t kRoutes = 1'000'000;
constexpr std::uint32_t kVrfs = 8;

// Route i: a /32 in one of kVrfs VRFs, in a shuffled order so that inserts do not arrive sorted.
std::vector<Route> const& routes() {
  static std::vector<Route> const all = [] {
    std::vector<Route> v;
    v.reserve(kRoutes);
    for (std::uint32_t i = 0; i < kRoutes; ++i) {
      Route r(RouteKey(i % kVrfs, Ondex::IpGenPrefix(Ondex::IpGenAddr::fromV4(0x0a000000 + i / kVrfs), 32)));
      r.routingProtocolIs(2);
      r.metricPrefIs(MetricPref(i % 100, 1));
      r.viaSetKeyIs(ViaSetKey(i % 5000 + 1, 0, 2, 0));
      v.push_back(r);
    }
    std::shuffle(v.begin(), v.end(), std::mt19937(7));
    return v;
  }();
  return all;
}

double nsSince(Clock::time_point start) { return double((Clock::now() - start).count()); }

void report(benchmark::State& state, double tableNs, double baselineNs, double ops) {
  state.counters["table_ns_op"] = tableNs / ops;
  state.counters["baseline_ns_op"] = baselineNs / ops;
  state.counters["ratio"] = tableNs / baselineNs;
}

// Memory first, while the slab has no free blocks of earlier runs to hand out again.
void BM_RouteTableMemoryPerRoute(benchmark::State& state) {
  for (auto _ : state) {
    std::size_t const slabBefore = Plinth::bytesReserved();
    auto table = RouteConfig::RouteConfigIs();
    for (Route const& r : routes()) table->routeAdd(r);
    double const tableBytes = double(Plinth::bytesReserved() - slabBefore) / kRoutes;

    std::size_t const heapBefore = mallinfo2().uordblks;
    {
      std::map<RouteKey, Route> baseline;
      for (Route const& r : routes()) baseline.emplace(r.routeKey(), r);
      double const baselineBytes = double(mallinfo2().uordblks - heapBefore) / kRoutes;
      state.counters["table_bytes_route"] = tableBytes;
      state.counters["baseline_bytes_route"] = baselineBytes;
      state.counters["ratio"] = tableBytes / baselineBytes;
    }
  }
}
BENCHMARK(BM_RouteTableMemoryPerRoute)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_RouteTableAdd(benchmark::State& state) {
  for (auto _ : state) {
    auto start = Clock::now();
    {
      auto table = RouteConfig::RouteConfigIs();
      for (Route const& r : routes()) table->routeAdd(r);
      benchmark::DoNotOptimize(table->routeSize());
    }
    double const tableNs = nsSince(start);
    start = Clock::now();
    {
      std::map<RouteKey, Route> baseline;
      for (Route const& r : routes()) baseline.insert_or_assign(r.routeKey(), r);
      benchmark::DoNotOptimize(baseline.size());
    }
    report(state, tableNs, nsSince(start), kRoutes);
  }
}
BENCHMARK(BM_RouteTableAdd)->Iterations(2)->Unit(benchmark::kMillisecond);

void BM_RouteTableLookupAndVrfWalk(benchmark::State& state) {
  auto table = RouteConfig::RouteConfigIs();
  std::map<RouteKey, Route> baseline;
  for (Route const& r : routes()) {
    table->routeAdd(r);
    baseline.emplace(r.routeKey(), r);
  }
  for (auto _ : state) {
    std::uint64_t sum = 0;
    auto start = Clock::now();
    for (Route const& r : routes()) sum += table->routeFind(r.routeKey())->metricPref.metric();
    for (auto it = table->routeIteratorAt(RouteKey::vrfStart(3)); it && it.key().vrfId() == 3u; it.advance())
      sum += it.value().metricPref.metric();
    double const tableNs = nsSince(start);
    start = Clock::now();
    for (Route const& r : routes()) sum += baseline.find(r.routeKey())->second.metricPref().metric();
    for (auto it = baseline.lower_bound(RouteKey::vrfStart(3)); it != baseline.end() && it->first.vrfId() == 3u; ++it)
      sum += it->second.metricPref().metric();
    benchmark::DoNotOptimize(sum);
    report(state, tableNs, nsSince(start), kRoutes + kRoutes / kVrfs);
  }
}
BENCHMARK(BM_RouteTableLookupAndVrfWalk)->Iterations(2)->Unit(benchmark::kMillisecond);

// A review binds the vias of a route again and again: the dedup hit (a handle found or made)
// against a plain look-up of the same content in a hash map.
void BM_ViaDedupHit(benchmark::State& state) {
  constexpr std::uint32_t kVias = 50'000;
  auto table = Routing::Rib::Ip::ViaConfig::ViaConfigIs(2, 1);
  Zel::HashMap2018<Routing::Rib::Via, Routing::Rib::ViaKey> baseline;
  std::vector<ViaContent> contents;
  std::vector<Quill::Ptr<Routing::Rib::DedupViaKey>> held;
  for (std::uint32_t i = 0; i < kVias; ++i) {
    contents.emplace_back(Ondex::IpGenAddr::fromV4(0x0b000000 + i), Ondex::IntfId());
    held.push_back(table->dedupViaIs(contents.back(), i % kVrfs));
    baseline.tryEmplace(Routing::Rib::Via(Routing::Rib::ViaKey(0, i % kVrfs, 2, 1), contents.back()),
                        held.back()->viaKey());
  }
  for (auto _ : state) {
    std::uint64_t sum = 0;
    auto start = Clock::now();
    for (std::uint32_t i = 0; i < kVias; ++i) sum += table->dedupViaIs(contents[i], i % kVrfs)->viaKey().id();
    double const tableNs = nsSince(start);
    start = Clock::now();
    for (std::uint32_t i = 0; i < kVias; ++i) {
      sum += baseline.find(Routing::Rib::Via(Routing::Rib::ViaKey(0, i % kVrfs, 2, 1), contents[i]))->id();
    }
    benchmark::DoNotOptimize(sum);
    report(state, tableNs, nsSince(start), kVias);
  }
}
BENCHMARK(BM_ViaDedupHit)->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
