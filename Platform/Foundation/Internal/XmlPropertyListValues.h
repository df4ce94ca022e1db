#pragma once

// The text of numbers, dates and data in the XML form of a property list.

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/PropertyList.h"

namespace brindle::internal {

/// The key of a dictionary that stands for a UID.
inline constexpr std::string_view kUidKey = "CF$UID";

/// Without the white space of XML at both ends.
std::string_view trimmed(std::string_view text) noexcept;

/// Decimal, or hexadecimal after 0x; nothing when it is not, or beyond 128 bits.
std::optional<PropertyInteger> parseXmlInteger(std::string_view text);
std::string formatXmlInteger(PropertyInteger value);

/// Decimal with a point; also infinity and nan.
std::optional<double> parseXmlReal(std::string_view text);
/// The shortest text that reads back as the same number.
std::string formatXmlReal(double value);

/// ISO 8601 in UTC, Gregorian for all times: 2001-01-01T00:00:00Z. Parts may be missing at the end,
/// seconds may have a fraction. Seconds since 2001. Nothing for a day that its month has not.
std::optional<double> parseXmlDate(std::string_view text);
/// In whole seconds, rounded down. Nothing for what is no number, or many million years away.
std::optional<std::string> formatXmlDate(double secondsSince2001);

/// White space is skipped, "=" at the end may be missing; nothing for other characters.
std::optional<std::string> decodeBase64(std::string_view text);
/// Without line breaks.
std::string encodeBase64(std::string_view bytes);

}  // namespace brindle::internal
