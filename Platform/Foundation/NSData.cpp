#include <Brindle/Platform/NSData.h>

#include <algorithm>
#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSMutableData.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/DataStorage.h"
#include "Platform/Foundation/Internal/FileContents.h"
#include "Platform/Foundation/Internal/PathAccess.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace {

using detail::bytesOf;

id makeOfClass(const Class& cls, const void* bytes, NSUInteger length) {
  return send<"initWithBytes:length:", id>(send<"alloc", id>(cls), bytes, length);
}

bool areEqual(const NSData& self, const NSData& other) {
  return self == other || (other && self->view() == other->view());
}

// "<0a0b0c0d 0e>": groups of four bytes.
NSString described(std::string_view bytes) {
  std::string text = "<";
  constexpr char kDigits[] = "0123456789abcdef";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0 && i % 4 == 0) text += ' ';
    const auto byte = static_cast<unsigned char>(bytes[i]);
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 15U];
  }
  return text + ">";
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"data">([](const Class& self) { return makeOfClass(self, nullptr, 0); }),
    classMethod<"dataWithBytes:length:">(
        [](const Class& self, const void* bytes, NSUInteger length) {
          return makeOfClass(self, bytes, length);
        }),
    classMethod<"dataWithData:">([](const Class& self, const NSData& other) {
      return send<"initWithData:", id>(send<"alloc", id>(self), other);
    }),
    classMethod<"dataWithContentsOfFile:">([](const Class& self, const NSString& path) -> id {
      const auto name = detail::fileNameOf(path);
      std::string bytes;
      if (!name || internal::readFile(*name, bytes) != 0) return nullptr;
      return makeOfClass(self, bytes.data(), bytes.size());
    }),
    method<"init">([](const NSData& self) -> id { return self->initWithBytes(nullptr, 0); }),
    method<"initWithBytes:length:">(
        [](const NSData& self, Cmd cmd, const void* bytes, NSUInteger length) -> id {
          if (bytes == nullptr && length > 0) {
            detail::raiseIn("NSInvalidArgumentException", self, cmd.selector, "no bytes");
          }
          bytesOf(self).assign(static_cast<const char*>(bytes), length);
          return self;
        }),
    method<"initWithData:">([](const NSData& self, const NSData& other) -> id {
      const std::string_view bytes = other->view();
      return self->initWithBytes(bytes.data(), bytes.size());
    }),
    method<"length">([](const NSData& self) -> NSUInteger { return bytesOf(self).size(); }),
    method<"bytes">([](const NSData& self) -> const void* { return bytesOf(self).data(); }),
    method<"getBytes:length:">([](const NSData& self, void* buffer, NSUInteger length) {
      const std::string_view bytes = self->view();
      std::copy_n(bytes.data(), std::min<std::size_t>(length, bytes.size()),
                  static_cast<char*>(buffer));
    }),
    method<"getBytes:range:">([](const NSData& self, Cmd cmd, void* buffer, NSRange range) {
      const std::string_view bytes = self->view();
      detail::requireRangeWithin(self, cmd.selector, range.location, range.length, bytes.size());
      std::copy_n(bytes.data() + range.location, range.length, static_cast<char*>(buffer));
    }),
    method<"subdataWithRange:">([](const NSData& self, Cmd cmd, NSRange range) {
      const std::string_view bytes = self->view();
      detail::requireRangeWithin(self, cmd.selector, range.location, range.length, bytes.size());
      return detail::makeData(std::string(bytes.substr(range.location, range.length)));
    }),
    method<"isEqual:">([](const NSData& self, const id& other) {
      return self == other || areEqual(self, dynCast<NSData>(other));
    }),
    method<"isEqualToData:">(
        [](const NSData& self, const NSData& other) { return areEqual(self, other); }),
    method<"hash">([](const NSData& self) -> NSUInteger {
      return std::hash<std::string_view>()(self->view());
    }),
    method<"writeToFile:atomically:">(
        [](const NSData& self, const NSString& path, bool atomically) {
          const auto name = detail::fileNameOf(path);
          return name && internal::writeFile(*name, self->view(), atomically) == 0;
        }),
    method<"description">([](const NSData& self) { return described(self->view()); }),
    method<"copyWithZone:">([](const NSData& self, NSZone*) -> id { return self; }),
    method<"mutableCopyWithZone:">([](const NSData& self, NSZone*) -> id {
      const std::string_view bytes = self->view();
      return makeOfClass(NSMutableData::class_(), bytes.data(), bytes.size());
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSMutableCopying};

constexpr ClassDefinition kDefinition{.name = "NSData",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<std::string>()};

}  // namespace

constinit ClassPair<NSData> NSData::classPair{kDefinition};

namespace detail {

std::string& bytesOf(const NSData& data) { return fieldsOf<std::string>(data); }

NSData makeData(std::string bytes) {
  auto data = adopt<NSData>(createInstance(&NSData::classPair.cls, 0));
  bytesOf(data) = std::move(bytes);
  return data;
}

}  // namespace detail
}  // namespace brindle
