#include <Brindle/Platform/NSLocale.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSCopying.h>

#include "Platform/Foundation/Internal/OtherCalendars.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle {
namespace {

struct Fields {
  Field<NSString> identifier;
};

Fields& fields(const NSLocale& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    classMethod<"currentLocale">([](const Class&) {
      return NSLocale::alloc()->initWithLocaleIdentifier(NSString(internal::userCalendar().locale));
    }),
    classMethod<"systemLocale">(
        [](const Class&) { return NSLocale::alloc()->initWithLocaleIdentifier(""_ns); }),
    method<"initWithLocaleIdentifier:">([](const NSLocale& self, const NSString& identifier) {
      if (!identifier) {
        detail::raise("NSInvalidArgumentException", "a locale needs an identifier, not nil");
      }
      const NSLocale locale = sendSuper<NSLocale, "init", NSLocale>(self);
      if (locale) fields(locale).identifier = identifier->copy();
      return locale;
    }),
    method<"localeIdentifier">(
        [](const NSLocale& self) -> NSString { return fields(self).identifier; }),
    method<"isEqual:">([](const NSLocale& self, const id& other) {
      return isa<NSLocale>(other) &&
             self->localeIdentifier()->isEqual(uncheckedCast<NSLocale>(other)->localeIdentifier());
    }),
    method<"hash">([](const NSLocale& self) { return self->localeIdentifier()->hash(); }),
    method<"copyWithZone:">([](const NSLocale& self, NSZone*) -> id { return self; }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{.name = "NSLocale",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSLocale> NSLocale::classPair{kDefinition};

}  // namespace brindle
