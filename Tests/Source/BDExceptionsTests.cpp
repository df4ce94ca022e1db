#include <Brindle/BDExceptions.h>

#include <gtest/gtest.h>

#include "Tests/Source/DateRangeTesting.h"

namespace brindle {
namespace {

TEST(BDExceptionsTest, EachNameIsItsOwnText) {
  EXPECT_TRUE(BDGenericException->isEqual("BDGenericException"_ns));
  EXPECT_TRUE(BDRangeException->isEqual("BDRangeException"_ns));
  EXPECT_TRUE(BDNotImplementedException->isEqual("BDNotImplementedException"_ns));
  EXPECT_TRUE(BDSubclassRequiredException->isEqual("BDSubclassRequiredException"_ns));
  EXPECT_TRUE(BDInvalidArgumentException->isEqual("BDInvalidArgumentException"_ns));
  EXPECT_TRUE(BDInternalInconsistencyException->isEqual("BDInternalInconsistencyException"_ns));
  EXPECT_TRUE(BDObjectInaccessibleException->isEqual("BDObjectInaccessibleException"_ns));
  EXPECT_TRUE(BDObjectNotAvailableException->isEqual("BDObjectNotAvailableException"_ns));
}

TEST(BDExceptionsTest, AreRaisedByNameAndFormatWithoutInformation) {
  const NSException raised =
      raisedBy([] { NSException::raise(BDRangeException, "%s of %i"_ns, "9", 3); });
  EXPECT_TRUE(raised->name()->isEqual(BDRangeException));
  EXPECT_EQ(std::string(raised->reason()), "9 of 3");
  EXPECT_TRUE(raised->userInfo() == nullptr);
  EXPECT_TRUE(raised->isMemberOfClass(NSException::class_()));
}

}  // namespace
}  // namespace brindle
