#include "Platform/Foundation/Internal/TextNumbers.h"

#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <limits>
#include <string>

#include "Platform/Foundation/Internal/TextUnicode.h"

namespace brindle::internal {
namespace {

constexpr std::uint64_t kMaximum = std::numeric_limits<std::uint64_t>::max();

char16_t unitAt(TextView text, std::size_t position) noexcept {
  return position < text.size() ? text[position] : u'\0';
}

int digitValue(char16_t unit) noexcept {
  if (isAsciiDigit(unit)) return unit - '0';
  const char16_t lower = asciiLower(unit);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

// The digits from `position` on; nothing when there is none.
std::optional<ParsedNumber<std::uint64_t>> digits(TextView text, std::size_t position, int base) {
  const std::size_t start = position;
  const auto factor = static_cast<std::uint64_t>(base);
  std::uint64_t value = 0;
  for (; digitValue(unitAt(text, position)) < base; ++position) {
    const auto digit = static_cast<std::uint64_t>(digitValue(text[position]));
    const bool fits = value <= (kMaximum - digit) / factor;
    value = fits ? value * factor + digit : kMaximum;
  }
  if (position == start) return std::nullopt;
  return ParsedNumber<std::uint64_t>{value, position};
}

struct Sign {
  bool negative = false;
  std::size_t end = 0;
};

Sign sign(TextView text) noexcept {
  const std::size_t start = skipWhiteSpace(text);
  const char16_t unit = unitAt(text, start);
  return {unit == '-', start + (unit == '-' || unit == '+' ? 1 : 0)};
}

std::size_t copyDigits(TextView text, std::size_t position, std::string& target) {
  for (; isAsciiDigit(unitAt(text, position)); ++position) {
    target.push_back(static_cast<char>(text[position]));
  }
  return position;
}

}  // namespace

std::size_t skipWhiteSpace(TextView text, std::size_t position) noexcept {
  while (position < text.size() && isWhiteSpace(text[position])) ++position;
  return position;
}

std::optional<ParsedNumber<std::int64_t>> parseInteger(TextView text) {
  const Sign signOf = sign(text);
  const auto parsed = digits(text, signOf.end, 10);
  if (!parsed) return std::nullopt;
  using Limits = std::numeric_limits<std::int64_t>;
  const auto greatest = static_cast<std::uint64_t>(Limits::max());
  if (signOf.negative) {
    const bool fits = parsed->value <= greatest;
    return ParsedNumber<std::int64_t>{
        fits ? -static_cast<std::int64_t>(parsed->value) : Limits::min(), parsed->end};
  }
  return ParsedNumber<std::int64_t>{static_cast<std::int64_t>(std::min(parsed->value, greatest)),
                                    parsed->end};
}

std::optional<ParsedNumber<std::uint64_t>> parseUnsigned(TextView text) {
  return digits(text, sign(text).end, 10);
}

std::optional<ParsedNumber<std::uint64_t>> parseHexadecimal(TextView text) {
  const std::size_t start = skipWhiteSpace(text);
  if (unitAt(text, start) == '0' && asciiLower(unitAt(text, start + 1)) == 'x') {
    if (const auto parsed = digits(text, start + 2, 16)) return parsed;
  }
  return digits(text, start, 16);
}

std::optional<ParsedNumber<double>> parseDouble(TextView text) {
  // Only what was recognised here reaches the C library, which would take more (hex, names).
  const Sign signOf = sign(text);
  std::string number = signOf.negative ? "-" : "";
  const std::size_t signSize = number.size();
  std::size_t end = copyDigits(text, signOf.end, number);
  if (unitAt(text, end) == '.') {
    number.push_back('.');
    end = copyDigits(text, end + 1, number);
  }
  if (std::none_of(number.begin() + static_cast<std::ptrdiff_t>(signSize), number.end(),
                   [](char c) { return c != '.'; })) {
    return std::nullopt;
  }
  if (asciiLower(unitAt(text, end)) == 'e') {
    std::string exponent = "e";
    std::size_t at = end + 1;
    const char16_t unit = unitAt(text, at);
    if (unit == '-' || unit == '+') {
      exponent.push_back(static_cast<char>(unit));
      ++at;
    }
    const std::size_t exponentEnd = copyDigits(text, at, exponent);
    if (exponentEnd > at) {
      number += exponent;
      end = exponentEnd;
    }
  }
  static const locale_t kPlain = ::newlocale(LC_ALL_MASK, "C", nullptr);
  return ParsedNumber<double>{::strtod_l(number.c_str(), nullptr, kPlain), end};
}

std::int32_t integer32FromText(TextView text) {
  using Limits = std::numeric_limits<std::int32_t>;
  const std::int64_t value = integer64FromText(text);
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

std::int64_t integer64FromText(TextView text) {
  const auto parsed = parseInteger(text);
  return parsed ? parsed->value : 0;
}

double doubleFromText(TextView text) {
  const auto parsed = parseDouble(text);
  return parsed ? parsed->value : 0;
}

bool booleanFromText(TextView text) {
  std::size_t position = sign(text).end;
  while (unitAt(text, position) == '0') ++position;
  const char16_t unit = asciiLower(unitAt(text, position));
  return unit == 'y' || unit == 't' || (unit >= '1' && unit <= '9');
}

}  // namespace brindle::internal
