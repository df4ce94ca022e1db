#include <Brindle/Platform/NSError.h>

#include <cerrno>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSNumber.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

std::string text(const id& object) { return std::string(cast<NSString>(object)); }

TEST(NSErrorTest, TellsWhatWentWrong) {
  const NSError error = NSError::errorWithDomain(
      "Garden"_ns, 7,
      {{NSLocalizedDescriptionKey, "The gate is shut."_ns},
       {NSLocalizedFailureReasonErrorKey, "It is night."_ns},
       {NSLocalizedRecoverySuggestionErrorKey, "Come tomorrow."_ns},
       {NSLocalizedRecoveryOptionsErrorKey, NSArray{"Wait"_ns, "Climb"_ns}},
       {NSRecoveryAttempterErrorKey, NSNumber(1)}});
  EXPECT_EQ(text(error->domain()), "Garden");
  EXPECT_EQ(error->code(), 7);
  EXPECT_EQ(text(error->localizedDescription()), "The gate is shut.");
  EXPECT_EQ(text(error->localizedFailureReason()), "It is night.");
  EXPECT_EQ(text(error->localizedRecoverySuggestion()), "Come tomorrow.");
  EXPECT_EQ(error->localizedRecoveryOptions()->count(), 2U);
  EXPECT_TRUE(error->recoveryAttempter()->isEqual(NSNumber(1)));
  EXPECT_EQ(text(error->description()), "Error Domain=Garden Code=7 \"The gate is shut.\"");
}

TEST(NSErrorTest, HasATextWithoutInformation) {
  const NSError error = NSError::errorWithDomain("Garden"_ns, -3, nullptr);
  EXPECT_EQ(text(error->localizedDescription()),
            "The operation couldn\u2019t be completed. (Garden error -3.)");
  EXPECT_EQ(error->userInfo()->count(), 0U);
  EXPECT_TRUE(error->userInfo() != nullptr);
  EXPECT_TRUE(error->localizedFailureReason() == nullptr);
  EXPECT_TRUE(error->recoveryAttempter() == nullptr);
}

TEST(NSErrorTest, ASystemErrorHasTheSystemsText) {
  EXPECT_EQ(
      text(NSError::errorWithDomain(NSPOSIXErrorDomain, ENOENT, nullptr)->localizedDescription()),
      "No such file or directory");
}

TEST(NSErrorTest, InformationOfTheWrongKindIsNone) {
  const NSError error =
      NSError::errorWithDomain("D"_ns, 1,
                               {{NSLocalizedDescriptionKey, NSNumber(1)},
                                {NSLocalizedRecoveryOptionsErrorKey, "no array"_ns}});
  EXPECT_EQ(text(error->localizedDescription()),
            "The operation couldn\u2019t be completed. (D error 1.)");
  EXPECT_TRUE(error->localizedRecoveryOptions() == nullptr);
}

TEST(NSErrorTest, NeedsADomain) {
  EXPECT_EQ(raisedBy([] { NSError::errorWithDomain(nullptr, 1, nullptr); }),
            "NSInvalidArgumentException");
}

TEST(NSErrorTest, IsEqualByDomainCodeAndInformation) {
  const NSError a = NSError::errorWithDomain("D"_ns, 1, nullptr);
  EXPECT_TRUE(a->isEqual(NSError::errorWithDomain("D"_ns, 1, nullptr)));
  EXPECT_EQ(a->hash(), NSError::errorWithDomain("D"_ns, 1, nullptr)->hash());
  EXPECT_FALSE(a->isEqual(NSError::errorWithDomain("D"_ns, 2, nullptr)));
  EXPECT_FALSE(a->isEqual(NSError::errorWithDomain("E"_ns, 1, nullptr)));
  EXPECT_FALSE(a->isEqual("D"_ns));
}

TEST(NSErrorTest, FillsAnOutSlot) {
  const auto fail = [](NSError* error) {
    if (error != nullptr) *error = NSError::errorWithDomain("D"_ns, 1, nullptr);
    return false;
  };
  NSError error = nullptr;
  EXPECT_FALSE(fail(&error));
  EXPECT_EQ(error->code(), 1);
  EXPECT_FALSE(fail(nullptr));
}

}  // namespace
}  // namespace brindle
