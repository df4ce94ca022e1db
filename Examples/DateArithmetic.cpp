// Dates: instants, calendar fields, and why a day is not always 24 hours.
#include <chrono>
#include <iostream>

#include <Brindle/Platform/NSCalendar.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSDateComponents.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSTimeZone.h>

using namespace brindle;

namespace {

NSDateComponents day(NSInteger year, NSInteger month, NSInteger number) {
  NSDateComponents parts = NSDateComponents::new_();
  parts->setYear(year);
  parts->setMonth(month);
  parts->setDay(number);
  return parts;
}

/// The date as year-month-day in the calendar.
NSString text(const NSCalendar& calendar, const NSDate& date) {
  const NSDateComponents parts =
      calendar->components(NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit, date);
  return NSString::stringWithFormat("%04ld-%02ld-%02ld"_ns, parts->year(), parts->month(),
                                    parts->day());
}

}  // namespace

int main() {
  const NSCalendar calendar = NSCalendar::alloc()->initWithCalendarIdentifier(NSGregorianCalendar);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("Europe/Paris"_ns));

  // Building is lenient: day 0 of March is the last day of February.
  const NSDate leapDay = calendar->dateFromComponents(day(2024, 3, 0));
  std::cout << "the last day of February 2024: " << text(calendar, leapDay) << '\n';

  // A date is an instant; from one midnight to the next it is not always 24 hours.
  const NSDate before = calendar->dateFromComponents(day(2024, 3, 31));
  const NSDate after = calendar->dateFromComponents(day(2024, 4, 1));
  const NSTimeInterval hours = after->timeIntervalSinceDate(before) / 3600;
  std::cout << "31 March 2024 lasted " << hours << " hours in Paris\n";

  // To and from the standard library's clocks.
  const NSDate epoch(std::chrono::sys_seconds(std::chrono::seconds(0)));
  std::cout << "the epoch's day: " << text(calendar, epoch) << '\n';
  const NSDate later = epoch->dateByAddingTimeInterval(90);
  const bool inOrder = epoch->compare(later) == NSOrderedAscending;
  std::cout << "90 seconds later: " << later->timePoint().time_since_epoch().count() << " ms\n";

  return text(calendar, leapDay)->isEqualToString("2024-02-29"_ns) && hours == 23 && inOrder ? 0
                                                                                             : 1;
}
