#include <Brindle/BDRelativePhrases.h>

#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {
namespace {

PhraseUnit phraseUnit(BDTimeUnit unit) {
  switch (unit) {
    case BDTimeUnitDay:
      return PhraseUnit::day;
    case BDTimeUnitWeek:
      return PhraseUnit::week;
    case BDTimeUnitMonth:
      return PhraseUnit::month;
    case BDTimeUnitQuarter:
      return PhraseUnit::quarter;
    case BDTimeUnitYear:
      return PhraseUnit::year;
  }
  NSException::raise(BDInternalInconsistencyException, "Invalid time unit."_ns);
}

/// The user's language, as for the words that the library looks up; empty for none.
NSString userLanguage() { return dynCast<NSString>(NSLocale::preferredLanguages()->firstObject()); }

}  // namespace

std::string relativePhrase(BDTimeUnit unit, std::int64_t offset, const NSLocale& locale,
                           PhraseStyle style) {
  const PhraseUnit counted = phraseUnit(unit);
  const NSString language = locale ? locale->localeIdentifier() : userLanguage();
  return relativePhrase(counted, offset, std::string(language), style);
}

}  // namespace brindle
