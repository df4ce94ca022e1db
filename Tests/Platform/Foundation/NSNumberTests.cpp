#include <Brindle/Platform/NSNumber.h>

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSString.h>

namespace brindle {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string text(const NSNumber& number) { return std::string(number->description()); }

TEST(NSNumberTest, PutsANumberIntoAnObject) {
  const NSNumber seven = 7;
  EXPECT_EQ(seven->intValue(), 7);
  EXPECT_EQ(seven->doubleValue(), 7.0);
  EXPECT_EQ(text(seven), "7");
  EXPECT_TRUE(seven->isEqual(NSNumber(7.0)));
  EXPECT_EQ(seven->hash(), NSNumber(7.0)->hash());
  EXPECT_STREQ(seven->objCType(), "i");
}

TEST(NSNumberTest, KeepsTheTypeItWasMadeWith) {
  EXPECT_STREQ(NSNumber(true)->objCType(), "c");
  EXPECT_STREQ(NSNumber::class_()->numberWithChar(1)->objCType(), "c");
  EXPECT_STREQ(NSNumber::class_()->numberWithUnsignedChar(1)->objCType(), "C");
  EXPECT_STREQ(NSNumber::class_()->numberWithShort(1)->objCType(), "s");
  EXPECT_STREQ(NSNumber::class_()->numberWithUnsignedShort(1)->objCType(), "S");
  EXPECT_STREQ(NSNumber(1U)->objCType(), "I");
  EXPECT_STREQ(NSNumber(1L)->objCType(), "q");
  EXPECT_STREQ(NSNumber(1UL)->objCType(), "Q");
  EXPECT_STREQ(NSNumber(1.0F)->objCType(), "f");
  EXPECT_STREQ(NSNumber(1.0)->objCType(), "d");
}

TEST(NSNumberTest, TruthValuesAreTwoObjects) {
  EXPECT_TRUE(NSNumber(true) == NSNumber::numberWithBool(true));
  EXPECT_TRUE(NSNumber(false) == NSNumber::numberWithBool(false));
  EXPECT_FALSE(NSNumber(true) == NSNumber::class_()->numberWithChar(1));
  EXPECT_TRUE(NSNumber(true)->isEqual(NSNumber(1)));
  EXPECT_EQ(text(true), "1");
}

TEST(NSNumberTest, WritesFloatingNumbersShortly) {
  EXPECT_EQ(text(0.1), "0.1");
  EXPECT_EQ(text(0.1F), "0.1");
  EXPECT_EQ(text(1e300), "1e+300");
  EXPECT_EQ(text(-0.0), "-0");
  EXPECT_EQ(text(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(text(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(NSNumberTest, ConvertsIntegersAsCDoes) {
  EXPECT_EQ(NSNumber(-1)->unsignedIntValue(), 4294967295U);
  EXPECT_EQ(NSNumber(-1)->unsignedLongLongValue(), ~0ULL);
  EXPECT_EQ(NSNumber(300)->charValue(), 44);
  EXPECT_EQ(NSNumber(70000)->shortValue(), 4464);
  EXPECT_EQ(NSNumber(~0UL)->longLongValue(), -1);
  EXPECT_EQ(NSNumber(~0UL)->doubleValue(), 18446744073709551615.0);
  EXPECT_EQ(NSNumber(-3)->floatValue(), -3.0F);
}

TEST(NSNumberTest, TakesTheNearestValueOfAFloatingNumber) {
  EXPECT_EQ(NSNumber(2.9)->intValue(), 2);
  EXPECT_EQ(NSNumber(-2.9)->intValue(), -2);
  EXPECT_EQ(NSNumber(1e10)->intValue(), std::numeric_limits<int>::max());
  EXPECT_EQ(NSNumber(-1e10)->intValue(), std::numeric_limits<int>::min());
  EXPECT_EQ(NSNumber(-1.0)->unsignedIntValue(), 0U);
  EXPECT_EQ(NSNumber(kInfinity)->longLongValue(), std::numeric_limits<long long>::max());
  EXPECT_EQ(NSNumber(1e19)->unsignedLongLongValue(), 10000000000000000000ULL);
  EXPECT_EQ(NSNumber(kNaN)->integerValue(), 0);
  EXPECT_TRUE(NSNumber(0.1)->boolValue());
  EXPECT_FALSE(NSNumber(0.0)->boolValue());
}

TEST(NSNumberTest, ComparesExactlyAcrossTypes) {
  const std::int64_t large = 9007199254740993;  // no double is this number
  EXPECT_EQ(NSNumber(large)->compare(NSNumber(9007199254740992.0)), NSOrderedDescending);
  EXPECT_EQ(NSNumber(9007199254740992.0)->compare(NSNumber(large)), NSOrderedAscending);
  EXPECT_EQ(NSNumber(-1)->compare(NSNumber(~0UL)), NSOrderedAscending);
  EXPECT_EQ(NSNumber(~0UL)->compare(NSNumber(1.8446744073709552e19)), NSOrderedAscending);
  EXPECT_EQ(
      NSNumber(std::numeric_limits<std::int64_t>::min())->compare(NSNumber(-9223372036854775808.0)),
      NSOrderedSame);
  EXPECT_EQ(NSNumber(2)->compare(NSNumber(2.5)), NSOrderedAscending);
  EXPECT_EQ(NSNumber(-2)->compare(NSNumber(-2.5)), NSOrderedDescending);
  EXPECT_EQ(NSNumber(1)->compare(NSNumber(kInfinity)), NSOrderedAscending);
  EXPECT_EQ(NSNumber(1)->compare(NSNumber(-kInfinity)), NSOrderedDescending);
  EXPECT_EQ(NSNumber(1)->compare(nullptr), NSOrderedDescending);
  EXPECT_TRUE(NSNumber(kNaN)->isEqual(NSNumber(kNaN)));
  EXPECT_FALSE(NSNumber(kNaN)->isEqual(NSNumber(0)));
}

TEST(NSNumberTest, EqualNumbersHaveEqualHashes) {
  EXPECT_EQ(NSNumber(-5)->hash(), NSNumber(-5.0)->hash());
  EXPECT_EQ(NSNumber(1UL << 63U)->hash(), NSNumber(9223372036854775808.0)->hash());
  EXPECT_EQ(NSNumber(0.0)->hash(), NSNumber(-0.0)->hash());
  EXPECT_EQ(NSNumber(0.0)->hash(), NSNumber(false)->hash());
}

TEST(NSNumberTest, IsEqualToNothingElse) {
  EXPECT_FALSE(NSNumber(7)->isEqual("7"_ns));
  EXPECT_FALSE(NSNumber(7)->isEqual(nullptr));
  EXPECT_FALSE(NSNumber(7)->isEqualToNumber(nullptr));
}

TEST(NSNumberTest, GivesItsBytesInItsOwnType) {
  short number = 0;
  NSNumber::class_()->numberWithShort(-3)->getValue(&number);
  EXPECT_EQ(number, -3);
  float real = 0;
  NSNumber(1.5F)->getValue(&real);
  EXPECT_EQ(real, 1.5F);
}

TEST(NSNumberTest, NilIsZero) {
  const NSNumber none = nullptr;
  EXPECT_EQ(none->intValue(), 0);
  EXPECT_EQ(none->doubleValue(), 0.0);
  EXPECT_TRUE(none->stringValue() == nullptr);
}

}  // namespace
}  // namespace brindle
