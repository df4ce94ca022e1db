// The runtime's functions on methods.
#include <Brindle/Platform/Method.h>

#include <Brindle/Platform/Runtime.h>

#include "Platform/Runtime/Internal/ClassData.h"
#include "Platform/Runtime/Internal/SignatureData.h"

namespace brindle {

using detail::ClassData;
using detail::realized;
using detail::realizedLocked;

namespace {
using Kind = MethodChange::Kind;

void noteChangeLocked(const MethodRecord* method, Kind kind, IMP before, IMP after,
                      const void* from) {
  detail::noteChangeLocked(method->owner->data.load(std::memory_order_relaxed),
                           {.selector = method->name,
                            .kind = kind,
                            .before = before,
                            .after = after,
                            .when = {},
                            .from = nullptr},
                           from);
}

const char* wireFor(IMP imp, const char* types) {
  return imp != nullptr ? detail::wireOfImplementationLocked(imp, types) : nullptr;
}

void addLocked(ClassData* data, SEL selector, IMP implementation, const char* types,
               const void* from) {
  const char* text = types != nullptr ? detail::internedLocked(types) : nullptr;
  const MethodRecord* method = detail::addMethodLocked(data, selector, implementation, text,
                                                       wireFor(implementation, text), true);
  noteChangeLocked(method, Kind::kAdded, nullptr, implementation, from);
}

IMP replaceLocked(MethodRecord* method, IMP implementation, const void* from) {
  const IMP previous = method->implementation.load();
  detail::storeImplementation(method, implementation,
                              wireFor(implementation, method->types.load()));
  noteChangeLocked(method, Kind::kReplaced, previous, implementation, from);
  return previous;
}
}  // namespace

std::vector<Method> class_copyMethodList(Class cls) {
  if (!cls) return {};
  const std::lock_guard guard(detail::runtimeLock());
  return realizedLocked(cls.record())->methods;
}

Method class_getInstanceMethod(Class cls, SEL selector) {
  if (!cls || selector == nullptr) return nullptr;
  return detail::lookUpMethod(realized(cls.record()), selector);
}

Method class_getClassMethod(Class cls, SEL selector) {
  if (!cls) return nullptr;
  ClassRecord* record = cls.record();
  return class_getInstanceMethod(Class(record->isMeta ? record : record->other), selector);
}

IMP class_getMethodImplementation(Class cls, SEL selector) {
  if (!cls || selector == nullptr) return nullptr;
  Method method = class_getInstanceMethod(cls, selector);
  const IMP imp = method != nullptr ? method->implementation.load() : nullptr;
  if (imp != nullptr) return imp;
  return forwardingImplementation(method != nullptr ? method->types.load() : nullptr);
}

BOOL class_respondsToSelector(Class cls, SEL selector) {
  Method method = class_getInstanceMethod(cls, selector);
  return method != nullptr && method->implementation.load() != nullptr ? YES : NO;
}

BOOL class_addMethod(Class cls, SEL selector, IMP implementation, const char* types) {
  if (!cls || selector == nullptr) return NO;
  const std::lock_guard guard(detail::runtimeLock());
  ClassData* data = realizedLocked(cls.record());
  if (data->ownMethods.contains(selector)) return NO;
  addLocked(data, selector, implementation, types, __builtin_return_address(0));
  return YES;
}

IMP class_replaceMethod(Class cls, SEL selector, IMP implementation, const char* types) {
  if (!cls || selector == nullptr) return nullptr;
  const std::lock_guard guard(detail::runtimeLock());
  ClassData* data = realizedLocked(cls.record());
  auto own = data->ownMethods.find(selector);
  if (own != data->ownMethods.end()) {
    return replaceLocked(own->second, implementation, __builtin_return_address(0));
  }
  addLocked(data, selector, implementation, types, __builtin_return_address(0));
  return nullptr;
}

SEL method_getName(Method method) { return method != nullptr ? method->name : nullptr; }

IMP method_getImplementation(Method method) {
  return method != nullptr ? method->implementation.load() : nullptr;
}

const char* method_getTypeEncoding(Method method) {
  return method != nullptr ? method->types.load() : nullptr;
}

unsigned method_getNumberOfArguments(Method method) {
  if (method == nullptr) return 0;
  const detail::SignatureData* signature = detail::signatureData(method->types.load());
  return signature != nullptr ? static_cast<unsigned>(signature->arguments.size()) : 0;
}

IMP method_setImplementation(Method method, IMP implementation) {
  if (method == nullptr) return nullptr;
  const std::lock_guard guard(detail::runtimeLock());
  return replaceLocked(method, implementation, __builtin_return_address(0));
}

void method_exchangeImplementations(Method a, Method b) {
  if (a == nullptr || b == nullptr) return;
  const std::lock_guard guard(detail::runtimeLock());
  const IMP impOfA = a->implementation.load();
  const IMP impOfB = b->implementation.load();
  // Each implementation takes its own wire codes along.
  const char* wireOfA = a->wire.load();
  const char* wireOfB = b->wire.load();
  detail::storeImplementation(a, impOfB, wireOfB);
  detail::storeImplementation(b, impOfA, wireOfA);
  noteChangeLocked(a, Kind::kExchanged, impOfA, impOfB, __builtin_return_address(0));
  noteChangeLocked(b, Kind::kExchanged, impOfB, impOfA, __builtin_return_address(0));
}

}  // namespace brindle
