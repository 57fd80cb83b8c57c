// A RouteConfigSm with every input it reads, in-process: the VRF maps, interface tables, route
// lists, leaked routes and settings, and readers that show what it wrote into the status store and
// the via table as text. Tests build one, change inputs, run the scheduler and read.
#pragma once

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/records/AllVrfReadyStatus.h"
#include "foundations/records/IpIntfStatus.h"
#include "foundations/runtime/TaskScheduler.h"
#include "protocol/ProtocolIntfSm.h"
#include "routecache/RouteCacheRouteHelperSm.h"
#include "static/RouteConfigSm.h"

namespace BowlineTest {

inline Ondex::IpGenAddr addr(std::string const& text) { return *Ondex::IpGenAddr::fromString(text); }
inline Ondex::IpGenPrefix pfx(std::string const& text) { return *Ondex::IpGenPrefix::fromString(text); }
inline Routing::RouteKey routeKey(std::string const& prefix, unsigned pref = 1) {
  return Routing::RouteKey(pfx(prefix), Routing::RoutePreference(static_cast<std::uint8_t>(pref)));
}

class StaticRouteHarness {
 public:
  using RouteConfigSm = Routing::Static::RouteConfigSm;

  // A VRF of its own, or (with `shareWith`) one more VRF of the same switch: the VRF maps, interface
  // tables, status directory, via table and egress helper are then the other harness's.
  explicit StaticRouteHarness(Ondex::AddressFamily af = Ondex::AddressFamily::ipv4, char const* vrf = "default",
                              std::uint32_t vrfId = 0, StaticRouteHarness const* shareWith = nullptr)
      : vrfName(vrf), vrfId(vrfId), af(af) {
    using namespace Routing;
    if (shareWith) {
      nameMap = shareWith->nameMap;
      vrfNames = shareWith->vrfNames;
      statusDir = shareWith->statusDir;
      ipViaConfig = shareWith->ipViaConfig;
      ipStatus = shareWith->ipStatus;
      ip6Status = shareWith->ip6Status;
      egress = shareWith->egress;
    } else {
      nameMap = Vrf::VrfIdMap::NameToIdMap::NameToIdMapIs();
      vrfNames = Vrf::VrfIdMap::NameToIdMapWrapper::NameToIdMapWrapperIs();
      vrfNames->nameToIdMapIs(nameMap);
      statusDir = Protocol::RouteStatusDir::RouteStatusDirIs();
      ipViaConfig = Rib::Ip::ViaConfig::ViaConfigIs(Rib::RoutingProtocol::staticConfig(), Rib::Transport::fromAf(af));
      ipStatus = Ip::Status::StatusIs();
      ip6Status = Ip6::Status::StatusIs();
    }
    nameMap->vrfNameToIdIs(vrfName, vrfId);
    status = statusDir->statusIs(Protocol::RouteStatusKey{vrfId, af});
    intfTable = Ip::VrfIpIntfStatus::VrfIpIntfStatusIs();
    ipStatus->vrfIpIntfStatusIs(vrfName, intfTable);
    intfStatus = Protocol::Ipv4IntfStatus::Ipv4IntfStatusIs(intfTable);
    intfSm = Protocol::IntfSm::IntfSmIs(intfStatus);
    readyDir = Protocol::AllVrfReadyStatus::AllVrfReadyStatusIs();
    ready = readyDir->vrfReadyStatusIs(vrfName);
    leak = Protocol::LeakRouteConfig::LeakRouteConfigIs(Protocol::VrfIdAf(vrfId, af));
    mpls = Mpls::Config::ConfigIs();
    general = General::Config::ConfigIs();
    resRib = Static::ResRibProfileContainer::ResRibProfileContainerIs("default");
    if (!egress) egress = Static::AllEgressVrfIntfStatusHelperSm::AllEgressVrfIntfStatusHelperSmIs(ipStatus, ip6Status);
    config = RouteList::RouteListIs();
    dynamic = RouteList::RouteListIs();
  }

  ~StaticRouteHarness() { stop(); }

  // Builds the machine from the inputs as they stand now.
  void start(Halyard::TaskScheduler* scheduler, Routing::Rib::RoutingProtocol protocol =
                                                     Routing::Rib::RoutingProtocol::staticConfig()) {
    RouteConfigSm::Inputs in;
    in.containerKey = Routing::Protocol::ContainerKey(vrfName, af);
    in.vrfNameStatus = vrfNames;
    in.vrfId = vrfId;
    in.status = status;
    in.ipViaConfig = ipViaConfig;
    in.auxIpViaConfig = auxIpViaConfig;
    in.intfStatus = intfStatus;
    in.grState = grState;
    in.vrfReadyStatus = grState ? ready : nullptr;
    in.scheduler = scheduler;
    in.allEgressVrfIntfStatusHelperSm = egress;
    in.routingProtocol = protocol;
    in.leakConfig = leak;
    in.configTagStatus = configTagStatus;
    in.configTagIdState = configTagIdState;
    in.mplsConfig = mpls;
    in.routingGeneralConfig = general;
    in.resRibProfileContainer = resRib;
    in.srConfig = config;
    in.srConfigDynamic = dynamic;
    in.riConfigByUser = configByUser;
    in.srTaggedConfig = tagged;
    sm = RouteConfigSm::RouteConfigSmIs(in);
  }
  void stop() { sm = nullptr; }

