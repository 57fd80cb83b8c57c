#include "host/InputText.h"

#include <fmt/format.h>

namespace Host {

namespace {

// The length of the well-formed UTF-8 sequence at `i`, or 0.
[[nodiscard]] std::size_t sequenceAt(std::string_view t, std::size_t i) noexcept {
  auto const byte = [&](std::size_t k) { return static_cast<unsigned char>(t[k]); };
  unsigned char const c = byte(i);
  if (c < 0x80) return 1;
  std::size_t n = 0;
  unsigned char lo = 0x80, hi = 0xbf;  // the range of the second byte
  if (c >= 0xc2 && c <= 0xdf) {
    n = 2;
  } else if (c >= 0xe0 && c <= 0xef) {
    n = 3;
    if (c == 0xe0) lo = 0xa0;  // overlong
    if (c == 0xed) hi = 0x9f;  // surrogates
  } else if (c >= 0xf0 && c <= 0xf4) {
    n = 4;
    if (c == 0xf0) lo = 0x90;  // overlong
    if (c == 0xf4) hi = 0x8f;  // past U+10FFFF
  } else {
    return 0;
  }
  if (i + n > t.size() || byte(i + 1) < lo || byte(i + 1) > hi) return 0;
  for (std::size_t k = 2; k < n; ++k) {
    if (byte(i + k) < 0x80 || byte(i + k) > 0xbf) return 0;
  }
  return n;
}

// A C1 control character is U+0080..U+009F: 0xc2 0x80..0x9f in UTF-8.
[[nodiscard]] bool isC1At(std::string_view t, std::size_t i) noexcept {
  return static_cast<unsigned char>(t[i]) == 0xc2 && static_cast<unsigned char>(t[i + 1]) <= 0x9f;
}

[[nodiscard]] bool isControl(unsigned char c) noexcept { return c < 0x20 || c == 0x7f; }

}  // namespace

std::string printable(std::string_view input, std::size_t maxChars, bool quoted) {
  std::string out = quoted ? "\"" : "";
  std::size_t chars = 0, i = 0;
  while (i < input.size() && chars < maxChars) {
    unsigned char const c = static_cast<unsigned char>(input[i]);
    std::size_t const n = sequenceAt(input, i);
    std::size_t const width = n == 0 ? 1 : n;
    if (n == 0 || isControl(c) || (n == 2 && isC1At(input, i))) {
      // Not UTF-8, or a control character: escaped byte by byte.
      for (std::size_t k = 0; k < width; ++k) {
        unsigned char const b = static_cast<unsigned char>(input[i + k]);
        if (b == '\n') {
          out += "\\n";
        } else if (b == '\t') {
          out += "\\t";
        } else {
          out += fmt::format("\\x{:02x}", b);
        }
      }
    } else if (quoted && (c == '"' || c == '\\')) {
      out += '\\';
      out += char(c);
    } else {
      out.append(input.substr(i, n));
    }
    i += width;
    ++chars;
  }
  if (quoted) out += '"';
  if (i < input.size()) out += "...";
  return out;
}

std::string quoteInput(std::string_view input, std::size_t maxChars) { return printable(input, maxChars, true); }

std::optional<std::size_t> invalidUtf8At(std::string_view text) noexcept {
  std::size_t i = 0;
  while (i < text.size()) {
    // ASCII runs, the common case, a byte at a time without the decoder.
    if (static_cast<unsigned char>(text[i]) < 0x80) {
      ++i;
      continue;
    }
    std::size_t const n = sequenceAt(text, i);
    if (n == 0) return i;
    i += n;
  }
  return std::nullopt;
}

std::optional<std::string> nameProblem(std::string_view text, std::size_t maxBytes) {
  if (text.empty()) return "is empty; a name has 1 to " + std::to_string(maxBytes) + " bytes";
  if (text.size() > maxBytes) {
    return fmt::format("is {} bytes long; a name has at most {}", text.size(), maxBytes);
  }
  if (invalidUtf8At(text)) return std::string("is not UTF-8 text");
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isControl(static_cast<unsigned char>(text[i])) || (i + 1 < text.size() && isC1At(text, i))) {
      return std::string("holds a control character");
    }
  }
  return std::nullopt;
}

}  // namespace Host
