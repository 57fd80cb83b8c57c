// Halyard::WalkSmBase: the base of a state machine that does one long iteration in steps. The
// scheduler calls walk(), which handles items until mustYield() and returns how many it handled,
// with bit 32 set when there is more to do; the base then asks for another run.
#pragma once

#include <cstdint>

#include "foundations/runtime/TaskMember.h"

namespace Halyard {

class WalkSmBase : public Zel::StateMachine<WalkSmBase> {
 public:
  static constexpr std::uint64_t kMoreToDo = std::uint64_t(1) << 32;

  void scheduleWalk() { walkTask_.get()->scheduleTask(); }
  [[nodiscard]] bool walkScheduled() const { return walkTask_.get()->taskScheduled(); }
  [[nodiscard]] bool mustYield() const { return walkTask_.get()->taskShouldYield(); }
  [[nodiscard]] Task* walkTask() const noexcept { return walkTask_.get(); }
  [[nodiscard]] std::uint64_t itemsWalked() const noexcept { return itemsWalked_; }

  // One step of the walk: the number of items handled, | kMoreToDo when not finished.
  virtual std::uint64_t walk() = 0;

 protected:
  WalkSmBase(TaskScheduler* scheduler, TaskPriority priority, Quill::String const& name) {
    walkTask_.is(scheduler, priority, name);
  }

 private:
  void walkRun() {
    std::uint64_t result = walk();
    itemsWalked_ += result & 0xffffffffU;
    walkTask_.get()->taskWorkCountInc(result & 0xffffffffU);
    if (result & kMoreToDo) walkTask_.get()->scheduleTask();
  }

  Zel::TaskMember<WalkSmBase, &WalkSmBase::walkRun> walkTask_{this};
  std::uint64_t itemsWalked_ = 0;
};

}  // namespace Halyard
