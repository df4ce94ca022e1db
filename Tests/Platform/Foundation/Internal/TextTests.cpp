#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <string_view>
#include <unordered_set>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {
namespace {

TextView narrow(std::string_view bytes) { return TextView::latin1(bytes); }
TextView wide(std::u16string_view units) { return TextView::utf16(units); }

TEST(TextTest, Tour) {
  Text text(narrow("caf\xE9"));
  EXPECT_EQ(text.size(), 4u);
  EXPECT_EQ(text[3], u'\u00E9');
  EXPECT_TRUE(text.view().isNarrow());

  text.append(u'\u2026');
  EXPECT_FALSE(text.view().isNarrow());
  EXPECT_EQ(text.view(), wide(u"caf\u00E9\u2026"));

  text.replace({0, 3}, narrow("th"));
  EXPECT_EQ(text.view(), wide(u"th\u00E9\u2026"));
  EXPECT_EQ(text.view().sub(2, 1), narrow("\xE9"));
}

TEST(TextTest, StorageIsNarrowWheneverUnitsAllowIt) {
  EXPECT_TRUE(Text(wide(u"abc\u00FF")).view().isNarrow());
  EXPECT_FALSE(Text(wide(u"abc\u0100")).view().isNarrow());
  EXPECT_TRUE(Text::utf16(u"abc").view().isNarrow());
  EXPECT_FALSE(Text::utf16(u"\u0100").view().isNarrow());

  Text text(narrow("a"));
  text.append(wide(u"b"));
  EXPECT_TRUE(text.view().isNarrow());
}

TEST(TextTest, EqualityHashAndOrderDoNotSeeTheStorage) {
  for (std::size_t size = 0; size < 70; ++size) {
    std::string bytes(size, 'x');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(200 + i % 50);
    const std::u16string units = narrow(bytes).toUtf16();
    EXPECT_EQ(narrow(bytes), wide(units)) << size;
    EXPECT_EQ(narrow(bytes).hash(), wide(units).hash()) << size;
    EXPECT_EQ(narrow(bytes) <=> wide(units), std::strong_ordering::equal) << size;
  }
  EXPECT_NE(narrow("abc"), wide(u"abd"));
  EXPECT_NE(narrow("abc"), wide(u"ab"));
  EXPECT_LT(narrow("abc"), wide(u"abd"));
  EXPECT_LT(narrow("ab"), narrow("abc"));
  EXPECT_LT(narrow("\x7F"), narrow("\x80"));
  EXPECT_GT(wide(u"\uFFFF"), wide(u"\xD800\xDC00"));
}

TEST(TextTest, HashSpreads) {
  std::unordered_set<std::size_t> hashes;
  std::unordered_set<std::size_t> lowBits;
  constexpr int kCount = 20000;
  for (int i = 0; i < kCount; ++i) {
    const std::size_t hash = narrow("key" + std::to_string(i)).hash();
    hashes.insert(hash);
    lowBits.insert(hash & 0xFFFF);
  }
  EXPECT_EQ(hashes.size(), static_cast<std::size_t>(kCount));
  // 65536 * (1 - exp(-20000 / 65536)) = 17237 different ones are expected of chance.
  EXPECT_GT(lowBits.size(), 17000u);
}

TEST(TextTest, HashSeesEveryUnitAndTheLength) {
  for (std::size_t size = 1; size < 70; ++size) {
    const std::u16string zeros(size, u'\0');
    EXPECT_NE(wide(zeros).hash(), wide(zeros).sub(1).hash());
    for (std::size_t i = 0; i < size; ++i) {
      for (const char16_t unit : {u'\x1', u'\u0101'}) {
        std::u16string other = zeros;
        other[i] = unit;
        EXPECT_NE(wide(zeros).hash(), wide(other).hash()) << size << ' ' << i;
      }
    }
  }
}

TEST(TextTest, AsciiAndLatin1AreSeenAtEveryPlace) {
  for (std::size_t size = 1; size < 40; ++size) {
    for (std::size_t i = 0; i < size; ++i) {
      std::string bytes(size, '\x7F');
      std::u16string units(size, u'\x7F');
      EXPECT_TRUE(narrow(bytes).isAscii() && wide(units).isAscii());
      bytes[i] = '\x80';
      units[i] = u'\x80';
      EXPECT_FALSE(narrow(bytes).isAscii()) << size << ' ' << i;
      EXPECT_FALSE(wide(units).isAscii()) << size << ' ' << i;
      EXPECT_TRUE(wide(units).fitsLatin1());
      units[i] = u'\u0100';
      EXPECT_FALSE(wide(units).fitsLatin1()) << size << ' ' << i;
      EXPECT_FALSE(wide(units).isAscii()) << size << ' ' << i;
    }
  }
}

TEST(TextTest, ReplacesInEveryMixOfStorages) {
  const TextView pieces[] = {narrow(""), narrow("ab"), narrow("\xFF"), wide(u"\u4E2D\u6587")};
  for (const TextView start : pieces) {
    for (const TextView piece : pieces) {
      for (std::size_t from = 0; from <= start.size(); ++from) {
        for (std::size_t count = 0; from + count <= start.size(); ++count) {
          Text text(start);
          text.replace({from, count}, piece);
          std::u16string expected = start.toUtf16();
          expected.replace(from, count, piece.toUtf16());
          EXPECT_EQ(text.view(), wide(expected));
        }
      }
    }
  }
}

TEST(TextTest, ReplacesWithAPartOfItself) {
  for (const TextView start :
       {narrow("0123456789abcdefghij"), wide(u"0123\u4E2D56789abcdefghij")}) {
    for (std::size_t from = 0; from < start.size(); ++from) {
      Text text(start);
      std::u16string expected = start.toUtf16();
      text.replace({from, 1}, text.view().sub(3, 12));
      expected.replace(from, 1, start.toUtf16().substr(3, 12));
      EXPECT_EQ(text.view(), wide(expected)) << from;
    }
  }
  Text text(narrow("ab"));
  for (int i = 0; i < 5; ++i) text.append(text);
  EXPECT_EQ(text.size(), 64u);
}

TEST(TextTest, AppendsUnits) {
  Text text;
  text.append(3, u'-');
  text.append(2, u'\u2013');
  text.append(u'x');
  EXPECT_EQ(text.view(), wide(u"---\u2013\u2013x"));
}

TEST(TextTest, KeepsLoneSurrogatesAndZeros) {
  const Text text(wide(std::u16string_view(u"\xD800\0\xDC00", 3)));
  EXPECT_EQ(text.size(), 3u);
  EXPECT_EQ(text[0], 0xD800);
  EXPECT_EQ(text[1], 0);
  EXPECT_EQ(text[2], 0xDC00);
}

}  // namespace
}  // namespace brindle::internal
