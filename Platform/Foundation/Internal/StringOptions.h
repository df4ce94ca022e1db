// The compare options of strings, as the text units take them.
#pragma once

#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/TextCompare.h"

namespace brindle::detail {

inline internal::TextOptions textOptions(NSStringCompareOptions options) noexcept {
  return {.caseInsensitive = (options & NSCaseInsensitiveSearch) != 0,
          .literal = (options & NSLiteralSearch) != 0,
          .backwards = (options & NSBackwardsSearch) != 0,
          .anchored = (options & NSAnchoredSearch) != 0,
          .numeric = (options & NSNumericSearch) != 0,
          .diacriticInsensitive = (options & NSDiacriticInsensitiveSearch) != 0,
          .forcedOrdering = (options & NSForcedOrderingSearch) != 0};
}

/// Raises NSInvalidArgumentException for an option that is not offered.
void requireOptions(const id& self, SEL selector, NSStringCompareOptions options);

}  // namespace brindle::detail
