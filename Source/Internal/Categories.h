// The library's categories on classes of the platform, for the library's list.
#pragma once

#include <Brindle/Platform/Definition.h>

namespace brindle::internal {

extern const CategoryDefinition kBDExceptionAdditions;
extern const CategoryDefinition kBDUserDefaultsAdditions;
extern const CategoryDefinition kBDUserDefaultsAdditionsOfStrings;
extern const CategoryDefinition kBDBundleAdditions;
extern const CategoryDefinition kBDBundleAdditionsPersonal;
extern const CategoryDefinition kBDObjectAdditions;
extern const CategoryDefinition kBDRuntimeAdditions;
extern const CategoryDefinition kBDAwakeAdditions;
extern const CategoryDefinition kBDObjectSingletonAdditions;
extern const CategoryDefinition kBDKeyValueCodingSearchAdditions;
extern const CategoryDefinition kBDObjectSafeMessengerAdditions;
extern const CategoryDefinition kBDBlockKeyValueAdditions;

}  // namespace brindle::internal
