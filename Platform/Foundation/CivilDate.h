// Civil dates without objects: for C++ code that wants years, months and days, and nothing else.
//
//   CivilDate today = civilDateAt(currentInstant());
//   CivilStart next = startOfCivilDate({today.year, today.month + 1, 1});   // of next month
//
// Instants are seconds since 1 January 2001 UTC, as in NSDate; days are those of the default time
// zone (NSTimeZone::defaultTimeZone), Gregorian, and Julian before 15 October 1582. Years are
// astronomical: 0 is 1 BC. Any number is taken: what lies beyond the days that calendars know (5.8
// million years either way) is moved to the nearest of them. Any thread.
#pragma once

#include <cstdint>

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

/// A day by its fields.
struct CivilDate {
  std::int64_t year = 1;
  std::int64_t month = 1;  // 1 to 12 when read; any when written: 13 is January of the next year
  std::int64_t day =
      1;            // 1 to 31 when read; any when written: 0 is the last day of the month before
  int weekday = 0;  // 1 for Sunday to 7 for Saturday when read; ignored when written
};

/// The first instant of a day, and the day that begins there.
struct CivilStart {
  double instant;
  CivilDate date;
};

/// Now.
BRINDLE_PLATFORM_EXPORT double currentInstant() noexcept;

/// The day of an instant. NaN is taken as 1 January 1970 UTC.
BRINDLE_PLATFORM_EXPORT CivilDate civilDateAt(double instant) noexcept;

/// Where a day begins: at midnight; where that is missing, at the day's first instant; where it
/// comes twice, at the first. A day that a zone left out begins, and is, the next one.
BRINDLE_PLATFORM_EXPORT CivilStart startOfCivilDate(const CivilDate& date) noexcept;

/// Whether the user's calendar is the Gregorian one, and the number of its first weekday: what
/// NSCalendar::currentCalendar answers, without an object.
struct CivilWeek {
  bool gregorian;
  int firstWeekday;  // 1 for Sunday to 7 for Saturday
};
BRINDLE_PLATFORM_EXPORT CivilWeek currentCivilWeek();

}  // namespace brindle
