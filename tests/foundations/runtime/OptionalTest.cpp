// Zel::Optional: reading an empty one raises, clearing, absent against present-but-empty, order,
// hashing and the text form.
#include "foundations/runtime/Optional.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <type_traits>
#include <vector>

#include "foundations/types/IpGenAddr.h"

namespace {

using Zel::Optional;

// A value type with a hash of its own and a vector inside, like a route's attributes.
struct Communities {
  std::vector<std::uint32_t> values;
  friend bool operator==(Communities const&, Communities const&) = default;
  friend auto operator<=>(Communities const&, Communities const&) = default;
  [[nodiscard]] std::uint32_t hash(std::uint32_t seed) const {
    Zel::HashBuilder h(seed);
    for (std::uint32_t v : values) h.add(v);
    return h.add(values.size()).value();
  }
};

// A value type that has operator< only.
struct LessOnly {
  int v;
  friend bool operator==(LessOnly a, LessOnly b) { return a.v == b.v; }
  friend bool operator<(LessOnly a, LessOnly b) { return a.v < b.v; }
};

TEST(OptionalTest, EmptyReadRaisesAndClearEmpties) {
  Optional<int> o;
  EXPECT_THROW((void)*o, Zel::BadOptionalAccess);
  Optional<int> const& co = o;
  EXPECT_THROW((void)co.value(), Zel::BadOptionalAccess);
  Optional<Communities> oc;
  EXPECT_THROW((void)oc->values, Zel::BadOptionalAccess);
  EXPECT_EQ(o.valueOr(9), 9);

  o.valueIs(4);
  EXPECT_EQ(o.valueOr(9), 4);
  o.optionalClearValue();
  EXPECT_THROW((void)o.value(), Zel::BadOptionalAccess);
}

TEST(OptionalTest, AbsentDiffersFromPresentEmpty) {
  Optional<Communities> const absent;
  Optional<Communities> const presentEmpty{Communities{}};
  Optional<Communities> const present{Communities{{100, 200}}};
  EXPECT_NE(absent, presentEmpty);
  EXPECT_NE(absent.hash(1), presentEmpty.hash(1));
  EXPECT_NE(presentEmpty, present);
  EXPECT_EQ(present.hash(1), Optional<Communities>(Communities{{100, 200}}).hash(1));

  // Empty first, then by value; also for a type with operator< only.
  EXPECT_LT(absent, presentEmpty);
  EXPECT_LT(presentEmpty, present);
  EXPECT_LT(Optional<LessOnly>(), Optional<LessOnly>(LessOnly{-5}));
  EXPECT_LT(Optional<LessOnly>(LessOnly{1}), Optional<LessOnly>(LessOnly{2}));
  EXPECT_FALSE(Optional<LessOnly>(LessOnly{2}) < Optional<LessOnly>());
  // Plain integers hash through Zel::Hash.
  EXPECT_NE(Optional<int>(0).hash(1), Optional<int>().hash(1));
}

TEST(OptionalTest, TextFormAndPlainCopy) {
  using Ondex::IpGenAddr;
  Optional<IpGenAddr> const none;
  Optional<IpGenAddr> const local{IpGenAddr::fromV4(0x0a000001)};
  EXPECT_EQ(valueToStrep(none), "None");
  EXPECT_EQ(Optional<IpGenAddr>::fromStrep("None"), none);
  EXPECT_EQ(Optional<IpGenAddr>::fromStrep(valueToStrep(local)), local);
  EXPECT_FALSE(Optional<IpGenAddr>::fromStrep("'10.0.0.256'").has_value());
  std::ostringstream os;
  os << local << ' ' << none;
  EXPECT_EQ(os.str(), "10.0.0.1 None");
  EXPECT_TRUE(std::is_trivially_copyable_v<Optional<IpGenAddr>>);
}

}  // namespace
