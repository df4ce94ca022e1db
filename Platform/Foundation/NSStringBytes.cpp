// Strings as bytes in an encoding, and back.
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSData.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Foundation/Internal/TextEncoding.h"

namespace brindle {
namespace {

using internal::Text;
using internal::TextEncoding;
using internal::TextView;

std::optional<TextEncoding> encodingOf(NSStringEncoding encoding) {
  switch (encoding) {
    case NSASCIIStringEncoding:
      return TextEncoding::ascii;
    case NSUTF8StringEncoding:
      return TextEncoding::utf8;
    case NSISOLatin1StringEncoding:
      return TextEncoding::latin1;
    case NSUTF16StringEncoding:
      return TextEncoding::utf16;
    case NSUTF16BigEndianStringEncoding:
      return TextEncoding::utf16BigEndian;
    case NSUTF16LittleEndianStringEncoding:
      return TextEncoding::utf16LittleEndian;
    default:
      return std::nullopt;
  }
}

std::optional<Text> decoded(const void* bytes, NSUInteger length, NSStringEncoding encoding) {
  const auto known = encodingOf(encoding);
  if (!known || (bytes == nullptr && length > 0)) return std::nullopt;
  return internal::decodeText({static_cast<const char*>(bytes), length}, *known);
}

std::optional<std::string> encoded(const NSString& self, NSStringEncoding encoding, bool lossy) {
  const auto known = encodingOf(encoding);
  if (!known) return std::nullopt;
  return internal::encodeText(detail::StringText(self), *known, lossy);
}

id initialized(const NSString& self, const std::optional<Text>& text) {
  if (!text) return nullptr;
  return self->initWithString(detail::makeString(*text));
}

// Bytes that live until the pool is drained, and a zero unit behind them: as the units of a string
// that has one byte for each.
const char* autoreleasedBytes(std::string bytes) {
  bytes.push_back('\0');
  const NSString holder = detail::makeString(TextView::latin1(bytes)).autorelease();
  return static_cast<const char*>(detail::contentsOf(holder.record()).units);
}

// ASCII text is its own UTF-8; other text gets a copy, which stays with the string.
const char* utf8Of(const NSString& self) {
  if (!detail::isImmutableLibraryString(self.record())) {
    return autoreleasedBytes(internal::utf8FromText(detail::StringText(self)));
  }
  detail::StringContents& contents = detail::contentsOf(self.record());
  const TextView text = detail::textIn(contents);
  if (text.isNarrow() && text.isAscii()) return text.bytes().data();
  const char* known = contents.utf8.load(std::memory_order_acquire);
  if (known != nullptr) return known;
  const std::string bytes = internal::utf8FromText(text);
  auto* made = static_cast<char*>(std::malloc(bytes.size() + 1));
  if (made == nullptr) throw std::bad_alloc();
  std::memcpy(made, bytes.c_str(), bytes.size() + 1);
  if (contents.utf8.compare_exchange_strong(known, made, std::memory_order_acq_rel)) return made;
  std::free(made);  // another thread was first
  return known;
}

void requireBytes(const id& self, SEL selector, const char* bytes) {
  if (bytes == nullptr) {
    detail::raiseIn("NSInvalidArgumentException", self, selector, "null argument");
  }
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"defaultCStringEncoding">(
        [](const Class&) -> NSStringEncoding { return NSUTF8StringEncoding; }),
    classMethod<"stringWithUTF8String:">([](const Class& self, Cmd cmd, const char* bytes) -> id {
      requireBytes(self, cmd.selector, bytes);
      const auto text = internal::textFromUtf8(bytes);
      if (!text) return nullptr;
      return detail::makeStringOfClass(self, *text);
    }),
    classMethod<"stringWithCString:encoding:">(
        [](const Class& self, Cmd cmd, const char* bytes, NSStringEncoding encoding) -> id {
          requireBytes(self, cmd.selector, bytes);
          const auto text = decoded(bytes, std::strlen(bytes), encoding);
          if (!text) return nullptr;
          return detail::makeStringOfClass(self, *text);
        }),
    method<"initWithUTF8String:">([](const NSString& self, Cmd cmd, const char* bytes) {
      requireBytes(self, cmd.selector, bytes);
      return initialized(self, internal::textFromUtf8(bytes));
    }),
    method<"initWithCString:encoding:">(
        [](const NSString& self, Cmd cmd, const char* bytes, NSStringEncoding encoding) {
          requireBytes(self, cmd.selector, bytes);
          return initialized(self, decoded(bytes, std::strlen(bytes), encoding));
        }),
    method<"initWithBytes:length:encoding:">(
        [](const NSString& self, const void* bytes, NSUInteger length, NSStringEncoding encoding) {
          return initialized(self, decoded(bytes, length, encoding));
        }),
    method<"initWithData:encoding:">(
        [](const NSString& self, const NSData& data, NSStringEncoding encoding) -> id {
          if (!data) return nullptr;
          return initialized(self, decoded(data->bytes(), data->length(), encoding));
        }),

    method<"UTF8String">([](const NSString& self) { return utf8Of(self); }),
    method<"cStringUsingEncoding:">(
        [](const NSString& self, NSStringEncoding encoding) -> const char* {
          if (encoding == NSUTF8StringEncoding) return self->UTF8String();
          auto bytes = encoded(self, encoding, false);
          return bytes ? autoreleasedBytes(std::move(*bytes)) : nullptr;
        }),
    method<"dataUsingEncoding:">([](const NSString& self, NSStringEncoding encoding) {
      return self->dataUsingEncoding(encoding, false);
    }),
    method<"dataUsingEncoding:allowLossyConversion:">(
        [](const NSString& self, NSStringEncoding encoding, bool lossy) -> NSData {
          const auto bytes = encoded(self, encoding, lossy);
          if (!bytes) return nullptr;
          return NSData::dataWithBytes(bytes->data(), bytes->size());
        }),
    method<"canBeConvertedToEncoding:">([](const NSString& self, NSStringEncoding encoding) {
      return encoded(self, encoding, false).has_value();
    }),
    method<"lengthOfBytesUsingEncoding:">(
        [](const NSString& self, NSStringEncoding encoding) -> NSUInteger {
          const auto bytes = encoded(self, encoding, false);
          return bytes ? bytes->size() : 0;
        }),
};

}  // namespace

constinit const CategoryDefinition detail::kNSStringBytes{
    .name = "NSStringBytes", .cls = &NSString::classPair.cls, .methods = kMethods};

NSString NSString::initWithData(const NSData& data, NSStringEncoding encoding) const {
  return send<"initWithData:encoding:", NSString>(*this, data, encoding);
}
NSData NSString::dataUsingEncoding(NSStringEncoding encoding) const {
  return send<"dataUsingEncoding:", NSData>(*this, encoding);
}
NSData NSString::dataUsingEncoding(NSStringEncoding encoding, bool allowLossyConversion) const {
  return send<"dataUsingEncoding:allowLossyConversion:", NSData>(*this, encoding,
                                                                 allowLossyConversion);
}

}  // namespace brindle
