// The life of a state machine: construction over existing inputs, reactors and nested machines,
// input changes that reconcile, zombies that never run a handler, and teardown.
#include "foundations/runtime/StateMachine.h"

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"
#include "support/TestRecords.h"

namespace BowlineTest {
namespace {

class StateMachineTest : public RuntimeFixture {};

TEST_F(StateMachineTest, ConstructionSeesExistingElementsAndLaterChangesReachReactors) {
  auto r = Record::RecordIs();
  r->itemIs(1);
  r->itemIs(2);
  auto sm = WatchSm::WatchSmIs(r);
  // Step 1: the constructor built a nested machine per existing element and ran handleInitialized.
  EXPECT_TRUE(sm->initialized());
  EXPECT_EQ(sm->itemSmSize(), 2u);
  EXPECT_TRUE(sm->log.empty()) << "existing elements are not reported as changes";

  // Step 2: a new element: the reactors run in declaration order and see the old nested state;
  // the nested machine is created after them.
  r->itemIs(3);
  EXPECT_EQ(sm->log, (std::vector<std::string>{"item 3 present no-nested", "second 3"}));
  EXPECT_TRUE(sm->itemSmHas(3));

  // Step 3: the nested machine reacts to its element.
  sm->log.clear();
  r->item(3)->valueIs(30);
  EXPECT_EQ(sm->log, (std::vector<std::string>{"value 3=30"}));

  // Step 4: deletion: reactors see the nested machine still there; then it goes.
  sm->log.clear();
  auto nested = sm->itemSm(3);
  r->itemDel(3);
  EXPECT_EQ(sm->log, (std::vector<std::string>{"item 3 gone nested", "second 3"}));
  EXPECT_FALSE(sm->itemSmHas(3));
  EXPECT_TRUE(nested->zelMarkedForDeletion());

  // Step 5: a scalar attribute.
  sm->log.clear();
  r->statusIs(9);
  EXPECT_EQ(sm->log, (std::vector<std::string>{"status 9"}));
}

TEST_F(StateMachineTest, InputChangeMovesTheSubscriptionAndReconciles) {
  auto a = Record::RecordIs();
  a->itemIs(1);
  a->itemIs(2);
  auto b = Record::RecordIs();
  b->itemIs(2);
  b->itemIs(5);
  auto sm = WatchSm::WatchSmIs(a);
  auto nested2 = sm->itemSm(2);

  sm->recordIs(b);
  EXPECT_FALSE(sm->itemSmHas(1)) << "a key the new input lacks loses its nested machine";
  EXPECT_TRUE(sm->itemSmHas(5));
  EXPECT_EQ(sm->itemSm(2), nested2) << "a key in both keeps its machine, pointed at the new element";
  EXPECT_EQ(nested2->notifier(), Quill::Ptr<Item const>(b->item(2)));

  a->statusIs(1);  // the old input no longer reaches the machine
  b->statusIs(2);
  EXPECT_EQ(sm->log, (std::vector<std::string>{"status 2"}));

  sm->recordIs(nullptr);  // null: no input yet; nested machines stay until an input says otherwise
  b->statusIs(3);
  EXPECT_EQ(sm->log.size(), 1u);
}

TEST_F(StateMachineTest, ReactorDeletingItsOwnElementStopsTheLaterReactors) {
  auto r = Record::RecordIs();
  auto holder = WatchHolder::WatchHolderIs();
  WatchSm* sm = holder->watcherIs(1, Quill::Ptr<Record const>(r)).get();
  // The first reactor deletes the machine it runs in from its owner's collection: the dispatch's
  // strong reference keeps it alive to the end, and the second reactor does not run on a zombie.
  int secondRuns = 0;
  sm->onSecond = [&](int) { ++secondRuns; };
  sm->onItem = [&](int) {
    holder->watcherDel(1);
    EXPECT_GT(sm->references(), 0u);
    EXPECT_TRUE(sm->zelMarkedForDeletion());
  };
  r->itemIs(7);
  EXPECT_EQ(secondRuns, 0);
  EXPECT_EQ(holder->watcherSize(), 0u);
  holder = nullptr;
  EXPECT_EQ(liveSinceStart(), 2) << "only the record and its item are left";
}

TEST_F(StateMachineTest, ZombieMachineNeverRunsAHandler) {
  // A machine released by a reactor of another machine of the same publish hears nothing more.
  {
    auto r = Record::RecordIs();
    auto first = WatchSm::WatchSmIs(r);
    auto second = WatchSm::WatchSmIs(r);
    int secondRuns = 0;
    second->onSecond = [&](int) { ++secondRuns; };
    first->onItem = [&](int) { second = nullptr; };
    r->itemIs(1);
    EXPECT_EQ(secondRuns, 0);
  }
  auto r = Record::RecordIs();
  auto first = WatchSm::WatchSmIs(r);
  auto second = WatchSm::WatchSmIs(r);
  // The first machine's reactor turns the second into a zombie while the publish is under way.
  first->onItem = [&](int) { second->zelDoZombieReactors(true); };
  r->itemIs(1);
  EXPECT_EQ(first->log.size(), 2u);
  EXPECT_TRUE(second->log.empty());
  // Its nested machines are zombies too: a change of their element runs nothing.
  r->itemIs(2);
  EXPECT_TRUE(second->log.empty());
}

TEST_F(StateMachineTest, TeardownUnsubscribesAndReleasesEverything) {
  {
    auto r = Record::RecordIs();
    for (int k = 0; k < 20; ++k) r->itemIs(k);
    auto sm = WatchSm::WatchSmIs(r);
    EXPECT_EQ(r->publisher().subscriberCount(), 1u);
    EXPECT_EQ(r->item(4)->publisher().subscriberCount(), 1u);
    sm = nullptr;
    EXPECT_EQ(r->publisher().subscriberCount(), 0u) << "teardown turns notification off";
    EXPECT_EQ(r->item(4)->publisher().subscriberCount(), 0u);
    r->statusIs(4);  // nobody left to hear it
  }
  EXPECT_EQ(liveSinceStart(), 0);
}

TEST_F(StateMachineTest, NotificationIsLiveOnlyAfterTheFactory) {
  auto r = Record::RecordIs();
  auto sm = Zel::construct<WatchSm>(Quill::Ptr<Record const>(r));
  EXPECT_FALSE(sm->hasNotificationActive());
  r->statusIs(1);
  EXPECT_TRUE(sm->log.empty()) << "a machine not yet active hears nothing";
  sm->hasNotificationActiveIs(true);
  r->statusIs(2);
  EXPECT_EQ(sm->log, (std::vector<std::string>{"status 2"}));
}

}  // namespace
}  // namespace BowlineTest
