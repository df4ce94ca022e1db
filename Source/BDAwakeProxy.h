// What a new object is until its first message.
//
// An object of a class that defines `awake` (BDAwake.h) is born as an instance of a class made
// while the program runs, named "BDAwakeProxy_" and the name of its own class: the memory is the
// object's already, the class is not. Its first message must be an initialiser. That gives the
// object its class, runs the initialiser, and has `awake` called.
//
// A proxy answers for itself what every proxy answers (NSProxy.h): memory and identity.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSProxy.h>

namespace brindle {

extern "C" {
/// The beginning of the names of proxy classes: "BDAwakeProxy_".
BRINDLE_EXPORT extern const char* const kAwakeProxyPrefix;
/// The beginning of the names of initialisers: "init".
BRINDLE_EXPORT extern const char* const kInitPrefix;
}

class BDAwakeProxy : public Interface<BDAwakeProxy, NSProxy> {
 public:
  using Interface::Interface;
  BRINDLE_EXPORT static ClassPair<BDAwakeProxy> classPair;

  /// The class that the object will have. Raises BDInternalInconsistencyException for a proxy whose
  /// class is not named as above; nil when no class has the name.
  Class originalClass() const { return send<"originalClass", Class>(*this); }
  /// Of an initialiser: gives the object its class, sends it the message, and sends `invokeAwake:`
  /// to its class. Raises BDInternalInconsistencyException for any other message; the object stays
  /// a proxy.
  void forwardInvocation(const NSInvocation& invocation) const {
    send<"forwardInvocation:">(*this, invocation);
  }
  /// The types of an instance operation of the original class.
  NSMethodSignature methodSignatureForSelector(SEL s) const {
    return send<"methodSignatureForSelector:", NSMethodSignature>(*this, s);
  }
};

}  // namespace brindle
