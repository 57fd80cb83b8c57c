// The readiness records: defaults, the all-VRF collections with find-or-create, the ids their
// flags publish, and GrState kept or replaced by an owning attribute.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundations/records/AllVrfReadyStatus.h"
#include "foundations/records/AllVrfRibSeqTrigger.h"
#include "foundations/records/GrState.h"
#include "foundations/runtime/Exception.h"
#include "support/RuntimeFixture.h"
#include "RecordRecorder.h"

namespace BowlineTest {
namespace {

using Routing::Protocol::AllVrfReadyStatus;
using Routing::Protocol::AllVrfRibSeqTrigger;
using Routing::Protocol::GrState;
using Routing::Protocol::VrfReadyStatus;
using Routing::Protocol::VrfRibSeqTrigger;

// Holds a GrState the way the protocol root does: one owned entity, found or created by argument.
class GrHolder : public Zel::Entity {
 public:
  ZEL_OWNED(GrState, grState, 130)

 protected:
  friend struct Zel::Factory;
  GrHolder() = default;
};

class ReadinessRecordsTest : public RuntimeFixture {};

TEST_F(ReadinessRecordsTest, FreshRecordsAreNotReady) {
  auto all = Routing::Protocol::allVrfReadyStatusFactory();
  auto triggers = Routing::Protocol::allVrfRibSeqTriggerFactory();
  auto gr = Routing::Protocol::grStateFactory(true);
  EXPECT_TRUE(all->hasNotificationActive() && triggers->hasNotificationActive() && gr->hasNotificationActive())
      << "the hosting agent's factories hand out active records";

  auto status = all->vrfReadyStatusIs("red");
  EXPECT_EQ(status->vrfName(), L3::VrfName("red"));
  EXPECT_FALSE(status->v4RoutesReady());
  EXPECT_FALSE(status->v6RoutesReady());
  EXPECT_EQ(status->ribReadySeqStatus(), 0u);
  EXPECT_FALSE(status->v4RouteReviewComplete());
  EXPECT_FALSE(status->v6RouteReviewComplete());

  auto trigger = triggers->vrfRibSeqTriggerIs("red");
  EXPECT_EQ(trigger->vrfName(), L3::VrfName("red"));
  EXPECT_EQ(trigger->ribReadySeqTrigger(), 0u);

  EXPECT_TRUE(gr->gracefulRestart());
  EXPECT_FALSE(gr->startReadyVerification());
  EXPECT_FALSE(GrState::GrStateIs(false)->gracefulRestart());
}

TEST_F(ReadinessRecordsTest, AllVrfCollectionsFindCreateAndDelete) {
  auto all = AllVrfReadyStatus::AllVrfReadyStatusIs();
  auto rec = RecordRecorder<AllVrfReadyStatus>::RecordRecorderIs(all);
  std::vector<std::string> keys;
  rec->react = [&](Zel::AttrId id, void const* k) {
    if (id == AllVrfReadyStatus::vrfReadyStatusId) keys.emplace_back(static_cast<L3::VrfName const*>(k)->view());
  };

  // 1. Find or create: one entry per VRF, one publish per new VRF.
  auto red = all->vrfReadyStatusIs("red");
  red->v4RoutesReadyIs(true);
  EXPECT_EQ(all->vrfReadyStatusIs("red"), red) << "step 1: the existing entry, state kept";
  EXPECT_TRUE(all->vrfReadyStatusIs("red")->v4RoutesReady());
  all->vrfReadyStatusIs(L3::VrfName::defaultVrf());
  all->vrfReadyStatusIs("blue");
  EXPECT_EQ(all->vrfReadyStatusSize(), 3u);
  EXPECT_EQ(keys, (std::vector<std::string>{"red", "default", "blue"}));

  // 2. Delete: marked and handed back; an absent VRF publishes nothing.
  EXPECT_EQ(all->vrfReadyStatusDel("red"), red);
  EXPECT_TRUE(red->zelMarkedForDeletion());
  EXPECT_FALSE(all->vrfReadyStatusDel("red"));
  EXPECT_FALSE(all->vrfReadyStatus("red"));
  EXPECT_EQ(keys.size(), 4u);

  // 3. A VRF that comes back gets a fresh, not-ready entry.
  auto again = all->vrfReadyStatusIs("red");
  EXPECT_NE(again, red);
  EXPECT_FALSE(again->v4RoutesReady());

  // 4. Delete all: every entry goes, one publish each.
  all->vrfReadyStatusDelAll();
  EXPECT_EQ(all->vrfReadyStatusSize(), 0u);
  EXPECT_EQ(keys.size(), 8u);

  // 5. The same for the triggers.
  auto triggers = AllVrfRibSeqTrigger::AllVrfRibSeqTriggerIs();
  auto t = triggers->vrfRibSeqTriggerIs("red");
  EXPECT_EQ(triggers->vrfRibSeqTriggerIs("red"), t);
  EXPECT_EQ(triggers->vrfRibSeqTriggerDel("red"), t);
  EXPECT_TRUE(t->zelMarkedForDeletion());
  triggers->vrfRibSeqTriggerIs("a");
  triggers->vrfRibSeqTriggerIs("b");
  triggers->vrfRibSeqTriggerDelAll();
  EXPECT_EQ(triggers->vrfRibSeqTriggerSize(), 0u);

  // 6. VRF names are bounded: 100 bytes go, 101 raise.
  EXPECT_TRUE(all->vrfReadyStatusIs(std::string(100, 'v')));
  EXPECT_THROW(all->vrfReadyStatusIs(std::string(101, 'v')), Zel::RangeException);
  EXPECT_THROW(triggers->vrfRibSeqTriggerIs(std::string(101, 'v')), Zel::RangeException);
}

TEST_F(ReadinessRecordsTest, FlagsPublishTheirOwnIds) {
  auto all = AllVrfReadyStatus::AllVrfReadyStatusIs();
  auto status = all->vrfReadyStatusIs("red");
  auto rec = RecordRecorder<VrfReadyStatus>::RecordRecorderIs(status);
  status->v4RoutesReadyIs(true);
  status->v6RoutesReadyIs(true);
  status->ribReadySeqStatusIs(7);
  status->v4RouteReviewCompleteIs(true);
  status->v6RouteReviewCompleteIs(true);
  status->v4RoutesReadyIs(true);  // unchanged
  EXPECT_EQ(rec->ids, (std::vector<Zel::AttrId>{131, 132, 133, 134, 135}));

  auto triggers = AllVrfRibSeqTrigger::AllVrfRibSeqTriggerIs();
  auto trigger = triggers->vrfRibSeqTriggerIs("red");
  auto trec = RecordRecorder<VrfRibSeqTrigger>::RecordRecorderIs(trigger);
  std::uint32_t before = 99;
  trec->react = [&](Zel::AttrId id, void const*) {
    if (auto const* o = trec->oldValue<std::uint32_t>(id)) before = *o;
  };
  trigger->ribReadySeqTriggerIs(3);
  trigger->ribReadySeqTriggerIs(4);
  EXPECT_EQ(trec->ids, (std::vector<Zel::AttrId>{131, 131}));
  EXPECT_EQ(before, 3u) << "the reactor sees the trigger it replaced";
}

TEST_F(ReadinessRecordsTest, GrStateIsKeptForTheSameArgumentAndReplacedForAnother) {
  auto holder = Zel::make<GrHolder>();
  auto first = holder->grStateIs(true);
  first->startReadyVerificationIs(true);
  EXPECT_EQ(holder->grStateIs(true), first) << "same argument: the held state, with what was written to it";
  EXPECT_TRUE(holder->grState()->startReadyVerification());

  auto second = holder->grStateIs(false);
  EXPECT_NE(second, first);
  EXPECT_FALSE(second->gracefulRestart());
  EXPECT_FALSE(second->startReadyVerification());
  EXPECT_TRUE(first->zelMarkedForDeletion()) << "the replaced state is a zombie";

  auto rec = RecordRecorder<GrState>::RecordRecorderIs(second);
  second->startReadyVerificationIs(true);
  EXPECT_EQ(rec->ids, (std::vector<Zel::AttrId>{131}));
}

TEST_F(ReadinessRecordsTest, TeardownReleasesEverything) {
  {
    auto all = AllVrfReadyStatus::AllVrfReadyStatusIs();
    auto triggers = AllVrfRibSeqTrigger::AllVrfRibSeqTriggerIs();
    for (int i = 0; i < 50; ++i) {
      std::string const vrf = "vrf" + std::to_string(i);
      all->vrfReadyStatusIs(vrf)->ribReadySeqStatusIs(i);
      triggers->vrfRibSeqTriggerIs(vrf)->ribReadySeqTriggerIs(i);
    }
    all->vrfReadyStatusDel("vrf3");
    EXPECT_GT(liveSinceStart(), 100);
  }
  EXPECT_EQ(liveSinceStart(), 0);
}

}  // namespace
}  // namespace BowlineTest
