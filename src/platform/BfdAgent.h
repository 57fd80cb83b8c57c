// Platform::BfdAgent: the BFD agent's stand-in. It watches the Bfd::AppConfig of each VRF it is
// given (the peers an application asks sessions for) and writes Bfd::AppStatus: one BfdPeerStatus
// per configured peer, with the session state the scenario gave for (VRF, peer address), or the
// default state (up, unless set otherwise) when it gave none. A peer that leaves every AppConfig
// loses its status entry. Reactors note the peer and schedule `reviewTask`; the task writes.
// Owned by the host (or a test).
//
// Iteration: the nested machine map is a Zel::HashMap2018 with that map's contract.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <utility>

#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/TaskMember.h"
#include "platform/BfdRecords.h"

namespace Platform {

class BfdAgent : public Zel::StateMachine<BfdAgent> {
 public:
  [[nodiscard]] static Quill::Ptr<BfdAgent> BfdAgentIs(Halyard::TaskScheduler* scheduler,
                                                       Quill::Ptr<Bfd::AppStatus> appStatus = nullptr) {
    return Zel::make<BfdAgent>(scheduler, std::move(appStatus));
  }

  [[nodiscard]] Quill::Ptr<Bfd::AppStatus> const& appStatus() const noexcept { return appStatus_; }

  // Serves the VRF's application config (null stops serving it; its peers' statuses go).
  void appConfigIs(L3::VrfName const& vrf, Quill::Ptr<Bfd::AppConfig const> config);
  // The scenario's session states, by VRF and peer address.
  void sessionStateIs(L3::VrfName const& vrf, Ondex::IpGenAddr const& ip, Bfd::SessionState state);
  void sessionStateDel(L3::VrfName const& vrf, Ondex::IpGenAddr const& ip);
  void defaultSessionStateIs(Bfd::SessionState state);
  [[nodiscard]] Bfd::SessionState sessionState(L3::VrfName const& vrf, Ondex::IpGenAddr const& ip) const;

  class NestedSm_AppConfig : public Zel::NestedSm<BfdAgent, L3::VrfName, Bfd::AppConfig> {
   public:
    using NestedSm::NestedSm;
    void onAttribute(Zel::AttrId id, void const* key) override;
  };

  void handlePeerConfig(Bfd::Peer const& peer);

 protected:
  friend struct Zel::Factory;
  BfdAgent(Halyard::TaskScheduler* scheduler, Quill::Ptr<Bfd::AppStatus> appStatus);

 private:
  void doReviewTask();
  // Whether any served config still asks for the peer.
  [[nodiscard]] bool peerConfigured(Bfd::Peer const& peer) const;
  void doReviewAll();

  Quill::Ptr<Bfd::AppStatus> appStatus_;
  std::map<L3::VrfName, Quill::Ptr<Bfd::AppConfig const>> configs_;
  std::map<std::pair<L3::VrfName, Ondex::IpGenAddr>, Bfd::SessionState> states_;
  Bfd::SessionState defaultState_ = Bfd::SessionState::up;
  std::set<Bfd::Peer> backlog_;

 public:
  ZEL_NESTED(L3::VrfName, NestedSm_AppConfig, appConfig)
  ZEL_TASK(reviewTask, doReviewTask)
};

}  // namespace Platform
