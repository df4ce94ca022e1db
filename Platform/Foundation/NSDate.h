// A date: one instant, counted in seconds from 1 January 2001, 00:00 UTC, as a double.
//
//   NSDate now = NSDate::date();
//   NSDate then(std::chrono::system_clock::now() - std::chrono::hours(1));
//
// A date knows no calendar and no time zone; NSCalendar splits it into years and days. Dates are
// immutable and may be used by many threads at once.
#pragma once

#include <chrono>

#include <Brindle/Platform/NSObjCRuntime.h>
#include <Brindle/Platform/NSObject.h>

namespace brindle {

/// Seconds.
using NSTimeInterval = double;

/// From 1 January 1970 to 1 January 2001.
inline constexpr NSTimeInterval NSTimeIntervalSince1970 = 978307200.0;

class NSDate : public Interface<NSDate, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSDate> classPair;

  /// The instant of a clock, to its own precision.
  template <class Duration>
  NSDate(std::chrono::sys_time<Duration> time)  // NOLINT: a time point is a date
      : NSDate(dateWithTimeIntervalSince1970(
            std::chrono::duration<double>(time.time_since_epoch()).count())) {}

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// Now.
    Self date() const { return send<"date", Self>(*this); }
    Self dateWithTimeIntervalSinceNow(NSTimeInterval seconds) const {
      return send<"dateWithTimeIntervalSinceNow:", Self>(*this, seconds);
    }
    Self dateWithTimeIntervalSince1970(NSTimeInterval seconds) const {
      return send<"dateWithTimeIntervalSince1970:", Self>(*this, seconds);
    }
    Self dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) const {
      return send<"dateWithTimeIntervalSinceReferenceDate:", Self>(*this, seconds);
    }
    /// A date before, or after, all that programs deal with: the years 1 and 4001.
    NSDate distantPast() const { return send<"distantPast", NSDate>(*this); }
    NSDate distantFuture() const { return send<"distantFuture", NSDate>(*this); }
  };

  static NSDate date() { return class_()->date(); }
  static NSDate dateWithTimeIntervalSinceNow(NSTimeInterval seconds) {
    return class_()->dateWithTimeIntervalSinceNow(seconds);
  }
  static NSDate dateWithTimeIntervalSince1970(NSTimeInterval seconds) {
    return class_()->dateWithTimeIntervalSince1970(seconds);
  }
  static NSDate dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
    return class_()->dateWithTimeIntervalSinceReferenceDate(seconds);
  }
  static NSDate distantPast() { return class_()->distantPast(); }
  static NSDate distantFuture() { return class_()->distantFuture(); }

  NSDate initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) const {
    return send<"initWithTimeIntervalSinceReferenceDate:", NSDate>(*this, seconds);
  }
  NSDate initWithTimeIntervalSince1970(NSTimeInterval seconds) const {
    return send<"initWithTimeIntervalSince1970:", NSDate>(*this, seconds);
  }

  /// The primitive: a subclass that overrides it is asked by everything else.
  NSTimeInterval timeIntervalSinceReferenceDate() const {
    return send<"timeIntervalSinceReferenceDate", NSTimeInterval>(*this);
  }
  NSTimeInterval timeIntervalSince1970() const {
    return send<"timeIntervalSince1970", NSTimeInterval>(*this);
  }
  NSTimeInterval timeIntervalSinceNow() const {
    return send<"timeIntervalSinceNow", NSTimeInterval>(*this);
  }
  /// From the other date to the receiver: negative when the receiver is earlier. NaN for nil.
  NSTimeInterval timeIntervalSinceDate(const NSDate& other) const {
    return send<"timeIntervalSinceDate:", NSTimeInterval>(*this, other);
  }
  NSDate dateByAddingTimeInterval(NSTimeInterval seconds) const {
    return send<"dateByAddingTimeInterval:", NSDate>(*this, seconds);
  }

  /// Nil comes before every date.
  NSComparisonResult compare(const NSDate& other) const {
    return send<"compare:", NSComparisonResult>(*this, other);
  }
  bool isEqualToDate(const NSDate& other) const {
    return send<"isEqualToDate:", bool>(*this, other);
  }
  /// The earlier, or later, of the two; the receiver when they are the same instant, and for nil.
  NSDate earlierDate(const NSDate& other) const {
    return send<"earlierDate:", NSDate>(*this, other);
  }
  NSDate laterDate(const NSDate& other) const { return send<"laterDate:", NSDate>(*this, other); }

  /// The instant as a time point, rounded down. Beyond what milliseconds in 64 bits reach: the
  /// nearest.
  [[nodiscard]] BRINDLE_PLATFORM_EXPORT std::chrono::sys_time<std::chrono::milliseconds> timePoint()
      const;
};

}  // namespace brindle
