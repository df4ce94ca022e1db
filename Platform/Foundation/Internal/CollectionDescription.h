// Collections as text for people, in the form of old property lists.
#pragma once

#include <Brindle/Platform/NSString.h>

namespace brindle::detail {

/// "(\n    a,\n    \"b c\"\n)", "{\n    key = value;\n}", "{(\n    a\n)}" for an array, a
/// dictionary or a set that is nested `level` deep. "..." stands for a collection inside itself,
/// and for what lies deeper than 100.
NSString describeCollection(const id& collection, NSUInteger level);

}  // namespace brindle::detail
