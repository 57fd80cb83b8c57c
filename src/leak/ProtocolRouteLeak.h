// The records that carry a leaked route from its source VRF to its destination. A source's mux owns
// a LeakRouteDir and writes a LeakRouteListSet (a list per destination); the wiring shares each list
// with its destination's LeakRouteListPtrSet, whose demux writes the destination's LeakRouteConfig.
// The leak root owns the two directories of sets. Mutators publish only when something changed.
//
// Iterator contract of every collection here (xIterator(), xIteratorConst(), and
// xColl().iteratorAt(key) to start at a key): that of Zel::HashMap2018. The order is hash order
// under the attribute's salt, the same whatever else comes and goes; any element, the current one
// included, may be deleted during a walk; an element deleted before the walk reaches it is not
// visited; resuming at a saved key visits exactly the elements from that key on, present or not.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <fmt/ostream.h>

#include "foundations/records/Route.h"
#include "foundations/records/RouteKey.h"
#include "foundations/rib/RibTypes.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/AddressFamily.h"

namespace Routing::Protocol {

// The VRF id that stands for no VRF.
inline constexpr Vrf::VrfIdMap::VrfId vrfIdNull = Vrf::VrfIdMap::VrfId::none();

// One VRF and address family: a leak source or destination. The default, no VRF and no family, is
// what a lookup that misses reads.
class VrfIdAf : public Zel::ValueFields<VrfIdAf> {
 public:
  // Hash, equality, order (by VRF id, then family) and the text form
  // "Value('Routing::Protocol::VrfIdAf', ** {'vrfId': 3, 'af': 'ipv4'})" come from these.
  static constexpr std::string_view kTypeName = "Routing::Protocol::VrfIdAf";
  static constexpr auto fields() {
    return std::tuple{Zel::field("vrfId", &VrfIdAf::vrfId_), Zel::field("af", &VrfIdAf::af_)};
  }

  constexpr VrfIdAf() noexcept = default;
  constexpr VrfIdAf(Vrf::VrfIdMap::VrfId vrfId, Ondex::AddressFamily af) noexcept : vrfId_(vrfId), af_(af) {}

  [[nodiscard]] constexpr Vrf::VrfIdMap::VrfId vrfId() const noexcept { return vrfId_; }
  [[nodiscard]] constexpr Ondex::AddressFamily af() const noexcept { return af_; }

  friend std::ostream& operator<<(std::ostream& os, VrfIdAf k) { return os << valueToStrep(k); }

 private:
  Vrf::VrfIdMap::VrfId vrfId_ = vrfIdNull;
  Ondex::AddressFamily af_;
};

// A source VRF, a destination VRF and the family: the key of one LeakRouteList.
class VrfPairAf : public Zel::ValueFields<VrfPairAf> {
 public:
  // Hash, equality, order (by source, then destination, then family) and the text form
  // "Value('Routing::Protocol::VrfPairAf', ** {'srcVrf': 3, 'dstVrf': 9, 'af': 'ipv4'})" come from these.
  static constexpr std::string_view kTypeName = "Routing::Protocol::VrfPairAf";
  static constexpr auto fields() {
    return std::tuple{Zel::field("srcVrf", &VrfPairAf::srcVrf_), Zel::field("dstVrf", &VrfPairAf::dstVrf_),
                      Zel::field("af", &VrfPairAf::af_)};
  }

  constexpr VrfPairAf() noexcept = default;
  constexpr VrfPairAf(Vrf::VrfIdMap::VrfId srcVrf, Vrf::VrfIdMap::VrfId dstVrf, Ondex::AddressFamily af) noexcept
      : srcVrf_(srcVrf), dstVrf_(dstVrf), af_(af) {}

  [[nodiscard]] constexpr Vrf::VrfIdMap::VrfId srcVrf() const noexcept { return srcVrf_; }
  [[nodiscard]] constexpr Vrf::VrfIdMap::VrfId dstVrf() const noexcept { return dstVrf_; }
  [[nodiscard]] constexpr Ondex::AddressFamily af() const noexcept { return af_; }

  friend std::ostream& operator<<(std::ostream& os, VrfPairAf k) { return os << valueToStrep(k); }

 private:
  Vrf::VrfIdMap::VrfId srcVrf_ = vrfIdNull;
  Vrf::VrfIdMap::VrfId dstVrf_ = vrfIdNull;
  Ondex::AddressFamily af_;
};

// One leaked route, immutable: the VRF and family it comes from and the source's configuration of
// it, which it keeps alive. The route's key is the leaked route's key everywhere.
class LeakRoute : public Zel::Entity {
 public:
  // Throws Zel::MutatorArgNullPointerException for a null route.
  [[nodiscard]] static Quill::Ptr<LeakRoute> LeakRouteIs(VrfIdAf const& vrfAf, Quill::Ptr<Routing::Route const> route);

  ZEL_CONST(VrfIdAf, vrfAf)
  ZEL_CONST(Quill::Ptr<Routing::Route const>, route)
  [[nodiscard]] Routing::RouteKey const& key() const noexcept { return route_->key(); }

 protected:
  friend struct Zel::Factory;
  LeakRoute(VrfIdAf const& vrfAf, Quill::Ptr<Routing::Route const> route) noexcept;
};

// The LeakRoutes of one source, by route key; owned by the source's mux.
class LeakRouteDir : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<LeakRouteDir> LeakRouteDirIs();

  ZEL_OWNED_MAP(Routing::RouteKey, LeakRoute, leakRoute, 130)

