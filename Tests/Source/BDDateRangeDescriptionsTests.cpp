// The words of the units and the phrases: the class operations and what they send.
#include <Brindle/BDDateRange.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Source/DateRangeTesting.h"
#include "Tests/Source/WordsTesting.h"

using namespace brindle;

namespace {

constexpr const char* kSingular[] = {"day", "week", "month", "quarter", "year"};
constexpr const char* kPlural[] = {"days", "weeks", "months", "quarters", "years"};
constexpr const char* kZero[] = {"today", "this week", "this month", "this quarter", "this year"};

BDTimeUnit unitOf(std::int32_t number) { return static_cast<BDTimeUnit>(number); }

std::string phrase(BDTimeUnit unit, std::int64_t offset) {
  return std::string(BDDateRange::descriptionForUnit(unit, offset));
}

void expectInvalidUnit(const NSException& raised) {
  ASSERT_TRUE(raised);
  EXPECT_TRUE(raised->name()->isEqual(BDInternalInconsistencyException));
  EXPECT_EQ(std::string(raised->reason()), "Invalid time unit.");
}

}  // namespace

class ShiftRange : public Interface<ShiftRange, BDDateRange> {
 public:
  using Interface::Interface;
  static ClassPair<ShiftRange> classPair;
};

namespace {

constexpr MethodDefinition kShiftMethods[] = {
    classMethod<"nameForSingularUnit:">(
        [](const ClassOf<ShiftRange>&, BDTimeUnit) -> NSString { return "shift"_ns; }),
    classMethod<"nameForPluralUnit:">(
        [](const ClassOf<ShiftRange>& self, BDTimeUnit unit) -> NSString {
          if (unit == BDTimeUnitDay) return "shifts"_ns;
          if (unit == BDTimeUnitYear) return nullptr;
          return sendSuper<ShiftRange, "nameForPluralUnit:", NSString>(self, unit);
        }),
};
constexpr ClassDefinition kShiftDefinition{.name = "ShiftRange", .methods = kShiftMethods};

}  // namespace

constinit ClassPair<ShiftRange> ShiftRange::classPair{kShiftDefinition};

TEST(BDDateRangeDescriptions, Tour) {
  const Language english("en");
  EXPECT_EQ(std::string(BDDateRange::nameForSingularUnit(BDTimeUnitDay)), "day");
  EXPECT_EQ(std::string(BDDateRange::nameForPluralUnit(BDTimeUnitDay)), "days");
  EXPECT_EQ(phrase(BDTimeUnitWeek, -3), "3 weeks ago");
  EXPECT_EQ(phrase(BDTimeUnitWeek, 0), "this week");
  EXPECT_EQ(phrase(BDTimeUnitDay, 1), "1 day from now");
}

TEST(BDDateRangeDescriptions, EveryUnit) {
  const Language english("en");
  for (std::int32_t i = 0; i < 5; ++i) {
    const BDTimeUnit unit = unitOf(i);
    const std::string one = kSingular[i];
    const std::string many = kPlural[i];
    EXPECT_EQ(std::string(BDDateRange::nameForSingularUnit(unit)), one);
    EXPECT_EQ(std::string(BDDateRange::nameForPluralUnit(unit)), many);
    EXPECT_EQ(phrase(unit, 0), kZero[i]);
    EXPECT_EQ(phrase(unit, 1), "1 " + one + " from now");
    EXPECT_EQ(phrase(unit, -1), "1 " + one + " ago");
    EXPECT_EQ(phrase(unit, 3), "3 " + many + " from now");
    EXPECT_EQ(phrase(unit, -3), "3 " + many + " ago");
  }
}

TEST(BDDateRangeDescriptions, TheCountIsOfTheLowHalfAndTheDirectionOfTheWhole) {
  const Language english("en");
  constexpr std::int64_t kHigh = std::int64_t{1} << 32;
  EXPECT_EQ(phrase(BDTimeUnitDay, kHigh), "today");
  EXPECT_EQ(phrase(BDTimeUnitDay, -kHigh), "today");
  EXPECT_EQ(phrase(BDTimeUnitDay, kHigh + 1), "1 day from now");
  EXPECT_EQ(phrase(BDTimeUnitDay, kHigh - 1), "1 day from now") << "the low half is -1";
  EXPECT_EQ(phrase(BDTimeUnitDay, -kHigh + 2), "2 days ago");
  EXPECT_EQ(phrase(BDTimeUnitDay, INT32_MIN), "-2147483648 days ago");
  EXPECT_EQ(phrase(BDTimeUnitDay, -std::int64_t{INT32_MIN}), "-2147483648 days from now");
  EXPECT_EQ(phrase(BDTimeUnitDay, INT32_MAX), "2147483647 days from now");
  EXPECT_EQ(phrase(BDTimeUnitDay, INT64_MAX), "1 day from now");
  EXPECT_EQ(phrase(BDTimeUnitDay, INT64_MIN), "today");
}

