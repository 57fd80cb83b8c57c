// The interface tables of one VRF, as the interface agent publishes them: per interface, whether
// routing is enabled on it in the data path, and the tables of all VRFs by name. Written by the
// interface agent; read by the route machines.
//
// IPv4 (namespace Ip) and IPv6 (namespace Ip6) have tables of one shape, declared once below; only
// the names differ, and they are the interface agent's:
//   Ip::IpIntfStatus   in Ip::VrfIpIntfStatus::ipIntfStatus    in Ip::Status::vrfIpIntfStatus
//   Ip6::IntfStatus    in Ip6::VrfIp6IntfStatus::intfStatus    in Ip6::Status::vrfIp6IntfStatus
// A VRF without interfaces of a family may have no table of that family.
#pragma once

#include "foundations/runtime/Attribute.h"
#include "foundations/types/IntfId.h"
#include "foundations/types/VrfName.h"

// One family's three classes: the record of an interface (Record), a VRF's table of them
// (VrfTable, collection `records`) and the tables of every VRF (Status, collection `vrfTables`).
#define BOWLINE_IP_INTF_STATUS_TABLES(Record, VrfTable, records, vrfTables)                          \
  class Record : public Zel::Entity {                                                                \
   public:                                                                                           \
    ZEL_CONST(Ondex::IntfId, intfId)                                                                 \
    ZEL_ATTR(bool, dpRoutingEnabled, 130)                                                            \
                                                                                                     \
   protected:                                                                                        \
    friend struct Zel::Factory;                                                                      \
    explicit Record(Ondex::IntfId intfId) : intfId_(intfId) {}                                       \
  };                                                                                                 \
                                                                                                     \
  class VrfTable : public Zel::Entity {                                                              \
   public:                                                                                           \
    static Quill::Ptr<VrfTable> VrfTable##Is() { return Zel::make<VrfTable>(); }                     \
    ZEL_OWNED_MAP(Ondex::IntfId, Record, records, 130)                                               \
    /* Whether routing is enabled on the interface; false when it has no record. */                  \
    [[nodiscard]] bool dpRoutingEnabledOn(Ondex::IntfId intfId) const {                              \
      auto const record = records(intfId);                                                           \
      return record && record->dpRoutingEnabled();                                                   \
    }                                                                                                \
                                                                                                     \
   protected:                                                                                        \
    friend struct Zel::Factory;                                                                      \
    VrfTable() = default;                                                                            \
  };                                                                                                 \
                                                                                                     \
  class Status : public Zel::Entity {                                                                \
   public:                                                                                           \
    static Quill::Ptr<Status> StatusIs() { return Zel::make<Status>(); }                             \
    ZEL_MAP(L3::VrfName, Quill::Ptr<VrfTable>, vrfTables, 131)                                       \
                                                                                                     \
   protected:                                                                                        \
    friend struct Zel::Factory;                                                                      \
    Status() = default;                                                                              \
  };

namespace Ip {
BOWLINE_IP_INTF_STATUS_TABLES(IpIntfStatus, VrfIpIntfStatus, ipIntfStatus, vrfIpIntfStatus)
}  // namespace Ip

namespace Ip6 {
BOWLINE_IP_INTF_STATUS_TABLES(IntfStatus, VrfIp6IntfStatus, intfStatus, vrfIp6IntfStatus)
}  // namespace Ip6

#undef BOWLINE_IP_INTF_STATUS_TABLES
