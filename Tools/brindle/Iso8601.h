// Instants as ISO 8601 writes them: the proleptic Gregorian calendar, years beyond 0000 to 9999
// with a sign and at least four digits.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

/// A day of the proleptic Gregorian calendar.
struct IsoDay {
  std::int64_t year;
  int month;
  int day;
};

/// The day that begins `days` days after 1970-01-01.
IsoDay isoDay(std::int64_t days);

/// "2026-11-21".
std::string isoDate(std::int64_t secondsSince1970, std::int64_t offset);

/// "2026-11-21T00:00:00-05:00"; in UTC with a "Z" when the offset has seconds, which ISO 8601
/// cannot write (zones had them before standard time).
std::string isoInstant(std::int64_t secondsSince1970, std::int64_t offset);

/// The text as what `isoDate` writes, as days since 1970, and the seconds into the day of a time
/// ("2026-11-21", "2026-11-21T13:45", "...:30", with "Z" or an offset).
struct ParsedInstant {
  std::int64_t days;
  std::int64_t seconds;
  std::optional<std::int64_t> offset;  // absent: local time
};
std::optional<ParsedInstant> parseIso(std::string_view text);

}  // namespace tool
