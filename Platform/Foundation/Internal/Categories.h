// The platform's categories on its own classes of the floor below, for the library's list.
#pragma once

#include <Brindle/Platform/Definition.h>

namespace brindle::detail {

extern const CategoryDefinition kNSObjectDescriptions;
extern const CategoryDefinition kNSProxyDescriptions;
extern const CategoryDefinition kNSStringBytes;
extern const CategoryDefinition kNSStringFormatting;
extern const CategoryDefinition kNSStringSearching;
extern const CategoryDefinition kNSStringPaths;
extern const CategoryDefinition kNSStringFiles;
extern const CategoryDefinition kNSStringTransforming;
extern const CategoryDefinition kNSObjectCoding;
extern const CategoryDefinition kNSStringCoding;
extern const CategoryDefinition kNSDataCoding;
extern const CategoryDefinition kNSNumberCoding;
extern const CategoryDefinition kNSDateCoding;
extern const CategoryDefinition kNSNullCoding;
extern const CategoryDefinition kNSArrayCoding;
extern const CategoryDefinition kNSDictionaryCoding;
extern const CategoryDefinition kNSSetCoding;
extern const CategoryDefinition kNSArrayIndexing;
extern const CategoryDefinition kNSMutableArrayIndexing;
extern const CategoryDefinition kNSBundleResources;
extern const CategoryDefinition kNSBundleCode;
extern const CategoryDefinition kNSObjectKeyValueCoding;
extern const CategoryDefinition kNSArrayKeyValueCoding;
extern const CategoryDefinition kNSSetKeyValueCoding;
extern const CategoryDefinition kNSDictionaryKeyValueCoding;
extern const CategoryDefinition kNSMutableDictionaryKeyValueCoding;

extern const CategoryDefinition kNSKeyValueObserving;
extern const CategoryDefinition kNSArrayObserving;
extern const CategoryDefinition kNSSetObserving;

}  // namespace brindle::detail
