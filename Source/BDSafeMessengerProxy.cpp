#include <Brindle/BDSafeMessengerProxy.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSMethodSignature.h>
#include <Brindle/Platform/Runtime.h>

#include "Source/Internal/Categories.h"

namespace brindle {
namespace {

struct Fields {
  Field<id> target;
  BDFallback fallback{};
};
Fields& fields(const BDSafeMessengerProxy& self) { return fieldsOf<Fields>(self); }

/// Asks the target itself, which a message to the proxy would reach only by forwarding.
bool answers(const id& target, SEL selector) {
  return send<"respondsToSelector:", bool>(target, selector);
}

NSMethodSignature fallbackSignature(const id& knower, SEL selector) {
  auto signature = send<"methodSignatureForSelector:", NSMethodSignature>(knower, selector);
  if (!signature && knower && send<"class", Class>(knower).record() == knower.record()) {
    signature = send<"instanceMethodSignatureForSelector:", NSMethodSignature>(knower, selector);
  }
  return signature;
}

NSMethodSignature signatureFor(const BDSafeMessengerProxy& self, SEL selector) {
  const Fields& f = fields(self);
  const id& target = f.target.peek();  // set once; the messenger is alive for the call
  if (answers(target, selector)) {
    return send<"methodSignatureForSelector:", NSMethodSignature>(target, selector);
  }
  const detail::Lent<id> knower(f.fallback.signature);
  NSMethodSignature signature = fallbackSignature(knower.reference, selector);
  if (!signature) {
    signature = NSObject::class_()->instanceMethodSignatureForSelector(brindle::selector<"init">());
  }
  return signature;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"safeMessengerWithTarget:fallback:">(
        [](const ClassOf<BDSafeMessengerProxy>& self, const id& target,
           BDFallback fallback) -> BDSafeMessengerProxy {
          BDSafeMessengerProxy messenger = self->alloc();
          fields(messenger).target = target;
          fields(messenger).fallback = fallback;
          return messenger;
        }),
    method<"dealloc">([](const BDSafeMessengerProxy& self) {
      fields(self).target = nullptr;
      sendSuper<BDSafeMessengerProxy, "dealloc">(self);
    }),
    method<"forwardInvocation:">(
        [](const BDSafeMessengerProxy& self, const NSInvocation& invocation) {
          const Fields& f = fields(self);
          const id& target = f.target.peek();
          if (answers(target, invocation->selector())) {
            invocation->invokeWithTarget(target);
          } else if (f.fallback.value != nullptr) {
            invocation->setReturnValueBytes(f.fallback.value);
          }
        }),
    method<"methodSignatureForSelector:">([](const BDSafeMessengerProxy& self, SEL selector) {
      return signatureFor(self, selector);
    }),
};
constexpr IvarDefinition kVariables[] = {
    ivar<id>("target", offsetof(Fields, target)),
    ivar<BDFallback>("fallback", offsetof(Fields, fallback)),
};
constexpr ClassDefinition kDefinition{.name = "BDSafeMessengerProxy",
                                      .methods = kMethods,
                                      .variables = kVariables,
                                      .fields = fieldsDefinition<Fields>()};

constexpr MethodDefinition kAdditions[] = {
    method<"safely">(
        [](const id& self) { return send<"safelyWithFallback:", id>(self, BDFallback{}); }),
    method<"safelyWithFallback:">([](const id& self, BDFallback fallback) -> id {
      return BDSafeMessengerProxy::safeMessengerWithTarget(self, fallback);
    }),
};

}  // namespace

constinit ClassPair<BDSafeMessengerProxy> BDSafeMessengerProxy::classPair{kDefinition};

constinit const CategoryDefinition internal::kBDObjectSafeMessengerAdditions{
    .name = "BDObjectSafeMessengerAdditions",
    .cls = &NSObject::classPair.cls,
    .methods = kAdditions};

BDFallback BDMakeFallback(ObjectRecord* signature, void* value) { return {signature, value}; }

ObjectRecord* BDMakeUncollectable(ObjectRecord* object) {
  const detail::Lent<id> lent(object);
  send<"retain", id>(lent.reference);
  send<"release">(lent.reference);
  return object;
}

}  // namespace brindle
