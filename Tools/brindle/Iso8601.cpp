#include "Iso8601.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace tool {
namespace {

constexpr std::int64_t kDaySeconds = 86400;

std::int64_t floorDiv(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

// Days since 1970-01-01 of a proleptic Gregorian day, counted in years that begin in March.
std::int64_t daysOf(const IsoDay& d) {
  const std::int64_t year = d.year - (d.month <= 2 ? 1 : 0);
  const std::int64_t era = floorDiv(year, 400);
  const std::int64_t yearOfEra = year - era * 400;
  const std::int64_t dayOfYear = (153 * (d.month + (d.month > 2 ? -3 : 9)) + 2) / 5 + d.day - 1;
  return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

std::string text(const char* format, auto... values) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, values...);
  return buffer;
}

std::string isoYear(std::int64_t year) {
  const auto value = static_cast<long long>(year);
  if (year >= 0 && year <= 9999) return text("%04lld", value);
  return text("%c%04lld", year < 0 ? '-' : '+', std::llabs(value));
}

bool readNumber(std::string_view& rest, std::size_t digits, std::int64_t& number) {
  if (rest.size() < digits) return false;
  const std::string_view part = rest.substr(0, digits);
  for (const char c : part) {
    if (c < '0' || c > '9') return false;
  }
  std::from_chars(part.data(), part.data() + part.size(), number);
  rest.remove_prefix(digits);
  return true;
}

bool skip(std::string_view& rest, char c) {
  if (rest.empty() || rest.front() != c) return false;
  rest.remove_prefix(1);
  return true;
}

std::optional<std::int64_t> readOffset(std::string_view& rest) {
  if (skip(rest, 'Z')) return 0;
  if (rest.empty() || (rest.front() != '+' && rest.front() != '-')) return std::nullopt;
  const std::int64_t sign = rest.front() == '-' ? -1 : 1;
  rest.remove_prefix(1);
  std::int64_t hours = 0;
  std::int64_t minutes = 0;
  if (!readNumber(rest, 2, hours)) return std::nullopt;
  skip(rest, ':');
  if (!rest.empty() && !readNumber(rest, 2, minutes)) return std::nullopt;
  if (hours > 23 || minutes > 59) return std::nullopt;
  return sign * (hours * 3600 + minutes * 60);
}

}  // namespace

IsoDay isoDay(std::int64_t days) {
  const std::int64_t shifted = days + 719468;
  const std::int64_t era = floorDiv(shifted, 146097);
  const std::int64_t dayOfEra = shifted - era * 146097;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t march = (5 * dayOfYear + 2) / 153;
  const int month = static_cast<int>(march < 10 ? march + 3 : march - 9);
  return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month,
          static_cast<int>(dayOfYear - (153 * march + 2) / 5 + 1)};
}

std::string isoDate(std::int64_t secondsSince1970, std::int64_t offset) {
  const IsoDay day = isoDay(floorDiv(secondsSince1970 + offset, kDaySeconds));
  return isoYear(day.year) + text("-%02d-%02d", day.month, day.day);
}

std::string isoInstant(std::int64_t secondsSince1970, std::int64_t offset) {
  if (offset % 60 != 0) return isoInstant(secondsSince1970, 0);
  const std::int64_t local = secondsSince1970 + offset;
  const auto second = static_cast<int>(local - floorDiv(local, kDaySeconds) * kDaySeconds);
  std::string result = isoDate(secondsSince1970, offset) +
                       text("T%02d:%02d:%02d", second / 3600, second / 60 % 60, second % 60);
  if (offset == 0) return result + "Z";
  const auto minutes = static_cast<int>(std::llabs(offset) / 60);
  return result + text("%c%02d:%02d", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

std::optional<ParsedInstant> parseIso(std::string_view text) {
  std::string_view rest = text;
  std::int64_t sign = 1;
  std::size_t yearDigits = 4;
  if (!rest.empty() && (rest.front() == '-' || rest.front() == '+')) {
    sign = rest.front() == '-' ? -1 : 1;
    rest.remove_prefix(1);
    yearDigits = rest.find('-');
    if (yearDigits == std::string_view::npos || yearDigits < 4 || yearDigits > 6)
      return std::nullopt;
  }
  std::int64_t year = 0;
  std::int64_t month = 0;
  std::int64_t day = 0;
  if (!readNumber(rest, yearDigits, year) || !skip(rest, '-') || !readNumber(rest, 2, month) ||
      !skip(rest, '-') || !readNumber(rest, 2, day)) {
    return std::nullopt;
  }
  const IsoDay read{sign * year, static_cast<int>(month), static_cast<int>(day)};
  if (month < 1 || month > 12 || day < 1) return std::nullopt;
  ParsedInstant instant{daysOf(read), 0, std::nullopt};
  const IsoDay back = isoDay(instant.days);
  if (back.month != read.month || back.day != read.day) return std::nullopt;
  if (rest.empty()) return instant;
  std::int64_t hours = 0;
  std::int64_t minutes = 0;
  std::int64_t seconds = 0;
  if ((!skip(rest, 'T') && !skip(rest, ' ')) || !readNumber(rest, 2, hours) || !skip(rest, ':') ||
      !readNumber(rest, 2, minutes)) {
    return std::nullopt;
  }
  if (skip(rest, ':') && !readNumber(rest, 2, seconds)) return std::nullopt;
  if (hours > 23 || minutes > 59 || seconds > 59) return std::nullopt;
  instant.seconds = hours * 3600 + minutes * 60 + seconds;
  if (!rest.empty()) {
    instant.offset = readOffset(rest);
    if (!instant.offset || !rest.empty()) return std::nullopt;
  }
  return instant;
}

}  // namespace tool
