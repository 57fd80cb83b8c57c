// Zel::RootMounts: the process's two stores (in-process and shared memory) and the mount group of
// each that a root mounts its tables through. Held, not owned: the hosting agent owns them and
// outlives its roots. A root derives from it for em(), mg(), shmemEm() and shmemMg(); any of them
// may be null (a test's root that mounts nothing).
#pragma once

#include "foundations/runtime/Mount.h"

namespace Zel {

class RootMounts {
 public:
  RootMounts(Cairn::EntityManager* em, Cairn::MountGroup* mg, ZelSharedMem::EntityManager* shmemEm,
             ZelSharedMem::MountGroup* shmemMg) noexcept
      : em_(em), mg_(mg), shmemEm_(shmemEm), shmemMg_(shmemMg) {}

  [[nodiscard]] Cairn::EntityManager* em() const noexcept { return em_; }
  [[nodiscard]] Cairn::MountGroup* mg() const noexcept { return mg_; }
  [[nodiscard]] ZelSharedMem::EntityManager* shmemEm() const noexcept { return shmemEm_; }
  [[nodiscard]] ZelSharedMem::MountGroup* shmemMg() const noexcept { return shmemMg_; }

 private:
  Cairn::EntityManager* em_;
  Cairn::MountGroup* mg_;
  ZelSharedMem::EntityManager* shmemEm_;
  ZelSharedMem::MountGroup* shmemMg_;
};

}  // namespace Zel
