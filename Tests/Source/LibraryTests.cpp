#include <gtest/gtest.h>

#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

// Nothing here uses the classes by their C++ names: loading the library is enough.
TEST(BrindleLibraryTest, ItsClassesAreFoundByName) { EXPECT_TRUE(objc_getClass("BDDateRange")); }

TEST(BrindleLibraryTest, ItsCategoriesAreAttached) {
  EXPECT_NE(
      class_getInstanceMethod(objc_getClass("NSException"), sel_registerName("decodedStackTrace")),
      nullptr);
}

}  // namespace
}  // namespace brindle
