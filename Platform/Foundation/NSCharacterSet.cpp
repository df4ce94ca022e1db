#include <Brindle/Platform/NSCharacterSet.h>

#include <utility>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>

#include "Platform/Foundation/Internal/CharacterSetAccess.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace {

using internal::CharacterClass;
using internal::CharacterSet;

struct Fields {
  CharacterSet characters;
};

NSCharacterSet make(CharacterSet characters) {
  auto set = adopt<NSCharacterSet>(detail::createInstance(&NSCharacterSet::classPair.cls, 0));
  fieldsOf<Fields>(set).characters = std::move(characters);
  return set;
}

template <CharacterClass Characters>
const NSCharacterSet& shared() {
  static const auto& set = *new NSCharacterSet(make(CharacterSet::of(Characters)));
  return set;
}

template <FixedString Name, CharacterClass Characters>
constexpr MethodDefinition sharedSet() {
  return classMethod<Name>([](const Class&) -> NSCharacterSet { return shared<Characters>(); });
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"characterSetWithCharactersInString:">(
        [](const Class& self, Cmd cmd, const NSString& string) {
          detail::requireArgument(self, cmd.selector, string);
          return make(CharacterSet::of(detail::StringText(string)));
        }),
    classMethod<"characterSetWithRange:">([](const Class&, NSRange range) {
      constexpr NSUInteger kCharacters = 0x110000;
      if (range.length == 0 || range.location >= kCharacters) return make({});
      const NSUInteger length = std::min(range.length, kCharacters - range.location);
      return make(CharacterSet({{static_cast<char32_t>(range.location),
                                 static_cast<char32_t>(range.location + length - 1)}}));
    }),
    sharedSet<"whitespaceCharacterSet", CharacterClass::whitespace>(),
    sharedSet<"whitespaceAndNewlineCharacterSet", CharacterClass::whitespaceAndNewline>(),
    sharedSet<"newlineCharacterSet", CharacterClass::newline>(),
    sharedSet<"decimalDigitCharacterSet", CharacterClass::decimalDigit>(),
    sharedSet<"letterCharacterSet", CharacterClass::letter>(),
    sharedSet<"lowercaseLetterCharacterSet", CharacterClass::lowercaseLetter>(),
    sharedSet<"uppercaseLetterCharacterSet", CharacterClass::uppercaseLetter>(),
    sharedSet<"alphanumericCharacterSet", CharacterClass::alphanumeric>(),
    sharedSet<"punctuationCharacterSet", CharacterClass::punctuation>(),
    sharedSet<"symbolCharacterSet", CharacterClass::symbol>(),
    sharedSet<"controlCharacterSet", CharacterClass::control>(),

    method<"invertedSet">(
        [](const NSCharacterSet& self) { return make(detail::charactersOf(self).inverted()); }),
    method<"characterIsMember:">([](const NSCharacterSet& self, unichar unit) {
      return detail::charactersOf(self).contains(unit);
    }),
    method<"longCharacterIsMember:">([](const NSCharacterSet& self, char32_t character) {
      return detail::charactersOf(self).contains(character);
    }),
    method<"isSupersetOfSet:">(
        [](const NSCharacterSet& self, Cmd cmd, const NSCharacterSet& other) {
          detail::requireArgument(self, cmd.selector, other);
          return detail::charactersOf(self).isSupersetOf(detail::charactersOf(other));
        }),
    method<"isEqual:">([](const NSCharacterSet& self, const id& other) {
      const auto set = dynCast<NSCharacterSet>(other);
      return set && detail::charactersOf(self) == detail::charactersOf(set);
    }),
    method<"hash">(
        [](const NSCharacterSet& self) -> NSUInteger { return detail::charactersOf(self).hash(); }),
    method<"copyWithZone:">([](const NSCharacterSet& self, NSZone*) { return self; }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{.name = "NSCharacterSet",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSCharacterSet> NSCharacterSet::classPair{kDefinition};

const CharacterSet& detail::charactersOf(const NSCharacterSet& set) {
  return fieldsOf<Fields>(set).characters;
}

}  // namespace brindle
