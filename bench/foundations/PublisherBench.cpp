// Cost of a change notification: a scalar set that publishes to 0, 1 and 4 subscribers, against
// the baseline of storing the value with no attribute machinery at all.
#include <benchmark/benchmark.h>

#include <vector>

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/Notifiee.h"

namespace {

class Counter : public Zel::Entity {
 public:
  static Quill::Ptr<Counter> CounterIs() { return Zel::make<Counter>(); }
  ZEL_ATTR(int, value, 130)

 protected:
  friend struct Zel::Factory;
  Counter() = default;
};

class Listener : public Zel::Notifiee<Counter> {
 public:
  static Quill::Ptr<Listener> ListenerIs(Quill::Ptr<Counter const> c) {
    auto l = Zel::make<Listener>();
    l->notifierIs(std::move(c));
    return l;
  }
  void onAttribute(Zel::AttrId id, void const*) override {
    if (id == Counter::valueId) ++heard;
  }
  std::uint64_t heard = 0;
};

void BM_Baseline_PlainStore(benchmark::State& state) {
  volatile int sink = 0;
  int v = 0;
  for (auto _ : state) {
    sink = ++v;
  }
  benchmark::DoNotOptimize(sink);
}
BENCHMARK(BM_Baseline_PlainStore);

void BM_PublishToSubscribers(benchmark::State& state) {
  auto c = Counter::CounterIs();
  std::vector<Quill::Ptr<Listener>> listeners;
  for (int i = 0; i < state.range(0); ++i) listeners.push_back(Listener::ListenerIs(c));
  int v = 0;
  for (auto _ : state) c->valueIs(++v);
  std::uint64_t heard = 0;
  for (auto const& l : listeners) heard += l->heard;
  state.counters["heard"] = double(heard);
}
BENCHMARK(BM_PublishToSubscribers)->Arg(0)->Arg(1)->Arg(4);

}  // namespace

BENCHMARK_MAIN();
