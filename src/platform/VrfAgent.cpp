#include "platform/VrfAgent.h"

#include <algorithm>

#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("Platform::VrfAgent");

namespace Platform {

VrfAgent::VrfAgent()
    : nameStatus_(Vrf::VrfIdMap::NameToIdMapWrapper::NameToIdMapWrapperIs()),
      idStatus_(Vrf::VrfIdMap::Status::StatusIs()) {
  nameStatus_->nameToIdMapIs(Vrf::VrfIdMap::NameToIdMap::NameToIdMapIs());
}

bool VrfAgent::vrfIs(L3::VrfName const& name, VrfId id) {
  if (name.empty() || id.isNone() || id.value() > VrfId::kNone) {
    TRACE(0, "Vrf: " << name << ", vrfIs refused id " << id);
    return false;
  }
  auto const& map = nameStatus_->nameToIdMap();
  VrfId const old = map->vrfIdOf(name);
  if (old == id) return false;
  // The id's former holder loses it first, so that no reader ever sees one id under two names.
  L3::VrfName const holder = idStatus_->vrfIdToName(id);
  if (!holder.empty()) {
    TRACE(0, "Vrf: " << holder << ", loses id " << id << " to " << name);
    map->vrfNameToIdDel(holder);
  }
  if (!old.isNone()) idStatus_->vrfIdToNameDel(old);
  TRACE(0, "Vrf: " << name << ", id " << id << ", previous id " << old);
  map->vrfNameToIdIs(name, id);
  idStatus_->vrfIdToNameIs(id, name);
  versionInc(1);
  return true;
}

bool VrfAgent::vrfDel(L3::VrfName const& name) {
  auto const& map = nameStatus_->nameToIdMap();
  VrfId const old = map->vrfIdOf(name);
  if (old.isNone()) return false;
  TRACE(0, "Vrf: " << name << ", deleted, id " << old);
  map->vrfNameToIdDel(name);
  idStatus_->vrfIdToNameDel(old);
  versionInc(1);
  return true;
}

void VrfAgent::nameToIdMapRenew() {
  auto fresh = Vrf::VrfIdMap::NameToIdMap::NameToIdMapIs();
  for (auto it = nameStatus_->nameToIdMap()->vrfNameToIdIteratorConst(); it; it.advance())
    fresh->vrfNameToIdIs(it.key(), it.value());
  TRACE(1, "nameToIdMapRenew " << fresh->vrfNameToIdSize() << " VRFs");
  nameStatus_->nameToIdMapIs(fresh);
  versionInc(1);
}

std::vector<std::pair<L3::VrfName, VrfAgent::VrfId>> VrfAgent::vrfs() const {
  std::vector<std::pair<L3::VrfName, VrfId>> out;
  for (auto it = nameStatus_->nameToIdMap()->vrfNameToIdIteratorConst(); it; it.advance())
    out.emplace_back(it.key(), it.value());
  std::sort(out.begin(), out.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
  return out;
}

}  // namespace Platform
