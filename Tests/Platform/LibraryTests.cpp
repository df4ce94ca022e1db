#include <gtest/gtest.h>

#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

// Nothing here uses the classes by their C++ names: loading the library is enough.
TEST(PlatformLibraryTest, ItsClassesAreFoundByName) {
  for (const char* name : {"NSObject",
                           "NSProxy",
                           "NSString",
                           "NSMutableString",
                           "NSCharacterSet",
                           "NSException",
                           "NSNull",
                           "NSValue",
                           "NSNumber",
                           "NSData",
                           "NSMutableData",
                           "NSEnumerator",
                           "NSArray",
                           "NSMutableArray",
                           "NSDictionary",
                           "NSMutableDictionary",
                           "NSSet",
                           "NSMutableSet",
                           "NSError",
                           "NSThread",
                           "NSCoder",
                           "NSKeyedArchiver",
                           "NSKeyedUnarchiver",
                           "NSAssertionHandler",
                           "NSAutoreleasePool",
                           "NSDate",
                           "NSTimeZone",
                           "NSLocale",
                           "NSDateComponents",
                           "NSCalendar",
                           "NSScanner",
                           "NSInvocation",
                           "NSMethodSignature"}) {
    EXPECT_TRUE(objc_getClass(name)) << name;
  }
}

TEST(PlatformLibraryTest, ItsCategoriesAreAttached) {
  for (const char* selector : {"classForCoder", "awakeAfterUsingCoder:", "description"}) {
    EXPECT_NE(class_getInstanceMethod(objc_getClass("NSObject"), sel_registerName(selector)),
              nullptr)
        << selector;
  }
}

}  // namespace
}  // namespace brindle
