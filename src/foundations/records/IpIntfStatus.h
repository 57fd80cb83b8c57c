// The interface tables of one VRF, as the interface agent publishes them: per interface, whether
// routing is enabled on it in the data path, and the tables of all VRFs by name. IPv4 and IPv6 come
// from tables of the same shape. Written by the interface agent; read by the route machines.
#pragma once

#include "foundations/runtime/Attribute.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/VrfName.h"

namespace Ip {

class IpIntfStatus : public Zel::Entity {
 public:
  ZEL_CONST(Ondex::IntfId, intfId)
  ZEL_ATTR(bool, dpRoutingEnabled, 130)

 protected:
  friend struct Zel::Factory;
  explicit IpIntfStatus(Ondex::IntfId intfId) : intfId_(intfId) {}
};

class VrfIpIntfStatus : public Zel::Entity {
 public:
  static Quill::Ptr<VrfIpIntfStatus> VrfIpIntfStatusIs() { return Zel::make<VrfIpIntfStatus>(); }
  ZEL_OWNED_MAP(Ondex::IntfId, IpIntfStatus, ipIntfStatus, 130)

 protected:
  friend struct Zel::Factory;
  VrfIpIntfStatus() = default;
};

// The interface tables of every VRF, by VRF name; a VRF without interfaces may have no entry.
class Status : public Zel::Entity {
 public:
  static Quill::Ptr<Status> StatusIs() { return Zel::make<Status>(); }
  ZEL_MAP(L3::VrfName, Quill::Ptr<VrfIpIntfStatus>, vrfIpIntfStatus, 131)

 protected:
  friend struct Zel::Factory;
  Status() = default;
};

}  // namespace Ip

namespace Ip6 {

class IntfStatus : public Zel::Entity {
 public:
  ZEL_CONST(Ondex::IntfId, intfId)
  ZEL_ATTR(bool, dpRoutingEnabled, 130)

 protected:
  friend struct Zel::Factory;
  explicit IntfStatus(Ondex::IntfId intfId) : intfId_(intfId) {}
};

class VrfIp6IntfStatus : public Zel::Entity {
 public:
  static Quill::Ptr<VrfIp6IntfStatus> VrfIp6IntfStatusIs() { return Zel::make<VrfIp6IntfStatus>(); }
  ZEL_OWNED_MAP(Ondex::IntfId, IntfStatus, intfStatus, 130)

 protected:
  friend struct Zel::Factory;
  VrfIp6IntfStatus() = default;
};

class Status : public Zel::Entity {
 public:
  static Quill::Ptr<Status> StatusIs() { return Zel::make<Status>(); }
  ZEL_MAP(L3::VrfName, Quill::Ptr<VrfIp6IntfStatus>, vrfIp6IntfStatus, 131)

 protected:
  friend struct Zel::Factory;
  Status() = default;
};

}  // namespace Ip6
