// Halyard::WalkSmBase: the base of a state machine that does one long iteration in steps. The
// scheduler calls walk(), which handles items until mustYield() and returns how many it handled,
// with bit 32 set when there is more to do; the base then asks for another run. A derived walk
// hears when a walk starts and when it ends, and may let a new request start it over.
#pragma once

#include <cstdint>

#include "foundations/runtime/TaskMember.h"

namespace Halyard {

class WalkSmBase : public Zel::StateMachine<WalkSmBase> {
 public:
  static constexpr std::uint64_t kMoreToDo = std::uint64_t(1) << 32;

  // Starts a walk, or, during one, starts it over when allowWalkRestarts() says so (otherwise the
  // request joins the walk going on).
  void scheduleWalk() {
    if (!walking_ || allowWalkRestarts()) {
      traceEvent(walking_ ? "walkRestarted" : "walkStarted");
      walking_ = walkStartedNotification();
    }
    walkTask_.get()->scheduleTask();
  }
  [[nodiscard]] bool walkScheduled() const { return walkTask_.get()->taskScheduled(); }
  [[nodiscard]] bool walking() const noexcept { return walking_; }
  [[nodiscard]] bool mustYield() const { return walkTask_.get()->taskShouldYield(); }
  [[nodiscard]] Task* walkTask() const noexcept { return walkTask_.get(); }
  [[nodiscard]] std::uint64_t itemsWalked() const noexcept { return itemsWalked_; }

  // One step of the walk: the number of items handled, | kMoreToDo when not finished.
  virtual std::uint64_t walk() = 0;
  [[nodiscard]] virtual bool allowWalkRestarts() const { return false; }
  // Returns whether a walk is now going on.
  virtual bool walkStartedNotification() { return true; }
  virtual void walkFinishedNotification() {}
  virtual void traceEvent(char const* /*event*/) {}

 protected:
  WalkSmBase(TaskScheduler* scheduler, TaskPriority priority, Quill::String const& name) {
    walkTask_.is(scheduler, priority, name);
  }

 private:
  void walkRun() {
    std::uint64_t result = walk();
    itemsWalked_ += result & 0xffffffffU;
    walkTask_.get()->taskWorkCountInc(result & 0xffffffffU);
    if (result & kMoreToDo) {
      walkTask_.get()->scheduleTask();
      return;
    }
    walking_ = false;
    traceEvent("walkFinished");
    walkFinishedNotification();
  }

  Zel::TaskMember<WalkSmBase, &WalkSmBase::walkRun> walkTask_{this};
  std::uint64_t itemsWalked_ = 0;
  bool walking_ = false;
};

}  // namespace Halyard
