#include <Brindle/Platform/Allocation.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

constexpr auto kFirst = ClassMarks{1};
constexpr auto kLast = ClassMarks{128};

TEST(AllocationTest, MarksOfAClassBeginUnsetAndAreNotInherited) {
  Class base = objc_allocateClassPair(NSObject::class_(), "AllocationTestBase", 0);
  Class derived = objc_allocateClassPair(base, "AllocationTestDerived", 0);
  EXPECT_FALSE(hasMarks(base, kFirst));
  setMarks(base, kFirst);
  EXPECT_TRUE(hasMarks(base, kFirst));
  EXPECT_FALSE(hasMarks(base, kFirst | kLast));
  EXPECT_FALSE(hasMarks(derived, kFirst));
  EXPECT_FALSE(hasMarks(object_getClass(base), kFirst));
  setMarks(base, kLast);
  EXPECT_TRUE(hasMarks(base, kFirst | kLast));
}

TEST(AllocationTest, AMarkedClassIsStillAClassThatMakesObjects) {
  Class cls = objc_allocateClassPair(NSObject::class_(), "AllocationTestMarked", 0);
  objc_registerClassPair(cls);
  setMarks(cls, kLast);
  EXPECT_NE(object_isClass(cls), NO);
  const id object = class_createInstance(cls, 0);
  EXPECT_EQ(object_getClass(object), cls);
  EXPECT_EQ(object_getBirthClass(object), cls);
}

TEST(AllocationTest, AnObjectKnowsTheClassThatItWasBornWith) {
  Class cls = objc_allocateClassPair(NSObject::class_(), "AllocationTestOther", 0);
  objc_registerClassPair(cls);
  const id object = NSObject::alloc()->init();
  object_setClass(object, cls);
  EXPECT_EQ(object_getClass(object), cls);
  EXPECT_EQ(object_getBirthClass(object), NSObject::class_());
}

TEST(AllocationTest, NilAndClassesWereNotBorn) {
  EXPECT_FALSE(object_getBirthClass(nullptr));
  EXPECT_FALSE(object_getBirthClass(NSObject::class_()));
}

}  // namespace
}  // namespace brindle