  // The LeakRoute of the route's key: the one held, silently, when it has this source and this very
  // route object; otherwise a new one that replaces it (the old one marked for deletion) and
  // publishes. Throws Zel::MutatorArgNullPointerException for a null route.
  Quill::Ptr<LeakRoute> leakRouteIs(VrfIdAf const& vrfAf, Quill::Ptr<Routing::Route const> const& route);

 protected:
  friend struct Zel::Factory;
  LeakRouteDir() = default;
};

// Shared LeakRoutes by route key: the body of a LeakRouteList and of a LeakRouteConfig. Holds the
// routes without owning them. A null handle stored under a key removes the key.
class LeakRouteColl : public Zel::Entity {
 public:
  ZEL_MAP(Routing::RouteKey, Quill::Ptr<LeakRoute const>, leakRoute, 131)

  // Files the route under its own key: a different object under that key replaces the old one and
  // publishes; the same object is silent. Throws Zel::MutatorArgNullPointerException for null.
  bool leakRouteIs(Quill::Ptr<LeakRoute const> const& lr);

 protected:
  LeakRouteColl() = default;
};

// The routes that one source leaks to one destination; owned by the source's LeakRouteListSet.
class LeakRouteList : public LeakRouteColl {
 public:
  [[nodiscard]] static Quill::Ptr<LeakRouteList> LeakRouteListIs(VrfPairAf const& vrfAf);

  ZEL_CONST(VrfPairAf, vrfAf)

 protected:
  friend struct Zel::Factory;
  explicit LeakRouteList(VrfPairAf const& vrfAf) : vrfAf_(vrfAf) {}
};

// All lists of one source, by (source, destination, family); the source's mux writes it.
class LeakRouteListSet : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<LeakRouteListSet> LeakRouteListSetIs(VrfIdAf const& vrfAf);

  ZEL_CONST(VrfIdAf, vrfAf)
  ZEL_OWNED_MAP(VrfPairAf, LeakRouteList, leakRouteList, 131)

  // Finds the list to the pair's destination, or creates it (and publishes). The pair's source must
  // be this set's VRF: asserts "vrfPairAf.srcVrf() == vrfAf().vrfId()".
  Quill::Ptr<LeakRouteList> leakRouteListIs(VrfPairAf const& vrfPairAf);
  [[nodiscard]] std::size_t leakRouteLists() const noexcept { return leakRouteListSize(); }

 protected:
  friend struct Zel::Factory;
  explicit LeakRouteListSet(VrfIdAf const& vrfAf) : vrfAf_(vrfAf) {}
};

// All lists that end at one destination, shared read-only with the sources' sets that own them.
class LeakRouteListPtrSet : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<LeakRouteListPtrSet> LeakRouteListPtrSetIs(VrfIdAf const& vrfAf);

  ZEL_CONST(VrfIdAf, vrfAf)
  ZEL_MAP(VrfPairAf, Quill::Ptr<LeakRouteList const>, leakRouteList, 131)

  // Files the list under its own key; the same object is silent. The list must end at this set's
  // VRF: asserts "lrl->vrfAf().dstVrf() == vrfAf().vrfId()". Throws
  // Zel::MutatorArgNullPointerException for null.
  bool leakRouteListIs(Quill::Ptr<LeakRouteList const> const& lrl);
  [[nodiscard]] std::size_t leakRouteLists() const noexcept { return leakRouteListSize(); }

 protected:
  friend struct Zel::Factory;
  explicit LeakRouteListPtrSet(VrfIdAf const& vrfAf) : vrfAf_(vrfAf) {}
};

// The LeakRouteListSet of every source, by its VRF and family.
class LeakRouteListSetDir : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<LeakRouteListSetDir> LeakRouteListSetDirIs();

  ZEL_MAP(VrfIdAf, Quill::Ptr<LeakRouteListSet>, lrlSet, 130)

  // Files the set under its own vrfAf; the same object is silent, another one replaces. Throws
  // Zel::MutatorArgNullPointerException for null.
  bool lrlSetIs(Quill::Ptr<LeakRouteListSet> const& set);

 protected:
  friend struct Zel::Factory;
  LeakRouteListSetDir() = default;
};

// The LeakRouteListPtrSet of every destination, by its VRF and family.
class LeakRouteListPtrSetDir : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<LeakRouteListPtrSetDir> LeakRouteListPtrSetDirIs();

  ZEL_MAP(VrfIdAf, Quill::Ptr<LeakRouteListPtrSet>, lrlpSet, 130)

  // As LeakRouteListSetDir::lrlSetIs.
  bool lrlpSetIs(Quill::Ptr<LeakRouteListPtrSet> const& set);

 protected:
  friend struct Zel::Factory;
  LeakRouteListPtrSetDir() = default;
};

// The routes leaked into one destination VRF and family, one source per route key; the
// destination's demux writes it and its route configuration reads it. Owned by that configuration.
class LeakRouteConfig : public LeakRouteColl {
 public:
  [[nodiscard]] static Quill::Ptr<LeakRouteConfig> LeakRouteConfigIs(VrfIdAf const& vrfAf);

  ZEL_CONST(VrfIdAf, vrfAf)

 protected:
  friend struct Zel::Factory;
  explicit LeakRouteConfig(VrfIdAf const& vrfAf) : vrfAf_(vrfAf) {}
};

}  // namespace Routing::Protocol

template <>
struct fmt::formatter<Routing::Protocol::VrfIdAf> : fmt::ostream_formatter {};
template <>
struct fmt::formatter<Routing::Protocol::VrfPairAf> : fmt::ostream_formatter {};
