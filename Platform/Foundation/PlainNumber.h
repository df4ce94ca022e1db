// The integer in an NSNumber, without a message.
#pragma once

#include <cstdint>

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Object.h>

namespace brindle {

/// Whether messages to the library's own numbers would answer what lies in them: whether nobody has
/// changed a method of NSNumber since the library was loaded. One load while no class changes.
BRINDLE_PLATFORM_EXPORT bool numbersArePlain() noexcept;

/// The 64 bits of an integer or truth value; `integerValue` and `unsignedIntegerValue` answer them,
/// and `boolValue` whether there are any. False for a floating value, and for an object that is not
/// exactly an NSNumber. Sends nothing and takes no lock.
BRINDLE_PLATFORM_EXPORT bool readPlainInteger(const ObjectRecord* number,
                                              std::uint64_t& bits) noexcept;

/// The same of the value that the object has under the key, read where it lies. False also when
/// there is none, and while messages to numbers might answer something else.
BRINDLE_PLATFORM_EXPORT bool readAssociatedInteger(ObjectRecord* object, const void* key,
                                                   std::uint64_t& bits) noexcept;

}  // namespace brindle
