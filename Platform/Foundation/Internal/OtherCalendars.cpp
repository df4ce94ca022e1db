#include "Platform/Foundation/Internal/OtherCalendars.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/uloc.h>

namespace brindle::internal {
namespace {

constexpr double kDayMilliseconds = 86400000;

std::unique_ptr<icu::Calendar> newCalendar(std::string_view name) {
  UErrorCode error = U_ZERO_ERROR;
  const std::string locale = "en_US@calendar=" + std::string(name);
  std::unique_ptr<icu::Calendar> calendar(
      icu::Calendar::createInstance(*icu::TimeZone::getGMT(), icu::Locale(locale.c_str()), error));
  return U_SUCCESS(error) ? std::move(calendar) : nullptr;
}

/// Of this thread; days are asked for one after the other in the same calendar.
icu::Calendar* calendarNamed(std::string_view name) {
  thread_local std::string current;
  thread_local std::unique_ptr<icu::Calendar> calendar;
  if (!calendar || current != name) {
    calendar = newCalendar(name);
    current = name;
  }
  return calendar.get();
}

// ICU's own numbers have 32 bits, and wrap without a word.
std::int32_t narrow(std::int64_t value) {
  constexpr std::int64_t kLimit = 5000000;
  return static_cast<std::int32_t>(std::clamp(value, -kLimit, kLimit));
}

std::string_view environmentLocale() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return value;
  }
  return {};
}

}  // namespace

bool isCalendar(std::string_view name) {
  if (name.empty() || name.find_first_of("@;=\0") != std::string_view::npos) return false;
  const std::unique_ptr<icu::Calendar> calendar = newCalendar(name);
  return calendar != nullptr && name == calendar->getType();
}

CalendarFields fieldsInCalendar(std::string_view name, std::int64_t day) {
  icu::Calendar* calendar = calendarNamed(name);
  if (calendar == nullptr) return {};
  UErrorCode error = U_ZERO_ERROR;
  calendar->setTime(static_cast<double>(day) * kDayMilliseconds, error);
  const CalendarFields fields{calendar->get(UCAL_ERA, error), calendar->get(UCAL_YEAR, error),
                              calendar->get(UCAL_MONTH, error) + 1, calendar->get(UCAL_DATE, error),
                              calendar->get(UCAL_IS_LEAP_MONTH, error) != 0};
  return U_SUCCESS(error) ? fields : CalendarFields{};
}

std::int64_t dayInCalendar(std::string_view name, const CalendarFields& fields) {
  icu::Calendar* calendar = calendarNamed(name);
  if (calendar == nullptr) return 0;
  UErrorCode error = U_ZERO_ERROR;
  calendar->clear();
  calendar->set(UCAL_ERA, narrow(fields.era));
  calendar->set(UCAL_YEAR, narrow(fields.year));
  calendar->set(UCAL_MONTH, narrow(fields.month) - 1);
  calendar->set(UCAL_IS_LEAP_MONTH, fields.leapMonth ? 1 : 0);
  calendar->set(UCAL_DATE, narrow(fields.day));
  const double milliseconds = calendar->getTime(error);
  return U_SUCCESS(error) ? static_cast<std::int64_t>(milliseconds / kDayMilliseconds) : 0;
}

UserCalendar calendarOfLocale(std::string_view name) {
  // "de_DE.UTF-8@euro": the encoding says nothing about dates.
  std::string text(name.substr(0, name.find('.')));
  if (text.empty() || text == "C" || text == "POSIX") text = "en_US_POSIX";
  UErrorCode error = U_ZERO_ERROR;
  char canonical[ULOC_FULLNAME_CAPACITY];
  const std::int32_t size = uloc_canonicalize(text.c_str(), canonical, sizeof canonical, &error);
  if (U_FAILURE(error) || size <= 0 || size >= ULOC_FULLNAME_CAPACITY)
    return {"en_US_POSIX", 1, "gregorian"};
  const std::unique_ptr<icu::Calendar> calendar(
      icu::Calendar::createInstance(*icu::TimeZone::getGMT(), icu::Locale(canonical), error));
  if (U_FAILURE(error) || calendar == nullptr) return {canonical, 1, "gregorian"};
  const UCalendarDaysOfWeek first = calendar->getFirstDayOfWeek(error);
  return {canonical, U_SUCCESS(error) ? first : UCAL_SUNDAY, calendar->getType()};
}

UserCalendar userCalendar() { return calendarOfLocale(environmentLocale()); }

}  // namespace brindle::internal
