// The dates of a range: fields of a calendar, carried leniently, never seconds.
#include <algorithm>
#include <cmath>
#include <utility>

#include <Brindle/BDExceptions.h>
#include <Brindle/BDSingleton.h>
#include <Brindle/Platform/CivilDate.h>
#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/NSCalendar.h>
#include <Brindle/Platform/NSDateComponents.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSTimeZone.h>
#include <Brindle/Platform/Runtime.h>

#include "Source/Internal/DateRange.h"

namespace brindle {
namespace internal {
namespace {

constexpr NSUInteger kDayUnits = NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit;

/// What a count of a unit adds to each field.
struct Increments {
  std::int64_t year = 0;
  std::int64_t month = 0;
  std::int64_t day = 0;
};

// Fields and counts of any size: sums and products wrap.
std::int64_t wrappingSum(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
std::int64_t wrappingDifference(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
std::int64_t wrappingProduct(std::uint64_t factor, std::int64_t n) {
  return static_cast<std::int64_t>(factor * static_cast<std::uint64_t>(n));
}

/// The number as a field that is set: the highest of all reads as one that is not.
std::int64_t written(std::int64_t number) { return std::min(number, NSUndefinedDateComponent - 1); }

Increments incrementsOf(std::int64_t count, BDTimeUnit unit) {
  switch (unit) {
    case BDTimeUnitDay:
      return {.day = count};
    case BDTimeUnitWeek:
      return {.day = wrappingProduct(7, count)};
    case BDTimeUnitMonth:
      return {.month = count};
    case BDTimeUnitQuarter:
      return {.month = wrappingProduct(3, count)};
    case BDTimeUnitYear:
      return {.year = count};
  }
  return {};
}

/// Moves the fields of a day. A year that becomes negative, before months are carried, is floored.
CivilDate moved(const CivilDate& day, const Increments& by) {
  const CivilDate result{wrappingSum(day.year, by.year), wrappingSum(day.month, by.month),
                         wrappingSum(day.day, by.day)};
  return result.year < 0 ? CivilDate{0, 0, 0} : result;
}

/// Rounds the fields of a day down to the start of the unit.
CivilDate rounded(const CivilDate& day, BDTimeUnit unit, std::int64_t weekday,
                  std::int64_t firstWeekday) {
  switch (unit) {
    case BDTimeUnitDay:
      return day;
    case BDTimeUnitWeek: {
      std::int64_t back = wrappingDifference(weekday, firstWeekday);
      if (back < 0) back += 7;
      return {day.year, day.month, wrappingDifference(day.day, back)};
    }
    case BDTimeUnitMonth:
      return {day.year, day.month, 1};
    case BDTimeUnitQuarter:
      return {day.year, 3 * (wrappingDifference(day.month, 1) / 3) + 1, 1};
    case BDTimeUnitYear:
      return {day.year, 1, 1};
  }
  NSException::raise(BDInternalInconsistencyException, "Invalid time unit for anchor"_ns);
}

/// The classes whose methods the messages of this file run. As long as nobody changes one, and the
/// range is a plain BDDateRange, the dates are worked out without the objects in between.
std::initializer_list<Class> watchedClasses() {
  static const std::initializer_list<Class> classes = {
      BDDateRange::class_(),      NSDate::class_(),     NSCalendar::class_(),
      NSDateComponents::class_(), NSTimeZone::class_(), NSLocale::class_()};
  return classes;
}

MethodWatch& watch() {
  static auto& classes = *new MethodWatch(watchedClasses());
  return classes;
}

/// Whether messages would do nothing else than `plainInstants`.
bool isPlain(const BDDateRange& range, const CivilWeek& week) {
  return object_getClass(range) == BDDateRange::class_() && watch().unchanged() && week.gregorian;
}

struct Instants {
  double first;
  double second;
};

/// Both dates by arithmetic alone, in the default zone.
Instants plainInstants(const BDDateRange& range, const CivilWeek& week) {
  const NSDate anchor = range->anchor();
  const CivilDate day =
      civilDateAt(anchor ? anchor->timeIntervalSinceReferenceDate() : currentInstant());
  const CivilStart start =
      startOfCivilDate(rounded(day, range->anchorUnit(), day.weekday, week.firstWeekday));
  const CivilStart first =
      startOfCivilDate(moved(start.date, incrementsOf(range->offset(), range->offsetUnit())));
  const CivilStart second =
      startOfCivilDate(moved(first.date, incrementsOf(range->length(), range->lengthUnit())));
  return {first.instant, second.instant};
}

NSDate dateAt(double instant) { return NSDate::dateWithTimeIntervalSinceReferenceDate(instant); }

std::chrono::sys_time<std::chrono::milliseconds> timePointAt(double instant) {
  // 2001-01-01 in seconds since 1970.
  constexpr double kReference = 978307200;
  // A replaced method may answer any date, also one that is not a number.
  constexpr double kLimit = 9e15;
  const double seconds =
      std::isnan(instant) ? 0 : std::clamp(instant + kReference, -kLimit, kLimit);
  const double whole = std::floor(seconds);
  return std::chrono::sys_time<std::chrono::milliseconds>(
      std::chrono::seconds(static_cast<std::int64_t>(whole)) +
      std::chrono::milliseconds(static_cast<std::int64_t>((seconds - whole) * 1000)));
}

/// What stands for `start` and `end` in the class of the range.
std::pair<IMP, IMP> endsOf(Class cls) {
  return {class_getMethodImplementation(cls, selector<"start">()),
          class_getMethodImplementation(cls, selector<"end">())};
}

/// The library's own.
const std::pair<IMP, IMP>& plainEnds() {
  static const auto& ends = *new std::pair<IMP, IMP>(endsOf(BDDateRange::class_()));
  return ends;
}

BDDateInterval intervalOf(double start, double end) {
  return {timePointAt(start), timePointAt(end)};
}

/// Start and end by messages.
BDDateInterval sentInterval(const BDDateRange& range) {
  NSDate start;
  NSDate end;
  bool known = false;
  if (endsOf(object_getClass(range)) == plainEnds()) {
    range->calculate([&](const NSDate& first, const NSDate& second) -> id {
      start = first->earlierDate(second);
      end = first->laterDate(second);
      known = true;
      return nullptr;
    });
  }
  if (!known) {
    start = range->start();
    end = range->end();
  }
  return intervalOf(start->timeIntervalSinceReferenceDate(), end->timeIntervalSinceReferenceDate());
}

}  // namespace

void watchDateRangeMethods() {
  // The answer becomes a method of the class: not while it is watched.
  for (const Class cls : watchedClasses()) hasSingletonProtocol(cls);
  watch();
  plainEnds();
}

NSDate roundedAnchor(const BDDateRange& range) {
  NSDate anchor = range->anchor();
  if (!anchor) anchor = NSDate::date();
  const NSCalendar calendar = NSCalendar::currentCalendar();
  const NSDateComponents parts = calendar->components(kDayUnits | NSWeekdayCalendarUnit, anchor);
  const auto firstWeekday = static_cast<NSInteger>(calendar->firstWeekday());
  const BDTimeUnit unit = range->anchorUnit();
  const CivilDate day =
      rounded({parts->year(), parts->month(), parts->day()}, unit, parts->weekday(), firstWeekday);
  parts->setDay(day.day);
  parts->setMonth(day.month);
  parts->setYear(day.year);
  // Quarters and years begin with an ordinary month, also for a day of a leap month.
  if (unit >= BDTimeUnitQuarter && parts->isLeapMonth()) parts->setLeapMonth(false);
  return calendar->dateFromComponents(parts);
}

NSDate addToDate(std::int64_t count, BDTimeUnit unit, const NSDate& date) {
  const NSCalendar calendar = NSCalendar::alloc()->initWithCalendarIdentifier(NSGregorianCalendar);
  const NSDateComponents parts = calendar->components(kDayUnits, date);
  const Increments by = incrementsOf(count, unit);
  parts->setDay(written(wrappingSum(parts->day(), by.day)));
  parts->setMonth(written(wrappingSum(parts->month(), by.month)));
  parts->setYear(written(wrappingSum(parts->year(), by.year)));
  if (parts->year() < 0) {
    parts->setYear(0);
    parts->setMonth(0);
    parts->setDay(0);
  }
  return calendar->dateFromComponents(parts);
}

id calculateDateRange(const BDDateRange& range,
                      const Block<id(const NSDate&, const NSDate&)>& block) {
  if (const CivilWeek week = currentCivilWeek(); isPlain(range, week)) {
    const Instants dates = plainInstants(range, week);
    return block(dateAt(dates.first), dateAt(dates.second));
  }
  const NSDate first = range->add(range->offset(), range->offsetUnit(), range->_anchor());
  const NSDate second = range->add(range->length(), range->lengthUnit(), first);
  return block(first, second);
}

NSDate startOfDateRange(const BDDateRange& range) {
  if (const CivilWeek week = currentCivilWeek(); isPlain(range, week)) {
    const Instants dates = plainInstants(range, week);
    return dateAt(std::min(dates.first, dates.second));
  }
  return cast<NSDate>(range->calculate(
      [](const NSDate& first, const NSDate& second) -> id { return first->earlierDate(second); }));
}

NSDate endOfDateRange(const BDDateRange& range) {
  if (const CivilWeek week = currentCivilWeek(); isPlain(range, week)) {
    const Instants dates = plainInstants(range, week);
    return dateAt(std::max(dates.first, dates.second));
  }
  return cast<NSDate>(range->calculate(
      [](const NSDate& first, const NSDate& second) -> id { return first->laterDate(second); }));
}

}  // namespace internal

BDDateInterval BDDateRange::interval() const {
  if (*this == nullptr) return {};
  if (const CivilWeek week = currentCivilWeek(); internal::isPlain(*this, week)) {
    const internal::Instants dates = internal::plainInstants(*this, week);
    return internal::intervalOf(std::min(dates.first, dates.second),
                                std::max(dates.first, dates.second));
  }
  return internal::sentInterval(*this);
}

}  // namespace brindle
