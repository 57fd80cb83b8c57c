// Routing::Rib::TableSm<Table>: the RIB side's machine on one table this process writes for it (an
// IP or EVPN via table, a via-set table). The RIB agent keeps the table's resolution state with it;
// this process only builds it on the tables it drives (a per-VRF via table of a container, the
// all-VRF tables of a protocol root) and holds it while the table lives.
#pragma once

#include "foundations/rib/EvpnViaConfig.h"
#include "foundations/rib/IpViaConfig.h"
#include "foundations/rib/ViaSetConfig.h"
#include "foundations/runtime/StateMachine.h"

namespace Routing::Rib {

template <class Table>
class TableSm : public Zel::StateMachine<TableSm<Table>> {
 public:
  [[nodiscard]] static Quill::Ptr<TableSm> TableSmIs(Quill::Ptr<Table> table) {
    return Zel::make<TableSm>(std::move(table));
  }
  ZEL_CONST(Quill::Ptr<Table>, table)

 protected:
  friend struct Zel::Factory;
  explicit TableSm(Quill::Ptr<Table> table) : table_(std::move(table)) {}
};

namespace Ip {
using ViaConfigSm = TableSm<ViaConfig>;
}
namespace Evpn {
using ViaConfigSm = TableSm<ViaConfig>;
}
using ViaSetConfigSm = TableSm<ViaSetConfig>;

}  // namespace Routing::Rib
