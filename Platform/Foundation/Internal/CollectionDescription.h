// Collections as text for people, in the form of old property lists.
#pragma once

#include <Brindle/Platform/NSString.h>

namespace brindle::detail {

/// "(\n    a,\n    \"b c\"\n)", "{\n    key = value;\n}", "{(\n    a\n)}" for an array, a dictionary or a
/// set that is nested `level` deep. Beyond a depth of 100 "..." stands for what is in it, so that a
/// collection that holds itself has a description too.
NSString describeCollection(const id& collection, NSUInteger level);

}  // namespace brindle::detail
