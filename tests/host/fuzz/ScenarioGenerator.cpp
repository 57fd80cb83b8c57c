#include "host/fuzz/ScenarioGenerator.h"

#include "host/fuzz/ScenarioBuilder.h"
#include "host/fuzz/ScenarioMutator.h"

namespace BowlineTest::Fuzz {

std::uint64_t caseSeed(std::uint64_t seed, std::uint64_t index) {
  // splitmix64 of the pair: neighbouring cases get unrelated engines.
  std::uint64_t z = seed + 0x9e3779b97f4a7c15ULL * (index + 1);
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
  return z ^ (z >> 31);
}

GeneratedScenario ScenarioGenerator::valid() { return ScenarioBuilder(dice_).build(); }

GeneratedScenario ScenarioGenerator::broken() {
  GeneratedScenario s = valid();
  mutateScenario(s, dice_);
  return s;
}

}  // namespace BowlineTest::Fuzz
