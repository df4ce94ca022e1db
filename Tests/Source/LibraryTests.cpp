#include <gtest/gtest.h>

#include <Brindle/BDDateRange.h>
#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

TEST(BrindleLibraryTest, ItsClassesAreFoundByName) { EXPECT_TRUE(objc_getClass("BDDateRange")); }

TEST(BrindleLibraryTest, ItsCategoriesAreAttached) {
  EXPECT_NE(
      class_getInstanceMethod(objc_getClass("NSException"), sel_registerName("decodedStackTrace")),
      nullptr);
}

// Date ranges take their short way while nobody has changed the methods of these classes. What an
// allocation makes a class remember is no such change.
TEST(BrindleLibraryTest, AllocatingDatesChangesNoMethodsOfTheirClass) {
  const auto changes = [](Class cls) { return class_getMethodChanges(object_getClass(cls)); };
  const auto ofDates = changes(NSDate::class_());
  const auto ofRanges = changes(BDDateRange::class_());
  NSDate::alloc()->init();
  BDDateRange::alloc()->init();
  EXPECT_EQ(changes(NSDate::class_()), ofDates);
  EXPECT_EQ(changes(BDDateRange::class_()), ofRanges);
}

}  // namespace
}  // namespace brindle
