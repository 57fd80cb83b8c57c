#include "host/fuzz/YamlTree.h"

#include <fmt/format.h>

#include <string_view>

namespace BowlineTest::Fuzz {

YamlTree YamlTree::scalar(std::string text, ValueKind kind) {
  YamlTree t;
  t.text_ = std::move(text);
  t.kind_ = kind;
  return t;
}

YamlTree YamlTree::list() {
  YamlTree t;
  t.type_ = Type::list;
  return t;
}

YamlTree YamlTree::map() {
  YamlTree t;
  t.type_ = Type::map;
  return t;
}

YamlTree& YamlTree::add(std::string key, YamlTree value) {
  fields_.emplace_back(std::move(key), std::move(value));
  return fields_.back().second;
}

YamlTree& YamlTree::push(YamlTree value) {
  items_.push_back(std::move(value));
  return items_.back();
}

YamlTree* YamlTree::field(std::string const& key) {
  for (auto it = fields_.rbegin(); it != fields_.rend(); ++it) {
    if (it->first == key) return &it->second;
  }
  return nullptr;
}

void YamlTree::walk(std::function<void(YamlTree&)> const& visit) {
  visit(*this);
  // By index: a visit may not resize what it is not visiting, but children are re-read each time.
  for (std::size_t i = 0; i < fields_.size(); ++i) fields_[i].second.walk(visit);
  for (std::size_t i = 0; i < items_.size(); ++i) items_[i].walk(visit);
}

std::string yamlScalar(std::string const& text) {
  auto const plain = [&]() {
    if (text.empty() || text == "~" || text == "null" || text == "Null" || text == "NULL") return false;
    if (text.front() == ' ' || text.back() == ' ' || text.back() == ':') return false;
    if (std::string_view("?:,[]{}#&*!|>'\"%@`").find(text.front()) != std::string_view::npos) return false;
    if (text.front() == '-' && (text.size() == 1 || text[1] == ' ')) return false;
    if (text.find(": ") != std::string::npos || text.find(" #") != std::string::npos) return false;
    for (char c : text) {
      auto const u = static_cast<unsigned char>(c);
      if (u < 0x20 || u == 0x7f || std::string_view(",[]{}\"'\\").find(c) != std::string_view::npos) return false;
    }
    return true;
  };
  if (plain()) return text;
  std::string out = "\"";
  for (char c : text) {
    auto const u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (u < 0x20 || u == 0x7f) {
      out += fmt::format("\\x{:02x}", unsigned(u));
    } else {
      out += c;
    }
  }
  return out + "\"";
}

namespace {

std::string emptyForm(YamlTree const& t) {
  if (t.type() == YamlTree::Type::list && t.items().empty()) return "[]";
  if (t.type() == YamlTree::Type::map && t.fields().empty()) return "{}";
  return {};
}

}  // namespace

void YamlTree::emitInto(std::string& out, int indent) const {
  std::string const pad(std::size_t(indent), ' ');
  if (type_ == Type::scalar) {
    out += pad + yamlScalar(text_) + "\n";
    return;
  }
  if (type_ == Type::map) {
    for (auto const& [key, value] : fields_) {
      out += pad + yamlScalar(key) + ":";
      if (value.isScalar()) {
        out += " " + yamlScalar(value.text()) + "\n";
      } else if (auto e = emptyForm(value); !e.empty()) {
        out += " " + e + "\n";
      } else {
        out += "\n";
        value.emitInto(out, indent + 2);
      }
    }
    return;
  }
  for (YamlTree const& item : items_) {
    if (item.isScalar()) {
      out += pad + "- " + yamlScalar(item.text()) + "\n";
    } else if (auto e = emptyForm(item); !e.empty()) {
      out += pad + "- " + e + "\n";
    } else {
      // The item's first line at the deeper indent, its leading blanks turned into the dash.
      std::string child;
      item.emitInto(child, indent + 2);
      child.replace(std::size_t(indent), 2, "- ");
      out += child;
    }
  }
}

std::string YamlTree::emit() const {
  if (type_ != Type::scalar) {
    if (auto e = emptyForm(*this); !e.empty()) return e + "\n";
  }
  std::string out;
  emitInto(out, 0);
  return out;
}

}  // namespace BowlineTest::Fuzz
