// How the library's own classes are archived.
#include "Platform/Foundation/Internal/Coding.h"

#include <pthread.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSSet.h>

#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/SetStorage.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle {
namespace {

[[noreturn]] void raiseBroken(const id& self, const char* what) {
  detail::raise(
      "NSInvalidUnarchiveOperationException",
      std::string("keyed archive: an ") + class_getName(object_getClass(self)) + " " + what);
}

constexpr MethodDefinition kObjectMethods[] = {
    method<"classForCoder">([](const NSObject& self) { return classOf(self); }),
    method<"awakeAfterUsingCoder:">(
        [](const NSObject& self, const NSCoder&) -> id { return self; }),
};

constexpr MethodDefinition kStringMethods[] = {
    method<"encodeWithCoder:">([](const NSString& self, const NSCoder& coder) {
      // As an object this text would be nil.
      if (self->isEqualToString("$null"_ns)) return coder->encodeBytes("$null", 5, "NS.bytes"_ns);
      coder->encodeObject(detail::makeString(detail::StringText(self)), "NS.string"_ns);
    }),
    method<"initWithCoder:">([](const NSString& self, const NSCoder& coder) -> id {
      if (coder->containsValueForKey("NS.string"_ns)) {
        const auto text = dynCast<NSString>(coder->decodeObjectForKey("NS.string"_ns));
        if (!text) raiseBroken(self, "without its text");
        return self->initWithString(text);
      }
      NSUInteger length = 0;
      const void* bytes = coder->decodeBytesForKey("NS.bytes"_ns, &length);
      if (bytes == nullptr) raiseBroken(self, "without its text");
      return self->initWithBytes(bytes, length, NSUTF8StringEncoding);
    }),
};

constexpr MethodDefinition kDataMethods[] = {
    method<"encodeWithCoder:">([](const NSData& self, const NSCoder& coder) {
      coder->encodeObject(NSData(self->view()), "NS.data"_ns);
    }),
    method<"initWithCoder:">([](const NSData& self, const NSCoder& coder) -> id {
      const auto data = dynCast<NSData>(coder->decodeObjectForKey("NS.data"_ns));
      if (data) return self->initWithData(data);
      NSUInteger length = 0;
      const void* bytes = coder->decodeBytesForKey("NS.bytes"_ns, &length);
      if (bytes == nullptr) raiseBroken(self, "without its bytes");
      return self->initWithBytes(bytes, length);
    }),
};

constexpr MethodDefinition kNumberMethods[] = {
    method<"encodeWithCoder:">([](const NSNumber& self, const NSCoder& coder) {
      const char type = self->objCType()[0];
      if (type == 'f' || type == 'd')
        coder->encodeDouble(self->doubleValue(), "NS.dblval"_ns);
      else if (type == 'c')
        coder->encodeBool(self->boolValue(), "NS.boolval"_ns);
      else
        coder->encodeInteger(self->integerValue(), "NS.intval"_ns);
    }),
    method<"initWithCoder:">([](const NSNumber&, const NSCoder& coder) -> id {
      if (coder->containsValueForKey("NS.dblval"_ns)) {
        return NSNumber::numberWithDouble(coder->decodeDoubleForKey("NS.dblval"_ns));
      }
      if (coder->containsValueForKey("NS.boolval"_ns)) {
        return NSNumber::numberWithBool(coder->decodeBoolForKey("NS.boolval"_ns));
      }
      return NSNumber::numberWithInteger(coder->decodeIntegerForKey("NS.intval"_ns));
    }),
};

constexpr MethodDefinition kDateMethods[] = {
    method<"encodeWithCoder:">([](const NSDate& self, const NSCoder& coder) {
      coder->encodeDouble(self->timeIntervalSinceReferenceDate(), "NS.time"_ns);
    }),
    method<"initWithCoder:">([](const NSDate& self, const NSCoder& coder) -> id {
      return send<"initWithTimeIntervalSinceReferenceDate:", id>(
          self, coder->decodeDoubleForKey("NS.time"_ns));
    }),
};

constexpr MethodDefinition kNullMethods[] = {
    method<"encodeWithCoder:">([](const NSNull&, const NSCoder&) {}),
    method<"initWithCoder:">([](const NSNull& self, const NSCoder&) -> id { return self; }),
};

constexpr MethodDefinition kArrayMethods[] = {
    method<"encodeWithCoder:">([](const NSArray& self, const NSCoder& coder) {
      detail::encodeObjects(coder, self, "NS.objects"_ns);
    }),
    method<"initWithCoder:">([](const NSArray& self, const NSCoder& coder) -> id {
      const NSArray objects = detail::decodeObjects(coder, "NS.objects"_ns);
      if (!objects) raiseBroken(self, "without its members");
      return self->initWithArray(objects);
    }),
};

constexpr MethodDefinition kDictionaryMethods[] = {
    method<"encodeWithCoder:">([](const NSDictionary& self, const NSCoder& coder) {
      const NSArray keys = self->allKeys();
      detail::encodeObjects(coder, keys, "NS.keys"_ns);
      detail::encodeObjects(coder, self->objectsForKeys(keys, NSNull::null()), "NS.objects"_ns);
    }),
    method<"initWithCoder:">([](const NSDictionary& self, const NSCoder& coder) -> id {
      const NSArray keys = detail::decodeObjects(coder, "NS.keys"_ns);
      const NSArray objects = detail::decodeObjects(coder, "NS.objects"_ns);
      if (!keys || !objects || keys->count() != objects->count()) {
        raiseBroken(self, "whose keys and values do not match");
      }
      const detail::ArrayItems names(keys);
      const detail::ArrayItems values(objects);
      for (const id& name : names) {
        if (!send<"respondsToSelector:", bool>(name, selector<"copyWithZone:">())) {
          raiseBroken(self, "with a key that cannot be copied");
        }
      }
      return self->initWithObjects(values.items().data(), names.items().data(), names.size());
    }),
};

constexpr MethodDefinition kSetMethods[] = {
    method<"encodeWithCoder:">([](const NSSet& self, const NSCoder& coder) {
      detail::encodeObjects(coder, detail::makeArray(detail::copyMembers(self)), "NS.objects"_ns);
    }),
    method<"initWithCoder:">([](const NSSet& self, const NSCoder& coder) -> id {
      const NSArray objects = detail::decodeObjects(coder, "NS.objects"_ns);
      if (!objects) raiseBroken(self, "without its members");
      return self->initWithArray(objects);
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCoding};

template <class T>
constexpr CategoryDefinition coding(const char* name, std::span<const MethodDefinition> methods) {
  return {.name = name, .cls = &T::classPair.cls, .methods = methods, .protocols = kProtocols};
}

// What must be left of the stack for an object's own code.
constexpr std::size_t kReserve = 256 * 1024;

// The lowest address that the thread's stack may reach; 0 where that cannot be found out.
std::uintptr_t lowestStackAddress() {
  pthread_attr_t attributes;
  if (::pthread_getattr_np(::pthread_self(), &attributes) != 0) return 0;
  void* lowest = nullptr;
  std::size_t size = 0;
  const bool known = ::pthread_attr_getstack(&attributes, &lowest, &size) == 0;
  ::pthread_attr_destroy(&attributes);
  return known ? reinterpret_cast<std::uintptr_t>(lowest) : 0;  // NOLINT: an address as a number
}

}  // namespace

namespace detail {

constinit const CategoryDefinition kNSObjectCoding{
    .name = "NSObjectCoding", .cls = &NSObject::classPair.cls, .methods = kObjectMethods};
constinit const CategoryDefinition kNSStringCoding =
    coding<NSString>("NSStringCoding", kStringMethods);
constinit const CategoryDefinition kNSDataCoding = coding<NSData>("NSDataCoding", kDataMethods);
constinit const CategoryDefinition kNSNumberCoding =
    coding<NSNumber>("NSNumberCoding", kNumberMethods);
constinit const CategoryDefinition kNSDateCoding = coding<NSDate>("NSDateCoding", kDateMethods);
constinit const CategoryDefinition kNSNullCoding = coding<NSNull>("NSNullCoding", kNullMethods);
constinit const CategoryDefinition kNSArrayCoding = coding<NSArray>("NSArrayCoding", kArrayMethods);
constinit const CategoryDefinition kNSDictionaryCoding =
    coding<NSDictionary>("NSDictionaryCoding", kDictionaryMethods);
constinit const CategoryDefinition kNSSetCoding = coding<NSSet>("NSSetCoding", kSetMethods);

void requireStack(const char* exceptionName) {
  thread_local const std::uintptr_t kLowest = lowestStackAddress();
  const auto here =
      reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));  // NOLINT: an address
  if (kLowest == 0 || here > kLowest + kReserve) return;
  raise(exceptionName, "keyed archive: the objects are nested too deeply for this thread's stack");
}

}  // namespace detail
}  // namespace brindle
