// Date ranges: named ones, any other, their dates, and keeping one in a file's bytes.
#include <iostream>

#include <Brindle/BDDateRange.h>
#include <Brindle/BDExceptionAdditions.h>
#include <Brindle/Platform/NSCalendar.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSKeyedArchiver.h>
#include <Brindle/Platform/NSKeyedUnarchiver.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSTimeZone.h>

using namespace brindle;

int main() {
  // [example: date-ranges-settings]
  NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("Europe/Paris"_ns));
  NSCalendar calendar = NSCalendar::alloc()->initWithCalendarIdentifier(NSGregorianCalendar);
  calendar->setFirstWeekday(2);  // Monday
  NSCalendar::setCurrentCalendar(calendar);
  // [end]

  // [example: date-ranges-named]
  BDDateRange month = BDDateRange::dateRangeWithNamedRange(BDNamedRangeThisMonth);
  std::cout << "this month: " << month->start() << " to " << month->end() << '\n';
  // [end]

  // [example: date-ranges-any]
  // The two weeks before the week of the anchor.
  NSDate anchor = NSDate::dateWithTimeIntervalSince1970(1715774400);  // 15 May 2024
  BDDateRange weeks = BDDateRange::dateRangeWithAnchor(anchor, BDTimeUnitWeek, -2, BDTimeUnitWeek,
                                                       2, BDTimeUnitWeek);
  std::cout << "two weeks: " << weeks->start() << " to " << weeks->end() << '\n';
  // [end]

  // [example: date-ranges-interval]
  BDDateInterval both = month->interval();  // one reading of "now" for both ends
  bool isNow = both.contains(std::chrono::system_clock::now());
  // [end]
  std::cout << "this month has begun: " << (isNow ? "yes" : "no") << '\n';

  // [example: date-ranges-recognise]
  if (BDDateRange::namedRangeFrom(month) == BDNamedRangeThisMonth) std::cout << "a named range\n";
  // [end]

  // [example: date-ranges-archive]
  NSData data = NSKeyedArchiver::archivedDataWithRootObject(weeks);
  auto again = dynCast<BDDateRange>(NSKeyedUnarchiver::unarchiveObjectWithData(data));
  // [end]
  std::cout << "the same after archiving: " << (again->isEqual(weeks) ? "yes" : "no") << '\n';

  // [example: date-ranges-raise]
  try {
    BDDateRange::dateRangeWithNamedRange(static_cast<BDNamedRange>(20));
  } catch (const RaisedException& raised) {
    std::cout << raised.what() << '\n';  // BDInvalidArgumentException: Invalid named range 20
    NSString trace = decodedStackTrace(raised.exception());
    std::cout << "raised " << (trace->length() > 0 ? "in a known place" : "nowhere") << '\n';
  }
  // [end]
  return again->isEqual(weeks) && isNow ? 0 : 1;
}
