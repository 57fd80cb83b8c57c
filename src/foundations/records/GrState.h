// Routing::Protocol::GrState: whether this start is a graceful restart (fixed when the state is
// made) and whether the hosting agent has said that ready verification may start. Created by the
// protocol root on the hosting agent's grStateIs(); the agent writes startReadyVerification
// (id 131) and the root and the route machines watch it.
#pragma once

#include "foundations/runtime/Attribute.h"

namespace Routing::Protocol {

class GrState : public Zel::Entity {
 public:
  [[nodiscard]] static Quill::Ptr<GrState> GrStateIs(bool gracefulRestart);

  ZEL_CONST(bool, gracefulRestart)
  ZEL_ATTR(bool, startReadyVerification, 131)

  // An owning attribute keeps the state it holds when asked again with the same argument.
  [[nodiscard]] bool zelSameArgs(bool gracefulRestart) const noexcept { return gracefulRestart == gracefulRestart_; }

 protected:
  friend struct Zel::Factory;
  explicit GrState(bool gracefulRestart) : gracefulRestart_(gracefulRestart) {}
};

// The hosting agent's means of making one.
[[nodiscard]] Quill::Ptr<GrState> grStateFactory(bool gracefulRestart);

}  // namespace Routing::Protocol
