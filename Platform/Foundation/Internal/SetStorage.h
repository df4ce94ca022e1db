// The variables of the set classes, and their members as rows.
#pragma once

#include <vector>

#include <Brindle/Platform/NSSet.h>

#include "Platform/Foundation/Internal/ObjectTable.h"

namespace brindle::detail {

/// Of a subclass that keeps its members elsewhere the table stays empty.
ObjectTable& tableOf(const NSSet& set);

/// Whether the set is of the library's own classes, so that its table holds its members.
bool isLibrarySet(const NSSet& set) noexcept;

/// The members, owned. None for nil.
std::vector<id> copyMembers(const NSSet& set);

}  // namespace brindle::detail
