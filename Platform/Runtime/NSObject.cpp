#include <Brindle/Platform/NSObject.h>

#include <cstring>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Runtime/Internal/ClassData.h"
#include "Platform/Runtime/Internal/Forwarding.h"
#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/Perform.h"
#include "Platform/Runtime/Internal/Raise.h"
#include "Platform/Runtime/Internal/SignatureObject.h"

namespace brindle {
namespace {

bool inherits(const ClassRecord* cls, const ClassRecord* other) {
  while (cls != nullptr && cls != other) cls = cls->superclass;
  return cls != nullptr;
}

ClassRecord* classRecordOf(const id& object) {
  return object.record()->isa.load(std::memory_order_acquire);
}

bool adopts(Class cls, const Protocol& protocol) {
  for (Class c = cls; c; c = class_getSuperclass(c)) {
    if (class_conformsToProtocol(c, protocol) != NO) return true;
  }
  return false;
}

NSMethodSignature signatureFor(Class cls, SEL selector) {
  Method method = class_getInstanceMethod(cls, selector);
  if (method == nullptr || method->implementation.load() == nullptr) return nullptr;
  return detail::signatureOfMethod(method);
}

id copyWith(const id& self, SEL selector) {
  return sendSelector<id>(self, selector, static_cast<NSZone*>(nullptr));
}

constexpr MethodDefinition kMethods[] = {
    // Making objects.
    classMethod<"initialize">([](const Class&) {}),
    classMethod<"alloc">([](const Class& self) -> id {
      return send<"allocWithZone:", id>(self, static_cast<NSZone*>(nullptr));
    }),
    classMethod<"allocWithZone:">([](const Class& self, NSZone*) -> id {
      return adopt<id>(detail::createInstance(self.record(), 0));
    }),
    classMethod<"new">(
        [](const Class& self) -> id { return send<"init", id>(send<"alloc", id>(self)); }),
    method<"init">([](const NSObject& self) -> id { return self; }),
    method<"dealloc">([](const NSObject& self) { detail::disposeObject(self.record()); }),
    method<"copy">(
        [](const NSObject& self) -> id { return copyWith(self, selector<"copyWithZone:">()); }),
    method<"mutableCopy">([](const NSObject& self) -> id {
      return copyWith(self, selector<"mutableCopyWithZone:">());
    }),
    classMethod<"copyWithZone:">([](const Class& self, NSZone*) -> id { return self; }),
    classMethod<"mutableCopyWithZone:">([](const Class& self, NSZone*) -> id { return self; }),

    // Owners.
    method<"retain">([](const NSObject& self) -> id {
      // Of a block on the stack, the heap copy that is owned now.
      return borrow<id>(detail::retained(self.record()));
    }),
    method<"release">([](const NSObject& self) { detail::release(self.record()); }),
    method<"autorelease">([](const NSObject& self) -> id {
      ObjectRecord* owned = detail::retained(self.record());
      detail::autoreleaseOwned(owned);
      return borrow<id>(owned);
    }),
    method<"retainCount">([](const NSObject& self) -> NSUInteger {
      return self.record()->count.load(std::memory_order_relaxed);
    }),
    method<"zone">([](const NSObject&) -> NSZone* { return nullptr; }),

    // Identity and class.
    method<"self">([](const NSObject& self) -> id { return self; }),
    method<"isProxy">([](const NSObject&) { return false; }),
    method<"isEqual:">([](const NSObject& self, const id& other) { return self == other; }),
    method<"hash">([](const NSObject& self) -> NSUInteger {
      // Objects lie on multiples of 16.
      return reinterpret_cast<std::uintptr_t>(self.record()) >> 4U;  // NOLINT
    }),
    method<"class">([](const NSObject& self) -> Class { return object_getClass(self); }),
    classMethod<"class">([](const Class& self) -> Class { return self; }),
    method<"superclass">(
        [](const NSObject& self) -> Class { return class_getSuperclass(object_getClass(self)); }),
    classMethod<"superclass">([](const Class& self) -> Class { return class_getSuperclass(self); }),
    method<"isKindOfClass:">([](const NSObject& self, Class cls) {
      return cls && inherits(classRecordOf(self), cls.record());
    }),
    method<"isMemberOfClass:">(
        [](const NSObject& self, Class cls) { return cls && object_getClass(self) == cls; }),
    classMethod<"isSubclassOfClass:">(
        [](const Class& self, Class cls) { return cls && inherits(self.record(), cls.record()); }),
    method<"conformsToProtocol:">([](const NSObject& self, const Protocol& protocol) {
      return adopts(object_getClass(self), protocol);
    }),
    classMethod<"conformsToProtocol:">(
        [](const Class& self, const Protocol& protocol) { return adopts(self, protocol); }),

    // Methods by name.
    method<"respondsToSelector:">([](const NSObject& self, SEL s) {
      return class_respondsToSelector(object_getClass(self), s) != NO;
    }),
    classMethod<"instancesRespondToSelector:">(
        [](const Class& self, SEL s) { return class_respondsToSelector(self, s) != NO; }),
    method<"methodForSelector:">([](const NSObject& self, SEL s) -> IMP {
      return class_getMethodImplementation(object_getClass(self), s);
    }),
    classMethod<"instanceMethodForSelector:">(
        [](const Class& self, SEL s) -> IMP { return class_getMethodImplementation(self, s); }),
    method<"methodSignatureForSelector:">([](const NSObject& self, SEL s) -> NSMethodSignature {
      return signatureFor(object_getClass(self), s);
    }),
    classMethod<"instanceMethodSignatureForSelector:">(
        [](const Class& self, SEL s) -> NSMethodSignature { return signatureFor(self, s); }),
    method<"performSelector:">(
        [](const NSObject& self, SEL s) -> id { return detail::perform(self, s); }),
    method<"performSelector:withObject:">(
        [](const NSObject& self, SEL s, const id& a) -> id { return detail::perform(self, s, a); }),
    method<"performSelector:withObject:withObject:">(
        [](const NSObject& self, SEL s, const id& a, const id& b) -> id {
          return detail::perform(self, s, a, b);
        }),

    // Messages that the class has no method for.
    method<"forwardingTargetForSelector:">([](const NSObject&, SEL) -> id { return nullptr; }),
    method<"forwardInvocation:">([](const NSObject& self, const NSInvocation& invocation) {
      self->doesNotRecognizeSelector(invocation->selector());
    }),
    method<"doesNotRecognizeSelector:">([](const NSObject& self, SEL s) {
      detail::raiseUnrecognized(*classRecordOf(self), s, self.record());
    }),
};

constexpr ClassDefinition kDefinition{.name = "NSObject", .methods = kMethods};

}  // namespace

constinit ClassPair<NSObject> NSObject::classPair{kDefinition};

namespace {
constexpr ClassDefinition kProtocolDefinition{.name = "Protocol"};
}
constinit ClassPair<Protocol> Protocol::classPair{kProtocolDefinition};

void detail::raiseBadCast(const id& object, const ClassRecord* wanted) {
  raise("NSInvalidArgumentException", std::string("cast to ") + wanted->name +
                                          " of an object of class " + classRecordOf(object)->name);
}

}  // namespace brindle
