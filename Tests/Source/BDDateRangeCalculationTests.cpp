// The dates of ranges: rounding the anchor, adding, start and end. A table for each rule keeps this
// file long; what subclasses and swizzles change is in BDDateRangeOverridesTests.cpp.
#include <Brindle/BDDateRange.h>

#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/MethodChanges.h>

#include "Tests/Source/DateRangeTesting.h"

using namespace brindle;

namespace {

constexpr BDTimeUnit kDay = BDTimeUnitDay;
constexpr BDTimeUnit kWeek = BDTimeUnitWeek;
constexpr BDTimeUnit kMonth = BDTimeUnitMonth;
constexpr BDTimeUnit kQuarter = BDTimeUnitQuarter;
constexpr BDTimeUnit kYear = BDTimeUnitYear;
constexpr auto kInvalid = static_cast<BDTimeUnit>(5);
constexpr auto kNegative = static_cast<BDTimeUnit>(-1);

constexpr int kSunday = 1;
constexpr int kMonday = 2;

BDDateRange rangeOf(const NSDate& anchor, BDTimeUnit anchorUnit, std::int64_t offset,
                    BDTimeUnit offsetUnit, std::int64_t length, BDTimeUnit lengthUnit) {
  return BDDateRange::dateRangeWithAnchor(anchor, anchorUnit, offset, offsetUnit, length,
                                          lengthUnit);
}

std::string anchored(const NSDate& anchor, BDTimeUnit unit) {
  return fieldsOfDate(rangeOf(anchor, unit, 0, kDay, 0, kDay)->_anchor()).substr(0, 10);
}

std::string added(const NSDate& date, std::int64_t count, BDTimeUnit unit) {
  return fieldsOfDate(BDDateRange::new_()->add(count, unit, date)).substr(0, 10);
}

TEST(BDDateRangeCalculation, IntervalsContainTimesFromTheStartToBeforeTheEnd) {
  using namespace std::chrono;
  const DateSettings settings("UTC");
  const BDDateInterval day =
      BDDateRange::dateRangeWithAnchor(dateOf(2024, 5, 15), 0, 1)->interval();
  EXPECT_TRUE(day.contains(day.start));
  EXPECT_FALSE(day.contains(day.end));
  EXPECT_TRUE(day.contains(time_point_cast<nanoseconds>(day.end) - nanoseconds(1)));
  EXPECT_FALSE(day.contains(time_point_cast<nanoseconds>(day.start) - nanoseconds(1)));
  // All time reaches further than nanoseconds can count.
  const auto all = BDDateRange::dateRangeWithNamedRange(BDNamedRangeAll)->interval();
  EXPECT_TRUE(all.contains(system_clock::now()));
}

}  // namespace

TEST(BDDateRangeCalculation, Tour) {
  const DateSettings settings("Europe/Berlin", kMonday);
  const BDDateRange lastMonth = rangeOf(dateOf(2024, 3, 15, 17, 30), kMonth, -1, kMonth, 1, kMonth);
  EXPECT_EQ(fieldsOfDate(lastMonth->start()), "2024-02-01 00:00:00");
  EXPECT_EQ(fieldsOfDate(lastMonth->end()), "2024-03-01 00:00:00");
  const BDDateInterval both = lastMonth->interval();
  EXPECT_EQ(both.end - both.start, std::chrono::hours(29 * 24));
}

TEST(BDDateRangeCalculation, WorkedExamplesOfAWednesday) {
  const DateSettings settings("America/New_York", kSunday);
  const NSDate wednesday = dateOf(2024, 5, 15, 13, 45);
  const struct {
    BDDateRange range;
    const char* start;
    const char* end;
  } examples[] = {
      {rangeOf(wednesday, kWeek, 0, kWeek, 1, kWeek), "2024-05-12", "2024-05-19"},
      {rangeOf(wednesday, kWeek, -1, kWeek, 1, kWeek), "2024-05-05", "2024-05-12"},
      {rangeOf(wednesday, kDay, -1, kWeek, 1, kWeek), "2024-05-08", "2024-05-15"},
      {rangeOf(wednesday, kQuarter, 0, kQuarter, 1, kQuarter), "2024-04-01", "2024-07-01"},
      {rangeOf(wednesday, kDay, 0, kDay, -1, kDay), "2024-05-14", "2024-05-15"},
  };
  for (const auto& example : examples) {
    EXPECT_EQ(fieldsOfDate(example.range->start()), std::string(example.start) + " 00:00:00");
    EXPECT_EQ(fieldsOfDate(example.range->end()), std::string(example.end) + " 00:00:00");
  }
}

