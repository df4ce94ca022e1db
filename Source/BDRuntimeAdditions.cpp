#include <Brindle/BDRuntimeAdditions.h>

#include <dlfcn.h>

#include <string>

#include <Brindle/Platform/Closure.h>
#include <Brindle/Platform/MethodChanges.h>

#include "Source/Internal/Categories.h"
#include "Source/Internal/MethodSwizzle.h"

namespace brindle {
namespace {

constexpr const char* kCachePrefix = "bddyn_";

SEL cacheSelector(SEL selector) {
  return sel_getUid((std::string(kCachePrefix) + sel_getName(selector)).c_str());
}

Class metaClassNamedAs(Class cls) { return objc_getMetaClass(class_getName(cls)); }

/// The code of a method, behind a note of who sent the message.
template <class F, class Type = decltype(&F::operator())>
struct NotingThunk;
template <class F, class R, class Self, class... A>
struct NotingThunk<F, R (F::*)(Self, A...) const> {
  static detail::Wire<R> call(ObjectRecord* self, SEL selector, detail::Wire<A>... arguments) {
    const ChangeOrigin origin(__builtin_return_address(0));
    return detail::MethodThunk<F, R (F::*)(Self, A...) const>::call(self, selector, arguments...);
  }
};

/// A class method that changes methods on behalf of its sender.
template <FixedString Name, class F>
constexpr MethodDefinition changingMethod(F body) {
  MethodDefinition definition = classMethod<Name>(body);
  definition.implementation = [] { return detail::eraseImplementation(&NotingThunk<F>::call); };
  return definition;
}

constexpr MethodDefinition kObjectMethods[] = {
    changingMethod<"swizzle:with:">([](const Class& self, SEL target, SEL replacement) {
      return internal::swizzleByName(self.record(), target, replacement) != NO;
    }),
    changingMethod<"swizzleClassMethod:with:">([](const Class& self, SEL target, SEL replacement) {
      return internal::swizzleByName(metaClassNamedAs(self).record(), target, replacement) != NO;
    }),
};

constexpr MethodDefinition kRuntimeMethods[] = {
    changingMethod<"swizzle:with:store:">([](const Class& self, SEL selector, IMP imp, IMP* slot) {
      return class_swizzleMethodAndStore(self, selector, imp, slot) != NO;
    }),
    changingMethod<"swizzleClassMethod:with:store:">(
        [](const Class& self, SEL selector, IMP imp, IMP* slot) {
          return class_swizzleMethodAndStore(object_getClass(self), selector, imp, slot) != NO;
        }),
};

}  // namespace

constinit const CategoryDefinition internal::kBDObjectAdditions{
    .name = "BDObjectAdditions", .cls = &NSObject::classPair.cls, .methods = kObjectMethods};
constinit const CategoryDefinition internal::kBDRuntimeAdditions{
    .name = "BDRuntimeAdditions", .cls = &NSObject::classPair.cls, .methods = kRuntimeMethods};

BOOL internal::swizzleByName(ClassRecord* cls, SEL target, SEL replacement) {
  using Swizzle = BOOL (*)(ClassRecord*, SEL, SEL);
  // A program that contains the library may not show the name; then nobody can replace it either.
  const Swizzle own = &method_swizzle;
  void* found = ::dlsym(RTLD_DEFAULT, "method_swizzle");
  const Swizzle swizzle =
      found != nullptr ? reinterpret_cast<Swizzle>(found) : own;  // NOLINT(*-reinterpret-cast)
  return swizzle(cls, target, replacement);
}

extern "C" {

Method class_firstLevelMethod(ClassRecord* cls, SEL selector) {
  const Method method = class_getInstanceMethod(Class(cls), selector);
  return method != nullptr && method->owner == cls ? method : nullptr;
}

Method class_pullUpInstanceMethod(ClassRecord* cls, Method method) {
  const ChangeOrigin origin(__builtin_return_address(0));
  const SEL name = method_getName(method);
  class_addMethod(Class(cls), name, method_getImplementation(method),
                  method_getTypeEncoding(method));
  return class_getInstanceMethod(Class(cls), name);
}

void class_cacheMethodImp(ClassRecord* cls, SEL selector) {
  const ChangeOrigin origin(__builtin_return_address(0));
  if (selector == nullptr) return;
  const Method method = class_getInstanceMethod(Class(cls), selector);
  class_addMethod(Class(cls), cacheSelector(selector), method_getImplementation(method),
                  method_getTypeEncoding(method));
}

IMP class_getCachedMethodImp(ClassRecord* cls, SEL selector) {
  return method_getImplementation(class_getInstanceMethod(Class(cls), cacheSelector(selector)));
}

IMP class_firstLevelCachedMethodImp(ClassRecord* cls, SEL selector) {
  return method_getImplementation(class_firstLevelMethod(cls, cacheSelector(selector)));
}

BOOL class_replaceMethodImp(ClassRecord* cls, SEL selector, IMP implementation) {
  const ChangeOrigin origin(__builtin_return_address(0));
  const Method method = class_getInstanceMethod(Class(cls), selector);
  const Method own = class_pullUpInstanceMethod(cls, method);
  if (own == nullptr) return NO;
  method_setImplementation(own, implementation);
  return YES;
}

BOOL method_swizzle(ClassRecord* cls, SEL target, SEL replacement) {
  const ChangeOrigin origin(__builtin_return_address(0));
  Method first = class_getInstanceMethod(Class(cls), target);
  const Method second = class_getInstanceMethod(Class(cls), replacement);
  if (first == nullptr) {
    const char* types = method_getTypeEncoding(second);
    const char* wire = second != nullptr ? second->wire.load() : nullptr;
    class_addMethod(Class(cls), target, zeroImplementation(types, wire), types);
    first = class_getInstanceMethod(Class(cls), target);
  }
  if (first == nullptr || second == nullptr) return NO;
  const Method ownFirst = class_pullUpInstanceMethod(cls, first);
  const Method ownSecond = class_pullUpInstanceMethod(cls, second);
  method_exchangeImplementations(ownFirst, ownSecond);
  return YES;
}

BOOL class_swizzleMethodAndStore(ClassRecord* cls, SEL selector, IMP implementation, IMP* slot) {
  const ChangeOrigin origin(__builtin_return_address(0));
  Method method = class_getInstanceMethod(Class(cls), selector);
  if (method == nullptr) return NO;
  const char* types = method_getTypeEncoding(method);
  if (class_addMethod(Class(cls), selector, method_getImplementation(method), types) != NO) {
    method = class_getInstanceMethod(Class(cls), selector);
  }
  const IMP previous = method_getImplementation(method);
  // The slot first: another thread may run the new implementation as soon as it is in place.
  if (previous != nullptr && slot != nullptr) __atomic_store_n(slot, previous, __ATOMIC_RELEASE);
  class_replaceMethod(Class(cls), selector, implementation, types);
  return YES;
}

IMP unswizzleImp(ObjectRecord* object, SEL selector) {
  const detail::Lent<id> lent(object);
  return class_getMethodImplementation(classOf(lent.reference), selector);
}

IMP unswizzleClassImp(ClassRecord* cls, SEL selector) {
  return class_getMethodImplementation(metaClassNamedAs(Class(cls)), selector);
}

ClassRecord* object_getClassPointer(ObjectRecord* object) {
  const detail::Lent<id> lent(object);
  return object_getClass(lent.reference).record();
}

ClassRecord* objc_getClassPointer(const char* name) { return objc_getClass(name).record(); }

ClassRecord* objc_allocateClassPairPointer(ClassRecord* superclass, const char* name,
                                           std::size_t extraBytes) {
  return objc_allocateClassPair(Class(superclass), name, extraBytes).record();
}
}

}  // namespace brindle
