// The task of a state machine: find-or-create by (scheduler, priority, name), a subscription to
// the task's run attribute, and the run body called through it. The body never runs once the
// machine is a zombie.
#pragma once

#include "foundations/runtime/StateMachine.h"
#include "foundations/runtime/TaskScheduler.h"

namespace Zel {

template <class Owner, auto Body, class TaskT = Halyard::Task>
class TaskMember final : public SmMember {
 public:
  explicit TaskMember(Owner* owner) : SmMember(owner), owner_(owner), sub_(&TaskMember::dispatch, this) {}

  [[nodiscard]] TaskT* get() const noexcept { return task_.get(); }

  // Keeps a task of the same scheduler, priority and name; otherwise a new one replaces it and
  // the subscription moves to it.
  TaskT* is(Halyard::TaskScheduler* scheduler, Halyard::TaskPriority priority, Quill::String const& name) {
    if (task_ && task_->taskScheduler() == scheduler && task_->taskPriority() == priority && task_->taskName() == name)
      return task_.get();
    if (sub_.subscribed()) sub_.publisher()->subscriberRemove(&sub_);
    task_ = make<TaskT>(scheduler, priority, name);
    if (owner_->hasNotificationActive()) task_->publisher().subscriberAdd(&sub_, false);
    return task_.get();
  }
  void zelActiveIs(bool active) override {
    if (active && task_)
      task_->publisher().subscriberAdd(&sub_, false);
    else if (!active && sub_.subscribed())
      sub_.publisher()->subscriberRemove(&sub_);
  }

 private:
  static void dispatch(Quill::Subscriber& s, AttrId id, void const*) {
    auto* self = static_cast<TaskMember*>(s.owner);
    Owner* o = self->owner_;
    if (id != Halyard::Task::runId || o->zelMarkedForDeletion()) return;
    Quill::Ptr<Owner> hold(o->references() ? o : nullptr);
    (o->*Body)();
  }

  Owner* owner_;
  Quill::Ptr<TaskT> task_;
  Quill::Subscriber sub_;
};

// A timer of a state machine: xTimeMinIs(t) arms it; the body runs once when the clock gets there.
template <class Owner, auto Body>
class TimerMember final : public SmMember {
 public:
  explicit TimerMember(Owner* owner) : SmMember(owner), owner_(owner) {}

  void timeMinIs(Seconds t) {
    if (!timer_) timer_ = construct<Timer>(owner_);
    timer_->timeMinIs(t);
  }
  void timeMinDel() {
    if (timer_) timer_->timeMinDel();
  }
  [[nodiscard]] bool armed() const noexcept { return timer_ && timer_->armed(); }
  void zelZombieIs(bool marked) override {
    if (timer_) timer_->zelDoZombieReactors(marked);
  }

 private:
  class Timer final : public Clock::NotifieeConst {
   public:
    explicit Timer(Owner* owner) : owner_(owner) {}
    void onAttribute(AttrId id, void const*) override {
      if (id != Clock::timeId || zelMarkedForDeletion() || owner_->zelMarkedForDeletion()) return;
      Quill::Ptr<Owner> hold(owner_->references() ? owner_ : nullptr);
      (owner_->*Body)();
    }

   private:
    Owner* owner_;
  };

  Owner* owner_;
  Quill::Ptr<Timer> timer_;
};

}  // namespace Zel

// A task: x() gives the task (null until created), xIs(scheduler, priority, name) finds or creates.
#define ZEL_TASK(name, body)                                                                  \
 public:                                                                                      \
  [[nodiscard]] ::Halyard::Task* name() const noexcept { return name##_.get(); }              \
  ::Halyard::Task* name##Is(::Halyard::TaskScheduler* s, ::Halyard::TaskPriority p, ::Quill::String const& n) { \
    return name##_.is(s, p, n);                                                               \
  }                                                                                           \
                                                                                              \
 private:                                                                                     \
  ::Zel::TaskMember<ZelSelf, &ZelSelf::body> name##_{this};                                   \
                                                                                              \
 public:

// A timer: xTimeMinIs(t) arms it, xTimeMinDel() disarms it, xArmed() tells.
#define ZEL_TIMER(name, body)                                                  \
 public:                                                                       \
  void name##TimeMinIs(::Zel::Seconds t) { name##_.timeMinIs(t); }             \
  void name##TimeMinDel() { name##_.timeMinDel(); }                            \
  [[nodiscard]] bool name##Armed() const noexcept { return name##_.armed(); }  \
                                                                               \
 private:                                                                      \
  ::Zel::TimerMember<ZelSelf, &ZelSelf::body> name##_{this};                   \
                                                                               \
 public:
