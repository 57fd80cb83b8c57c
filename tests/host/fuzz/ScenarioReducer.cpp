#include "host/fuzz/ScenarioGenerator.h"

#include <sstream>

namespace BowlineTest::Fuzz {

namespace {

// Removes piece `k` of the tree, counting map fields and list items depth first, parents before
// children; false when the tree has fewer pieces.
bool removePiece(YamlTree& node, std::size_t& k) {
  if (node.type() == YamlTree::Type::map) {
    if (k < node.fields().size()) {
      node.fields().erase(node.fields().begin() + std::ptrdiff_t(k));
      return true;
    }
    k -= node.fields().size();
    for (auto& field : node.fields()) {
      if (removePiece(field.second, k)) return true;
    }
  } else if (node.type() == YamlTree::Type::list) {
    if (k < node.items().size()) {
      node.items().erase(node.items().begin() + std::ptrdiff_t(k));
      return true;
    }
    k -= node.items().size();
    for (auto& item : node.items()) {
      if (removePiece(item, k)) return true;
    }
  }
  return false;
}

bool removeLine(std::vector<GeneratedFile>& files, std::size_t k) {
  for (auto& f : files) {
    std::istringstream in(f.text);
    std::string line, kept;
    std::size_t n = 0;
    bool removed = false;
    while (std::getline(in, line)) {
      if (n++ == k) {
        removed = true;
        continue;
      }
      kept += line + "\n";
    }
    if (removed) {
      f.text = kept;
      return true;
    }
    k -= n;
  }
  return false;
}

}  // namespace

GeneratedScenario reduceScenario(GeneratedScenario s, std::function<bool(GeneratedScenario const&)> const& stillFails,
                                 std::size_t maxTries) {
  if (s.textEdited) return s;
  std::size_t tries = 0;
  for (bool changed = true; changed && tries < maxTries;) {
    changed = false;
    for (std::size_t k = 0; tries < maxTries;) {
      GeneratedScenario candidate = s;
      std::size_t piece = k;
      if (!removePiece(candidate.tree, piece) && !removeLine(candidate.files, piece)) break;
      candidate.text = candidate.tree.emit();
      ++tries;
      if (stillFails(candidate)) {
        s = std::move(candidate);
        changed = true;
      } else {
        ++k;
      }
    }
  }
  return s;
}

}  // namespace BowlineTest::Fuzz
