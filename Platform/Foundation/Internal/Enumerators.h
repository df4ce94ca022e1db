// The enumerators of the library's own collections.
#pragma once

#include <Brindle/Platform/NSEnumerator.h>

namespace brindle::detail {

/// Over anything that can be enumerated, in its order.
NSEnumerator makeEnumerator(const id& collection);
/// Over an array, from its end.
NSEnumerator makeReverseEnumerator(const NSArray& array);

}  // namespace brindle::detail
