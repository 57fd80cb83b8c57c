#include "foundations/runtime/ValueText.h"

namespace Zel {

namespace {

constexpr std::string_view kOpen = "Value('";
constexpr std::string_view kTypeEnd = "', ** {";
constexpr std::string_view kClose = "})";

// Removes `lit` from the front of `rest`; false (and `rest` untouched) when it is not there.
bool eat(std::string_view& rest, std::string_view lit) {
  if (!rest.starts_with(lit)) return false;
  rest.remove_prefix(lit.size());
  return true;
}

// "'name': " at the front of `rest`, preceded by ", " unless it is the first field.
bool eatFieldHead(std::string_view& rest, std::string_view name, bool first) {
  std::string_view r = rest;
  if (!first && !eat(r, ", ")) return false;
  if (!eat(r, "'") || !eat(r, name) || !eat(r, "': ")) return false;
  rest = r;
  return true;
}

// Length of the field value at the front of `rest`: up to the first place, outside quotes and
// brackets, where `atEnd` holds. npos when there is no such place or the brackets do not match.
template <class AtEnd>
std::size_t valueLength(std::string_view rest, AtEnd atEnd) {
  char quote = 0;
  int depth = 0;
  for (std::size_t i = 0; i < rest.size(); ++i) {
    char const c = rest[i];
    if (quote) {
      if (c == '\\') {
        ++i;
      } else if (c == quote) {
        quote = 0;
      }
      continue;
    }
    if (depth == 0) {
      if (atEnd(rest.substr(i))) return i;
      // A comma outside brackets and quotes can only begin a field this form does not have.
      if (c == ',') return std::string_view::npos;
    }
    if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '(' || c == '[' || c == '{') {
      ++depth;
    } else if (c == ')' || c == ']' || c == '}') {
      if (depth == 0) return std::string_view::npos;
      --depth;
    }
  }
  return std::string_view::npos;
}

}  // namespace

std::string ValueText::print(std::string_view type, std::span<Field const> fields) {
  std::string out;
  out.reserve(kOpen.size() + type.size() + kTypeEnd.size() + kClose.size() + fields.size() * 24);
  out.append(kOpen).append(type).append(kTypeEnd);
  bool first = true;
  for (Field const& f : fields) {
    if (!first) out.append(", ");
    first = false;
    out.append("'").append(f.name).append("': ").append(f.text);
  }
  out.append(kClose);
  return out;
}

bool ValueText::parseFields(std::string_view text, std::string_view type, std::string_view const* names,
                            std::size_t count, std::string_view* out) {
  std::string_view rest = text;
  if (!eat(rest, kOpen) || !eat(rest, type) || !eat(rest, kTypeEnd)) return false;
  for (std::size_t i = 0; i < count; ++i) {
    if (!eatFieldHead(rest, names[i], i == 0)) return false;
    bool const last = i + 1 == count;
    std::size_t const len = valueLength(rest, [&](std::string_view at) {
      if (last) return at.starts_with(kClose);
      std::string_view probe = at;
      return eatFieldHead(probe, names[i + 1], false);
    });
    if (len == 0 || len == std::string_view::npos) return false;
    out[i] = rest.substr(0, len);
    rest.remove_prefix(len);
  }
  return eat(rest, kClose) && rest.empty();
}

std::string ValueText::quote(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 2);
  out.push_back('\'');
  for (char const c : text) {
    if (c == '\\' || c == '\'') out.push_back('\\');
    out.push_back(c);
  }
  out.push_back('\'');
  return out;
}

std::optional<std::string> ValueText::unquote(std::string_view text) {
  if (text.size() < 2 || text.front() != '\'' || text.back() != '\'') return std::nullopt;
  std::string_view const inner = text.substr(1, text.size() - 2);
  std::string out;
  out.reserve(inner.size());
  for (std::size_t i = 0; i < inner.size(); ++i) {
    char const c = inner[i];
    if (c == '\'') return std::nullopt;
    if (c == '\\') {
      if (++i == inner.size()) return std::nullopt;
      out.push_back(inner[i]);
      continue;
    }
    out.push_back(c);
  }
  return out;
}

}  // namespace Zel
