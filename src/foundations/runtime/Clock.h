// Zel::Clock: the process's clock and its timers. A timer is a notifiee armed with timeMinIs(t);
// it fires once when the time reaches t (setting it again replaces the time). The clock is either
// the real monotonic clock or a manual one that the host or a test advances, so that a 300-second
// timer fires without waiting.
#pragma once

#include <cstdint>
#include <queue>
#include <vector>

#include "foundations/runtime/Entity.h"
#include "foundations/runtime/Notifiee.h"

namespace Zel {

using Seconds = double;

class Clock : public Entity {
 public:
  static constexpr AttrId timeId = 1;  // the attribute a timer's onAttribute receives

  // A notifiee on the clock that fires once per arming.
  class NotifieeConst : public PtrInterface::NotifieeConst {
   public:
    explicit NotifieeConst(Clock* clock = nullptr);
    ~NotifieeConst() override;
    // Arms the timer; fires when the clock reaches `seconds`. Replaces an earlier arming.
    void timeMinIs(Seconds seconds);
    void timeMinDel();
    [[nodiscard]] Seconds timeMin() const noexcept { return timeMin_; }
    [[nodiscard]] bool armed() const noexcept { return armed_; }

   private:
    friend class Clock;
    Clock* clock_;
    Seconds timeMin_ = 0;
    std::uint64_t generation_ = 0;
    bool armed_ = false;
  };

  [[nodiscard]] Seconds now() const;
  [[nodiscard]] bool manual() const noexcept { return manual_; }
  // Switches to the manual clock, starting at `start`; the real clock otherwise.
  void manualIs(bool manual, Seconds start = 0);
  // Manual clock only: moves time forward (never back).
  void timeIs(Seconds t);
  void advance(Seconds dt) { timeIs(now() + dt); }

  // Fires every timer due at the current time, in time order; returns how many fired.
  std::size_t fireDueTimers();
  // The earliest armed time, or a negative value when no timer is armed.
  [[nodiscard]] Seconds nextTimerTime();
  [[nodiscard]] std::size_t timersArmed();

  static Quill::Ptr<Clock> ClockIs() { return make<Clock>(); }

 protected:
  Clock() = default;
  friend struct Factory;

 private:
  struct Arming {
    Seconds at;
    std::uint64_t seq;
    std::uint64_t generation;
    Quill::Ptr<NotifieeConst> timer;
    bool operator>(Arming const& o) const { return at != o.at ? at > o.at : seq > o.seq; }
  };
  void arm(NotifieeConst* timer);
  void dropStale();

  bool manual_ = false;
  Seconds manualNow_ = 0;
  std::uint64_t seq_ = 0;
  std::priority_queue<Arming, std::vector<Arming>, std::greater<Arming>> armed_;
};

struct ActivityFacility {
  // The process's clock.
  static Clock& clock();
};

struct System {
  static Seconds currentTime() { return ActivityFacility::clock().now(); }
};

}  // namespace Zel
