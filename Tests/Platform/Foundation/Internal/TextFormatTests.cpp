#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/TextEncoding.h"
#include "Platform/Foundation/Internal/TextFormat.h"

namespace brindle::internal {
namespace {

// Objects of these tests are C strings.
void describe(TextBuilder& target, const void* object) {
  target.append(textFromUtf8Replacing(static_cast<const char*>(object)));
}

std::string format(std::string_view pattern, std::initializer_list<FormatArgument> arguments) {
  const Text text = textFromUtf8Replacing(pattern);
  TextBuilder filled;
  formatText(filled, text, {arguments.begin(), arguments.size()}, describe);
  return utf8FromText(filled);
}

FormatArgument object(const char* description) { return FormatArgument::object(description); }

TEST(TextFormatTest, Tour) {
  EXPECT_EQ(format("%@ has %d items (%.1f%%)", {object("Box"), 3, 12.5}),
            "Box has 3 items (12.5%)");
  EXPECT_EQ(format("%2$@ of %1$lu", {7ul, object("one")}), "one of 7");
  EXPECT_EQ(format("[%-6s|%6s]", {"ab", std::string_view("cd")}), "[ab    |    cd]");
  EXPECT_EQ(format("%#x %X %o %p", {255, 255, 8, nullptr}), "0xff FF 10 0x0");
}

TEST(TextFormatTest, IntegersAreCutAsInC) {
  const std::int64_t big = 0x1'2345'6789'ABCD;
  EXPECT_EQ(format("%d %i", {big, big}), "1737075661 1737075661");
  EXPECT_EQ(format("%ld %lld %qd %zd %td %jd", {big, big, big, big, big, big}),
            "320255973501901 320255973501901 320255973501901 320255973501901 320255973501901 "
            "320255973501901");
  EXPECT_EQ(format("%hd %hhd %hu %hhu", {0x18000, 0x180, -1, -1}), "-32768 -128 65535 255");
  EXPECT_EQ(format("%u %x %lu", {-1, -1, -1}), "4294967295 ffffffff 18446744073709551615");
  EXPECT_EQ(format("%ld", {-5}), "-5");
  EXPECT_EQ(format("%ld", {4294967295u}), "4294967295");
  EXPECT_EQ(format("%d %ld", {std::numeric_limits<std::int32_t>::min(),
                              std::numeric_limits<std::int64_t>::min()}),
            "-2147483648 -9223372036854775808");
  enum class Colour : unsigned char { red = 200 };
  EXPECT_EQ(format("%d %d %d %d", {true, 'A', Colour::red, std::int8_t{-3}}), "1 65 200 -3");
}

// The C library is the judge.
TEST(TextFormatTest, NumbersPrintAsInC) {
  std::mt19937_64 random(3);
  const auto oneOf = [&random](std::string_view letters) {
    return letters[random() % letters.size()];
  };
  for (int round = 0; round < 30000; ++round) {
    std::string pattern = "%";
    for (const char flag : std::string_view("-+ #0")) {
      if (random() % 3 == 0) pattern.push_back(flag);
    }
    if (random() % 2 == 0) pattern += std::to_string(1 + random() % 20);
    if (random() % 2 == 0) pattern += "." + std::to_string(random() % 12);
    char expected[512];
    std::string found;
    if (random() % 2 == 0) {
      const auto value = static_cast<long long>(random() >> (random() % 64)) * (round % 2 ? 1 : -1);
      pattern += "ll";
      pattern.push_back(oneOf("diuxXo"));
      std::snprintf(expected, sizeof expected, pattern.c_str(), value);
      found = format(pattern, {value});
    } else {
      const double values[] = {0.0,         -0.0,  1.5,
                               -123456.789, 1e300, 1e-300,
                               HUGE_VAL,    NAN,   static_cast<double>(random()) / 1e6};
      const double value = values[random() % 9];
      pattern.push_back(oneOf("fFeEgGaA"));
      std::snprintf(expected, sizeof expected, pattern.c_str(), value);
      found = format(pattern, {value});
    }
    ASSERT_EQ(found, expected) << pattern;
  }
}

TEST(TextFormatTest, WidthsCountUnits) {
  EXPECT_EQ(format("[%4s][%-4s]", {"\u00E9", "\u00E9"}), "[   \u00E9][\u00E9   ]");
  EXPECT_EQ(format("[%4@]", {object("\U0001F600")}), "[  \U0001F600]");
  EXPECT_EQ(format("[%*d][%-*d][%*d]", {4, 1, 4, 2, -4, 3}), "[   1][2   ][3   ]");
  EXPECT_EQ(format("[%.*f][%.*f]", {1, 2.25, -1, 2.25}), "[2.2][2.250000]");
}

TEST(TextFormatTest, PrecisionCutsText) {
  EXPECT_EQ(format("%.2s|%.9s|%.0s", {"abc", "abc", "abc"}), "ab|abc|");
  EXPECT_EQ(format("%.2@|%.0@", {object("abc"), object("abc")}), "ab|");
  EXPECT_EQ(format("%.3s", {"a\u4E2D"}), "a");            // bytes, and no part of a character
  EXPECT_EQ(format("%.1@", {object("\U0001F600")}), "");  // nor half a pair
  const char unterminated[] = {'a', 'b', 'c'};
  EXPECT_EQ(format("%.3s", {static_cast<const char*>(unterminated)}), "abc");
}

TEST(TextFormatTest, Characters) {
  EXPECT_EQ(format("%c%c%5c|%-3c|", {'a', 0xE9, 'b', 'c'}), "a\u00E9    b|c  |");
  EXPECT_EQ(format("%C%C%lc", {u'\u4E2D', U'\U0001F600', 0x20AC}), "\u4E2D\U0001F600\u20AC");
  EXPECT_EQ(format("%c", {0x141}), "A");
  EXPECT_EQ(format("%c", {0}), std::string(1, '\0'));
}

TEST(TextFormatTest, UnitsUpToAZero) {
  EXPECT_EQ(format("%S|%@|%5S|%.1S", {u"\u4E2D", u"a", u"b", u"cd"}), "\u4E2D|a|    b|c");
  EXPECT_EQ(format("%S", {static_cast<const char16_t*>(nullptr)}), "(null)");
  const char16_t open[] = {u'x', 0xD83D, 0xDE00};  // read no further than asked
  EXPECT_EQ(format("%.3S|%.2S|%.0S|", {open, open, open}), "x\U0001F600|x||");
  EXPECT_EQ(format("%d", {u"a"}), "");
}

TEST(TextFormatTest, TextOfEveryKind) {
  EXPECT_EQ(format("%S %s", {std::u16string_view(u"\u4E2D"), std::u16string_view(u"x")}),
            "\u4E2D x");
  EXPECT_EQ(format("%@ %@ %@", {"c", std::string("s"), std::string_view("v")}), "c s v");
  EXPECT_EQ(format("%@ %@ %@ %@", {-1, 2u, 2.5, true}), "-1 2 2.5 1");
  EXPECT_EQ(format("%s", {object("described")}), "described");
  EXPECT_EQ(format("%s", {"bad \xFF byte"}), "bad \uFFFD byte");
  EXPECT_EQ(format("\u4E2D%@\u4E2D", {object("x")}), "\u4E2Dx\u4E2D");
}

TEST(TextFormatTest, NilAndNull) {
  EXPECT_EQ(format("%@ %s %@", {object(nullptr), static_cast<const char*>(nullptr), nullptr}),
            "(null) (null) (null)");
  EXPECT_EQ(format("%8@|%.3s", {object(nullptr), static_cast<const char*>(nullptr)}),
            "  (null)|(nu");
  EXPECT_EQ(format("%d", {object(nullptr)}), "0");
}

TEST(TextFormatTest, Pointers) {
  const auto* pointer = reinterpret_cast<const void*>(0x1234ABu);
  EXPECT_EQ(format("%p", {pointer}), "0x1234ab");
  EXPECT_EQ(format("%12p|%-12p|", {pointer, pointer}), "    0x1234ab|0x1234ab    |");
  EXPECT_EQ(format("%@", {pointer}), "0x1234ab");
  EXPECT_EQ(format("%p", {16}), "0x10");
}

TEST(TextFormatTest, ArgumentsThatDoNotFit) {
  EXPECT_EQ(format("%d %d %d", {2.9, -2.9, 1e300}), "2 -2 -1");
  EXPECT_EQ(format("%ld %ld", {NAN, -HUGE_VAL}), "0 -9223372036854775808");
  EXPECT_EQ(format("%.1f %.1f", {3, 18446744073709551615u}), "3.0 18446744073709551616.0");
  EXPECT_EQ(format("[%d%f%c%x]", {"text", "text", "text", "text"}), "[]");
  EXPECT_EQ(format("[%f%e]", {object("x"), nullptr}), "[]");
  EXPECT_EQ(format("[%p]", {1.5}), "[]");
}

TEST(TextFormatTest, MissingArgumentsPrintNothing) {
  EXPECT_EQ(format("[%@%d%s%f%p%c%*d%.*f]", {}), "[]");
  EXPECT_EQ(format("%d-%d", {1}), "1-");
  EXPECT_EQ(format("[%9$@%0$d%99999999999$s]", {1}), "[]");
  EXPECT_EQ(format("[%*d]", {5}), "[]");
}

TEST(TextFormatTest, HostileFormats) {
  EXPECT_EQ(format("%n%n%s", {1, 2, "x"}), "x");
  EXPECT_EQ(format("%999999999d", {1}).size(), 16384u);
  EXPECT_EQ(format("%.999999999d", {1}).size(), 16384u);
  EXPECT_EQ(format("%.999999999f", {1.0}).size(), 16386u);
  EXPECT_EQ(format("%*d", {std::numeric_limits<int>::min(), 1}).size(), 16384u);
  EXPECT_EQ(format("100%", {1}), "100%");
  EXPECT_EQ(format("%y %d", {1}), "%y 1");
}

TEST(TextFormatTest, RandomFormatsAndArgumentsAreHarmless) {
  std::mt19937 random(5);
  constexpr std::string_view kAlphabet = "%%%%%$*.0123456789-+ #'hlqLztjdiuxXocCsSfeEgGaAp@nz";
  const FormatArgument pool[] = {1,
                                 -1L,
                                 2.5,
                                 "c",
                                 std::string_view("view"),
                                 object("object"),
                                 nullptr,
                                 std::u16string_view(u"\u4E2D"),
                                 'x',
                                 NAN,
                                 ~0ull};
  for (int round = 0; round < 20000; ++round) {
    std::string pattern;
    for (std::size_t i = random() % 24; i > 0; --i) {
      pattern.push_back(kAlphabet[random() % kAlphabet.size()]);
    }
    const FormatArgument a = pool[random() % std::size(pool)];
    const FormatArgument b = pool[random() % std::size(pool)];
    EXPECT_LE(format(pattern, {a, b}).size(), 24 * 17000u);
  }
}

}  // namespace
}  // namespace brindle::internal