  void intfIs(char const* name, bool up = true) {
    intfTable->ipIntfStatusIs(Ondex::IntfId(name))->dpRoutingEnabledIs(up);
  }
  void intfDel(char const* name) { intfTable->ipIntfStatusDel(Ondex::IntfId(name)); }

  // A route of the list with one via per (hop, intf) pair given; "" for none.
  Quill::Ptr<Routing::Route> routeIs(Routing::RouteList& list, std::string const& prefix, unsigned pref = 1,
                                     Routing::RouteType type = Routing::RouteType::forward) {
    return list.routeIs(routeKey(prefix, pref), type);
  }
  static Routing::Via via(std::string const& hop, std::string const& intf = "") {
    Routing::Via v(hop.empty() ? Ondex::IpGenAddr() : addr(hop));
    if (!intf.empty()) v.intfIdIs(Ondex::IntfId(intf.c_str()));
    return v;
  }

  // The preferences of a prefix in the status store; empty when the prefix is absent.
  [[nodiscard]] std::vector<unsigned> prefsOf(std::string const& prefix) const {
    std::vector<unsigned> out;
    auto route = status->route(pfx(prefix));
    if (!route) return out;
    for (auto it = route->routePrefIteratorConst(); it; it.advance()) out.push_back(it.key().value());
    return out;
  }
  // The vias of one preference as "type: content", sorted.
  [[nodiscard]] std::multiset<std::string> viasOf(std::string const& prefix, unsigned pref = 1) const {
    std::multiset<std::string> out;
    auto route = status->route(pfx(prefix));
    if (!route) return out;
    auto routePref = route->routePref(Routing::RoutePreference(static_cast<std::uint8_t>(pref)));
    if (!routePref) return out;
    for (auto type = routePref->dedupViaKeyByViaTypeIteratorConst(); type; type.advance()) {
      for (auto it = type.value()->dedupViaKeyIteratorConst(); it; it.advance()) {
        auto const* table = it.key().transport() == ipViaConfig->transport() ? ipViaConfig.get() : auxIpViaConfig.get();
        std::ostringstream os;
        os << unsigned(type.key().viaType()) << ": ";
        if (auto const* v = table ? table->viaFind(it.key()) : nullptr)
          os << v->content();
        else
          os << "missing " << it.key();
        if (it.key().vrfId() != vrfId) os << " vrf " << it.key().vrfId();
        out.insert(os.str());
      }
    }
    return out;
  }
  [[nodiscard]] Quill::Ptr<Routing::Protocol::RoutePref> routePref(std::string const& prefix, unsigned pref = 1) const {
    auto route = status->route(pfx(prefix));
    return route ? route->routePref(Routing::RoutePreference(static_cast<std::uint8_t>(pref))) : nullptr;
  }

  L3::VrfName vrfName;
  Vrf::VrfIdMap::VrfId vrfId;
  Ondex::AddressFamily af;
  Quill::Ptr<Vrf::VrfIdMap::NameToIdMap> nameMap;
  Quill::Ptr<Vrf::VrfIdMap::NameToIdMapWrapper> vrfNames;
  Quill::Ptr<Routing::Protocol::RouteStatusDir> statusDir;
  Quill::Ptr<Routing::Protocol::Status> status;
  Quill::Ptr<Routing::Rib::Ip::ViaConfig> ipViaConfig;
  Quill::Ptr<Routing::Rib::Ip::ViaConfig> auxIpViaConfig;
  Quill::Ptr<Ip::VrfIpIntfStatus> intfTable;
  Quill::Ptr<Ip::Status> ipStatus;
  Quill::Ptr<Ip6::Status> ip6Status;
  Quill::Ptr<Routing::Protocol::Ipv4IntfStatus> intfStatus;
  Quill::Ptr<Routing::Protocol::IntfSm> intfSm;
  Quill::Ptr<Routing::Protocol::AllVrfReadyStatus> readyDir;
  Quill::Ptr<Routing::Protocol::VrfReadyStatus> ready;
  Quill::Ptr<Routing::Protocol::GrState> grState;
  Quill::Ptr<Routing::Protocol::LeakRouteConfig> leak;
  Quill::Ptr<Mpls::Config> mpls;
  Quill::Ptr<Routing::General::Config> general;
  Quill::Ptr<Routing::Static::ResRibProfileContainer> resRib;
  Quill::Ptr<ConfigTag::ConfigTagStatus> configTagStatus;
  Quill::Ptr<ConfigTag::ConfigTagIdState> configTagIdState;
  Quill::Ptr<Routing::Static::AllEgressVrfIntfStatusHelperSm> egress;
  Quill::Ptr<Routing::RouteList> config;
  Quill::Ptr<Routing::RouteList> dynamic;
  Quill::Ptr<Routing::Input::ConfigByUser> configByUser;
  Quill::Ptr<Routing::VrfRouteListTaggedConfig> tagged;
  Quill::Ptr<RouteConfigSm> sm;

