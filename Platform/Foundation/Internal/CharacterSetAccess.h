// How the string classes reach the characters of a set.
#pragma once

#include <Brindle/Platform/NSCharacterSet.h>

#include "Platform/Foundation/Internal/CharacterSet.h"

namespace brindle::detail {

/// The characters of a set, which is not nil.
const internal::CharacterSet& charactersOf(const NSCharacterSet& set);

}  // namespace brindle::detail
