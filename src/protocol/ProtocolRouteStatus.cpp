#include "protocol/ProtocolRouteStatus.h"

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

std::ostream& operator<<(std::ostream& os, PrefixPrefVrfId const& k) {
  return os << k.prefix << " pref " << k.pref << " vrf " << k.vrfId;
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
