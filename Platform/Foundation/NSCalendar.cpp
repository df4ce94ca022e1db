#include <Brindle/Platform/NSCalendar.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <optional>

#include <Brindle/Platform/CivilDate.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSCopying.h>

#include "Platform/Foundation/Internal/CivilTime.h"
#include "Platform/Foundation/Internal/OtherCalendars.h"
#include "Platform/Foundation/Internal/TimeZoneAccess.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle {

constinit const NSString NSGregorianCalendar = "gregorian"_ns;
constinit const NSString NSBuddhistCalendar = "buddhist"_ns;
constinit const NSString NSChineseCalendar = "chinese"_ns;
constinit const NSString NSHebrewCalendar = "hebrew"_ns;
constinit const NSString NSIslamicCalendar = "islamic"_ns;
constinit const NSString NSIslamicCivilCalendar = "islamic-civil"_ns;
constinit const NSString NSJapaneseCalendar = "japanese"_ns;
constinit const NSString NSPersianCalendar = "persian"_ns;
constinit const NSString NSIndianCalendar = "indian"_ns;

namespace {

constexpr std::int64_t kDaySeconds = 86400;

struct Fields {
  std::string identifier = "gregorian";
  NSUInteger firstWeekday = 1;
  Field<NSTimeZone> timeZone;  // nil: the default zone of the moment
  Field<NSLocale> locale;
};

Fields& fields(const NSCalendar& self) { return fieldsOf<Fields>(self); }

bool isGregorian(const Fields& f) { return f.identifier == "gregorian"; }

// --- The user's calendar ---

struct Settings {
  std::mutex lock;
  std::optional<internal::UserCalendar> user;
  // Gregorian in the sign, the first weekday in the value; 0 until it is known. Read without the
  // lock.
  std::atomic<int> week{0};
};

Settings& settings() {
  static auto& shared = *new Settings;
  return shared;
}

internal::UserCalendar user() {
  Settings& s = settings();
  const std::lock_guard guard(s.lock);
  if (!s.user) s.user = internal::userCalendar();
  const int first = static_cast<int>(s.user->firstWeekday);
  s.week.store(s.user->calendar == "gregorian" ? first : -first, std::memory_order_release);
  return *s.user;
}

void setUser(std::optional<internal::UserCalendar> user) {
  Settings& s = settings();
  const std::lock_guard guard(s.lock);
  s.user = std::move(user);
  s.week.store(0, std::memory_order_release);
}

// --- Fields ---

std::int64_t orElse(NSInteger value, std::int64_t unset) {
  return value == NSUndefinedDateComponent ? unset : value;
}

bool asks(NSCalendarUnit units, NSCalendarUnit unit) { return (units & unit) != 0; }

NSDateComponents split(const Fields& f, NSCalendarUnit units, const NSDate& date) {
  const internal::Zone& zone = *internal::zoneOf(f.timeZone);
  const std::int64_t instant = internal::wholeSeconds(date->timeIntervalSince1970());
  const std::int64_t local = instant + internal::offsetAt(zone, instant);
  const std::int64_t day = local / kDaySeconds - (local % kDaySeconds < 0 ? 1 : 0);
  const std::int64_t second = local - day * kDaySeconds;

  const NSDateComponents parts = NSDateComponents::alloc()->init();
  internal::CivilDay civil{};
  if (isGregorian(f)) {
    civil = internal::civilDay(day);
    if (asks(units, NSEraCalendarUnit)) parts->setEra(civil.year > 0 ? 1 : 0);
  } else {
    const internal::CalendarFields other = internal::fieldsInCalendar(f.identifier, day);
    civil = {other.year, other.month, other.day};
    // The year means nothing without it when the date is built again.
    if (asks(units, NSEraCalendarUnit | NSYearCalendarUnit)) parts->setEra(other.era);
    if (asks(units, NSMonthCalendarUnit) && other.leapMonth) parts->setLeapMonth(true);
  }
  if (asks(units, NSYearCalendarUnit)) parts->setYear(civil.year);
  if (asks(units, NSMonthCalendarUnit)) parts->setMonth(civil.month);
  if (asks(units, NSDayCalendarUnit)) parts->setDay(civil.day);
  if (asks(units, NSHourCalendarUnit)) parts->setHour(second / 3600);
  if (asks(units, NSMinuteCalendarUnit)) parts->setMinute(second / 60 % 60);
  if (asks(units, NSSecondCalendarUnit)) parts->setSecond(second % 60);
  if (asks(units, NSWeekdayCalendarUnit)) parts->setWeekday(internal::weekdayOf(day));
  return parts;
}

std::int64_t dayOf(const Fields& f, const NSDateComponents& parts) {
  const std::int64_t year = orElse(parts->year(), 1);
  const std::int64_t month = orElse(parts->month(), 1);
  const std::int64_t day = orElse(parts->day(), 1);
  if (isGregorian(f)) return internal::dayNumber({year, month, day});
  // Without an era the years are counted in the calendar's latest.
  constexpr std::int64_t kLateDay = 47482;  // 2100-01-01
  const std::int64_t era =
      orElse(parts->era(), internal::fieldsInCalendar(f.identifier, kLateDay).era);
  return internal::dayInCalendar(f.identifier, {era, year, month, day, parts->isLeapMonth()});
}

/// Hours, minutes and seconds of any size as seconds within some days.
std::int64_t secondsOf(const NSDateComponents& parts) {
  const auto limited = [](NSInteger value) {
    constexpr std::int64_t kLimit = std::int64_t{1} << 40;
    return std::clamp(orElse(value, 0), -kLimit, kLimit);
  };
  return limited(parts->hour()) * 3600 + limited(parts->minute()) * 60 + limited(parts->second());
}

NSDate build(const Fields& f, const NSDateComponents& parts) {
  const internal::Zone& zone = *internal::zoneOf(f.timeZone);
  const std::int64_t day = dayOf(f, parts);
  const bool timeless = parts->hour() == NSUndefinedDateComponent &&
                        parts->minute() == NSUndefinedDateComponent &&
                        parts->second() == NSUndefinedDateComponent;
  const std::int64_t instant = timeless ? internal::startOfDay(zone, day).instant
                                        : internal::instantAt(zone, day, secondsOf(parts));
  return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(instant));
}

