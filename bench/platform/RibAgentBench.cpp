// RibAgent re-resolution at scale: N static routes share one connected next hop, and one more via
// resolves recursively through the route table. Each iteration takes the interface down and up
// again, so the agent re-resolves the VRF twice and reports both vias' changes. The baseline is
// one walk over the VRF's N routes per flip: what a stand-in that revisited every route would pay
// at the least. The ratio shows that the agent's cost follows the vias, not the routes.
//
//   build-platform/RibAgentBench
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>
#include <vector>

#include "foundations/runtime/TaskScheduler.h"
#include "platform/RibAgent.h"
#include "../support/RatioReporter.h"

namespace {

using namespace Routing::Rib;

Ondex::IpGenAddr ip(char const* text) { return *Ondex::IpGenAddr::fromString(text); }

// N routes 100.0.0.0/32 upward via 10.0.0.2 (connected), and a via to 100.0.0.1 that resolves
// through the first of them.
struct Switch {
  explicit Switch(std::uint32_t n) {
    vrfs = Platform::VrfAgent::VrfAgentIs();
    vrfs->vrfIs("default", 0);
    intfs = Platform::InterfaceAgent::InterfaceAgentIs();
    intfs->intfIs({Ondex::IntfId("Ethernet1"), "default", {{ip("10.0.0.1"), 24}}});
    vias = Routing::Rib::Ip::ViaConfig::ViaConfigIs(RoutingProtocol::staticConfig(), Transport::transportIpv4());
    routes = RouteConfig::RouteConfigIs();
    viaSets = ViaSetConfig::ViaSetConfigIs(ViaSetConfigKey(RoutingProtocol::staticConfig()));
    hop = vias->dedupViaIs(ViaContent(ip("10.0.0.2"), Ondex::IntfId()), 0);
    recursive = vias->dedupViaIs(ViaContent(ip("100.0.0.1"), Ondex::IntfId()), 0);
    Skein::ViaSet set;
    set.viaKeyIs(Skein::ViaIndex(0), hop->viaKey());
    setHandle = viaSets->dedupConfigViaSetIs(set);
    for (std::uint32_t i = 0; i < n; ++i) {
      Route r(RouteKey(0, Ondex::IpGenPrefix(Ondex::IpGenAddr::fromV4(0x64000000u + i), 32)));
      r.routingProtocolIs(RoutingProtocol::staticConfig());
      r.metricPrefIs(Routing::MetricPref(0, 1));
      r.viaSetKeyIs(setHandle->viaSetKey());
      routes->routeAdd(r);
    }
    Platform::RibAgent::Inputs in;
    in.ipViaConfigs = {vias};
    in.routeTables = {{Ondex::AddressFamily::ipv4, RoutingProtocol::staticConfig(), routes, viaSets}};
    in.interfaceAgent = intfs;
    in.vrfAgent = vrfs;
    in.scheduler = scheduler();
    agent = Platform::RibAgent::RibAgentIs(in);
    scheduler()->runUntilIdle();
  }
  static Halyard::TaskScheduler* scheduler() { return Halyard::TaskSchedulerRoot::findOrCreateScheduler(); }

  Quill::Ptr<Platform::VrfAgent> vrfs;
  Quill::Ptr<Platform::InterfaceAgent> intfs;
  Quill::Ptr<Routing::Rib::Ip::ViaConfig> vias;
  Quill::Ptr<RouteConfig> routes;
  Quill::Ptr<ViaSetConfig> viaSets;
  Quill::Ptr<DedupViaKey> hop, recursive;
  Quill::Ptr<DedupViaSetKey> setHandle;
  Quill::Ptr<Platform::RibAgent> agent;
};

Switch& switchOf(std::uint32_t n) {
  static std::map<std::uint32_t, std::unique_ptr<Switch>> built;
  auto& s = built[n];
  if (!s) s = std::make_unique<Switch>(n);
  return *s;
}

void BM_Reresolve_Agent(benchmark::State& state) {
  Switch& s = switchOf(std::uint32_t(state.range(0)));
  Ondex::IntfId const e1("Ethernet1");
  for (auto _ : state) {
    // Each flap is a step of its own: the agent freezes a report that flips for ever within one.
    s.agent->epochIs();
    s.intfs->operUpIs(e1, false);
    Switch::scheduler()->runUntilIdle();
    if (s.agent->viaMetric(s.recursive->viaKey()).isResolved()) state.SkipWithError("still resolved when down");
    s.intfs->operUpIs(e1, true);
    Switch::scheduler()->runUntilIdle();
    if (!s.agent->viaMetric(s.recursive->viaKey()).isResolved()) state.SkipWithError("unresolved when up");
  }
}

void BM_Reresolve_Walk(benchmark::State& state) {
  Switch& s = switchOf(std::uint32_t(state.range(0)));
  for (auto _ : state) {
    for (int flip = 0; flip < 2; ++flip) {
      std::uint64_t sum = 0;
      for (auto it = s.routes->routeIteratorAt(RouteKey::vrfStart(0)); it && it.key().vrfId() == 0u; it.advance())
        sum += it.value().viaSetKey.id();
      benchmark::DoNotOptimize(sum);
    }
  }
}

BENCHMARK(BM_Reresolve_Walk)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Reresolve_Agent)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  return BowlineBench::runWithRatios(argc, argv, [](BowlineBench::RatioReporter const& reporter) {
    std::printf("\nRe-resolution of the VRF (two per iteration) against walking its routes:\n");
    reporter.printPairs(BowlineBench::RatioReporter::bySuffix("Agent", "Walk"), {}, "agent", "walk");
  });
}
