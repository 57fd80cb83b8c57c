// Routing::Rib::Ip::ViaConfigSm: the RIB side's machine on one IP via table. The RIB agent keeps
// the table's resolution state with it; this process only builds it on the tables it drives (a
// per-VRF table of a container, the all-VRF tables of a root) and holds it while the table lives.
#pragma once

#include "foundations/rib/IpViaConfig.h"
#include "foundations/runtime/StateMachine.h"

namespace Routing::Rib::Ip {

class ViaConfigSm : public Zel::StateMachine<ViaConfigSm> {
 public:
  [[nodiscard]] static Quill::Ptr<ViaConfigSm> ViaConfigSmIs(Quill::Ptr<ViaConfig> viaConfig) {
    return Zel::make<ViaConfigSm>(std::move(viaConfig));
  }
  ZEL_CONST(Quill::Ptr<ViaConfig>, viaConfig)

 protected:
  friend struct Zel::Factory;
  explicit ViaConfigSm(Quill::Ptr<ViaConfig> viaConfig) : viaConfig_(std::move(viaConfig)) {}
};

}  // namespace Routing::Rib::Ip
