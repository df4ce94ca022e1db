#include <Brindle/Platform/NSMutableData.h>

#include <algorithm>

#include <Brindle/Platform/Definition.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/DataStorage.h"

namespace brindle {
namespace {

using detail::bytesOf;

// More is given only when it is needed: a capacity is a hint, and nobody has checked it.
constexpr NSUInteger kGreatestReserve = 1U << 24U;

void requireLength(const NSMutableData& self, SEL selector, NSUInteger length) {
  if (length <= bytesOf(self).max_size()) return;
  detail::raiseIn("NSInvalidArgumentException", self, selector,
                  "a length of " + std::to_string(length));
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"dataWithCapacity:">([](const Class& self, NSUInteger capacity) -> id {
      return send<"initWithCapacity:", id>(send<"alloc", id>(self), capacity);
    }),
    classMethod<"dataWithLength:">([](const Class& self, NSUInteger length) -> id {
      return send<"initWithLength:", id>(send<"alloc", id>(self), length);
    }),
    method<"initWithCapacity:">([](const NSMutableData& self, NSUInteger capacity) -> id {
      bytesOf(self).reserve(std::min(capacity, kGreatestReserve));
      return self;
    }),
    method<"initWithLength:">([](const NSMutableData& self, Cmd cmd, NSUInteger length) -> id {
      requireLength(self, cmd.selector, length);
      bytesOf(self).resize(length);
      return self;
    }),
    method<"mutableBytes">([](const NSMutableData& self) -> void* { return bytesOf(self).data(); }),
    method<"setLength:">([](const NSMutableData& self, Cmd cmd, NSUInteger length) {
      requireLength(self, cmd.selector, length);
      bytesOf(self).resize(length);
    }),
    method<"increaseLengthBy:">([](const NSMutableData& self, Cmd cmd, NSUInteger more) {
      const NSUInteger length = self->length();
      requireLength(self, cmd.selector, more > ~length ? ~NSUInteger{0} : length + more);
      self->setLength(length + more);
    }),
    method<"appendBytes:length:">(
        [](const NSMutableData& self, const void* bytes, NSUInteger length) {
          if (length > 0) bytesOf(self).append(static_cast<const char*>(bytes), length);
        }),
    method<"appendData:">([](const NSMutableData& self, const NSData& other) {
      const std::string_view bytes =
          other->view();  // it may be the receiver, which `append` allows
      if (!bytes.empty()) self->appendBytes(bytes.data(), bytes.size());
    }),
    method<"replaceBytesInRange:withBytes:length:">([](const NSMutableData& self, Cmd cmd,
                                                       NSRange range, const void* bytes,
                                                       NSUInteger length) {
      std::string& own = bytesOf(self);
      detail::requireRangeWithin(self, cmd.selector, range.location, 0, own.size());
      // The bytes may be the receiver's own.
      const std::string replacement(static_cast<const char*>(bytes), length);
      own.replace(range.location, range.length, replacement);
    }),
    method<"setData:">([](const NSMutableData& self, const NSData& other) {
      bytesOf(self) = std::string(other->view());
    }),
    method<"copyWithZone:">(
        [](const NSMutableData& self, NSZone*) -> id { return detail::makeData(bytesOf(self)); }),
};

constexpr ClassDefinition kDefinition{.name = "NSMutableData", .methods = kMethods};

}  // namespace

constinit ClassPair<NSMutableData> NSMutableData::classPair{kDefinition};

}  // namespace brindle
