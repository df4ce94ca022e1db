// What the tests of date ranges share: a fixed zone and week, dates by fields, and raised
// exceptions.
#pragma once

#include <string>

#include <Brindle/BDDateRange.h>
#include <Brindle/Platform/NSCalendar.h>
#include <Brindle/Platform/NSDateComponents.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSTimeZone.h>

namespace brindle {

/// The exception that the body raises; nil when it raises none.
template <class Body>
NSException raisedBy(Body body) {
  try {
    body();
  } catch (const RaisedException& raised) {
    return raised.exception();
  }
  return nullptr;
}

/// A default zone, and a first weekday of the user's calendar (1 is Sunday), to the end of the
/// scope.
class DateSettings {
 public:
  explicit DateSettings(const char* zone, NSUInteger firstWeekday = 1,
                        const NSString& calendar = NSGregorianCalendar)
      : zone_(NSTimeZone::defaultTimeZone()) {
    NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName(NSString(zone)));
    const NSCalendar user = NSCalendar::alloc()->initWithCalendarIdentifier(calendar);
    user->setFirstWeekday(firstWeekday);
    NSCalendar::setCurrentCalendar(user);
  }
  ~DateSettings() {
    NSCalendar::setCurrentCalendar(nullptr);
    NSTimeZone::setDefaultTimeZone(zone_);
  }
  DateSettings(const DateSettings&) = delete;
  DateSettings& operator=(const DateSettings&) = delete;

 private:
  NSTimeZone zone_;
};

/// A date of the Gregorian calendar in the default zone.
inline NSDate dateOf(NSInteger year, NSInteger month, NSInteger day, NSInteger hour = 0,
                     NSInteger minute = 0) {
  const NSCalendar calendar = NSCalendar::alloc()->initWithCalendarIdentifier(NSGregorianCalendar);
  const NSDateComponents parts = NSDateComponents::alloc()->init();
  parts->setYear(year);
  parts->setMonth(month);
  parts->setDay(day);
  parts->setHour(hour);
  parts->setMinute(minute);
  return calendar->dateFromComponents(parts);
}

/// The date's fields in the default zone: "2024-05-15 00:00:00".
inline std::string fieldsOfDate(const NSDate& date) {
  const NSCalendar calendar = NSCalendar::alloc()->initWithCalendarIdentifier(NSGregorianCalendar);
  const NSDateComponents p =
      calendar->components(NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit |
                               NSHourCalendarUnit | NSMinuteCalendarUnit | NSSecondCalendarUnit,
                           date);
  char text[64];
  std::snprintf(text, sizeof text, "%04ld-%02ld-%02ld %02ld:%02ld:%02ld",
                static_cast<long>(p->year()), static_cast<long>(p->month()),
                static_cast<long>(p->day()), static_cast<long>(p->hour()),
                static_cast<long>(p->minute()), static_cast<long>(p->second()));
  return text;
}

}  // namespace brindle
