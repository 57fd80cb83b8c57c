// Reading a route file of N lines, route i = (16.0.0.0 + i*256)/24 via 192.168.1.1 (the load the
// peer-daemon script gives its daemon), written once into a temporary file.
//
// Baseline: mapping the same file and counting its newlines, the least any reader must do.
// Measured: RouteFile::load, which checks that every line became a route. Both report lines/s; the
// program ends with the ratio of the two.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include <fmt/format.h>

#include "../support/RatioReporter.h"
#include "host/RouteFile.h"

namespace {

// The file of n routes, written on first use and removed at exit.
std::string const& routeFile(std::int64_t n) {
  static std::map<std::int64_t, std::string> files;
  auto it = files.find(n);
  if (it != files.end()) return it->second;
  char path[] = "/tmp/bowline-routefile-XXXXXX";
  int const fd = ::mkstemp(path);
  if (fd < 0) std::abort();
  std::FILE* out = ::fdopen(fd, "w");
  fmt::memory_buffer buf;
  for (std::int64_t i = 0; i < n; ++i) {
    std::uint32_t const p = 16u * 65536u + std::uint32_t(i);
    fmt::format_to(std::back_inserter(buf), "{}.{}.{}.0/24 192.168.1.1\n", p >> 16, (p >> 8) & 0xff, p & 0xff);
    if (buf.size() > (1 << 20)) {
      std::fwrite(buf.data(), 1, buf.size(), out);
      buf.clear();
    }
  }
  std::fwrite(buf.data(), 1, buf.size(), out);
  std::fclose(out);
  static struct Cleanup {
    ~Cleanup() {
      for (auto const& [k, f] : files) std::remove(f.c_str());
    }
  } cleanup;
  return files.emplace(n, path).first->second;
}

void BM_Load_RouteFile(benchmark::State& state) {
  std::string const& path = routeFile(state.range(0));
  for (auto _ : state) {
    Host::RouteFile const rf = Host::RouteFile::load(path);
    if (!rf.ok() || rf.size() != std::size_t(state.range(0))) {
      state.SkipWithError("the route file did not load whole");
      break;
    }
    benchmark::DoNotOptimize(rf.entries().data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Load_CountLines(benchmark::State& state) {
  std::string const& path = routeFile(state.range(0));
  for (auto _ : state) {
    int const fd = ::open(path.c_str(), O_RDONLY);
    struct stat st {};
    ::fstat(fd, &st);
    std::size_t const size = std::size_t(st.st_size);
    void* p = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
    ::close(fd);
    char const* c = static_cast<char const*>(p);
    char const* const end = c + size;
    std::size_t lines = 0;
    while ((c = static_cast<char const*>(std::memchr(c, '\n', std::size_t(end - c))))) {
      ++lines;
      ++c;
    }
    ::munmap(p, size);
    if (lines != std::size_t(state.range(0))) {
      state.SkipWithError("wrong line count");
      break;
    }
    benchmark::DoNotOptimize(lines);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_Load_CountLines)->Arg(1000000)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_Load_RouteFile)->Arg(1000000)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

int main(int argc, char** argv) {
  return BowlineBench::runWithRatios(argc, argv, [](BowlineBench::RatioReporter const& reporter) {
    reporter.printPairs(BowlineBench::RatioReporter::bySuffix("RouteFile", "CountLines"), {}, "route file",
                        "count lines");
    for (char const* name : {"BM_Load_CountLines/1000000/min_time:2.000", "BM_Load_RouteFile/1000000/min_time:2.000"}) {
      if (auto t = reporter.cpuTime(name)) std::printf("  %-44s %12.0f lines/s\n", name, 1e6 / *t);
    }
  });
}
