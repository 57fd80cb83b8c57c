// TaggedRouteConfigSm on its own: the VRF's index from tag names to route keys and the tags' states
// change, the scheduler runs to idle, and the test reads what the machine asked of its owner: bursts
// of keys to review (149), each closed by one request to run the review (148). A VRF's index holds
// the keys of both families, so the sets here mix them.
#include "static/TaggedRouteConfigSm.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundations/runtime/Notifiee.h"
#include "foundations/runtime/Slab.h"
#include "support/RuntimeFixture.h"
#include "support/StaticRouteHarness.h"

namespace BowlineTest {
namespace {

using Routing::Static::TaggedRouteConfigSm;
using Keys = std::multiset<std::string>;
using Bursts = std::vector<Keys>;

// The owner's side: each key handed over, grouped by the review request that follows it.
class OwnerLog : public Zel::Notifiee<TaggedRouteConfigSm> {
 public:
  void onAttribute(Zel::AttrId id, void const*) override {
    if (id == TaggedRouteConfigSm::reevaluatedKeyTriggerId) {
      std::ostringstream os;
      os << notifier()->reevaluatedKey().prefix();
      pending.insert(os.str());
    } else if (id == TaggedRouteConfigSm::reviewBacklogTriggerId) {
      bursts.push_back(pending);
      pending.clear();
    }
  }
  // The bursts since the last take, in an order that does not depend on the backlog's.
  Bursts take() {
    Bursts out;
    out.swap(bursts);
    std::sort(out.begin(), out.end());
    return out;
  }

  Keys pending;  // keys not yet followed by a review request
  Bursts bursts;
};

class TaggedRouteConfigSmTest : public RuntimeFixture {
 protected:
  void SetUp() override {
    RuntimeFixture::SetUp();
    keySetIs("maint", {kIpv4.net(0), kIpv6.net(0), kIpv4.net(1)});
    keySetIs("edge", {kIpv6.net(5)});
    tagStatus->configTagEntryIs("maint")->operStateIs(1);
    tagStatus->configTagEntryIs("edge")->operStateIs(1);
  }
  void start() {
    sm = TaggedRouteConfigSm::TaggedRouteConfigSmIs("red", index, tagStatus, tagIds, scheduler());
    log = Zel::make<OwnerLog>();
    log->notifierIs(sm);
    runToIdle();
  }
  Quill::Ptr<Routing::RouteKeySet> keySetIs(char const* tag, std::vector<std::string> const& prefixes) {
    auto set = Routing::RouteKeySet::RouteKeySetIs(tag);
    for (auto const& p : prefixes) set->routeKeySetIs(routeKey(p));
    index->tagToRouteKeySetIs(tag, set);
    return set;
  }
  void operStateIs(char const* tag, ConfigTag::OperState state) { tagStatus->configTagEntry(tag)->operStateIs(state); }

