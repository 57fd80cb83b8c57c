// Fuzz::ScenarioGenerator: random scenarios for the host program, as YAML, from an explicit seed
// (the same seed always gives the same text). A valid scenario is one `bowline check` should
// accept: it keeps a model of what exists at each step (VRFs, routes, injected routes, interface
// addresses) so that steps only name what is there. Sizes stay small (tens of routes) and the
// addresses come from small pools in the documentation ranges, so that routes share next hops and
// prefixes and interact: recursion through other routes, floating and default routes, overlapping
// prefixes, interface subnets that come and go.
//
// A broken scenario is a valid one mutated (mutateScenario): wrong types, missing keys, values out of
// range, bad addresses, unknown names, removals of what does not exist, duplicated keys, byte edits
// and truncation, in the YAML and in the route files. A failing scenario shrinks (reduceScenario) to
// one that still fails the same way, for a person to read.
#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "host/fuzz/YamlTree.h"

namespace BowlineTest::Fuzz {

// A route file written beside the scenario; `name` is relative to the scenario's folder.
struct GeneratedFile {
  std::string name;
  std::string text;
};

struct GeneratedScenario {
  YamlTree tree;  // the scenario as built (and mutated, for a broken one)
  std::vector<GeneratedFile> files;
  std::string text;          // the scenario file as written
  bool broken = false;       // made by mutations (check may still accept it)
  bool textEdited = false;   // `text` was edited past the tree: it is not tree.emit()
  std::string mutation;      // how a broken one was made
};

// The seed of case `index` of a run seeded with `seed`: each case can be made again alone.
[[nodiscard]] std::uint64_t caseSeed(std::uint64_t seed, std::uint64_t index);

// Small random choices over an explicitly seeded engine (no std::random_device anywhere).
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}
  // 0 .. n-1 (n > 0).
  [[nodiscard]] std::size_t below(std::size_t n) { return std::size_t(engine_() % n); }
  // True with probability `percent` / 100.
  [[nodiscard]] bool percent(unsigned percent) { return below(100) < percent; }
  template <class T>
  [[nodiscard]] T const& pick(std::vector<T> const& v) {
    return v[below(v.size())];
  }
  // An index drawn by weight.
  [[nodiscard]] std::size_t weighted(std::vector<unsigned> const& weights);
  [[nodiscard]] std::uint64_t raw() { return engine_(); }

 private:
  std::mt19937_64 engine_;
};

class ScenarioGenerator {
 public:
  explicit ScenarioGenerator(std::uint64_t seed) : dice_(seed) {}

  // A scenario `bowline check` should accept.
  [[nodiscard]] GeneratedScenario valid();
  // A valid scenario with one to three mutations.
  [[nodiscard]] GeneratedScenario broken();

 private:
  Dice dice_;
};

// Applies one to three mutations to `s` (tree, files and text) and names them in s.mutation
// (ScenarioMutator.cpp).
void mutateScenario(GeneratedScenario& s, Dice& dice);

// Removes one piece at a time - a map field, a list item or a line of a route file - parents before
// children, keeping each removal after which `stillFails`, until no single removal does or the
// budget of tries is spent. A scenario edited as bytes is returned as it is (ScenarioReducer.cpp).
[[nodiscard]] GeneratedScenario reduceScenario(GeneratedScenario s,
                                               std::function<bool(GeneratedScenario const&)> const& stillFails,
                                               std::size_t maxTries = 1500);

}  // namespace BowlineTest::Fuzz
