// RibAgent's settling: reports are written only when they change, a via whose report keeps
// flipping between resolved and unresolved within one epoch is frozen and its oscillation kept for
// the host to read.
#include <sstream>

#include "foundations/runtime/Trace.h"
#include "platform/RibAgent.h"

ZEL_TRACE_FACILITY("Platform::RibAgent");

namespace Platform {

using Routing::Rib::ViaMetric;

std::string RibAgent::Oscillation::text() const {
  std::ostringstream os;
  std::ostringstream viaText;
  viaText << "via " << nextHop;
  if (!intf.empty()) viaText << ' ' << intf;
  if (through.empty()) {
    os << viaText.str() << " in vrf " << vrf << " does not settle: it";
  } else {
    os << (through.size() == 1 ? "route " : "routes ");
    for (std::size_t i = 0; i < through.size(); ++i) os << (i ? ", " : "") << through[i];
    os << " in vrf " << vrf << (through.size() == 1 ? " does" : " do") << " not settle: " << viaText.str();
  }
  os << " flips between resolved and unresolved";
  return os.str();
}

void RibAgent::doWrite(ViaKey const& key, Result const& r) {
  if (!frozen_.empty() && frozen_.count(key)) return;
  auto leaf = viaMetricStatusByVrf_->leafIs(key.vrfId(), key.transport(), key.routingProtocol());
  ViaMetric const m = r.viaMetric(key);
  if (leaf->viaMetricHas(key)) {
    ViaMetric const old = leaf->viaMetric(key);
    if (old == m) return;
    if (old.isResolved() != m.isResolved() && !flipIs(key, r)) return;
  }
  TRACE(6, "doWrite " << m);
  leaf->viaMetricIs(key, m);
}

bool RibAgent::flipIs(ViaKey const& key, Result const& r) {
  Flips& f = flips_[key];
  ++f.count;
  if (r.resolved && r.through.af().isSet()) f.through.insert(r.through);
  if (f.count <= kFlipLimit) return true;
  frozen_.insert(key);
  oscillations_.push_back(oscillationOf(key));
  TRACE(0, "Vrf: " << oscillations_.back().vrf << ", " << oscillations_.back().text() << "; its report is frozen");
  return false;
}

RibAgent::Oscillation RibAgent::oscillationOf(ViaKey const& key) const {
  Oscillation o;
  auto const name = knownVrfs_.find(key.vrfId());
  if (name != knownVrfs_.end()) o.vrf = name->second;
  o.via = key;
  if (auto const* via = key.transport() == Routing::Rib::Transport::transportEvpn() ? nullptr : ipVia(key)) {
    o.nextHop = via->nextHop();
    o.intf = via->intfId();
  } else if (auto const* evpn = evpnVia(key)) {
    o.nextHop = evpn->vtepAddr();
  }
  auto const& through = flips_.at(key).through;
  o.through.assign(through.begin(), through.end());
  return o;
}

void RibAgent::epochIs() {
  TRACE(1, "epochIs: " << frozen_.size() << " frozen vias released");
  for (ViaKey const& key : frozen_) markDirty(key.vrfId());
  frozen_.clear();
  flips_.clear();
  oscillations_.clear();
}

std::optional<RibAgent::Oscillation> RibAgent::oscillation() const {
  if (oscillations_.empty()) return std::nullopt;
  return oscillations_.front();
}

}  // namespace Platform
