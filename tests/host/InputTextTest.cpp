// Host input text: which bytes are UTF-8 (overlong forms, surrogates and code points past U+10FFFF
// are not), how input is quoted back (escaped, cut short), and what a name may hold.
#include "host/InputText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Host::invalidUtf8At;
using Host::nameProblem;
using Host::quoteInput;

TEST(InputTextTest, Utf8IsWellFormedSequencesOnly) {
  EXPECT_FALSE(invalidUtf8At("plain ASCII").has_value());
  EXPECT_FALSE(invalidUtf8At("r\xc3\xa9seau \xe2\x98\x83 \xf0\x9f\x98\x80").has_value());  // é, ☃, 😀
  EXPECT_EQ(invalidUtf8At("ab\xc0\xafz"), 2u);                                             // overlong '/'
  EXPECT_EQ(invalidUtf8At("a\xe0\x80\xafz"), 1u);                                          // overlong, three bytes
  EXPECT_EQ(invalidUtf8At("a\xed\xa0\x80z"), 1u);                                          // a surrogate, U+D800
  EXPECT_EQ(invalidUtf8At("a\xf4\x90\x80\x80z"), 1u);                                      // past U+10FFFF
  EXPECT_EQ(invalidUtf8At("abc\xe2\x98"), 3u);                                             // cut short at the end
  EXPECT_EQ(invalidUtf8At("\x80"), 0u);                                                    // a lone continuation byte
  EXPECT_EQ(invalidUtf8At("ok\xf8\x88\x80\x80\x80"), 2u);                                  // five-byte forms are gone
}

TEST(InputTextTest, QuotesEscapeAndCut) {
  EXPECT_EQ(quoteInput("Ethernet1"), "\"Ethernet1\"");
  EXPECT_EQ(quoteInput("a\"b\\c"), "\"a\\\"b\\\\c\"");
  EXPECT_EQ(quoteInput("a\nb\tc\x1b\x7f"), "\"a\\nb\\tc\\x1b\\x7f\"");
  EXPECT_EQ(quoteInput("caf\xc3\xa9 \xff\xfe"), "\"caf\xc3\xa9 \\xff\\xfe\"");  // UTF-8 kept, the rest escaped
  EXPECT_EQ(quoteInput("x\xc2\x85y"), "\"x\\xc2\\x85y\"");                      // a C1 control
  EXPECT_EQ(quoteInput(std::string(100, 'a')), "\"" + std::string(60, 'a') + "\"...");
  // Unquoted, for another reader's message that may hold input: quotes stay as they are.
  EXPECT_EQ(Host::printable("bad \"\x1b[2J\" here", 100), "bad \"\\x1b[2J\" here");
  EXPECT_EQ(Host::printable("abcdef", 3), "abc...");
  // The cut counts characters, not bytes, and never splits one.
  std::string snowmen;
  for (int i = 0; i < 5; ++i) snowmen += "\xe2\x98\x83";
  EXPECT_EQ(quoteInput(snowmen, 3), "\"\xe2\x98\x83\xe2\x98\x83\xe2\x98\x83\"...");
}

TEST(InputTextTest, NamesAreShortUtf8WithoutControls) {
  EXPECT_FALSE(nameProblem("red", 100).has_value());
  EXPECT_FALSE(nameProblem("r\xc3\xa9seau bleu", 100).has_value());
  EXPECT_EQ(nameProblem("", 100), "is empty; a name has 1 to 100 bytes");
  EXPECT_EQ(nameProblem(std::string(101, 'x'), 100), "is 101 bytes long; a name has at most 100");
  EXPECT_EQ(nameProblem("bad\xff", 100), "is not UTF-8 text");
  EXPECT_EQ(nameProblem("tab\there", 100), "holds a control character");
  EXPECT_EQ(nameProblem("del\x7f", 100), "holds a control character");
  EXPECT_EQ(nameProblem("nel\xc2\x85", 100), "holds a control character");
}

}  // namespace
