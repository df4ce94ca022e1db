#include <Brindle/Platform/NSScanner.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include <Brindle/Platform/NSMutableString.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

NSScanner scan(const NSString& string) { return NSScanner::scannerWithString(string); }

TEST(NSScannerTest, Tour) {
  const auto scanner = scan("width: 12.5 pixels, 3 high"_ns);
  double width = 0;
  NSString unit;
  int high = 0;
  EXPECT_TRUE(scanner->scanString("WIDTH:"_ns, nullptr));
  EXPECT_TRUE(scanner->scanDouble(&width));
  EXPECT_TRUE(scanner->scanUpToString(","_ns, &unit));
  EXPECT_TRUE(scanner->scanString(","_ns, nullptr));
  EXPECT_TRUE(scanner->scanInt(&high));
  EXPECT_FALSE(scanner->isAtEnd());
  EXPECT_TRUE(scanner->scanCharactersFromSet(NSCharacterSet::letterCharacterSet(), nullptr));
  EXPECT_TRUE(scanner->isAtEnd());
  EXPECT_EQ(width, 12.5);
  EXPECT_EQ(high, 3);
  EXPECT_EQ(std::string(unit), "pixels");
}

TEST(NSScannerTest, Integers) {
  const struct {
    NSString text;
    bool found;
    long long value;
    NSUInteger location;
  } cases[] = {
      {"  -42abc"_ns, true, -42, 5},
      {"abc"_ns, false, 7, 0},
      {"  "_ns, false, 7, 0},
      {"+"_ns, false, 7, 0},
      {"12 34"_ns, true, 12, 2},
      {"99999999999999999999"_ns, true, std::numeric_limits<long long>::max(), 20},
      {"-99999999999999999999"_ns, true, std::numeric_limits<long long>::min(), 21},
  };
  for (const auto& c : cases) {
    const auto scanner = scan(c.text);
    long long value = 7;
    EXPECT_EQ(scanner->scanLongLong(&value), c.found) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
    EXPECT_EQ(scanner->scanLocation(), c.location) << c.text;
  }
  int small = 0;
  EXPECT_TRUE(scan("-2147483649"_ns)->scanInt(&small));
  EXPECT_EQ(small, std::numeric_limits<int>::min());
  EXPECT_TRUE(scan("5"_ns)->scanInt(nullptr));
  NSInteger wide = 0;
  EXPECT_TRUE(scan("5"_ns)->scanInteger(&wide));
  EXPECT_EQ(wide, 5);
}

TEST(NSScannerTest, OtherNumbers) {
  unsigned long long value = 0;
  EXPECT_TRUE(scan("18446744073709551615"_ns)->scanUnsignedLongLong(&value));
  EXPECT_EQ(value, ~0ull);
  EXPECT_FALSE(scan("-1"_ns)->scanUnsignedLongLong(&value));
  EXPECT_TRUE(scan(" 0xFFg"_ns)->scanHexLongLong(&value));
  EXPECT_EQ(value, 255u);
  double real = 0;
  EXPECT_TRUE(scan("-1.5e3"_ns)->scanDouble(&real));
  EXPECT_EQ(real, -1500);
  EXPECT_FALSE(scan("inf"_ns)->scanDouble(&real));
}

TEST(NSScannerTest, WhatIsNotThereLeavesEverythingAsItWas) {
  const auto scanner = scan("  word"_ns);
  NSString result = "before"_ns;
  EXPECT_FALSE(scanner->scanString("other"_ns, &result));
  EXPECT_FALSE(scanner->scanUpToString("word"_ns, &result));
  EXPECT_FALSE(scanner->scanCharactersFromSet(NSCharacterSet::decimalDigitCharacterSet(), &result));
  EXPECT_FALSE(scanner->scanUpToCharactersFromSet(NSCharacterSet::letterCharacterSet(), &result));
  EXPECT_EQ(std::string(result), "before");
  EXPECT_EQ(scanner->scanLocation(), 0u);
}

TEST(NSScannerTest, UpToWhatNeverComesIsAllTheRest) {
  NSString result;
  EXPECT_TRUE(scan(" one two"_ns)->scanUpToString("three"_ns, &result));
  EXPECT_EQ(std::string(result), "one two");
  EXPECT_TRUE(scan("one two"_ns)
                  ->scanUpToCharactersFromSet(NSCharacterSet::decimalDigitCharacterSet(), &result));
  EXPECT_EQ(std::string(result), "one two");
}

TEST(NSScannerTest, Skipping) {
  const auto scanner = scan(" 1"_ns);
  EXPECT_TRUE(scanner->charactersToBeSkipped()->isEqual(
      NSCharacterSet::whitespaceAndNewlineCharacterSet()));
  scanner->setCharactersToBeSkipped(nullptr);
  EXPECT_FALSE(scanner->scanInt(nullptr));
  NSString space;
  EXPECT_TRUE(scanner->scanCharactersFromSet(NSCharacterSet::whitespaceCharacterSet(), &space));
  EXPECT_EQ(std::string(space), " ");
  EXPECT_TRUE(scanner->scanInt(nullptr));

  const auto list = scan("1,2"_ns);
  list->setCharactersToBeSkipped(NSCharacterSet::characterSetWithCharactersInString(","_ns));
  int value = 0;
  EXPECT_TRUE(list->scanInt(&value) && list->scanInt(&value));
  EXPECT_EQ(value, 2);
}

TEST(NSScannerTest, Case) {
  const auto scanner = scan("Word"_ns);
  scanner->setCaseSensitive(true);
  EXPECT_TRUE(scanner->caseSensitive());
  EXPECT_FALSE(scanner->scanString("word"_ns, nullptr));
  scanner->setCaseSensitive(false);
  NSString result;
  EXPECT_TRUE(scanner->scanString("word"_ns, &result));
  EXPECT_EQ(std::string(result), "Word");
}

TEST(NSScannerTest, KeepsTheStringAsItWas) {
  const auto text = NSMutableString::stringWithString("1 2"_ns);
  const auto scanner = scan(text);
  text->setString("changed"_ns);
  EXPECT_EQ(std::string(scanner->string()), "1 2");
  EXPECT_TRUE(scanner->scanInt(nullptr));
  EXPECT_TRUE(scan(ClientString::with(u"7"))->scanInt(nullptr));
}

TEST(NSScannerTest, Refuses) {
  EXPECT_EQ(raisedBy([] { (void)scan(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { (void)scan("a"_ns)->scanString(nullptr, nullptr); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { scan("a"_ns)->setScanLocation(2); }), "NSRangeException");
  const auto scanner = scan("abc"_ns);
  scanner->setScanLocation(3);
  EXPECT_TRUE(scanner->isAtEnd());
}

}  // namespace
}  // namespace brindle
