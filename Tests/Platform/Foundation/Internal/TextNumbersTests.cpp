#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/TextNumbers.h"

namespace brindle::internal {
namespace {

TextView text(std::string_view ascii) { return TextView::latin1(ascii); }

TEST(TextNumbersTest, Tour) {
  EXPECT_EQ(integer64FromText(text("  -42abc")), -42);
  EXPECT_EQ(doubleFromText(text("2.5e3 metres")), 2500);
  EXPECT_TRUE(booleanFromText(text("Yes")));

  const auto parsed = parseInteger(text(" 17 rest"));
  ASSERT_TRUE(parsed);
  EXPECT_EQ(parsed->value, 17);
  EXPECT_EQ(parsed->end, 3u);
}

TEST(TextNumbersTest, Integers) {
  using Limits = std::numeric_limits<std::int64_t>;
  const struct {
    std::string_view text;
    std::int64_t value;
  } cases[] = {
      {"", 0},
      {"abc", 0},
      {"-", 0},
      {"- 1", 0},
      {"+7", 7},
      {"\n\t 007", 7},
      {"12.9", 12},
      {"0x10", 0},
      {"9223372036854775807", Limits::max()},
      {"9223372036854775808", Limits::max()},
      {"-9223372036854775808", Limits::min()},
      {"-9223372036854775809", Limits::min()},
      {"99999999999999999999999999", Limits::max()},
      {"-99999999999999999999999999", Limits::min()},
  };
  for (const auto& c : cases) EXPECT_EQ(integer64FromText(text(c.text)), c.value) << c.text;
  EXPECT_FALSE(parseInteger(text("+")));
  EXPECT_EQ(integer64FromText(TextView::utf16(u"\u00A0\u200312\u0663")), 12);
}

TEST(TextNumbersTest, Integers32) {
  EXPECT_EQ(integer32FromText(text("2147483648")), 2147483647);
  EXPECT_EQ(integer32FromText(text("-2147483649")), -2147483647 - 1);
  EXPECT_EQ(integer32FromText(text("-5")), -5);
}

TEST(TextNumbersTest, UnsignedAndHexadecimal) {
  EXPECT_EQ(parseUnsigned(text("18446744073709551615"))->value, 18446744073709551615u);
  EXPECT_EQ(parseUnsigned(text("18446744073709551616"))->value, 18446744073709551615u);
  EXPECT_EQ(parseHexadecimal(text(" 0xFFg"))->value, 255u);
  EXPECT_EQ(parseHexadecimal(text(" 0xFFg"))->end, 5u);
  EXPECT_EQ(parseHexadecimal(text("beef"))->value, 0xBEEFu);
  EXPECT_EQ(parseHexadecimal(text("0x"))->end, 1u);
  EXPECT_EQ(parseHexadecimal(text("11112222333344445"))->value, ~0ull);
  EXPECT_FALSE(parseHexadecimal(text("x")));
}

TEST(TextNumbersTest, Doubles) {
  const struct {
    std::string_view text;
    double value;
    std::size_t end;
  } cases[] = {
      {"1", 1, 1},      {"-1.5", -1.5, 4},      {".5x", 0.5, 2},  {"5.", 5, 2},
      {"1e3", 1000, 3}, {"1e", 1, 1},           {"1e+", 1, 1},    {"1E-2", 0.01, 4},
      {"1,5", 1, 1},    {"0x10", 0, 1},         {"  3", 3, 3},    {"1.5.2", 1.5, 3},
      {"0.1", 0.1, 3},  {"1e400", HUGE_VAL, 5}, {"1e-400", 0, 6}, {"-1e400", -HUGE_VAL, 6},
  };
  for (const auto& c : cases) {
    const auto parsed = parseDouble(text(c.text));
    ASSERT_TRUE(parsed) << c.text;
    EXPECT_EQ(parsed->value, c.value) << c.text;
    EXPECT_EQ(parsed->end, c.end) << c.text;
  }
  for (const char* none : {"", "-", ".", "-.", "e5", ".e5", "inf", "nan"}) {
    EXPECT_FALSE(parseDouble(text(none))) << none;
  }
  EXPECT_TRUE(std::signbit(doubleFromText(text("-0"))));
}

TEST(TextNumbersTest, Booleans) {
  for (const char* yes : {"YES", "y", "true", "T", "1", "9", "  -0001", "+7", "0005", "12"}) {
    EXPECT_TRUE(booleanFromText(text(yes))) << yes;
  }
  for (const char* no : {"", "NO", "false", "0", "000", "-", "0.5", "x1"}) {
    EXPECT_FALSE(booleanFromText(text(no))) << no;
  }
}

}  // namespace
}  // namespace brindle::internal
