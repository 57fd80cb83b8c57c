// Routing::Protocol::AllVrfRibSeqTrigger: the VrfRibSeqTrigger of every VRF, owned here and keyed by
// VRF name. Created by the hosting agent and handed to the protocol root, which adds and deletes a
// VRF's entry together with its VrfReadyStatus; the RIB side writes the triggers.
// vrfRibSeqTrigger (id 130) publishes the name.
//
// Iterator contract of vrfRibSeqTriggerIterator(): that of Zel::HashMap2018 (hash order; any entry
// may be deleted during a walk, and resuming from a saved name visits exactly the entries after it).
#pragma once

#include "foundations/records/VrfRibSeqTrigger.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/types/VrfName.h"

namespace Routing::Protocol {

class AllVrfRibSeqTrigger : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<AllVrfRibSeqTrigger> AllVrfRibSeqTriggerIs();

  // vrfRibSeqTriggerIs(vrf) finds or creates the VRF's entry.
  ZEL_OWNED_MAP(L3::VrfName, VrfRibSeqTrigger, vrfRibSeqTrigger, 130)

 protected:
  friend struct Zel::Factory;
  AllVrfRibSeqTrigger() = default;
};

// The hosting agent's means of making one.
[[nodiscard]] Quill::Ptr<AllVrfRibSeqTrigger> allVrfRibSeqTriggerFactory();

}  // namespace Routing::Protocol
