#include "platform/InterfaceAgent.h"

#include <algorithm>

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
  auto it = intfs_.find(intfId);
  if (it == intfs_.end() || it->second.routingEnabled == enabled) return false;
  it->second.routingEnabled = enabled;
  TRACE(2, "Vrf: " << it->second.vrf << ", routingEnabledIs " << intfId << " " << enabled);
  syncVrf(it->second.vrf);
  return true;
}

bool InterfaceAgent::operUpIs(Ondex::IntfId intfId, bool up) {
  auto it = intfs_.find(intfId);
  if (it == intfs_.end() || it->second.operUp == up) return false;
  it->second.operUp = up;
  TRACE(2, "Vrf: " << it->second.vrf << ", operUpIs " << intfId << " " << up);
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

void InterfaceAgent::syncVrf(L3::VrfName const& vrf) {
  std::map<Ondex::IntfId, bool> v4, v6;
  for (auto const& [id, intf] : intfs_) {
    if (intf.vrf != vrf) continue;
    if (intf.hasFamily(Ondex::AddressFamily::ipv4)) v4.emplace(id, intf.routingEnabled);
    if (intf.hasFamily(Ondex::AddressFamily::ipv6)) v6.emplace(id, intf.routingEnabled);
  }
  // A table is filled before it is published, so a reader never sees it half-built.
  if (v4.empty()) {
    ipStatus_->vrfIpIntfStatusDel(vrf);
  } else {
    auto table = ipStatus_->vrfIpIntfStatus(vrf);
    if (!table) table = Ip::VrfIpIntfStatus::VrfIpIntfStatusIs();
    for (auto const& [id, enabled] : v4) table->ipIntfStatusIs(id)->dpRoutingEnabledIs(enabled);
    for (auto it = table->ipIntfStatusIterator(); it; it.advance()) {
      if (!v4.count(it.key())) table->ipIntfStatusDel(it.key());
    }
    ipStatus_->vrfIpIntfStatusIs(vrf, table);
  }
  if (v6.empty()) {
    ip6Status_->vrfIp6IntfStatusDel(vrf);
  } else {
    auto table = ip6Status_->vrfIp6IntfStatus(vrf);
    if (!table) table = Ip6::VrfIp6IntfStatus::VrfIp6IntfStatusIs();
    for (auto const& [id, enabled] : v6) table->intfStatusIs(id)->dpRoutingEnabledIs(enabled);
    for (auto it = table->intfStatusIterator(); it; it.advance()) {
      if (!v6.count(it.key())) table->intfStatusDel(it.key());
    }
    ip6Status_->vrfIp6IntfStatusIs(vrf, table);
  }
  vrfVersionIs(vrf, vrfVersion(vrf) + 1);
}

}  // namespace Platform
