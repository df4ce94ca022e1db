// The protocols of objects that can be copied.
//
// `copy` and `mutableCopy` of NSObject send `copyWithZone:` and `mutableCopyWithZone:`, which a
// class that adopts these protocols has. The zone is always null.
#pragma once

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Protocol.h>

namespace brindle {

/// `copyWithZone:` answers an owned copy; an immutable object may answer itself.
BRINDLE_PLATFORM_EXPORT extern ProtocolRecord kNSCopying;

/// `mutableCopyWithZone:` answers an owned copy that can be changed.
BRINDLE_PLATFORM_EXPORT extern ProtocolRecord kNSMutableCopying;

}  // namespace brindle
