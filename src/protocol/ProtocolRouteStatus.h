// The route status store: per VRF and address family, for each prefix and preference, the vias
// that could carry the route, by via type, each with its configured metric. The configuration
// machines write it; route review and the via metric machine react to every change of it. It
// holds no decision. Owned by the protocol container of its VRF and family.
//
//   RouteStatusDir -> Status (VRF, family) -> Route (prefix) -> RoutePref (preference)
//     -> DedupViaKeyByViaType (via type) -> DedupViaKeyMetric (via: handle and metric)
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>

#include "foundations/records/RouteAttributes.h"
#include "foundations/records/RoutePreference.h"
#include "foundations/rib/DedupViaKey.h"
#include "foundations/rib/DedupViaSetKey.h"
#include "foundations/rib/RibTypes.h"
#include "foundations/rib/ViaKey.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/Optional.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/AddressFamily.h"
#include "foundations/types/IpGenAddr.h"
#include "foundations/types/IpGenPrefix.h"

namespace Routing::Protocol {

// How a via is specified; within one preference the smallest type present is the most preferred.
enum ViaTypeEnum : std::uint8_t {
  viaInvalid = 0,
  viaIntfNextHop = 1,
  viaNextHopOnly = 2,
  viaIntfOnly = 3,
  viaDefault = 4,
};

class ViaType {
 public:
  constexpr ViaType() noexcept = default;
  constexpr ViaType(ViaTypeEnum v) noexcept : viaType_(v) {}  // NOLINT: the type is its value
  [[nodiscard]] constexpr ViaTypeEnum viaType() const noexcept { return viaType_; }
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return Zel::hashOf(unsigned(viaType_), seed); }
  friend constexpr bool operator==(ViaType a, ViaType b) noexcept = default;
  friend constexpr auto operator<=>(ViaType a, ViaType b) noexcept { return a.viaType_ <=> b.viaType_; }
  friend std::ostream& operator<<(std::ostream& os, ViaType t);

 private:
  ViaTypeEnum viaType_ = viaInvalid;
};

// The result of via validation.
enum ViaResolutionStatus : std::uint8_t {
  unresolved = 0,
  resolved = 1,
  undetermined = 2,
};
std::ostream& operator<<(std::ostream& os, ViaResolutionStatus s);

// One VRF and address family. Hash, equality, order (VRF id first) and the text form
// "Value('Routing::Protocol::RouteStatusKey', ** {'vrfId': 3, 'af': 'ipv4'})" come from the fields.
struct RouteStatusKey {
  Vrf::VrfIdMap::VrfId vrfId;
  Ondex::AddressFamily af;

  static constexpr std::string_view kTypeName = "Routing::Protocol::RouteStatusKey";
  static constexpr auto fields() {
    return std::tuple{Zel::field("vrfId", &RouteStatusKey::vrfId), Zel::field("af", &RouteStatusKey::af)};
  }
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return Zel::hashFields(*this, seed); }
  friend constexpr bool operator==(RouteStatusKey const& a, RouteStatusKey const& b) noexcept = default;
  friend constexpr auto operator<=>(RouteStatusKey const& a, RouteStatusKey const& b) noexcept = default;
  friend std::ostream& operator<<(std::ostream& os, RouteStatusKey const& k) { return os << valueToStrep(k); }
  friend std::string valueToStrep(RouteStatusKey const& k) { return Zel::fieldsToStrep(k); }
  [[nodiscard]] static std::optional<RouteStatusKey> fromStrep(std::string_view text) {
    return Zel::fieldsFromStrep<RouteStatusKey>(text);
  }
};

// One route preference in any VRF: the key of the via metric machine's reverse index. Hash,
// equality and order (prefix, preference, VRF id) come from the fields.
struct PrefixPrefVrfId {
  Ondex::IpGenPrefix prefix;
  RoutePreference pref;
  Vrf::VrfIdMap::VrfId vrfId;

  static constexpr auto fields() {
    return std::tuple{Zel::field("prefix", &PrefixPrefVrfId::prefix), Zel::field("pref", &PrefixPrefVrfId::pref),
                      Zel::field("vrfId", &PrefixPrefVrfId::vrfId)};
  }
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return Zel::hashFields(*this, seed); }
  friend bool operator==(PrefixPrefVrfId const& a, PrefixPrefVrfId const& b) noexcept = default;
  friend auto operator<=>(PrefixPrefVrfId const& a, PrefixPrefVrfId const& b) noexcept = default;
  // "10.0.0.0/8 pref 1 vrf 0".
  friend std::ostream& operator<<(std::ostream& os, PrefixPrefVrfId const& k);
};

// One via under a via type: the handle that keeps the RIB via alive, and its configured metric.
class DedupViaKeyMetric : public Zel::Entity {
 public:
  static Quill::Ptr<DedupViaKeyMetric> DedupViaKeyMetricIs(RouteMetric metric, Quill::Ptr<Rib::DedupViaKey> handle) {
    return Zel::make<DedupViaKeyMetric>(metric, std::move(handle));
  }
  ZEL_ATTR(RouteMetric, metric, 130)
  ZEL_ATTR(Quill::Ptr<Rib::DedupViaKey>, dedupViaKey, 131)

 protected:
  friend struct Zel::Factory;
  DedupViaKeyMetric(RouteMetric metric, Quill::Ptr<Rib::DedupViaKey> handle) {
    metricIs(metric);
    dedupViaKeyIs(std::move(handle));
  }
};

