// Routing::Protocol::AllVrfReadyStatus: the VrfReadyStatus of every VRF, owned here and keyed by VRF
// name. Created by the hosting agent and handed to the protocol root, which adds a VRF's entry when
// the VRF gets an id and deletes it when the VRF loses it; vrfReadyStatus (id 130) publishes the
// name.
//
// Iterator contract of vrfReadyStatusIterator(): that of Zel::HashMap2018 (hash order; any entry
// may be deleted during a walk, and resuming from a saved name visits exactly the entries after it).
#pragma once

#include "foundations/records/VrfReadyStatus.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/types/VrfName.h"

namespace Routing::Protocol {

class AllVrfReadyStatus : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<AllVrfReadyStatus> AllVrfReadyStatusIs();

  // vrfReadyStatusIs(vrf) finds or creates the VRF's entry.
  ZEL_OWNED_MAP(L3::VrfName, VrfReadyStatus, vrfReadyStatus, 130)

 protected:
  friend struct Zel::Factory;
  AllVrfReadyStatus() = default;
};

// The hosting agent's means of making one.
[[nodiscard]] Quill::Ptr<AllVrfReadyStatus> allVrfReadyStatusFactory();

}  // namespace Routing::Protocol
