#include <Brindle/Platform/NSCoder.h>

#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSArray.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Coding.h"

namespace brindle {
namespace {

[[noreturn]] void refuse(const NSCoder& self, SEL selector) {
  detail::raiseIn("NSInvalidArgumentException", self, selector, "only defined for subclasses");
}

template <FixedString Name, class T>
constexpr MethodDefinition encoder() {
  return method<Name>(
      [](const NSCoder& self, Cmd cmd, T, const NSString&) { refuse(self, cmd.selector); });
}

template <FixedString Name, class T>
constexpr MethodDefinition objectEncoder() {
  return method<Name>(
      [](const NSCoder& self, Cmd cmd, const T&, const NSString&) { refuse(self, cmd.selector); });
}

template <FixedString Name, class T>
constexpr MethodDefinition decoder() {
  return method<Name>(
      [](const NSCoder& self, Cmd cmd, const NSString&) -> T { refuse(self, cmd.selector); });
}

NSString placeKey(NSUInteger place) {
  return NSString::stringWithFormat("NS.object.%lu"_ns, place);
}

constexpr MethodDefinition kMethods[] = {
    method<"allowsKeyedCoding">([](const NSCoder&) { return true; }),
    objectEncoder<"encodeObject:forKey:", id>(),
    objectEncoder<"encodeConditionalObject:forKey:", id>(),
    encoder<"encodeBool:forKey:", bool>(),
    encoder<"encodeInt:forKey:", int>(),
    encoder<"encodeInt32:forKey:", std::int32_t>(),
    encoder<"encodeInt64:forKey:", std::int64_t>(),
    encoder<"encodeInteger:forKey:", NSInteger>(),
    encoder<"encodeFloat:forKey:", float>(),
    encoder<"encodeDouble:forKey:", double>(),
    method<"encodeBytes:length:forKey:">([](const NSCoder& self, Cmd cmd, const void*, NSUInteger,
                                            const NSString&) { refuse(self, cmd.selector); }),
    decoder<"containsValueForKey:", bool>(),
    decoder<"decodeObjectForKey:", id>(),
    decoder<"decodeBoolForKey:", bool>(),
    decoder<"decodeIntForKey:", int>(),
    decoder<"decodeInt32ForKey:", std::int32_t>(),
    decoder<"decodeInt64ForKey:", std::int64_t>(),
    decoder<"decodeIntegerForKey:", NSInteger>(),
    decoder<"decodeFloatForKey:", float>(),
    decoder<"decodeDoubleForKey:", double>(),
    method<"decodeBytesForKey:returnedLength:">(
        [](const NSCoder& self, Cmd cmd, const NSString&, NSUInteger*) -> const void* {
          refuse(self, cmd.selector);
        }),
    // How collections write their members: coders that know nothing better get them one by one.
    method<"_encodeArrayOfObjects:forKey:">(
        [](const NSCoder& self, const NSArray& objects, const NSString&) {
          NSUInteger place = 0;
          for (const id& object : detail::copyItems(objects)) {
            self->encodeObject(object, placeKey(place++));
          }
        }),
    method<"_decodeArrayOfObjectsForKey:">([](const NSCoder& self, const NSString&) -> NSArray {
      std::vector<id> objects;
      for (NSString key = placeKey(0); self->containsValueForKey(key);
           key = placeKey(objects.size())) {
        id object = self->decodeObjectForKey(key);
        if (!object) return nullptr;
        objects.push_back(std::move(object));
      }
      return detail::makeArray(std::move(objects));
    }),
};

constexpr ClassDefinition kDefinition{.name = "NSCoder", .methods = kMethods};

}  // namespace

constinit ClassPair<NSCoder> NSCoder::classPair{kDefinition};
constinit ProtocolRecord kNSCoding{"NSCoding"};

}  // namespace brindle
