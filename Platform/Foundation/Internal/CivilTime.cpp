#include "Platform/Foundation/Internal/CivilTime.h"

#include <algorithm>
#include <cmath>

namespace brindle::internal {
namespace {

__extension__ using Wide = __int128;  // fields of any size, multiplied

constexpr std::int64_t kGregorianStart = -141427;  // 1582-10-15
constexpr std::int64_t kDaySeconds = 86400;
constexpr int kDaysBeforeMonth[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

template <class Int>
constexpr Int floorDiv(Int a, int b) {
  return a / b - (a % b < 0 ? 1 : 0);
}

template <class Int>
constexpr bool isLeap(Int year, bool gregorian) {
  if (year % 4 != 0) return false;
  return !gregorian || year % 100 != 0 || year % 400 == 0;
}

/// Days from 1970-01-01 to the first of a month (0 to 11) in one of the two calendars.
template <class Int>
constexpr Int daysToMonth(Int year, int month, bool gregorian) {
  const Int before = year - 1;
  Int days = 365 * before + floorDiv(before, 4);
  days += gregorian ? floorDiv(before, 400) - floorDiv(before, 100) - 719162 : Int{-719164};
  days += kDaysBeforeMonth[month];
  if (month >= 2 && isLeap(year, gregorian)) ++days;
  return days;
}

template <class Int>
std::int64_t dayNumberIn(const CivilDay& fields) noexcept {
  const Int month = Int{fields.month} - 1;
  const Int year = Int{fields.year} + floorDiv(month, 12);
  const int monthOfYear = static_cast<int>(month - floorDiv(month, 12) * 12);
  const bool gregorian = year >= 1582;
  const Int rest = Int{fields.day} - 1;
  Int days = daysToMonth(year, monthOfYear, gregorian) + rest;
  if ((days >= kGregorianStart) != gregorian) {
    days = daysToMonth(year, monthOfYear, !gregorian) + rest;
  }
  return static_cast<std::int64_t>(std::clamp<Int>(days, kFirstDay, kLastDay));
}

// Fields of this size cannot overflow 64 bits, which divide much faster than 128.
constexpr bool isModest(std::int64_t field) {
  constexpr std::int64_t kModest = std::int64_t{1} << 40U;
  return field < kModest && field > -kModest;
}

// Years that begin in March end with the leap day, so months have fixed places in them.
struct March {
  std::int64_t year;
  std::int64_t dayOfYear;
};

CivilDay fromMarch(const March& m) {
  const std::int64_t month = (5 * m.dayOfYear + 2) / 153;
  const std::int64_t day = m.dayOfYear - (153 * month + 2) / 5 + 1;
  return month < 10 ? CivilDay{m.year, month + 3, day} : CivilDay{m.year + 1, month - 9, day};
}

}  // namespace

std::int64_t dayNumber(const CivilDay& fields) noexcept {
  if (isModest(fields.year) && isModest(fields.month) && isModest(fields.day)) [[likely]] {
    return dayNumberIn<std::int64_t>(fields);
  }
  return dayNumberIn<Wide>(fields);
}

CivilDay civilDay(std::int64_t number) noexcept {
  const std::int64_t days = std::clamp(number, kFirstDay, kLastDay);
  if (days >= kGregorianStart) {
    const std::int64_t shifted = days + 719468;  // from 0000-03-01, positive here
    const std::int64_t era = shifted / 146097;
    const std::int64_t dayOfEra = shifted % 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    return fromMarch(
        {era * 400 + yearOfEra, dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100)});
  }
  const std::int64_t shifted = days + 719470;  // from 0000-03-01 of the Julian calendar
  const std::int64_t era = shifted / 1461 - (shifted % 1461 < 0 ? 1 : 0);
  const std::int64_t dayOfEra = shifted - era * 1461;
  const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460) / 365;
  return fromMarch({era * 4 + yearOfEra, dayOfEra - 365 * yearOfEra});
}

int weekdayOf(std::int64_t number) noexcept {
  const std::int64_t days = std::clamp(number, kFirstDay, kLastDay);
  return static_cast<int>(((days + 4) % 7 + 7) % 7) + 1;  // 1970-01-01 was a Thursday
}

std::int64_t wholeSeconds(double secondsSince1970) noexcept {
  if (std::isnan(secondsSince1970)) return 0;
  const double first = static_cast<double>(kFirstDay) * kDaySeconds;
  const double last = (static_cast<double>(kLastDay) + 1) * kDaySeconds - 1;
  return static_cast<std::int64_t>(std::clamp(std::floor(secondsSince1970), first, last));
}

CivilMoment civilMoment(double secondsSince1970) noexcept {
  const std::int64_t seconds = wholeSeconds(secondsSince1970);
  const std::int64_t day = seconds / kDaySeconds - (seconds % kDaySeconds < 0 ? 1 : 0);
  return {civilDay(day), static_cast<int>(seconds - day * kDaySeconds)};
}

}  // namespace brindle::internal
