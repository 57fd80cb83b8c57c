// Backlog throughput: keys added by a reactor and worked off by the task in time-sliced runs,
// against the baseline of inserting the same keys into a plain set and walking it.
#include <benchmark/benchmark.h>

#include <unordered_set>

#include "foundations/runtime/Backlog.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/TaskMember.h"

namespace {

class Worker : public Zel::StateMachine<Worker> {
 public:
  static Quill::Ptr<Worker> WorkerIs() { return Zel::make<Worker>(); }
  void body() {
    workRun(*task(), [this](std::uint64_t const& k) { sum += k; });
  }
  ZEL_BACKLOG(std::uint64_t, work)
  ZEL_TASK(task, body)
  std::uint64_t sum = 0;

 protected:
  friend struct Zel::Factory;
  Worker() { taskIs(Halyard::TaskSchedulerRoot::findOrCreateScheduler(), 3, "work"); }
};

void BM_Baseline_UnorderedSetFillAndWalk(benchmark::State& state) {
  auto n = std::uint64_t(state.range(0));
  for (auto _ : state) {
    std::unordered_set<std::uint64_t> s;
    for (std::uint64_t k = 0; k < n; ++k) s.insert(k * 2654435761u);
    std::uint64_t sum = 0;
    for (auto k : s) sum += k;
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Baseline_UnorderedSetFillAndWalk)->Arg(1 << 20);

void BM_BacklogAddAndProcess(benchmark::State& state) {
  auto* sched = Halyard::TaskSchedulerRoot::findOrCreateScheduler();
  sched->yieldPolicyIs(Halyard::YieldPolicy::timeSliceOf(0.01));
  auto n = std::uint64_t(state.range(0));
  auto w = Worker::WorkerIs();
  for (auto _ : state) {
    for (std::uint64_t k = 0; k < n; ++k) w->workIs(k * 2654435761u);
    w->task()->scheduleTask();
    sched->runUntilIdle();
  }
  benchmark::DoNotOptimize(w->sum);
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["runs"] = double(w->task()->taskRuns()) / double(state.iterations());
}
BENCHMARK(BM_BacklogAddAndProcess)->Arg(1 << 20);

}  // namespace

BENCHMARK_MAIN();