TEST(BDDateRangeDescriptions, AnInvalidUnitRaises) {
  for (const std::int32_t number : {-1, 5, 6, INT32_MIN, INT32_MAX}) {
    SCOPED_TRACE(number);
    const BDTimeUnit unit = unitOf(number);
    expectInvalidUnit(raisedBy([unit] { BDDateRange::nameForSingularUnit(unit); }));
    expectInvalidUnit(raisedBy([unit] { BDDateRange::nameForPluralUnit(unit); }));
    for (const std::int64_t offset : {0, 1, -1, 2, -2}) {
      expectInvalidUnit(raisedBy([=] { BDDateRange::descriptionForUnit(unit, offset); }));
    }
  }
}

TEST(BDDateRangeDescriptions, ASubclassHasItsOwnWords) {
  const Language english("en");
  const auto shifts = [](BDTimeUnit unit, std::int64_t offset) {
    return std::string(ShiftRange::class_()->descriptionForUnit(unit, offset));
  };
  EXPECT_EQ(shifts(BDTimeUnitDay, 1), "1 shift from now");
  EXPECT_EQ(shifts(BDTimeUnitDay, -2), "2 shifts ago");
  EXPECT_EQ(shifts(BDTimeUnitMonth, 2), "2 months from now");
  EXPECT_EQ(shifts(BDTimeUnitYear, 2), "2 (null) from now") << "no word is shown as none";
  EXPECT_EQ(shifts(unitOf(7), 1), "1 shift from now") << "what the subclass takes, it takes";
  EXPECT_EQ(shifts(BDTimeUnitDay, 0), "today");
}

TEST(BDDateRangeDescriptions, AReplacedWordTakesEffect) {
  const Language english("en");
  const Method method =
      class_getClassMethod(BDDateRange::class_(), selector<"nameForPluralUnit:">());
  auto loud =
      implementation([](const ClassOf<BDDateRange>&, BDTimeUnit) -> NSString { return "DAYS"_ns; });
  const IMP previous = method_setImplementation(method, loud.implementation);
  EXPECT_EQ(phrase(BDTimeUnitDay, 2), "2 DAYS from now");
  method_setImplementation(method, previous);
  EXPECT_EQ(phrase(BDTimeUnitDay, 2), "2 days from now");
}

TEST(BDDateRangeDescriptions, ATranslationReordersThePhrase) {
  const OwnWords german({{"%i %@ %@", "%3$@ %1$i %2$@"}, {"weeks", "Wochen"}, {"ago", "vor"}});
  EXPECT_EQ(phrase(BDTimeUnitWeek, -3), "vor 3 Wochen");
  EXPECT_EQ(phrase(BDTimeUnitDay, -3), "vor 3 days") << "a word without translation is its key";
  EXPECT_EQ(phrase(BDTimeUnitDay, 0), "today");
}

TEST(BDDateRangeDescriptions, WordsAreLookedUpAtEachCall) {
  const Language english("en");
  EXPECT_EQ(phrase(BDTimeUnitWeek, 0), "this week");
  {
    const OwnWords own({{"this week", "these days"}});
    EXPECT_EQ(phrase(BDTimeUnitWeek, 0), "these days");
  }
  EXPECT_EQ(phrase(BDTimeUnitWeek, 0), "this week");
}

TEST(BDDateRangeDescriptions, AHostileFormatPrintsWhatFitsAndReadsNothingElse) {
  const struct {
    const char* format;
    std::string phrase;
  } kRows[] = {
      {"%i %@ %@ %@ %@ %i", "3 days ago   "},
      {"%s|%s|%s|%s", "3|days|ago|"},
      {"%1$f %2$f", "3.000000 "},
      {"%n%n%n%n%i", ""},
      {"%1$n%2$n%3$n%1$i", "3"},
      {"%4$@%99$@%18446744073709551617$@", ""},
      {"%3$@ %*4$i", "ago 3"},
      {"%", "%"},
      {"100%", "100%"},
      {"%%", "%"},
  };
  for (const auto& row : kRows) {
    const OwnWords own({{"%i %@ %@", row.format}});
    EXPECT_EQ(phrase(BDTimeUnitDay, -3), row.phrase) << row.format;
  }
  const OwnWords wide({{"%i %@ %@", "%999999999i"}});
  EXPECT_LE(phrase(BDTimeUnitDay, -3).size(), 16384U) << "widths have a bound";
}

TEST(BDDateRangeDescriptions, ManyThreadsAtOnce) {
  const Language english("en");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int n = 2; n < 200; ++n) {
        EXPECT_EQ(phrase(BDTimeUnitWeek, -n), std::to_string(n) + " weeks ago");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}
