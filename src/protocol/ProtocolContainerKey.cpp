#include "protocol/ProtocolContainerKey.h"

#include "foundations/runtime/Hash.h"
#include "foundations/types/ValueText.h"

namespace Routing::Protocol {

std::uint32_t ContainerKey::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(vrfName_.hash(seed)).add(af_.value()).value();
}

bool operator<(ContainerKey const& a, ContainerKey const& b) noexcept {
  if (a.vrfName_ != b.vrfName_) {
    bool const aDefault = a.vrfName_ == L3::VrfName::defaultVrf();
    bool const bDefault = b.vrfName_ == L3::VrfName::defaultVrf();
    if (aDefault != bDefault) return aDefault;
    return a.vrfName_ < b.vrfName_;
  }
  return a.af_ < b.af_;
}

std::string valueToStrep(ContainerKey const& k) {
  return Zel::ValueText::print("Routing::Protocol::ContainerKey",
                               {{"vrfName", valueToStrep(k.vrfName_)}, {"af", valueToStrep(k.af_)}});
}

std::optional<ContainerKey> ContainerKey::fromStrep(std::string_view text) {
  static constexpr std::string_view names[] = {"vrfName", "af"};
  auto fields = Zel::ValueText::parse(text, "Routing::Protocol::ContainerKey", names);
  if (!fields) return std::nullopt;
  auto vrf = L3::VrfName::fromStrep((*fields)[0]);
  auto af = Ondex::AddressFamily::fromStrep((*fields)[1]);
  if (!vrf || !af) return std::nullopt;
  return ContainerKey(*vrf, *af);
}

}  // namespace Routing::Protocol
