// Intrusive references, the slab's per-type counts, and immutable strings.
#include "foundations/runtime/Ptr.h"

#include <gtest/gtest.h>

#include "foundations/runtime/Slab.h"
#include "foundations/runtime/String.h"
#include "support/TestRecords.h"

namespace BowlineTest {
namespace {

TEST(PtrTest, CountsReferencesAndFreesUnderTheConcreteType) {
  std::int64_t before = Plinth::liveCount<Item>();
  {
    Quill::Ptr<Record> r = Record::RecordIs();
    Quill::Ptr<Record const> reader = r;  // the read-only form shares the count
    EXPECT_EQ(r->references(), 2u);
    r->itemIs(1);
    r->itemIs(2);
    EXPECT_EQ(Plinth::liveCount<Item>(), before + 2) << "blocks are counted under the concrete type";
    Quill::Ptr<Zel::Entity const> base = reader;  // derived to base
    EXPECT_EQ(base, r);
    EXPECT_EQ(r->references(), 3u);
    r->hasNotificationActiveIs(false);
    r->zelMarkedForDeletionIs(true);
    EXPECT_EQ(r->references(), 3u) << "the flags live beside the count and do not disturb it";
    r->zelMarkedForDeletionIs(false);
    r->hasNotificationActiveIs(true);
  }
  EXPECT_EQ(Plinth::liveCount<Item>(), before);
  EXPECT_EQ(Plinth::liveCount<Record>(), 0);
}

TEST(PtrTest, ThreadSafeCountsBehaveTheSame) {
  Zel::threadSafePointers = true;
  {
    auto r = Record::RecordIs();
    Quill::Ptr<Record> copy = r;
    EXPECT_EQ(r->references(), 2u);
    r->zelMarkedForDeletionIs(true);
    EXPECT_TRUE(r->zelMarkedForDeletion());
    EXPECT_EQ(copy->references(), 2u);
  }
  Zel::threadSafePointers = false;
  EXPECT_EQ(Plinth::liveCount<Record>(), 0);
}

TEST(PtrTest, StringsShareAndCompareByText) {
  Quill::String a("red");
  Quill::String c(std::string("re") + "d");
  EXPECT_EQ(a, c);
  EXPECT_EQ(a.hash(7), c.hash(7));
  EXPECT_EQ(a.addLeft("dark").view(), "darkred");
  EXPECT_EQ(a.addRight("dish").view(), "reddish");
}

TEST(PtrDeathTest, BrokenInvariantEndsTheProcessWithItsText) {
  EXPECT_DEATH(QUILL_ASSERT(1 + 1 == 3, "vrfId.value() <= ( srcVrfIdMask >> srcVrfIdLoc )"),
               "vrfId.value\\(\\) <= \\( srcVrfIdMask >> srcVrfIdLoc \\)");
}

}  // namespace
}  // namespace BowlineTest
