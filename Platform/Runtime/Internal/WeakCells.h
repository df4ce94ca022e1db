// What the platform asks of weak references beside reading them.
#pragma once

#include <Brindle/Platform/Weak.h>

namespace brindle::detail {

/// Whether it is the cell of this object, which lives: not one of an object that was in its place.
bool weakCellIsOf(const WeakCell* cell, const ObjectRecord* record) noexcept;

}  // namespace brindle::detail
