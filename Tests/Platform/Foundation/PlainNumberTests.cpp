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

TEST(PlainNumberTest, ReadsWhatHangsOnAnObject) {
  const char key = 0;
  std::uint64_t bits = 5;
  for (const id& object : {id(NSObject::new_()), id(NSString::class_())}) {
    EXPECT_FALSE(readAssociatedInteger(object.record(), &key, bits));
    // Small numbers are immortal, large ones are not.
    for (const NSInteger value : {NSInteger{3}, NSInteger{1} << 40U}) {
      objc_setAssociatedObject(object, &key, NSNumber::numberWithInteger(value),
                               OBJC_ASSOCIATION_RETAIN);
      ASSERT_TRUE(readAssociatedInteger(object.record(), &key, bits));
      EXPECT_EQ(static_cast<NSInteger>(bits), value);
    }
    for (const id& other : {id("7"_ns), id(NSNumber::numberWithDouble(1.5)), id()}) {
      objc_setAssociatedObject(object, &key, other, OBJC_ASSOCIATION_RETAIN);
      EXPECT_FALSE(readAssociatedInteger(object.record(), &key, bits));
    }
  }
  EXPECT_FALSE(readAssociatedInteger(nullptr, &key, bits));
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
  const char key = 0;
  std::uint64_t bits = 0;
  const NSObject object = NSObject::new_();
  objc_setAssociatedObject(object, &key, NSNumber::numberWithInteger(3), OBJC_ASSOCIATION_RETAIN);
  EXPECT_FALSE(readAssociatedInteger(object.record(), &key, bits));
}

}  // namespace
}  // namespace brindle
