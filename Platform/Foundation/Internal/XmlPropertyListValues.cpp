#include "Platform/Foundation/Internal/XmlPropertyListValues.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "Platform/Foundation/Internal/TextNumbers.h"

namespace brindle::internal {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::uint8_t kNoDigit = 0xFF;

constexpr auto kDigits = [] {
  std::array<std::uint8_t, 256> digits{};
  digits.fill(kNoDigit);
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    digits[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return digits;
}();

constexpr bool isSpace(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool takeSign(std::string_view& text) noexcept {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  return negative;
}

// The number of that magnitude; nothing when it does not fit.
std::optional<PropertyInteger> signedInteger(std::uint64_t high, std::uint64_t low, bool negative) {
  if (negative) {
    low = -low;
    high = ~high + (low == 0 ? 1 : 0);
  }
  const PropertyInteger value{low, static_cast<std::int64_t>(high)};
  if (value.isNegative() != negative && (high | low) != 0) return std::nullopt;
  return value;
}

// Digits of the base alone, beyond 64 bits.
std::optional<PropertyInteger> parseLongInteger(std::string_view digits, int base, bool negative) {
  std::array<std::uint64_t, 4> parts{};  // of 32 bits, the highest first
  for (const char c : digits) {
    std::uint64_t carry = 0;
    std::from_chars(&c, &c + 1, carry, base);
    for (std::size_t i = parts.size(); i-- > 0; carry >>= 32U) {
      carry += parts[i] * static_cast<std::uint64_t>(base);
      parts[i] = carry & 0xFFFFFFFF;
    }
    if (carry != 0) return std::nullopt;
  }
  return signedInteger(parts[0] << 32U | parts[1], parts[2] << 32U | parts[3], negative);
}

// Exactly or at least so many decimal digits.
std::optional<std::int64_t> takeDigits(std::string_view& text, std::size_t least,
                                       std::size_t most) {
  std::size_t count = 0;
  std::int64_t value = 0;
  while (count < text.size() && count < most && text[count] >= '0' && text[count] <= '9') {
    value = value * 10 + (text[count++] - '0');
  }
  if (count < least) return std::nullopt;
  text.remove_prefix(count);
  return value;
}

// Gregorian for all times, since 1970. March begins the year, so that the odd day is its last.
std::int64_t dayOf(std::int64_t year, std::int64_t month, std::int64_t day) noexcept {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t yearOfEra = year - era * 400;
  const std::int64_t dayOfYear = (153 * ((month + 9) % 12) + 2) / 5 + day - 1;
  return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

std::int64_t daysIn(std::int64_t year, std::int64_t month) noexcept {
  return dayOf(month == 12 ? year + 1 : year, month % 12 + 1, 1) - dayOf(year, month, 1);
}

constexpr std::int64_t kDayOf2001 = 11323;  // since 1970
constexpr std::int64_t kSecondsOfDay = 86400;

}  // namespace

std::string_view trimmed(std::string_view text) noexcept {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<PropertyInteger> parseXmlInteger(std::string_view text) {
  text = trimmed(text);
  const bool negative = takeSign(text);
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
    base = 16;
  }
  std::uint64_t value = 0;
  const char* const last = text.data() + text.size();
  const auto [end, status] = std::from_chars(text.data(), last, value, base);
  if (end != last) return std::nullopt;
  if (status == std::errc()) return signedInteger(0, value, negative);
  return status == std::errc::result_out_of_range ? parseLongInteger(text, base, negative)
                                                  : std::nullopt;
}

std::string formatXmlInteger(PropertyInteger value) {
  if (value.fitsSigned()) return std::to_string(value.asSigned());
  if (value.fitsUnsigned()) return std::to_string(value.low);
  // Beyond 64 bits: divided by ten until nothing is left.
  std::uint64_t high = static_cast<std::uint64_t>(value.high);
  std::uint64_t low = value.low;
  if (value.isNegative()) {
    low = -low;
    high = ~high + (low == 0 ? 1 : 0);
  }
  std::array<std::uint64_t, 4> parts{high >> 32U, high & 0xFFFFFFFF, low >> 32U, low & 0xFFFFFFFF};
  std::string digits;
  while (std::any_of(parts.begin(), parts.end(), [](auto part) { return part != 0; })) {
    std::uint64_t rest = 0;
    for (auto& part : parts) {
      rest = rest << 32U | part;
      part = rest / 10;
      rest %= 10;
    }
    digits.push_back(static_cast<char>('0' + rest));
  }
  if (value.isNegative()) digits.push_back('-');
  std::reverse(digits.begin(), digits.end());
  return digits;
}

std::optional<double> parseXmlReal(std::string_view text) {
  text = trimmed(text);
  if (const auto parsed = parseDouble(TextView::latin1(text));
      parsed && parsed->end == text.size()) {
    return parsed->value;
  }
  const bool negative = takeSign(text);
  std::string lower(text.substr(0, 9));
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  using Limits = std::numeric_limits<double>;
  if (lower == "inf" || lower == "infinity")
    return negative ? -Limits::infinity() : Limits::infinity();
  if (lower == "nan") return Limits::quiet_NaN();
  return std::nullopt;
}

std::string formatXmlReal(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-infinity" : "+infinity";
  char buffer[32];
  const auto [end, status] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, end};
}

std::optional<double> parseXmlDate(std::string_view text) {
  text = trimmed(text);
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const auto year = takeDigits(text, 4, 9);
  if (!year) return std::nullopt;
  struct Part {
    char before;
    std::int64_t first, last, value;
  };
  Part parts[] = {
      {'-', 1, 12, 1}, {'-', 1, 31, 1}, {'T', 0, 23, 0}, {':', 0, 59, 0}, {':', 0, 60, 0}};
  bool whole = true;
  for (Part& part : parts) {
    whole = text.starts_with(part.before);
    if (!whole) break;
    text.remove_prefix(1);
    const auto value = takeDigits(text, 2, 2);
    if (!value || *value < part.first || *value > part.last) return std::nullopt;
    part.value = *value;
  }
  double fraction = 0;
  if (whole && text.starts_with('.')) {
    const std::size_t size = text.find_first_not_of("0123456789", 1);
    const auto parsed = parseDouble(TextView::latin1(text.substr(0, size)));
    if (!parsed || size == std::string_view::npos) return std::nullopt;
    fraction = parsed->value;
    text.remove_prefix(size);
  }
  if (text != "Z") return std::nullopt;
  const auto& [month, day, hour, minute, second] = parts;
  const std::int64_t signedYear = negative ? -*year : *year;
  if (day.value > daysIn(signedYear, month.value)) return std::nullopt;
  const std::int64_t days = dayOf(signedYear, month.value, day.value) - kDayOf2001;
  const std::int64_t seconds =
      days * kSecondsOfDay + hour.value * 3600 + minute.value * 60 + second.value;
  return static_cast<double>(seconds) + fraction;
}

std::optional<std::string> formatXmlDate(double secondsSince2001) {
  constexpr double kFarthest = 1e15;
  if (!(std::abs(secondsSince2001) < kFarthest)) return std::nullopt;
  const auto seconds = static_cast<std::int64_t>(std::floor(secondsSince2001));
  std::int64_t days = seconds / kSecondsOfDay - (seconds % kSecondsOfDay < 0 ? 1 : 0);
  const std::int64_t second = seconds - days * kSecondsOfDay;
  days += kDayOf2001 + 719468;  // since March of the year 0
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const std::int64_t dayOfEra = days - era * 146097;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t fromMarch = (5 * dayOfYear + 2) / 153;
  const std::int64_t month = fromMarch < 10 ? fromMarch + 3 : fromMarch - 9;
  const std::int64_t year = era * 400 + yearOfEra + (month <= 2 ? 1 : 0);
  char buffer[64];
  const int size = std::snprintf(
      buffer, sizeof buffer, "%s%04lld-%02d-%02dT%02d:%02d:%02dZ", year < 0 ? "-" : "",
      static_cast<long long>(year < 0 ? -year : year), static_cast<int>(month),
      static_cast<int>(dayOfYear - (153 * fromMarch + 2) / 5 + 1), static_cast<int>(second / 3600),
      static_cast<int>(second / 60 % 60), static_cast<int>(second % 60));
  return std::string(buffer, static_cast<std::size_t>(size));
}

std::optional<std::string> decodeBase64(std::string_view text) {
  text = trimmed(text);
  for (int padding = 0; padding < 2 && text.ends_with('='); ++padding) {
    text = trimmed(text.substr(0, text.size() - 1));
  }
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3 + 3);
  std::uint32_t bits = 0;
  unsigned digits = 0;
  for (const char c : text) {
    if (isSpace(c)) continue;
    const std::uint8_t digit = kDigits[static_cast<unsigned char>(c)];
    if (digit == kNoDigit) return std::nullopt;
    bits = bits << 6U | digit;
    if (++digits % 4 == 0) {
      for (const unsigned shift : {16U, 8U, 0U})
        bytes.push_back(static_cast<char>(bits >> shift & 0xFFU));
    }
  }
  if (digits % 4 == 1) return std::nullopt;
  if (digits % 4 == 2) bytes.push_back(static_cast<char>(bits >> 4U & 0xFFU));
  if (digits % 4 == 3) {
    bytes.push_back(static_cast<char>(bits >> 10U & 0xFFU));
    bytes.push_back(static_cast<char>(bits >> 2U & 0xFFU));
  }
  return bytes;
}

std::string encodeBase64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::string_view group = bytes.substr(i, 3);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      bits = bits << 8U | (k < group.size() ? static_cast<unsigned char>(group[k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text.push_back(k <= group.size() ? kAlphabet[bits >> (18 - 6 * k) & 0x3FU] : '=');
    }
  }
  return text;
}

}  // namespace brindle::internal
