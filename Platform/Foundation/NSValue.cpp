#include <Brindle/Platform/NSValue.h>

#include <cstring>
#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Runtime/Internal/SignatureData.h"

namespace brindle {
namespace {

struct Fields {
  std::string type;
  std::vector<unsigned char> bytes;
};

Fields& fields(const NSValue& self) { return fieldsOf<Fields>(self); }

// The bytes that a value of that encoding has; 0 when it is none.
std::size_t sizeOf(const char* type) {
  if (type == nullptr) return 0;
  const detail::SignatureData* data = detail::signatureData((std::string(type) + "@:").c_str());
  return data != nullptr && data->arguments.size() == 2 ? data->result.size : 0;
}

template <class T>
id make(const Class& cls, const T& value) {
  return send<"valueWithBytes:objCType:", id>(cls, static_cast<const void*>(&value),
                                              typeEncoding<T>());
}

template <class T>
T get(const NSValue& self) {
  T value{};
  if (std::strcmp(self->objCType(), typeEncoding<T>()) == 0) self->getValue(&value);
  return value;
}

bool areEqual(const NSValue& self, const NSValue& other) {
  if (self == other) return true;
  if (!other || std::strcmp(self->objCType(), other->objCType()) != 0) return false;
  const std::size_t size = sizeOf(self->objCType());
  std::vector<unsigned char> mine(size);
  std::vector<unsigned char> its(size);
  self->getValue(mine.data());
  other->getValue(its.data());
  return mine == its;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"valueWithBytes:objCType:">(
        [](const Class& self, const void* bytes, const char* type) {
          return send<"initWithBytes:objCType:", id>(send<"alloc", id>(self), bytes, type);
        }),
    classMethod<"valueWithPointer:">(
        [](const Class& self, void* pointer) { return make(self, pointer); }),
    classMethod<"valueWithNonretainedObject:">([](const Class& self, const id& object) {
      ObjectRecord* record = object.record();
      return send<"valueWithBytes:objCType:", id>(self, static_cast<const void*>(&record),
                                                  typeEncoding<id>());
    }),
    classMethod<"valueWithRange:">(
        [](const Class& self, NSRange range) { return make(self, range); }),
    method<"initWithBytes:objCType:">(
        [](const NSValue& self, Cmd cmd, const void* bytes, const char* type) -> id {
          const std::size_t size = sizeOf(type);
          if (size == 0 || bytes == nullptr) {
            detail::raiseIn("NSInvalidArgumentException", self, cmd.selector,
                            std::string("no bytes, or a type that is not known: ") +
                                (type != nullptr ? type : "null"));
          }
          fields(self).type = type;
          const auto* first = static_cast<const unsigned char*>(bytes);
          fields(self).bytes.assign(first, first + size);
          return self;
        }),
    method<"objCType">([](const NSValue& self) { return fields(self).type.c_str(); }),
    method<"getValue:">([](const NSValue& self, void* buffer) {
      const auto& bytes = fields(self).bytes;
      if (!bytes.empty()) std::memcpy(buffer, bytes.data(), bytes.size());
    }),
    method<"pointerValue">([](const NSValue& self) { return get<void*>(self); }),
    method<"nonretainedObjectValue">([](const NSValue& self) -> id {
      ObjectRecord* record = nullptr;
      if (std::strcmp(self->objCType(), typeEncoding<id>()) == 0) self->getValue(&record);
      return borrow<id>(record);
    }),
    method<"rangeValue">([](const NSValue& self) { return get<NSRange>(self); }),
    method<"isEqualToValue:">(
        [](const NSValue& self, const NSValue& other) { return areEqual(self, other); }),
    method<"isEqual:">([](const NSValue& self, const id& other) {
      return self == other || self->isEqualToValue(dynCast<NSValue>(other));
    }),
    method<"hash">([](const NSValue& self) -> NSUInteger {
      NSUInteger hash = 0;
      for (const unsigned char byte : fields(self).bytes) hash = hash * 31 + byte;
      return hash;
    }),
    method<"description">([](const NSValue& self) -> NSString {
      if (std::strcmp(self->objCType(), typeEncoding<NSRange>()) == 0) {
        return NSStringFromRange(self->rangeValue());
      }
      std::string text = "<";
      constexpr char kDigits[] = "0123456789abcdef";
      for (const unsigned char byte : fields(self).bytes) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
      }
      return text + ">";
    }),
    method<"copyWithZone:">([](const NSValue& self, NSZone*) -> id { return self; }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{.name = "NSValue",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSValue> NSValue::classPair{kDefinition};

}  // namespace brindle
