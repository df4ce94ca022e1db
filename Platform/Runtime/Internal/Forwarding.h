// Messages whose types are known only while the program runs.
#pragma once

#include <mutex>

#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/Types.h>

#include "Platform/Runtime/Internal/SignatureData.h"

namespace brindle::detail {

/// Sends a message whose arguments (receiver and selector included) lie in a frame. `result` has
/// room for the signature's result; an object arrives owned. Raises NSInvalidArgumentException when
/// the method found has other types than the signature.
void sendFrame(ObjectRecord* target, SEL selector, SignatureData& data, void** arguments,
               void* result);

/// An invocation of these types (never nil) for a receiver and selector; its arguments are zero.
NSInvocation newInvocation(const NSMethodSignature& signature, ObjectRecord* receiver,
                           SEL selector);

/// Where an invocation keeps an argument, and its result. An object in either is one pointer; the
/// result's is owned by the invocation.
void* argumentOf(const NSInvocation& invocation, std::size_t index);
void* resultOf(const NSInvocation& invocation);

/// Raises NSInvalidArgumentException, naming class, selector and receiver.
[[noreturn]] void raiseUnrecognized(const ClassRecord& cls, SEL selector, const void* receiver);

/// Over the making of closures: libffi prepares itself at the first without a lock of its own.
std::mutex& closureLock();

}  // namespace brindle::detail
