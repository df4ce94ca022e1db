#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/TextCompare.h"
#include "Platform/Foundation/Internal/TextEncoding.h"

namespace brindle::internal {
namespace {

constexpr TextOptions kIgnoreCase{.caseInsensitive = true};
constexpr TextOptions kLiteral{.literal = true};
constexpr TextOptions kNumeric{.numeric = true};
constexpr TextOptions kIgnoreMarks{.diacriticInsensitive = true};

Text text(std::string_view utf8) { return textFromUtf8Replacing(utf8); }

int compare(std::string_view a, std::string_view b, TextOptions options = {}) {
  const int order = compareText(text(a), text(b), options);
  EXPECT_EQ(compareText(text(b), text(a), options), -order) << a << " / " << b;
  return order;
}

// "location,length", or "-".
std::string find(std::string_view where, std::string_view what, TextOptions options = {}) {
  const auto found = findText(text(where), text(what), options);
  return found ? std::to_string(found->location) + "," + std::to_string(found->length) : "-";
}

std::string replace(std::string_view where, std::string_view what, std::string_view with,
                    TextOptions options = {}) {
  Text result = text(where);
  const std::size_t count =
      replaceMatches(result, {0, result.size()}, text(what), text(with), options);
  return std::to_string(count) + ":" + utf8FromText(result);
}

TEST(TextCompareTest, Tour) {
  EXPECT_EQ(compare("apple", "banana"), -1);
  EXPECT_EQ(compare("Apple", "aPPLE", kIgnoreCase), 0);
  EXPECT_EQ(compare("file9", "file10", kNumeric), -1);
  EXPECT_EQ(compare("caf\u00E9", "cafe\u0301"), 0);

  EXPECT_EQ(find("hello world", "o"), "4,1");
  EXPECT_EQ(find("hello world", "o", {.backwards = true}), "7,1");
  EXPECT_EQ(find("hello world", "WORLD", kIgnoreCase), "6,5");
  EXPECT_EQ(replace("a-b-c", "-", " \u2013 "), "2:a \u2013 b \u2013 c");
}

TEST(TextCompareTest, Orders) {
  EXPECT_EQ(compare("", ""), 0);
  EXPECT_EQ(compare("", "a"), -1);
  EXPECT_EQ(compare("a", "B"), 1);
  EXPECT_EQ(compare("a", "B", kIgnoreCase), -1);
  EXPECT_EQ(compare("ab", "AbC", kIgnoreCase), -1);
  EXPECT_EQ(compare("\u00C9", "\u00E9", kIgnoreCase), 0);
  EXPECT_EQ(compare("Stra\u00DFe", "STRASSE", kIgnoreCase), 0);
  EXPECT_EQ(compare("\u212B", "\u00C5"), 0);
  EXPECT_EQ(compare("\u212B", "\u00C5", kLiteral), 1);
  EXPECT_EQ(compare("caf\u00E9", "cafe\u0301", kLiteral), 1);
  EXPECT_EQ(compare("\u00E9", "f"), -1);
  EXPECT_EQ(compare("r\u00E9sum\u00E9", "resume", kIgnoreMarks), 0);
  EXPECT_EQ(compare("a", "A", {.caseInsensitive = true, .forcedOrdering = true}), 1);
}

TEST(TextCompareTest, NumericOrder) {
  EXPECT_EQ(compare("a2", "a10"), 1);
  EXPECT_EQ(compare("a2", "a10", kNumeric), -1);
  EXPECT_EQ(compare("a02", "a2", kNumeric), 0);
  EXPECT_EQ(compare("a02b", "a2c", kNumeric), -1);
  EXPECT_EQ(compare("1.10", "1.9", kNumeric), 1);
  EXPECT_EQ(compare("2", "a", kNumeric), -1);
  EXPECT_EQ(compare("a", "a1", kNumeric), -1);
  EXPECT_EQ(compare("0", "00", kNumeric), 0);
  EXPECT_EQ(compare("A9", "a10", {.caseInsensitive = true, .numeric = true}), -1);
  EXPECT_EQ(compare("99999999999999999999999", "100000000000000000000000", kNumeric), -1);
}

TEST(TextCompareTest, Finds) {
  EXPECT_EQ(find("abc", ""), "-");
  EXPECT_EQ(find("", "a"), "-");
  EXPECT_EQ(find("abc", "abcd"), "-");
  EXPECT_EQ(find("abc", "abc"), "0,3");
  EXPECT_EQ(find("aXa", "\u4E2D"), "-");
  EXPECT_EQ(find("a\u4E2Dxa", "xa"), "2,2");
  EXPECT_EQ(find("caf\u00E9 \u4E2D", "\u00E9"), "3,1");
  EXPECT_EQ(find("ababab", "abab", {.backwards = true}), "2,4");
  EXPECT_EQ(find("a\u4E2Db\u4E2D", "\u4E2D", {.backwards = true}), "3,1");
}

TEST(TextCompareTest, FindsAnchored) {
  for (const bool caseInsensitive : {false, true}) {
    const TextOptions prefix{.caseInsensitive = caseInsensitive, .anchored = true};
    const TextOptions suffix{
        .caseInsensitive = caseInsensitive, .backwards = true, .anchored = true};
    EXPECT_EQ(find("abcab", "ab", prefix), "0,2");
    EXPECT_EQ(find("abcab", "bc", prefix), "-");
    EXPECT_EQ(find("abcab", "ab", suffix), "3,2");
    EXPECT_EQ(find("abcab", "bc", suffix), "-");
    EXPECT_EQ(find("\u4E2Dab", "\u4E2D", prefix), "0,1");
    EXPECT_EQ(find("ab\u4E2D", "b\u4E2D", suffix), "1,2");
  }
}

TEST(TextCompareTest, EquivalentCharactersMatchAsAWhole) {
  EXPECT_EQ(find("cafe\u0301!", "caf\u00E9"), "0,5");
  EXPECT_EQ(find("caf\u00E9!\u4E2D", "e\u0301"), "3,1");
  EXPECT_EQ(find("cafe\u0301", "e"), "-");
  EXPECT_EQ(find("cafe\u0301", "e", kLiteral), "3,1");
  EXPECT_EQ(find("cafe\u0301 e", "e"), "6,1");
  EXPECT_EQ(find("cafe\u0301 e\u0301", "\u00E9", {.backwards = true}), "6,2");
  EXPECT_EQ(find("\uAC01", "\uAC00"), "-");
  EXPECT_EQ(find("r\u00E9sum\u00E9", "sume", kIgnoreMarks), "2,4");
  EXPECT_EQ(find("abc", "\u0301", kIgnoreMarks), "-");
}

TEST(TextCompareTest, FindsIgnoringCase) {
  EXPECT_EQ(find("die STRASSE", "stra\u00DFe", kIgnoreCase), "4,7");
  EXPECT_EQ(find("die Stra\u00DFe", "STRASSE", kIgnoreCase), "4,6");
  EXPECT_EQ(find("Stra\u00DFe", "s", {.caseInsensitive = true, .backwards = true}), "0,1");
  EXPECT_EQ(find("\u0421\u041B\u041E\u0412\u041E", "\u043E", kIgnoreCase), "2,1");
  EXPECT_EQ(find("x\U00010400", "\U00010428", kIgnoreCase), "1,2");
  EXPECT_EQ(find("caf\u00C9", "\u00E9", {.caseInsensitive = true, .literal = true}), "3,1");
  EXPECT_EQ(find("E\u0301", "e", {.caseInsensitive = true, .literal = true}), "0,1");
}

TEST(TextCompareTest, LoneSurrogatesAreFoundAndPairsAreNotSplit) {
  EXPECT_EQ(findText(TextView::utf16(u"a\xD83D"), TextView::utf16(u"\xD83D"))->location, 1u);
  EXPECT_FALSE(findText(TextView::utf16(u"a\xD83D\xDE00"), TextView::utf16(u"\xDE00"), {}));
}

TEST(TextCompareTest, Replaces) {
  EXPECT_EQ(replace("aaa", "aa", "b"), "1:ba");
  EXPECT_EQ(replace("aaa", "aa", "b", {.backwards = true}), "1:ab");
  EXPECT_EQ(replace("abc", "x", "y"), "0:abc");
  EXPECT_EQ(replace("abc", "", "y"), "0:abc");
  EXPECT_EQ(replace("xAxax", "a", "", kIgnoreCase), "2:xxx");
  EXPECT_EQ(replace("aXa", "a", "\u4E2D"), "2:\u4E2DX\u4E2D");
  EXPECT_EQ(replace("aXa", "a", "", {.anchored = true}), "1:Xa");
  EXPECT_EQ(replace("aXa", "a", "", {.backwards = true, .anchored = true}), "1:aX");

  Text part = text("aaaa");
  EXPECT_EQ(replaceMatches(part, {1, 2}, text("a"), text("bb")), 2u);
  EXPECT_EQ(part, text("abbbba"));
}

TEST(TextCompareTest, ReplacesWithItself) {
  Text all = text("aba");
  EXPECT_EQ(replaceMatches(all, {0, 3}, all.view().sub(0, 1), all), 2u);
  EXPECT_EQ(all, text("abababa"));
}

// The folded search must find what the plain one finds.
TEST(TextCompareTest, AgreesWithPlainSearchOnRandomText) {
  std::mt19937 random(7);
  const auto letters = [&random](std::size_t size) {
    std::u16string units;
    for (std::size_t i = 0; i < size; ++i) units.push_back(u"ab\u4E2D\u00E9"[random() % 4]);
    return units;
  };
  for (int round = 0; round < 2000; ++round) {
    const std::u16string where = letters(random() % 30);
    const std::u16string what = letters(1 + random() % 3);
    const auto plain = where.find(what);
    const auto last = where.rfind(what);
    for (const TextOptions options : {TextOptions{}, kIgnoreCase, kLiteral}) {
      const auto found = findText(TextView::utf16(where), TextView::utf16(what), options);
      EXPECT_EQ(found ? found->location : std::u16string::npos, plain);
      TextOptions backwards = options;
      backwards.backwards = true;
      const auto end = findText(TextView::utf16(where), TextView::utf16(what), backwards);
      EXPECT_EQ(end ? end->location : std::u16string::npos, last);
    }
  }
}

TEST(TextCompareTest, ManyMarksTakeLinearTime) {
  std::u16string marks = u"e";
  marks.append(200000, u'\u0301');
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(findText(TextView::utf16(marks), TextView::utf16(u"\u4E2D"), kIgnoreCase));
  EXPECT_FALSE(findText(TextView::utf16(marks), TextView::utf16(u"e\u4E2D"),
                        {.caseInsensitive = true, .backwards = true}));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace brindle::internal
