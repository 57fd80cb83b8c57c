#include "leak/ProtocolRouteLeak.h"

#include <utility>

#include "foundations/runtime/Exception.h"

namespace Routing::Protocol {

namespace {

// The handle a keyed mutator files, which must be there to give the key.
template <class P>
P const& nonNull(P const& p, std::string_view attribute) {
  if (!p) Zel::throwMutatorArgNullPointerException(attribute);
  return p;
}

}  // namespace

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
