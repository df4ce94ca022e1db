// The enumerators of the library's own collections.
#pragma once

#include <Brindle/Platform/NSEnumerator.h>

#include "Platform/Foundation/Internal/ObjectTable.h"

namespace brindle::detail {

enum class Direction { kForwards, kBackwards };

/// Over an array, whoever wrote its class.
NSEnumerator makeArrayEnumerator(const NSArray& array, Direction direction);

enum class Column { kKeys, kValues };

/// Over the table of that collection.
NSEnumerator makeTableEnumerator(const id& collection, ObjectTable& table, Column column);

}  // namespace brindle::detail
