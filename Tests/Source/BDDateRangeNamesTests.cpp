// The named ranges, both ways.
#include <Brindle/BDDateRange.h>
#include <Brindle/Platform/Definition.h>

#include <gtest/gtest.h>

#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Source/DateRangeTesting.h"

using namespace brindle;

namespace {

struct Row {
  std::int32_t value;
  BDTimeUnit anchorUnit;
  std::int64_t offset;
  BDTimeUnit offsetUnit;
  std::int64_t length;
  BDTimeUnit lengthUnit;
};

constexpr BDTimeUnit kDay = BDTimeUnitDay;
constexpr BDTimeUnit kWeek = BDTimeUnitWeek;
constexpr BDTimeUnit kMonth = BDTimeUnitMonth;
constexpr BDTimeUnit kQuarter = BDTimeUnitQuarter;
constexpr BDTimeUnit kYear = BDTimeUnitYear;

constexpr Row kRows[] = {
    {0, kDay, -100000, kYear, 200000, kYear}, {16, kWeek, 0, kWeek, 1, kWeek},
    {17, kMonth, 0, kMonth, 1, kMonth},       {18, kQuarter, 0, kQuarter, 1, kQuarter},
    {19, kYear, 0, kYear, 1, kYear},          {32, kWeek, -1, kWeek, 1, kWeek},
    {33, kMonth, -1, kMonth, 1, kMonth},      {34, kQuarter, -1, kQuarter, 1, kQuarter},
    {35, kYear, -1, kYear, 1, kYear},         {48, kDay, -1, kWeek, 1, kWeek},
    {49, kDay, -1, kMonth, 1, kMonth},        {50, kDay, -1, kQuarter, 1, kQuarter},
    {51, kDay, -1, kYear, 1, kYear},
};

BDNamedRange named(std::int32_t value) { return static_cast<BDNamedRange>(value); }

}  // namespace

class OwnRange : public Interface<OwnRange, BDDateRange> {
 public:
  using Interface::Interface;
  static ClassPair<OwnRange> classPair;
};

namespace {
constexpr ClassDefinition kOwnDefinition{.name = "OwnRange"};

}  // namespace

constinit ClassPair<OwnRange> OwnRange::classPair{kOwnDefinition};

TEST(BDDateRangeNames, Tour) {
  const BDDateRange month = BDDateRange::dateRangeWithNamedRange(BDNamedRangeThisMonth);
  EXPECT_EQ(BDDateRange::namedRangeFrom(month), BDNamedRangeThisMonth);
  month->setLength(2);
  EXPECT_EQ(BDDateRange::namedRangeFrom(month), BDNamedRangeNone);
}

TEST(BDDateRangeNames, EveryNameHasItsRowAndIsRecognised) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.value);
    const BDDateRange range = BDDateRange::dateRangeWithNamedRange(named(row.value));
    EXPECT_FALSE(range->anchor());
    EXPECT_EQ(range->anchorUnit(), row.anchorUnit);
    EXPECT_EQ(range->offset(), row.offset);
    EXPECT_EQ(range->offsetUnit(), row.offsetUnit);
    EXPECT_EQ(range->length(), row.length);
    EXPECT_EQ(range->lengthUnit(), row.lengthUnit);
    EXPECT_EQ(BDDateRange::namedRangeFrom(range), named(row.value));
  }
}

TEST(BDDateRangeNames, ASubclassMakesPlainRanges) {
  const BDDateRange range = OwnRange::class_()->dateRangeWithNamedRange(BDNamedRangeThisWeek);
  EXPECT_TRUE(object_getClass(range) == BDDateRange::class_());
}

TEST(BDDateRangeNames, NoneIsNilAndNoError) {
  EXPECT_TRUE(BDDateRange::dateRangeWithNamedRange(BDNamedRangeNone) == nullptr);
}

TEST(BDDateRangeNames, EveryOtherNumberRaisesWithItInTheReason) {
  for (const std::int32_t value : {1, 15, 20, 31, 36, 47, 52, 254, 256, -1, INT32_MIN, INT32_MAX}) {
    const NSException raised =
        raisedBy([value] { BDDateRange::dateRangeWithNamedRange(named(value)); });
    ASSERT_TRUE(raised) << value;
    EXPECT_TRUE(raised->name()->isEqual(BDInvalidArgumentException));
    EXPECT_EQ(std::string(raised->reason()), "Invalid named range " + std::to_string(value));
  }
}

TEST(BDDateRangeNames, ARangeWithAnAnchorHasNoName) {
  const BDDateRange range = BDDateRange::dateRangeWithNamedRange(BDNamedRangeThisWeek);
  range->setAnchor(NSDate::date());
  EXPECT_EQ(BDDateRange::namedRangeFrom(range), BDNamedRangeNone);
}

TEST(BDDateRangeNames, NearlyARowIsNoRow) {
  for (const Row& row : kRows) {
    const auto make = [&row] { return BDDateRange::dateRangeWithNamedRange(named(row.value)); };
    BDDateRange range = make();
    range->setOffset(row.offset + (std::int64_t{1} << 32));  // the same low half
    EXPECT_EQ(BDDateRange::namedRangeFrom(range), BDNamedRangeNone);
    range = make();
    range->setLength(row.length + (std::int64_t{1} << 32));
    EXPECT_EQ(BDDateRange::namedRangeFrom(range), BDNamedRangeNone);
    range = make();
    range->setLengthUnit(static_cast<BDTimeUnit>(7));
    EXPECT_EQ(BDDateRange::namedRangeFrom(range), BDNamedRangeNone);
    range = make();
    range->setOffsetUnit(static_cast<BDTimeUnit>(7));
    EXPECT_EQ(BDDateRange::namedRangeFrom(range), BDNamedRangeNone);
    range = make();
    range->setAnchorUnit(static_cast<BDTimeUnit>(7));
    EXPECT_EQ(BDDateRange::namedRangeFrom(range), BDNamedRangeNone);
  }
  const BDDateRange days = BDDateRange::dateRangeWithAnchor(nullptr, -7, 7);  // as the past week
  EXPECT_EQ(BDDateRange::namedRangeFrom(days), BDNamedRangeNone);
  EXPECT_EQ(BDDateRange::namedRangeFrom(BDDateRange::dateRangeWithAnchor(nullptr, 0, 0)),
            BDNamedRangeNone);
}

TEST(BDDateRangeNames, PastAndLastWeekDifferInTheirAnchorUnit) {
  EXPECT_EQ(BDDateRange::namedRangeFrom(
                BDDateRange::dateRangeWithAnchor(nullptr, kDay, -1, kWeek, 1, kWeek)),
            BDNamedRangePastWeek);
  EXPECT_EQ(BDDateRange::namedRangeFrom(
                BDDateRange::dateRangeWithAnchor(nullptr, kWeek, -1, kWeek, 1, kWeek)),
            BDNamedRangeLastWeek);
}

TEST(BDDateRangeNames, NilHasNoName) {
  EXPECT_EQ(BDDateRange::namedRangeFrom(nullptr), BDNamedRangeNone);
}