using DedupViaKeyMetricPtr = Quill::Ptr<DedupViaKeyMetric>;

// The vias of one via type of a preference, by RIB via key.
class DedupViaKeyByViaType : public Zel::Entity {
 public:
  ZEL_CONST(ViaType, viaType)
  ZEL_MAP(Rib::ViaKey, DedupViaKeyMetricPtr, dedupViaKey, 130)

 protected:
  friend struct Zel::Factory;
  explicit DedupViaKeyByViaType(ViaType viaType) : viaType_(viaType) {}
};

using DedupViaKeyPtr = Quill::Ptr<Rib::DedupViaKey>;
using RouteAttributesOpt = Zel::Optional<RouteAttributes>;

// One preference of a prefix.
class RoutePref : public Zel::Entity {
 public:
  ZEL_CONST(RoutePreference, preference)
  ZEL_ATTR(std::uint8_t, fecType, 130)
  ZEL_ATTR_DEFAULT(bool, installInFib, 131, true)
  ZEL_ATTR(Fib::RouteType, fibRouteType, 132)
  ZEL_ATTR(RouteAttributesOpt, routeAttributes, 133)
  ZEL_ATTR(std::uint32_t, tag, 134)
  ZEL_OWNED_TREE(ViaType, DedupViaKeyByViaType, dedupViaKeyByViaType, 135)
  ZEL_ATTR(Quill::Ptr<Rib::DedupViaSetKey>, dedupViaSetKey, 136)
  ZEL_MAP(Rib::ViaKey, DedupViaKeyPtr, dedupEvpnVtepIpViaKey, 137)
  // The notification carries the previous address (Zel::notifyOldValue), null for a new via.
  ZEL_MAP(Rib::ViaKey, Ondex::IpGenAddr, bfdTrackedViaColl, 138)

  // Stores the via under its type with its metric, creating the type; replaces an entry of the
  // same via key.
  void dedupViaKeyIs(ViaType viaType, Quill::Ptr<Rib::DedupViaKey> const& handle, RouteMetric metric);
  // Removes the via; a type left empty is removed too, so the lowest type present always offers
  // a via.
  void dedupViaKeyDel(ViaType viaType, Rib::ViaKey const& viaKey);
  // Empties the type and removes it.
  void dedupViaKeyDelAll(ViaType viaType);

 protected:
  friend struct Zel::Factory;
  explicit RoutePref(RoutePreference preference) : preference_(preference) {}
};

// One prefix.
class Route : public Zel::Entity {
 public:
  static constexpr std::uint32_t kNoSrcVrf = Vrf::VrfIdMap::VrfId::kNone;

  // A change counter: a writer bumps it to force a review without changing anything else.
  ZEL_ATTR(std::uint8_t, routeChangedVersion, 130)
  ZEL_CONST(Ondex::IpGenPrefix, routeKey)
  ZEL_OWNED_TREE(RoutePreference, RoutePref, routePref, 131)
  // The VRF a leaked route came from.
  ZEL_ATTR_DEFAULT(Vrf::VrfIdMap::VrfId, srcVrfId, 132, kNoSrcVrf)

 protected:
  friend struct Zel::Factory;
  explicit Route(Ondex::IpGenPrefix const& prefix) : routeKey_(prefix) {}
};

// One VRF and address family.
class Status : public Zel::Entity {
 public:
  ZEL_CONST(RouteStatusKey, key)
  ZEL_OWNED_MAP(Ondex::IpGenPrefix, Route, route, 130)
  // Set by the writer after its first full pass; review does nothing before.
  ZEL_ATTR(bool, initialized, 131)

 protected:
  friend struct Zel::Factory;
  explicit Status(RouteStatusKey const& key) : key_(key) {}
};

class RouteStatusDir : public Zel::Entity {
 public:
  static Quill::Ptr<RouteStatusDir> RouteStatusDirIs() { return Zel::make<RouteStatusDir>(); }
  ZEL_OWNED_MAP(RouteStatusKey, Status, status, 130)

 protected:
  friend struct Zel::Factory;
  RouteStatusDir() = default;
};

// The route preferences that use one via; an index entry of the via metric machine, changed
// without notification.
class RouteByViaKey : public Zel::PtrInterface {
 public:
  static Quill::Ptr<RouteByViaKey> RouteByViaKeyIs(Rib::ViaKey const& viaKey) { return Zel::make<RouteByViaKey>(viaKey); }
  [[nodiscard]] Rib::ViaKey const& viaKey() const noexcept { return viaKey_; }
  [[nodiscard]] Zel::HashMap2018<PrefixPrefVrfId, void> const& route() const noexcept { return route_; }
  [[nodiscard]] bool routeHas(PrefixPrefVrfId const& k) const { return route_.contains(k); }
  bool routeIs(PrefixPrefVrfId const& k) { return route_.insert(k); }
  bool routeDel(PrefixPrefVrfId const& k) { return route_.erase(k); }
  void routeDelAll() { route_.clear(); }

 protected:
  friend struct Zel::Factory;
  explicit RouteByViaKey(Rib::ViaKey const& viaKey) : viaKey_(viaKey), route_(ZEL_SALT(130)) {}

 private:
  Rib::ViaKey viaKey_;
  Zel::HashMap2018<PrefixPrefVrfId, void> route_;
};

}  // namespace Routing::Protocol
