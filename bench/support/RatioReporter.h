// BowlineBench::RatioReporter: the console table as Google Benchmark prints it, then each measured
// case as a ratio to a baseline run in the same process. It keeps the CPU time and the counters of
// every run (the median when repetitions are asked for); the bench's main prints the ratios once all
// runs are done (runWithRatios). Owned by the bench's main, one per process. Header only: each bench
// is one file.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace BowlineBench {

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  // Where a run stands in a pair: the operation it measures, and whether it is ours or the baseline.
  struct Side {
    std::string op;
    bool ours = false;
  };
  // Null for a run that belongs to no pair.
  using Split = std::function<std::optional<Side>(benchmark::BenchmarkName const& name)>;

  // Pairs BM_Op<A>/args with BM_Op<B>/args; ours is the one whose template argument contains `marker`.
  [[nodiscard]] static Split byTemplateArgument(std::string marker) {
    return [marker = std::move(marker)](benchmark::BenchmarkName const& name) -> std::optional<Side> {
      std::string const& f = name.function_name;
      auto const open = f.find('<');
      if (open == std::string::npos) return std::nullopt;
      std::string op = f.substr(0, open);
      if (!name.args.empty()) op += "/" + name.args;
      return Side{std::move(op), f.find(marker, open) != std::string::npos};
    };
  }
  // Pairs BM_Op_<ours> with BM_Op_<base> (the op is printed without "BM_"); other runs are ignored.
  [[nodiscard]] static Split bySuffix(std::string ours, std::string base) {
    return [ours = std::move(ours), base = std::move(base)](
               benchmark::BenchmarkName const& name) -> std::optional<Side> {
      std::string const& f = name.function_name;
      auto const cut = f.rfind('_');
      if (cut == std::string::npos) return std::nullopt;
      std::string const side = f.substr(cut + 1);
      if (side != ours && side != base) return std::nullopt;
      std::size_t const from = f.rfind("BM_", 0) == 0 ? 3 : 0;
      std::string op = f.substr(from, cut - from);
      if (!name.args.empty()) op += "/" + name.args;
      return Side{std::move(op), side == ours};
    };
  }

  void ReportRuns(std::vector<Run> const& runs) override {
    for (Run const& r : runs) {
      bool const median = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
      if (r.run_type != Run::RT_Iteration && !median) continue;
      if (r.error_occurred) {
        ++failed_;
        continue;
      }
      Record rec{r.run_name, r.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(r.time_unit), {}};
      for (auto const& [key, counter] : r.counters) rec.counters[key] = counter.value;
      std::string const key = r.run_name.str();
      order_.try_emplace(key, order_.size());
      runs_.insert_or_assign(key, std::move(rec));
    }
    ConsoleReporter::ReportRuns(runs);
  }

  // Ours / baseline per operation, in the order the runs were made: the CPU time per iteration, then
  // each of `counters` that both sides report. The names label the two sides in the lines.
  void printPairs(Split const& split, std::vector<std::string> const& counters = {}, char const* oursName = "ours",
                  char const* baseName = "baseline") const {
    std::map<std::string, std::pair<Record const*, Record const*>> pairs;  // op -> (ours, baseline)
    std::vector<std::string> ops;
    for (auto const& [key, rec] : inOrder()) {
      auto side = split(rec->name);
      if (!side) continue;
      auto [it, fresh] = pairs.try_emplace(side->op);
      if (fresh) ops.push_back(side->op);
      (side->ours ? it->second.first : it->second.second) = rec;
    }
    std::printf("\nratio %s/%s (below 1: %s is faster or smaller)\n", oursName, baseName, oursName);
    for (std::string const& op : ops) {
      auto const [ours, base] = pairs.at(op);
      if (!ours || !base) continue;
      if (base->cpu > 0) {
        std::printf("  %-32s %8.3f   (%s %s, %s %s)\n", op.c_str(), ours->cpu / base->cpu, oursName,
                    timeText(ours->cpu).c_str(), baseName, timeText(base->cpu).c_str());
      }
      for (std::string const& c : counters) {
        auto o = ours->counters.find(c);
        auto b = base->counters.find(c);
        if (o == ours->counters.end() || b == base->counters.end() || b->second == 0) continue;
        std::string const label = op + " " + c;
        std::printf("  %-32s %8.3f   (%s %.4g, %s %.4g)\n", label.c_str(), o->second / b->second, oursName, o->second,
                    baseName, b->second);
      }
    }
  }

  // Every run's CPU time as a ratio to each of the named baseline runs (full names, as in the table).
  void printAgainst(std::vector<std::string> const& baselines) const {
    std::vector<double> base;
    for (std::string const& name : baselines) {
      auto t = cpuTime(name);
      if (!t || *t <= 0) return;
      base.push_back(*t);
    }
    std::printf("\n%-36s %12s", "case", "cpu");
    for (std::string const& name : baselines) std::printf(" %20s", ("/ " + name).c_str());
    std::printf("\n");
    for (auto const& [key, rec] : inOrder()) {
      std::printf("%-36s %12s", key.c_str(), timeText(rec->cpu).c_str());
      for (double b : base) std::printf(" %20.4f", rec->cpu / b);
      std::printf("\n");
    }
  }

  // How many runs stopped with an error (a load that came out wrong, a child that failed).
  [[nodiscard]] std::size_t failed() const noexcept { return failed_; }

  // What a run recorded, by its full name (CPU seconds per iteration); null when it did not run.
  [[nodiscard]] std::optional<double> cpuTime(std::string const& name) const {
    auto it = runs_.find(name);
    return it == runs_.end() ? std::nullopt : std::optional<double>(it->second.cpu);
  }
  [[nodiscard]] std::optional<double> counter(std::string const& name, std::string const& counter) const {
    auto it = runs_.find(name);
    if (it == runs_.end()) return std::nullopt;
    auto c = it->second.counters.find(counter);
    return c == it->second.counters.end() ? std::nullopt : std::optional<double>(c->second);
  }

 private:
  struct Record {
    benchmark::BenchmarkName name;
    double cpu = 0;  // seconds per iteration
    std::map<std::string, double> counters;
  };

  // Seconds in the unit that leaves one to three digits before the point.
  [[nodiscard]] static std::string timeText(double seconds) {
    static constexpr std::pair<double, char const*> kUnits[] = {{1, "s"}, {1e-3, "ms"}, {1e-6, "us"}, {1e-9, "ns"}};
    for (auto const& [scale, unit] : kUnits) {
      if (seconds >= scale || scale == 1e-9) {
        char text[32];
        std::snprintf(text, sizeof text, "%.2f %s", seconds / scale, unit);
        return text;
      }
    }
    return {};
  }

  [[nodiscard]] std::vector<std::pair<std::string, Record const*>> inOrder() const {
    std::vector<std::pair<std::string, Record const*>> out(runs_.size());
    for (auto const& [key, rec] : runs_) out[order_.at(key)] = {key, &rec};
    return out;
  }

  std::map<std::string, Record> runs_;         // by full run name
  std::map<std::string, std::size_t> order_;  // full run name -> place in the run order
  std::size_t failed_ = 0;
};

// The body of a bench's main: runs the benchmarks the command line selects through a RatioReporter,
// then hands it to `printRatios`. Returns the exit code: 1 when a run stopped with an error.
inline int runWithRatios(int argc, char** argv, std::function<void(RatioReporter const&)> const& printRatios) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  printRatios(reporter);
  benchmark::Shutdown();
  if (reporter.failed()) std::fprintf(stderr, "%zu run(s) stopped with an error\n", reporter.failed());
  return reporter.failed() ? 1 : 0;
}

}  // namespace BowlineBench
