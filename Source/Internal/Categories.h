// The library's categories on classes of the platform, for the library's list.
#pragma once

#include <Brindle/Platform/Definition.h>

namespace brindle::internal {

extern const CategoryDefinition kBDExceptionAdditions;

}  // namespace brindle::internal
