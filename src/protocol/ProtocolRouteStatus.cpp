#include "protocol/ProtocolRouteStatus.h"

#include "foundations/runtime/ValueText.h"

namespace Routing::Protocol {

std::ostream& operator<<(std::ostream& os, ViaType t) {
  switch (t.viaType()) {
    case viaInvalid: return os << "viaInvalid";
    case viaIntfNextHop: return os << "viaIntfNextHop";
    case viaNextHopOnly: return os << "viaNextHopOnly";
    case viaIntfOnly: return os << "viaIntfOnly";
    case viaDefault: return os << "viaDefault";
  }
  return os << "viaType(" << unsigned(t.viaType()) << ")";
}

std::ostream& operator<<(std::ostream& os, ViaResolutionStatus s) {
  switch (s) {
    case unresolved: return os << "unresolved";
    case resolved: return os << "resolved";
    case undetermined: return os << "undetermined";
  }
  return os << "viaResolutionStatus(" << unsigned(s) << ")";
}

std::uint32_t RouteStatusKey::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed).add(vrfId.value()).add(af.value()).value();
}

std::uint32_t PrefixPrefVrfId::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(prefix.hash(seed)).add(pref.value()).add(vrfId.value()).value();
}

std::ostream& operator<<(std::ostream& os, PrefixPrefVrfId const& k) {
  return os << k.prefix << " pref " << k.pref << " vrf " << k.vrfId;
}

std::string valueToStrep(RouteStatusKey const& k) {
  std::string vrf = valueToStrep(k.vrfId);
  std::string af = valueToStrep(k.af);
  return Zel::ValueText::print("Routing::Protocol::RouteStatusKey", {{"vrfId", vrf}, {"af", af}});
}

std::optional<RouteStatusKey> RouteStatusKey::fromStrep(std::string_view text) {
  static constexpr std::string_view names[] = {"vrfId", "af"};
  auto fields = Zel::ValueText::parse(text, "Routing::Protocol::RouteStatusKey", names);
  if (!fields) return std::nullopt;
  auto vrf = Vrf::VrfIdMap::VrfId::fromStrep((*fields)[0]);
  auto af = Ondex::AddressFamily::fromStrep((*fields)[1]);
  if (!vrf || !af) return std::nullopt;
  return RouteStatusKey{*vrf, *af};
}

void RoutePref::dedupViaKeyIs(ViaType viaType, Quill::Ptr<Rib::DedupViaKey> const& handle, RouteMetric metric) {
  auto entry = DedupViaKeyMetric::DedupViaKeyMetricIs(metric, handle);
  auto byType = dedupViaKeyByViaTypeIs(viaType);
  byType->dedupViaKeyIs(handle->viaKey(), entry);
}

void RoutePref::dedupViaKeyDel(ViaType viaType, Rib::ViaKey const& viaKey) {
  auto byType = dedupViaKeyByViaType(viaType);
  if (!byType) return;
  byType->dedupViaKeyDel(viaKey);
  if (byType->dedupViaKeySize() == 0) dedupViaKeyByViaTypeDel(viaType);
}

void RoutePref::dedupViaKeyDelAll(ViaType viaType) {
  auto byType = dedupViaKeyByViaType(viaType);
  if (!byType) return;
  byType->dedupViaKeyDelAll();
  dedupViaKeyByViaTypeDel(viaType);
}

}  // namespace Routing::Protocol
