#include <Brindle/Platform/NSNumber.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/NumberKind.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace {

using detail::NumberValue;

// Small integers are made once. Their type is not int for all, so only those made as int share.
constexpr int kLeastShared = -1;
constexpr int kGreatestShared = 12;

NumberValue& valueOf(const NSNumber& self) { return fieldsOf<NumberValue>(self); }

bool isLibraryNumber(const id& number) {
  return number.record()->isa.load(std::memory_order_acquire) == &NSNumber::classPair.cls;
}

NSNumber make(NumberValue value) {
  auto number = adopt<NSNumber>(detail::createInstance(&NSNumber::classPair.cls, 0));
  valueOf(number) = value;
  return number;
}

NSNumber immortal(NumberValue value) {
  NSNumber number = make(value);
  detail::makeImmortal(number.record());
  return number;
}

NSNumber truth(bool value) {
  static const NSNumber& yes = *new NSNumber(immortal(NumberValue::ofTruth(true)));
  static const NSNumber& no = *new NSNumber(immortal(NumberValue::ofTruth(false)));
  return value ? yes : no;
}

NSNumber small(int value) {
  static const auto& shared = *[] {
    auto* numbers = new std::array<NSNumber, kGreatestShared - kLeastShared + 1>();
    for (int i = kLeastShared; i <= kGreatestShared; ++i) {
      (*numbers)[static_cast<std::size_t>(i - kLeastShared)] =
          immortal(NumberValue::ofSigned(i, 'i'));
    }
    return numbers;
  }();
  return shared[static_cast<std::size_t>(value - kLeastShared)];
}

template <class T>
NSNumber makeNumber(T value) {
  constexpr char kType = typeEncoding<T>()[0];
  if constexpr (std::is_same_v<T, int>) {
    if (value >= kLeastShared && value <= kGreatestShared) return small(value);
  }
  if constexpr (std::floating_point<T>)
    return make(NumberValue::ofReal(value, kType));
  else if constexpr (std::is_signed_v<T>)
    return make(NumberValue::ofSigned(value, kType));
  else
    return make(NumberValue::ofUnsigned(value, kType));
}

template <FixedString Name, class T>
constexpr MethodDefinition maker() {
  return classMethod<Name>([](const Class&, T value) { return makeNumber<T>(value); });
}

template <class T>
T converted(const NumberValue& value) {
  if constexpr (std::floating_point<T>) {
    switch (value.kind) {
      case NumberValue::Kind::real:
        return static_cast<T>(value.real);
      case NumberValue::Kind::unsignedInteger:
        return static_cast<T>(value.bits);
      default:
        return static_cast<T>(static_cast<std::int64_t>(value.bits));
    }
  } else {
    if (value.kind != NumberValue::Kind::real) return static_cast<T>(value.bits);
    if (std::isnan(value.real)) return 0;
    // The limits are powers of two, or one less, which a double rounds up to a power of two.
    if (value.real >= static_cast<double>(std::numeric_limits<T>::max())) {
      return std::numeric_limits<T>::max();
    }
    if (value.real <= static_cast<double>(std::numeric_limits<T>::min())) {
      return std::numeric_limits<T>::min();
    }
    return static_cast<T>(value.real);
  }
}

template <FixedString Name, class T>
constexpr MethodDefinition getter() {
  return method<Name>([](const NSNumber& self) -> T { return converted<T>(valueOf(self)); });
}

NSString text(const NumberValue& value) {
  char buffer[64];
  switch (value.kind) {
    case NumberValue::Kind::real:
      std::snprintf(buffer, sizeof buffer, value.type == 'f' ? "%0.7g" : "%0.16g", value.real);
      break;
    case NumberValue::Kind::unsignedInteger:
      std::snprintf(buffer, sizeof buffer, "%llu", static_cast<unsigned long long>(value.bits));
      break;
    default:
      std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(value.bits));
      break;
  }
  return buffer;
}

