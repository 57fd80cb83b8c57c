#include "foundations/records/Via.h"

#include <cstring>

#include "foundations/runtime/Hash.h"
#include "foundations/types/ValueText.h"

namespace Routing {

static_assert(sizeof(Via) <= 80, "a via is held by the million: keep it within 80 bytes");

namespace {

constexpr std::string_view kType = "Routing::Via";
constexpr std::string_view kFields[] = {"hop",      "intfId",    "mplsLabel", "vni",      "vtepSipValidation",
                                        "vtepAddr", "routerMac", "egressVrf", "localAddr"};

std::string boolStrep(bool b) { return b ? "True" : "False"; }

std::optional<bool> boolFromStrep(std::string_view text) {
  if (text == "True") return true;
  if (text == "False") return false;
  return std::nullopt;
}

Zel::HashBuilder& addAddr(Zel::HashBuilder& h, Ondex::IpGenAddr const& a) {
  return h.add(a.word(0)).add(a.word(1)).add(a.af().value());
}

}  // namespace

std::string Via::toStrep() const {
  std::string const f[] = {Ondex::valueToStrep(hop_),        Ondex::valueToStrep(intfId_),
                           Ondex::valueToStrep(mplsLabel_),  Vxlan::valueToStrep(vni_),
                           boolStrep(vtepSipValidation_),    Ondex::valueToStrep(vtepAddr_),
                           Ondex::valueToStrep(routerMac_),  L3::valueToStrep(egressVrf_),
                           Zel::valueToStrep(localAddr_)};
  return Zel::ValueText::print(kType, {{kFields[0], f[0]},
                                       {kFields[1], f[1]},
                                       {kFields[2], f[2]},
                                       {kFields[3], f[3]},
                                       {kFields[4], f[4]},
                                       {kFields[5], f[5]},
                                       {kFields[6], f[6]},
                                       {kFields[7], f[7]},
                                       {kFields[8], f[8]}});
}

std::optional<Via> Via::fromStrep(std::string_view text) {
  auto fields = Zel::ValueText::parse(text, kType, kFields);
  if (!fields) return std::nullopt;
  auto const& f = *fields;
  auto hop = Ondex::IpGenAddr::fromStrep(f[0]);
  auto intfId = Ondex::IntfId::fromStrep(f[1]);
  auto label = Ondex::MplsLabel::fromStrep(f[2]);
  auto vni = Vxlan::VniExtOrNone::fromStrep(f[3]);
  auto sipValidation = boolFromStrep(f[4]);
  auto vtepAddr = Ondex::IpGenAddr::fromStrep(f[5]);
  auto routerMac = Ondex::EthAddr::fromStrep(f[6]);
  auto egressVrf = L3::VrfName::fromStrep(f[7]);
  auto localAddr = Zel::Optional<Ondex::IpGenAddr>::fromStrep(f[8]);
  if (!hop || !intfId || !label || !vni || !sipValidation || !vtepAddr || !routerMac || !egressVrf || !localAddr)
    return std::nullopt;
  Via v(*hop, *intfId);
  v.mplsLabelIs(*label).vniIs(*vni).vtepSipValidationIs(*sipValidation).vtepAddrIs(*vtepAddr);
  v.routerMacIs(*routerMac).egressVrfIs(*egressVrf);
  v.localAddr_ = *localAddr;
  return v;
}

std::uint32_t Via::hash(std::uint32_t seed) const noexcept {
  Zel::HashBuilder h(seed);
  addAddr(h, hop_);
  h.add(std::uint64_t(intfId_.id()) << 32 | mplsLabel_.value());
  h.add(std::uint64_t(vni_.value()) << 32 | std::uint64_t(vtepSipValidation_) << 1 | localAddr_.hasValue());
  addAddr(h, vtepAddr_);
  std::uint64_t mac = 0;
  std::memcpy(&mac, routerMac_.bytes().data(), routerMac_.bytes().size());
  h.add(mac);
  if (localAddr_) addAddr(h, *localAddr_);
  if (!egressVrf_.empty()) h.add(egressVrf_.hash(seed));
  return h.value();
}

std::strong_ordering operator<=>(Via const& a, Via const& b) noexcept {
  if (auto c = a.hop_ <=> b.hop_; c != 0) return c;
  if (auto c = a.intfId_ <=> b.intfId_; c != 0) return c;
  if (auto c = a.mplsLabel_ <=> b.mplsLabel_; c != 0) return c;
  if (auto c = a.vni_ <=> b.vni_; c != 0) return c;
  if (auto c = a.vtepSipValidation_ <=> b.vtepSipValidation_; c != 0) return c;
  if (auto c = a.vtepAddr_ <=> b.vtepAddr_; c != 0) return c;
  if (auto c = a.routerMac_ <=> b.routerMac_; c != 0) return c;
  if (auto c = a.egressVrf_ <=> b.egressVrf_; c != 0) return c;
  return a.localAddr_ <=> b.localAddr_;
}

}  // namespace Routing
