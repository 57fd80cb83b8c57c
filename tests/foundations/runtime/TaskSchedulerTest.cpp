// Tasks, backlogs, timers and walks on the scheduler with the manual clock and the deterministic
// yield policy.
#include "foundations/runtime/TaskScheduler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "foundations/runtime/WalkSmBase.h"
#include "support/RuntimeFixture.h"
#include "support/TestRecords.h"

namespace BowlineTest {
namespace {

class TaskSchedulerTest : public RuntimeFixture {};

TEST_F(TaskSchedulerTest, ScheduleTwiceRunsOnceAndZombieOwnerRunsNothing) {
  auto sm = BacklogSm::BacklogSmIs();
  sm->add(1);
  sm->workTask()->scheduleTask();
  EXPECT_EQ(scheduler()->scheduledCount(), 1u);
  runToIdle();
  EXPECT_EQ(sm->runs, 1);

  // A task whose owner was torn down: the run is delivered, no body runs.
  sm->add(2);
  Quill::Ptr<Halyard::Task> task(sm->workTask());
  sm->zelDoZombieReactors(true);
  runToIdle();
  EXPECT_EQ(sm->runs, 1);
  EXPECT_EQ(task->taskRuns(), 2u);
}

TEST_F(TaskSchedulerTest, BacklogYieldsResumesAndLosesNothing) {
  itemsPerRun = 3;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(3));
  auto sm = BacklogSm::BacklogSmIs();
  for (int k = 0; k < 10; ++k) sm->add(k);
  sm->add(3);  // a key already waiting stays once
  EXPECT_EQ(sm->workSize(), 10u);

  // Step 1: one run handles three keys and leaves a bookmark.
  scheduler()->runOnce();
  EXPECT_EQ(sm->handled.size(), 3u);
  EXPECT_EQ(sm->lastProgress.handled, 3u);
  EXPECT_EQ(sm->lastProgress.pending, 7u);
  ASSERT_TRUE(sm->workBookmark().has_value());
  EXPECT_TRUE(sm->workTask()->taskScheduled()) << "pending work reschedules the task";

  // Step 2: while the backlog runs, the handler adds keys: old and new ones.
  std::vector<int> const firstRun = sm->handled;
  bool added = false;
  sm->onHandle = [&](int) {
    if (added) return;
    added = true;
    sm->add(100);
    sm->add(firstRun[0]);  // handled already: must come round again
  };
  runToIdle();
  std::multiset<int> seen(sm->handled.begin(), sm->handled.end());
  for (int k = 0; k < 10; ++k) EXPECT_GE(seen.count(k), 1u) << "key " << k;
  EXPECT_EQ(seen.count(100), 1u);
  EXPECT_EQ(seen.count(firstRun[0]), 2u) << "a key added again after its handling is handled again";
  EXPECT_EQ(sm->handled.size(), 12u) << "no key handled twice within one pass";
  EXPECT_FALSE(sm->workBookmark().has_value());
  EXPECT_EQ(sm->workTask()->taskWorkCount(), 12u);
}

TEST_F(TaskSchedulerTest, KeysMarkedAtRandomWhileTheBacklogRunsAreHandledOnceEach) {
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(37));
  auto sm = BacklogSm::BacklogSmIs();
  std::mt19937 rng(5);
  std::set<int> owed;  // marked since last handled
  std::vector<int> marks(1200);
  std::vector<int> handles(1200);
  auto mark = [&](int k) {
    sm->add(k);
    owed.insert(k);
    ++marks[std::size_t(k)];
  };
  for (int k = 0; k < 1000; ++k) mark(k);
  std::set<int> thisRun;
  sm->onHandle = [&](int k) {
    EXPECT_TRUE(thisRun.insert(k).second) << k << " handled twice in one run";
    ++handles[std::size_t(k)];
    owed.erase(k);
    if (rng() % 4 == 0) mark(int(rng() % 1200));  // handled keys and pending ones alike
  };
  for (int runs = 0; scheduler()->runOnce(); thisRun.clear()) ASSERT_LT(++runs, 1000) << "the backlog does not drain";
  EXPECT_TRUE(owed.empty());
  for (std::size_t k = 0; k < marks.size(); ++k) {
    EXPECT_LE(handles[k], marks[k]) << "key " << k << " handled more often than marked";
    EXPECT_EQ(handles[k] > 0, marks[k] > 0) << "key " << k;
  }
}