  Quill::Ptr<Routing::RouteListTaggedConfig> index = Routing::RouteListTaggedConfig::RouteListTaggedConfigIs("red");
  Quill::Ptr<ConfigTag::ConfigTagStatus> tagStatus = ConfigTag::ConfigTagStatus::ConfigTagStatusIs();
  Quill::Ptr<ConfigTag::ConfigTagIdState> tagIds = ConfigTag::ConfigTagIdState::ConfigTagIdStateIs();
  Quill::Ptr<TaggedRouteConfigSm> sm;
  Quill::Ptr<OwnerLog> log;
  Keys const maintKeys{kIpv4.net(0), kIpv6.net(0), kIpv4.net(1)};
};

TEST_F(TaggedRouteConfigSmTest, ATagSwitchedOffAndOnAsksForTheReviewOfItsKeysInOneBurst) {
  start();
  EXPECT_EQ(log->take(), Bursts{}) << "step 1: nothing to review at start";

  // 2. The tag is disabled: its keys, and only its, in one burst after the task ran.
  operStateIs("maint", 2);
  EXPECT_EQ(log->take(), Bursts{}) << "step 2: the tag waits in the backlog";
  runToIdle();
  EXPECT_EQ(log->take(), Bursts{maintKeys}) << "step 2";

  // 3. Enabled and disabled again before the task runs: reviewed once.
  operStateIs("maint", 1);
  operStateIs("maint", 0);
  runToIdle();
  EXPECT_EQ(log->take(), Bursts{maintKeys}) << "step 3";

  // 4. Both tags change in one window: one burst each.
  operStateIs("maint", 3);
  operStateIs("edge", 2);
  runToIdle();
  EXPECT_EQ(log->take(), (Bursts{maintKeys, Keys{kIpv6.net(5)}})) << "step 4";

  // 5. A tag that gains a state entry later is reviewed when it does; one whose entry goes is not.
  keySetIs("late", {kIpv4.net(9)});
  EXPECT_EQ(log->take(), Bursts{Keys{kIpv4.net(9)}}) << "step 5: a new set is reviewed whole at once";
  tagStatus->configTagEntryIs("late")->operStateIs(2);
  runToIdle();
  EXPECT_EQ(log->take(), Bursts{Keys{kIpv4.net(9)}}) << "step 5";
  tagStatus->configTagEntryDel("late");
  runToIdle();
  EXPECT_EQ(log->take(), Bursts{}) << "step 5";
}

TEST_F(TaggedRouteConfigSmTest, ATagIdNamedAfterItsStatusReviewsTheTagsKeys) {
  start();
  // 1. The id gets the name of a tag that has a state: its keys are reviewed.
  tagIds->tagIdToTagStrIs(3, "maint");
  runToIdle();
  EXPECT_EQ(log->take(), Bursts{maintKeys}) << "step 1";

  // 2. An id named after a tag with no state entry, or with no key set: nothing to review.
  tagIds->tagIdToTagStrIs(4, "nobody");
  tagStatus->configTagEntryIs("empty")->operStateIs(1);
  runToIdle();
  (void)log->take();
  tagIds->tagIdToTagStrIs(5, "empty");
  runToIdle();
  EXPECT_EQ(log->take(), Bursts{}) << "step 2";
}

TEST_F(TaggedRouteConfigSmTest, KeysAddedToOrRemovedFromASetAreReviewedAlone) {
  start();
  auto set = index->tagToRouteKeySet("maint");
  set->routeKeySetIs(routeKey(kIpv6.net(7)));
  EXPECT_EQ(log->take(), Bursts{Keys{kIpv6.net(7)}}) << "added: at once, without the task";
  set->routeKeySetDel(routeKey(kIpv4.net(0)));
  EXPECT_EQ(log->take(), Bursts{Keys{kIpv4.net(0)}}) << "removed";
  runToIdle();
  EXPECT_EQ(log->take(), Bursts{});
}

TEST_F(TaggedRouteConfigSmTest, ASetThatComesOrGoesIsReviewedWholeAReplacedOneIsWatchedAnew) {
  start();
  // 1. A set goes: its keys are reviewed, the routes lost their tag's watch.
  index->tagToRouteKeySetDel("edge");
  EXPECT_EQ(log->take(), Bursts{Keys{kIpv6.net(5)}}) << "step 1";

  // 2. The set of a tag is replaced: neither set is walked; the machine watches the new one.
  auto former = index->tagToRouteKeySet("maint");
  auto replacement = keySetIs("maint", {kIpv4.net(2)});
  EXPECT_EQ(log->take(), Bursts{}) << "step 2";
  former->routeKeySetIs(routeKey(kIpv4.net(3)));
  EXPECT_EQ(log->take(), Bursts{}) << "step 2: the former set is no longer watched";
  replacement->routeKeySetIs(routeKey(kIpv4.net(4)));
  EXPECT_EQ(log->take(), Bursts{Keys{kIpv4.net(4)}}) << "step 2";

  // 3. The tag changes state: the keys of the set it has now.
  operStateIs("maint", 2);
  runToIdle();
  EXPECT_EQ(log->take(), (Bursts{Keys{kIpv4.net(2), kIpv4.net(4)}})) << "step 3";
}

TEST_F(TaggedRouteConfigSmTest, TheTaskYieldsBetweenTagsAndEndsTheBacklogLater) {
  itemsPerRun = 1;
  scheduler()->yieldPolicyIs(Halyard::YieldPolicy::afterItemsOf(itemsPerRun));
  for (char const* tag : {"t1", "t2", "t3"}) {
    keySetIs(tag, {kIpv4.net(tag[1] - '0' + 10)});
    tagStatus->configTagEntryIs(tag)->operStateIs(1);
  }
  start();
  (void)log->take();
  for (char const* tag : {"t1", "t2", "t3"}) operStateIs(tag, 0);
  std::vector<std::size_t> perRun;
  while (scheduler()->runOnce()) perRun.push_back(log->take().size());
  EXPECT_EQ(perRun, (std::vector<std::size_t>{1, 1, 1}));
}

TEST_F(TaggedRouteConfigSmTest, TeardownReleasesEverything) {
  auto const live = liveSinceStart();
  start();
  operStateIs("maint", 2);
  log = nullptr;
  sm = nullptr;
  runToIdle();
  EXPECT_EQ(Plinth::liveCount<TaggedRouteConfigSm>(), 0);
  EXPECT_EQ(liveSinceStart(), live);
}

// The whole chain under RouteConfigSm: a tag's state goes through this machine to the owner's review
// and so into the status store; a disabled static route also keeps its dynamic twin out.
class TaggedRoutesTest : public RuntimeFixture, public ::testing::WithParamInterface<Family> {
 protected:
  Family const f = GetParam();
  StaticRouteHarness h{f.af};
};

TEST_P(TaggedRoutesTest, ACommandTagTakesItsRoutesOutAndBringsThemBack) {
  auto const p = f.net(3);
  Keys const own{viaText(2, f.hop(1))};
  h.configTagStatus = ConfigTag::ConfigTagStatus::ConfigTagStatusIs();
  h.configTagIdState = ConfigTag::ConfigTagIdState::ConfigTagIdStateIs();
  h.configTagStatus->configTagEntryIs("maint")->operStateIs(1);
  auto keys = Routing::RouteKeySet::RouteKeySetIs("maint");
  keys->routeKeySetIs(routeKey(p));
  auto index = Routing::RouteListTaggedConfig::RouteListTaggedConfigIs(h.vrfName);
  index->tagToRouteKeySetIs("maint", keys);
  h.tagged = Routing::VrfRouteListTaggedConfig::VrfRouteListTaggedConfigIs();
  h.tagged->vrfConfigIs(h.vrfName, index);
  auto route = h.routeIs(*h.config, p);
  route->viaIs(StaticRouteHarness::via(f.hop(1)), {});
  route->commandTagIdIs(3);
  h.routeIs(*h.dynamic, p)->viaIs(StaticRouteHarness::via(f.hop(2)), {});
  h.start(scheduler());
  runToIdle();
  EXPECT_EQ(h.viasOf(p), own) << "step 1: the id has no name yet: enabled";

  // 2. The id gets its name, the tag is disabled: out, and the dynamic twin stays shadowed.
  h.configTagIdState->tagIdToTagStrIs(3, "maint");
  h.configTagStatus->configTagEntry("maint")->operStateIs(2);
  runToIdle();
  EXPECT_EQ(h.status->route(pfx(p)), nullptr) << "step 2";
  h.configTagStatus->configTagEntry("maint")->operStateIs(3);
  runToIdle();
  EXPECT_EQ(h.viasOf(p), own) << "step 2: enabled again";
  h.configTagStatus->configTagEntry("maint")->operStateIs(0);
  runToIdle();
  EXPECT_EQ(h.status->route(pfx(p)), nullptr) << "step 2";

  // 3. The VRF's index goes: its routes are reviewed once more, and the machine goes with it.
  h.tagged->vrfConfigDel(h.vrfName);
  EXPECT_FALSE(h.sm->taggedRouteConfigSm()) << "step 3";
  EXPECT_EQ(h.sm->backlogSize(), 1u) << "step 3";
  runToIdle();
  EXPECT_EQ(h.status->route(pfx(p)), nullptr) << "step 3: the route's tag is still off";
}

INSTANTIATE_TEST_SUITE_P(Families, TaggedRoutesTest, ::testing::Values(kIpv4, kIpv6), familyName);

}  // namespace
}  // namespace BowlineTest
