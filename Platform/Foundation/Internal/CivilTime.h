// Calendar days without time zones: years, months and days as people count them, and day numbers.
//
// Fields are lenient: month 13 is January of the next year, day 0 the last day of the month before.
// Days before 15 October 1582 are counted in the Julian calendar, as historians do. Years are
// astronomical: 0 is 1 BC. Everything takes any 64-bit number; what lies beyond the years that
// calendars know (about 5.8 million either way) is moved to the nearest day that they know.
#pragma once

#include <cstdint>

namespace brindle::internal {

/// A day by its fields.
struct CivilDay {
  std::int64_t year;
  std::int64_t month;  // 1 to 12 when read
  std::int64_t day;    // 1 to 31 when read
};

/// The first and last day number that exist.
inline constexpr std::int64_t kFirstDay = -2133147020;
inline constexpr std::int64_t kLastDay = 2128265844;

/// Days from 1970-01-01 to the day that the fields mean.
std::int64_t dayNumber(const CivilDay& fields) noexcept;

/// The fields of a day number.
CivilDay civilDay(std::int64_t dayNumber) noexcept;

/// 1 for Sunday to 7 for Saturday.
int weekdayOf(std::int64_t dayNumber) noexcept;

/// A day and the seconds into it.
struct CivilMoment {
  CivilDay day;
  int secondOfDay;
};

/// The day and time, in UTC, of seconds since 1970. Infinity and beyond: the nearest day; NaN is
/// 1970.
CivilMoment civilMoment(double secondsSince1970) noexcept;

/// Whole seconds of an instant, rounded down, within the days that exist. NaN is 0.
std::int64_t wholeSeconds(double secondsSince1970) noexcept;

}  // namespace brindle::internal
