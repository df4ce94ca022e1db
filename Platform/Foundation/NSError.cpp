#include <Brindle/Platform/NSError.h>

#include <system_error>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSCopying.h>

#include "Platform/Foundation/Internal/Arguments.h"

namespace brindle {
namespace {

struct Fields {
  Field<NSString> domain;
  NSInteger code = 0;
  Field<NSDictionary> userInfo;
};

Fields& fields(const NSError& self) { return fieldsOf<Fields>(self); }

// The value of that key when it is of the right kind.
template <Reference T>
T information(const NSError& self, const NSString& key) {
  return dynCast<T>(self->userInfo()->objectForKey(key));
}

NSString describe(const NSError& self) {
  if (const auto text = information<NSString>(self, NSLocalizedDescriptionKey)) return text;
  if (self->domain()->isEqualToString(NSPOSIXErrorDomain)) {
    return std::generic_category().message(static_cast<int>(self->code()));
  }
  return NSString::stringWithFormat("The operation couldn\u2019t be completed. (%@ error %ld.)"_ns,
                                    self->domain(), self->code());
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"errorWithDomain:code:userInfo:">([](const Class& self, const NSString& domain,
                                                     NSInteger code, const NSDictionary& info) {
      return send<"initWithDomain:code:userInfo:", id>(send<"alloc", id>(self), domain, code, info);
    }),
    method<"initWithDomain:code:userInfo:">([](const NSError& self, Cmd cmd, const NSString& domain,
                                               NSInteger code, const NSDictionary& info) -> id {
      detail::requireArgument(self, cmd.selector, domain);
      fields(self).domain = domain->copy();
      fields(self).code = code;
      fields(self).userInfo = info ? info->copy() : NSDictionary::dictionary();
      return self;
    }),
    method<"domain">([](const NSError& self) -> NSString { return fields(self).domain; }),
    method<"code">([](const NSError& self) { return fields(self).code; }),
    method<"userInfo">([](const NSError& self) -> NSDictionary { return fields(self).userInfo; }),
    method<"localizedDescription">([](const NSError& self) { return describe(self); }),
    method<"localizedFailureReason">([](const NSError& self) {
      return information<NSString>(self, NSLocalizedFailureReasonErrorKey);
    }),
    method<"localizedRecoverySuggestion">([](const NSError& self) {
      return information<NSString>(self, NSLocalizedRecoverySuggestionErrorKey);
    }),
    method<"localizedRecoveryOptions">([](const NSError& self) {
      return information<NSArray>(self, NSLocalizedRecoveryOptionsErrorKey);
    }),
    method<"recoveryAttempter">([](const NSError& self) {
      return self->userInfo()->objectForKey(NSRecoveryAttempterErrorKey);
    }),
    method<"isEqual:">([](const NSError& self, const id& other) {
      if (self == other) return true;
      const auto its = dynCast<NSError>(other);
      return its && self->code() == its->code() && self->domain()->isEqual(its->domain()) &&
             self->userInfo()->isEqual(its->userInfo());
    }),
    method<"hash">([](const NSError& self) -> NSUInteger {
      return self->domain()->hash() ^ static_cast<NSUInteger>(self->code());
    }),
    method<"description">([](const NSError& self) {
      return NSString::stringWithFormat("Error Domain=%@ Code=%ld \"%@\""_ns, self->domain(),
                                        self->code(), self->localizedDescription());
    }),
    method<"copyWithZone:">([](const NSError& self, NSZone*) -> id { return self; }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{.name = "NSError",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSError> NSError::classPair{kDefinition};

constinit const NSString NSPOSIXErrorDomain = "NSPOSIXErrorDomain"_ns;
constinit const NSString NSLocalizedDescriptionKey = "NSLocalizedDescription"_ns;
constinit const NSString NSLocalizedFailureReasonErrorKey = "NSLocalizedFailureReason"_ns;
constinit const NSString NSLocalizedRecoverySuggestionErrorKey = "NSLocalizedRecoverySuggestion"_ns;
constinit const NSString NSLocalizedRecoveryOptionsErrorKey = "NSLocalizedRecoveryOptions"_ns;
constinit const NSString NSRecoveryAttempterErrorKey = "NSRecoveryAttempter"_ns;
constinit const NSString NSUnderlyingErrorKey = "NSUnderlyingError"_ns;
constinit const NSString NSFilePathErrorKey = "NSFilePath"_ns;

}  // namespace brindle
