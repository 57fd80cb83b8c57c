#include "platform/InterfaceAgent.h"

#include <algorithm>
#include <map>

#include "foundations/runtime/Trace.h"

ZEL_TRACE_FACILITY("Platform::InterfaceAgent");

namespace Platform {

bool InterfaceAgent::Interface::hasFamily(Ondex::AddressFamily af) const {
  return std::any_of(addrs.begin(), addrs.end(), [af](IntfAddr const& a) { return a.addr.af() == af; });
}

InterfaceAgent::InterfaceAgent() : ipStatus_(Ip::Status::StatusIs()), ip6Status_(Ip6::Status::StatusIs()) {}

void InterfaceAgent::intfIs(Interface intf) {
  if (intf.intfId.empty()) {
    TRACE(0, "intfIs: an interface without a name, skipped");
    return;
  }
  std::erase_if(intf.addrs, [&](IntfAddr const& a) {
    bool const bad = !a.addr.af().isSet() || a.len > a.addr.af().bits();
    if (bad) TRACE(0, "Vrf: " << intf.vrf << ", intfIs " << intf.intfId << " bad address " << a.addr << "/" << unsigned(a.len));
    return bad;
  });
  L3::VrfName const vrf = intf.vrf;
  auto [it, inserted] = intfs_.try_emplace(intf.intfId, intf);
  if (!inserted) {
    L3::VrfName const oldVrf = it->second.vrf;
    it->second = std::move(intf);
    if (oldVrf != vrf) syncVrf(oldVrf);
  }
  TRACE(2, "Vrf: " << vrf << ", intfIs " << it->first);
  syncVrf(vrf);
}

bool InterfaceAgent::intfDel(Ondex::IntfId intfId) {
  auto it = intfs_.find(intfId);
  if (it == intfs_.end()) return false;
  L3::VrfName const vrf = it->second.vrf;
  intfs_.erase(it);
  TRACE(2, "Vrf: " << vrf << ", intfDel " << intfId);
  syncVrf(vrf);
  return true;
}

bool InterfaceAgent::routingEnabledIs(Ondex::IntfId intfId, bool enabled) {
  return flagIs(intfId, &Interface::routingEnabled, enabled, "routingEnabledIs");
}

bool InterfaceAgent::operUpIs(Ondex::IntfId intfId, bool up) { return flagIs(intfId, &Interface::operUp, up, "operUpIs"); }

bool InterfaceAgent::flagIs(Ondex::IntfId intfId, bool Interface::*flag, bool value, char const* what) {
  auto it = intfs_.find(intfId);
  if (it == intfs_.end() || it->second.*flag == value) return false;
  it->second.*flag = value;
  TRACE(2, "Vrf: " << it->second.vrf << ", " << what << " " << intfId << " " << value);
  syncVrf(it->second.vrf);
  return true;
}

InterfaceAgent::Interface const* InterfaceAgent::intf(Ondex::IntfId intfId) const {
  auto it = intfs_.find(intfId);
  return it == intfs_.end() ? nullptr : &it->second;
}

std::vector<InterfaceAgent::Interface> InterfaceAgent::intfs() const {
  std::vector<Interface> out;
  out.reserve(intfs_.size());
  for (auto const& [id, intf] : intfs_) out.push_back(intf);
  return out;
}

std::vector<InterfaceAgent::Connected> InterfaceAgent::connectedSubnets(L3::VrfName const& vrf,
                                                                        Ondex::AddressFamily af) const {
  std::vector<Connected> out;
  for (auto const& [id, intf] : intfs_) {
    if (intf.vrf != vrf || !intf.usable()) continue;
    for (IntfAddr const& a : intf.addrs) {
      if (a.addr.af() == af) out.push_back(Connected{a.subnet(), id});
    }
  }
  return out;
}

namespace {

// One family's tables by the interface agent's names for them (see foundations/records/IpIntfStatus.h).
template <class Status>
struct FamilyTables;
#define BOWLINE_FAMILY_TABLES(Ns, VrfTable, records, vrfTables)                                                  \
  template <>                                                                                                    \
  struct FamilyTables<Ns::Status> {                                                                              \
    static Quill::Ptr<Ns::VrfTable> table(Ns::Status& s, L3::VrfName const& vrf) { return s.vrfTables(vrf); }   \
    static Quill::Ptr<Ns::VrfTable> newTable() { return Ns::VrfTable::VrfTable##Is(); }                          \
    static void tableIs(Ns::Status& s, L3::VrfName const& vrf, Quill::Ptr<Ns::VrfTable> const& t) {              \
      s.vrfTables##Is(vrf, t);                                                                                   \
    }                                                                                                            \
    static void tableDel(Ns::Status& s, L3::VrfName const& vrf) { s.vrfTables##Del(vrf); }                       \
    static auto recordIs(Ns::VrfTable& t, Ondex::IntfId id) { return t.records##Is(id); }                        \
    static auto recordWalk(Ns::VrfTable& t) { return t.records##Iterator(); }                                    \
    static void recordDel(Ns::VrfTable& t, Ondex::IntfId id) { t.records##Del(id); }                             \
  };
BOWLINE_FAMILY_TABLES(Ip, VrfIpIntfStatus, ipIntfStatus, vrfIpIntfStatus)
BOWLINE_FAMILY_TABLES(Ip6, VrfIp6IntfStatus, intfStatus, vrfIp6IntfStatus)
#undef BOWLINE_FAMILY_TABLES

// Publishes a VRF's table of one family with exactly the interfaces given (routing enabled or
// not), or removes it when there are none. A table is filled before it is published, so a reader
// never sees it half-built.
template <class Status>
void publishFamily(Status& status, L3::VrfName const& vrf, std::map<Ondex::IntfId, bool> const& enabled) {
  using Tables = FamilyTables<Status>;
  if (enabled.empty()) {
    Tables::tableDel(status, vrf);
    return;
  }
  auto table = Tables::table(status, vrf);
  if (!table) table = Tables::newTable();
  for (auto const& [id, on] : enabled) Tables::recordIs(*table, id)->dpRoutingEnabledIs(on);
  for (auto it = Tables::recordWalk(*table); it; it.advance()) {
    if (!enabled.count(it.key())) Tables::recordDel(*table, it.key());
  }
  Tables::tableIs(status, vrf, table);
}

}  // namespace

void InterfaceAgent::syncVrf(L3::VrfName const& vrf) {
  std::map<Ondex::IntfId, bool> v4, v6;
  for (auto const& [id, intf] : intfs_) {
    if (intf.vrf != vrf) continue;
    if (intf.hasFamily(Ondex::AddressFamily::ipv4)) v4.emplace(id, intf.routingEnabled);
    if (intf.hasFamily(Ondex::AddressFamily::ipv6)) v6.emplace(id, intf.routingEnabled);
  }
  publishFamily(*ipStatus_, vrf, v4);
  publishFamily(*ip6Status_, vrf, v6);
  vrfVersionIs(vrf, vrfVersion(vrf) + 1);
}

}  // namespace Platform
