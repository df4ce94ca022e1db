#include <Brindle/Platform/NSDateComponents.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>

namespace brindle {
namespace {

struct Fields {
  NSInteger era = NSUndefinedDateComponent;
  NSInteger year = NSUndefinedDateComponent;
  NSInteger month = NSUndefinedDateComponent;
  NSInteger day = NSUndefinedDateComponent;
  NSInteger hour = NSUndefinedDateComponent;
  NSInteger minute = NSUndefinedDateComponent;
  NSInteger second = NSUndefinedDateComponent;
  NSInteger weekday = NSUndefinedDateComponent;
  bool leapMonth = false;

  bool operator==(const Fields&) const = default;
};

Fields& fields(const NSDateComponents& self) { return fieldsOf<Fields>(self); }

template <FixedString Name, NSInteger Fields::*Field>
constexpr MethodDefinition getter() {
  return method<Name>([](const NSDateComponents& self) { return fields(self).*Field; });
}
template <FixedString Name, NSInteger Fields::*Field>
constexpr MethodDefinition setter() {
  return method<Name>(
      [](const NSDateComponents& self, NSInteger value) { fields(self).*Field = value; });
}

constexpr MethodDefinition kMethods[] = {
    getter<"era", &Fields::era>(),
    setter<"setEra:", &Fields::era>(),
    getter<"year", &Fields::year>(),
    setter<"setYear:", &Fields::year>(),
    getter<"month", &Fields::month>(),
    setter<"setMonth:", &Fields::month>(),
    getter<"day", &Fields::day>(),
    setter<"setDay:", &Fields::day>(),
    getter<"hour", &Fields::hour>(),
    setter<"setHour:", &Fields::hour>(),
    getter<"minute", &Fields::minute>(),
    setter<"setMinute:", &Fields::minute>(),
    getter<"second", &Fields::second>(),
    setter<"setSecond:", &Fields::second>(),
    getter<"weekday", &Fields::weekday>(),
    setter<"setWeekday:", &Fields::weekday>(),
    method<"isLeapMonth">([](const NSDateComponents& self) { return fields(self).leapMonth; }),
    method<"setLeapMonth:">(
        [](const NSDateComponents& self, bool value) { fields(self).leapMonth = value; }),
    method<"isEqual:">([](const NSDateComponents& self, const id& other) {
      return isa<NSDateComponents>(other) &&
             fields(self) == fields(uncheckedCast<NSDateComponents>(other));
    }),
    method<"hash">([](const NSDateComponents& self) -> NSUInteger {
      const Fields& f = fields(self);
      return static_cast<NSUInteger>(f.year) * 372 + static_cast<NSUInteger>(f.month) * 31 +
             static_cast<NSUInteger>(f.day);
    }),
    method<"copyWithZone:">([](const NSDateComponents& self, NSZone*) {
      const NSDateComponents copy = NSDateComponents::alloc()->init();
      fields(copy) = fields(self);
      return copy;
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{.name = "NSDateComponents",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSDateComponents> NSDateComponents::classPair{kDefinition};

}  // namespace brindle
