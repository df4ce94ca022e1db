// A time zone: how far from UTC the clocks of a region were, are and will be.
//
//   NSTimeZone zone = NSTimeZone::timeZoneWithName("Europe/Paris"_ns);
//   NSInteger seconds = zone->secondsFromGMTForDate(NSDate::date());
//
// Rules come from the system's own zone files, so they are as new as the system is. Zones are
// immutable; any thread.
#pragma once

#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSTimeZone : public Interface<NSTimeZone, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSTimeZone> classPair;

  /// The zone of that name, such as "America/New_York"; nil when the system has none.
  static NSTimeZone timeZoneWithName(const NSString& name) {
    return send<"timeZoneWithName:", NSTimeZone>(class_(), name);
  }
  /// A zone always that far east of Greenwich; nil beyond 24 hours.
  static NSTimeZone timeZoneForSecondsFromGMT(NSInteger seconds) {
    return send<"timeZoneForSecondsFromGMT:", NSTimeZone>(class_(), seconds);
  }
  /// The zone of the host, read now: the variable TZ (a name, a path or a POSIX rule), else
  /// /etc/localtime, else UTC.
  static NSTimeZone systemTimeZone() { return send<"systemTimeZone", NSTimeZone>(class_()); }
  /// The zone that calendars use: the system's, read once, until another is set.
  static NSTimeZone defaultTimeZone() { return send<"defaultTimeZone", NSTimeZone>(class_()); }
  /// Sets it for the whole process; nil reads the system's anew.
  static void setDefaultTimeZone(const NSTimeZone& zone) {
    send<"setDefaultTimeZone:">(class_(), zone);
  }
  /// The same as the default zone.
  static NSTimeZone localTimeZone() { return send<"localTimeZone", NSTimeZone>(class_()); }

  NSString name() const { return send<"name", NSString>(*this); }
  /// East of Greenwich is positive. Nil counts as now.
  NSInteger secondsFromGMTForDate(const NSDate& date) const {
    return send<"secondsFromGMTForDate:", NSInteger>(*this, date);
  }
  NSInteger secondsFromGMT() const { return send<"secondsFromGMT", NSInteger>(*this); }
  /// Such as "CEST".
  NSString abbreviationForDate(const NSDate& date) const {
    return send<"abbreviationForDate:", NSString>(*this, date);
  }
  bool isDaylightSavingTimeForDate(const NSDate& date) const {
    return send<"isDaylightSavingTimeForDate:", bool>(*this, date);
  }
};

}  // namespace brindle
