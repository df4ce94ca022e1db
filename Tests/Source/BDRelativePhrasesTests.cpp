// Phrases in the languages' own grammar, for the units of date ranges.
#include <Brindle/BDRelativePhrases.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/NSString.h>

#include "Tests/Source/DateRangeTesting.h"

using namespace brindle;

namespace {

NSLocale locale(const char* identifier) {
  return NSLocale::alloc()->initWithLocaleIdentifier(NSString(identifier));
}

}  // namespace

TEST(BDRelativePhrases, Tour) {
  const NSLocale polish = locale("pl");
  EXPECT_EQ(relativePhrase(BDTimeUnitWeek, -3, polish), "3 tygodnie temu");
  EXPECT_EQ(relativePhrase(BDTimeUnitDay, 1, locale("en")), "tomorrow");
  EXPECT_EQ(relativePhrase(BDTimeUnitDay, 1, locale("en"), PhraseStyle::numeric), "in 1 day");
}

TEST(BDRelativePhrases, EveryUnit) {
  const char* kLast[] = {"yesterday", "last week", "last month", "last quarter", "last year"};
  const char* kPast[] = {"3 days ago", "3 weeks ago", "3 months ago", "3 quarters ago",
                         "3 years ago"};
  for (std::int32_t unit = 0; unit < 5; ++unit) {
    EXPECT_EQ(relativePhrase(static_cast<BDTimeUnit>(unit), -1, locale("en")), kLast[unit]);
    EXPECT_EQ(relativePhrase(static_cast<BDTimeUnit>(unit), -3, locale("en")), kPast[unit]);
  }
}

TEST(BDRelativePhrases, NilIsTheUsersLanguage) {
  EXPECT_EQ(relativePhrase(BDTimeUnitDay, 1), "morgen") << "the tests run in German";
}

TEST(BDRelativePhrases, ALocaleThatNobodyKnowsIsEnglish) {
  EXPECT_EQ(relativePhrase(BDTimeUnitDay, 1, locale("")), "tomorrow");
  EXPECT_EQ(relativePhrase(BDTimeUnitDay, 1, locale("qq_QQ")), "tomorrow");
}

TEST(BDRelativePhrases, EveryOffsetIsExact) {
  EXPECT_EQ(relativePhrase(BDTimeUnitDay, std::int64_t{1} << 32, locale("en")),
            "in 4,294,967,296 days");
  EXPECT_EQ(relativePhrase(BDTimeUnitYear, INT64_MIN, locale("en")),
            "9,223,372,036,854,775,808 years ago");
}

TEST(BDRelativePhrases, AnInvalidUnitRaises) {
  for (const std::int32_t unit : {-1, 5, INT32_MIN, INT32_MAX}) {
    for (const std::int64_t offset : {0, 1, 2}) {
      const NSException raised =
          raisedBy([&] { (void)relativePhrase(static_cast<BDTimeUnit>(unit), offset); });
      ASSERT_TRUE(raised) << unit;
      EXPECT_TRUE(raised->name()->isEqual(BDInternalInconsistencyException));
      EXPECT_EQ(std::string(raised->reason()), "Invalid time unit.");
    }
  }
}
