// Fuzz::YamlTree: a small YAML document as the scenario fuzzer builds and mutates it. Unlike a
// parsed YAML node it keeps what a mutation needs: map keys may repeat (a duplicated key is one of
// the faults the fuzzer writes), and every scalar carries the kind of value it stands for, so that a
// mutation can find "an address" or "a VRF name" to break. emit() writes block-style YAML, quoting
// a scalar only where a plain one would not read back as the same text.
//
// Iterator contract: plain vectors; a walk that deletes must index, and nothing is kept across edits.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace BowlineTest::Fuzz {

// What a scalar stands for, as far as mutations care.
enum class ValueKind : std::uint8_t {
  other,
  address,   // an IP address (next hop, peer, VTEP, local address)
  prefix,    // a prefix or an interface address
  number,    // an id, preference, metric, weight, label, VNI, tag
  flag,      // true / false
  vrfName,   // a VRF named where it must exist
  intfName,  // an interface named where it must be declared
  tagName,   // a command tag
  mac,       // a router MAC
};

class YamlTree {
 public:
  enum class Type : std::uint8_t { scalar, list, map };

  YamlTree() = default;
  [[nodiscard]] static YamlTree scalar(std::string text, ValueKind kind = ValueKind::other);
  [[nodiscard]] static YamlTree list();
  [[nodiscard]] static YamlTree map();

  [[nodiscard]] Type type() const { return type_; }
  [[nodiscard]] bool isScalar() const { return type_ == Type::scalar; }
  [[nodiscard]] std::string const& text() const { return text_; }
  [[nodiscard]] ValueKind kind() const { return kind_; }
  void textIs(std::string text) { text_ = std::move(text); }

  // A map's fields in order (keys may repeat), a list's items.
  [[nodiscard]] std::vector<std::pair<std::string, YamlTree>>& fields() { return fields_; }
  [[nodiscard]] std::vector<std::pair<std::string, YamlTree>> const& fields() const { return fields_; }
  [[nodiscard]] std::vector<YamlTree>& items() { return items_; }
  [[nodiscard]] std::vector<YamlTree> const& items() const { return items_; }

  // Appends and returns the new child.
  YamlTree& add(std::string key, YamlTree value);
  YamlTree& add(std::string key, std::string text, ValueKind kind = ValueKind::other) {
    return add(std::move(key), scalar(std::move(text), kind));
  }
  YamlTree& push(YamlTree value);
  // The last field of this key, or null.
  [[nodiscard]] YamlTree* field(std::string const& key);

  // Every node below this one (itself included), depth first, parents before children.
  void walk(std::function<void(YamlTree&)> const& visit);

  // The document as block-style YAML.
  [[nodiscard]] std::string emit() const;

 private:
  void emitInto(std::string& out, int indent) const;

  Type type_ = Type::scalar;
  std::string text_;
  ValueKind kind_ = ValueKind::other;
  std::vector<std::pair<std::string, YamlTree>> fields_;
  std::vector<YamlTree> items_;
};

// The scalar as YAML writes it: plain when it reads back as the same text, else double-quoted.
[[nodiscard]] std::string yamlScalar(std::string const& text);

}  // namespace BowlineTest::Fuzz
