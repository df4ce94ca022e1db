// NSMethodSignature: the types of a message, taken from an encoding such as "q24@0:8@16".
//
// Signatures are immutable, one per encoding, and live as long as the process.
#pragma once

#include <string>

#include <Brindle/Platform/NSObject.h>

namespace brindle {

class NSMethodSignature : public Interface<NSMethodSignature, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSMethodSignature> classPair;

  /// The signature of an encoding, with or without offsets. Raises NSInvalidArgumentException for
  /// null or for text that is no encoding; so does `alloc`. Sizes are the platform's 64-bit ones.
  static NSMethodSignature signatureWithObjCTypes(const char* types) {
    return send<"signatureWithObjCTypes:", NSMethodSignature>(class_(), types);
  }

  /// Receiver and selector included.
  NSUInteger numberOfArguments() const { return send<"numberOfArguments", NSUInteger>(*this); }
  /// The encoding of one argument, qualifiers included, without offset. Raises
  /// NSInvalidArgumentException when the index is too large. 0 is the receiver, 1 the selector.
  const char* getArgumentTypeAtIndex(NSUInteger index) const {
    return send<"getArgumentTypeAtIndex:", const char*>(*this, index);
  }
  /// The result's encoding, in the same form.
  const char* methodReturnType() const { return send<"methodReturnType", const char*>(*this); }
  /// Bytes of the result; 0 for void.
  NSUInteger methodReturnLength() const { return send<"methodReturnLength", NSUInteger>(*this); }
  /// Bytes of all arguments.
  NSUInteger frameLength() const { return send<"frameLength", NSUInteger>(*this); }
  /// The whole encoding, as it was given.
  const char* objCTypes() const { return send<"objCTypes", const char*>(*this); }
};

inline NSMethodSignature NSObject::methodSignatureForSelector(SEL s) const {
  return send<"methodSignatureForSelector:", NSMethodSignature>(*this, s);
}
template <class Self>
NSMethodSignature NSObject::ClassSide<Self>::instanceMethodSignatureForSelector(SEL s) const {
  return send<"instanceMethodSignatureForSelector:", NSMethodSignature>(*this, s);
}

}  // namespace brindle
