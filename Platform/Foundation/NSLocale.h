// A locale: the language and customs of a user or a text.
//
// Present so far: the user's locale and languages, and the identifiers of locales. The user's
// locale comes from LC_ALL, LC_TIME or LANG, the first that is not empty; the encoding behind the
// point is left out, and C is "en_US_POSIX". Locales are immutable; any thread.
#pragma once

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSLocale : public Interface<NSLocale, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSLocale> classPair;

  /// The user's locale, from the environment as it is now.
  static NSLocale currentLocale() { return send<"currentLocale", NSLocale>(class_()); }
  /// The locale that belongs to no language.
  static NSLocale systemLocale() { return send<"systemLocale", NSLocale>(class_()); }

  /// The languages that the user reads, best first, such as "pt-BR" and "zh-Hans". What was set; or
  /// else what the environment says when this is first asked: LANGUAGE, with colons in between,
  /// then LC_ALL, LC_MESSAGES or LANG, the first that is not empty. Empty when that is C, or
  /// nothing.
  static NSArray preferredLanguages() { return send<"preferredLanguages", NSArray>(class_()); }
  /// From now on these, in the whole process; nil asks the environment again. Bundles follow.
  static void setPreferredLanguages(const NSArray& languages) {
    send<"setPreferredLanguages:">(class_(), languages);
  }
  /// The canonical form of an identifier or a language's English name: "English" is "en", "pt-br"
  /// is "pt_BR", "zh_hans" is "zh-Hans", "iw" is "he". What is none of these stays as it is; nil
  /// for nil.
  static NSString canonicalLocaleIdentifierFromString(const NSString& name) {
    return send<"canonicalLocaleIdentifierFromString:", NSString>(class_(), name);
  }
  /// The same of a language, with hyphens only: "pt-BR".
  static NSString canonicalLanguageIdentifierFromString(const NSString& name) {
    return send<"canonicalLanguageIdentifierFromString:", NSString>(class_(), name);
  }

  /// Raises NSInvalidArgumentException for nil. An identifier that nobody knows is a locale too.
  NSLocale initWithLocaleIdentifier(const NSString& identifier) const {
    return send<"initWithLocaleIdentifier:", NSLocale>(*this, identifier);
  }
  /// Such as "de_DE"; empty for the system's.
  NSString localeIdentifier() const { return send<"localeIdentifier", NSString>(*this); }
};

}  // namespace brindle
