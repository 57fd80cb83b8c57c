// The value types on their hot paths, each against a baseline doing the same job on plain bytes or
// std::string in the same run: hashing and sorting 100,000 prefixes, sorting and hashing interfaces
// by name, and parsing prefix text. The program ends with the ratio ours / baseline per operation.
#include <benchmark/benchmark.h>

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "../../support/RatioReporter.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/IpGenPrefix.h"

namespace {

using Ondex::IntfId;
using Ondex::IpGenAddr;
using Ondex::IpGenPrefix;

constexpr std::size_t kPrefixes = 100000;
constexpr std::size_t kIntfs = 4096;

// 70% IPv4 of lengths 8..32, 30% IPv6 of lengths 32..128, in random order.
std::vector<IpGenPrefix> const& prefixes() {
  static std::vector<IpGenPrefix> const v = [] {
    std::mt19937_64 rng(42);
    std::vector<IpGenPrefix> out;
    out.reserve(kPrefixes);
    while (out.size() < kPrefixes) {
      std::uint64_t const r = rng();
      if (out.size() % 10 < 7) {
        out.emplace_back(IpGenAddr::fromV4(std::uint32_t(r)), std::uint8_t(8 + r % 25));
      } else {
        IpGenAddr::Bytes b;
        std::uint64_t const r2 = rng();
        std::memcpy(b.data(), &r, 8);
        std::memcpy(b.data() + 8, &r2, 8);
        out.emplace_back(IpGenAddr::fromV6(b), std::uint8_t(32 + r2 % 97));
      }
    }
    return out;
  }();
  return v;
}

// The baseline's form of a prefix: the same 18 bytes, family and length first so that memcmp
// orders like a key compare would.
using RawPrefix = std::array<std::uint8_t, 18>;
std::vector<RawPrefix> const& rawPrefixes() {
  static std::vector<RawPrefix> const v = [] {
    std::vector<RawPrefix> out;
    for (IpGenPrefix const& p : prefixes()) {
      RawPrefix r;
      r[0] = p.af().value();
      std::memcpy(r.data() + 1, p.addr().bytes().data(), 16);
      r[17] = p.len();
      out.push_back(r);
    }
    return out;
  }();
  return v;
}

std::vector<std::string> const& intfNames() {
  static std::vector<std::string> const v = [] {
    std::vector<std::string> out;
    std::mt19937 rng(7);
    for (std::size_t i = 0; i < kIntfs; ++i) {
      out.push_back("Ethernet" + std::to_string(rng() % 64) + "/" + std::to_string(i));
    }
    return out;
  }();
  return v;
}

std::vector<IntfId> const& intfs() {
  static std::vector<IntfId> const v = [] {
    std::vector<IntfId> out;
    for (std::string const& n : intfNames()) out.emplace_back(n);
    return out;
  }();
  return v;
}

std::vector<std::string> const& prefixTexts() {
  static std::vector<std::string> const v = [] {
    std::vector<std::string> out;
    for (std::size_t i = 0; i < 10000; ++i) out.push_back(prefixes()[i].toString());
    return out;
  }();
  return v;
}

void perItem(benchmark::State& state, std::size_t n) {
  state.counters["ns/item"] = benchmark::Counter(double(state.iterations() * n),
                                                 benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_PrefixHash_ours(benchmark::State& state) {
  auto const& v = prefixes();
  for (auto _ : state) {
    std::uint32_t s = 0;
    for (IpGenPrefix const& p : v) s += p.hash(0x5eed);
    benchmark::DoNotOptimize(s);
  }
  perItem(state, v.size());
}
void BM_PrefixHash_base(benchmark::State& state) {
  auto const& v = rawPrefixes();
  std::hash<std::string_view> const h;
  for (auto _ : state) {
    std::size_t s = 0;
    for (RawPrefix const& r : v) s += h(std::string_view(reinterpret_cast<char const*>(r.data()), r.size()));
    benchmark::DoNotOptimize(s);
  }
  perItem(state, v.size());
}

void BM_PrefixSort_ours(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<IpGenPrefix> v = prefixes();
    state.ResumeTiming();
    std::sort(v.begin(), v.end());
    benchmark::DoNotOptimize(v.data());
  }
  perItem(state, kPrefixes);
}
void BM_PrefixSort_base(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<RawPrefix> v = rawPrefixes();
    state.ResumeTiming();
    std::sort(v.begin(), v.end(), [](RawPrefix const& a, RawPrefix const& b) {
      return std::memcmp(a.data(), b.data(), a.size()) < 0;
    });
    benchmark::DoNotOptimize(v.data());
  }
  perItem(state, kPrefixes);
}

void BM_IntfSort_ours(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<IntfId> v = intfs();
    state.ResumeTiming();
    std::sort(v.begin(), v.end());
    benchmark::DoNotOptimize(v.data());
  }
  perItem(state, kIntfs);
}
void BM_IntfSort_base(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<std::string> v = intfNames();
    state.ResumeTiming();
    std::sort(v.begin(), v.end());
    benchmark::DoNotOptimize(v.data());
  }
  perItem(state, kIntfs);
}

