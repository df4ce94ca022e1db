// An error object: what a recoverable failure was, for programs (domain and code) and for people
// (the texts in its information).
//
//   NSError error = nullptr;
//   if (!archive->unpack(path, &error)) std::cerr << error->localizedDescription() << '\n';
//
// Immutable; may be used by many threads at once.
#pragma once

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

extern "C" {
/// The domain of errors whose codes are the system's `errno`.
BRINDLE_PLATFORM_EXPORT extern const NSString NSPOSIXErrorDomain;
// Keys of an error's information, and what their values are.
/// Strings.
BRINDLE_PLATFORM_EXPORT extern const NSString NSLocalizedDescriptionKey;
BRINDLE_PLATFORM_EXPORT extern const NSString NSLocalizedFailureReasonErrorKey;
BRINDLE_PLATFORM_EXPORT extern const NSString NSLocalizedRecoverySuggestionErrorKey;
/// An array of strings: what the buttons of an alert say.
BRINDLE_PLATFORM_EXPORT extern const NSString NSLocalizedRecoveryOptionsErrorKey;
/// The object that recovers.
BRINDLE_PLATFORM_EXPORT extern const NSString NSRecoveryAttempterErrorKey;
/// The error that caused this one.
BRINDLE_PLATFORM_EXPORT extern const NSString NSUnderlyingErrorKey;
/// A string.
BRINDLE_PLATFORM_EXPORT extern const NSString NSFilePathErrorKey;
}

class NSError : public Interface<NSError, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSError> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// A nil domain raises NSInvalidArgumentException; the information may be nil.
    Self errorWithDomain(const NSString& domain, NSInteger code,
                         const NSDictionary& userInfo) const {
      return send<"errorWithDomain:code:userInfo:", Self>(*this, domain, code, userInfo);
    }
  };
  static NSError errorWithDomain(const NSString& domain, NSInteger code,
                                 const NSDictionary& userInfo) {
    return class_()->errorWithDomain(domain, code, userInfo);
  }

  NSError initWithDomain(const NSString& domain, NSInteger code,
                         const NSDictionary& userInfo) const {
    return send<"initWithDomain:code:userInfo:", NSError>(*this, domain, code, userInfo);
  }

  NSString domain() const { return send<"domain", NSString>(*this); }
  NSInteger code() const { return send<"code", NSInteger>(*this); }
  /// Never nil but for nil.
  NSDictionary userInfo() const { return send<"userInfo", NSDictionary>(*this); }
  /// From the information; otherwise the system's text for a code of its own, or a text with domain
  /// and code.
  NSString localizedDescription() const { return send<"localizedDescription", NSString>(*this); }
  /// From the information; nil when it is not there.
  NSString localizedFailureReason() const {
    return send<"localizedFailureReason", NSString>(*this);
  }
  NSString localizedRecoverySuggestion() const {
    return send<"localizedRecoverySuggestion", NSString>(*this);
  }
  NSArray localizedRecoveryOptions() const {
    return send<"localizedRecoveryOptions", NSArray>(*this);
  }
  id recoveryAttempter() const { return send<"recoveryAttempter", id>(*this); }
};

}  // namespace brindle
