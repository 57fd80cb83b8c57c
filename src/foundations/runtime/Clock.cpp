#include "foundations/runtime/Clock.h"

#include <chrono>

namespace Zel {

namespace {
Seconds monotonicNow() {
  using namespace std::chrono;
  return duration<double>(steady_clock::now().time_since_epoch()).count();
}
}  // namespace

Clock& ActivityFacility::clock() {
  static Quill::Ptr<Clock> const clock = Clock::ClockIs();
  return *clock;
}

Seconds Clock::now() const { return manual_ ? manualNow_ : monotonicNow(); }

void Clock::manualIs(bool manual, Seconds start) {
  manual_ = manual;
  manualNow_ = start;
}

void Clock::timeIs(Seconds t) {
  if (manual_ && t > manualNow_) manualNow_ = t;
}

void Clock::arm(NotifieeConst* timer) {
  armed_.push(Arming{timer->timeMin_, seq_++, timer->generation_, Quill::Ptr<NotifieeConst>(timer)});
}

void Clock::dropStale() {
  while (!armed_.empty()) {
    Arming const& top = armed_.top();
    if (top.timer->armed_ && top.timer->generation_ == top.generation && !top.timer->zelMarkedForDeletion()) return;
    armed_.pop();
  }
}

Seconds Clock::nextTimerTime() {
  dropStale();
  return armed_.empty() ? -1.0 : armed_.top().at;
}

std::size_t Clock::timersArmed() {
  dropStale();
  return armed_.size();
}

std::size_t Clock::fireDueTimers() {
  std::size_t fired = 0;
  Seconds t = now();
  for (;;) {
    dropStale();
    if (armed_.empty() || armed_.top().at > t) break;
    Quill::Ptr<NotifieeConst> timer = armed_.top().timer;
    armed_.pop();
    timer->armed_ = false;
    ++fired;
    timer->onAttribute(timeId, nullptr);
  }
  return fired;
}

Clock::NotifieeConst::NotifieeConst(Clock* clock) : clock_(clock ? clock : &ActivityFacility::clock()) {}

Clock::NotifieeConst::~NotifieeConst() = default;

void Clock::NotifieeConst::timeMinIs(Seconds seconds) {
  timeMin_ = seconds;
  armed_ = true;
  ++generation_;
  clock_->arm(this);
}

void Clock::NotifieeConst::timeMinDel() {
  armed_ = false;
  ++generation_;
}

}  // namespace Zel