TEST(BDDateRangeCalculation, AnAnchorIsRoundedDownToItsUnit) {
  const DateSettings settings("America/New_York", kSunday);
  const struct {
    NSDate anchor;
    BDTimeUnit unit;
    const char* expected;
  } cases[] = {
      {dateOf(2024, 5, 15, 23, 59), kDay, "2024-05-15"},
      {dateOf(2024, 5, 12, 8), kWeek, "2024-05-12"},  // the first weekday itself
      {dateOf(2024, 5, 11), kWeek, "2024-05-05"},     // one before it: six days back
      {dateOf(2024, 5, 1), kWeek, "2024-04-28"},      // into the previous month
      {dateOf(2024, 1, 2), kWeek, "2023-12-31"},      // and year
      {dateOf(2024, 2, 29), kMonth, "2024-02-01"},
      {dateOf(2024, 3, 31), kQuarter, "2024-01-01"},
      {dateOf(2024, 10, 1), kQuarter, "2024-10-01"},
      {dateOf(2024, 12, 31), kQuarter, "2024-10-01"},
      {dateOf(2024, 6, 30), kQuarter, "2024-04-01"},
      {dateOf(2024, 12, 31), kYear, "2024-01-01"},
  };
  for (const auto& c : cases) EXPECT_EQ(anchored(c.anchor, c.unit), c.expected);
}

TEST(BDDateRangeCalculation, AMondayFirstCalendarAnchorsASundayToTheMondayBefore) {
  const DateSettings settings("America/New_York", kMonday);
  EXPECT_EQ(anchored(dateOf(2024, 5, 19), kWeek), "2024-05-13");
  EXPECT_EQ(anchored(dateOf(2024, 5, 13), kWeek), "2024-05-13");
}

TEST(BDDateRangeCalculation, FieldsAreCarriedAndNeverClamped) {
  const DateSettings settings("Asia/Tokyo");
  EXPECT_EQ(added(dateOf(2023, 1, 31), 1, kMonth), "2023-03-03");
  EXPECT_EQ(added(dateOf(2024, 1, 31), 1, kMonth), "2024-03-02");
  EXPECT_EQ(added(dateOf(2023, 3, 31), -1, kMonth), "2023-03-03");
  EXPECT_EQ(added(dateOf(2024, 3, 31), -1, kMonth), "2024-03-02");
  EXPECT_EQ(added(dateOf(2024, 2, 29), 1, kYear), "2025-03-01");
  EXPECT_EQ(added(dateOf(2024, 12, 31), 1, kDay), "2025-01-01");
  EXPECT_EQ(added(dateOf(2024, 1, 1), -1, kDay), "2023-12-31");
  EXPECT_EQ(added(dateOf(2024, 1, 1), 2, kWeek), "2024-01-15");
  EXPECT_EQ(added(dateOf(2024, 11, 15), 1, kQuarter), "2025-02-15");
  EXPECT_EQ(added(dateOf(2024, 11, 15), -4, kQuarter), "2023-11-15");
  EXPECT_EQ(added(dateOf(2024, 5, 15), 0, kDay), "2024-05-15");
}

TEST(BDDateRangeCalculation, AddingDropsTheTimeOfDay) {
  const DateSettings settings("Asia/Tokyo");
  EXPECT_EQ(fieldsOfDate(BDDateRange::new_()->add(1, kDay, dateOf(2024, 5, 15, 23, 59))),
            "2024-05-16 00:00:00");
}

TEST(BDDateRangeCalculation, AnInvalidUnitAddsNothing) {
  const DateSettings settings("Asia/Tokyo");
  const NSDate afternoon = dateOf(2024, 5, 15, 15);
  for (const BDTimeUnit unit : {kInvalid, kNegative}) {
    EXPECT_EQ(fieldsOfDate(BDDateRange::new_()->add(7, unit, afternoon)), "2024-05-15 00:00:00");
  }
  const BDDateRange range = rangeOf(afternoon, kMonth, 3, kInvalid, 1, kDay);
  EXPECT_EQ(fieldsOfDate(range->start()), "2024-05-01 00:00:00");
  EXPECT_EQ(fieldsOfDate(range->end()), "2024-05-02 00:00:00");
}

