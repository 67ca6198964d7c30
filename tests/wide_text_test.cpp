#include "base/wide_text.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

struct RoundTripCase {
  const char* label;
  std::u16string wide;
  std::string utf8;
};

TEST(WideText, WellFormedTextConvertsBothWays) {
  const RoundTripCase cases[] = {
      {"empty", u"", ""},
      {"ascii", u"Box001", "Box001"},
      {"latin", u"caf\u00e9", "caf\xc3\xa9"},
      {"three-byte", u"\u6728\u6750", "\xe6\x9c\xa8\xe6\x9d\x90"},
      {"non-BMP as a surrogate pair", u"\U0001F3E0 house", "\xf0\x9f\x8f\xa0 house"},
      {"highest code point", u"\U0010FFFF", "\xf4\x8f\xbf\xbf"},
      {"nul inside", std::u16string(u"a\0b", 3), std::string("a\0b", 3)},
      // ASCII is copied 16 units at a time: non-ASCII at and around a block's edge
      {"non-ASCII last in the first block", u"0123456789abcde\u00e9xyz",
       "0123456789abcde\xc3\xa9xyz"},
      {"non-ASCII first in the second block", u"0123456789abcdef\u00e9",
       "0123456789abcdef\xc3\xa9"},
      {"two blocks and a tail", u"0123456789abcdef0123456789abcdefxy",
       "0123456789abcdef0123456789abcdefxy"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ToUtf8(c.wide), c.utf8) << c.label;
    EXPECT_EQ(FromUtf8(c.utf8), c.wide) << c.label;
    std::string appended = "already there:";
    AppendUtf8(appended, c.wide);
    EXPECT_EQ(appended, "already there:" + c.utf8) << c.label << ", appended";
  }
}

TEST(WideText, LoneSurrogatesBecomeReplacementCharacters) {
  const RoundTripCase cases[] = {
      {"lone high", std::u16string{u'a', 0xD800, u'b'},
       "a\xef\xbf\xbd"
       "b"},
      {"lone low", std::u16string{0xDC00}, "\xef\xbf\xbd"},
      {"high at the end", std::u16string{u'x', 0xDBFF}, "x\xef\xbf\xbd"},
      {"reversed pair", std::u16string{0xDC00, 0xD800}, "\xef\xbf\xbd\xef\xbf\xbd"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ToUtf8(c.wide), c.utf8) << c.label;
}

TEST(WideText, IllFormedUtf8GivesOneReplacementPerMaximalSubpart) {
  const std::u16string R(1, kReplacement);
  const struct {
    const char* label;
    std::string bytes;
    std::u16string wide;
  } cases[] = {
      {"stray continuation byte", "a\x80z", u"a" + R + u"z"},
      {"two stray continuation bytes", "\x80\xbf", R + R},
      {"truncated two-byte sequence", "\xc3", R},
      {"truncated three-byte sequence keeps one replacement", "\xe6\x9c!", R + u"!"},
      {"truncated four-byte sequence", "\xf0\x9f\x8f", R},
      {"overlong slash", "\xc0\xaf", R + R},
      {"overlong three-byte", "\xe0\x80\xaf", R + R + R},
      {"encoded surrogate", "\xed\xa0\x80", R + R + R},
      {"above U+10FFFF", "\xf4\x90\x80\x80", R + R + R + R},
      {"bytes that never start a sequence", "\xfe\xff", R + R},
      {"sequence broken by ascii", "\xe6z\x9c", R + u"z" + R},
      {"latin-1 text", "caf\xe9 noir", u"caf" + R + u" noir"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(FromUtf8(c.bytes), c.wide) << c.label;
}

TEST(WideText, TrimWhitespaceRemovesOnlyBlanksTabsAndLineBreaksAtTheEnds) {
  const struct {
    std::u16string in, out;
  } cases[] = {
      {u"", u""},
      {u" \t\r\n", u""},
      {u"  token  ", u"token"},
      {u"\ttok en\r\n", u"tok en"},
      {u"\u00a0nbsp\u00a0", u"\u00a0nbsp\u00a0"},  // not in the trimmed set
      {u"\vvertical", u"\vvertical"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(TrimWhitespace(c.in), c.out);
}

}  // namespace
}  // namespace orvane