NSCalendar calendarFor(const internal::UserCalendar& user) {
  NSCalendar calendar = NSCalendar::alloc()->init();
  fields(calendar).identifier = user.calendar;
  fields(calendar).firstWeekday = static_cast<NSUInteger>(user.firstWeekday);
  return calendar;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"currentCalendar">([](const Class&) { return calendarFor(user()); }),
    classMethod<"setCurrentCalendar:">([](const Class&, const NSCalendar& calendar) {
      if (!calendar) {
        setUser(std::nullopt);
        return;
      }
      setUser(internal::UserCalendar{internal::userCalendar().locale,
                                     static_cast<std::int64_t>(calendar->firstWeekday()),
                                     std::string(calendar->calendarIdentifier())});
    }),
    method<"initWithCalendarIdentifier:">(
        [](const NSCalendar& self, const NSString& identifier) -> NSCalendar {
          const std::string name(identifier);
          if (name != "gregorian" && !internal::isCalendar(name)) return nullptr;
          const NSCalendar calendar = sendSuper<NSCalendar, "init", NSCalendar>(self);
          if (!calendar) return nullptr;
          fields(calendar).identifier = name;
          fields(calendar).firstWeekday = static_cast<NSUInteger>(currentCivilWeek().firstWeekday);
          return calendar;
        }),
    method<"calendarIdentifier">(
        [](const NSCalendar& self) { return NSString(fields(self).identifier); }),
    method<"firstWeekday">([](const NSCalendar& self) { return fields(self).firstWeekday; }),
    method<"setFirstWeekday:">([](const NSCalendar& self, NSUInteger weekday) {
      if (weekday < 1 || weekday > 7) {
        detail::raise("NSInvalidArgumentException",
                      "a first weekday is 1 to 7, not " + std::to_string(weekday));
      }
      fields(self).firstWeekday = weekday;
    }),
    method<"timeZone">([](const NSCalendar& self) -> NSTimeZone {
      const NSTimeZone zone = fields(self).timeZone;
      return zone ? zone : NSTimeZone::defaultTimeZone();
    }),
    method<"setTimeZone:">(
        [](const NSCalendar& self, const NSTimeZone& zone) { fields(self).timeZone = zone; }),
    method<"locale">([](const NSCalendar& self) -> NSLocale { return fields(self).locale; }),
    method<"setLocale:">([](const NSCalendar& self, const NSLocale& locale) {
      fields(self).locale = locale;
      if (!locale) return;
      const std::string identifier(locale->localeIdentifier());
      self->setFirstWeekday(
          static_cast<NSUInteger>(internal::calendarOfLocale(identifier).firstWeekday));
    }),
    method<"components:fromDate:">(
        [](const NSCalendar& self, NSCalendarUnit units, const NSDate& date) -> NSDateComponents {
          if (!date) return nullptr;
          return split(fields(self), units, date);
        }),
    method<"dateFromComponents:">(
        [](const NSCalendar& self, const NSDateComponents& parts) -> NSDate {
          if (!parts) return nullptr;
          return build(fields(self), parts);
        }),
    method<"isEqual:">([](const NSCalendar& self, const id& other) {
      if (!isa<NSCalendar>(other)) return false;
      const Fields& mine = fields(self);
      const Fields& its = fields(uncheckedCast<NSCalendar>(other));
      return mine.identifier == its.identifier && mine.firstWeekday == its.firstWeekday &&
             internal::zoneOf(mine.timeZone) == internal::zoneOf(its.timeZone);
    }),
    method<"hash">([](const NSCalendar& self) { return self->calendarIdentifier()->hash(); }),
    method<"copyWithZone:">([](const NSCalendar& self, NSZone*) {
      const NSCalendar copy = NSCalendar::alloc()->init();
      fields(copy) = fields(self);
      return copy;
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{.name = "NSCalendar",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSCalendar> NSCalendar::classPair{kDefinition};

CivilWeek currentCivilWeek() {
  int week = settings().week.load(std::memory_order_acquire);
  if (week == 0) {
    const internal::UserCalendar current = user();
    const int first = static_cast<int>(current.firstWeekday);
    week = current.calendar == "gregorian" ? first : -first;
  }
  return {week > 0, week > 0 ? week : -week};
}

}  // namespace brindle