  // An interface of another VRF's table of this harness's family (IPv4 or IPv6 interface status),
  // the table created on first use; `vrfIntfTableDel` takes the VRF's table away.
  void vrfIntfIs(char const* vrf, char const* intf, bool up = true) {
    if (af == Ondex::AddressFamily::ipv6) {
      auto table = ip6Status->vrfIp6IntfStatus(vrf);
      if (!table) ip6Status->vrfIp6IntfStatusIs(vrf, table = Ip6::VrfIp6IntfStatus::VrfIp6IntfStatusIs());
      table->intfStatusIs(Ondex::IntfId(intf))->dpRoutingEnabledIs(up);
      return;
    }
    auto table = ipStatus->vrfIpIntfStatus(vrf);
    if (!table) ipStatus->vrfIpIntfStatusIs(vrf, table = Ip::VrfIpIntfStatus::VrfIpIntfStatusIs());
    table->ipIntfStatusIs(Ondex::IntfId(intf))->dpRoutingEnabledIs(up);
  }
  void vrfIntfDel(char const* vrf, char const* intf) {
    if (af == Ondex::AddressFamily::ipv6) {
      if (auto table = ip6Status->vrfIp6IntfStatus(vrf)) table->intfStatusDel(Ondex::IntfId(intf));
    } else if (auto table = ipStatus->vrfIpIntfStatus(vrf)) {
      table->ipIntfStatusDel(Ondex::IntfId(intf));
    }
  }
  void vrfIntfTableDel(char const* vrf) {
    if (af == Ondex::AddressFamily::ipv6)
      ip6Status->vrfIp6IntfStatusDel(vrf);
    else
      ipStatus->vrfIpIntfStatusDel(vrf);
  }
};

// The addresses of a scenario in one family, so that one body runs for IPv4 and IPv6: next hops
// (192.0.2.i, 2001:db8::i), route prefixes (203.0.113.8i/29, 2001:db8:10i::/48) and the prefix
// routed to the CPU.
struct Family {
  Ondex::AddressFamily af;
  char const* name;

  [[nodiscard]] bool v6() const { return af == Ondex::AddressFamily::ipv6; }
  // The i-th next hop, i < 256.
  [[nodiscard]] std::string hop(unsigned i) const { return v6() ? "2001:db8::" + hex(i) : "192.0.2." + std::to_string(i); }
  // The i-th route prefix, i < 32.
  [[nodiscard]] std::string net(unsigned i) const {
    return v6() ? "2001:db8:" + hex(0x100 + i) + "::/48" : "203.0.113." + std::to_string(8 * i) + "/29";
  }
  // The host prefix of the i-th next hop.
  [[nodiscard]] std::string host(unsigned i) const { return hop(i) + (v6() ? "/128" : "/32"); }
  // The prefix routed to the CPU, and one a bit longer that is not.
  [[nodiscard]] std::string toCpu() const { return v6() ? "::ffff:127.0.0.0/104" : "127.0.0.0/8"; }
  [[nodiscard]] std::string nearToCpu() const { return v6() ? "::ffff:127.0.0.0/105" : "127.0.0.0/9"; }

 private:
  static std::string hex(unsigned i) {
    std::ostringstream os;
    os << std::hex << i;
    return os.str();
  }
};

// The text viasOf gives for a via: its type, next hop and interface, then what follows them.
inline std::string viaText(unsigned type, std::string const& hop, std::string const& intf = "",
                           std::string const& rest = " weight 0") {
  return std::to_string(type) + ": nextHop " + hop + " intf " + intf + rest;
}

inline Family const kIpv4{Ondex::AddressFamily::ipv4, "ipv4"};
inline Family const kIpv6{Ondex::AddressFamily::ipv6, "ipv6"};
// GoogleTest prints a parameter by its name (not its bytes) in test names and messages.
inline void PrintTo(Family const& family, std::ostream* os) { *os << family.name; }
// For INSTANTIATE_TEST_SUITE_P: the family's name as the test's suffix.
inline std::string familyName(::testing::TestParamInfo<Family> const& info) { return info.param.name; }

}  // namespace BowlineTest
