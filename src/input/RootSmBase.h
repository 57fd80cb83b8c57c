// Routing::Input::RootSmBase: the common inputs of a route-input root (the process's stores and
// mount groups, the table limits, the agent's name and redundancy state). It only holds them; the
// roots a hosting agent derives from it read them. Owned by the hosting agent.
#pragma once

#include <cstdint>

#include "foundations/records/RedundancyStatus.h"
#include "foundations/runtime/Mount.h"
#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/String.h"

namespace Routing::Input {

class RootSmBase : public Zel::StateMachine<RootSmBase> {
 public:
  [[nodiscard]] static Quill::Ptr<RootSmBase> RootSmBaseIs(
      Cairn::EntityManager* em, Cairn::MountGroup* mg, ZelSharedMem::EntityManager* shmemEm,
      ZelSharedMem::MountGroup* shmemMg, std::uint32_t maxRoutes, std::uint32_t maxViaSets, std::uint32_t maxVrfs,
      Quill::String agentName, Quill::Ptr<Redundancy::RedundancyStatus const> agentRedundancyStatus) {
    return Zel::make<RootSmBase>(em, mg, shmemEm, shmemMg, maxRoutes, maxViaSets, maxVrfs, std::move(agentName),
                                 std::move(agentRedundancyStatus));
  }

  [[nodiscard]] Cairn::EntityManager* em() const noexcept { return em_; }
  [[nodiscard]] Cairn::MountGroup* mg() const noexcept { return mg_; }
  [[nodiscard]] ZelSharedMem::EntityManager* shmemEm() const noexcept { return shmemEm_; }
  [[nodiscard]] ZelSharedMem::MountGroup* shmemMg() const noexcept { return shmemMg_; }
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
      : maxRoutes_(maxRoutes),
        maxViaSets_(maxViaSets),
        maxVrfs_(maxVrfs),
        agentName_(std::move(agentName)),
        agentRedundancyStatus_(std::move(agentRedundancyStatus)),
        em_(em),
        mg_(mg),
        shmemEm_(shmemEm),
        shmemMg_(shmemMg) {}

 private:
  Cairn::EntityManager* em_;
  Cairn::MountGroup* mg_;
  ZelSharedMem::EntityManager* shmemEm_;
  ZelSharedMem::MountGroup* shmemMg_;
};

}  // namespace Routing::Input
