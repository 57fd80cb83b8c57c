// Platform::VrfAgent: the VRF agent's stand-in. It owns the two VRF maps the library reads, names to
// ids (a NameToIdMap inside its NameToIdMapWrapper) and ids to names (Vrf::VrfIdMap::Status), and
// keeps them consistent: a name has at most one id, an id at most one name. Scenario events call
// vrfIs/vrfDel; each change that reaches the maps bumps `version`, which the other stand-ins watch.
// Owned by the host (or a test); the library's roots hold the maps as inputs.
//
// Renumbering: vrfIs(name, newId) moves the name to the new id (the old id's entry goes first); an
// id already held by another name is taken from that name, which is left without an id.
//
// Iteration: vrfs() returns a copy sorted by name.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "foundations/records/VrfIdMap.h"
#include "foundations/runtime/Attribute.h"

namespace Platform {

class VrfAgent : public Zel::Entity {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;

  [[nodiscard]] static Quill::Ptr<VrfAgent> VrfAgentIs() { return Zel::make<VrfAgent>(); }

  // Bumped once per call that changed the maps.
  ZEL_ATTR(std::uint32_t, version, 130)

  [[nodiscard]] Quill::Ptr<Vrf::VrfIdMap::NameToIdMapWrapper> const& nameStatus() const noexcept { return nameStatus_; }
  [[nodiscard]] Quill::Ptr<Vrf::VrfIdMap::Status> const& idStatus() const noexcept { return idStatus_; }

  // Gives the name the id (renumbering it if it had another). Ids outside 24 bits, the "no VRF" id
  // and empty names are refused (false).
  bool vrfIs(L3::VrfName const& name, VrfId id);
  // Removes the name and its id; false when the name had none.
  bool vrfDel(L3::VrfName const& name);
  // Replaces the wrapper's map by a fresh copy of the same entries, as an agent restart does.
  void nameToIdMapRenew();

  [[nodiscard]] VrfId vrfId(L3::VrfName const& name) const { return nameStatus_->nameToIdMap()->vrfIdOf(name); }
  [[nodiscard]] bool vrfHas(L3::VrfName const& name) const { return !vrfId(name).isNone(); }
  // The name of an id; the empty name when the id has none.
  [[nodiscard]] L3::VrfName vrfName(VrfId id) const { return idStatus_->vrfIdToName(id); }
  // (name, id) of every VRF, sorted by name.
  [[nodiscard]] std::vector<std::pair<L3::VrfName, VrfId>> vrfs() const;

 protected:
  friend struct Zel::Factory;
  VrfAgent();

 private:
  Quill::Ptr<Vrf::VrfIdMap::NameToIdMapWrapper> nameStatus_;
  Quill::Ptr<Vrf::VrfIdMap::Status> idStatus_;
};

}  // namespace Platform
