#include <Brindle/Platform/NSLocale.h>

#include <optional>
#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSCopying.h>

#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Languages.h"
#include "Platform/Foundation/Internal/OtherCalendars.h"
#include "Platform/Foundation/Internal/PreferredLanguages.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle {
namespace {

struct Fields {
  Field<NSString> identifier;
};

Fields& fields(const NSLocale& self) { return fieldsOf<Fields>(self); }

NSArray preferredLanguages() {
  std::vector<id> languages;
  for (const std::string& name : internal::preferredLanguages().names) {
    languages.emplace_back(NSString(name));
  }
  return detail::makeArray(std::move(languages));
}

void setPreferredLanguages(const NSArray& languages) {
  if (!languages) return internal::setPreferredLanguages(std::nullopt);
  std::vector<std::string> names;
  for (const id& language : detail::copyItems(languages)) {
    const auto name = dynCast<NSString>(language);
    if (!name) {
      detail::raise("NSInvalidArgumentException", "a language is a string, such as \"pt-BR\"");
    }
    names.push_back(internal::canonicalLanguage(std::string(name)));
  }
  internal::setPreferredLanguages(std::move(names));
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"currentLocale">([](const Class&) {
      return NSLocale::alloc()->initWithLocaleIdentifier(NSString(internal::userCalendar().locale));
    }),
    classMethod<"systemLocale">(
        [](const Class&) { return NSLocale::alloc()->initWithLocaleIdentifier(""_ns); }),
    classMethod<"preferredLanguages">([](const Class&) { return preferredLanguages(); }),
    classMethod<"setPreferredLanguages:">(
        [](const Class&, const NSArray& languages) { setPreferredLanguages(languages); }),
    classMethod<"canonicalLocaleIdentifierFromString:">(
        [](const Class&, const NSString& name) -> NSString {
          if (!name) return nullptr;
          return NSString(internal::canonicalLocaleIdentifier(std::string(name)));
        }),
    classMethod<"canonicalLanguageIdentifierFromString:">(
        [](const Class&, const NSString& name) -> NSString {
          if (!name) return nullptr;
          return NSString(internal::canonicalLanguage(std::string(name)));
        }),
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
