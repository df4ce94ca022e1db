// What the library's own units share about swizzled methods.
#pragma once

#include <Brindle/Platform/Types.h>

namespace brindle::internal {

/// Calls the `method_swizzle` that the process finds by that name at this moment.
BOOL swizzleByName(ClassRecord* cls, SEL target, SEL replacement);

/// For the code that a scoped swizzle installed: code of the program or library that made it. Any
/// other implementation itself. Any thread.
IMP codeBehind(IMP implementation);

}  // namespace brindle::internal