TEST(BDDateRangeCalculation, AnInvalidAnchorUnitRaises) {
  for (const BDTimeUnit unit : {kInvalid, kNegative}) {
    const BDDateRange range = rangeOf(dateOf(2024, 5, 15), unit, 0, kDay, 1, kDay);
    const NSException raised[] = {
        raisedBy([&] { range->_anchor(); }),
        raisedBy([&] { range->start(); }),
        raisedBy([&] { range->end(); }),
        raisedBy([&] { range->interval(); }),
        raisedBy([&] { range->calculate([](const NSDate& a, const NSDate&) -> id { return a; }); }),
    };
    for (const NSException& exception : raised) {
      ASSERT_TRUE(exception);
      EXPECT_TRUE(exception->name()->isEqual(BDInternalInconsistencyException));
      EXPECT_EQ(std::string(exception->reason()), "Invalid time unit for anchor");
    }
  }
}

TEST(BDDateRangeCalculation, ALengthOfZeroGivesOneDate) {
  const DateSettings settings("Europe/Paris");
  const BDDateRange range = rangeOf(dateOf(2024, 5, 15, 9), kDay, 3, kDay, 0, kYear);
  EXPECT_TRUE(range->start()->isEqual(range->end()));
}

TEST(BDDateRangeCalculation, LengthCountsFromTheFirstDateNotFromTheAnchor) {
  const DateSettings settings("Europe/Paris");
  const BDDateRange range = rangeOf(dateOf(2024, 1, 31), kDay, 1, kMonth, 1, kMonth);
  EXPECT_EQ(fieldsOfDate(range->start()).substr(0, 10), "2024-03-02");
  EXPECT_EQ(fieldsOfDate(range->end()).substr(0, 10), "2024-04-02");
}

TEST(BDDateRangeCalculation, CalculateHandsTheDatesInOrderOfComputation) {
  const DateSettings settings("Europe/Paris");
  const BDDateRange back = rangeOf(dateOf(2024, 5, 15), kDay, 0, kDay, -1, kWeek);
  std::string order;
  const id answer = back->calculate([&order](const NSDate& first, const NSDate& second) -> id {
    order = fieldsOfDate(first).substr(0, 10) + " " + fieldsOfDate(second).substr(0, 10);
    return second;
  });
  EXPECT_EQ(order, "2024-05-15 2024-05-08");
  EXPECT_TRUE(back->start()->isEqual(answer));
  EXPECT_EQ(fieldsOfDate(back->end()).substr(0, 10), "2024-05-15");
}

TEST(BDDateRangeCalculation, TheFloorIsYearZeroMonthZeroDayZero) {
  const DateSettings settings("UTC");
  const BDDateRange all = rangeOf(dateOf(2024, 5, 15), kDay, -100000, kYear, 0, kYear);
  // 30 November 2 BC in the Julian calendar.
  EXPECT_EQ(all->start()->timeIntervalSinceReferenceDate(), -63148464000.0);
  EXPECT_TRUE(all->start()->isEqual(all->end())) << "the year is read back as year -1, and floored";
  const BDDateRange allTime = BDDateRange::dateRangeWithNamedRange(BDNamedRangeAll);
  EXPECT_EQ(allTime->start()->timeIntervalSinceReferenceDate(), -63148464000.0);
  EXPECT_EQ(allTime->end()->timeIntervalSinceReferenceDate(), 6249220416000.0 - 978307200.0);
}

TEST(BDDateRangeCalculation, TheFloorTestsTheYearBeforeMonthsAreCarried) {
  const DateSettings settings("UTC");
  // Many months back leave the year field as it is: no floor.
  const NSDate carried = BDDateRange::new_()->add(-12 * 3000, kMonth, dateOf(2024, 5, 15));
  EXPECT_EQ(fieldsOfDate(carried).substr(0, 11), "-976-05-15 ");
  EXPECT_EQ(
      BDDateRange::new_()->add(-2025, kYear, dateOf(2024, 5, 15))->timeIntervalSinceReferenceDate(),
      -63148464000.0);
  EXPECT_EQ(fieldsOfDate(BDDateRange::new_()->add(-2024, kYear, dateOf(2024, 5, 15))).substr(0, 10),
            "0000-05-15");
  const BDDateRange nought = rangeOf(dateOf(2024, 5, 15), kDay, -2024, kYear, 0, kDay);
  EXPECT_EQ(fieldsOfDate(nought->start()).substr(0, 10), "0000-05-15");
}