TEST_F(TaskSchedulerTest, BacklogResumesAfterItsBookmarkInOrder) {
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(4));
  auto sm = BacklogSm::BacklogSmIs();
  for (int k = 0; k < 20; ++k) sm->add(k);
  scheduler()->runOnce();
  ASSERT_TRUE(sm->workBookmark().has_value());
  int mark = *sm->workBookmark();
  // A run resumes at the bookmark: its first key is the bookmark itself.
  scheduler()->runOnce();
  EXPECT_EQ(sm->handled[4], mark);
  runToIdle();
  std::vector<int> sorted = sm->handled;
  std::sort(sorted.begin(), sorted.end());
  std::vector<int> all(20);
  for (int k = 0; k < 20; ++k) all[k] = k;
  EXPECT_EQ(sorted, all);
}

TEST_F(TaskSchedulerTest, BacklogRejectsDeletesWhileItRuns) {
  auto sm = BacklogSm::BacklogSmIs();
  sm->add(1);
  sm->add(2);
  sm->onHandle = [&](int k) { sm->workDel(k == 1 ? 2 : 1); };
  EXPECT_THROW(scheduler()->runOnce(), Zel::BacklogProcessingException);
  EXPECT_NO_THROW(sm->workDelAll()) << "outside a run the backlog may be emptied";
}

TEST_F(TaskSchedulerTest, TimerFiresAtItsTimeOnTheManualClock) {
  auto sm = BacklogSm::BacklogSmIs();
  double start = clock().now();
  sm->timerTimeMinIs(start + 300.0);
  runToIdle();
  EXPECT_EQ(sm->ticks, 0) << "not before its time";
  scheduler()->runUntil(start + 299.0);
  EXPECT_EQ(sm->ticks, 0);
  scheduler()->runUntil(start + 301.0);
  EXPECT_EQ(sm->ticks, 1);
  EXPECT_FALSE(sm->timerArmed()) << "a timer fires once per setting";

  // Setting it again replaces the time.
  sm->timerTimeMinIs(clock().now() + 10);
  sm->timerTimeMinIs(clock().now() + 50);
  scheduler()->runUntil(clock().now() + 20);
  EXPECT_EQ(sm->ticks, 1);
  scheduler()->runUntil(clock().now() + 40);
  EXPECT_EQ(sm->ticks, 2);

  // A torn-down owner's timer does not fire.
  sm->timerTimeMinIs(clock().now() + 5);
  sm = nullptr;
  scheduler()->runUntil(clock().now() + 10);
  EXPECT_EQ(clock().timersArmed(), 0u);
}

class CountingWalk : public Halyard::WalkSmBase {
 public:
  static Quill::Ptr<CountingWalk> CountingWalkIs(int total) { return Zel::make<CountingWalk>(total); }
  std::uint64_t walk() override {
    std::uint64_t n = 0;
    while (next < total) {
      if (mustYield()) return n | kMoreToDo;
      ++next;
      ++n;
    }
    return n;
  }
  int next = 0;
  int total;

 protected:
  friend struct Zel::Factory;
  explicit CountingWalk(int t) : WalkSmBase(Halyard::TaskSchedulerRoot::findOrCreateScheduler(), 3, "walk"), total(t) {}
};

TEST_F(TaskSchedulerTest, WalkRunsInStepsUntilDone) {
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(5));
  auto walk = CountingWalk::CountingWalkIs(23);
  walk->scheduleWalk();
  runToIdle();
  EXPECT_EQ(walk->next, 23);
  EXPECT_EQ(walk->itemsWalked(), 23u);
  EXPECT_EQ(walk->walkTask()->taskRuns(), 5u) << "5 items a run";
}

TEST_F(TaskSchedulerTest, LowerPriorityNumbersRunFirst) {
  std::vector<std::string> order;
  class Runner : public Zel::StateMachine<Runner> {
   public:
    void body() { out->push_back(name); }
    ZEL_TASK(task, body)
    std::vector<std::string>* out = nullptr;
    std::string name;
  };
  auto a = Zel::make<Runner>();
  auto b = Zel::make<Runner>();
  a->out = b->out = &order;
  a->name = "a";
  b->name = "b";
  a->taskIs(scheduler(), 5, "a");
  b->taskIs(scheduler(), 3, "b");
  EXPECT_EQ(a->taskIs(scheduler(), 5, "a"), a->task()) << "find-or-create keeps an equal task";
  a->task()->scheduleTask();
  b->task()->scheduleTask();
  runToIdle();
  EXPECT_EQ(order, (std::vector<std::string>{"b", "a"}));
}

}  // namespace
}  // namespace BowlineTest
