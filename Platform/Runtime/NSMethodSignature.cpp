#include <Brindle/Platform/NSMethodSignature.h>

#include <Brindle/Platform/Definition.h>

#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/Raise.h"
#include "Platform/Runtime/Internal/SignatureObject.h"

namespace brindle {
namespace {

struct Fields {
  detail::SignatureData* data = nullptr;
};

const detail::SignatureData& dataOf(const NSMethodSignature& self) {
  return *fieldsOf<Fields>(self).data;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"allocWithZone:">([](const Class&, NSZone*) -> id {
      detail::raise("NSInvalidArgumentException",
                    "a method signature is made by signatureWithObjCTypes:, not by alloc");
    }),
    classMethod<"signatureWithObjCTypes:">(
        [](const Class&, const char* types) -> NSMethodSignature {
          return detail::signatureObject(types);
        }),
    method<"numberOfArguments">(
        [](const NSMethodSignature& self) -> NSUInteger { return dataOf(self).arguments.size(); }),
    method<"getArgumentTypeAtIndex:">(
        [](const NSMethodSignature& self, NSUInteger index) -> const char* {
          const auto& arguments = dataOf(self).arguments;
          if (index >= arguments.size()) {
            detail::raise("NSInvalidArgumentException", "argument index " + std::to_string(index) +
                                                            " beyond the last, " +
                                                            std::to_string(arguments.size() - 1));
          }
          return arguments[index].encoding.c_str();
        }),
    method<"methodReturnType">([](const NSMethodSignature& self) -> const char* {
      return dataOf(self).result.encoding.c_str();
    }),
    method<"methodReturnLength">(
        [](const NSMethodSignature& self) -> NSUInteger { return dataOf(self).result.size; }),
    method<"frameLength">(
        [](const NSMethodSignature& self) -> NSUInteger { return dataOf(self).frameLength; }),
    method<"objCTypes">(
        [](const NSMethodSignature& self) -> const char* { return dataOf(self).types.c_str(); }),
    method<"isEqual:">([](const NSMethodSignature& self, const id& other) -> bool {
      if (self == other) return true;
      const NSMethodSignature signature = dynCast<NSMethodSignature>(other);
      // Offsets are no part of what a message is.
      if (!signature || dataOf(signature).arguments.size() != dataOf(self).arguments.size()) {
        return false;
      }
      for (std::size_t i = 0; i < dataOf(self).arguments.size(); ++i) {
        if (dataOf(self).arguments[i].encoding != dataOf(signature).arguments[i].encoding) {
          return false;
        }
      }
      return dataOf(self).result.encoding == dataOf(signature).result.encoding;
    }),
    method<"hash">([](const NSMethodSignature& self) -> NSUInteger {
      return std::hash<std::string>()(dataOf(self).wire);
    }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSMethodSignature", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSMethodSignature> NSMethodSignature::classPair{kDefinition};

namespace detail {

NSMethodSignature signatureObject(const char* types) {
  SignatureData* data = signatureData(types);
  if (data == nullptr) {
    raise("NSInvalidArgumentException",
          types == nullptr ? std::string("a method signature cannot be made from a null encoding")
                           : "\"" + std::string(types) + "\" is not a method's type encoding");
  }
  ObjectRecord* known = data->object.load(std::memory_order_acquire);
  if (known != nullptr) return NSMethodSignature(Adopt{}, known);
  auto made = adopt<NSMethodSignature>(createInstance(&NSMethodSignature::classPair.cls, 0));
  fieldsOf<Fields>(made).data = data;
  // Immortal before anybody finds it: whoever does counts nothing.
  makeImmortal(made.record());
  if (data->object.compare_exchange_strong(known, made.record(), std::memory_order_acq_rel)) {
    return made;
  }
  made.record()->count.store(1, std::memory_order_relaxed);
  return NSMethodSignature(Adopt{}, known);
}

SignatureData* dataOfSignature(const NSMethodSignature& signature) {
  return signature ? fieldsOf<Fields>(signature).data : nullptr;
}

NSMethodSignature signatureOfMethod(MethodRecord* method) {
  if (ObjectRecord* known = method->signature.load(std::memory_order_acquire)) {
    return NSMethodSignature(Adopt{}, known);
  }
  const char* types = method->types.load();
  if (signatureData(types) == nullptr) return nullptr;
  NSMethodSignature signature = signatureObject(types);
  method->signature.store(signature.record(), std::memory_order_release);
  return signature;
}

}  // namespace detail
}  // namespace brindle
