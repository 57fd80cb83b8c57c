// Interface status: one counter bumped for every interface record that comes, goes or changes,
// for both families, and the routing-enabled answer per interface.
#include "protocol/ProtocolIntfSm.h"

#include <gtest/gtest.h>

#include "support/RuntimeFixture.h"

namespace Routing::Protocol {
namespace {

class ProtocolIntfSmTest : public BowlineTest::RuntimeFixture {};

Ondex::IntfId eth(int n) { return Ondex::IntfId("Ethernet" + std::to_string(n)); }

// One body for both families: the VRF's table, its IntfStatus kind, and how records come and go.
template <class MakeTable, class Make, class Add, class Del>
void counterScenario(MakeTable makeTable, Make makeWrapper, Add add, Del del) {
  auto table = makeTable();
  auto existing = add(*table, eth(1));
  existing->dpRoutingEnabledIs(true);
  Quill::Ptr<IntfStatus> status = makeWrapper(table);
  auto sm = IntfSm::IntfSmIs(status);
  EXPECT_TRUE(sm->initialized());
  EXPECT_EQ(status->intfStatusChanged(), 0u) << "step 1: records already there are not changes";
  EXPECT_TRUE(status->intf(eth(1)));
  EXPECT_FALSE(status->intf(eth(9))) << "no record: not enabled";

  add(*table, eth(2));  // a new record, routing off, still counts
  EXPECT_EQ(status->intfStatusChanged(), 1u) << "step 2";
  EXPECT_FALSE(status->intf(eth(2)));

  add(*table, eth(2))->dpRoutingEnabledIs(true);
  EXPECT_EQ(status->intfStatusChanged(), 2u) << "step 3: the nested machine hears the change";
  EXPECT_TRUE(status->intf(eth(2)));
  add(*table, eth(2))->dpRoutingEnabledIs(true);  // same value: nothing
  EXPECT_EQ(status->intfStatusChanged(), 2u);

  del(*table, eth(1));
  EXPECT_EQ(status->intfStatusChanged(), 3u) << "step 4: a removal counts once";
  EXPECT_FALSE(status->intf(eth(1)));

  status->intfStatusChangedIs(0xffffffffU);
  add(*table, eth(3));
  EXPECT_EQ(status->intfStatusChanged(), 0u) << "step 5: the counter wraps";
}

TEST_F(ProtocolIntfSmTest, Ipv4CounterFollowsEveryRecord) {
  counterScenario([] { return Ip::VrfIpIntfStatus::VrfIpIntfStatusIs(); },
                  [](auto t) { return Quill::Ptr<IntfStatus>(Ipv4IntfStatus::Ipv4IntfStatusIs(t)); },
                     [](Ip::VrfIpIntfStatus& t, Ondex::IntfId id) { return t.ipIntfStatusIs(id); },
                     [](Ip::VrfIpIntfStatus& t, Ondex::IntfId id) { t.ipIntfStatusDel(id); });
  EXPECT_EQ(liveSinceStart(), 0) << "teardown released every record and machine";
}

TEST_F(ProtocolIntfSmTest, Ipv6CounterFollowsEveryRecord) {
  counterScenario([] { return Ip6::VrfIp6IntfStatus::VrfIp6IntfStatusIs(); },
                  [](auto t) { return Quill::Ptr<IntfStatus>(Ipv6IntfStatus::Ipv6IntfStatusIs(t)); },
                     [](Ip6::VrfIp6IntfStatus& t, Ondex::IntfId id) { return t.intfStatusIs(id); },
                     [](Ip6::VrfIp6IntfStatus& t, Ondex::IntfId id) { t.intfStatusDel(id); });
  EXPECT_EQ(liveSinceStart(), 0);
}

TEST_F(ProtocolIntfSmTest, NullTableAnswersFalse) {
  auto v4 = Ipv4IntfStatus::Ipv4IntfStatusIs(nullptr);
  auto v6 = Ipv6IntfStatus::Ipv6IntfStatusIs(nullptr);
  EXPECT_FALSE(v4->intf(eth(1)));
  EXPECT_FALSE(v6->intf(eth(1)));
  auto sm = IntfSm::IntfSmIs(v4);
  EXPECT_TRUE(sm->initialized());
}

TEST(ProtocolIntfSmDeathTest, BaseStatusIsAProgrammingError) {
  EXPECT_DEATH((void)IntfStatus::IntfStatusIs()->intf(eth(1)), "Must be implemented in derived class");
  EXPECT_DEATH((void)IntfSm::IntfSmIs(IntfStatus::IntfStatusIs()),
               "A derived type of IntfStatus must be supplied as a constructor arg");
}

}  // namespace
}  // namespace Routing::Protocol
