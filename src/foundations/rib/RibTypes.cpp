#include "foundations/rib/RibTypes.h"

#include <initializer_list>
#include <utility>

#include "foundations/runtime/Hash.h"
#include "foundations/runtime/ValueText.h"

namespace Vrf::VrfIdMap {

std::optional<VrfId> VrfId::fromStrep(std::string_view text) {
  auto n = Zel::ValueText::parseUnsigned<std::uint32_t>(text);
  if (!n) return std::nullopt;
  return VrfId(*n);
}

std::uint32_t VrfId::hash(std::uint32_t seed) const noexcept { return Zel::HashBuilder(seed).add(value_).value(); }

std::string valueToStrep(VrfId v) { return std::to_string(v.value()); }

}  // namespace Vrf::VrfIdMap

namespace Routing {

std::ostream& operator<<(std::ostream& os, MetricPref m) {
  return os << '(' << m.metric() << ", " << unsigned(m.preference()) << ')';
}

}  // namespace Routing

namespace Routing::Rib {

namespace {
// The name of a value from a table of names, or its number.
template <class V>
std::optional<V> fromNameOrNumber(std::string_view text, std::initializer_list<std::pair<std::string_view, V>> names) {
  std::optional<std::string> const unquoted = Zel::ValueText::unquote(text);
  if (unquoted) text = *unquoted;
  for (auto const& [name, value] : names) {
    if (text == name) return value;
  }
  using Raw = decltype(V().value());
  auto n = Zel::ValueText::parseUnsigned<Raw>(text);
  if (!n) return std::nullopt;
  return V(*n);
}
}  // namespace

std::string RoutingProtocol::toStrep() const {
  if (*this == staticConfig()) return "staticConfig";
  if (*this == routeInput()) return "routeInput";
  return std::to_string(value_);
}

std::optional<RoutingProtocol> RoutingProtocol::fromStrep(std::string_view text) {
  return fromNameOrNumber<RoutingProtocol>(text, {{"staticConfig", staticConfig()}, {"routeInput", routeInput()}});
}

std::string valueToStrep(RoutingProtocol p) { return Zel::ValueText::quote(p.toStrep()); }

std::uint32_t RoutingProtocol::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed).add(value_).value();
}

std::string Transport::toStrep() const {
  if (*this == transportIpv4()) return "ipv4";
  if (*this == transportIpv6()) return "ipv6";
  if (*this == transportEvpn()) return "evpn";
  return std::to_string(value_);
}

std::optional<Transport> Transport::fromStrep(std::string_view text) {
  return fromNameOrNumber<Transport>(
      text, {{"ipv4", transportIpv4()}, {"ipv6", transportIpv6()}, {"evpn", transportEvpn()}});
}

std::string valueToStrep(Transport t) { return Zel::ValueText::quote(t.toStrep()); }

std::uint32_t Transport::hash(std::uint32_t seed) const noexcept { return Zel::HashBuilder(seed).add(value_).value(); }

}  // namespace Routing::Rib
