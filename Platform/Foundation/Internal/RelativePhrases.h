// Phrases such as "3 weeks ago" and "yesterday" in the languages that ICU knows. The one unit that
// talks to ICU about relative times.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brindle::internal {

/// What is counted, in ICU's order.
enum class RelativeUnit : std::uint8_t { second, minute, hour, day, week, month, quarter, year };

/// The phrase in UTF-8, in the language of a locale such as "de_DE" or "zh-Hans"; in English when
/// ICU has no such language. The plural form is the language's own for this number, the digits are
/// the locale's. Exact for every number. With `everyday`, small numbers are words where the
/// language has them: "yesterday", "next week". Empty when ICU lacks its data. Any thread.
std::string relativePhrase(std::string_view locale, RelativeUnit unit, std::int64_t offset,
                           bool everyday);

}  // namespace brindle::internal
