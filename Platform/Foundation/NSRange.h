// A range: `length` things from the one at `location` on, in a string, an array or data.
#pragma once

#include <limits>

#include <Brindle/Platform/Encoding.h>
#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

class NSString;

/// The index, or location, of what was not found.
inline constexpr NSInteger NSNotFound = std::numeric_limits<NSInteger>::max();

struct NSRange {
  NSUInteger location = 0;
  NSUInteger length = 0;

  friend constexpr bool operator==(const NSRange&, const NSRange&) = default;
};

template <>
struct StructEncoding<NSRange> : FieldsEncoding<"_NSRange", NSUInteger, NSUInteger> {};

constexpr NSRange NSMakeRange(NSUInteger location, NSUInteger length) { return {location, length}; }
/// The first index behind the range.
constexpr NSUInteger NSMaxRange(NSRange range) { return range.location + range.length; }
constexpr bool NSEqualRanges(NSRange a, NSRange b) { return a == b; }
constexpr bool NSLocationInRange(NSUInteger index, NSRange range) {
  return index >= range.location && index - range.location < range.length;
}

/// What both have in common; {0, 0} when that is nothing.
BRINDLE_PLATFORM_EXPORT NSRange NSIntersectionRange(NSRange a, NSRange b);
/// The smallest range that holds both.
BRINDLE_PLATFORM_EXPORT NSRange NSUnionRange(NSRange a, NSRange b);
/// "{3, 4}".
BRINDLE_PLATFORM_EXPORT NSString NSStringFromRange(NSRange range);

}  // namespace brindle
