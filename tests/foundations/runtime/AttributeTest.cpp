// The attribute templates: what each mutator publishes, and what a reactor sees while it runs.
#include "foundations/runtime/Attribute.h"

#include <gtest/gtest.h>

#include "foundations/runtime/NotifyValues.h"
#include "support/RuntimeFixture.h"
#include "support/TestRecords.h"

namespace BowlineTest {
namespace {

// Records every notification of one entity, with the old value of the scalar attributes.
class Recorder : public Zel::Notifiee<Record> {
 public:
  static Quill::Ptr<Recorder> RecorderIs(Quill::Ptr<Record const> r) {
    auto p = Zel::make<Recorder>();
    p->notifierIs(std::move(r));
    return p;
  }
  void onAttribute(Zel::AttrId id, void const* key) override {
    std::string line = std::to_string(id);
    if (key) line += " key " + std::to_string(*static_cast<int const*>(key));
    if (id == Record::statusId) {
      if (auto const* old = Zel::notifyOldValue<int>(notifier().get(), id)) line += " old " + std::to_string(*old);
    }
    if (id == Record::labelId) {
      auto const* old = Zel::notifyOldValue<std::string>(notifier().get(), id);
      line += old ? " old " + *old : " new";
    }
    seen.push_back(line);
    if (react) react(id, key);
  }
  std::vector<std::string> seen;
  std::function<void(Zel::AttrId, void const*)> react;
};

class AttributeTest : public RuntimeFixture {};

TEST_F(AttributeTest, ScalarsPublishOnlyRealChanges) {
  auto r = Record::RecordIs();
  auto rec = Recorder::RecorderIs(r);
  r->statusIs(5);
  r->statusIs(5);  // same value: silent
  r->statusIs(7);
  r->statusDel();  // back to the default, publishes
  EXPECT_EQ(r->status(), 0);
  EXPECT_EQ(rec->seen, (std::vector<std::string>{"130 old 0", "130 old 5", "130 old 7"}));

  rec->seen.clear();
  r->versionIs(255);
  EXPECT_EQ(r->versionInc(1), 0) << "an 8-bit counter wraps";
  EXPECT_EQ(r->versionInc(0), 0);  // silent
  EXPECT_EQ(rec->seen.size(), 2u);
}

TEST_F(AttributeTest, CollectionsPublishPerKeyAndCarryOldValues) {
  auto r = Record::RecordIs();
  auto rec = Recorder::RecorderIs(r);
  r->labelIs(1, "a");
  r->labelIs(1, "a");  // unchanged
  r->labelIs(1, "b");
  EXPECT_FALSE(r->labelDel(2));  // absent: silent
  EXPECT_TRUE(r->labelDel(1));
  EXPECT_EQ(r->label(1), "") << "an absent key reads as the default value";
  EXPECT_EQ(rec->seen, (std::vector<std::string>{"133 key 1 new", "133 key 1 old a", "133 key 1 old b"}));

  rec->seen.clear();
  EXPECT_TRUE(r->flagIs(3));
  EXPECT_FALSE(r->flagIs(3));
  EXPECT_TRUE(r->flagHas(3));
  EXPECT_TRUE(r->flagDel(3));
  EXPECT_FALSE(r->flagDel(3));
  EXPECT_EQ(rec->seen, (std::vector<std::string>{"134 key 3", "134 key 3"}));

  rec->seen.clear();
  auto a = r->itemIs(4);
  EXPECT_EQ(r->itemIs(4), a) << "find-or-create returns the element already there";
  EXPECT_EQ(r->itemSize(), 1u);
  auto gone = r->itemDel(4);
  EXPECT_EQ(gone, a);
  EXPECT_TRUE(gone->zelMarkedForDeletion()) << "a deleted owned element is marked before it is dropped";
  EXPECT_FALSE(r->itemDel(4));
  EXPECT_EQ(rec->seen, (std::vector<std::string>{"132 key 4", "132 key 4"}));
}

TEST_F(AttributeTest, OrderedCollectionWalksLowestFirst) {
  auto r = Record::RecordIs();
  for (int k : {40, 1, 50, 5}) r->prefIs(k);
  EXPECT_EQ(r->prefFirst()->key(), 1);
  std::vector<int> order;
  for (auto it = r->prefIterator(); it; it.advance()) order.push_back(it.key());
  EXPECT_EQ(order, (std::vector<int>{1, 5, 40, 50}));
  r->prefDel(1);
  EXPECT_EQ(r->prefFirst()->key(), 5);
}

TEST_F(AttributeTest, DelAllFinishesWhileReactorsDeleteToo) {
  auto r = Record::RecordIs();
  for (int k = 0; k < 50; ++k) r->itemIs(k);
  auto rec = Recorder::RecorderIs(r);
  // Each notification deletes another element as well: the walk must still finish, nothing twice.
  rec->react = [&](Zel::AttrId id, void const* key) {
    if (id != Record::itemId) return;
    int k = *static_cast<int const*>(key);
    r->itemDel((k + 17) % 50);
  };
  r->itemDelAll();
  EXPECT_EQ(r->itemSize(), 0u);
  EXPECT_EQ(rec->seen.size(), 50u) << "one notification per element";
}

TEST_F(AttributeTest, NestedPublishOnTheSameAttributeLosesNothing) {
  auto r = Record::RecordIs();
  auto first = Recorder::RecorderIs(r);
  auto second = Recorder::RecorderIs(r);
  // The first subscriber pushes the status on up to 3 while the publish of 1 is still going on.
  first->react = [&](Zel::AttrId id, void const*) {
    if (id == Record::statusId && r->status() < 3) r->statusIs(r->status() + 1);
  };
  std::vector<int> secondSaw;
  second->react = [&](Zel::AttrId id, void const*) {
    if (id == Record::statusId) secondSaw.push_back(r->status());
  };
  r->statusIs(1);
  EXPECT_EQ(r->status(), 3);
  ASSERT_FALSE(secondSaw.empty());
  EXPECT_EQ(secondSaw.back(), 3) << "every subscriber ends having seen the latest state";
  EXPECT_EQ(first->seen.size(), 3u);
}

TEST_F(AttributeTest, TeardownReleasesEveryAllocation) {
  {
    auto r = Record::RecordIs();
    for (int k = 0; k < 100; ++k) {
      r->itemIs(k)->valueIs(k);
      r->prefIs(k);
      r->labelIs(k, std::string(40, 'x'));
    }
    auto rec = Recorder::RecorderIs(r);
    EXPECT_GT(liveSinceStart(), 200);
  }
  EXPECT_EQ(liveSinceStart(), 0);
}

}  // namespace
}  // namespace BowlineTest

namespace BowlineTest {
namespace {

// A set whose insertions and deletions have a side effect that runs before the publish.
class ReadySet : public Zel::Entity {
 public:
  static Quill::Ptr<ReadySet> ReadySetIs() { return Zel::make<ReadySet>(); }
  void onReady(int const& k) { effects.push_back(k * 10 + int(readyHas(k))); }
  ZEL_SET_WITH_HANDLER(int, ready, 130, onReady)
  std::vector<int> effects;

 protected:
  friend struct Zel::Factory;
  ReadySet() = default;
};

TEST(AttributeSideEffectTest, HandlerRunsAfterInsertBeforePublish) {
  auto s = ReadySet::ReadySetIs();
  EXPECT_TRUE(s->readyIs(4));
  EXPECT_FALSE(s->readyIs(4));
  EXPECT_EQ(s->effects, (std::vector<int>{41})) << "once, with the member already in";
  EXPECT_TRUE(s->readyDel(4));
  EXPECT_FALSE(s->readyDel(4));
  EXPECT_EQ(s->effects, (std::vector<int>{41, 40})) << "once, with the member already out";
}

}  // namespace
}  // namespace BowlineTest
