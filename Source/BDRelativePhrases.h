// Phrases for how far away something is, in the language's own grammar: what a user interface
// should print that is not bound to the wording of +[BDDateRange descriptionForUnit:offset:].
//
//   relativePhrase(BDTimeUnitWeek, -3);                                // "3 weeks ago"
//   relativePhrase(BDTimeUnitDay, 1);                                  // "tomorrow"
//   relativePhrase(BDTimeUnitDay, 1, nullptr, PhraseStyle::numeric);   // "in 1 day"
//   NSLocale polish = NSLocale::alloc()->initWithLocaleIdentifier("pl"_ns);
//   relativePhrase(BDTimeUnitWeek, -3, polish);                        // "3 tygodnie temu"
#pragma once

#include <cstdint>
#include <string>

#include <Brindle/BDDateRange.h>
#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/RelativePhrase.h>

namespace brindle {

/// The phrase for `offset` units from now, negative for the past, in UTF-8; in the user's language
/// when the locale is nil. Every 64-bit offset is printed exactly. Raises
/// BDInternalInconsistencyException for a number that is no unit. Any thread.
BRINDLE_EXPORT std::string relativePhrase(BDTimeUnit unit, std::int64_t offset,
                                          const NSLocale& locale = nullptr,
                                          PhraseStyle style = PhraseStyle::everyday);

}  // namespace brindle
