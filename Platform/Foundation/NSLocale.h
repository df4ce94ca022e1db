// A locale: the language and customs of a user or a text.
//
// Present so far: the user's locale, and a locale's identifier. The user's comes from LC_ALL,
// LC_TIME or LANG, the first that is not empty; the encoding behind the point is left out, and C is
// "en_US_POSIX". Locales are immutable; any thread.
#pragma once

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

  /// Raises NSInvalidArgumentException for nil. An identifier that nobody knows is a locale too.
  NSLocale initWithLocaleIdentifier(const NSString& identifier) const {
    return send<"initWithLocaleIdentifier:", NSLocale>(*this, identifier);
  }
  /// Such as "de_DE"; empty for the system's.
  NSString localeIdentifier() const { return send<"localeIdentifier", NSString>(*this); }
};

}  // namespace brindle
