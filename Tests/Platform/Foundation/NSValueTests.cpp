#include <Brindle/Platform/NSValue.h>

#include <array>
#include <cstring>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSString.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

TEST(NSValueTest, PutsBytesIntoAnObject) {
  const NSValue range = NSValue::valueWithRange({3, 4});
  EXPECT_EQ(range->rangeValue(), (NSRange{3, 4}));
  EXPECT_STREQ(range->objCType(), "{_NSRange=QQ}");
  EXPECT_EQ(std::string(range->description()), "{3, 4}");

  int number = 0;
  const NSValue pointer = NSValue::valueWithPointer(&number);
  EXPECT_EQ(pointer->pointerValue(), &number);

  const double half = 0.5;
  const NSValue value = NSValue::valueWithBytes(&half, "d");
  double read = 0;
  value->getValue(&read);
  EXPECT_EQ(read, 0.5);
}

TEST(NSValueTest, DoesNotKeepANonretainedObject) {
  const NSObject object = NSObject::alloc()->init();
  const NSValue value = NSValue::valueWithNonretainedObject(object);
  EXPECT_EQ(object->retainCount(), 1U);
  EXPECT_TRUE(value->nonretainedObjectValue() == object);
}

TEST(NSValueTest, AnswersNothingForAnotherType) {
  const NSValue value = NSValue::valueWithRange({3, 4});
  EXPECT_EQ(value->pointerValue(), nullptr);
  EXPECT_TRUE(value->nonretainedObjectValue() == nullptr);
  EXPECT_EQ(NSValue::valueWithPointer(nullptr)->rangeValue(), (NSRange{0, 0}));
}

TEST(NSValueTest, IsEqualByTypeAndBytes) {
  EXPECT_TRUE(NSValue::valueWithRange({1, 2})->isEqual(NSValue::valueWithRange({1, 2})));
  EXPECT_FALSE(NSValue::valueWithRange({1, 2})->isEqual(NSValue::valueWithRange({1, 3})));
  const std::uint64_t one = 1;
  const NSValue asUnsigned = NSValue::valueWithBytes(&one, "Q");
  EXPECT_FALSE(asUnsigned->isEqual(NSValue::valueWithBytes(&one, "q")));
  EXPECT_FALSE(asUnsigned->isEqual("1"_ns));
  EXPECT_FALSE(asUnsigned->isEqualToValue(nullptr));
  EXPECT_EQ(NSValue::valueWithRange({1, 2})->hash(), NSValue::valueWithRange({1, 2})->hash());
  EXPECT_TRUE(asUnsigned->copy() == asUnsigned);
}

TEST(NSValueTest, RefusesTypesThatItDoesNotKnow) {
  const int number = 1;
  for (const char* type : {"", "x?", "{", "v", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(raisedBy([&] { NSValue::valueWithBytes(&number, type); }),
              "NSInvalidArgumentException")
        << (type != nullptr ? type : "null");
  }
  EXPECT_EQ(raisedBy([] { NSValue::valueWithBytes(nullptr, "i"); }), "NSInvalidArgumentException");
}

}  // namespace
}  // namespace brindle
