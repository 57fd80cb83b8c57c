// Routing::Rib::Ip::GlobalNextHopDependencyGraph: the RIB's view of which next hops depend on
// which routes, reduced to the one question the route machines ask: would installing this via for
// this route close a loop? The answer comes from a set of (prefix, VRF, via key) that the RIB (or
// a test) marks as looping, and else from an optional callback. It owns the set and the callback;
// every change bumps `graphVersion`, so a reader hears of the graph changing as a whole. Mounted
// at mountPath(rib); read by RouteStatusSm.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <string_view>
#include <tuple>

#include "foundations/rib/RibTypes.h"
#include "foundations/rib/ViaKey.h"
#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/String.h"
#include "foundations/runtime/ValueFields.h"
#include "foundations/types/IpGenPrefix.h"

namespace Routing::Rib::Ip {

class GlobalNextHopDependencyGraph : public Zel::Entity {
 public:
  using VrfId = Vrf::VrfIdMap::VrfId;
  // The answer of a RIB that computes it: (prefix, metricPref, vrfId, viaKey, a, b, mrib).
  using LoopingRouteFn = std::function<bool(Ondex::IpGenPrefix const&, MetricPref, VrfId, ViaKey const&,
                                            std::uint32_t, std::uint32_t, bool)>;

  // A via that would close a loop for a route.
  struct LoopingVia {
    Ondex::IpGenPrefix prefix;
    VrfId vrfId;
    ViaKey viaKey;
    static constexpr auto fields() {
      return std::tuple{Zel::field("prefix", &LoopingVia::prefix), Zel::field("vrfId", &LoopingVia::vrfId),
                        Zel::field("viaKey", &LoopingVia::viaKey)};
    }
    [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const noexcept { return Zel::hashFields(*this, seed); }
    friend bool operator==(LoopingVia const& a, LoopingVia const& b) noexcept = default;
    friend std::strong_ordering operator<=>(LoopingVia const& a, LoopingVia const& b) noexcept = default;
  };

  [[nodiscard]] static Quill::Ptr<GlobalNextHopDependencyGraph> GlobalNextHopDependencyGraphIs();
  // "routing/<rib>/nextHopDependencyGraph": where the graph of a RIB instance ("rib", "mrib") lives.
  [[nodiscard]] static Quill::String mountPath(std::string_view rib);

  // Bumped by every change of the graph.
  ZEL_ATTR(std::uint32_t, graphVersion, 130)

  // True when installing `viaKey` for `prefix` in `vrfId` would close a loop: the via is marked, or
  // the callback says so. `metricPref`, the two numbers and `mrib` reach the callback only.
  [[nodiscard]] bool loopingRoute(Ondex::IpGenPrefix const& prefix, MetricPref metricPref, VrfId vrfId,
                                  ViaKey const& viaKey, std::uint32_t a, std::uint32_t b, bool mrib) const;

  [[nodiscard]] bool loopingViaHas(LoopingVia const& v) const { return loopingVia_.contains(v); }
  void loopingViaIs(LoopingVia const& v);
  void loopingViaDel(LoopingVia const& v);
  void loopingViaDelAll();
  void loopingRouteFnIs(LoopingRouteFn fn);

 protected:
  friend struct Zel::Factory;
  GlobalNextHopDependencyGraph() = default;

 private:
  Zel::HashMap2018<LoopingVia> loopingVia_;
  LoopingRouteFn fn_;
};

}  // namespace Routing::Rib::Ip
