#include <Brindle/Platform/NSTimeZone.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/CivilTime.h"
#include "Platform/Foundation/Internal/TimeZoneAccess.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle {
namespace {

struct Fields {
  const internal::Zone* zone = nullptr;
};

const internal::Zone& rulesOf(const NSTimeZone& self) { return *internal::zoneOf(self); }

std::int64_t instantOf(const NSDate& date) {
  const NSDate moment = date ? date : NSDate::date();
  return internal::wholeSeconds(moment->timeIntervalSince1970());
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"timeZoneWithName:">([](const Class&, const NSString& name) {
      if (!name) {
        detail::raise("NSInvalidArgumentException", "timeZoneWithName: needs a name, not nil");
      }
      return internal::zoneObject(internal::zoneNamed(std::string(name)));
    }),
    classMethod<"timeZoneForSecondsFromGMT:">([](const Class&, NSInteger seconds) {
      return internal::zoneObject(internal::zoneWithOffset(seconds));
    }),
    classMethod<"systemTimeZone">(
        [](const Class&) { return internal::zoneObject(internal::hostZone()); }),
    classMethod<"defaultTimeZone">(
        [](const Class&) { return internal::zoneObject(internal::defaultZone()); }),
    classMethod<"localTimeZone">(
        [](const Class&) { return internal::zoneObject(internal::defaultZone()); }),
    classMethod<"setDefaultTimeZone:">([](const Class&, const NSTimeZone& zone) {
      internal::setDefaultZone(zone ? internal::zoneOf(zone) : nullptr);
    }),

    method<"name">(
        [](const NSTimeZone& self) { return NSString(internal::nameOf(rulesOf(self))); }),
    method<"secondsFromGMTForDate:">([](const NSTimeZone& self, const NSDate& date) -> NSInteger {
      return internal::offsetAt(rulesOf(self), instantOf(date));
    }),
    method<"secondsFromGMT">(
        [](const NSTimeZone& self) { return self->secondsFromGMTForDate(nullptr); }),
    method<"abbreviationForDate:">([](const NSTimeZone& self, const NSDate& date) {
      return NSString(internal::zoneMoment(rulesOf(self), instantOf(date)).abbreviation);
    }),
    method<"isDaylightSavingTimeForDate:">([](const NSTimeZone& self, const NSDate& date) {
      return internal::zoneMoment(rulesOf(self), instantOf(date)).daylightSaving;
    }),
    method<"isEqual:">([](const NSTimeZone& self, const id& other) {
      return isa<NSTimeZone>(other) && &rulesOf(self) == &rulesOf(uncheckedCast<NSTimeZone>(other));
    }),
    method<"hash">([](const NSTimeZone& self) { return self->name()->hash(); }),
    method<"description">([](const NSTimeZone& self) {
      return NSString::stringWithFormat("%@ (%@) offset %ld"_ns, self->name(),
                                        self->abbreviationForDate(nullptr), self->secondsFromGMT());
    }),
    method<"copyWithZone:">([](const NSTimeZone& self, NSZone*) -> id { return self; }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{.name = "NSTimeZone",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSTimeZone> NSTimeZone::classPair{kDefinition};

namespace internal {

const Zone* zoneOf(const NSTimeZone& zone) {
  const Zone* rules = zone ? fieldsOf<Fields>(zone).zone : nullptr;
  return rules != nullptr ? rules : defaultZone();
}

NSTimeZone zoneObject(const Zone* zone) {
  if (zone == nullptr) return nullptr;
  NSTimeZone object = NSTimeZone::alloc()->init();
  fieldsOf<Fields>(object).zone = zone;
  return object;
}

}  // namespace internal
}  // namespace brindle
