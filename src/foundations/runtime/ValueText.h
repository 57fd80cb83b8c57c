// Zel::ValueText: the text form shared by every value type, "Value('Type', ** {'field': v, ...})".
// It owns nothing and keeps no state: the printer joins a type name and already printed fields; the
// parser checks the type name and every fixed separator in order and hands back each field's text.
// Strings inside the form are quoted ('red'), numbers are bare, nested values keep their own form.
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace Zel {

class ValueText {
 public:
  // One field for the printer: its name and its value, already in text form.
  struct Field {
    std::string_view name;
    std::string_view text;
  };

  // "Value('type', ** {'a': 1, 'b': 'red'})".
  [[nodiscard]] static std::string print(std::string_view type, std::span<Field const> fields);
  [[nodiscard]] static std::string print(std::string_view type, std::initializer_list<Field> fields) {
    return print(type, std::span<Field const>(fields.begin(), fields.size()));
  }

  // Reads text printed by print() for the same type and field names, in the same order. Gives the
  // text of each field (a quoted string still quoted), or nothing when the type name, a field name,
  // a separator or the end does not match, or a field is empty. A field's text runs to the next
  // separator outside quotes and brackets, so quoted strings and nested forms may hold separators;
  // a comma outside them that does not begin the next field fails the parse.
  template <std::size_t N>
  [[nodiscard]] static std::optional<std::array<std::string_view, N>> parse(
      std::string_view text, std::string_view type, std::string_view const (&names)[N]) {
    std::array<std::string_view, N> fields;
    if (!parseFields(text, type, names, N, fields.data())) return std::nullopt;
    return fields;
  }
  template <std::size_t N>
  [[nodiscard]] static std::optional<std::array<std::string_view, N>> parse(
      std::string_view text, std::string_view type, std::array<std::string_view, N> const& names) {
    std::array<std::string_view, N> fields;
    if (!parseFields(text, type, names.data(), N, fields.data())) return std::nullopt;
    return fields;
  }

  // 'text', with backslash and single quote escaped by a backslash.
  [[nodiscard]] static std::string quote(std::string_view text);
  // The inverse of quote(): nothing unless the whole text is one quoted string.
  [[nodiscard]] static std::optional<std::string> unquote(std::string_view text);

  // A quoted text read by T::fromString: the fromStrep of every type printed as a quoted string.
  template <class T>
  [[nodiscard]] static std::optional<T> unquoteAs(std::string_view text) {
    auto unquoted = unquote(text);
    if (!unquoted) return std::nullopt;
    return T::fromString(*unquoted);
  }

  // A bare unsigned decimal number filling the whole text and fitting in U.
  template <class U>
  [[nodiscard]] static std::optional<U> parseUnsigned(std::string_view text) {
    static_assert(std::is_unsigned_v<U>);
    U value{};
    if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
  }

 private:
  static bool parseFields(std::string_view text, std::string_view type, std::string_view const* names,
                          std::size_t count, std::string_view* out);
};

}  // namespace Zel
