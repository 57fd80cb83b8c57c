#include "leak/ProtocolRouteLeak.h"

#include <utility>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Hash.h"
#include "foundations/types/ValueText.h"

namespace Routing::Protocol {

namespace {

constexpr std::string_view kVrfIdAfType = "Routing::Protocol::VrfIdAf";
constexpr std::string_view kVrfIdAfFields[] = {"vrfId", "af"};
constexpr std::string_view kVrfPairAfType = "Routing::Protocol::VrfPairAf";
constexpr std::string_view kVrfPairAfFields[] = {"srcVrf", "dstVrf", "af"};

// The handle a keyed mutator files, which must be there to give the key.
template <class P>
P const& nonNull(P const& p, std::string_view attribute) {
  if (!p) Zel::throwMutatorArgNullPointerException(attribute);
  return p;
}

}  // namespace

std::uint32_t VrfIdAf::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed).add(std::uint64_t(vrfId_.value()) << 8 | af_.value()).value();
}

std::string valueToStrep(VrfIdAf k) {
  std::string const vrf = valueToStrep(k.vrfId_);
  std::string const af = valueToStrep(k.af_);
  return Zel::ValueText::print(kVrfIdAfType, {{kVrfIdAfFields[0], vrf}, {kVrfIdAfFields[1], af}});
}

std::optional<VrfIdAf> VrfIdAf::fromStrep(std::string_view text) {
  auto fields = Zel::ValueText::parse(text, kVrfIdAfType, kVrfIdAfFields);
  if (!fields) return std::nullopt;
  auto vrf = Vrf::VrfIdMap::VrfId::fromStrep((*fields)[0]);
  auto af = Ondex::AddressFamily::fromStrep((*fields)[1]);
  if (!vrf || !af) return std::nullopt;
  return VrfIdAf(*vrf, *af);
}

std::uint32_t VrfPairAf::hash(std::uint32_t seed) const noexcept {
  return Zel::HashBuilder(seed)
      .add(std::uint64_t(srcVrf_.value()) << 32 | dstVrf_.value())
      .add(af_.value())
      .value();
}

std::string valueToStrep(VrfPairAf k) {
  std::string const src = valueToStrep(k.srcVrf_);
  std::string const dst = valueToStrep(k.dstVrf_);
  std::string const af = valueToStrep(k.af_);
  return Zel::ValueText::print(kVrfPairAfType,
                               {{kVrfPairAfFields[0], src}, {kVrfPairAfFields[1], dst}, {kVrfPairAfFields[2], af}});
}

std::optional<VrfPairAf> VrfPairAf::fromStrep(std::string_view text) {
  auto fields = Zel::ValueText::parse(text, kVrfPairAfType, kVrfPairAfFields);
  if (!fields) return std::nullopt;
  auto src = Vrf::VrfIdMap::VrfId::fromStrep((*fields)[0]);
  auto dst = Vrf::VrfIdMap::VrfId::fromStrep((*fields)[1]);
  auto af = Ondex::AddressFamily::fromStrep((*fields)[2]);
  if (!src || !dst || !af) return std::nullopt;
  return VrfPairAf(*src, *dst, *af);
}

Quill::Ptr<LeakRoute> LeakRoute::LeakRouteIs(VrfIdAf const& vrfAf, Quill::Ptr<Routing::Route const> route) {
  nonNull(route, "route");
  return Zel::make<LeakRoute>(vrfAf, std::move(route));
}

LeakRoute::LeakRoute(VrfIdAf const& vrfAf, Quill::Ptr<Routing::Route const> route) noexcept
    : vrfAf_(vrfAf), route_(std::move(route)) {}

Quill::Ptr<LeakRouteDir> LeakRouteDir::LeakRouteDirIs() { return Zel::make<LeakRouteDir>(); }

Quill::Ptr<LeakRoute> LeakRouteDir::leakRouteIs(VrfIdAf const& vrfAf, Quill::Ptr<Routing::Route const> const& route) {
  RouteKey const& key = nonNull(route, "leakRoute")->key();
  if (Quill::Ptr<LeakRoute> held = leakRoute(key); held && held->route() == route && held->vrfAf() == vrfAf) {
    return held;
  }
  return leakRoute_.put(*this, leakRouteId, key, LeakRoute::LeakRouteIs(vrfAf, route));
}

bool LeakRouteColl::leakRouteIs(Quill::Ptr<LeakRoute const> const& lr) {
  return leakRouteIs(nonNull(lr, "leakRoute")->key(), lr);
}

Quill::Ptr<LeakRouteList> LeakRouteList::LeakRouteListIs(VrfPairAf const& vrfAf) {
  return Zel::make<LeakRouteList>(vrfAf);
}

Quill::Ptr<LeakRouteListSet> LeakRouteListSet::LeakRouteListSetIs(VrfIdAf const& vrfAf) {
  return Zel::make<LeakRouteListSet>(vrfAf);
}

Quill::Ptr<LeakRouteList> LeakRouteListSet::leakRouteListIs(VrfPairAf const& vrfPairAf) {
  QUILL_ASSERT(vrfPairAf.srcVrf() == vrfAf().vrfId(), "vrfPairAf.srcVrf() == vrfAf().vrfId()");
  return leakRouteList_.findOrCreate(this, leakRouteListId, vrfPairAf);
}

Quill::Ptr<LeakRouteListPtrSet> LeakRouteListPtrSet::LeakRouteListPtrSetIs(VrfIdAf const& vrfAf) {
  return Zel::make<LeakRouteListPtrSet>(vrfAf);
}

bool LeakRouteListPtrSet::leakRouteListIs(Quill::Ptr<LeakRouteList const> const& lrl) {
  VrfPairAf const& key = nonNull(lrl, "leakRouteList")->vrfAf();
  QUILL_ASSERT(key.dstVrf() == vrfAf().vrfId(), "lrl->vrfAf().dstVrf() == vrfAf().vrfId()");
  return leakRouteListIs(key, lrl);
}

Quill::Ptr<LeakRouteListSetDir> LeakRouteListSetDir::LeakRouteListSetDirIs() {
  return Zel::make<LeakRouteListSetDir>();
}

bool LeakRouteListSetDir::lrlSetIs(Quill::Ptr<LeakRouteListSet> const& set) {
  return lrlSetIs(nonNull(set, "lrlSet")->vrfAf(), set);
}

Quill::Ptr<LeakRouteListPtrSetDir> LeakRouteListPtrSetDir::LeakRouteListPtrSetDirIs() {
  return Zel::make<LeakRouteListPtrSetDir>();
}

bool LeakRouteListPtrSetDir::lrlpSetIs(Quill::Ptr<LeakRouteListPtrSet> const& set) {
  return lrlpSetIs(nonNull(set, "lrlpSet")->vrfAf(), set);
}

Quill::Ptr<LeakRouteConfig> LeakRouteConfig::LeakRouteConfigIs(VrfIdAf const& vrfAf) {
  return Zel::make<LeakRouteConfig>(vrfAf);
}

}  // namespace Routing::Protocol
