#include <Brindle/Platform/NSProxy.h>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Runtime/Internal/Forwarding.h"
#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/Perform.h"

namespace brindle {
namespace {

[[noreturn]] void raiseUnforwarded(const NSProxy& self, SEL selector) {
  detail::raiseUnrecognized(*object_getClass(self).record(), selector, self.record());
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"initialize">([](const Class&) {}),
    classMethod<"alloc">([](const Class& self) -> id {
      return send<"allocWithZone:", id>(self, static_cast<NSZone*>(nullptr));
    }),
    classMethod<"allocWithZone:">([](const Class& self, NSZone*) -> id {
      return adopt<id>(detail::createInstance(self.record(), 0));
    }),
    classMethod<"class">([](const Class& self) -> Class { return self; }),
    classMethod<"superclass">([](const Class& self) -> Class { return class_getSuperclass(self); }),
    classMethod<"respondsToSelector:">([](const Class& self, SEL s) {
      return class_respondsToSelector(object_getClass(self), s) != NO;
    }),
    classMethod<"instancesRespondToSelector:">(
        [](const Class& self, SEL s) { return class_respondsToSelector(self, s) != NO; }),
    classMethod<"methodSignatureForSelector:">([](const Class& self, SEL s) -> NSMethodSignature {
      Method method = class_getInstanceMethod(object_getClass(self), s);
      return method != nullptr ? detail::signatureOfMethod(method) : nullptr;
    }),
    classMethod<"instanceMethodSignatureForSelector:">(
        [](const Class& self, SEL s) -> NSMethodSignature {
          Method method = class_getInstanceMethod(self, s);
          return method != nullptr ? detail::signatureOfMethod(method) : nullptr;
        }),
    classMethod<"forwardInvocation:">([](const Class& self, const NSInvocation& invocation) {
      detail::raiseUnrecognized(*self.record()->other, invocation->selector(), self.record());
    }),
    classMethod<"doesNotRecognizeSelector:">([](const Class& self, SEL s) {
      detail::raiseUnrecognized(*self.record()->other, s, self.record());
    }),

    method<"dealloc">([](const NSProxy& self) { detail::disposeObject(self.record()); }),
    method<"retain">(
        [](const NSProxy& self) -> id { return borrow<id>(detail::retained(self.record())); }),
    method<"release">([](const NSProxy& self) { detail::release(self.record()); }),
    method<"autorelease">([](const NSProxy& self) -> id {
      ObjectRecord* owned = detail::retained(self.record());
      detail::autoreleaseOwned(owned);
      return borrow<id>(owned);
    }),
    method<"retainCount">([](const NSProxy& self) -> NSUInteger {
      return self.record()->count.load(std::memory_order_relaxed);
    }),
    method<"zone">([](const NSProxy&) -> NSZone* { return nullptr; }),
    method<"self">([](const NSProxy& self) -> id { return self; }),
    method<"isProxy">([](const NSProxy&) { return true; }),
    method<"isEqual:">([](const NSProxy& self, const id& other) { return self == other; }),
    method<"hash">([](const NSProxy& self) -> NSUInteger {
      return reinterpret_cast<std::uintptr_t>(self.record()) >> 4U;  // NOLINT
    }),
    method<"class">([](const NSProxy& self) -> Class { return object_getClass(self); }),
    method<"superclass">(
        [](const NSProxy& self) -> Class { return class_getSuperclass(object_getClass(self)); }),
    method<"performSelector:">(
        [](const NSProxy& self, SEL s) -> id { return detail::perform(self, s); }),
    method<"performSelector:withObject:">(
        [](const NSProxy& self, SEL s, const id& a) -> id { return detail::perform(self, s, a); }),
    method<"performSelector:withObject:withObject:">(
        [](const NSProxy& self, SEL s, const id& a, const id& b) -> id {
          return detail::perform(self, s, a, b);
        }),
    method<"methodSignatureForSelector:">(
        [](const NSProxy& self, SEL s) -> NSMethodSignature { raiseUnforwarded(self, s); }),
    method<"forwardInvocation:">([](const NSProxy& self, const NSInvocation& invocation) {
      raiseUnforwarded(self, invocation->selector());
    }),
    method<"doesNotRecognizeSelector:">(
        [](const NSProxy& self, SEL s) { raiseUnforwarded(self, s); }),
};

constexpr ClassDefinition kDefinition{.name = "NSProxy", .methods = kMethods};

}  // namespace

constinit ClassPair<NSProxy> NSProxy::classPair{kDefinition};

}  // namespace brindle
