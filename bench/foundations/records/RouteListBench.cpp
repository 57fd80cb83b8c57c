// Routing::RouteList with its Routes against a plain, non-reactive baseline of the same shape
// (std::unordered_map of RouteKey to a struct holding a std::unordered_map of Via to RouteViaAttr),
// at 200,000 routes of two vias each: building the list, looking up every route and via, and memory
// per route (slab chunks taken, against the baseline's heap blocks as malloc hands them out). Also Via::hash against
// hashing the via's 80 bytes in one sweep. The program ends with
// the ratio of each of our numbers to the baseline's, measured in the same run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <unordered_map>
#include <vector>

#include "../../support/RatioReporter.h"
#include "foundations/records/RouteList.h"
#include "foundations/runtime/Slab.h"

namespace {

using Routing::RouteKey;
using Routing::RouteViaAttr;
using Routing::Via;

constexpr std::size_t kRoutes = 200000;

struct Config {
  RouteKey key;
  Via via[2];
};

std::vector<Config> const& configs() {
  static std::vector<Config> const c = [] {
    std::vector<Config> out;
    out.reserve(kRoutes);
    for (std::uint32_t i = 0; i < kRoutes; ++i) {
      Config cfg;
      cfg.key = RouteKey(Ondex::IpGenPrefix(Ondex::IpGenAddr::fromV4(0x0a000000u + (i << 8)), 24));
      cfg.via[0] = Via(Ondex::IpGenAddr::fromV4(0xc0000000u + i), Ondex::IntfId("Ethernet1"));
      cfg.via[1] = Via(Ondex::IpGenAddr::fromV4(0xc1000000u + i)).egressVrfIs(i % 2 ? "red" : "");
      out.push_back(cfg);
    }
    return out;
  }();
  return c;
}

struct Hasher {
  std::uint32_t seed = Zel::HashHelper::hashSeed32();
  std::size_t operator()(RouteKey const& k) const noexcept { return k.hash(seed); }
  std::size_t operator()(Via const& v) const noexcept { return v.hash(seed); }
};

// What the baseline asks of the heap, as glibc's malloc really hands it out (8-byte header,
// 16-byte granules, 32-byte minimum).
std::int64_t heapBytes = 0;
std::int64_t mallocBytes(std::size_t n) { return std::int64_t(std::max<std::size_t>(32, (n + 8 + 15) / 16 * 16)); }

template <class T>
struct CountingAllocator {
  using value_type = T;
  CountingAllocator() = default;
  template <class U>
  CountingAllocator(CountingAllocator<U> const&) noexcept {}  // NOLINT(google-explicit-constructor)
  T* allocate(std::size_t n) {
    heapBytes += mallocBytes(n * sizeof(T));
    return std::allocator<T>().allocate(n);
  }
  void deallocate(T* p, std::size_t n) noexcept {
    heapBytes -= mallocBytes(n * sizeof(T));
    std::allocator<T>().deallocate(p, n);
  }
  friend bool operator==(CountingAllocator const&, CountingAllocator const&) { return true; }
};

struct PlainRoute {
  std::uint32_t tag = 0;
  std::unordered_map<Via, RouteViaAttr, Hasher, std::equal_to<Via>, CountingAllocator<std::pair<Via const, RouteViaAttr>>>
      via;
};
struct PlainRouteDelete {
  void operator()(PlainRoute* r) const {
    delete r;
    heapBytes -= mallocBytes(sizeof(PlainRoute));
  }
};
using PlainRoutePtr = std::unique_ptr<PlainRoute, PlainRouteDelete>;
using PlainList = std::unordered_map<RouteKey, PlainRoutePtr, Hasher, std::equal_to<RouteKey>,
                                     CountingAllocator<std::pair<RouteKey const, PlainRoutePtr>>>;

struct OursOps {
  using List = Quill::Ptr<Routing::RouteList>;
  static List build() {
    List list = Routing::RouteList::RouteListIs();
    for (Config const& c : configs()) {
      auto r = list->routeIs(c.key, Routing::RouteType::forward);
      r->viaIs(c.via[0], RouteViaAttr(1, 1));
      r->viaIs(c.via[1], RouteViaAttr(2, 1));
    }
    return list;
  }
  static std::uint64_t lookAll(List const& list) {
    std::uint64_t s = 0;
    for (Config const& c : configs()) {
      auto r = list->route(c.key);
      s += r->via(c.via[0]).metric() + r->via(c.via[1]).metric();
    }
    return s;
  }
  static std::int64_t bytes() { return std::int64_t(Plinth::bytesReserved()); }
};

struct PlainOps {
  using List = std::unique_ptr<PlainList>;
  static List build() {
    auto list = std::make_unique<PlainList>();
    for (Config const& c : configs()) {
      auto& r = (*list)[c.key];
      if (!r) {
        r.reset(new PlainRoute);
        heapBytes += mallocBytes(sizeof(PlainRoute));
      }
      r->via.try_emplace(c.via[0], RouteViaAttr(1, 1));
      r->via.try_emplace(c.via[1], RouteViaAttr(2, 1));
    }
    return list;
  }
  static std::uint64_t lookAll(List const& list) {
    std::uint64_t s = 0;
    for (Config const& c : configs()) {
      auto const& r = list->find(c.key)->second;
      s += r->via.find(c.via[0])->second.metric() + r->via.find(c.via[1])->second.metric();
    }
    return s;
  }
  static std::int64_t bytes() { return heapBytes; }
};

void perRoute(benchmark::State& state) {
  state.counters["ns/route"] = benchmark::Counter(double(state.iterations() * kRoutes),
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

template <class Ops>
void BM_Build(benchmark::State& state) {
  configs();
  static std::int64_t bytes = 0;  // across the runs the library makes of this function
  for (auto _ : state) {
    std::int64_t const before = Ops::bytes();
    auto list = Ops::build();
    state.PauseTiming();
    // The slab keeps freed blocks for reuse, so only the first build shows what a list costs.
    bytes = std::max(bytes, Ops::bytes() - before);
    list = nullptr;
    state.ResumeTiming();
  }
  perRoute(state);
  state.counters["bytes/route"] = double(bytes) / double(kRoutes);
}

template <class Ops>
void BM_Lookup(benchmark::State& state) {
  auto list = Ops::build();
  for (auto _ : state) benchmark::DoNotOptimize(Ops::lookAll(list));
  perRoute(state);
}

// Via::hash field by field, against one sweep over the same 80 bytes (the cheapest hash of a via
// there could be, were its bytes canonical).
struct OursHash {
  static std::uint32_t hash(Via const& v, std::uint32_t seed) { return v.hash(seed); }
};
struct PlainHash {
  static std::uint32_t hash(Via const& v, std::uint32_t seed) {
    return Zel::HashBuilder(seed).addBytes(&v, sizeof(Via)).value();
  }
};

template <class H>
void BM_ViaHash(benchmark::State& state) {
  auto const& c = configs();
  for (auto _ : state) {
    std::uint32_t s = 0;
    for (Config const& cfg : c) s ^= H::hash(cfg.via[1], 7);
    benchmark::DoNotOptimize(s);
  }
  perRoute(state);
}

BENCHMARK_TEMPLATE(BM_Build, OursOps)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK_TEMPLATE(BM_Build, PlainOps)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK_TEMPLATE(BM_Lookup, OursOps)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK_TEMPLATE(BM_Lookup, PlainOps)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK_TEMPLATE(BM_ViaHash, OursHash)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK_TEMPLATE(BM_ViaHash, PlainHash)->Unit(benchmark::kMillisecond)->MinTime(1);

}  // namespace

int main(int argc, char** argv) {
  return BowlineBench::runWithRatios(argc, argv, [](BowlineBench::RatioReporter const& reporter) {
    reporter.printPairs(BowlineBench::RatioReporter::byTemplateArgument("Ours"), {"bytes/route"});
  });
}
