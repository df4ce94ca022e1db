#include "Platform/Runtime/Internal/Raise.h"

#include <gtest/gtest.h>

#include <Brindle/Platform/NSException.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

// The functions are the library's own; what they do is seen in whatever the runtime refuses.
TEST(RaiseTest, WhatTheRuntimeRaisesIsAnExceptionObjectAndAStandardException) {
  try {
    cast<Protocol>(NSObject::new_());
    FAIL();
  } catch (const RaisedException& raised) {
    EXPECT_EQ(std::string(raised.exception()->name()), "NSInvalidArgumentException");
    EXPECT_EQ(std::string(raised.exception()->reason()),
              "cast to Protocol of an object of class NSObject");
    EXPECT_STREQ(raised.what(),
                 "NSInvalidArgumentException: cast to Protocol of an object of class NSObject");
  }
}

TEST(RaiseTest, AReasonIsNoFormat) {
  const Class cls = objc_allocateClassPair(NSObject::class_(), "Odd%@%s%nName", 0);
  objc_registerClassPair(cls);
  const id object = class_createInstance(cls, 0);
  EXPECT_EQ(raised([&object] { cast<Protocol>(object); }),
            "NSInvalidArgumentException: cast to Protocol of an object of class Odd%@%s%nName");
}

}  // namespace
}  // namespace brindle
