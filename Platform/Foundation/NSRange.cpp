#include <Brindle/Platform/NSRange.h>

#include <algorithm>

#include <Brindle/Platform/NSString.h>

namespace brindle {

NSRange NSIntersectionRange(NSRange a, NSRange b) {
  const NSUInteger start = std::max(a.location, b.location);
  const NSUInteger end = std::min(NSMaxRange(a), NSMaxRange(b));
  return start < end ? NSRange{start, end - start} : NSRange{};
}

NSRange NSUnionRange(NSRange a, NSRange b) {
  const NSUInteger start = std::min(a.location, b.location);
  return {start, std::max(NSMaxRange(a), NSMaxRange(b)) - start};
}

NSString NSStringFromRange(NSRange range) {
  return NSString::stringWithFormat("{%lu, %lu}"_ns, range.location, range.length);
}

}  // namespace brindle
