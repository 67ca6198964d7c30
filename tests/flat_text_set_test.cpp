#include "base/flat_text_set.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <set>
#include <string>

namespace orvane {
namespace {

// The empty text is a name like any other, and must not read as a free slot.
TEST(FlatTextSet, EmptyTextIsAMemberOnceInserted) {
  FlatTextSet set;
  EXPECT_FALSE(set.Contains(u""));
  EXPECT_TRUE(set.Insert(std::u16string_view()));  // views no characters at all
  EXPECT_TRUE(set.Contains(u""));
  EXPECT_FALSE(set.Insert(u""));
  EXPECT_FALSE(set.Contains(u"Box"));
}

// Short names that share prefixes and suffixes, inserted past several growths, are held to
// std::set: every insert reports whether the text was new, every lookup agrees.
TEST(FlatTextSet, BehavesAsAnOrdinarySetThroughGrowth) {
  FlatTextSet set;
  std::set<std::u16string> model;
  std::deque<std::u16string> texts;  // the set views them: they must not move
  std::mt19937 random(11);
  for (int step = 0; step < 50000; ++step) {
    std::u16string text = u"Box_" + std::u16string(random() % 3, u'0');
    for (uint32_t digits = random() % 4; digits > 0; --digits)
      text += static_cast<char16_t>(u'0' + random() % 10);
    if (random() % 4 == 0) {
      ASSERT_EQ(set.Contains(text), model.count(text) != 0) << step;
      continue;
    }
    const std::u16string& kept = texts.emplace_back(text);
    ASSERT_EQ(set.Insert(kept), model.insert(text).second) << step;
  }
  for (const std::u16string& text : model)
    EXPECT_TRUE(set.Contains(text));
}

}  // namespace
}  // namespace orvane
