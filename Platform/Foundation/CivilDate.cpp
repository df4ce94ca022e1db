#include <Brindle/Platform/CivilDate.h>

#include <chrono>

#include "Platform/Foundation/Internal/CivilTime.h"
#include "Platform/Foundation/Internal/ZoneRules.h"

namespace brindle {
namespace {

constexpr std::int64_t kDaySeconds = 86400;
constexpr double kReference = 978307200;     // 2001 in seconds since 1970
constexpr std::int64_t kLateYear = 5000000;  // well inside the days that calendars know

CivilDate dateOf(std::int64_t day) noexcept {
  const internal::CivilDay civil = internal::civilDay(day);
  return {civil.year, civil.month, civil.day, internal::weekdayOf(day)};
}

}  // namespace

double currentInstant() noexcept {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration<double>(sinceEpoch).count() - kReference;
}

CivilDate civilDateAt(double instant) noexcept {
  const std::int64_t seconds = internal::wholeSeconds(instant + kReference);
  const std::int64_t local = seconds + internal::offsetAt(*internal::defaultZone(), seconds);
  return dateOf(local / kDaySeconds - (local % kDaySeconds < 0 ? 1 : 0));
}

CivilStart startOfCivilDate(const CivilDate& date) noexcept {
  const std::int64_t day = internal::dayNumber({date.year, date.month, date.day});
  const internal::DayStart start = internal::startOfDay(*internal::defaultZone(), day);
  const double instant = static_cast<double>(start.instant) - kReference;
  // Most fields need no carrying: every month of the Gregorian calendar has 28 days.
  const bool isPlain = start.day == day && date.year > 1582 && date.year < kLateYear &&
                       date.month >= 1 && date.month <= 12 && date.day >= 1 && date.day <= 28;
  if (!isPlain) return {instant, dateOf(start.day)};
  return {instant, {date.year, date.month, date.day, internal::weekdayOf(day)}};
}

}  // namespace brindle