void BM_IntfHash_ours(benchmark::State& state) {
  auto const& v = intfs();
  for (auto _ : state) {
    std::uint32_t s = 0;
    for (IntfId i : v) s += i.hash(0x5eed);
    benchmark::DoNotOptimize(s);
  }
  perItem(state, v.size());
}
void BM_IntfHash_base(benchmark::State& state) {
  auto const& v = intfNames();
  std::hash<std::string> const h;
  for (auto _ : state) {
    std::size_t s = 0;
    for (std::string const& n : v) s += h(n);
    benchmark::DoNotOptimize(s);
  }
  perItem(state, v.size());
}

void BM_PrefixParse_ours(benchmark::State& state) {
  auto const& v = prefixTexts();
  for (auto _ : state) {
    std::size_t ok = 0;
    for (std::string const& t : v) ok += IpGenPrefix::fromString(t).has_value();
    benchmark::DoNotOptimize(ok);
  }
  perItem(state, v.size());
}
// The floor: inet_pton of the address part alone, on a copy already split at the slash.
void BM_PrefixParse_base(benchmark::State& state) {
  std::vector<std::string> addrs;
  for (std::string const& t : prefixTexts()) addrs.push_back(t.substr(0, t.find('/')));
  for (auto _ : state) {
    std::size_t ok = 0;
    unsigned char buf[16];
    for (std::string const& a : addrs) {
      ok += inet_pton(a.find(':') == std::string::npos ? AF_INET : AF_INET6, a.c_str(), buf) == 1;
    }
    benchmark::DoNotOptimize(ok);
  }
  perItem(state, addrs.size());
}

BENCHMARK(BM_PrefixHash_ours);
BENCHMARK(BM_PrefixHash_base);
BENCHMARK(BM_PrefixSort_ours)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PrefixSort_base)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IntfSort_ours);
BENCHMARK(BM_IntfSort_base);
BENCHMARK(BM_IntfHash_ours);
BENCHMARK(BM_IntfHash_base);
BENCHMARK(BM_PrefixParse_ours);
BENCHMARK(BM_PrefixParse_base);

}  // namespace

int main(int argc, char** argv) {
  return BowlineBench::runWithRatios(argc, argv, [](BowlineBench::RatioReporter const& reporter) {
    reporter.printPairs(BowlineBench::RatioReporter::bySuffix("ours", "base"));
    std::printf("  sizeof: IpGenAddr %zu, IpGenPrefix %zu, IntfId %zu (std::string %zu)\n", sizeof(IpGenAddr),
                sizeof(IpGenPrefix), sizeof(IntfId), sizeof(std::string));
  });
}
