// Phrases for how far away something is, in the language's own grammar: plain C++, no objects.
//
//   relativePhrase(PhraseUnit::week, -3, "pl");                        // "3 tygodnie temu"
//   relativePhrase(PhraseUnit::week, -5, "pl");                        // "5 tygodni temu"
//   relativePhrase(PhraseUnit::day, 1, "en");                          // "tomorrow"
//   relativePhrase(PhraseUnit::day, 1, "en", PhraseStyle::numeric);    // "in 1 day"
//
// Words, plural rules and digits are CLDR's, as the system's ICU carries them; they may change with
// it, so compare no stored text with them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <Brindle/Platform/Export.h>

namespace brindle {

/// What is counted.
enum class PhraseUnit : std::uint8_t { second, minute, hour, day, week, month, quarter, year };

/// Whether small offsets are words.
enum class PhraseStyle : std::uint8_t {
  everyday,  // "yesterday", "next week", "now"; numbers where the language has no word
  numeric,   // always a number: "1 day ago", "in 0 days"
};

/// The phrase for `offset` units from now, negative for the past, in UTF-8. `locale` is an
/// identifier in any usual spelling ("de_DE", "pt-BR", "zh_TW.UTF-8"); a language that nobody knows
/// gives English. Every 64-bit offset is printed exactly, with the locale's digits and separators.
/// Empty for a unit that is none, and where ICU has no data. Any thread.
BRINDLE_PLATFORM_EXPORT std::string relativePhrase(PhraseUnit unit, std::int64_t offset,
                                                   std::string_view locale,
                                                   PhraseStyle style = PhraseStyle::everyday);

}  // namespace brindle
