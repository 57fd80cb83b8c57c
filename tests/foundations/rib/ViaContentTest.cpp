// A via's content as deduplication sees it: which differences make another via, which do not,
// and the hash agreeing with equality; the via built from a key alone; the trace text.
#include "foundations/rib/Via.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

namespace {

using Ondex::IntfId;
using Ondex::IpGenAddr;
using Routing::Rib::ResolutionMethod;
using Routing::Rib::ResolutionRibProfileConfig;
using Routing::Rib::Via;
using Routing::Rib::ViaContent;
using Routing::Rib::ViaKey;

ViaContent base() { return ViaContent(IpGenAddr::fromV4(0x0a000001), IntfId("Ethernet1")); }

TEST(ViaContentTest, EveryFieldTakesPartInEqualityAndHash) {
  ViaContent const a = base();

  ResolutionRibProfileConfig profile;
  profile.methodAppend(ResolutionMethod::systemConnected());
  std::vector<std::function<void(ViaContent&)>> const changes = {
      [](ViaContent& c) { c.nextHopIs(IpGenAddr::fromV4(0x0a000002)); },
      [](ViaContent& c) { c.intfIdIs(IntfId("Ethernet2")); },
      [](ViaContent& c) { c.mplsLabelIs(16); },
      [](ViaContent& c) { c.flagsIs(ViaContent::kFlagNextHopFromHostPrefix); },
      [&](ViaContent& c) { c.resolutionRibProfileIs(profile); },
      [](ViaContent& c) { c.weightIs(2.5f); },
      [](ViaContent& c) { c.labelStackIs(0, 17); },
      [](ViaContent& c) { c.entryListIs(0, 1); },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    ViaContent b = base();
    changes[i](b);
    EXPECT_NE(a, b) << "change " << i;
    EXPECT_NE(a.hash(3), b.hash(3)) << "change " << i;
    EXPECT_TRUE(a < b || b < a) << "change " << i << ": the order tells them apart too";
  }

  ViaContent negZero = base();
  negZero.weightIs(-0.0f);
  EXPECT_EQ(negZero, a) << "-0 and 0 are one weight";
  EXPECT_EQ(negZero.hash(3), a.hash(3));
}

TEST(ViaContentTest, ViaFromAKeyAloneHasTheDefaultContent) {
  ViaKey const k(4, 2, 2, 1);
  Via const v(k);
  EXPECT_NE(Via(k, base()), v);
  EXPECT_NE(Via(ViaKey(5, 2, 2, 1), base()), Via(k, base())) << "the key is part of the via";

  ViaContent labelled = base();
  labelled.mplsLabelIs(0xfffff);
  EXPECT_TRUE(labelled.hasLabel()) << "0xfffff is the largest label";
  labelled.flagsIs(0x120);
  EXPECT_EQ(fmt::format("{}", Via(k, labelled)),
            "Via(4/2/staticConfig/ipv4: nextHop 10.0.0.1 intf Ethernet1 label 1048575 flags 0x120 weight 0)");
}

}  // namespace
