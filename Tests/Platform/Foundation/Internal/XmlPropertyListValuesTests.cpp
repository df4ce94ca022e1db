#include "Platform/Foundation/Internal/XmlPropertyListValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace brindle::internal {
namespace {

using namespace std::string_view_literals;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(XmlPropertyListValuesTest, Tour) {
  EXPECT_EQ(parseXmlInteger(" -42\n"), PropertyInteger::fromSigned(-42));
  EXPECT_EQ(formatXmlInteger(PropertyInteger::fromSigned(-42)), "-42");
  EXPECT_EQ(parseXmlReal("2.5e3"), 2500.0);
  EXPECT_EQ(formatXmlReal(0.1), "0.1");
  EXPECT_EQ(parseXmlDate("2001-01-02T00:00:01Z"), 86401.0);
  EXPECT_EQ(formatXmlDate(86401), "2001-01-02T00:00:01Z");
  EXPECT_EQ(decodeBase64("aGVs\n\tbG8="), "hello");
  EXPECT_EQ(encodeBase64("hello"), "aGVsbG8=");
  EXPECT_EQ(trimmed("\r\n\t a b "), "a b");
}

TEST(XmlPropertyListValuesTest, IntegersThatComeBack) {
  const struct {
    std::string_view text;
    PropertyInteger value;
  } cases[] = {
      {"0", PropertyInteger::fromSigned(0)},
      {"9223372036854775807", PropertyInteger::fromSigned(INT64_MAX)},
      {"-9223372036854775808", PropertyInteger::fromSigned(INT64_MIN)},
      {"9223372036854775808", PropertyInteger::fromUnsigned(std::uint64_t{1} << 63U)},
      {"18446744073709551615", PropertyInteger::fromUnsigned(UINT64_MAX)},
      {"18446744073709551616", {0, 1}},
      {"-9223372036854775809", {INT64_MAX, -1}},
      {"-18446744073709551616", {0, -1}},
      {"170141183460469231731687303715884105727", {UINT64_MAX, INT64_MAX}},
      {"-170141183460469231731687303715884105728", {0, INT64_MIN}},
  };
  for (const auto& [text, value] : cases) {
    EXPECT_EQ(parseXmlInteger(text), value) << text;
    EXPECT_EQ(formatXmlInteger(value), text);
  }
}

TEST(XmlPropertyListValuesTest, OtherIntegers) {
  const struct {
    std::string_view text;
    std::optional<PropertyInteger> value;
  } cases[] = {
      {"+7", PropertyInteger::fromSigned(7)},
      {"-0", PropertyInteger::fromSigned(0)},
      {"0x1F", PropertyInteger::fromSigned(31)},
      {"-0X1f", PropertyInteger::fromSigned(-31)},
      {"0007", PropertyInteger::fromSigned(7)},
      {"00000000000000000000000000000000000000000000000000007", PropertyInteger::fromSigned(7)},
      {"0xFFFFFFFFFFFFFFFFF", PropertyInteger{UINT64_MAX, 15}},
      {"170141183460469231731687303715884105728", std::nullopt},
      {"-170141183460469231731687303715884105729", std::nullopt},
      {"340282366920938463463374607431768211456", std::nullopt},
      {"-340282366920938463463374607431768211456", std::nullopt},
      {"99999999999999999999999999999999999999999999999999999999", std::nullopt},
      {"99999999999999999999x", std::nullopt},
      {"", std::nullopt},
      {"-", std::nullopt},
      {"+-1", std::nullopt},
      {"--1", std::nullopt},
      {"0x", std::nullopt},
      {"0x-1", std::nullopt},
      {"1F", std::nullopt},
      {"1.0", std::nullopt},
      {"1 2", std::nullopt},
      {"42xy", std::nullopt},
      {"1\0"sv, std::nullopt},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(parseXmlInteger(text), value) << text;
}

TEST(XmlPropertyListValuesTest, RealsThatComeBack) {
  const struct {
    double value;
    std::string_view text;
  } cases[] = {
      {0, "0"},
      {-0.0, "-0"},
      {1, "1"},
      {0.1, "0.1"},
      {1e300, "1e+300"},
      {5e-324, "5e-324"},
      {1.7976931348623157e308, "1.7976931348623157e+308"},
      {721692800.123456, "721692800.123456"},
      {kInfinity, "+infinity"},
      {-kInfinity, "-infinity"},
  };
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(formatXmlReal(value), text);
    const auto back = parseXmlReal(text);
    ASSERT_TRUE(back) << text;
    EXPECT_EQ(*back, value);
    EXPECT_EQ(std::signbit(*back), std::signbit(value)) << text;
  }
  EXPECT_EQ(formatXmlReal(-std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST(XmlPropertyListValuesTest, OtherReals) {
  const struct {
    std::string_view text;
    std::optional<double> value;
  } cases[] = {
      {" 1\t", 1},
      {"+1.5", 1.5},
      {".5", 0.5},
      {"5.", 5},
      {"1E2", 100},
      {"1e999", kInfinity},
      {"inf", kInfinity},
      {"Infinity", kInfinity},
      {"-INF", -kInfinity},
      {"", std::nullopt},
      {"-", std::nullopt},
      {"1,5", std::nullopt},
      {"1 2", std::nullopt},
      {"infinit", std::nullopt},
      {"infinity1", std::nullopt},
      {"0x10", std::nullopt},
      {"nano", std::nullopt},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(parseXmlReal(text), value) << text;
  EXPECT_TRUE(std::isnan(parseXmlReal("NaN").value_or(0)));
  EXPECT_TRUE(std::isnan(parseXmlReal("-nan").value_or(0)));
}

TEST(XmlPropertyListValuesTest, DatesThatComeBack) {
  const struct {
    double seconds;
    std::string_view text;
  } cases[] = {
      {0, "2001-01-01T00:00:00Z"},
      {-1, "2000-12-31T23:59:59Z"},
      {-978307200, "1970-01-01T00:00:00Z"},
      {-26524800, "2000-02-29T00:00:00Z"},
      {7259846400, "2231-01-22T00:00:00Z"},
      {252423993599, "9999-12-31T23:59:59Z"},
      {252423993600, "10000-01-01T00:00:00Z"},
      {-63113904000, "0001-01-01T00:00:00Z"},
      {-63145526400, "0000-01-01T00:00:00Z"},
      {-63145526401, "-0001-12-31T23:59:59Z"},
      {-63114076800, "0000-12-30T00:00:00Z"},
      {-218892790800, "-4936-07-25T15:00:00Z"},
      {999999999999999, "31690739-07-06T01:46:39Z"},
      {-999999999999999, "-31686738-06-29T22:13:21Z"},
  };
  for (const auto& [seconds, text] : cases) {
    EXPECT_EQ(formatXmlDate(seconds), text);
    EXPECT_EQ(parseXmlDate(text), seconds) << text;
  }
}

TEST(XmlPropertyListValuesTest, DaysOfManyYearsComeBack) {
  for (double day = -400000; day < 800000; day += 5) {
    const auto text = formatXmlDate(day * 86400 + 43199);
    ASSERT_TRUE(text);
    ASSERT_EQ(parseXmlDate(*text), day * 86400 + 43199) << *text;
  }
}

TEST(XmlPropertyListValuesTest, DatesAreWrittenRoundedDown) {
  EXPECT_EQ(formatXmlDate(0.999), "2001-01-01T00:00:00Z");
  EXPECT_EQ(formatXmlDate(-0.001), "2000-12-31T23:59:59Z");
  for (const double none : {1e15, -1e15, 1e300, kInfinity, -kInfinity, std::nan("")}) {
    EXPECT_EQ(formatXmlDate(none), std::nullopt) << none;
  }
}

TEST(XmlPropertyListValuesTest, OtherDates) {
  const struct {
    std::string_view text;
    std::optional<double> seconds;
  } cases[] = {
      {" 2001-01-01T00:00:00Z\n", 0},
      {"2001-01-01T00:00:00.25Z", 0.25},
      {"1999-12-31T23:59:59.5Z", -31622400.5},
      {"2001-01-01T00:00:60Z", 60},  // a leap second is the next minute's first
      {"2001-01-01T00:01Z", 60},
      {"2001-01-01T01Z", 3600},
      {"2001-01-02Z", 86400},
      {"2001-02Z", 2678400},
      {"2002Z", 31536000},
      {"2000-02-29T00:00:00Z", -26524800},
      {"2001-02-29T00:00:00Z", std::nullopt},
      {"1900-02-29T00:00:00Z", std::nullopt},
      {"2001-04-31T00:00:00Z", std::nullopt},
      {"2001-12-32T00:00:00Z", std::nullopt},
      {"2001-00-01T00:00:00Z", std::nullopt},
      {"2001-13-01T00:00:00Z", std::nullopt},
      {"2001-01-00T00:00:00Z", std::nullopt},
      {"2001-01-01T24:00:00Z", std::nullopt},
      {"2001-01-01T00:60:00Z", std::nullopt},
      {"2001-01-01T00:00:61Z", std::nullopt},
      {"2001-01-01T00:00:00", std::nullopt},
      {"2001-01-01T00:00:00+01:00", std::nullopt},
      {"2001-01-01 00:00:00Z", std::nullopt},
      {"2001-1-1T00:00:00Z", std::nullopt},
      {"2001-01-01T00:00:00.Z", std::nullopt},
      {"2001-01-01T00:00:00.5", std::nullopt},
      {"2001-01-01T00:00:00.5e0Z", std::nullopt},
      {"2001-01-01T00:00.5Z", std::nullopt},
      {"2001-01-01T00:00:00ZZ", std::nullopt},
      {"200-01-01T00:00:00Z", std::nullopt},
      {"+2001-01-01T00:00:00Z", std::nullopt},
      {"--2001-01-01T00:00:00Z", std::nullopt},
      {"1000000000-01-01T00:00:00Z", std::nullopt},
      {"", std::nullopt},
      {"Z", std::nullopt},
      {"-", std::nullopt},
  };
  for (const auto& [text, seconds] : cases) EXPECT_EQ(parseXmlDate(text), seconds) << text;
}

TEST(XmlPropertyListValuesTest, Base64) {
  const struct {
    std::string_view bytes, text;
  } cases[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {"\0"sv, "AA=="},
      {"\xFF\xFE\xFD", "//79"},
      {"\xFB\xEF\xBE", "++++"},
  };
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(encodeBase64(bytes), text);
    EXPECT_EQ(decodeBase64(text), bytes) << text;
  }
  std::string every;
  for (int i = 0; i < 1000; ++i) every.push_back(static_cast<char>(i * 7));
  EXPECT_EQ(decodeBase64(encodeBase64(every)), every);
}

TEST(XmlPropertyListValuesTest, OtherBase64) {
  const struct {
    std::string_view text;
    std::optional<std::string> bytes;
  } cases[] = {
      {" Z m\t9\r\nv ", "foo"},
      {"Zg", "f"},
      {"Zg=", "f"},
      {"Zg = =", "f"},
      {"Zm9vZg", "foof"},
      {"Zh==", "f"},
      {"Z", std::nullopt},
      {"Zm9vZ", std::nullopt},
      {"Zg==Zg==", std::nullopt},
      {"Zg===", std::nullopt},
      {"Zm9-", std::nullopt},
      {"Zm\0v"sv, std::nullopt},
      {"Zm\xE9v", std::nullopt},
      {"=", ""},
  };
  for (const auto& [text, bytes] : cases) EXPECT_EQ(decodeBase64(text), bytes) << text;
}

}  // namespace
}  // namespace brindle::internal
