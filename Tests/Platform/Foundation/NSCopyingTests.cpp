#include <Brindle/Platform/NSCopying.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSMutableSet.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSString.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

TEST(NSCopyingTest, ClassesSayThatTheyCopy) {
  for (const Class cls : {Class(NSString::class_()), Class(NSArray::class_()),
                          Class(NSDictionary::class_()), Class(NSSet::class_())}) {
    EXPECT_TRUE(id(cls)->conformsToProtocol(kNSCopying));
    EXPECT_TRUE(id(cls)->conformsToProtocol(kNSMutableCopying));
  }
  EXPECT_TRUE(NSNumber::class_()->conformsToProtocol(kNSCopying));
  EXPECT_FALSE(NSNumber::class_()->conformsToProtocol(kNSMutableCopying));
  EXPECT_FALSE(NSObject::class_()->conformsToProtocol(kNSCopying));
}

TEST(NSCopyingTest, WhatDoesNotCopyRaises) {
  EXPECT_EQ(raisedBy([] { NSObject::alloc()->init()->copy(); }), "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { NSNumber(1)->mutableCopy(); }), "NSInvalidArgumentException");
}

}  // namespace
}  // namespace brindle
