#include "Platform/Foundation/Internal/CivilTime.h"

#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include <gtest/gtest.h>
#include <unicode/gregocal.h>

using namespace brindle::internal;

namespace {

void expectDay(const CivilDay& day, std::int64_t year, std::int64_t month,
               std::int64_t dayOfMonth) {
  EXPECT_EQ(day.year, year);
  EXPECT_EQ(day.month, month);
  EXPECT_EQ(day.day, dayOfMonth);
}

}  // namespace

TEST(CivilTime, Tour) {
  EXPECT_EQ(dayNumber({1970, 1, 1}), 0);
  EXPECT_EQ(dayNumber({2024, 2, 29}), 19782);
  expectDay(civilDay(19782), 2024, 2, 29);
  EXPECT_EQ(weekdayOf(19782), 5) << "a Thursday";
}

TEST(CivilTime, FieldsCarry) {
  const struct {
    CivilDay given;
    CivilDay meant;
  } cases[] = {
      {{2020, 2, 31}, {2020, 3, 2}},   {{2021, 2, 31}, {2021, 3, 3}},
      {{2021, 13, 1}, {2022, 1, 1}},   {{2021, -1, 1}, {2020, 11, 1}},
      {{2021, 3, 0}, {2021, 2, 28}},   {{2021, 3, -40}, {2021, 1, 19}},
      {{1582, 10, 5}, {1582, 10, 15}}, {{1582, 10, 14}, {1582, 10, 24}},
      {{1582, 9, 31}, {1582, 10, 1}},  {{1582, 9, 60}, {1582, 10, 30}},
      {{1583, 1, -89}, {1582, 10, 3}}, {{0, 0, 0}, {-1, 11, 30}},
  };
  for (const auto& c : cases) {
    expectDay(civilDay(dayNumber(c.given)), c.meant.year, c.meant.month, c.meant.day);
  }
}

TEST(CivilTime, TheDayBeforeTheGregorianCalendarIsTheFourthOfOctober) {
  EXPECT_EQ(dayNumber({1582, 10, 15}) - dayNumber({1582, 10, 4}), 1);
  expectDay(civilDay(dayNumber({1582, 10, 15}) - 1), 1582, 10, 4);
}

TEST(CivilTime, TheFloorOfLenientFields) { EXPECT_EQ(dayNumber({0, 0, 0}) * 86400, -62170156800); }

TEST(CivilTime, EveryDayOfManyCenturiesComesBack) {
  for (std::int64_t day = dayNumber({-5000, 1, 1}); day < dayNumber({6000, 1, 1}); ++day) {
    ASSERT_EQ(dayNumber(civilDay(day)), day);
  }
}

TEST(CivilTime, FieldsOfAnySizeStayWithinTheDaysThatExist) {
  constexpr std::int64_t kLow = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kHigh = std::numeric_limits<std::int64_t>::max();
  for (const std::int64_t year : {kLow, std::int64_t{0}, kHigh}) {
    for (const std::int64_t month : {kLow, std::int64_t{1}, kHigh}) {
      for (const std::int64_t day : {kLow, std::int64_t{1}, kHigh}) {
        const std::int64_t number = dayNumber({year, month, day});
        EXPECT_GE(number, kFirstDay);
        EXPECT_LE(number, kLastDay);
      }
    }
  }
  EXPECT_EQ(dayNumber(civilDay(kFirstDay)), kFirstDay);
  EXPECT_EQ(dayNumber(civilDay(kLastDay)), kLastDay);
  EXPECT_EQ(dayNumber(civilDay(kHigh)), kLastDay);
  EXPECT_GE(weekdayOf(kLow), 1);
}

TEST(CivilTime, AgreesWithIcu) {
  UErrorCode error = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(*icu::TimeZone::getGMT(), icu::Locale::getUS(), error);
  std::mt19937 random(7);
  std::uniform_int_distribution<std::int32_t> years(-500000, 500000);
  std::uniform_int_distribution<std::int32_t> near(1580, 1584);
  std::uniform_int_distribution<std::int32_t> small(-100000, 100000);
  for (int i = 0; i < 100000; ++i) {
    const std::int32_t year = i % 2 == 0 ? years(random) : near(random);
    const std::int32_t month = i % 3 == 0 ? small(random) : small(random) % 30;
    const std::int32_t day = i % 5 == 0 ? small(random) : small(random) % 60;
    calendar.clear();
    calendar.set(UCAL_EXTENDED_YEAR, year);
    calendar.set(UCAL_MONTH, month - 1);
    calendar.set(UCAL_DATE, day);
    const double expected = calendar.getTime(error) / 86400000;
    ASSERT_EQ(static_cast<double>(dayNumber({year, month, day})), expected)
        << year << ' ' << month << ' ' << day;
  }
  EXPECT_TRUE(U_SUCCESS(error));
}

TEST(CivilTime, InstantsOfAnySizeHaveADay) {
  expectDay(civilMoment(0).day, 1970, 1, 1);
  expectDay(civilMoment(-0.5).day, 1969, 12, 31);
  EXPECT_EQ(civilMoment(-0.5).secondOfDay, 86399);
  expectDay(civilMoment(std::nan("")).day, 1970, 1, 1);
  expectDay(civilMoment(HUGE_VAL).day, 5828963, 12, 20);
  expectDay(civilMoment(-HUGE_VAL).day, -5838269, 9, 20);
}