TEST(BDDateRangeCalculation, HugeCountsWrapAndNeverFail) {
  const DateSettings settings("UTC");
  const NSDate date = dateOf(2024, 5, 15);
  // Only the low 64 bits of the product count.
  const auto n = static_cast<std::int64_t>((UINT64_MAX / 7) + 1);  // 7 n is 4 or less, wrapped
  const auto days = static_cast<std::int64_t>(std::uint64_t{7} * static_cast<std::uint64_t>(n));
  EXPECT_EQ(added(date, n, kWeek), added(date, days, kDay));
  const auto m = static_cast<std::int64_t>((UINT64_MAX / 3) + 1);
  const auto months = static_cast<std::int64_t>(std::uint64_t{3} * static_cast<std::uint64_t>(m));
  EXPECT_EQ(added(date, m, kQuarter), added(date, months, kMonth));
  for (const std::int64_t count : {INT64_MIN, INT64_MIN + 1, INT64_MAX - 1, INT64_MAX}) {
    for (const BDTimeUnit unit : {kDay, kWeek, kMonth, kQuarter, kYear}) {
      const BDDateRange range = rangeOf(date, kYear, count, unit, count, unit);
      EXPECT_FALSE(std::isnan(range->start()->timeIntervalSinceReferenceDate()));
      EXPECT_TRUE(range->interval().start <= range->interval().end);
    }
  }
}

TEST(BDDateRangeCalculation, MidnightsThatAreMissingOrDoubled) {
  const struct {
    const char* zone;
    int year, month, day;
    const char* fields;
  } cases[] = {
      {"America/Sao_Paulo", 2018, 11, 4, "2018-11-04 01:00:00"},
      {"America/Toronto", 1919, 3, 31, "1919-03-31 00:30:00"},
      {"Africa/Cairo", 2023, 4, 28, "2023-04-28 01:00:00"},
      {"Pacific/Apia", 2011, 12, 30, "2011-12-31 00:00:00"},
      {"America/Havana", 2022, 11, 6, "2022-11-06 00:00:00"},
  };
  for (const auto& c : cases) {
    const DateSettings settings(c.zone);
    const BDDateRange range =
        rangeOf(dateOf(c.year, c.month, c.day - 1, 12), kDay, 1, kDay, 0, kDay);
    EXPECT_EQ(fieldsOfDate(range->start()), c.fields) << c.zone;
  }
  const DateSettings settings("America/Havana");
  const BDDateRange range = rangeOf(dateOf(2022, 11, 6, 12), kDay, 0, kDay, 0, kDay);
  // The first of the two: one hour before the second, at 04:00 UTC.
  EXPECT_EQ(range->start()->timeIntervalSince1970(), 1667707200.0);
}

TEST(BDDateRangeCalculation, DatesBefore1582AreJulian) {
  const DateSettings settings("UTC");
  EXPECT_EQ(added(dateOf(1582, 10, 4), 1, kDay), "1582-10-15");
  EXPECT_EQ(added(dateOf(1500, 2, 28), 1, kDay), "1500-02-29");
}

TEST(BDDateRangeCalculation, ANilAnchorIsNowAtEachCall) {
  const DateSettings settings("Europe/Berlin", kMonday);
  const BDDateRange today = rangeOf(nullptr, kDay, 0, kDay, 1, kDay);
  const NSDate before = NSDate::date();
  const NSDate start = today->start();
  const NSDate end = today->end();
  EXPECT_NE(start->compare(before), NSOrderedDescending);
  EXPECT_NE(end->compare(before), NSOrderedAscending);
}

TEST(BDDateRangeCalculation, ThePastWeekOfAWednesdayEndsAtTodaysMidnight) {
  const DateSettings settings("America/New_York", kSunday);
  const BDDateRange past = BDDateRange::dateRangeWithNamedRange(BDNamedRangePastWeek);
  past->setAnchor(dateOf(2024, 5, 15, 10));
  EXPECT_EQ(fieldsOfDate(past->start()), "2024-05-08 00:00:00");
  EXPECT_EQ(fieldsOfDate(past->end()), "2024-05-15 00:00:00");
}

TEST(BDDateRangeCalculation, ACalendarThatIsNotGregorianRoundsInItsOwnFields) {
  const DateSettings settings("Asia/Bangkok", kSunday, NSBuddhistCalendar);
  EXPECT_EQ(anchored(dateOf(2024, 5, 15), kYear), "2024-01-01");
  EXPECT_EQ(anchored(dateOf(2024, 5, 15), kMonth), "2024-05-01");
}

TEST(BDDateRangeCalculation, OffsetsAreAddedInGregorianFieldsWhateverTheCalendar) {
  const DateSettings settings("Asia/Jerusalem", kSunday, NSHebrewCalendar);
  const BDDateRange month = rangeOf(dateOf(2024, 5, 15), kMonth, 0, kMonth, 1, kMonth);
  EXPECT_EQ(fieldsOfDate(month->start()).substr(0, 10), "2024-05-09");
  EXPECT_EQ(fieldsOfDate(month->end()).substr(0, 10), "2024-06-09") << "not 7 June";
  const BDDateRange year = rangeOf(dateOf(2024, 5, 15), kYear, 1, kYear, 0, kYear);
  EXPECT_EQ(fieldsOfDate(year->start()).substr(0, 10), "2024-09-16");
}

