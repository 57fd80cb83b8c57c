// Zel::HashMap2018 against std::unordered_map with the same hash, at 1,000,000 prefixes (IPv4 /32
// and IPv6 /128 mixed) mapped to a pointer-sized value: insert, find (hit), iterate, erase, and
// memory per element. The program ends with the ratio of each of our times to std's, measured in
// the same run.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <unordered_map>
#include <vector>

#include "../support/RatioReporter.h"
#include "foundations/runtime/HashMap2018.h"
#include "foundations/types/IpGenPrefix.h"

namespace {

using Ondex::IpGenAddr;
using Ondex::IpGenPrefix;

constexpr std::size_t kKeys = 1000000;
constexpr std::uint32_t kAttributeConstant = 0x2018;

std::vector<IpGenPrefix> const& keys() {
  static std::vector<IpGenPrefix> const k = [] {
    std::vector<IpGenPrefix> out;
    out.reserve(kKeys);
    std::mt19937_64 rng(42);
    // Distinct by construction: an odd multiplier is a bijection of the 32-bit index.
    for (std::uint32_t i = 0; out.size() < kKeys * 7 / 10; ++i) {
      out.emplace_back(IpGenAddr::fromV4(i * 2654435761u), 32);
    }
    for (std::uint64_t i = 0; out.size() < kKeys; ++i) {
      IpGenAddr::Bytes b{0x20, 0x01, 0x0d, 0xb8};
      std::uint64_t x = Zel::hashMix64(i + 1);
      for (int j = 0; j < 8; ++j) b[std::size_t(8 + j)] = std::uint8_t(x >> (8 * j));
      b[4] = std::uint8_t(i >> 32);
      b[5] = std::uint8_t(i);
      out.emplace_back(IpGenAddr::fromV6(b), 128);
    }
    std::shuffle(out.begin(), out.end(), rng);
    return out;
  }();
  return k;
}

// The same keys in another order, for lookups and erases.
std::vector<IpGenPrefix> const& probes() {
  static std::vector<IpGenPrefix> const p = [] {
    std::vector<IpGenPrefix> out = keys();
    std::shuffle(out.begin(), out.end(), std::mt19937_64(7));
    return out;
  }();
  return p;
}

// The same hash for both maps.
struct PrefixHash {
  std::uint32_t seed = Zel::HashHelper::hashSeed32() ^ kAttributeConstant;
  std::size_t operator()(IpGenPrefix const& p) const noexcept { return p.hash(seed); }
};

// Counts what std::unordered_map asks for (nodes and bucket array), and what glibc's malloc really
// hands out for it (8-byte header, 16-byte granules, 32-byte minimum).
struct AllocCount {
  static inline std::size_t requested = 0;
  static inline std::size_t malloced = 0;
};
template <class T>
struct CountingAllocator {
  using value_type = T;
  CountingAllocator() = default;
  template <class U>
  CountingAllocator(CountingAllocator<U> const&) noexcept {}  // NOLINT(google-explicit-constructor)
  T* allocate(std::size_t n) {
    std::size_t bytes = n * sizeof(T);
    AllocCount::requested += bytes;
    AllocCount::malloced += std::max<std::size_t>(32, (bytes + 8 + 15) / 16 * 16);
    return std::allocator<T>().allocate(n);
  }
  void deallocate(T* p, std::size_t n) noexcept {
    std::size_t bytes = n * sizeof(T);
    AllocCount::requested -= bytes;
    AllocCount::malloced -= std::max<std::size_t>(32, (bytes + 8 + 15) / 16 * 16);
    std::allocator<T>().deallocate(p, n);
  }
  friend bool operator==(CountingAllocator const&, CountingAllocator const&) { return true; }
};

using Ours = Zel::HashMap2018<IpGenPrefix, std::uint64_t>;
using Std = std::unordered_map<IpGenPrefix, std::uint64_t, PrefixHash, std::equal_to<IpGenPrefix>,
                               CountingAllocator<std::pair<IpGenPrefix const, std::uint64_t>>>;

struct OursOps {
  static std::unique_ptr<Ours> make() { return std::make_unique<Ours>(kAttributeConstant); }
  static void insert(Ours& m, IpGenPrefix const& k, std::uint64_t v) { m.tryEmplace(k, v); }
  static std::uint64_t const* find(Ours const& m, IpGenPrefix const& k) { return m.find(k); }
  static std::uint64_t sum(Ours const& m) {
    std::uint64_t s = 0;
    for (auto it = m.iterator(); it; it.advance()) s += it.value();
    return s;
  }
  static void erase(Ours& m, IpGenPrefix const& k) { m.erase(k); }
  static std::size_t bytes(Ours const& m) { return m.bytesAllocated(); }
};

struct StdOps {
  static std::unique_ptr<Std> make() { return std::make_unique<Std>(); }
  static void insert(Std& m, IpGenPrefix const& k, std::uint64_t v) { m.try_emplace(k, v); }
  static std::uint64_t const* find(Std const& m, IpGenPrefix const& k) {
    auto it = m.find(k);
    return it == m.end() ? nullptr : &it->second;
  }
  static std::uint64_t sum(Std const& m) {
    std::uint64_t s = 0;
    for (auto const& [k, v] : m) s += v;
    return s;
  }
  static void erase(Std& m, IpGenPrefix const& k) { m.erase(k); }
  static std::size_t bytes(Std const&) { return AllocCount::malloced; }
};

template <class Ops>
auto filled() {
  auto m = Ops::make();
  std::uint64_t v = 0;
  for (auto const& k : keys()) Ops::insert(*m, k, ++v);
  return m;
}

void perOp(benchmark::State& state) {
  state.SetItemsProcessed(std::int64_t(state.iterations() * kKeys));
  state.counters["ns/op"] = benchmark::Counter(double(state.iterations() * kKeys),
                                               benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

template <class Ops>
void BM_Insert(benchmark::State& state) {
  keys();
  std::size_t bytes = 0;
  for (auto _ : state) {
    auto m = filled<Ops>();
    benchmark::DoNotOptimize(m.get());
    state.PauseTiming();
    bytes = Ops::bytes(*m);
    m.reset();
    state.ResumeTiming();
  }
  perOp(state);
  state.counters["bytes/elem"] = double(bytes) / double(kKeys);
}

template <class Ops>
void BM_FindHit(benchmark::State& state) {
  auto m = filled<Ops>();
  auto const& p = probes();
  for (auto _ : state) {
    std::uint64_t s = 0;
    for (auto const& k : p) s += *Ops::find(*m, k);
    benchmark::DoNotOptimize(s);
  }
  perOp(state);
}

template <class Ops>
void BM_Iterate(benchmark::State& state) {
  auto m = filled<Ops>();
  for (auto _ : state) benchmark::DoNotOptimize(Ops::sum(*m));
  perOp(state);
}

template <class Ops>
void BM_Erase(benchmark::State& state) {
  auto const& p = probes();
  for (auto _ : state) {
    state.PauseTiming();
    auto m = filled<Ops>();
    state.ResumeTiming();
    for (auto const& k : p) Ops::erase(*m, k);
    benchmark::DoNotOptimize(m.get());
  }
  perOp(state);
}

BENCHMARK_TEMPLATE(BM_Insert, OursOps)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK_TEMPLATE(BM_Insert, StdOps)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK_TEMPLATE(BM_FindHit, OursOps)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK_TEMPLATE(BM_FindHit, StdOps)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK_TEMPLATE(BM_Iterate, OursOps)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK_TEMPLATE(BM_Iterate, StdOps)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK_TEMPLATE(BM_Erase, OursOps)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK_TEMPLATE(BM_Erase, StdOps)->Unit(benchmark::kMillisecond)->MinTime(2);

}  // namespace

int main(int argc, char** argv) {
  // Keep freed memory in the process for both maps: otherwise glibc hands the top of the heap back
  // after each map is destroyed and the next build pays page faults for its bucket arrays, which
  // measures the kernel rather than the maps.
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  return BowlineBench::runWithRatios(argc, argv, [](BowlineBench::RatioReporter const& reporter) {
    reporter.printPairs(BowlineBench::RatioReporter::byTemplateArgument("OursOps"), {"bytes/elem"}, "ours", "std");
  });
}
