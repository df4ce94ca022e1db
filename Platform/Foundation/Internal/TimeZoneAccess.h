// The rules behind a zone object.
#pragma once

#include <Brindle/Platform/NSTimeZone.h>

#include "Platform/Foundation/Internal/ZoneRules.h"

namespace brindle::internal {

/// Never null: nil stands for the default zone.
const Zone* zoneOf(const NSTimeZone& zone);

/// An object for the rules; nil for null.
NSTimeZone zoneObject(const Zone* zone);

}  // namespace brindle::internal
