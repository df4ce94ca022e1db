#include "Platform/Foundation/Internal/RelativePhrases.h"

#include <memory>
#include <set>

#include <unicode/formattedvalue.h>
#include <unicode/locid.h>
#include <unicode/numfmt.h>
#include <unicode/reldatefmt.h>

namespace brindle::internal {
namespace {

using Formatter = icu::RelativeDateTimeFormatter;

constexpr std::int64_t kExact = std::int64_t{1} << 53;  // up to here a double holds every integer

URelativeDateTimeUnit icuUnit(RelativeUnit unit) {
  switch (unit) {
    case RelativeUnit::second:
      return UDAT_REL_UNIT_SECOND;
    case RelativeUnit::minute:
      return UDAT_REL_UNIT_MINUTE;
    case RelativeUnit::hour:
      return UDAT_REL_UNIT_HOUR;
    case RelativeUnit::week:
      return UDAT_REL_UNIT_WEEK;
    case RelativeUnit::month:
      return UDAT_REL_UNIT_MONTH;
    case RelativeUnit::quarter:
      return UDAT_REL_UNIT_QUARTER;
    case RelativeUnit::year:
      return UDAT_REL_UNIT_YEAR;
    case RelativeUnit::day:
      break;
  }
  return UDAT_REL_UNIT_DAY;
}

/// The languages of ICU's locales. For any other, ICU would take the host's language.
const std::set<std::string, std::less<>>& languages() {
  static const auto& known = *[] {
    auto* made = new std::set<std::string, std::less<>>();
    std::int32_t count = 0;
    const icu::Locale* locales = icu::Locale::getAvailableLocales(count);
    for (std::int32_t i = 0; i < count; ++i) made->insert(locales[i].getLanguage());
    return made;
  }();
  return known;
}

icu::Locale localeNamed(std::string_view name) {
  constexpr std::size_t kLongestName = 156;  // ICU's own limit
  if (name.size() <= kLongestName && name.find('\0') == std::string_view::npos) {
    icu::Locale locale = icu::Locale::createCanonical(std::string(name).c_str());
    if (!locale.isBogus() && languages().contains(locale.getLanguage())) return locale;
  }
  return icu::Locale("en");
}

/// Of this thread; one locale serves many phrases.
const Formatter* formatterFor(std::string_view locale) {
  thread_local std::string current;
  thread_local std::unique_ptr<Formatter> formatter;
  if (!formatter || current != locale) {
    UErrorCode error = U_ZERO_ERROR;
    formatter = std::make_unique<Formatter>(localeNamed(locale), error);
    if (U_FAILURE(error)) formatter = nullptr;
    current = locale;
  }
  return formatter.get();
}

std::string utf8(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

/// Numbers that a double would round: the phrase of one that has the same plural form, as that
/// depends on no more than the last six digits of great numbers, and in it the number itself.
icu::UnicodeString phraseOfGreat(const Formatter& formatter, URelativeDateTimeUnit unit,
                                 std::int64_t offset, UErrorCode& error) {
  constexpr std::int64_t kPeriod = 1000000000000;
  const std::int64_t likely = offset % kPeriod + (offset < 0 ? -kPeriod : kPeriod);
  const icu::FormattedRelativeDateTime phrase =
      formatter.formatNumericToValue(static_cast<double>(likely), unit, error);
  icu::UnicodeString text = phrase.toString(error);
  icu::ConstrainedFieldPosition number;
  number.constrainField(UFIELD_CATEGORY_RELATIVE_DATETIME, UDAT_REL_NUMERIC_FIELD);
  std::string digits = std::to_string(offset);
  if (offset < 0) digits.erase(0, 1);
  icu::UnicodeString exact;
  formatter.getNumberFormat().format(icu::StringPiece(digits), exact, nullptr, error);
  if (U_SUCCESS(error) && phrase.nextPosition(number, error)) {
    text.replaceBetween(number.getStart(), number.getLimit(), exact);
  }
  return text;
}

}  // namespace

std::string relativePhrase(std::string_view locale, RelativeUnit unit, std::int64_t offset,
                           bool everyday) {
  const Formatter* formatter = formatterFor(locale);
  if (formatter == nullptr) return {};
  UErrorCode error = U_ZERO_ERROR;
  icu::UnicodeString text;
  if (offset > kExact || offset < -kExact) {
    text = phraseOfGreat(*formatter, icuUnit(unit), offset, error);
  } else if (everyday) {
    formatter->format(static_cast<double>(offset), icuUnit(unit), text, error);
  } else {
    formatter->formatNumeric(static_cast<double>(offset), icuUnit(unit), text, error);
  }
  return U_SUCCESS(error) ? utf8(text) : std::string();
}

}  // namespace brindle::internal
