#include <Brindle/Platform/NSRange.h>

#include <gtest/gtest.h>

#include <string>

#include <Brindle/Platform/NSString.h>

namespace brindle {
namespace {

TEST(NSRangeTest, Tour) {
  const NSRange range = NSMakeRange(3, 4);
  EXPECT_EQ(NSMaxRange(range), 7u);
  EXPECT_TRUE(NSLocationInRange(6, range));
  EXPECT_FALSE(NSLocationInRange(7, range));
  EXPECT_FALSE(NSLocationInRange(2, range));
  EXPECT_TRUE(NSEqualRanges(range, {3, 4}));
  EXPECT_EQ(std::string(NSStringFromRange(range)), "{3, 4}");
  EXPECT_STREQ(typeEncoding<NSRange>(), "{_NSRange=QQ}");
}

TEST(NSRangeTest, TogetherAndInCommon) {
  EXPECT_EQ(NSUnionRange({1, 2}, {5, 1}), NSMakeRange(1, 5));
  EXPECT_EQ(NSIntersectionRange({1, 5}, {3, 9}), NSMakeRange(3, 3));
  EXPECT_EQ(NSIntersectionRange({1, 2}, {3, 9}), NSMakeRange(0, 0));
}

}  // namespace
}  // namespace brindle
