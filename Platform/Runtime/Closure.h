// Implementations made while the program runs: one handler that knows its context serves messages
// of any types, where a method's body has to be written for one.
//
//   const IMP zero = zeroImplementation("d16@0:8");   // answers 0.0
//
// They are called like all others, also by checked sends, and pass on what the handler raises. They
// live as long as the process, since nobody can know who still holds one.
#pragma once

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

/// Serves one message. `arguments` point to its wire values (Encoding.h), receiver and selector
/// first; `result` is zero and has room for the result's wire value. An object is answered owned.
using ClosureHandler = void (*)(void* context, void** arguments, void* result);

/// An implementation of these types that calls the handler with the context. `wire` is what checked
/// senders compare, as in a method's record; null for the wire codes of `types`. Null when `types`
/// is no encoding of a method. Any thread.
BRINDLE_PLATFORM_EXPORT IMP closureImplementation(const char* types, const char* wire,
                                                  ClosureHandler handler, void* context);

/// An implementation that ignores its arguments and answers zero, nil or a structure of zeros, as
/// `types` and `wire` say. For text that is no encoding, and for null, it answers an integer zero
/// and is not checked. The same one for the same types. Any thread.
BRINDLE_PLATFORM_EXPORT IMP zeroImplementation(const char* types, const char* wire = nullptr);

}  // namespace brindle
