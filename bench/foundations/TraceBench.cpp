// Cost of trace statements: a disabled statement with costly arguments against an empty loop and
// against building those arguments, an enabled statement to a sink that drops the line, and a Flit
// statement. After the table, every case is given as a ratio to the two baselines of this run.
#include <benchmark/benchmark.h>

#include <string>

#include "../support/RatioReporter.h"
#include "foundations/runtime/Dualog.h"
#include "foundations/runtime/Flit.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("Bench::TraceBench");

namespace {

Quill::String const vrf("red");
std::string const prefix = "10.128.0.0/9";

std::string costly(std::int64_t i) {
  return "Vrf: " + vrf.str() + ", handleRoute " + prefix + " #" + std::to_string(i);
}

void quiet() {
  Zel::traceSinkIs([](Zel::TraceLine const& line) { benchmark::DoNotOptimize(line.message.data()); });
  auto& handle = Zel::traceHandle("Bench::TraceBench");
  handle.maskIs(0);
  handle.flitMaskIs(0);
}

void BM_EmptyLoop(benchmark::State& state) {
  std::int64_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(++i);
}
BENCHMARK(BM_EmptyLoop);

void BM_BuildArguments(benchmark::State& state) {
  std::int64_t i = 0;
  for (auto _ : state) {
    std::string text = costly(++i);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(BM_BuildArguments);

// Runs one statement per iteration with the stream levels of the bench's facility set to a mask. The
// statements are forced inline so that the loop measures them and not a call to a lambda.
template <class Statement>
void statementLoop(benchmark::State& state, std::uint16_t mask, Statement statement) {
  quiet();
  Zel::traceHandle("Bench::TraceBench").maskIs(mask);
  std::int64_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(++i);
    statement(i);
  }
}

void BM_DisabledTrace(benchmark::State& state) {
  statementLoop(state, 0, [](std::int64_t i) __attribute__((always_inline)) { TRACE(8, costly(i)); });
}
BENCHMARK(BM_DisabledTrace);

void BM_DisabledFmtrace(benchmark::State& state) {
  statementLoop(state, 0, [](std::int64_t i) __attribute__((always_inline)) { FMTRACE(8, "{}", costly(i)); });
}
BENCHMARK(BM_DisabledFmtrace);

void BM_DisabledDualog(benchmark::State& state) {
  statementLoop(state, 0, [](std::int64_t i) __attribute__((always_inline)) { DUALOG(8, "{}", costly(i)); });
}
BENCHMARK(BM_DisabledDualog);

void BM_EnabledTraceNullSink(benchmark::State& state) {
  statementLoop(state, 0xffff, [](std::int64_t i) __attribute__((always_inline)) {
    TRACE(8, "Vrf: " << vrf << ", handleRoute " << prefix << " #" << i);
  });
}
BENCHMARK(BM_EnabledTraceNullSink);

void BM_EnabledFmtraceNullSink(benchmark::State& state) {
  statementLoop(state, 0xffff, [](std::int64_t i) __attribute__((always_inline)) {
    FMTRACE(8, "Vrf: {}, handleRoute {} #{}", vrf, prefix, i);
  });
}
BENCHMARK(BM_EnabledFmtraceNullSink);

void BM_FlitStatement(benchmark::State& state) {
  if (state.thread_index() == 0) {
    quiet();
    Zel::traceHandle("Bench::TraceBench").flitMaskIs(0xffff);
  }
  std::int64_t i = 0;
  for (auto _ : state) {
    ++i;
    FLIT(2, "Vrf: {}, handleRoute {} #{}", vrf, prefix, i);
  }
  if (state.thread_index() == 0) {
    state.counters["ringBytesPerLevel"] = double(Flit::RingBuf::instance().slotsPerLevel() * Flit::RingBuf::slotBytes);
  }
}
BENCHMARK(BM_FlitStatement)->Threads(1)->Threads(2);

}  // namespace

int main(int argc, char** argv) {
  // CPU time, steadier than wall time on a shared machine, against the two baselines of this run.
  return BowlineBench::runWithRatios(argc, argv, [](BowlineBench::RatioReporter const& reporter) {
    reporter.printAgainst({"BM_EmptyLoop", "BM_BuildArguments"});
  });
}
