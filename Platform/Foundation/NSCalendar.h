// A calendar: splits dates into years, months and days, and builds dates from them.
//
//   NSCalendar calendar = NSCalendar::currentCalendar();
//   NSDateComponents parts = calendar->components(NSYearCalendarUnit | NSMonthCalendarUnit, date);
//
// The Gregorian calendar counts days before 15 October 1582 in the Julian one, and its years are
// astronomical: 0 is 1 BC, and reading them back never needs an era. Other calendars count years
// within their era, and components split by one keep the era. Building is lenient: month 13 is
// January of the next year, day 0 the last day of the month before; a missing time of day is the
// start of the day (after a gap at midnight its end; of two midnights the first). A weekday among
// the fields never wins. A calendar is mutable; one thread at a time. Each call of
// `currentCalendar` answers one of its own.
#pragma once

#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSDateComponents.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSTimeZone.h>

namespace brindle {

using NSCalendarUnit = NSUInteger;
enum : NSCalendarUnit {
  NSEraCalendarUnit = 2,
  NSYearCalendarUnit = 4,
  NSMonthCalendarUnit = 8,
  NSDayCalendarUnit = 16,
  NSHourCalendarUnit = 32,
  NSMinuteCalendarUnit = 64,
  NSSecondCalendarUnit = 128,
  NSWeekdayCalendarUnit = 512,
};

// Identifiers of calendars. `initWithCalendarIdentifier:` also takes any other name that ICU knows.
BRINDLE_PLATFORM_EXPORT extern const NSString NSGregorianCalendar;
BRINDLE_PLATFORM_EXPORT extern const NSString NSBuddhistCalendar;
BRINDLE_PLATFORM_EXPORT extern const NSString NSChineseCalendar;
BRINDLE_PLATFORM_EXPORT extern const NSString NSHebrewCalendar;
BRINDLE_PLATFORM_EXPORT extern const NSString NSIslamicCalendar;
BRINDLE_PLATFORM_EXPORT extern const NSString NSIslamicCivilCalendar;
BRINDLE_PLATFORM_EXPORT extern const NSString NSJapaneseCalendar;
BRINDLE_PLATFORM_EXPORT extern const NSString NSPersianCalendar;
BRINDLE_PLATFORM_EXPORT extern const NSString NSIndianCalendar;

class NSCalendar : public Interface<NSCalendar, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSCalendar> classPair;

  /// The user's calendar with its first weekday, in the default zone: from LC_ALL, LC_TIME or LANG,
  /// read once, until another is set.
  static NSCalendar currentCalendar() { return send<"currentCalendar", NSCalendar>(class_()); }
  /// Makes calendar and first weekday the user's for the whole process; nil reads the environment
  /// anew. The zone is not taken over: set NSTimeZone's default.
  static void setCurrentCalendar(const NSCalendar& calendar) {
    send<"setCurrentCalendar:">(class_(), calendar);
  }

  /// A calendar in the default zone with the user's first weekday; nil for a name nobody knows.
  NSCalendar initWithCalendarIdentifier(const NSString& identifier) const {
    return send<"initWithCalendarIdentifier:", NSCalendar>(*this, identifier);
  }
  NSString calendarIdentifier() const { return send<"calendarIdentifier", NSString>(*this); }

  /// 1 for Sunday to 7 for Saturday. Other numbers raise NSInvalidArgumentException.
  NSUInteger firstWeekday() const { return send<"firstWeekday", NSUInteger>(*this); }
  void setFirstWeekday(NSUInteger weekday) const { send<"setFirstWeekday:">(*this, weekday); }
  /// The zone that days begin in; the default zone, as it is at each use, unless one was set. Nil
  /// goes back to that.
  NSTimeZone timeZone() const { return send<"timeZone", NSTimeZone>(*this); }
  void setTimeZone(const NSTimeZone& zone) const { send<"setTimeZone:">(*this, zone); }
  /// Nil unless one was set; it sets the first weekday too.
  NSLocale locale() const { return send<"locale", NSLocale>(*this); }
  void setLocale(const NSLocale& locale) const { send<"setLocale:">(*this, locale); }

  /// The fields of the date that the mask asks for; others stay unset, but for the era of a
  /// calendar that counts years within eras. Nil for a nil date.
  NSDateComponents components(NSCalendarUnit units, const NSDate& date) const {
    return send<"components:fromDate:", NSDateComponents>(*this, units, date);
  }
  /// The date of the fields; unset ones are the first year, month and day, and the day's start. Nil
  /// for nil.
  NSDate dateFromComponents(const NSDateComponents& components) const {
    return send<"dateFromComponents:", NSDate>(*this, components);
  }
};

}  // namespace brindle
