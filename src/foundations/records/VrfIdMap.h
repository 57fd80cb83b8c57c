// The VRF maps of the switch, as the VRF agent publishes them: VRF names to ids (inside a wrapper
// entity, so that the whole map can be replaced) and ids to names. Written by the VRF agent (the
// platform stand-in here); read by the route machines, which react to single names.
#pragma once

#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/types/VrfName.h"

namespace Vrf::VrfIdMap {

class NameToIdMap : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<NameToIdMap> NameToIdMapIs() { return Zel::make<NameToIdMap>(); }
  // A name without an entry reads as id 0 here; vrfIdOf tells absence apart.
  ZEL_MAP(L3::VrfName, VrfId, vrfNameToId, 258)
  // The id of the name, or VrfId::none() when the name has none.
  [[nodiscard]] VrfId vrfIdOf(L3::VrfName const& name) const {
    return vrfNameToIdHas(name) ? vrfNameToId(name) : VrfId::none();
  }
  // The name has an id that names a VRF.
  [[nodiscard]] bool vrfIdExists(L3::VrfName const& name) const { return !vrfIdOf(name).isNone(); }

 protected:
  friend struct Zel::Factory;
  NameToIdMap() = default;
};

class NameToIdMapWrapper : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<NameToIdMapWrapper> NameToIdMapWrapperIs() {
    return Zel::make<NameToIdMapWrapper>();
  }
  ZEL_ATTR(Quill::Ptr<NameToIdMap>, nameToIdMap, 130)

 protected:
  friend struct Zel::Factory;
  NameToIdMapWrapper() = default;
};

// Ids to names.
class Status : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<Status> StatusIs() { return Zel::make<Status>(); }
  ZEL_MAP(VrfId, L3::VrfName, vrfIdToName, 130)

 protected:
  friend struct Zel::Factory;
  Status() = default;
};

}  // namespace Vrf::VrfIdMap
