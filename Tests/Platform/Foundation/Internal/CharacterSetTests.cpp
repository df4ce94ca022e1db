#include "Platform/Foundation/Internal/CharacterSet.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

namespace brindle::internal {
namespace {

using Range = CharacterSet::Range;

TEST(CharacterSetTest, Tour) {
  const CharacterSet digits({{'0', '9'}});
  EXPECT_TRUE(digits.contains('5'));
  EXPECT_FALSE(digits.contains('a'));
  EXPECT_EQ(digits.find(TextView::latin1("ab12"), false, false), (TextRange{2, 1}));
  EXPECT_EQ(digits.find(TextView::latin1("ab12"), true, false), (TextRange{3, 1}));
  EXPECT_EQ(digits.span(TextView::latin1("12ab3")), 2u);
  EXPECT_EQ(digits.trimmed(TextView::latin1("12ab3c45")), (TextRange{2, 4}));
  EXPECT_TRUE(CharacterSet::of(CharacterClass::decimalDigit).isSupersetOf(digits));
}

TEST(CharacterSetTest, RangesAreJoined) {
  const CharacterSet set({{'d', 'f'}, {'a', 'c'}, {'b', 'e'}, {'x', 'a'}, {0x200, 0xFFFFFFFF}});
  EXPECT_EQ(set, CharacterSet({{'a', 'f'}, {0x200, 0x10FFFF}}));
  EXPECT_EQ(set.hash(), CharacterSet({{0x200, 0x10FFFF}, {'a', 'f'}}).hash());
}

TEST(CharacterSetTest, Inverts) {
  const CharacterSet everything({{0, 0x10FFFF}});
  EXPECT_EQ(everything.inverted(), CharacterSet());
  EXPECT_EQ(CharacterSet().inverted(), everything);
  EXPECT_EQ(CharacterSet({{'a', 'b'}}).inverted(), CharacterSet({{0, 0x60}, {'c', 0x10FFFF}}));
}

TEST(CharacterSetTest, Supersets) {
  const CharacterSet set({{'a', 'f'}, {0x200, 0x300}});
  EXPECT_TRUE(set.isSupersetOf(set));
  EXPECT_TRUE(set.isSupersetOf({}));
  EXPECT_TRUE(set.isSupersetOf(CharacterSet({{'b', 'c'}, {0x300, 0x300}})));
  EXPECT_FALSE(set.isSupersetOf(CharacterSet({{'e', 'g'}})));
  EXPECT_FALSE(set.isSupersetOf(CharacterSet({{'A', 'A'}})));
  EXPECT_FALSE(CharacterSet().isSupersetOf(set));
}

TEST(CharacterSetTest, PairsAreOneCharacter) {
  const TextView text = TextView::utf16(u"\U0001F600a\U0001F600");
  const CharacterSet smile = CharacterSet::of(TextView::utf16(u"\U0001F600"));
  EXPECT_EQ(smile, CharacterSet({{0x1F600, 0x1F600}}));
  EXPECT_EQ(smile.find(text, false, true), (TextRange{0, 2}));
  EXPECT_EQ(smile.find(text, true, true), (TextRange{3, 2}));
  EXPECT_EQ(smile.trimmed(text), (TextRange{2, 1}));
  EXPECT_FALSE(smile.find(text.sub(1, 3), false, false));
}

TEST(CharacterSetTest, NothingToFind) {
  const CharacterSet letter({{'a', 'z'}});
  EXPECT_FALSE(letter.find({}, false, false));
  EXPECT_FALSE(letter.find({}, true, true));
  EXPECT_FALSE(letter.find(TextView::latin1("1a"), false, true));
  EXPECT_FALSE(letter.find(TextView::latin1("a1"), true, true));
  EXPECT_EQ(letter.trimmed(TextView::latin1("abc")).length, 0u);
}

TEST(CharacterSetTest, AgreesWithAPlainSetOnRandomRanges) {
  std::mt19937 random(17);
  for (int round = 0; round < 500; ++round) {
    std::vector<Range> ranges;
    std::set<char32_t> model;
    for (std::size_t i = random() % 6; i > 0; --i) {
      const auto first = static_cast<char32_t>(random() % 300);
      const auto last = first + static_cast<char32_t>(random() % 20);
      ranges.push_back({first, last});
      for (char32_t c = first; c <= last; ++c) model.insert(c);
    }
    const CharacterSet set(ranges);
    const CharacterSet inverted = set.inverted();
    for (char32_t c = 0; c < 340; ++c) {
      ASSERT_EQ(set.contains(c), model.contains(c));
      ASSERT_NE(set.contains(c), inverted.contains(c));
    }
  }
}

}  // namespace
}  // namespace brindle::internal
