#include <Brindle/Platform/NSException.h>

#include <execinfo.h>

#include <cstdlib>
#include <memory>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSNumber.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle {
namespace {

constexpr int kDeepestTrace = 256;

struct Fields {
  Field<NSString> name;
  Field<NSString> reason;
  Field<NSDictionary> userInfo;
  std::vector<void*> addresses;
};

Fields& fields(const NSException& self) { return fieldsOf<Fields>(self); }

// The frame of this function is left out.
[[gnu::noinline]] std::vector<void*> returnAddresses() {
  void* addresses[kDeepestTrace];
  const int count = ::backtrace(addresses, kDeepestTrace);
  return count > 1 ? std::vector<void*>(addresses + 1, addresses + count) : std::vector<void*>();
}

bool equalOrBothNil(const id& a, const id& b) { return a == b || send<"isEqual:", bool>(a, b); }

constexpr MethodDefinition kMethods[] = {
    classMethod<"exceptionWithName:reason:userInfo:">([](const Class& self, const NSString& name,
                                                         const NSString& reason,
                                                         const NSDictionary& userInfo) {
      return send<"initWithName:reason:userInfo:", id>(send<"alloc", id>(self), name, reason,
                                                       userInfo);
    }),
    classMethod<"raise:format:">([](const Class& self, const NSString& name, const NSString& format,
                                    const FormatArguments& arguments) {
      const NSString reason = detail::formatString(format, arguments.list);
      const auto made = send<"exceptionWithName:reason:userInfo:", NSException>(self, name, reason,
                                                                                NSDictionary());
      send<"raise">(made);
    }),
    method<"initWithName:reason:userInfo:">([](const NSException& self, Cmd cmd,
                                               const NSString& name, const NSString& reason,
                                               const NSDictionary& userInfo) -> id {
      detail::requireArgument(self, cmd.selector, name);
      fields(self).name = name->copy();
      fields(self).reason = reason->copy();
      fields(self).userInfo = userInfo;
      return self;
    }),
    method<"raise">([](const NSException& self) {
      auto& addresses = fields(self).addresses;
      if (addresses.empty()) addresses = returnAddresses();
      throw RaisedException(self);
    }),
    method<"name">([](const NSException& self) -> NSString { return fields(self).name; }),
    method<"reason">([](const NSException& self) -> NSString { return fields(self).reason; }),
    method<"userInfo">(
        [](const NSException& self) -> NSDictionary { return fields(self).userInfo; }),
    method<"callStackReturnAddresses">([](const NSException& self) {
      std::vector<id> numbers;
      for (void* address : fields(self).addresses) {
        numbers.push_back(NSNumber::numberWithUnsignedInteger(
            reinterpret_cast<NSUInteger>(address)));  // NOLINT: an address as a number
      }
      return detail::makeArray(std::move(numbers));
    }),
    method<"callStackSymbols">([](const NSException& self) {
      const auto& addresses = fields(self).addresses;
      if (addresses.empty()) return NSArray::array();
      const int count = static_cast<int>(addresses.size());
      const std::unique_ptr<char*, void (*)(void*)> lines(
          ::backtrace_symbols(addresses.data(), count), &std::free);
      std::vector<id> symbols;
      for (int i = 0; i < count && lines; ++i) symbols.push_back(NSString(lines.get()[i]));
      return detail::makeArray(std::move(symbols));
    }),
    method<"isEqual:">([](const NSException& self, const id& other) {
      if (self == other) return true;
      const auto its = dynCast<NSException>(other);
      return its && equalOrBothNil(self->name(), its->name()) &&
             equalOrBothNil(self->reason(), its->reason()) &&
             equalOrBothNil(self->userInfo(), its->userInfo());
    }),
    method<"hash">([](const NSException& self) { return self->name()->hash(); }),
    method<"description">([](const NSException& self) {
      const NSString reason = self->reason();
      return reason ? reason : self->name();
    }),
    method<"copyWithZone:">([](const NSException& self, NSZone*) -> id { return self; }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{.name = "NSException",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

// How the object model raises, now that there are exception objects.
[[gnu::constructor]] void installRaising() {
  detail::setRaiseHandler([](const char* name, const std::string& reason) {
    NSException::raise(NSString(name), "%@"_ns, NSString(reason));
  });
  // The first trace loads a library: not in the middle of a failure.
  static_cast<void>(returnAddresses());
}

}  // namespace

constinit ClassPair<NSException> NSException::classPair{kDefinition};

constinit const NSString NSGenericException = "NSGenericException"_ns;
constinit const NSString NSRangeException = "NSRangeException"_ns;
constinit const NSString NSInvalidArgumentException = "NSInvalidArgumentException"_ns;
constinit const NSString NSInternalInconsistencyException = "NSInternalInconsistencyException"_ns;
constinit const NSString NSUndefinedKeyException = "NSUndefinedKeyException"_ns;
constinit const NSString NSObjectInaccessibleException = "NSObjectInaccessibleException"_ns;
constinit const NSString NSObjectNotAvailableException = "NSObjectNotAvailableException"_ns;
constinit const NSString NSMallocException = "NSMallocException"_ns;

RaisedException::RaisedException(const NSException& exception)
    : exception_(exception),
      text_(NSString::stringWithFormat("%@: %@"_ns, exception->name(), exception->reason())) {
  static_cast<void>(text_->UTF8String());  // made now, since `what` must not fail
}
RaisedException::RaisedException(const RaisedException&) noexcept = default;
RaisedException::~RaisedException() = default;
const char* RaisedException::what() const noexcept { return text_->UTF8String(); }

}  // namespace brindle
