#include <Brindle/Platform/NSDate.h>

#include <cmath>
#include <cstring>
#include <limits>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/CivilTime.h"

namespace brindle {
namespace {

struct Fields {
  NSTimeInterval seconds = 0;
};

Fields& fields(const NSDate& self) { return fieldsOf<Fields>(self); }

NSTimeInterval now() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration<double>(sinceEpoch).count() - NSTimeIntervalSince1970;
}

NSTimeInterval secondsOf(const NSDate& date) { return date->timeIntervalSinceReferenceDate(); }

/// An instance of the receiving class, through its initialiser.
id dateOf(const Class& cls, NSTimeInterval seconds) {
  const id made = send<"alloc", id>(cls);
  return send<"initWithTimeIntervalSinceReferenceDate:", id>(made, seconds);
}

NSString described(NSTimeInterval seconds) {
  if (!std::isfinite(seconds))
    return NSString::stringWithFormat("%g seconds from 2001"_ns, seconds);
  const internal::CivilMoment moment = internal::civilMoment(seconds + NSTimeIntervalSince1970);
  return NSString::stringWithFormat(
      "%04lld-%02d-%02d %02d:%02d:%02d +0000"_ns, static_cast<long long>(moment.day.year),
      static_cast<int>(moment.day.month), static_cast<int>(moment.day.day),
      moment.secondOfDay / 3600, moment.secondOfDay / 60 % 60, moment.secondOfDay % 60);
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"date">([](const Class& self) -> id { return dateOf(self, now()); }),
    classMethod<"dateWithTimeIntervalSinceNow:">(
        [](const Class& self, NSTimeInterval s) -> id { return dateOf(self, now() + s); }),
    classMethod<"dateWithTimeIntervalSince1970:">([](const Class& self, NSTimeInterval s) -> id {
      return dateOf(self, s - NSTimeIntervalSince1970);
    }),
    classMethod<"dateWithTimeIntervalSinceReferenceDate:">(
        [](const Class& self, NSTimeInterval s) -> id { return dateOf(self, s); }),
    classMethod<"distantPast">([](const Class&) -> NSDate {
      static const NSDate& past =
          *new NSDate(cast<NSDate>(dateOf(NSDate::class_(), -63114076800.0)));
      return past;
    }),
    classMethod<"distantFuture">([](const Class&) -> NSDate {
      static const NSDate& future =
          *new NSDate(cast<NSDate>(dateOf(NSDate::class_(), 63113904000.0)));
      return future;
    }),
    method<"init">([](const NSDate& self) -> id {
      return send<"initWithTimeIntervalSinceReferenceDate:", id>(self, now());
    }),
    method<"initWithTimeIntervalSinceReferenceDate:">(
        [](const NSDate& self, NSTimeInterval s) -> id {
          const NSDate made = sendSuper<NSDate, "init", NSDate>(self);
          if (made) fields(made).seconds = s;
          return made;
        }),
    method<"initWithTimeIntervalSince1970:">([](const NSDate& self, NSTimeInterval s) -> id {
      return send<"initWithTimeIntervalSinceReferenceDate:", id>(self, s - NSTimeIntervalSince1970);
    }),

    method<"timeIntervalSinceReferenceDate">(
        [](const NSDate& self) { return fields(self).seconds; }),
    method<"timeIntervalSince1970">(
        [](const NSDate& self) { return secondsOf(self) + NSTimeIntervalSince1970; }),
    method<"timeIntervalSinceNow">([](const NSDate& self) { return secondsOf(self) - now(); }),
    method<"timeIntervalSinceDate:">([](const NSDate& self, const NSDate& other) {
      if (!other) return std::numeric_limits<double>::quiet_NaN();
      return secondsOf(self) - secondsOf(other);
    }),
    method<"dateByAddingTimeInterval:">([](const NSDate& self, NSTimeInterval s) {
      return NSDate::dateWithTimeIntervalSinceReferenceDate(secondsOf(self) + s);
    }),

    method<"compare:">([](const NSDate& self, const NSDate& other) {
      if (!other) return NSOrderedDescending;
      const NSTimeInterval mine = secondsOf(self);
      const NSTimeInterval its = secondsOf(other);
      return mine < its ? NSOrderedAscending : mine > its ? NSOrderedDescending : NSOrderedSame;
    }),
    method<"isEqual:">([](const NSDate& self, const id& other) {
      return isa<NSDate>(other) && self->isEqualToDate(uncheckedCast<NSDate>(other));
    }),
    method<"isEqualToDate:">([](const NSDate& self, const NSDate& other) {
      return self == other || (other && secondsOf(self) == secondsOf(other));
    }),
    method<"hash">([](const NSDate& self) -> NSUInteger {
      const double seconds = secondsOf(self) + 0.0;  // one zero
      NSUInteger bits = 0;
      std::memcpy(&bits, &seconds, sizeof bits);
      return bits ^ bits >> 32U;
    }),
    method<"earlierDate:">([](const NSDate& self, const NSDate& other) {
      return other && secondsOf(other) < secondsOf(self) ? other : self;
    }),
    method<"laterDate:">([](const NSDate& self, const NSDate& other) {
      return other && secondsOf(other) > secondsOf(self) ? other : self;
    }),
    method<"description">([](const NSDate& self) { return described(secondsOf(self)); }),
    method<"copyWithZone:">([](const NSDate& self, NSZone*) -> id { return self; }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{.name = "NSDate",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSDate> NSDate::classPair{kDefinition};

std::chrono::sys_time<std::chrono::milliseconds> NSDate::timePoint() const {
  using std::chrono::milliseconds;
  const double count = std::floor(timeIntervalSince1970() * 1000);
  constexpr double kLimit = 9223372036854775807.0;
  if (std::isnan(count)) return {};
  if (count >= kLimit) return std::chrono::sys_time<milliseconds>(milliseconds::max());
  if (count <= -kLimit) return std::chrono::sys_time<milliseconds>(milliseconds::min());
  return std::chrono::sys_time<milliseconds>(milliseconds(static_cast<std::int64_t>(count)));
}

}  // namespace brindle
