#include "Platform/Foundation/Internal/KeyValueTypes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <vector>

#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSValue.h>

#include "Platform/Runtime/Internal/Forwarding.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle::detail {
namespace {

// Calls `body` with a zero of the number type that the code stands for.
template <class Body>
auto withType(char code, const Body& body) {
  switch (code) {
    case 'B':
      return body(false);
    case 'c':
      return body(static_cast<signed char>(0));
    case 'C':
      return body(static_cast<unsigned char>(0));
    case 's':
      return body(short{0});
    case 'S':
      return body(static_cast<unsigned short>(0));
    case 'i':
    case 'l':  // of four bytes, as the platform has it
      return body(0);
    case 'I':
    case 'L':
      return body(0U);
    case 'q':
      return body(0LL);
    case 'Q':
      return body(0ULL);
    case 'f':
      return body(0.0F);
    default:
      return body(0.0);
  }
}

NSNumber boxed(bool value) { return NSNumber::numberWithBool(value); }
// The encoding of a truth value is that of a character.
NSNumber boxed(signed char value) {
  if (value == 0 || value == 1) return NSNumber::numberWithBool(value == 1);
  return NSNumber::class_()->numberWithChar(value);
}
NSNumber boxed(unsigned char value) { return NSNumber::class_()->numberWithUnsignedChar(value); }
NSNumber boxed(short value) { return NSNumber::class_()->numberWithShort(value); }
NSNumber boxed(unsigned short value) { return NSNumber::class_()->numberWithUnsignedShort(value); }
NSNumber boxed(int value) { return NSNumber::numberWithInt(value); }
NSNumber boxed(unsigned value) { return NSNumber::numberWithUnsignedInt(value); }
NSNumber boxed(long long value) { return NSNumber::numberWithLongLong(value); }
NSNumber boxed(unsigned long long value) { return NSNumber::numberWithUnsignedLongLong(value); }
NSNumber boxed(float value) { return NSNumber::numberWithFloat(value); }
NSNumber boxed(double value) { return NSNumber::numberWithDouble(value); }

// By message: a string has an `intValue` too.
bool unboxed(const id& value, bool) { return send<"boolValue", bool>(value); }
signed char unboxed(const id& value, signed char) { return send<"charValue", signed char>(value); }
unsigned char unboxed(const id& value, unsigned char) {
  return send<"unsignedCharValue", unsigned char>(value);
}
short unboxed(const id& value, short) { return send<"shortValue", short>(value); }
unsigned short unboxed(const id& value, unsigned short) {
  return send<"unsignedShortValue", unsigned short>(value);
}
int unboxed(const id& value, int) { return send<"intValue", int>(value); }
unsigned unboxed(const id& value, unsigned) { return send<"unsignedIntValue", unsigned>(value); }
long long unboxed(const id& value, long long) { return send<"longLongValue", long long>(value); }
unsigned long long unboxed(const id& value, unsigned long long) {
  return send<"unsignedLongLongValue", unsigned long long>(value);
}
float unboxed(const id& value, float) { return send<"floatValue", float>(value); }
double unboxed(const id& value, double) { return send<"doubleValue", double>(value); }

id boxedBytes(const void* bytes, const KeyValueType& type) {
  return NSValue::valueWithBytes(bytes, type.encoding.c_str());
}

std::vector<std::byte> unboxedBytes(const id& value, const KeyValueType& type) {
  const NSValue boxedValue = dynCast<NSValue>(value);
  const char* encoding = boxedValue ? boxedValue->objCType() : "@";
  if (encoding != type.encoding) {
    raise("NSInvalidArgumentException", "key-value coding: a value of type " +
                                            std::string(encoding) + " where one of type " +
                                            type.encoding + " is wanted");
  }
  std::vector<std::byte> bytes(std::max<std::size_t>(type.size, 16));
  boxedValue->getValue(bytes.data());
  return bytes;
}

// Sends with a frame of values, for types that no send is written with. Answers the result.
std::vector<std::byte> sendWithFrame(const id& object, SEL selector, SignatureData& signature,
                                     void* argument) {
  ObjectRecord* record = object.record();
  std::array<void*, 3> frame{&record, &selector, argument};
  std::vector<std::byte> result(std::max<std::size_t>(signature.result.size, 16));
  sendFrame(record, selector, signature, frame.data(), result.data());
  return result;
}

id objectAt(const void* bytes) {
  ObjectRecord* record = nullptr;
  std::memcpy(&record, bytes, sizeof record);
  return borrow<id>(record);
}

}  // namespace

KeyValueType keyValueType(const char* encoding) {
  if (encoding == nullptr) return {};
  const std::string text = encoding + std::strspn(encoding, "rnNoORVA");
  SignatureData* data = signatureData((text + "@:").c_str());
  if (data == nullptr || data->arguments.size() != 2 || data->result.size == 0) return {};
  const bool isKnown = std::strchr("BcCsSiIlLqQfd@#", text[0]) != nullptr;
  return {isKnown ? text[0] : '\0', text, data->result.size, nullptr};
}

id boxedResult(const id& object, SEL selector, const KeyValueType& type) {
  if (type.isObject()) return sendSelector<id>(object, selector);
  if (type.code == 0) {
    return boxedBytes(sendWithFrame(object, selector, *type.signature, nullptr).data(), type);
  }
  return withType(type.code, [&](auto zero) -> id {
    return boxed(sendSelector<decltype(zero)>(object, selector));
  });
}

void callWithValue(const id& object, SEL selector, const KeyValueType& type, const id& value) {
  const bool isVoid = type.signature->result.wire == "v";
  if (type.isObject() && isVoid) return sendSelector<void>(object, selector, value);
  const auto callWith = [&](void* argument) {
    const auto result = sendWithFrame(object, selector, *type.signature, argument);
    // A result that is an object arrives owned.
    if (type.signature->result.wire == "@") {
      ObjectRecord* record = nullptr;
      std::memcpy(&record, result.data(), sizeof record);
      release(record);
    }
  };
  if (type.isObject()) {
    ObjectRecord* record = value.record();
    return callWith(&record);
  }
  if (type.code == 0) return callWith(unboxedBytes(value, type).data());
  withType(type.code, [&](auto zero) {
    auto number = unboxed(value, zero);
    if (isVoid) return sendSelector<void>(object, selector, number);
    callWith(&number);
  });
}

id boxedVariable(const void* variable, const KeyValueType& type) {
  if (type.isObject()) return objectAt(variable);
  if (type.code == 0) return boxedBytes(variable, type);
  return withType(type.code, [&](auto zero) -> id {
    std::memcpy(&zero, variable, sizeof zero);
    return boxed(zero);
  });
}

void setVariable(void* variable, const KeyValueType& type, const id& value) {
  if (type.code == '@') {
    *static_cast<id*>(variable) = value;  // a Field, which is a reference in its memory
  } else if (type.code == '#') {
    ObjectRecord* record = value.record();
    std::memcpy(variable, &record, sizeof record);
  } else if (type.code == 0) {
    std::memcpy(variable, unboxedBytes(value, type).data(), type.size);
  } else {
    withType(type.code, [&](auto zero) {
      const auto number = unboxed(value, zero);
      std::memcpy(variable, &number, sizeof number);
    });
  }
}

}  // namespace brindle::detail
