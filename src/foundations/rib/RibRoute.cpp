#include "foundations/rib/RibRoute.h"

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Hash.h"
#include "foundations/types/ValueText.h"

namespace Routing::Rib {

namespace {
constexpr std::string_view kRouteKeyType = "Routing::Rib::RouteKey";
}  // namespace

std::uint32_t RouteKey::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed).add(vrfId_.value()).add(prefix_.hash(seed)).value();
}

std::optional<RouteKey> RouteKey::fromStrep(std::string_view text) {
  static constexpr std::string_view kNames[] = {"vrfId", "prefix"};
  auto f = Zel::ValueText::parse(text, kRouteKeyType, kNames);
  if (!f) return std::nullopt;
  auto vrf = VrfId::fromStrep((*f)[0]);
  auto prefix = Ondex::IpGenPrefix::fromStrep((*f)[1]);
  if (!vrf || !prefix) return std::nullopt;
  return RouteKey(*vrf, *prefix);
}

std::string valueToStrep(RouteKey const& k) {
  std::string const vrf = valueToStrep(k.vrfId());
  std::string const prefix = valueToStrep(k.prefix());
  return Zel::ValueText::print(kRouteKeyType, {{"vrfId", vrf}, {"prefix", prefix}});
}

void Route::srcVrfIdIs(VrfId vrfId) {
  QUILL_ASSERT(vrfId.value() <= (srcVrfIdMask >> srcVrfIdLoc), "vrfId.value() <= ( srcVrfIdMask >> srcVrfIdLoc )");
  body_.srcVrfIdWord = (vrfId.value() << srcVrfIdLoc) | (body_.srcVrfIdWord & ~srcVrfIdMask);
}

std::ostream& operator<<(std::ostream& os, Route const& r) {
  os << "Route(" << r.routeKey() << " proto " << r.routingProtocol() << " pref " << r.metricPref() << " viaSet "
     << r.viaSetKey();
  if (r.flags()) os << " flags " << unsigned(r.flags());
  if (r.fibRouteType()) os << " fibRouteType " << unsigned(r.fibRouteType());
  if (r.metricType()) os << " metricType " << r.metricType();
  if (!r.srcVrfId().isNone()) os << " srcVrf " << r.srcVrfId();
  if (r.tagOrResultId()) os << " tag " << r.tagOrResultId();
  return os << ')';
}

}  // namespace Routing::Rib
