// The words that describe a range, its zone, its week and the language; shared by the commands
// about ranges.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <Brindle/BDDateRange.h>

#include "Command.h"

namespace tool {

/// Everyday names, as the command line writes them: "this-month". Empty for BDNamedRangeNone.
struct RangeName {
  brindle::BDNamedRange range;
  std::string_view name;
};
std::span<const RangeName> rangeNames();
std::string_view nameOfRange(brindle::BDNamedRange range);

/// The options that describe a range by its parts, and those that set zone, week and language.
inline constexpr Option kAnchorOption{"--anchor", true};
inline constexpr Option kUnitOption{"--unit", true};
inline constexpr Option kOffsetOption{"--offset", true};
inline constexpr Option kLengthOption{"--length", true};
inline constexpr Option kZoneOption{"--zone", true};
inline constexpr Option kFirstWeekdayOption{"--first-weekday", true};
inline constexpr Option kLocaleOption{"--locale", true};
inline constexpr Option kJsonOption{"--json", false};

/// Sets the default zone, the first weekday and the language as the words say. Throws UsageError.
void applySettings(const Words& words);

/// A count of units: "-1 week", "-1week", "+3months".
struct Amount {
  std::int64_t count;
  brindle::BDTimeUnit unit;
};
/// The amount in `text`. Throws UsageError, which calls it by the name `what`.
Amount amountFrom(std::string_view what, std::string_view text);
/// The name of a unit: "week".
std::string_view nameOfUnit(brindle::BDTimeUnit unit);

/// The anchor as the words say; nil when they name none. Throws UsageError.
brindle::NSDate anchorFrom(const Words& words);

/// The range of the words `--anchor --unit --offset --length`. Throws UsageError.
brindle::BDDateRange rangeFrom(const Words& words);

/// Whether the words describe a range by its parts.
bool describesRange(const Words& words);

}  // namespace tool
