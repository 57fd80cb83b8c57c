// The runtime set up for a deterministic test: a manual clock, a yield policy of N items per run,
// and a check that a test's objects were all released.
#pragma once

#include <gtest/gtest.h>

#include "foundations/runtime/Clock.h"
#include "foundations/runtime/Slab.h"
#include "foundations/runtime/TaskScheduler.h"

namespace BowlineTest {

class RuntimeFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    Zel::ActivityFacility::clock().manualIs(true, 1000.0);
    scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
    liveAtStart_ = Plinth::liveCountAll();
  }
  void TearDown() override {
    scheduler()->runUntilIdle();
    (void)Zel::ActivityFacility::clock().timersArmed();  // drops fired and stale armings
  }

  static Halyard::TaskScheduler* scheduler() { return Halyard::TaskSchedulerRoot::findOrCreateScheduler(); }
  static Zel::Clock& clock() { return Zel::ActivityFacility::clock(); }
  void runToIdle() { scheduler()->runUntilIdle(); }
  [[nodiscard]] std::int64_t liveSinceStart() const { return Plinth::liveCountAll() - liveAtStart_; }

  std::uint64_t itemsPerRun = 4;

 private:
  std::int64_t liveAtStart_ = 0;
};

}  // namespace BowlineTest
