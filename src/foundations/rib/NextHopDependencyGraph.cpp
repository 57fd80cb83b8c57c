#include "foundations/rib/NextHopDependencyGraph.h"

#include <string>

namespace Routing::Rib::Ip {

Quill::Ptr<GlobalNextHopDependencyGraph> GlobalNextHopDependencyGraph::GlobalNextHopDependencyGraphIs() {
  return Zel::make<GlobalNextHopDependencyGraph>();
}

Quill::String GlobalNextHopDependencyGraph::mountPath(std::string_view rib) {
  return Quill::String("routing/" + std::string(rib) + "/nextHopDependencyGraph");
}

bool GlobalNextHopDependencyGraph::loopingRoute(Ondex::IpGenPrefix const& prefix, MetricPref metricPref, VrfId vrfId,
                                                ViaKey const& viaKey, std::uint32_t a, std::uint32_t b,
                                                bool mrib) const {
  if (loopingVia_.contains(LoopingVia{prefix, vrfId, viaKey})) return true;
  return fn_ && fn_(prefix, metricPref, vrfId, viaKey, a, b, mrib);
}

void GlobalNextHopDependencyGraph::loopingViaIs(LoopingVia const& v) {
  if (loopingVia_.insert(v)) graphVersionInc(1);
}

void GlobalNextHopDependencyGraph::loopingViaDel(LoopingVia const& v) {
  if (loopingVia_.erase(v)) graphVersionInc(1);
}

void GlobalNextHopDependencyGraph::loopingViaDelAll() {
  if (loopingVia_.empty()) return;
  loopingVia_.clear();
  graphVersionInc(1);
}

void GlobalNextHopDependencyGraph::loopingRouteFnIs(LoopingRouteFn fn) {
  fn_ = std::move(fn);
  graphVersionInc(1);
}

}  // namespace Routing::Rib::Ip
