// Routing::Input::RootSmBase: the common inputs of a route-input root (the process's stores and
// mount groups, the table limits, the agent's name and redundancy state). It only holds them; the
// roots a hosting agent derives from it read them. Owned by the hosting agent.
#pragma once

#include <cstdint>

#include "foundations/records/RedundancyStatus.h"
#include "foundations/runtime/RootMounts.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/String.h"

namespace Routing::Input {

class RootSmBase : public Zel::StateMachine<RootSmBase>, public Zel::RootMounts {
 public:
  [[nodiscard]] static Quill::Ptr<RootSmBase> RootSmBaseIs(
      Cairn::EntityManager* em, Cairn::MountGroup* mg, ZelSharedMem::EntityManager* shmemEm,
      ZelSharedMem::MountGroup* shmemMg, std::uint32_t maxRoutes, std::uint32_t maxViaSets, std::uint32_t maxVrfs,
      Quill::String agentName, Quill::Ptr<Redundancy::RedundancyStatus const> agentRedundancyStatus) {
    return Zel::make<RootSmBase>(em, mg, shmemEm, shmemMg, maxRoutes, maxViaSets, maxVrfs, std::move(agentName),
                                 std::move(agentRedundancyStatus));
  }

  ZEL_CONST(std::uint32_t, maxRoutes)
  ZEL_CONST(std::uint32_t, maxViaSets)
  ZEL_CONST(std::uint32_t, maxVrfs)
  ZEL_CONST(Quill::String, agentName)
  ZEL_CONST(Quill::Ptr<Redundancy::RedundancyStatus const>, agentRedundancyStatus)

 protected:
  friend struct Zel::Factory;
  RootSmBase(Cairn::EntityManager* em, Cairn::MountGroup* mg, ZelSharedMem::EntityManager* shmemEm,
             ZelSharedMem::MountGroup* shmemMg, std::uint32_t maxRoutes, std::uint32_t maxViaSets,
             std::uint32_t maxVrfs, Quill::String agentName,
             Quill::Ptr<Redundancy::RedundancyStatus const> agentRedundancyStatus)
      : RootMounts(em, mg, shmemEm, shmemMg),
        maxRoutes_(maxRoutes),
        maxViaSets_(maxViaSets),
        maxVrfs_(maxVrfs),
        agentName_(std::move(agentName)),
        agentRedundancyStatus_(std::move(agentRedundancyStatus)) {}
};

}  // namespace Routing::Input
