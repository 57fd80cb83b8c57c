// Platform::RibReadout: the installed routes of one VRF and family as plain values, for the host to
// print as text or JSON: per route its prefix, protocol, preference, metric, flags, via-set flags
// and FEC type, its tag and communities (a static route carries them as a redistribution result of
// the result table, which the readout resolves when it is given the table), and its vias (next hop, interface, VRF, weight, label, VNI for an EVPN via) with the
// RIB stand-in's verdict on each. It reads the RIB stand-in's route, via-set and via tables and the
// VRF agent's names; it writes nothing and owns nothing but its reference to the agent.
//
// Order: routes by prefix, then protocol; the vias of a route by next hop, interface, VRF, label
// and VNI. The same tables always read out the same, whatever the ids and hash orders.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "foundations/rib/IgpResultTable.h"
#include "platform/RibAgent.h"

namespace Platform {

class RibReadout {
 public:
  struct InstalledVia {
    Ondex::IpGenAddr nextHop;  // the VTEP for an EVPN via
    Ondex::IntfId intf;
    L3::VrfName vrf;
    float weight = 0;
    std::optional<std::uint32_t> label;
    std::optional<std::uint32_t> vni;
    bool resolved = false;
    friend bool operator==(InstalledVia const&, InstalledVia const&) = default;
  };
  struct InstalledRoute {
    Ondex::IpGenPrefix prefix;
    Routing::Rib::RoutingProtocol protocol;
    std::uint8_t preference = 0;
    Routing::RouteMetric metric = 0;
    std::uint8_t flags = 0;
    std::uint8_t viaSetFlags = 0;
    std::uint8_t fecType = 0;
    std::uint32_t tag = 0;
    std::vector<std::uint32_t> communities;
    std::vector<InstalledVia> vias;
    // Held by the RIB for an agent that restarts gracefully, not written again yet.
    bool stale = false;
    friend bool operator==(InstalledRoute const&, InstalledRoute const&) = default;
  };

  explicit RibReadout(Quill::Ptr<RibAgent const> agent,
                      Quill::Ptr<Routing::Bgp::IgpResultTable const> igpResults = nullptr)
      : agent_(std::move(agent)), igpResults_(std::move(igpResults)) {}

  // The routes of the VRF (by name) and family; empty when the VRF has no id.
  [[nodiscard]] std::vector<InstalledRoute> routes(L3::VrfName const& vrf, Ondex::AddressFamily af) const;

 private:
  [[nodiscard]] InstalledVia viaOf(Routing::Rib::ViaKey const& key) const;

  void tagsOf(Routing::Rib::Route::Body const& body, InstalledRoute& route) const;

  Quill::Ptr<RibAgent const> agent_;
  Quill::Ptr<Routing::Bgp::IgpResultTable const> igpResults_;
};

}  // namespace Platform
