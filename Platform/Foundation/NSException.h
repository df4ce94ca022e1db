// An exception object: what went wrong, as a name, a reason and where it was raised.
//
//   try {
//     array->objectAtIndex(9);
//   } catch (const RaisedException& raised) {
//     if (raised.exception()->name()->isEqualToString(NSRangeException)) ...
//   }
//
// Raising throws a C++ exception that holds the object. Exception objects are immutable and may be
// used by many threads at once.
#pragma once

#include <cstdlib>
#include <exception>
#include <string>

#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

// The names of the platform's own exceptions. Each is its own text.
extern "C" {
BRINDLE_PLATFORM_EXPORT extern const NSString NSGenericException;
/// An index or range beyond the end.
BRINDLE_PLATFORM_EXPORT extern const NSString NSRangeException;
/// An argument that is nil or of the wrong kind, and a message that nobody answers.
BRINDLE_PLATFORM_EXPORT extern const NSString NSInvalidArgumentException;
/// A failed assertion.
BRINDLE_PLATFORM_EXPORT extern const NSString NSInternalInconsistencyException;
BRINDLE_PLATFORM_EXPORT extern const NSString NSUndefinedKeyException;
BRINDLE_PLATFORM_EXPORT extern const NSString NSObjectInaccessibleException;
BRINDLE_PLATFORM_EXPORT extern const NSString NSObjectNotAvailableException;
BRINDLE_PLATFORM_EXPORT extern const NSString NSMallocException;
}

class NSException : public Interface<NSException, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSException> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// An exception that is not raised yet. Reason and information may be nil; a nil name raises
    /// NSInvalidArgumentException.
    Self exceptionWithName(const NSString& name, const NSString& reason,
                           const NSDictionary& userInfo) const {
      return send<"exceptionWithName:reason:userInfo:", Self>(*this, name, reason, userInfo);
    }
    /// Raises a new exception whose reason is the filled format.
    template <class... A>
    [[noreturn]] void raise(const NSString& name, const NSString& format,
                            const A&... arguments) const {
      const std::array<FormatArgument, sizeof...(A)> list{FormatArgument(arguments)...};
      send<"raise:format:">(*this, name, format, FormatArguments{list});
      std::abort();  // a replaced method came back, where nothing can go on
    }
  };

  static NSException exceptionWithName(const NSString& name, const NSString& reason,
                                       const NSDictionary& userInfo = nullptr) {
    return class_()->exceptionWithName(name, reason, userInfo);
  }
  template <class... A>
  [[noreturn]] static void raise(const NSString& name, const NSString& format,
                                 const A&... arguments) {
    class_()->raise(name, format, arguments...);
  }

  NSException initWithName(const NSString& name, const NSString& reason,
                           const NSDictionary& userInfo) const {
    return send<"initWithName:reason:userInfo:", NSException>(*this, name, reason, userInfo);
  }

  /// Throws this object in a `RaisedException`. For nil: ends the program.
  [[noreturn]] void raise() const {
    send<"raise">(*this);
    std::abort();
  }

  NSString name() const { return send<"name", NSString>(*this); }
  NSString reason() const { return send<"reason", NSString>(*this); }
  NSDictionary userInfo() const { return send<"userInfo", NSDictionary>(*this); }
  /// Where it was raised first: return addresses as numbers, the innermost first. Empty when it was
  /// not raised. Addresses are taken as the machine has them, behind the calls.
  NSArray callStackReturnAddresses() const {
    return send<"callStackReturnAddresses", NSArray>(*this);
  }
  /// The same as text: a line for each address with image, symbol and address.
  NSArray callStackSymbols() const { return send<"callStackSymbols", NSArray>(*this); }
};

/// What raising throws. `what()` is "name: reason", for programs that catch std::exception only.
class BRINDLE_PLATFORM_EXPORT RaisedException : public std::exception {
 public:
  explicit RaisedException(const NSException& exception);
  RaisedException(const RaisedException&) noexcept;
  RaisedException& operator=(const RaisedException&) = delete;
  ~RaisedException() override;

  [[nodiscard]] const NSException& exception() const noexcept { return exception_; }
  [[nodiscard]] const char* what() const noexcept override;

 private:
  NSException exception_;
  NSString text_;
};

}  // namespace brindle
