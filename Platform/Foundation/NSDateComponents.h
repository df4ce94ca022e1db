// The fields of a date in some calendar: a year, a month, a day, each set or not.
//
// A field that was never set reads NSUndefinedDateComponent. Fields hold any number; what they mean
// is the calendar's business. One thread at a time.
#pragma once

#include <Brindle/Platform/NSObject.h>

namespace brindle {

/// Reads where nothing was set.
inline constexpr NSInteger NSUndefinedDateComponent = INT64_MAX;

class NSDateComponents : public Interface<NSDateComponents, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSDateComponents> classPair;

  NSInteger era() const { return send<"era", NSInteger>(*this); }
  void setEra(NSInteger value) const { send<"setEra:">(*this, value); }
  NSInteger year() const { return send<"year", NSInteger>(*this); }
  void setYear(NSInteger value) const { send<"setYear:">(*this, value); }
  NSInteger month() const { return send<"month", NSInteger>(*this); }
  void setMonth(NSInteger value) const { send<"setMonth:">(*this, value); }
  NSInteger day() const { return send<"day", NSInteger>(*this); }
  void setDay(NSInteger value) const { send<"setDay:">(*this, value); }
  NSInteger hour() const { return send<"hour", NSInteger>(*this); }
  void setHour(NSInteger value) const { send<"setHour:">(*this, value); }
  NSInteger minute() const { return send<"minute", NSInteger>(*this); }
  void setMinute(NSInteger value) const { send<"setMinute:">(*this, value); }
  NSInteger second() const { return send<"second", NSInteger>(*this); }
  void setSecond(NSInteger value) const { send<"setSecond:">(*this, value); }
  /// 1 for Sunday to 7 for Saturday. A calendar that builds a date from year, month and day ignores
  /// it.
  NSInteger weekday() const { return send<"weekday", NSInteger>(*this); }
  void setWeekday(NSInteger value) const { send<"setWeekday:">(*this, value); }
  /// Whether the month is one that some calendars insert.
  bool isLeapMonth() const { return send<"isLeapMonth", bool>(*this); }
  void setLeapMonth(bool value) const { send<"setLeapMonth:">(*this, value); }
};

}  // namespace brindle
