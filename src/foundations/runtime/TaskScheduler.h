// Halyard: the scheduler and its tasks. A task is a publisher: when the scheduler runs it, it
// publishes its run attribute and the owner's dispatch calls the run body. scheduleTask() asks for
// one run; asking again before the run has no further effect. The host drives the scheduler
// (run until idle, run until a time); the running body asks taskShouldYield() per item.
//
// Yield policies: a time slice on the real monotonic clock (the default), or "after N items",
// which makes runs deterministic for tests. Either way the first ask of a run answers false, so
// every run makes progress. Lower priority numbers run first; tasks of one priority run in the
// order they were scheduled.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <ostream>

#include "foundations/runtime/Clock.h"
#include "foundations/runtime/Entity.h"
#include "foundations/runtime/String.h"

namespace Halyard {

using TaskPriority = std::uint8_t;
class TaskScheduler;

class Task : public Zel::Entity {
 public:
  static constexpr Zel::AttrId runId = 1;

  static Quill::Ptr<Task> TaskIs(TaskScheduler* scheduler, TaskPriority priority, Quill::String name) {
    return Zel::make<Task>(scheduler, priority, std::move(name));
  }

  void scheduleTask();
  [[nodiscard]] bool taskScheduled() const noexcept { return scheduled_; }
  [[nodiscard]] bool taskCurrentlyRunning() const noexcept { return running_; }
  [[nodiscard]] Quill::String const& taskName() const noexcept { return name_; }
  [[nodiscard]] TaskScheduler* taskScheduler() const noexcept { return scheduler_; }
  [[nodiscard]] TaskPriority taskPriority() const noexcept { return priority_; }
  void taskPriorityIs(TaskPriority priority) noexcept { priority_ = priority; }

  // Asked by the running body before each item: true when this run has used its share.
  [[nodiscard]] bool taskShouldYield() const;
  void taskWorkCountInc(std::uint64_t n) noexcept { workCount_ += n; }
  void taskWorkPendingIs(std::uint64_t n) noexcept { workPending_ = n; }
  [[nodiscard]] std::uint64_t taskWorkCount() const noexcept { return workCount_; }
  [[nodiscard]] std::uint64_t taskWorkPending() const noexcept { return workPending_; }
  [[nodiscard]] std::uint64_t taskRuns() const noexcept { return runs_; }

 protected:
  friend struct Zel::Factory;
  friend class TaskScheduler;
  Task(TaskScheduler* scheduler, TaskPriority priority, Quill::String name)
      : scheduler_(scheduler), name_(std::move(name)), priority_(priority) {}

 private:
  TaskScheduler* scheduler_;
  Quill::String name_;
  std::uint64_t workCount_ = 0;
  std::uint64_t workPending_ = 0;
  std::uint64_t runs_ = 0;
  TaskPriority priority_;
  bool scheduled_ = false;
  bool running_ = false;
};

// The type used where a review task is needed; same interface as Task.
class TimerTask : public Task {
 public:
  static Quill::Ptr<TimerTask> TimerTaskIs(TaskScheduler* scheduler, TaskPriority priority, Quill::String name) {
    return Zel::make<TimerTask>(scheduler, priority, std::move(name));
  }

 protected:
  friend struct Zel::Factory;
  using Task::Task;
};

struct YieldPolicy {
  enum class Kind : std::uint8_t { timeSlice, afterItems };
  Kind kind = Kind::timeSlice;
  double slice = 0.01;      // seconds of the real clock per run
  std::uint64_t items = 0;  // items per run (at least one)

  static YieldPolicy timeSliceOf(double seconds) { return {Kind::timeSlice, seconds, 0}; }
  static YieldPolicy afterItemsOf(std::uint64_t n) { return {Kind::afterItems, 0, n}; }
};

class TaskScheduler {
 public:
  TaskScheduler() = default;
  TaskScheduler(TaskScheduler const&) = delete;
  TaskScheduler& operator=(TaskScheduler const&) = delete;

  void yieldPolicyIs(YieldPolicy policy) noexcept { policy_ = policy; }
  [[nodiscard]] YieldPolicy const& yieldPolicy() const noexcept { return policy_; }

  // Runs the first scheduled task; false when none is scheduled.
  bool runOnce();
  // Fires due timers and runs tasks until nothing is scheduled and no timer is due. With an
  // observer, it is called after every `every` task runs (for a progress report).
  std::uint64_t runUntilIdle();
  std::uint64_t runUntilIdle(std::function<void()> const& observer, std::uint64_t every);
  // Runs until idle, then moves the clock to each next timer up to `t` (waiting on a real clock).
  std::uint64_t runUntil(Zel::Seconds t);
  [[nodiscard]] bool idle() const noexcept { return scheduledCount_ == 0; }
  [[nodiscard]] std::size_t scheduledCount() const noexcept { return scheduledCount_; }
  [[nodiscard]] Task* currentTask() const noexcept { return current_; }
  [[nodiscard]] std::uint64_t runs() const noexcept { return runs_; }

  // The answer to the running task's taskShouldYield().
  [[nodiscard]] bool shouldYield() const;

 private:
  friend class Task;
  void enqueue(Task* task);

  std::map<TaskPriority, std::deque<Quill::Ptr<Task>>> queues_;
  std::size_t scheduledCount_ = 0;
  Task* current_ = nullptr;
  YieldPolicy policy_;
  mutable std::uint64_t asks_ = 0;
  double runStart_ = 0;
  std::uint64_t runs_ = 0;
};

struct TaskSchedulerRoot {
  // The process's scheduler; the first caller creates it.
  static TaskScheduler* findOrCreateScheduler();
};

}  // namespace Halyard
