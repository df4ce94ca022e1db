#include <Brindle/Platform/NSNull.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {
namespace {

TEST(NSNullTest, StandsForNilInCollections) {
  const NSArray array = {NSNull::null(), "a"_ns};
  EXPECT_TRUE(array[0] == NSNull::null());
  EXPECT_EQ(std::string(NSNull::null()->description()), "<null>");
}

TEST(NSNullTest, ThereIsOne) {
  EXPECT_TRUE(NSNull::alloc()->init() == NSNull::null());
  EXPECT_TRUE(NSNull::null()->copy() == NSNull::null());
  EXPECT_TRUE(NSNull::null()->isEqual(NSNull::null()));
  EXPECT_FALSE(NSNull::null()->isEqual(nullptr));
}

}  // namespace
}  // namespace brindle
