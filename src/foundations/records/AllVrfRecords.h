// The shape of a record that owns one record of a kind per VRF, keyed by VRF name (the readiness
// records and the RIB's sequence triggers of every VRF): declared once here, named by each user.
//
//   BOWLINE_ALL_VRF_RECORDS(AllVrfReadyStatus, VrfReadyStatus, vrfReadyStatus, allVrfReadyStatusFactory)
//
// declares class AllVrfReadyStatus with its factory AllVrfReadyStatusIs(), the owned collection
// vrfReadyStatus (attribute 130; vrfReadyStatusIs(vrf) finds or creates the VRF's entry) and the
// hosting agent's means of making one, allVrfReadyStatusFactory().
//
// Iterator contract of the collection's iterators: that of Zel::HashMap2018 (hash order; any entry
// may be deleted during a walk, and resuming from a saved name visits exactly the entries after it).
#pragma once

#include "foundations/runtime/Attribute.h"
#include "foundations/types/VrfName.h"

#define BOWLINE_ALL_VRF_RECORDS(Class, Record, records, factory)                         \
  class Class : public Zel::Entity {                                                     \
   public:                                                                               \
    [[nodiscard]] static Quill::Ptr<Class> Class##Is() { return Zel::make<Class>(); }    \
    ZEL_OWNED_MAP(L3::VrfName, Record, records, 130)                                     \
                                                                                         \
   protected:                                                                            \
    friend struct Zel::Factory;                                                          \
    Class() = default;                                                                   \
  };                                                                                     \
                                                                                         \
  [[nodiscard]] inline Quill::Ptr<Class> factory() { return Class::Class##Is(); }
