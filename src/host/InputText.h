// Host input text: how the host program quotes what it read back to a person, and which text it
// takes as a name. Input may be anything - binary, invalid UTF-8, megabytes on one line - so an
// error quotes it escaped and cut short, and a name that reaches the library (and from there the
// JSON output) is checked as UTF-8 without control characters here, at the boundary.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Host {

// Input quoted for an error message: in double quotes, control characters, bytes that are not
// UTF-8 and the quote and backslash escaped (\n, \t, \xNN, \", \\), cut after `maxChars`
// characters of the input with "..." after the closing quote.
inline constexpr std::size_t kQuoteChars = 60;
[[nodiscard]] std::string quoteInput(std::string_view input, std::size_t maxChars = kQuoteChars);
// The same without the quotes (a message of another reader that may hold input): escaped, cut
// after `maxChars` characters with "...".
[[nodiscard]] std::string printable(std::string_view input, std::size_t maxChars, bool quoted = false);

// The offset of the first byte that does not start a well-formed UTF-8 sequence (overlong forms,
// surrogates and code points past U+10FFFF are not), or nothing when the whole text is UTF-8.
[[nodiscard]] std::optional<std::size_t> invalidUtf8At(std::string_view text) noexcept;

// What is wrong with `text` as a name (of a VRF, an interface, a user, a tag, a label) of at most
// `maxBytes` bytes: empty, too long, not UTF-8, or holding a control character (C0, DEL, C1);
// nothing when it is a good name.
[[nodiscard]] std::optional<std::string> nameProblem(std::string_view text, std::size_t maxBytes);

}  // namespace Host