void store(const NumberValue& value, void* buffer) {
  const auto put = [buffer](auto number) { std::memcpy(buffer, &number, sizeof number); };
  switch (value.type) {
    case 'f':
      return put(static_cast<float>(value.real));
    case 'd':
      return put(value.real);
    case 's':
    case 'S':
      return put(static_cast<std::uint16_t>(value.bits));
    case 'i':
    case 'I':
      return put(static_cast<std::uint32_t>(value.bits));
    case 'c':
    case 'C':
      return put(static_cast<std::uint8_t>(value.bits));
    default:
      return put(value.bits);
  }
}

// A client's own kind of number is asked for its value.
NumberValue read(const NSNumber& number) {
  if (isLibraryNumber(number)) return valueOf(number);
  const char type = number->objCType()[0];
  if (type == 'f' || type == 'd') return NumberValue::ofReal(number->doubleValue(), type);
  if (type == 'Q') return NumberValue::ofUnsigned(number->unsignedLongLongValue(), type);
  return NumberValue::ofSigned(number->longLongValue(), type);
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"numberWithBool:">([](const Class&, bool value) { return truth(value); }),
    maker<"numberWithChar:", signed char>(),
    maker<"numberWithUnsignedChar:", unsigned char>(),
    maker<"numberWithShort:", short>(),
    maker<"numberWithUnsignedShort:", unsigned short>(),
    maker<"numberWithInt:", int>(),
    maker<"numberWithUnsignedInt:", unsigned>(),
    maker<"numberWithLong:", long>(),
    maker<"numberWithUnsignedLong:", unsigned long>(),
    maker<"numberWithLongLong:", long long>(),
    maker<"numberWithUnsignedLongLong:", unsigned long long>(),
    maker<"numberWithInteger:", NSInteger>(),
    maker<"numberWithUnsignedInteger:", NSUInteger>(),
    maker<"numberWithFloat:", float>(),
    maker<"numberWithDouble:", double>(),
    method<"boolValue">([](const NSNumber& self) {
      const NumberValue& value = valueOf(self);
      return value.kind == NumberValue::Kind::real ? value.real != 0 : value.bits != 0;
    }),
    getter<"charValue", signed char>(),
    getter<"unsignedCharValue", unsigned char>(),
    getter<"shortValue", short>(),
    getter<"unsignedShortValue", unsigned short>(),
    getter<"intValue", int>(),
    getter<"unsignedIntValue", unsigned>(),
    getter<"longValue", long>(),
    getter<"unsignedLongValue", unsigned long>(),
    getter<"longLongValue", long long>(),
    getter<"unsignedLongLongValue", unsigned long long>(),
    getter<"integerValue", NSInteger>(),
    getter<"unsignedIntegerValue", NSUInteger>(),
    getter<"floatValue", float>(),
    getter<"doubleValue", double>(),
    method<"stringValue">([](const NSNumber& self) { return text(read(self)); }),
    method<"description">([](const NSNumber& self) { return self->stringValue(); }),
    method<"objCType">([](const NSNumber& self) -> const char* {
      return detail::encodingOfNumber(valueOf(self).type);
    }),
    method<"getValue:">([](const NSNumber& self, void* buffer) { store(valueOf(self), buffer); }),
    method<"compare:">([](const NSNumber& self, const NSNumber& other) {
      return other ? detail::compareNumbers(read(self), read(other)) : NSOrderedDescending;
    }),
    method<"isEqualToNumber:">([](const NSNumber& self, const NSNumber& other) {
      return self == other || (other && self->compare(other) == NSOrderedSame);
    }),
    method<"isEqualToValue:">([](const NSNumber& self, const NSValue& other) {
      return isa<NSNumber>(other) && self->isEqualToNumber(uncheckedCast<NSNumber>(other));
    }),
    method<"isEqual:">([](const NSNumber& self, const id& other) {
      if (self == other) return true;
      return isa<NSNumber>(other) && self->isEqualToNumber(uncheckedCast<NSNumber>(other));
    }),
    method<"hash">([](const NSNumber& self) { return detail::hashOfNumber(read(self)); }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSNumber", .methods = kMethods, .fields = fieldsDefinition<NumberValue>()};

}  // namespace

constinit ClassPair<NSNumber> NSNumber::classPair{kDefinition};

}  // namespace brindle
