#include "graph/json_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

TEST(JsonText, NumbersUseSixSignificantDigitsAndNullForNonFinite) {
  const struct {
    float value;
    const char16_t* text;
  } cases[] = {
      {0.5f, u"0.5"},         {1.0f, u"1"},
      {1e-7f, u"1e-07"},      {1234567.0f, u"1.23457e+06"},
      {100.0f, u"100"},       {0.0254f, u"0.0254"},
      {2.2f, u"2.2"},         {-0.0f, u"-0"},
      {123456.0f, u"123456"}, {0.0001f, u"0.0001"},
      {0.00001f, u"1e-05"},   {kInf, u"null"},
      {-kInf, u"null"},       {kNaN, u"null"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(FormatJsonNumber(c.value), c.text) << c.value;
}

TEST(JsonText, VectorsAreCompactArrays) {
  EXPECT_EQ(FormatJsonColor({1, 0.5f, 0}), u"[1,0.5,0]");
  EXPECT_EQ(FormatJsonColor({1, kNaN, 0}), u"[1,null,0]");
  EXPECT_EQ(FormatJsonColor({2.5f, -1, 0}), u"[2.5,-1,0]");  // neither scaled nor clamped
  EXPECT_EQ(FormatJsonPoint3({1, -2, 3.25f}), u"[1,-2,3.25]");
  EXPECT_EQ(FormatJsonQuat({0.1f, 0.2f, 0.3f, 0.9f}), u"[0.9,0.1,0.2,0.3]");  // w first
}

TEST(JsonText, BooleansAreLowerCaseWords) {
  EXPECT_EQ(FormatJsonBool(true), u"true");
  EXPECT_EQ(FormatJsonBool(false), u"false");
}

TEST(JsonText, EscapingTouchesOnlyControlsQuotesAndBackslashes) {
  const struct {
    std::u16string in, out;
  } cases[] = {
      {u"plain", u"plain"},
      {u"say \"hi\"", u"say \\\"hi\\\""},
      {u"C:\\maps\\wood.jpg", u"C:\\\\maps\\\\wood.jpg"},
      {u"a\tb\nc\rd", u"a\\tb\\nc\\rd"},
      {std::u16string{u'x', 0x01, 0x08, 0x0C, 0x1F}, u"x\\u0001\\u0008\\u000c\\u001f"},
      {std::u16string(1, u'\0'), u"\\u0000"},
      {u"a/b", u"a/b"},
      {u"\u007f\u00e9\u6728\U0001F3E0", u"\u007f\u00e9\u6728\U0001F3E0"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(EscapeJsonString(c.in), c.out);
}

TEST(JsonText, JoinFragmentsIndentsEachAndSeparatesWithCommaLines) {
  EXPECT_EQ(JoinFragments({}, u"  "), u"");
  EXPECT_EQ(JoinFragments({u"\"a\":1"}, u"  "), u"  \"a\":1");
  EXPECT_EQ(JoinFragments({u"\"a\":1", u"\"b\":2"}, u"  "), u"  \"a\":1,\n  \"b\":2");
  EXPECT_EQ(JoinFragments({u"\"a\":1", u"\"b\":2"}, u""), u"\"a\":1,\n\"b\":2");
}

}  // namespace
}  // namespace orvane
