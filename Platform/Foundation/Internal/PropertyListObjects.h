// Objects made of a property list.
#pragma once

#include <string_view>

#include <Brindle/Platform/NSObject.h>

#include "Platform/Foundation/Internal/PropertyList.h"

namespace brindle::detail {

/// The objects of the whole document: strings, numbers, dates, data, arrays, dictionaries and sets,
/// all immutable. Null is NSNull, a UID a dictionary of "CF$UID". A node that is held twice is one
/// object. Nil for an empty document.
id objectOfPropertyList(const internal::PropertyList& list);

/// The same of a file's bytes; nil when they are no property list.
id objectOfPropertyList(std::string_view bytes);

}  // namespace brindle::detail
