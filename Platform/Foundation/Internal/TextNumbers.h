// Numbers at the start of text, as people write them in files: after white space, in ASCII digits,
// with a point for the fraction, whatever the host's language. What follows the number is ignored.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

template <class Number>
struct ParsedNumber {
  Number value;
  std::size_t end;  // of the number in the text
};

/// A sign and decimal digits. A number beyond 64 bits becomes the nearest that is not.
std::optional<ParsedNumber<std::int64_t>> parseInteger(TextView text);
/// The same without bounds below zero: for numbers above the signed range.
std::optional<ParsedNumber<std::uint64_t>> parseUnsigned(TextView text);
/// Hexadecimal digits, with or without 0x. Beyond 64 bits: the greatest.
std::optional<ParsedNumber<std::uint64_t>> parseHexadecimal(TextView text);
/// A sign, digits, a fraction, an exponent. Beyond the range: infinity or zero.
std::optional<ParsedNumber<double>> parseDouble(TextView text);

/// The same, zero where there is no number; `integer32` stays within 32 bits.
std::int32_t integer32FromText(TextView text);
std::int64_t integer64FromText(TextView text);
double doubleFromText(TextView text);
/// Whether white space, a sign and zeros are followed by one of Y, y, T, t, 1 to 9.
bool booleanFromText(TextView text);

/// The first position from `position` on that holds no white space.
std::size_t skipWhiteSpace(TextView text, std::size_t position = 0) noexcept;

}  // namespace brindle::internal
