#include <Brindle/BDAwake.h>

#include <atomic>
#include <string>

#include <Brindle/BDAwakeProxy.h>
#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Runtime.h>

#include "Source/Internal/AllocationLayers.h"
#include "Source/Internal/Categories.h"
#include "Source/Internal/LinkedCode.h"

namespace brindle {
namespace {

IMP previousAllocation = nullptr;

// The address is the key under which a class keeps its proxy class.
const char kProxyClassKey = 0;

Method ownAwake(Class cls) { return class_firstLevelMethod(cls, selector<"awake">()); }

/// Not by a message: a subclass's `awake` has a turn of its own.
void runOwnAwake(Class cls, const id& object) {
  const Method awake = ownAwake(cls);
  const IMP imp = method_getImplementation(awake);
  if (imp == nullptr) return;
  const char* types = method_getTypeEncoding(awake);
  if (types != nullptr && *types == '@') {
    callImplementation<id>(imp, object, selector<"awake">());  // and lets go of the answer
  } else {
    callImplementation<void>(imp, object, selector<"awake">());
  }
}

Class makeProxyClass(Class cls) {
  const std::string name = std::string(kAwakeProxyPrefix) + class_getName(cls);
  if (const Class known = objc_getClass(name.c_str())) return known;
  const Synchronized guard(cls);
  if (const Class known = objc_getClass(name.c_str())) return known;
  const Class made = objc_allocateClassPair(BDAwakeProxy::class_(), name.c_str(), 0);
  if (!made) return objc_getClass(name.c_str());
  objc_registerClassPair(made);
  return made;
}

Class proxyClassOf(Class cls) {
  const id known = objc_getAssociatedObject(cls, &kProxyClassKey);
  if (known) return Class(static_cast<ClassRecord*>(known.record()));
  const Class proxy = makeProxyClass(cls);
  objc_setAssociatedObject(cls, &kProxyClassKey, proxy, OBJC_ASSOCIATION_ASSIGN);
  return proxy;
}

bool performs(Class cls) {
  if (hasMarks(cls, internal::kAwakeDecided)) return hasMarks(cls, internal::kAwakePerformed);
  const bool answer = supportsAwake(cls) || performAwake(class_getSuperclass(cls));
  setMarks(cls,
           answer ? internal::kAwakeDecided | internal::kAwakePerformed : internal::kAwakeDecided);
  return answer;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"load">([](const Class&) {
      // A class whose own `load` runs its superclass's comes here too.
      static std::atomic<bool> installed{false};
      if (installed.exchange(true)) return;
      internal::installAwakeLayer();
      internal::installSingletonLayer();
    }),
    classMethod<"supportsAwake">([](const Class& self) {
      const IMP awake = method_getImplementation(ownAwake(self));
      return awake != nullptr && internal::isLinkedCode(awake);
    }),
    classMethod<"performAwake">([](const Class& self) { return performs(self); }),
    classMethod<"invokeAwake:">([](const Class& self, const id& object) {
      invokeAwake(class_getSuperclass(self), object);
      if (supportsAwake(self)) runOwnAwake(self, object);
    }),
};

}  // namespace

extern "C" {
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name that the loader is asked for
constinit const int __kBrindleAwakeLinkCheckingSymbol = 1;
}

constinit const CategoryDefinition internal::kBDAwakeAdditions{
    .name = "BDObjectAdditions", .cls = &NSObject::classPair.cls, .methods = kMethods};

void internal::installAwakeLayer() {
  const auto layer = implementation([](const Class& self, Cmd cmd, NSZone* zone) -> id {
    id made = callImplementation<id>(previousAllocation, self, cmd.selector, zone);
    if (performAwake(self)) object_setClass(made, proxyClassOf(self));
    return made;
  });
  swizzleClassMethod(NSObject::class_(), selector<"allocWithZone:">(), layer.implementation,
                     &previousAllocation);
}

}  // namespace brindle
