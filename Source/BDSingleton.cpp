#include <Brindle/BDSingleton.h>

#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Runtime.h>

#include "Source/Internal/AllocationLayers.h"
#include "Source/Internal/Categories.h"

namespace brindle {
namespace {

IMP previousAllocation = nullptr;

/// The registry of instances: associations of one object, whose keys are classes.
constinit ObjectRecord* holder = nullptr;

id registeredInstance(Class cls) {
  const detail::Lent<id> registry(holder);
  return objc_getAssociatedObject(registry.reference, cls.record());
}

id makeInstance(Class cls, SEL selector, NSZone* zone) {
  id instance = send<"init", id>(callImplementation<id>(previousAllocation, cls, selector, zone));
  // Before anybody finds the instance: who finds it must not run its initialiser again.
  swizzle(cls, brindle::selector<"init">(),
          send<"instanceMethodForSelector:", IMP>(cls, brindle::selector<"self">()), nullptr);
  const detail::Lent<id> registry(holder);
  objc_setAssociatedObject(registry.reference, cls.record(), instance, OBJC_ASSOCIATION_ASSIGN);
  // The registry does not own it, and nobody else may be the last to let it go: the count that its
  // making gave stays.
  return borrow<id>(instance.leak());
}

id allocateSingleton(Class cls, SEL selector, NSZone* zone) {
  if (id known = registeredInstance(cls)) return known;
  const Synchronized guard(cls);
  if (id known = registeredInstance(cls)) return known;
  return makeInstance(cls, selector, zone);
}

bool answerSingleton(Class cls);

bool answerNo(Class cls) {
  // Subclasses inherit this answer, and must find their own.
  if (hasMarks(cls, internal::kAnswersNoSingleton)) return false;
  return answerSingleton(cls);
}

/// Asks the class once; from then on a constant answers in its place.
bool answerSingleton(Class cls) {
  const bool adopts = send<"conformsToProtocol:", bool>(cls, Protocol(kBDSingleton));
  if (!adopts) setMarks(cls, internal::kAnswersNoSingleton);
  const TypedImplementation constant =
      adopts ? implementation([](const Class&) { return true; })
             : implementation([](const Class& self) { return answerNo(self); });
  const Method asked = class_getClassMethod(cls, selector<"hasSingletonProtocol">());
  class_addMethod(object_getClass(cls), selector<"hasSingletonProtocol">(), constant.implementation,
                  method_getTypeEncoding(asked));
  return adopts;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"hasSingletonProtocol">([](const Class& self) { return answerNo(self); }),
};

}  // namespace

constinit ProtocolRecord kBDSingleton{"BDSingleton"};

constinit const CategoryDefinition internal::kBDObjectSingletonAdditions{
    .name = "BDObjectSingletonAdditions", .cls = &NSObject::classPair.cls, .methods = kMethods};

void internal::installSingletonLayer() {
  const auto layer = implementation([](const Class& self, Cmd cmd, NSZone* zone) -> id {
    if (!hasSingletonProtocol(self)) {
      return callImplementation<id>(previousAllocation, self, cmd.selector, zone);
    }
    return allocateSingleton(self, cmd.selector, zone);
  });
  swizzleClassMethod(NSObject::class_(), selector<"allocWithZone:">(), layer.implementation,
                     &previousAllocation);
  holder = class_createInstance(NSObject::class_(), 0).leak();
}

}  // namespace brindle
