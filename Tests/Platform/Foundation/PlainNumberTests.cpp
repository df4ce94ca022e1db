#include <Brindle/Platform/PlainNumber.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

bool reads(const id& object, std::uint64_t& bits) {
  return readPlainInteger(object.record(), bits);
}

TEST(PlainNumberTest, ReadsWhatTheMessagesAnswer) {
  std::uint64_t bits = 0;
  for (const NSInteger value :
       {NSInteger{0}, NSInteger{1}, NSInteger{-1}, NSInteger{1} << 40U, INT64_MIN, INT64_MAX}) {
    const NSNumber number = NSNumber::numberWithInteger(value);
    ASSERT_TRUE(reads(number, bits));
    EXPECT_EQ(static_cast<NSInteger>(bits), number->integerValue());
    EXPECT_EQ(bits, number->unsignedIntegerValue());
    EXPECT_EQ(bits != 0, number->boolValue());
  }
  ASSERT_TRUE(reads(NSNumber::numberWithBool(true), bits));
  EXPECT_EQ(bits, 1u);
  ASSERT_TRUE(reads(NSNumber::numberWithUnsignedInteger(UINT64_MAX), bits));
  EXPECT_EQ(bits, UINT64_MAX);
}

TEST(PlainNumberTest, LeavesEverythingElseToMessages) {
  std::uint64_t bits = 5;
  EXPECT_FALSE(reads(NSNumber::numberWithDouble(1.5), bits));
  EXPECT_FALSE(reads("1"_ns, bits));
  EXPECT_EQ(bits, 5u);
}

// The last test of the suite: it changes the class for good.
TEST(PlainNumberTest, NumbersAreNotPlainOnceTheirMethodsChange) {
  EXPECT_TRUE(numbersArePlain());
  class_addMethod(object_getClass(NSNumber::class_()), sel_registerName("someClassOperation"),
                  class_getMethodImplementation(NSNumber::class_(), sel_registerName("self")),
                  "@16@0:8");
  EXPECT_TRUE(numbersArePlain()) << "a class operation is not asked";
  const Method method =
      class_getInstanceMethod(NSNumber::class_(), sel_registerName("integerValue"));
  method_setImplementation(method, method_getImplementation(method));
  EXPECT_FALSE(numbersArePlain());
}

}  // namespace
}  // namespace brindle
