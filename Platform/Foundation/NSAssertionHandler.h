// Assertion handlers decide what a failed assertion does. Each thread has one of its own; this
// class's logs the failure and raises NSInternalInconsistencyException.
//
//   NSThread::currentThread()->threadDictionary()->setObject(handler, NSAssertionHandlerKey);
//
// A handler of a client's own that returns lets the operation go on.
#pragma once

#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

extern "C" {
/// Where a thread's dictionary holds its handler.
BRINDLE_PLATFORM_EXPORT extern const NSString NSAssertionHandlerKey;
}

class NSAssertionHandler : public Interface<NSAssertionHandler, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSAssertionHandler> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// The current thread's handler; made when there is none.
    NSAssertionHandler currentHandler() const {
      return send<"currentHandler", NSAssertionHandler>(*this);
    }
  };
  static NSAssertionHandler currentHandler() { return class_()->currentHandler(); }

  /// An assertion failed in a method. The format is filled with the arguments.
  template <class... A>
  void handleFailureInMethod(SEL selector, const id& object, const NSString& file, NSInteger line,
                             const NSString& format, const A&... arguments) const {
    const std::array<FormatArgument, sizeof...(A)> list{FormatArgument(arguments)...};
    send<"handleFailureInMethod:object:file:lineNumber:description:">(
        *this, selector, object, file, line, format, FormatArguments{list});
  }
  /// An assertion failed in a function.
  template <class... A>
  void handleFailureInFunction(const NSString& function, const NSString& file, NSInteger line,
                               const NSString& format, const A&... arguments) const {
    const std::array<FormatArgument, sizeof...(A)> list{FormatArgument(arguments)...};
    send<"handleFailureInFunction:file:lineNumber:description:">(*this, function, file, line,
                                                                 format, FormatArguments{list});
  }
};

}  // namespace brindle
