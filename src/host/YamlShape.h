// Host YAML shape: a pass over a YAML text's events, before any tree is built, that finds what a
// scenario file may not be however well-formed: more than one document, nesting past a depth, or
// aliases that expand it past a budget of nodes (a small file of nested aliases names billions of
// nodes; the tree yaml-cpp builds shares them, but every walk of it would not). The pass counts the
// nodes of each anchor once and adds that count at each alias, so it costs one parse whatever the
// aliases say.
#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>
#include <string_view>

namespace Host {

struct YamlLimits {
  std::size_t maxDepth = 64;
  // The expanded size may be this many nodes, or kExpansionFactor times the file's own nodes when
  // that is more.
  std::uint64_t maxExpandedNodes = 4'000'000;
  static constexpr std::uint64_t kExpansionFactor = 10;
};

struct YamlShape {
  std::uint64_t nodes = 0;          // in the text
  std::uint64_t expandedNodes = 0;  // with every alias replaced by its anchor's nodes
  int errorLine = 0;                // 1-based; 0 with no error
  std::string error;                // empty when the text is within the limits

  [[nodiscard]] bool ok() const noexcept { return error.empty(); }
};

// The shape of `text` (one YAML stream). A syntax error is an error of the shape, with its line.
[[nodiscard]] YamlShape yamlShape(std::string_view text, YamlLimits const& limits);

// Whether `text` could break a limit, by one scan of its bytes: it has an alias ('*'), a document
// marker line ("---" or "..."), or indentation or flow brackets that could nest past the depth.
// When not, the shape pass is not needed (it costs about half as much as building the tree).
[[nodiscard]] bool yamlShapeMayMatter(std::string_view text, YamlLimits const& limits) noexcept;

// An input stream over text in memory, read in place.
class MemoryStream : private std::streambuf, public std::istream {
 public:
  explicit MemoryStream(std::string_view text);
};

}  // namespace Host
