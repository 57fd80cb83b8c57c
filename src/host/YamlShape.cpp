#include "host/YamlShape.h"

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <limits>
#include <vector>

#include <fmt/format.h>

#include "host/InputText.h"

namespace Host {

namespace {

// Thrown out of the parse when a limit is crossed: nothing past that point matters.
struct Stop {};

class ShapeCounter : public YAML::EventHandler {
 public:
  ShapeCounter(YamlShape& shape, YamlLimits const& limits) : shape_(shape), limits_(limits) {}

  void OnDocumentStart(YAML::Mark const& mark) override {
    if (++documents_ > 1) fail(mark, "only one document may be in the file; another starts here");
  }
  void OnDocumentEnd() override {}
  void OnNull(YAML::Mark const& mark, YAML::anchor_t anchor) override { leaf(mark, anchor); }
  void OnScalar(YAML::Mark const& mark, std::string const&, YAML::anchor_t anchor, std::string const&) override {
    leaf(mark, anchor);
  }
  void OnAlias(YAML::Mark const& mark, YAML::anchor_t anchor) override {
    ++shape_.nodes;
    add(mark, anchor < anchors_.size() ? anchors_[anchor] : 1);
  }
  void OnSequenceStart(YAML::Mark const& mark, std::string const&, YAML::anchor_t anchor,
                       YAML::EmitterStyle::value) override {
    open(mark, anchor);
  }
  void OnSequenceEnd() override { close(); }
  void OnMapStart(YAML::Mark const& mark, std::string const&, YAML::anchor_t anchor,
                  YAML::EmitterStyle::value) override {
    open(mark, anchor);
  }
  void OnMapEnd() override { close(); }

 private:
  struct Frame {
    YAML::anchor_t anchor;
    std::uint64_t size;  // its nodes, itself included, aliases expanded
  };

  [[noreturn]] void fail(YAML::Mark const& mark, std::string message) {
    shape_.errorLine = mark.is_null() ? 0 : mark.line + 1;
    shape_.error = std::move(message);
    throw Stop{};
  }
  [[nodiscard]] static std::uint64_t sum(std::uint64_t a, std::uint64_t b) noexcept {
    return a > std::numeric_limits<std::uint64_t>::max() - b ? std::numeric_limits<std::uint64_t>::max() : a + b;
  }
  void anchorIs(YAML::anchor_t anchor, std::uint64_t size) {
    if (anchor == YAML::NullAnchor) return;
    if (anchors_.size() <= anchor) anchors_.resize(anchor + 1, 1);
    anchors_[anchor] = size;
  }
  // `size` more nodes in the node being read, and in the whole; the budget is checked as they come.
  void add(YAML::Mark const& mark, std::uint64_t size) {
    if (!stack_.empty()) stack_.back().size = sum(stack_.back().size, size);
    counted(mark, size);
  }
  void counted(YAML::Mark const& mark, std::uint64_t size) {
    shape_.expandedNodes = sum(shape_.expandedNodes, size);
    std::uint64_t const budget =
        std::max(limits_.maxExpandedNodes, YamlLimits::kExpansionFactor * std::max<std::uint64_t>(shape_.nodes, 1));
    if (shape_.expandedNodes > budget) {
      fail(mark,
           fmt::format("the file's aliases expand it past {} nodes (it has {} of its own)", budget, shape_.nodes));
    }
  }
  void leaf(YAML::Mark const& mark, YAML::anchor_t anchor) {
    ++shape_.nodes;
    anchorIs(anchor, 1);
    add(mark, 1);
  }
  void open(YAML::Mark const& mark, YAML::anchor_t anchor) {
    ++shape_.nodes;
    if (stack_.size() >= limits_.maxDepth) {
      fail(mark, fmt::format("the file nests deeper than {} levels", limits_.maxDepth));
    }
    stack_.push_back(Frame{anchor, 1});
    counted(mark, 1);
  }
  void close() {
    Frame const f = stack_.back();
    stack_.pop_back();
    anchorIs(f.anchor, f.size);
    if (!stack_.empty()) stack_.back().size = sum(stack_.back().size, f.size);  // counted as it came
  }

  YamlShape& shape_;
  YamlLimits const& limits_;
  int documents_ = 0;
  std::vector<Frame> stack_;
  std::vector<std::uint64_t> anchors_;
};

}  // namespace

YamlShape yamlShape(std::string_view text, YamlLimits const& limits) {
  YamlShape shape;
  MemoryStream in(text);
  ShapeCounter counter(shape, limits);
  try {
    YAML::Parser parser(in);
    while (parser.HandleNextDocument(counter)) {
    }
  } catch (Stop const&) {
  } catch (YAML::Exception const& e) {
    shape.errorLine = e.mark.is_null() ? 0 : e.mark.line + 1;
    shape.error = printable(e.msg, 200);
  }
  return shape;
}

bool yamlShapeMayMatter(std::string_view text, YamlLimits const& limits) noexcept {
  // A level of nesting takes a bracket, or up to two levels share a column of indentation (a map's
  // key and the list under it): a quarter of the depth in either stays below the limit.
  std::size_t const deep = limits.maxDepth / 4;
  std::size_t flow = 0;
  bool lineStart = true;
  std::size_t indent = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const c = text[i];
    if (lineStart && (text.substr(i, 3) == "---" || text.substr(i, 3) == "...")) return true;
    if (lineStart && (c == ' ' || c == '-')) {
      if (++indent > deep) return true;
      continue;
    }
    lineStart = c == '\n';
    indent = 0;
    if (c == '*') return true;
    if (c == '[' || c == '{') {
      if (++flow > deep) return true;
    } else if ((c == ']' || c == '}') && flow > 0) {
      --flow;
    }
  }
  return false;
}

MemoryStream::MemoryStream(std::string_view text) : std::istream(static_cast<std::streambuf*>(this)) {
  char* p = const_cast<char*>(text.data());  // read only: a get area is never written through
  setg(p, p, p + text.size());
}

}  // namespace Host
