// Does code come from a program or library that is linked with this library?
#pragma once

#include <Brindle/Platform/Types.h>

namespace brindle::internal {

/// Whether the loaded image that holds the implementation is linked with this library, directly or
/// through others. An implementation that no image holds (null, a closure) is not, but the code of
/// a scoped swizzle is where its body is. The loader is asked once for each implementation; later
/// answers take no lock. Any thread.
bool isLinkedCode(IMP implementation);

}  // namespace brindle::internal
