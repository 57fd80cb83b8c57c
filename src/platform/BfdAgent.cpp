#include "platform/BfdAgent.h"

#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("Platform::BfdAgent");

namespace Platform {

BfdAgent::BfdAgent(Halyard::TaskScheduler* scheduler, Quill::Ptr<Bfd::AppStatus> appStatus)
    : appStatus_(appStatus ? std::move(appStatus) : Bfd::AppStatus::AppStatusIs()) {
  reviewTaskIs(scheduler ? scheduler : Halyard::TaskSchedulerRoot::findOrCreateScheduler(), 3, "bfdAgentReview");
}

void BfdAgent::NestedSm_AppConfig::onAttribute(Zel::AttrId id, void const* key) {
  if (id == Bfd::AppConfig::peerConfigId) owner()->handlePeerConfig(*static_cast<Bfd::Peer const*>(key));
}

void BfdAgent::handlePeerConfig(Bfd::Peer const& peer) {
  TRACE(8, "handlePeerConfig " << peer);
  backlog_.insert(peer);
  reviewTask()->scheduleTask();
}

void BfdAgent::appConfigIs(L3::VrfName const& vrf, Quill::Ptr<Bfd::AppConfig const> config) {
  TRACE(2, "Vrf: " << vrf << ", appConfigIs " << (config ? "set" : "cleared"));
  // The peers of the former config and of the new one are all reviewed.
  if (auto it = configs_.find(vrf); it != configs_.end()) {
    for (auto p = it->second->peerConfigIteratorConst(); p; p.advance()) handlePeerConfig(p.key());
  }
  if (!config) {
    configs_.erase(vrf);
    appConfig_.del(vrf);
    return;
  }
  configs_[vrf] = config;
  appConfig_.is(vrf, config);
  for (auto p = config->peerConfigIteratorConst(); p; p.advance()) handlePeerConfig(p.key());
}

void BfdAgent::sessionStateIs(L3::VrfName const& vrf, Ondex::IpGenAddr const& ip, Bfd::SessionState state) {
  states_[{vrf, ip}] = state;
  doReviewAll();
}

void BfdAgent::sessionStateDel(L3::VrfName const& vrf, Ondex::IpGenAddr const& ip) {
  if (states_.erase({vrf, ip})) doReviewAll();
}

void BfdAgent::defaultSessionStateIs(Bfd::SessionState state) {
  defaultState_ = state;
  doReviewAll();
}

Bfd::SessionState BfdAgent::sessionState(L3::VrfName const& vrf, Ondex::IpGenAddr const& ip) const {
  auto it = states_.find({vrf, ip});
  return it == states_.end() ? defaultState_ : it->second;
}

void BfdAgent::doReviewAll() {
  for (auto it = appStatus_->peerStatusIteratorConst(); it; it.advance()) handlePeerConfig(it.key());
  for (auto const& [vrf, config] : configs_) {
    for (auto p = config->peerConfigIteratorConst(); p; p.advance()) handlePeerConfig(p.key());
  }
}

bool BfdAgent::peerConfigured(Bfd::Peer const& peer) const {
  // A peer may be asked for under another VRF's application config too.
  for (auto const& [vrf, config] : configs_) {
    if (config->peerConfigHas(peer)) return true;
  }
  return false;
}

void BfdAgent::doReviewTask() {
  if (reviewTask()->taskScheduler()->currentTask() != reviewTask()) return;
  std::uint64_t work = 0;
  while (!backlog_.empty()) {
    if (reviewTask()->taskShouldYield()) break;
    Bfd::Peer const peer = *backlog_.begin();
    backlog_.erase(backlog_.begin());
    ++work;
    if (!peerConfigured(peer)) {
      if (appStatus_->peerStatusDel(peer)) TRACE(2, "doReviewTask " << peer << " removed");
      continue;
    }
    auto const state = sessionState(peer.vrf(), peer.ip());
    TRACE(6, "doReviewTask " << peer << " state " << unsigned(state));
    appStatus_->peerStatusIs(peer)->statusIs(state);
  }
  reviewTask()->taskWorkCountInc(work);
  reviewTask()->taskWorkPendingIs(backlog_.size());
  if (!backlog_.empty()) reviewTask()->scheduleTask();
}

}  // namespace Platform
