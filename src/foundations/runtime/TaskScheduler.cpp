#include "foundations/runtime/TaskScheduler.h"

#include <chrono>
#include <thread>

namespace Halyard {

namespace {
double monotonic() {
  using namespace std::chrono;
  return duration<double>(steady_clock::now().time_since_epoch()).count();
}
}  // namespace

void Task::scheduleTask() {
  if (scheduled_) return;
  scheduled_ = true;
  scheduler_->enqueue(this);
}

bool Task::taskShouldYield() const { return running_ && scheduler_->shouldYield(); }

void TaskScheduler::enqueue(Task* task) {
  queues_[task->priority_].push_back(Quill::Ptr<Task>(task));
  ++scheduledCount_;
}

bool TaskScheduler::shouldYield() const {
  std::uint64_t ask = asks_++;
  if (ask == 0) return false;
  if (policy_.kind == YieldPolicy::Kind::afterItems) return ask >= policy_.items;
  return monotonic() - runStart_ >= policy_.slice;
}

bool TaskScheduler::runOnce() {
  auto q = queues_.begin();
  while (q != queues_.end() && q->second.empty()) q = queues_.erase(q);
  if (q == queues_.end()) return false;
  Quill::Ptr<Task> task = std::move(q->second.front());
  q->second.pop_front();
  --scheduledCount_;
  task->scheduled_ = false;
  struct Running {  // restored also when a body throws
    TaskScheduler* s;
    Task* task;
    Task* outer;
    ~Running() {
      task->running_ = false;
      s->current_ = outer;
    }
  } running{this, task.get(), current_};
  current_ = task.get();
  task->running_ = true;
  asks_ = 0;
  if (policy_.kind == YieldPolicy::Kind::timeSlice) runStart_ = monotonic();
  ++task->runs_;
  ++runs_;
  task->publish(Task::runId);
  return true;
}

std::uint64_t TaskScheduler::runUntilIdle() { return runUntilIdle(nullptr, 0); }

std::uint64_t TaskScheduler::runUntilIdle(std::function<void()> const& observer, std::uint64_t every) {
  std::uint64_t ran = 0;
  Zel::Clock& clock = Zel::ActivityFacility::clock();
  for (;;) {
    clock.fireDueTimers();
    if (runOnce()) {
      ++ran;
      if (observer && ran % every == 0) observer();
      continue;
    }
    if (clock.fireDueTimers() == 0 && idle()) break;
  }
  return ran;
}

std::uint64_t TaskScheduler::runUntil(Zel::Seconds t) {
  std::uint64_t ran = runUntilIdle();
  Zel::Clock& clock = Zel::ActivityFacility::clock();
  for (;;) {
    Zel::Seconds next = clock.nextTimerTime();
    Zel::Seconds until = (next >= 0 && next <= t) ? next : t;
    if (clock.now() < until) {
      if (clock.manual())
        clock.timeIs(until);
      else
        std::this_thread::sleep_for(std::chrono::duration<double>(until - clock.now()));
    }
    ran += runUntilIdle();
    if (!(next >= 0 && next <= t) && clock.now() >= t) break;
  }
  return ran;
}

TaskScheduler* TaskSchedulerRoot::findOrCreateScheduler() {
  static TaskScheduler* const scheduler = new TaskScheduler();
  return scheduler;
}

}  // namespace Halyard