TEST(BDDateRangeCalculation, ACalendarWithErasKeepsTheEra) {
  const DateSettings settings("Asia/Tokyo", kSunday, NSJapaneseCalendar);
  // Showa 45, not the current era's year 45.
  EXPECT_EQ(anchored(dateOf(1970, 5, 15), kMonth), "1970-05-01");
  EXPECT_EQ(anchored(dateOf(1970, 5, 15), kWeek), "1970-05-10");
}

TEST(BDDateRangeCalculation, ShortAndLongWayAgree) {
  // The same computation with and without the objects in between, over zones, weeks and units. Once
  // a method was replaced there is only the long way, so this cannot run behind a test that does.
  ASSERT_EQ(class_getMethodChanges(BDDateRange::class_()), 0U);
  for (const char* zone : {"America/New_York", "Pacific/Apia", "Europe/Dublin", "Asia/Kathmandu"}) {
    for (const NSUInteger first : {1U, 2U, 7U}) {
      const DateSettings settings(zone, first);
      for (int i = 0; i < 60; ++i) {
        const NSDate anchor = NSDate::dateWithTimeIntervalSinceReferenceDate(i * 1.7e7 - 2e8);
        const auto unit = static_cast<BDTimeUnit>(i % 5);
        const auto lengthUnit = static_cast<BDTimeUnit>((i / 5) % 6);
        const BDDateRange range = rangeOf(anchor, unit, i - 30, lengthUnit, 7 - i, unit);
        const NSDate a = range->add(range->offset(), range->offsetUnit(), range->_anchor());
        const NSDate b = range->add(range->length(), range->lengthUnit(), a);
        EXPECT_TRUE(range->start()->isEqual(a->earlierDate(b))) << zone << ' ' << i;
        EXPECT_TRUE(range->end()->isEqual(a->laterDate(b))) << zone << ' ' << i;
      }
    }
  }
}

TEST(BDDateRangeCalculation, ShortAndLongWayAgreeOnTheLargestFields) {
  const DateSettings settings("UTC");
  const NSDate date = dateOf(2024, 5, 15);
  for (const std::int64_t count :
       {INT64_MAX - 2024, INT64_MAX - 15, INT64_MAX - 5, INT64_MAX - 4}) {
    for (const BDTimeUnit unit : {kDay, kMonth, kYear}) {
      const BDDateRange range = rangeOf(date, kDay, count, unit, 0, kDay);
      EXPECT_TRUE(range->start()->isEqual(range->add(count, unit, date))) << count << ' ' << unit;
    }
  }
}

TEST(BDDateRangeCalculation, IntervalsAreExactToTheFarthestDates) {
  const DateSettings settings("UTC");
  const BDDateRange far = rangeOf(dateOf(2024, 5, 15), kDay, INT64_MAX, kWeek, 1, kDay);
  const auto second = std::chrono::seconds(1);
  EXPECT_EQ(far->interval().start.time_since_epoch() % second, std::chrono::milliseconds(0));
  EXPECT_EQ(static_cast<double>(far->interval().start.time_since_epoch() / second),
            far->start()->timeIntervalSince1970());
}

TEST(BDDateRangeCalculation, QuartersAndYearsBeginWithAnOrdinaryMonth) {
  const DateSettings settings("Asia/Shanghai", kSunday, NSChineseCalendar);
  const NSDate leapMonth = dateOf(2023, 4, 1);  // in the second of two second months
  EXPECT_EQ(anchored(leapMonth, kMonth), "2023-03-22");
  EXPECT_EQ(anchored(leapMonth, kQuarter), "2023-01-22");
  EXPECT_EQ(anchored(leapMonth, kYear), "2023-01-22");
  EXPECT_EQ(anchored(dateOf(2020, 6, 1), kQuarter), "2020-04-23");  // the second fourth month
}

TEST(BDDateRangeCalculation, ThreadsMayEvaluateTheSameRange) {
  const DateSettings settings("Europe/Berlin", kMonday);
  const BDDateRange range = rangeOf(dateOf(2024, 5, 15), kWeek, 0, kWeek, 1, kWeek);
  const NSDate start = range->start();
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 500; ++n) {
        const NSDate added = range->add(0, kDay, range->_anchor());
        if (!range->start()->isEqual(start) || !added->isEqual(start)) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}
