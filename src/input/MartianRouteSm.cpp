#include "input/MartianRouteSm.h"

#include <array>
#include <cstdlib>
#include <string>

#include "foundations/runtime/Exception.h"
#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("RouteInput::MartianRouteSm");

namespace Routing::Martian {

namespace {

struct Row {
  char const* prefix;
  RouteType routeType;
};

constexpr std::array<Row, 2> kIpv4Rows{{{"0.0.0.0/8", RouteType::drop}, {"127.0.0.0/8", RouteType::forward}}};
constexpr std::array<Row, 3> kIpv6Rows{{{"::/96", RouteType::drop},
                                        {"fe80::/10", RouteType::forward},
                                        {"::ffff:127.0.0.0/104", RouteType::forward}}};

bool doNotInstall() {
  return std::getenv(std::string(MartianRouteSm::doNotInstallMartianEnvVar).c_str()) != nullptr;
}

template <std::size_t N>
void addRows(MartianRouteSm& sm, std::array<Row, N> const& rows) {
  if (doNotInstall()) {
    TRACE(0, "doNotInstallMartian is true");
    return;
  }
  for (Row const& row : rows) sm.doAddMartianRoute(*Ondex::IpGenPrefix::fromString(row.prefix), row.routeType);
}

// Deletes every route of the list that is not one of the rows (compared as keys of preference 1).
template <std::size_t N>
void cleanup(RouteList& config, std::array<Row, N> const& rows, char const* name) {
  for (auto it = config.routeIterator(); it; it.advance()) {
    RouteKey const key = it.key();
    bool keep = false;
    for (Row const& row : rows)
      keep = keep || key == RouteKey(*Ondex::IpGenPrefix::fromString(row.prefix), MartianRouteSm::preference);
    if (keep) continue;
    TRACE(6, name << "(" << key << "), deleting route");
    config.routeDel(key);
  }
}

}  // namespace

MartianRouteSm::MartianRouteSm(Ondex::AddressFamily af, L3::VrfName const& vrfName, Quill::Ptr<RouteList> config)
    : af_(af), vrfName_(vrfName), config_(std::move(config)) {
  handleInitialized();
}

void MartianRouteSm::handleInitialized() {
  TRACE(8, "Vrf: " << vrfName_ << ", handleInitialized af " << af_);
  initializedIs(true);
  if (af_ == Ondex::AddressFamily::ipv4) {
    doAddIpv4MartianRoutes();
    doCleanupIpv4Config();
  } else if (af_ == Ondex::AddressFamily::ipv6) {
    doAddIpv6MartianRoutes();
    doCleanupIpv6Config();
  } else {
    QUILL_ASSERT(false, "false");
  }
}

void MartianRouteSm::doAddMartianRoute(Ondex::IpGenPrefix const& prefix, RouteType routeType) {
  TRACE(6, "doAddMartianRoute(" << prefix << "), Route Type: " << routeType);
  config_->routeIs(RouteKey(prefix, preference), routeType);
}

void MartianRouteSm::doAddIpv4MartianRoutes() {
  TRACE(8, "doAddIpv4MartianRoutes");
  addRows(*this, kIpv4Rows);
}

void MartianRouteSm::doAddIpv6MartianRoutes() {
  TRACE(8, "doAddIpv6MartianRoutes");
  addRows(*this, kIpv6Rows);
}

void MartianRouteSm::doCleanupIpv4Config() { cleanup(*config_, kIpv4Rows, "doCleanupIpv4Config"); }

void MartianRouteSm::doCleanupIpv6Config() { cleanup(*config_, kIpv6Rows, "doCleanupIpv6Config"); }

Quill::Ptr<MartianRouteSm> martianRouteSmFactory(Ondex::AddressFamily af, L3::VrfName const& vrfName,
                                                 Quill::Ptr<RouteList> config) {
  return MartianRouteSm::MartianRouteSmIs(af, vrfName, std::move(config));
}

}  // namespace Routing::Martian
