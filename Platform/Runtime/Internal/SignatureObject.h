// Signature objects and what they stand for.
#pragma once

#include <Brindle/Platform/Method.h>
#include <Brindle/Platform/NSMethodSignature.h>

#include "Platform/Runtime/Internal/SignatureData.h"

namespace brindle::detail {

/// The signature of an encoding. Raises NSInvalidArgumentException when the text is none.
NSMethodSignature signatureObject(const char* types);

/// The signature of a method; nil when its encoding is unknown.
NSMethodSignature signatureOfMethod(MethodRecord* method);

/// Null for nil.
SignatureData* dataOfSignature(const NSMethodSignature& signature);

}  // namespace brindle::detail
