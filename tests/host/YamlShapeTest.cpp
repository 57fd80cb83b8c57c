// Host::yamlShape: the nodes of a text with its aliases expanded, counted from the events without
// building a tree; and the one-scan filter that tells when the pass is needed at all.
#include "host/YamlShape.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Host::YamlLimits;

TEST(YamlShapeTest, AliasesCountTheNodesTheyName) {
  // A map of two keys: the anchored list (1 + 3 nodes) and an alias to it (4 more).
  Host::YamlShape const s = Host::yamlShape("a: &x [1, 2, 3]\nb: *x\n", YamlLimits{});
  ASSERT_TRUE(s.ok()) << s.error;
  EXPECT_EQ(s.nodes, 1u + 2 + 4 + 1);          // the map, two keys, the list, the alias
  EXPECT_EQ(s.expandedNodes, 1u + 2 + 4 + 4);  // the alias stands for the list
  // An anchor inside an anchored node, aliased twice in a third.
  Host::YamlShape const nested = Host::yamlShape("a: &y [&z [1, 2], *z]\nb: [*y, *y]\n", YamlLimits{});
  ASSERT_TRUE(nested.ok()) << nested.error;
  // a: 1 + (1 + 2) + 3 = 7 nodes; b: 1 + 7 + 7.
  EXPECT_EQ(nested.expandedNodes, 1u + 1 + 7 + 1 + 15);
}

TEST(YamlShapeTest, SyntaxErrorsAndLimitsCarryTheirLine) {
  Host::YamlShape const bad = Host::yamlShape("a: [1, 2\nb: 3\n", YamlLimits{});
  EXPECT_FALSE(bad.ok());
  EXPECT_GT(bad.errorLine, 0);
  YamlLimits shallow;
  shallow.maxDepth = 3;
  Host::YamlShape const deep = Host::yamlShape("a:\n  b:\n    c: [1]\n    d:\n      e: 1\n", shallow);
  EXPECT_EQ(deep.error, "the file nests deeper than 3 levels");
  EXPECT_EQ(deep.errorLine, 3);
}

TEST(YamlShapeTest, ThePassIsNeededOnlyWhereALimitCouldBreak) {
  YamlLimits const limits;
  EXPECT_FALSE(Host::yamlShapeMayMatter("vrfs:\n  - {name: red, id: 1}\nsteps: [show, settle]\n", limits));
  EXPECT_TRUE(Host::yamlShapeMayMatter("a: &x [1]\nb: *x\n", limits));
  EXPECT_TRUE(Host::yamlShapeMayMatter("a: 1\n---\nb: 2\n", limits));
  EXPECT_TRUE(Host::yamlShapeMayMatter("a: 1\n...\n", limits));
  EXPECT_TRUE(Host::yamlShapeMayMatter("a: " + std::string(17, '[') + std::string(17, ']') + "\n", limits));
  EXPECT_TRUE(Host::yamlShapeMayMatter("a:\n" + std::string(17, ' ') + "b: 1\n", limits));
  EXPECT_FALSE(Host::yamlShapeMayMatter("a:\n" + std::string(12, ' ') + "b: [[1]]\n", limits));
  // Brackets that close do not add up.
  std::string many = "a: [";
  for (int i = 0; i < 100; ++i) many += "[1], ";
  EXPECT_FALSE(Host::yamlShapeMayMatter(many + "]\n", limits));
}

}  // namespace
