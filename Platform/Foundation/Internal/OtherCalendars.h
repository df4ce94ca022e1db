// Calendars that are not Gregorian, and what the environment says about the user's calendar. The
// one unit that talks to ICU about calendars.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brindle::internal {

/// A day in the fields of some calendar. Years are counted within their era.
struct CalendarFields {
  std::int64_t era;
  std::int64_t year;
  std::int64_t month;  // 1 is the calendar's first
  std::int64_t day;
  bool leapMonth;
};

/// Whether ICU knows a calendar by that name ("buddhist", "japanese", "hebrew", ...).
bool isCalendar(std::string_view name);

/// The fields of a day number (see CivilTime.h) and back. Fields are lenient; beyond what 32 bits
/// hold they are moved to the nearest that fits.
CalendarFields fieldsInCalendar(std::string_view calendar, std::int64_t day);
std::int64_t dayInCalendar(std::string_view calendar, const CalendarFields& fields);

/// What the environment says: the locale of LC_ALL, LC_TIME or LANG (the first that is not empty),
/// its first weekday (1 is Sunday) and its calendar ("gregorian" for most).
struct UserCalendar {
  std::string locale;
  std::int64_t firstWeekday;
  std::string calendar;
};
UserCalendar userCalendar();

/// First weekday and calendar of a locale such as "de_DE".
UserCalendar calendarOfLocale(std::string_view locale);

}  // namespace brindle::internal
